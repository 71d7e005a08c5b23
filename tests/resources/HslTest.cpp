// The functions of hsl.glsl on the GPU.
#include "GlBench.h"

#include <vector>

namespace {

using namespace xelttest;

using HslTest = GlBench;

// All colours of a coarse 8-bit grid, greys, primaries and ties among them.
std::vector<Rgba> grid()
{
    std::vector<Rgba> vecValues;
    constexpr int k_nSteps = 16;
    for (int i = 0; i < k_nSteps * k_nSteps * k_nSteps; ++i) {
        vecValues.push_back({17 * (i % k_nSteps) / 255.0, 17 * (i / k_nSteps % k_nSteps) / 255.0,
                             17 * (i / k_nSteps / k_nSteps) / 255.0, 1.0});
    }
    return vecValues;
}

Rgb rgbOf(const Rgba &value)
{
    return {value[0], value[1], value[2]};
}

std::vector<Rgba> mapped(const std::vector<Rgba> &vecInputs, Rgb (*pfnMap)(const Rgb &))
{
    std::vector<Rgba> vecValues;
    for (const Rgba &value : vecInputs) {
        const Rgb rgb = pfnMap(rgbOf(value));
        vecValues.push_back({rgb[0], rgb[1], rgb[2], 1.0});
    }
    return vecValues;
}

TEST_F(HslTest, RgbBecomesHueSaturationLightness)
{
    const std::vector<Rgba> vecInputs = grid();
    EXPECT_TRUE(allNear(evaluate("", "result = vec4(rgb2hsl(value.rgb), 1.0);", vecInputs),
                        mapped(vecInputs, hslFromRgb), 2e-6));
}

TEST_F(HslTest, KnownColours)
{
    const std::vector<Rgba> vecColours = {{1.0, 0.0, 0.0, 1.0}, {1.0, 1.0, 0.0, 1.0}, {0.0, 1.0, 0.0, 1.0},
                                          {0.0, 1.0, 1.0, 1.0}, {0.0, 0.0, 1.0, 1.0}, {1.0, 0.0, 1.0, 1.0},
                                          {0.0, 0.0, 0.0, 1.0}, {0.5, 0.5, 0.5, 1.0}, {1.0, 1.0, 1.0, 1.0}};
    const std::vector<Rgba> vecHsl = {
        {0.0, 1.0, 0.5, 1.0},       {1.0 / 6.0, 1.0, 0.5, 1.0}, {2.0 / 6.0, 1.0, 0.5, 1.0},
        {3.0 / 6.0, 1.0, 0.5, 1.0}, {4.0 / 6.0, 1.0, 0.5, 1.0}, {5.0 / 6.0, 1.0, 0.5, 1.0},
        {0.0, 0.0, 0.0, 1.0},       {0.0, 0.0, 0.5, 1.0},       {0.0, 0.0, 1.0, 1.0}};
    EXPECT_TRUE(allNear(evaluate("", "result = vec4(rgb2hsl(value.rgb), 1.0);", vecColours), vecHsl, 1e-6));
    EXPECT_TRUE(allNear(evaluate("", "result = vec4(hsl2rgb(value.rgb), 1.0);", vecHsl), vecColours, 1e-6));
}

TEST_F(HslTest, HueSaturationLightnessBecomesRgb)
{
    // The grid's values serve as hue, saturation and lightness.
    const std::vector<Rgba> vecInputs = grid();
    EXPECT_TRUE(allNear(evaluate("", "result = vec4(hsl2rgb(value.rgb), 1.0);", vecInputs),
                        mapped(vecInputs, rgbFromHsl), 2e-6));
}

TEST_F(HslTest, ThereAndBackIsTheSameColour)
{
    const std::vector<Rgba> vecInputs = grid();
    EXPECT_TRUE(allNear(evaluate("", "result = vec4(hsl2rgb(rgb2hsl(value.rgb)), 1.0);", vecInputs),
                        vecInputs, 2e-6));
}

} // namespace
