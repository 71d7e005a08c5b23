// The stream's settings, and the pixels that come of them.
#include "Processor.h"
#include "VpTest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace {

using namespace xelttest;

class VpConversion : public VpTest
{
protected:
    ComPtr<ID3D11VideoContext> videoContext()
    {
        ComPtr<ID3D11DeviceContext> context;
        m_device->GetImmediateContext(context.ReleaseAndGetAddressOf());
        ComPtr<ID3D11VideoContext> video;
        EXPECT_EQ(context.As(IID_ID3D11VideoContext, video), S_OK);
        return video;
    }
    // The value of the bit field.
    unsigned colorSpace()
    {
        D3D11_VIDEO_PROCESSOR_COLOR_SPACE cs = {};
        videoContext()->VideoProcessorGetStreamColorSpace(m_vp->m_vp.Get(), 0, &cs);
        return cs.Usage + cs.RGB_Range * 2U + cs.YCbCr_Matrix * 4U + cs.YCbCr_xvYCC * 8U +
               cs.Nominal_Range * 16U;
    }
    struct SourceRect
    {
        bool blEnabled;
        RECT rc;
    };
    SourceRect sourceRect()
    {
        BOOL blEnabled = FALSE;
        RECT rc = {};
        videoContext()->VideoProcessorGetStreamSourceRect(m_vp->m_vp.Get(), 0, &blEnabled, &rc);
        return {blEnabled != FALSE, rc};
    }
    void expectSourceRect(const std::array<LONG, 4> &expected)
    {
        const SourceRect actual = sourceRect();
        EXPECT_TRUE(actual.blEnabled);
        EXPECT_EQ((std::array<LONG, 4>{actual.rc.left, actual.rc.top, actual.rc.right, actual.rc.bottom}),
                  expected);
    }
};

TEST_F(VpConversion, AutomaticProcessingIsSwitchedOff)
{
    ASSERT_TRUE(process());
    const ComPtr<ID3D11VideoContext> video = videoContext();
    BOOL blEnabled = TRUE;
    video->VideoProcessorGetStreamAutoProcessingMode(m_vp->m_vp.Get(), 0, &blEnabled);
    EXPECT_EQ(blEnabled, FALSE);
    // Also when somebody has switched it on meanwhile.
    video->VideoProcessorSetStreamAutoProcessingMode(m_vp->m_vp.Get(), 0, TRUE);
    ASSERT_TRUE(process());
    video->VideoProcessorGetStreamAutoProcessingMode(m_vp->m_vp.Get(), 0, &blEnabled);
    EXPECT_EQ(blEnabled, FALSE);
}

TEST_F(VpConversion, ColorSpaceBits)
{
    ASSERT_TRUE(process());
    EXPECT_EQ(colorSpace(), 20U); // limited range, BT.709
    m_vp->setColorRange(dx::kColorRangeFull);
    ASSERT_TRUE(process());
    EXPECT_EQ(colorSpace(), 36U);
    m_vp->setColorSpace(dx::kColorSpaceBt601);
    ASSERT_TRUE(process());
    EXPECT_EQ(colorSpace(), 32U);
    m_vp->setColorRange(dx::kColorRangeLimited);
    ASSERT_TRUE(process());
    EXPECT_EQ(colorSpace(), 16U);
    for (const int32_t nCode : {0, 1, 2, 5, -3}) { // every other code is the default
        m_vp->setColorSpace(nCode);
        m_vp->setColorRange(nCode == 2 ? 3 : nCode);
        ASSERT_TRUE(process());
        EXPECT_EQ(colorSpace(), 20U) << nCode;
    }
}

TEST_F(VpConversion, SourceRectangles)
{
    use(QSize(100, 100));
    ASSERT_TRUE(process());
    EXPECT_FALSE(sourceRect().blEnabled);
    m_vp->setSourceRect(QRect(0, 0, 100, 100));
    ASSERT_TRUE(process());
    expectSourceRect({0, 0, 100, 100});
    // Width and height are taken for the right and bottom edges.
    m_vp->setSourceRect(QRect(10, 10, 100, 100));
    ASSERT_TRUE(process());
    expectSourceRect({10, 10, 100, 100});
    // An empty one changes nothing.
    for (const QRect &rcEmpty : {QRect(), QRect(5, 5, 0, 7), QRect(5, 5, 7, -1)}) {
        m_vp->setSourceRect(rcEmpty);
        ASSERT_TRUE(process());
        expectSourceRect({10, 10, 100, 100});
    }
}

// B, G, R by the definition of the colour spaces, as far as the processor keeps to it.
std::array<double, 3> reference(double y, double u, double v, bool blBt601, bool blFullRange)
{
    const double dKr = blBt601 ? 0.299 : 0.2126;
    const double dKb = blBt601 ? 0.114 : 0.0722;
    const ProcessorHabits &habits = processorHabits();
    const bool blFull = blFullRange && habits.blHonoursRange;
    const double dLuma = blFull ? y / 255 : (y - 16) / 219;
    const double dY = habits.blClampsLuma ? std::clamp(dLuma, 0.0, 1.0) : dLuma;
    const double dU = (u - habits.dChromaZero) / (blFull ? 255 : habits.dChromaSpan);
    const double dV = (v - habits.dChromaZero) / (blFull ? 255 : habits.dChromaSpan);
    const double dRed = dY + 2 * (1 - dKr) * dV;
    const double dBlue = dY + 2 * (1 - dKb) * dU;
    const double dGreen = (dY - dKr * dRed - dKb * dBlue) / (1 - dKr - dKb);
    std::array<double, 3> bgr{dBlue, dGreen, dRed};
    for (double &d : bgr) {
        d = 255 * std::clamp(d, 0.0, 1.0);
    }
    return bgr;
}

TEST_F(VpConversion, PixelsOfEverySpaceAndRange)
{
    const Planes planes = makePlanes(Pattern::Noise, 64, 48, 7);
    m_textures->fill(3, planes);
    for (const bool blBt601 : {false, true}) {
        for (const bool blFull : {false, true}) {
            SCOPED_TRACE(testing::Message() << "601: " << blBt601 << ", full: " << blFull);
            m_vp->setColorSpace(blBt601 ? dx::kColorSpaceBt601 : dx::kColorSpaceBt709);
            m_vp->setColorRange(blFull ? dx::kColorRangeFull : dx::kColorRangeLimited);
            ASSERT_TRUE(process(3));
            const auto aPixels = pixels();
            std::array<double, 48> aWorst{}; // of each row
            for (size_t i = 0; i < planes.aY.size(); ++i) {
                const size_t nChroma = i / 64 / 2 * 32 + i % 64 / 2;
                const auto expected =
                    reference(planes.aY[i], planes.aU[nChroma], planes.aV[nChroma], blBt601, blFull);
                for (size_t c = 0; c < 3; ++c) {
                    double &dWorst = aWorst[i / 64];
                    dWorst = std::max(dWorst, std::abs(aPixels[4 * i + c] - expected[c]));
                }
                ASSERT_EQ(aPixels[4 * i + 3], 255);
            }
            const auto isWrong = [](double dWorst) { return dWorst > 1.0; };
            EXPECT_LE(std::count_if(aWorst.begin(), aWorst.end(), isWrong),
                      static_cast<std::ptrdiff_t>(processorHabits().nWrongRows));
        }
    }
}

TEST_F(VpConversion, EverySliceIsItsOwnPicture)
{
    for (UINT nSlice = 0; nSlice < 16; ++nSlice) {
        m_textures->fill(nSlice, solidPlanes(64, 48, static_cast<uint8_t>(20 + 12 * nSlice), 128, 128));
    }
    for (UINT nSlice = 16; nSlice-- > 0;) {
        ASSERT_TRUE(process(nSlice));
        const auto grey = reference(20.0 + 12 * nSlice, 128, 128, false, false);
        const auto aPixels = pixels();
        EXPECT_NEAR(aPixels.front(), grey[0], 1.0) << nSlice;
        EXPECT_NEAR(aPixels[aPixels.size() - 2], grey[2], 1.0) << nSlice;
    }
}

} // namespace
