// VideoYCbCr.frag on pictures of noise.
#include "YCbCrBench.h"

#include <string>
#include <vector>

namespace {

using namespace xelttest;

constexpr Matrix k_bt601 = {{{1.0, 0.0, 1.402}, {1.0, -0.344136, -0.714136}, {1.0, 1.772, 0.0}}};

// Planar or interleaved chroma, without and with the GL3 block.
class VideoYCbCrTest : public YCbCrBench, public ::testing::WithParamInterface<std::tuple<bool, bool>>
{
protected:
    static YCbCrSettings settings()
    {
        YCbCrSettings settings;
        settings.blNv12 = std::get<0>(GetParam());
        settings.blGl3 = std::get<1>(GetParam());
        return settings;
    }
};

TEST_P(VideoYCbCrTest, ConvertsByMatrixRangeAndBlackLevel)
{
    YCbCrSettings limited = settings();
    expectPicture(limited);
    limited.yuvToRgb = k_bt601;
    expectPicture(limited);
    YCbCrSettings full = settings();
    full.dLumaRange = 1.0;
    full.dChromaRange = 1.0;
    full.dBlackLevel = 0.0;
    expectPicture(full);
}

TEST_P(VideoYCbCrTest, ContrastTurnsAboutTheMiddleAndScalesChroma)
{
    for (const double dContrast : {0.0, 0.4, 1.8}) {
        for (const double dSaturation : {0.0, 0.5, 1.5}) {
            SCOPED_TRACE(testing::Message() << dContrast << ' ' << dSaturation);
            YCbCrSettings adjusted = settings();
            adjusted.dContrast = dContrast;
            adjusted.dSaturation = dSaturation;
            expectPicture(adjusted);
        }
    }
}

TEST_P(VideoYCbCrTest, BrightnessComesAfterTheClamp)
{
    for (const double dBrightness : {-0.5, 0.25}) {
        YCbCrSettings adjusted = settings();
        adjusted.dBrightness = dBrightness;
        expectPicture(adjusted);
    }
}

TEST_P(VideoYCbCrTest, BitsMultiplierComesBeforeTheBlackLevel)
{
    YCbCrSettings scaled = settings();
    scaled.dBits = 1.25;
    expectPicture(scaled);
}

TEST_P(VideoYCbCrTest, DrawFlagOneAloneFillsWithTheColour)
{
    for (const int nDrawFlag : {-1, 0, 1, 2}) {
        SCOPED_TRACE(nDrawFlag);
        YCbCrSettings drawn = settings();
        drawn.nDrawFlag = nDrawFlag;
        drawn.dBrightness = 0.1;
        expectPicture(drawn);
    }
}

// Without the GL3 block these settings change nothing, and the reference says so too.
TEST_P(VideoYCbCrTest, SharpnessTakesTheKernelOfThreeByThree)
{
    for (const double dSharpness : {-1.0, 0.5, 2.0}) {
        SCOPED_TRACE(dSharpness);
        YCbCrSettings sharp = settings();
        sharp.dSharpness = dSharpness;
        expectPicture(sharp);
    }
}

TEST_P(VideoYCbCrTest, SharpnessTakesNeighboursWithoutTheMultiplier)
{
    YCbCrSettings sharp = settings();
    sharp.dSharpness = 0.5;
    sharp.dBits = 1.25;
    expectPicture(sharp);
}

// The angle is an arc tangent, which compilers of shaders make a polynomial of: up to 1.2e-5 off on Direct3D, and
// that times the longest chroma and the largest of the matrix in the colour.
TEST_P(VideoYCbCrTest, HueTurnsChroma)
{
    constexpr double k_dTolerance = 3e-5;
    for (const double dHue : {-2.5, -0.3, 0.3, 3.1}) {
        SCOPED_TRACE(dHue);
        YCbCrSettings turned = settings();
        turned.dHue = dHue;
        expectPicture(turned, k_dTolerance);
    }
}

TEST_P(VideoYCbCrTest, TransferStepFollowsTheCode)
{
    for (const int nTransfer : {0, k_nTrcBt709 + 0, 2, k_nTrcPq + 0, 17, k_nTrcHlg + 0}) {
        SCOPED_TRACE(nTransfer);
        YCbCrSettings coded = settings();
        coded.nTransfer = nTransfer;
        expectPicture(coded, k_dHalfLevel);
    }
}

TEST_P(VideoYCbCrTest, HlgIsAppliedUnderGl3)
{
    YCbCrSettings coded = settings();
    const std::vector<Rgba> vecPlain = draw(coded);
    coded.nTransfer = k_nTrcHlg;
    const bool blSame = allNear(draw(coded), vecPlain, k_dHalfLevel);
    EXPECT_EQ(blSame, !coded.blGl3);
}

TEST_P(VideoYCbCrTest, LuminanceScalesPq)
{
    YCbCrSettings coded = settings();
    coded.nTransfer = k_nTrcPq;
    coded.dMaxLuminance = 300.0;
    expectPicture(coded, k_dHalfLevel);
}

TEST_P(VideoYCbCrTest, NegativeLeavesTheOpacity)
{
    for (const int nNegative : {1, -1}) {
        SCOPED_TRACE(nNegative);
        YCbCrSettings negative = settings();
        negative.nNegative = nNegative;
        expectPicture(negative);
    }
}

TEST_P(VideoYCbCrTest, AllStepsTogether)
{
    YCbCrSettings all = settings();
    all.dBrightness = -0.05;
    all.dContrast = 1.2;
    all.dSaturation = 0.8;
    all.dHue = 0.4;
    all.dSharpness = 0.6;
    all.dBits = 1.1;
    all.nTransfer = k_nTrcHlg;
    all.nNegative = 1;
    expectPicture(all, k_dHalfLevel);
}

std::string layoutName(const ::testing::TestParamInfo<std::tuple<bool, bool>> &info)
{
    const auto [blNv12, blGl3] = info.param;
    return std::string(blNv12 ? "Nv12" : "Planar") + (blGl3 ? "Gl3" : "Plain");
}

INSTANTIATE_TEST_SUITE_P(Layouts, VideoYCbCrTest, ::testing::Combine(::testing::Bool(), ::testing::Bool()),
                         layoutName);

} // namespace
