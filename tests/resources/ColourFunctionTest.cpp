// The functions of colorspace.glsl on the GPU, against the standards in double precision.
#include "GlBench.h"

#include <QVector3D>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace xelttest;

using ColourFunctionTest = GlBench;

// Signals 0, 1/1023 ... 1, the same in all channels.
std::vector<Rgba> ramp()
{
    std::vector<Rgba> vecValues;
    for (int i = 0; i < 1024; ++i) {
        const double dValue = i / 1023.0;
        vecValues.push_back({dValue, dValue, dValue, 1.0});
    }
    return vecValues;
}

// Colours of all orders of the components, ties and extremes included.
std::vector<Rgba> colours()
{
    std::vector<Rgba> vecValues;
    constexpr int k_nSteps = 11;
    for (int i = 0; i < k_nSteps * k_nSteps * k_nSteps; ++i) {
        vecValues.push_back(
            {i % k_nSteps / 10.0, i / k_nSteps % k_nSteps / 10.0, i / k_nSteps / k_nSteps / 10.0, 1.0});
    }
    return vecValues;
}

template <typename Function> std::vector<Rgba> mapped(const std::vector<Rgba> &vecInputs, Function function)
{
    std::vector<Rgba> vecValues;
    for (const Rgba &value : vecInputs) {
        const Rgb rgb = function(Rgb{value[0], value[1], value[2]});
        vecValues.push_back({rgb[0], rgb[1], rgb[2], 1.0});
    }
    return vecValues;
}

TEST_F(ColourFunctionTest, ConstantsAreTheTransferCodes)
{
    const std::vector<Rgba> vecActual =
        evaluate("", "result = vec4(AVCOL_TRC_BT709, AVCOL_TRC_SMPTE2084, AVCOL_TRC_ARIB_STD_B67, 1.0);",
                 {{0.0, 0.0, 0.0, 0.0}});
    EXPECT_TRUE(allNear(vecActual, {{1.0, 16.0, 18.0, 1.0}}, 0.0));
}

TEST_F(ColourFunctionTest, PqIsThePerceptualQuantizer)
{
    const std::vector<Rgba> vecInputs = ramp();
    const std::vector<Rgba> vecActual = evaluate("", "result = vec4(smpte2084(value.rgb), 1.0);", vecInputs);
    EXPECT_TRUE(allNear(vecActual,
                        mapped(vecInputs,
                               [](const Rgb &rgb) {
                                   const double dLinear = pqToLinear(rgb[0]);
                                   return Rgb{dLinear, dLinear, dLinear};
                               }),
                        5e-4));
    EXPECT_EQ(vecActual.at(0)[0], 0.0);
}

TEST_F(ColourFunctionTest, PqIsRightInTheDarkToo)
{
    // The curve spans eight decades; the eighth root brings them near each other.
    const std::vector<Rgba> vecInputs = ramp();
    EXPECT_TRUE(
        allNear(evaluate("", "result = vec4(pow(smpte2084(value.rgb), vec3(0.125)), 1.0);", vecInputs),
                mapped(vecInputs,
                       [](const Rgb &rgb) {
                           const double dRoot = std::pow(pqToLinear(rgb[0]), 0.125);
                           return Rgb{dRoot, dRoot, dRoot};
                       }),
                1e-4));
}

TEST_F(ColourFunctionTest, PqWorksOnEachChannel)
{
    // 100, 1000 and 10000 cd/m2.
    const std::vector<Rgba> vecActual = evaluate("", "result = vec4(smpte2084(value.rgb), 1.0);",
                                                 {{0.508078421517399, 0.751827096247041, 1.0, 1.0}});
    EXPECT_TRUE(allNear(vecActual, {{0.01, 0.1, 1.0, 1.0}}, 5e-4));
}

TEST_F(ColourFunctionTest, HlgIsTheHybridLogGamma)
{
    const std::vector<Rgba> vecInputs = ramp();
    EXPECT_TRUE(allNear(evaluate("", "result = vec4(arib_b67(value.rgb), 1.0);", vecInputs),
                        mapped(vecInputs,
                               [](const Rgb &rgb) {
                                   const double dLinear = hlgToLinear(rgb[0]);
                                   return Rgb{dLinear, dLinear, dLinear};
                               }),
                        2e-6));
}

TEST_F(ColourFunctionTest, HlgIsContinuousAtItsMiddle)
{
    const std::vector<Rgba> vecActual =
        evaluate("", "result = vec4(arib_b67(value.rgb), 1.0);", {{0.5, 0.5 + 1e-6, 1.0, 1.0}});
    EXPECT_TRUE(allNear(vecActual, {{0.25 / 3.0, 0.25 / 3.0, 1.0, 1.0}}, 2e-6));
}

TEST_F(ColourFunctionTest, FilmicCurveIsWhiteAtThreeQuarters)
{
    const std::vector<Rgba> vecInputs = ramp();
    const std::vector<Rgba> vecActual =
        evaluate("",
                 "result = vec4(uncharted2_filmic(value.r), uncharted2_tonemap_partial(value.g), "
                 "uncharted2_filmic(0.75), 1.0);",
                 vecInputs);
    EXPECT_TRUE(allNear(vecActual,
                        mapped(vecInputs,
                               [](const Rgb &rgb) {
                                   return Rgb{filmic(rgb[0]), filmic(rgb[1] / 10.0) * filmicWhite(), 1.0};
                               }),
                        2e-6));
}

TEST_F(ColourFunctionTest, ToneHelperKeepsTheMiddleInItsPlace)
{
    const std::vector<Rgba> vecActual =
        evaluate("", "vec3 c = value.rgb; rgbToneHelper(c.r, c.g, c.b); result = vec4(c, 1.0);",
                 {{0.9, 0.3, 0.1, 1.0}, {0.9, 0.9, 0.1, 1.0}, {0.9, 0.1, 0.1, 1.0}});
    const double dGreatest = filmic(0.9);
    const double dLeast = filmic(0.1);
    EXPECT_TRUE(allNear(vecActual,
                        {{dGreatest, dLeast + (dGreatest - dLeast) * 0.25, dLeast, 1.0},
                         {dGreatest, dGreatest, dLeast, 1.0},
                         {dGreatest, dLeast, dLeast, 1.0}},
                        2e-6));
}

TEST_F(ColourFunctionTest, ToneMappingKnowsEveryOrder)
{
    const char *const pszStatements =
        "vec3 c = value.rgb; adobeFilmLikeUncharted2Filmic(c); result = vec4(c, 1.0);";
    // One for each branch, then the ties that share a branch.
    const std::vector<Rgba> vecOrders = {{0.8, 0.5, 0.1, 1.0}, {0.5, 0.1, 0.8, 1.0}, {0.8, 0.1, 0.5, 1.0},
                                         {0.8, 0.3, 0.3, 1.0}, {0.5, 0.8, 0.1, 1.0}, {0.1, 0.5, 0.8, 1.0},
                                         {0.1, 0.8, 0.5, 1.0}, {0.6, 0.6, 0.1, 1.0}, {0.1, 0.1, 0.8, 1.0},
                                         {0.8, 0.1, 0.8, 1.0}, {0.3, 0.8, 0.3, 1.0}, {0.1, 0.8, 0.8, 1.0},
                                         {0.4, 0.4, 0.4, 1.0}, {0.0, 0.0, 0.0, 1.0}, {1.0, 1.0, 1.0, 1.0}};
    EXPECT_TRUE(allNear(evaluate("", pszStatements, vecOrders), mapped(vecOrders, toneMapped), 2e-6));
    EXPECT_TRUE(allNear(evaluate("", pszStatements, colours()), mapped(colours(), toneMapped), 2e-6));
}

TEST_F(ColourFunctionTest, HlgBeyondThePeakIsThePeak)
{
    const auto hlg = [this](const Rgba &value) {
        return evaluate(
            "uniform mat3 uMatrix;",
            "vec3 c = value.rgb; colorspace_trc_hlg(c, uMatrix, 1000.0); result = vec4(c, 1.0);", {value},
            [](QOpenGLShaderProgram &program) { program.setUniformValue("uMatrix", toQt(k_identity)); });
    };
    // The middle channel lies between the tone-mapped ends, so it tells whether the peak was cut before.
    EXPECT_TRUE(allNear(hlg({1.3, 0.7, 0.2, 1.0}), hlg({1.0, 0.7, 0.2, 1.0}), 1e-5));
}

struct TransferCase
{
    const char *pszCall;
    int nTransfer;
    Matrix matrix;
    double dMaxLuminance;
};

class TransferTest : public GlBench, public ::testing::WithParamInterface<TransferCase>
{
protected:
    std::vector<Rgba> run(double dMaxLuminance)
    {
        const QByteArray abStatements =
            "vec3 c = value.rgb; " + QByteArray(GetParam().pszCall) + "; result = vec4(c, 1.0);";
        return evaluate("uniform mat3 uMatrix; uniform float uLuminance;", abStatements, colours(),
                        [dMaxLuminance](QOpenGLShaderProgram &program) {
                            program.setUniformValue("uMatrix", toQt(GetParam().matrix));
                            program.setUniformValue("uLuminance", static_cast<float>(dMaxLuminance));
                        });
    }
};

TEST_P(TransferTest, MatchesDoublePrecision)
{
    EXPECT_TRUE(allNear(run(GetParam().dMaxLuminance),
                        mapped(colours(),
                               [](const Rgb &rgb) {
                                   return transferred(GetParam().nTransfer, rgb, GetParam().matrix,
                                                      GetParam().dMaxLuminance);
                               }),
                        k_dHalfLevel));
}

INSTANTIATE_TEST_SUITE_P(
    Bt709, TransferTest,
    ::testing::Values(TransferCase{"colorspace_trc_bt709(c, uMatrix)", k_nTrcBt709, k_identity, 100.0},
                      TransferCase{"colorspace_trc_bt709(c, uMatrix)", k_nTrcBt709, k_bt2020ToBt709, 100.0}));

// Bright enough for everything, and so dark that most is clipped before the tone mapping.
constexpr char k_szPq[] = "colorspace_trc_smpte2084(c, uMatrix, uLuminance)";
INSTANTIATE_TEST_SUITE_P(Pq, TransferTest,
                         ::testing::Values(TransferCase{k_szPq, k_nTrcPq, k_identity, 10000.0},
                                           TransferCase{k_szPq, k_nTrcPq, k_bt2020ToBt709, 10000.0},
                                           TransferCase{k_szPq, k_nTrcPq, k_bt2020ToBt709, 1000.0},
                                           TransferCase{k_szPq, k_nTrcPq, k_bt2020ToBt709, 100.0}));

constexpr char k_szHlg[] = "colorspace_trc_hlg(c, uMatrix, uLuminance)";
INSTANTIATE_TEST_SUITE_P(Hlg, TransferTest,
                         ::testing::Values(TransferCase{k_szHlg, k_nTrcHlg, k_identity, 1000.0},
                                           TransferCase{k_szHlg, k_nTrcHlg, k_bt2020ToBt709, 1000.0}));

// What the luminance does to the result: nothing to HLG, a lot to PQ.
using LuminanceTest = TransferTest;
TEST_P(LuminanceTest, CountsForPqAlone)
{
    const bool blSame = allNear(run(400.0), run(4000.0), 0.0);
    EXPECT_EQ(blSame, GetParam().nTransfer == k_nTrcHlg);
}

INSTANTIATE_TEST_SUITE_P(Both, LuminanceTest,
                         ::testing::Values(TransferCase{k_szPq, k_nTrcPq, k_identity, 0.0},
                                           TransferCase{k_szHlg, k_nTrcHlg, k_identity, 0.0}));

} // namespace
