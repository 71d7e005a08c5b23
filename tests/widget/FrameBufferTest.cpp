// The frame buffer: how large it is, what it holds, and what happens when it cannot be had.
#include "FailingCalloc.h"
#include "OpenRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

struct Size
{
    int32_t nWidth;
    int32_t nHeight;
    int32_t nSize;
    size_t nBytes;
};

class FrameBuffer : public testing::Test
{
protected:
    void expectStored(int32_t nWidth, int32_t nHeight, int32_t nSize) const
    {
        EXPECT_EQ(m_base.m_nVideoWidth, nWidth);
        EXPECT_EQ(m_base.m_nVideoHeight, nHeight);
        EXPECT_EQ(m_base.m_nFrameBufferSize, nSize);
    }

    OpenBase m_base;
};

TEST_F(FrameBuffer, HasTheSizeAskedForAndIsZeroed)
{
    const Size aSizes[] = {
        {1920, 1080, 0, 3110400},
        {1920, 1080, 5000000, 5000000},
        {1920, 1080, -1, 3110400},
        {1920, 1080, 1, 1},
        {1, 1, 0, 1},
        {3, 3, 0, 13},
        {5, 7, 0, 52},
        {641, 479, INT32_MIN, 460558},
        {7, 1, 0, 10},
    };
    for (const Size &size : aSizes) {
        SCOPED_TRACE(testing::Message() << size.nWidth << "x" << size.nHeight << ", " << size.nSize);
        EXPECT_EQ(m_base.InitFrameBuffer(size.nWidth, size.nHeight, size.nSize), 0);
        expectStored(size.nWidth, size.nHeight, size.nSize);
        ASSERT_NE(m_base.m_pFrameBuffer, nullptr);
        ASSERT_EQ(m_base.FrameBufferBytes(), size.nBytes);
        uint8_t *pEnd = m_base.m_pFrameBuffer + size.nBytes;
        EXPECT_TRUE(std::all_of(m_base.m_pFrameBuffer, pEnd, [](uint8_t n) { return n == 0; }));
        std::fill(m_base.m_pFrameBuffer, pEnd, uint8_t{0xAB}); // the next one must be zero again
    }
}

TEST_F(FrameBuffer, WithoutWidthOrHeightNothingChanges)
{
    ASSERT_EQ(m_base.InitFrameBuffer(8, 6, 100), 0);
    uint8_t *pBuffer = m_base.m_pFrameBuffer;
    pBuffer[0] = 42;
    for (const auto &[nWidth, nHeight] :
         {std::pair(0, 6), std::pair(8, 0), std::pair(-1, 6), std::pair(8, INT32_MIN), std::pair(0, 0)}) {
        EXPECT_EQ(m_base.InitFrameBuffer(nWidth, nHeight, 50), -1);
        EXPECT_EQ(m_base.m_pFrameBuffer, pBuffer);
        EXPECT_EQ(pBuffer[0], 42);
        EXPECT_EQ(m_base.FrameBufferBytes(), 100U);
        expectStored(8, 6, 100);
    }
}

TEST_F(FrameBuffer, SizeThatDoesNotFitIsAFailedAllocation)
{
    ASSERT_EQ(m_base.InitFrameBuffer(8, 6, 0), 0);
    // Products that leave 32 bits, among them those that would wrap to a small or a positive size.
    for (const auto &[nWidth, nHeight] :
         {std::pair(46341, 46341), std::pair(65536, 65536), std::pair(65536, 43691), std::pair(1, INT32_MAX),
          std::pair(INT32_MAX, INT32_MAX), std::pair(37838, 37838), std::pair(INT32_MAX / 3 + 1, 1)}) {
        SCOPED_TRACE(testing::Message() << nWidth << "x" << nHeight);
        EXPECT_EQ(m_base.InitFrameBuffer(nWidth, nHeight, 0), -1);
        EXPECT_EQ(m_base.m_pFrameBuffer, nullptr);
        EXPECT_EQ(m_base.FrameBufferBytes(), 0U);
        expectStored(nWidth, nHeight, 0);
    }
}

TEST_F(FrameBuffer, HugePictureInADeclaredBufferHasThatBuffer)
{
    EXPECT_EQ(m_base.InitFrameBuffer(INT32_MAX, INT32_MAX, 16), 0);
    EXPECT_EQ(m_base.FrameBufferBytes(), 16U);
    ASSERT_NE(m_base.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_base.m_pFrameBuffer[15], 0);
}

TEST_F(FrameBuffer, FailedAllocationStoresTheSizesAndDropsTheOldBuffer)
{
    ASSERT_EQ(m_base.InitFrameBuffer(8, 6, 0), 0);
    m_base.m_pPlaneY = m_base.m_pFrameBuffer;
    {
        const FailingCalloc failing;
        EXPECT_EQ(m_base.InitFrameBuffer(64, 48, 7000), -1);
        EXPECT_EQ(failing.failures(), 1);
    }
    EXPECT_EQ(m_base.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_base.m_pPlaneY, nullptr);
    EXPECT_EQ(m_base.FrameBufferBytes(), 0U);
    expectStored(64, 48, 7000);
    EXPECT_EQ(m_base.InitFrameBuffer(64, 48, 7000), 0);
    EXPECT_EQ(m_base.FrameBufferBytes(), 7000U);
}

} // namespace
