#include "FramePacker.h"

#include <gtest/gtest.h>

namespace {

// A picture whose samples tell plane, row and column.
int sample(int nPlane, int x, int y)
{
    return 16 + (nPlane * 70 + y * 7 + x) % 200;
}

ffmpeg::Ptr<AVFrame> picture(int nWidth, int nHeight)
{
    ffmpeg::Ptr<AVFrame> frame(av_frame_alloc());
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = nWidth;
    frame->height = nHeight;
    EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    for (int i = 0; i < 3; ++i) {
        const int nColumns = i == 0 ? nWidth : (nWidth + 1) / 2;
        const int nRows = i == 0 ? nHeight : (nHeight + 1) / 2;
        for (int y = 0; y < nRows; ++y) {
            for (int x = 0; x < nColumns; ++x) {
                frame->data[i][y * frame->linesize[i] + x] = static_cast<uint8_t>(sample(i, x, y));
            }
        }
    }
    return frame;
}

void expectPlane(const uint8_t *pPlane, int nPitch, int nStep, int nPlane, int nWidth, int nHeight)
{
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            ASSERT_EQ(pPlane[y * nPitch + x * nStep], sample(nPlane, x, y))
                << "plane " << nPlane << " at " << x << ',' << y;
        }
    }
}

struct Size
{
    int nWidth;
    int nHeight;
    int nPackedWidth;
    int nPackedHeight;
};

const Size kYv12Sizes[] = {{64, 48, 64, 48}, {66, 50, 66, 50}, {67, 51, 66, 50}, {2, 2, 2, 2}, {3, 3, 2, 2}};
const Size kNv12Sizes[] = {{64, 48, 64, 48}, {65, 48, 64, 48}, {66, 50, 64, 50}, {67, 51, 64, 50},
                           {68, 52, 68, 52}, {5, 5, 4, 4},     {4, 2, 4, 2},     {7, 3, 4, 2}};

} // namespace

TEST(FramePacker, yv12)
{
    for (const Size &size : kYv12Sizes) {
        SCOPED_TRACE(testing::Message() << size.nWidth << 'x' << size.nHeight);
        FramePacker packer(FrameLayout::Yv12);
        const auto frame = picture(size.nWidth, size.nHeight);
        const VideoFrameDesc *pDesc = packer.pack(*frame);
        ASSERT_NE(pDesc, nullptr);
        const int nWidth = size.nPackedWidth;
        const int nHeight = size.nPackedHeight;
        EXPECT_EQ(pDesc->nDisplayType, VIDEO_DISPLAY_YV12);
        EXPECT_EQ(pDesc->iWidth, nWidth);
        EXPECT_EQ(pDesc->iHeight, nHeight);
        EXPECT_EQ(pDesc->nDataLen, 0);
        const uint8_t *pLuma = pDesc->pFrameData;
        const uint8_t *pChroma = pLuma + nWidth * nHeight;
        expectPlane(pLuma, nWidth, 1, 0, nWidth, nHeight);
        expectPlane(pChroma, nWidth / 2, 1, 1, nWidth / 2, nHeight / 2);
        expectPlane(pChroma + nWidth * nHeight / 4, nWidth / 2, 1, 2, nWidth / 2, nHeight / 2);
    }
}

TEST(FramePacker, nv12Packed)
{
    for (const Size &size : kNv12Sizes) {
        SCOPED_TRACE(testing::Message() << size.nWidth << 'x' << size.nHeight);
        FramePacker packer(FrameLayout::Nv12);
        const auto frame = picture(size.nWidth, size.nHeight);
        const VideoFrameDesc *pDesc = packer.pack(*frame);
        ASSERT_NE(pDesc, nullptr);
        const int nWidth = size.nPackedWidth;
        const int nHeight = size.nPackedHeight;
        EXPECT_EQ(pDesc->nDisplayType, VIDEO_DISPLAY_NV12);
        EXPECT_EQ(pDesc->iWidth, nWidth);
        EXPECT_EQ(pDesc->iHeight, nHeight);
        EXPECT_EQ(pDesc->nPitch, 0);
        EXPECT_EQ(pDesc->nDataLen, 0);
        EXPECT_EQ(pDesc->pFrameData, nullptr);
        expectPlane(pDesc->pPlaneY, nWidth, 1, 0, nWidth, nHeight);
        expectPlane(pDesc->pPlaneUV, nWidth, 2, 1, nWidth / 2, nHeight / 2);
        expectPlane(pDesc->pPlaneUV + 1, nWidth, 2, 2, nWidth / 2, nHeight / 2);
    }
}

TEST(FramePacker, nv12Padded)
{
    for (const Size &size : kNv12Sizes) {
        SCOPED_TRACE(testing::Message() << size.nWidth << 'x' << size.nHeight);
        FramePacker packer(FrameLayout::Nv12Padded);
        const auto frame = picture(size.nWidth, size.nHeight);
        const VideoFrameDesc *pDesc = packer.pack(*frame);
        ASSERT_NE(pDesc, nullptr);
        const int nWidth = size.nPackedWidth;
        const int nHeight = size.nPackedHeight;
        EXPECT_EQ(pDesc->iWidth, nWidth);
        EXPECT_EQ(pDesc->iHeight, nHeight);
        EXPECT_EQ(pDesc->nDataLen, 0);
        EXPECT_EQ(pDesc->pPlaneY, nullptr);
        EXPECT_EQ(pDesc->pPlaneUV, nullptr);
        EXPECT_GT(pDesc->nPitch, nWidth);
        EXPECT_EQ(pDesc->nPitch % 64, 0);
        const uint8_t *pChroma = pDesc->pFrameData + pDesc->nPitch * ((nHeight + 15) / 16 * 16);
        expectPlane(pDesc->pFrameData, pDesc->nPitch, 1, 0, nWidth, nHeight);
        expectPlane(pChroma, pDesc->nPitch, 2, 1, nWidth / 2, nHeight / 2);
        expectPlane(pChroma + 1, pDesc->nPitch, 2, 2, nWidth / 2, nHeight / 2);
    }
}

// White of the full range is 255, of the range that the renderer takes 235.
TEST(FramePacker, fullRangeIsBroughtToLimitedRange)
{
    for (const FrameLayout layout : {FrameLayout::Yv12, FrameLayout::Nv12}) {
        auto frame = picture(64, 48);
        frame->color_range = AVCOL_RANGE_JPEG;
        std::fill_n(frame->data[0], frame->linesize[0] * 48, uint8_t{255});
        FramePacker packer(layout);
        const VideoFrameDesc *pDesc = packer.pack(*frame);
        ASSERT_NE(pDesc, nullptr);
        const uint8_t *pLuma = layout == FrameLayout::Yv12 ? pDesc->pFrameData : pDesc->pPlaneY;
        EXPECT_NEAR(pLuma[64 * 20 + 20], 235, 1);
    }
}

TEST(FramePacker, sizeMayChange)
{
    FramePacker packer(FrameLayout::Nv12);
    for (const int nWidth : {64, 128, 32}) {
        const auto frame = picture(nWidth, 48);
        const VideoFrameDesc *pDesc = packer.pack(*frame);
        ASSERT_NE(pDesc, nullptr);
        EXPECT_EQ(pDesc->iWidth, nWidth);
        expectPlane(pDesc->pPlaneY, nWidth, 1, 0, nWidth, 48);
    }
}

TEST(FramePacker, singlePixel)
{
    FramePacker packer(FrameLayout::Yv12);
    const auto frame = picture(1, 1);
    const VideoFrameDesc *pDesc = packer.pack(*frame);
    ASSERT_NE(pDesc, nullptr);
    EXPECT_EQ(pDesc->iWidth, 2);
    EXPECT_EQ(pDesc->iHeight, 2);
    EXPECT_NEAR(pDesc->pFrameData[0], sample(0, 0, 0), 1);
    EXPECT_NEAR(pDesc->pFrameData[3], sample(0, 0, 0), 1);
}

// Rows of NV12 have four bytes at least; a narrower picture is widened to them.
TEST(FramePacker, nv12OfNarrowPictures)
{
    for (const FrameLayout layout : {FrameLayout::Nv12, FrameLayout::Nv12Padded}) {
        for (const int nWidth : {1, 2, 3}) {
            SCOPED_TRACE(nWidth);
            FramePacker packer(layout);
            const auto frame = picture(nWidth, 4);
            const VideoFrameDesc *pDesc = packer.pack(*frame);
            ASSERT_NE(pDesc, nullptr);
            EXPECT_EQ(pDesc->iWidth, 4);
            EXPECT_EQ(pDesc->iHeight, 4);
            const bool blPadded = layout == FrameLayout::Nv12Padded;
            const uint8_t *pLuma = blPadded ? pDesc->pFrameData : pDesc->pPlaneY;
            const int nPitch = blPadded ? pDesc->nPitch : 4;
            for (int y = 0; y < 4; ++y) {
                EXPECT_NEAR(pLuma[y * nPitch], sample(0, 0, y), 1);
                EXPECT_NEAR(pLuma[y * nPitch + 3], sample(0, nWidth - 1, y), 1);
            }
        }
    }
}
