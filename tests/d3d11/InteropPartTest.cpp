// Frames that are smaller than their texture, as a decoder's are that works in whole blocks.
#include "InteropFailure.h"

#include <gmock/gmock.h>

namespace {

using namespace xelttest;
using softd3d11::Method;
using testing::ElementsAre;

// The planes at the top left of larger ones that are white elsewhere.
Planes withMargin(const Planes &planes, const QSize &size)
{
    Planes whole = solidPlanes(size.width(), size.height(), 235, 128, 128);
    const auto put = [](const std::vector<uint8_t> &aFrom, int nFrom, std::vector<uint8_t> &aTo, int nTo) {
        for (size_t i = 0; i < aFrom.size(); ++i) {
            const auto nRow = i / static_cast<size_t>(nFrom);
            aTo[nRow * static_cast<size_t>(nTo) + i % static_cast<size_t>(nFrom)] = aFrom[i];
        }
    };
    put(planes.aY, planes.nWidth, whole.aY, whole.nWidth);
    put(planes.aU, planes.chromaWidth(), whole.aU, whole.chromaWidth());
    put(planes.aV, planes.chromaWidth(), whole.aV, whole.chromaWidth());
    return whole;
}

class InteropPart : public HardwarePane
{
protected:
    // Shows the part of the size out of the texture, whose margin is white.
    void submitPart(const Planes &planes, DecoderTextures &array)
    {
        m_whole = withMargin(planes, array.size());
        array.fill(3, m_whole);
        setDevice(array.device());
        expectSlice(planes, array, 3);
        VideoFrameDesc desc = array.frame(3);
        desc.iWidth = planes.nWidth;
        desc.iHeight = planes.nHeight;
        ASSERT_EQ(Xelt_ShowYuvFrame(handle(), &desc, sizeof desc), 0);
    }
    // The picture of the texture with its margin, squeezed into the pane.
    ReferenceImage wholeReference()
    {
        const BufferModel part = m_model;
        expectSlice(m_whole);
        ReferenceImage image = hardwareReference();
        m_model = part;
        return image;
    }

    Planes m_whole;
};

TEST_F(InteropPart, OnlyTheFrameShows)
{
    open(QSize(96, 64));
    m_device = makeDevice();
    uint32_t nSeed = 0;
    for (const auto &[part, whole] :
         {std::pair{QSize(96, 64), QSize(96, 80)}, std::pair{QSize(80, 64), QSize(96, 64)},
          std::pair{QSize(72, 48), QSize(96, 80)}, std::pair{QSize(96, 64), QSize(98, 66)},
          std::pair{QSize(2, 2), QSize(64, 64)}}) {
        DecoderTextures array(m_device, whole);
        submitPart(makePlanes(Pattern::Card, part.width(), part.height(), ++nSeed), array);
        EXPECT_TRUE(shows(sizeName(part) + " of " + sizeName(whole)));
        EXPECT_TRUE(imageDiffers(paint(), wholeReference(), k_converted)) << "the margin would be noticed";
        // Another frame like it.
        submitPart(makePlanes(Pattern::Ramp, part.width(), part.height(), ++nSeed), array);
        EXPECT_TRUE(shows(sizeName(part) + " of " + sizeName(whole) + " again"));
    }
    EXPECT_EQ(CoreLog::instance().errors().size(), 0U);
}

TEST_F(InteropPart, TheFrameMayGrowAndShrinkInTheSameTexture)
{
    open(QSize(96, 80));
    m_device = makeDevice();
    DecoderTextures array(m_device, QSize(96, 80));
    softd3d11::ResetCallCounts();
    uint32_t nSeed = 0;
    for (const QSize &part : {QSize(96, 64), QSize(96, 80), QSize(48, 80), QSize(96, 64)}) {
        submitPart(makePlanes(Pattern::Card, part.width(), part.height(), ++nSeed), array);
        EXPECT_TRUE(shows(sizeName(part)));
    }
    // The processor is made for the texture's size and not for the frame's.
    EXPECT_EQ(softd3d11::CallCount(Method::VideoDeviceCreateVideoProcessor), 1U);
    EXPECT_EQ(softd3d11::CallCount(Method::VideoDeviceCreateVideoProcessorOutputView), 4U);
    EXPECT_EQ(surfaces(), 1U);
}

TEST_F(InteropPart, TurnedAndZoomed)
{
    open(QSize(96, 64));
    m_device = makeDevice();
    DecoderTextures array(m_device, QSize(96, 80));
    submitPart(makePlanes(Pattern::Card, 96, 64), array);
    ASSERT_TRUE(shows());
    turnPicture(180, 0, 1);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
    turnPicture(0, 0, 0);
    zoom(0.25, 0.5, 0.75, 1.0);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_scaled));
}

// A frame without a texture keeps the texture of before and brings its own size, which reaches out of it.
class InteropBeyond : public InteropFailure
{
protected:
    int32_t sizeAlone(int nWidth, int nHeight)
    {
        VideoFrameDesc desc = m_vecArrays[0].frame(0);
        desc.pD3D11Texture = nullptr;
        desc.iWidth = nWidth;
        desc.iHeight = nHeight;
        return Xelt_ShowYuvFrame(handle(), &desc, sizeof desc);
    }
};

const std::string k_sRefused =
    "D3D11VP error@109. videoctx->VideoProcessorBlt(m_vp.Get(), m_outview.Get(), 0, 1, &stream): "
    "(0xffffffff80070057) " +
    systemText(E_INVALIDARG);

TEST_F(InteropBeyond, ALargerSizeAloneCannotBeConverted)
{
    for (const QSize &size : {QSize(128, 96), QSize(96, 66), QSize(98, 64)}) {
        ASSERT_EQ(frame(2), 0);
        ASSERT_TRUE(shows());
        CoreLog::instance().clear();
        EXPECT_EQ(sizeAlone(size.width(), size.height()), 0);
        // What was converted before shows once more; the conversion after it fails.
        EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
        EXPECT_TRUE(reportsAre({k_noProcess}));
        EXPECT_THAT(warnings(), ElementsAre(k_sRefused));
        EXPECT_EQ(surfaces(), 0U);
        EXPECT_TRUE(isBlack(paint())) << "the texture was dropped";
        EXPECT_EQ(sizeAlone(96, 64), 0) << "and a size alone does not bring it back";
        EXPECT_TRUE(isBlack(paint()));
        EXPECT_TRUE(isBlack(paint()));
        // The next frame shows.
        EXPECT_EQ(frame(4), 0);
        EXPECT_TRUE(shows("recovered"));
        EXPECT_TRUE(reportsAre({k_noProcess})) << "nothing more was said";
    }
}

TEST_F(InteropBeyond, TheNextFrameRightAfterItShows)
{
    ASSERT_EQ(frame(2), 0);
    ASSERT_TRUE(shows());
    EXPECT_EQ(sizeAlone(128, 96), 0);
    EXPECT_EQ(frame(4), 0); // before any paint
    EXPECT_TRUE(shows());
    EXPECT_TRUE(reportsAre({}));
    EXPECT_EQ(sizeAlone(128, 96), 0);
    paint();
    EXPECT_EQ(frame(6), rendererType() == 7 ? 0 : -1); // the failure is answered, and the frame stored
    EXPECT_TRUE(shows());
}

} // namespace
