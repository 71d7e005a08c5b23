// Pictures of Direct3D 11 frames, from the decoder's texture to the pane, against the reference.
#include "HardwarePane.h"

namespace {

using namespace xelttest;
using softd3d11::CallCount;
using softd3d11::Method;

class InteropPicture : public HardwarePane
{
};

TEST_F(InteropPicture, TheFirstPaintConvertsAndTheNextShows)
{
    open(QSize(320, 240));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 320, 240)), 0);
    const uint64_t nBefore = CallCount(Method::VideoContextVideoProcessorBlt);
    EXPECT_TRUE(isBlack(paint()));
    EXPECT_EQ(CallCount(Method::VideoContextVideoProcessorBlt), nBefore + 1);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
    // Every later paint converts again.
    EXPECT_EQ(CallCount(Method::VideoContextVideoProcessorBlt), nBefore + 2);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
    EXPECT_EQ(CallCount(Method::VideoContextVideoProcessorBlt), nBefore + 3);
}

TEST_F(InteropPicture, TheComparisonNoticesMistakes)
{
    open(QSize(160, 120));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 160, 120)), 0);
    ASSERT_TRUE(shows());
    Faults faults;
    faults.blSwapChroma = true;
    EXPECT_TRUE(imageDiffers(paint(), hardwareReference(faults), k_converted));
    faults = {};
    faults.blOtherMatrix = true;
    EXPECT_TRUE(imageDiffers(paint(), hardwareReference(faults), k_converted));
    faults = {};
    faults.dBlackLevel = 16.0 / 219;
    EXPECT_TRUE(imageDiffers(paint(), hardwareReference(faults), k_converted));
    faults = {};
    faults.dShiftX = 1.0;
    EXPECT_TRUE(imageDiffers(paint(), hardwareReference(faults), k_converted));
    faults = {};
    faults.dShiftY = 1.0;
    EXPECT_TRUE(imageDiffers(paint(), hardwareReference(faults), k_converted));
}

TEST_F(InteropPicture, EverySliceOfTheArray)
{
    open(QSize(96, 64));
    for (UINT nSlice = 0; nSlice < 16; ++nSlice) {
        textures(QSize(96, 64)).fill(nSlice, makePlanes(Pattern::Noise, 96, 64, 100 + nSlice));
    }
    for (const UINT nSlice : {0U, 15U, 1U, 14U, 2U, 13U, 3U, 12U, 4U, 11U, 5U, 10U, 6U, 9U, 7U, 8U}) {
        ASSERT_EQ(submitSlice(makePlanes(Pattern::Noise, 96, 64, 100 + nSlice), nSlice), 0);
        EXPECT_TRUE(shows("slice " + std::to_string(nSlice)));
    }
    EXPECT_EQ(softegl::CallCount(softegl::Call::CreatePbufferFromClientBuffer), 1U);
    EXPECT_EQ(softegl::CallCount(softegl::Call::BindTexImage), 1U);
    EXPECT_EQ(CallCount(Method::VideoDeviceCreateVideoProcessor), 1U);
}

TEST_F(InteropPicture, SizesThatChange)
{
    open(QSize(160, 120));
    uint32_t nSeed = 0;
    for (const QSize &size : {QSize(160, 120), QSize(320, 240), QSize(64, 120), QSize(160, 120),
                              QSize(160, 48), QSize(2, 2), QSize(322, 6), QSize(640, 480)}) {
        ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, size.width(), size.height(), ++nSeed)), 0);
        EXPECT_TRUE(shows(sizeName(size)));
        // The same size again shows through the same surface.
        const uint64_t nSurfaces = softegl::CallCount(softegl::Call::CreatePbufferFromClientBuffer);
        ASSERT_EQ(submitSlice(makePlanes(Pattern::Noise, size.width(), size.height(), ++nSeed)), 0);
        if (size.width() <= 160) { // finer noise than the pane is not sampled by either side alike
            EXPECT_TRUE(shows(sizeName(size) + " again"));
        }
        EXPECT_EQ(softegl::CallCount(softegl::Call::CreatePbufferFromClientBuffer), nSurfaces);
        EXPECT_EQ(surfaces(), 1U);
        EXPECT_EQ(softegl::BoundTextures(), 1U);
    }
}

TEST_F(InteropPicture, WhatTheDecoderWritesShowsAfterTwoPaints)
{
    open(QSize(96, 64));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Bars, 96, 64), 3), 0);
    ASSERT_TRUE(shows());
    const ReferenceImage before = hardwareReference();
    const Planes next = makePlanes(Pattern::Card, 96, 64, 5);
    textures(QSize(96, 64)).fill(3, next);
    EXPECT_TRUE(imageMatches(paint(), before, k_converted));
    expectSlice(next);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
}

TEST_F(InteropPicture, AFrameWithoutATextureKeepsThePicture)
{
    open(QSize(96, 64));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
    ASSERT_TRUE(shows());
    VideoFrameDesc desc = textures(QSize(96, 64)).frame(0);
    desc.pD3D11Texture = nullptr;
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), &desc, sizeof desc), 0);
    EXPECT_TRUE(shows());
}

TEST_F(InteropPicture, Zoomed)
{
    open(QSize(160, 120));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Bars, 160, 120)), 0);
    ASSERT_TRUE(shows());
    zoom(0.25, 0.125, 0.75, 0.875);
    // One paint is enough: the picture is there, only its place is new.
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_scaled));
    zoom(0.5, 0.5, 0.5, 0.75); // empty: everything
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_scaled));
    zoom(-0.5, -0.25, 1.5, 1.25); // smaller
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_scaled));
}

// At a hard edge a thirtieth of a pixel, which rasterisation may be off where the quad reaches far outside,
// makes eight levels; the mean stays what it is.
constexpr Tolerance k_placed{9.0, 0.35, 0.05};

TEST_F(InteropPicture, PlacedByRatioModeAndRectangle)
{
    open(QSize(160, 160));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Bars, 160, 90)), 0);
    ASSERT_TRUE(shows());
    ratioMode(0);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_placed));
    dstRect(16, 20, 120, 140);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_placed));
    zoom(0.1, 0.2, 0.8, 0.7);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_placed));
    ratioMode(1);
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_placed));
}

TEST_F(InteropPicture, TurnedAndMirrored)
{
    open(QSize(96, 64));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
    ASSERT_TRUE(shows());
    for (const int nAngle : {0, 90, 180, 270, 45}) {
        for (const int nDirection : {0, 1, 7}) {
            for (const int nMirror : {0, 1, 2, 3}) {
                turnPicture(nAngle, nDirection, nMirror);
                const std::string sName = "angle " + std::to_string(nAngle) + " direction " +
                                          std::to_string(nDirection) + " mirror " + std::to_string(nMirror);
                EXPECT_TRUE(
                    imageMatches(paint(), hardwareReference(), k_converted, QString::fromStdString(sName)));
            }
        }
    }
}

TEST_F(InteropPicture, AResizedPaneShowsTheWholePicture)
{
    open(QSize(160, 120));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 160, 120)), 0);
    ASSERT_TRUE(shows());
    for (const QSize &size : {QSize(200, 90), QSize(80, 150), QSize(160, 120)}) {
        ASSERT_TRUE(window().resizePane(handle(), size));
        m_view.widgetSize = size;
        EXPECT_TRUE(
            imageMatches(paint(), hardwareReference(), k_converted, QString::fromStdString(sizeName(size))));
    }
}

} // namespace
