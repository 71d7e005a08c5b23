// What a submission leaves in the frame buffer, byte for byte. Host memory is as large as what may be read.
#include "GuardedBytes.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace {

using namespace xelttest;

using Bytes = std::vector<uint8_t>;

size_t size(int nValue)
{
    return static_cast<size_t>(nValue);
}

// Memory of exactly this many bytes, no two neighbours alike.
GuardedBytes hostBytes(size_t nSize, uint8_t nStart)
{
    GuardedBytes bytes(nSize);
    for (size_t i = 0; i < nSize; ++i) {
        bytes[i] = static_cast<uint8_t>(nStart + i * 7 + i / 251);
    }
    return bytes;
}

Bytes rows(const GuardedBytes &source, size_t nOffset, int nPitch, int nWidth, int nRows)
{
    Bytes aRows;
    for (int i = 0; i < nRows; ++i) {
        const uint8_t *pRow = source.data() + nOffset + size(i) * size(nPitch);
        aRows.insert(aRows.end(), pRow, pRow + nWidth);
    }
    return aRows;
}

class SubmissionCopy : public testing::Test
{
protected:
    int32_t show(const VideoFrameDesc &desc) { return m_yuv.ShowYuvFrame(&desc, sizeof desc); }
    Bytes buffer() const { return {m_yuv.m_pFrameBuffer, m_yuv.m_pFrameBuffer + m_yuv.FrameBufferBytes()}; }
    static VideoFrameDesc frameOf(int32_t nType, int32_t nWidth, int32_t nHeight, int32_t nPitch = 0)
    {
        VideoFrameDesc desc{};
        desc.nDisplayType = nType;
        desc.iWidth = nWidth;
        desc.iHeight = nHeight;
        desc.nPitch = nPitch;
        return desc;
    }
    // The buffer's length from what the frame copies, zero behind it.
    void expectBuffer(Bytes aExpected) const
    {
        aExpected.resize(m_yuv.FrameBufferBytes(), 0);
        EXPECT_TRUE(buffer() == aExpected);
    }

    OpenYuv m_yuv;
};

struct Nv12Case
{
    int nWidth;
    int nHeight;
    int nPitch;
};

const Nv12Case k_aNv12Cases[] = {
    {8, 6, 0},  {8, 6, 8},  {8, 6, 11},   {8, 6, 72},      {8, 16, 8},         {8, 16, 9},
    {8, 17, 8}, {7, 5, 0},  {7, 5, 7},    {5, 7, 8},       {1, 1, 0},          {1, 1, 1},
    {2, 2, 2},  {3, 3, 67}, {64, 48, 64}, {641, 479, 704}, {1920, 1080, 2048}, {1920, 1088, 1920}};

TEST_F(SubmissionCopy, Nv12FromPlanes)
{
    for (const Nv12Case &testCase : k_aNv12Cases) {
        const int nWidth = testCase.nWidth;
        const int nHeight = testCase.nHeight;
        const int nPitch = testCase.nPitch;
        SCOPED_TRACE(testing::Message() << nWidth << "x" << nHeight << " pitch " << nPitch);
        const bool blPacked = nPitch == 0 || (nPitch == nWidth && nHeight % 16 == 0);
        const int nStep = nPitch == 0 ? nWidth : nPitch;
        const size_t nLuma = size(nWidth) * size(nHeight);
        const size_t nChroma = blPacked ? nLuma / 2 : size(nWidth) * size(nHeight / 2);
        // The last row ends at the guard page.
        const auto readable = [&](int nRows) {
            return nRows == 0 ? 0 : size(nStep) * size(nRows - 1) + size(nWidth);
        };
        const GuardedBytes luma = hostBytes(blPacked ? nLuma : readable(nHeight), 3);
        const GuardedBytes chroma = hostBytes(blPacked ? nLuma / 2 : readable(nHeight / 2), 101);
        VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, nWidth, nHeight, nPitch);
        desc.pPlaneY = luma.data();
        desc.pPlaneUV = chroma.data();
        // With both planes this one is not looked at.
        const GuardedBytes forbidden(0);
        desc.pFrameData = forbidden.data();
        EXPECT_EQ(show(desc), 0);
        Bytes aExpected =
            blPacked ? Bytes(luma.data(), luma.data() + nLuma) : rows(luma, 0, nPitch, nWidth, nHeight);
        const Bytes aChroma = blPacked ? Bytes(chroma.data(), chroma.data() + nChroma)
                                       : rows(chroma, 0, nPitch, nWidth, nHeight / 2);
        aExpected.insert(aExpected.end(), aChroma.begin(), aChroma.end());
        EXPECT_EQ(m_yuv.FrameBufferBytes(), nLuma * 3 / 2);
        expectBuffer(aExpected);
        EXPECT_EQ(m_yuv.m_pPlaneY, m_yuv.m_pFrameBuffer);
        EXPECT_EQ(m_yuv.m_pPlaneUV, m_yuv.m_pFrameBuffer + nLuma);
        m_yuv.UnInit();
    }
}

TEST_F(SubmissionCopy, Nv12FromOneBlock)
{
    for (const Nv12Case &testCase : k_aNv12Cases) {
        const int nWidth = testCase.nWidth;
        const int nHeight = testCase.nHeight;
        const int nPitch = testCase.nPitch;
        SCOPED_TRACE(testing::Message() << nWidth << "x" << nHeight << " pitch " << nPitch);
        const bool blPacked = nPitch == 0 || (nPitch == nWidth && nHeight % 16 == 0);
        const size_t nLuma = size(nWidth) * size(nHeight);
        const size_t nPadded = size(nPitch) * size((nHeight + 15) / 16 * 16); // where the chroma begins
        const size_t nLastRow = nHeight / 2 > 0
                                    ? nPadded + size(nPitch) * size(nHeight / 2 - 1) + size(nWidth)
                                    : size(nPitch) * size(nHeight - 1) + size(nWidth);
        const GuardedBytes block = hostBytes(blPacked ? nLuma * 3 / 2 : nLastRow, 55);
        VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, nWidth, nHeight, nPitch);
        desc.pFrameData = block.data();
        EXPECT_EQ(show(desc), 0);
        Bytes aExpected;
        if (blPacked) {
            aExpected.assign(block.data(), block.data() + nLuma * 3 / 2);
        } else {
            aExpected = rows(block, 0, nPitch, nWidth, nHeight);
            const Bytes aChroma = rows(block, nPadded, nPitch, nWidth, nHeight / 2);
            aExpected.insert(aExpected.end(), aChroma.begin(), aChroma.end());
        }
        expectBuffer(aExpected);
        m_yuv.UnInit();
    }
}

TEST_F(SubmissionCopy, Nv12WithOnePlaneOnlyTakesTheBlock)
{
    const GuardedBytes block = hostBytes(72, 9);
    const GuardedBytes forbidden(0);
    for (const bool blLuma : {true, false}) {
        VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, 8, 6);
        desc.pFrameData = block.data();
        (blLuma ? desc.pPlaneY : desc.pPlaneUV) = forbidden.data();
        EXPECT_EQ(show(desc), 0);
        expectBuffer(Bytes(block.data(), block.data() + 72));
        m_yuv.UnInit();
    }
}

TEST_F(SubmissionCopy, Nv12IgnoresTheDeclaredLengthForItsCopy)
{
    const GuardedBytes block = hostBytes(72, 9);
    VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, 8, 6);
    desc.pFrameData = block.data();
    desc.nDataLen = 100;
    m_yuv.m_bExplicitLength = true;
    EXPECT_EQ(show(desc), 0);
    EXPECT_EQ(m_yuv.FrameBufferBytes(), 100U);
    EXPECT_EQ(m_yuv.m_nFrameBufferSize, 100);
    EXPECT_FALSE(m_yuv.m_bExplicitLength);
    expectBuffer(Bytes(block.data(), block.data() + 72));
}

TEST_F(SubmissionCopy, Nv12InADeclaredBufferThatIsTooSmallIsCut)
{
    const GuardedBytes luma = hostBytes(48, 9);
    const GuardedBytes chroma = hostBytes(24, 77);
    for (const int32_t nLength : {1, 7, 8, 47, 48, 49, 60, 71}) {
        for (const int32_t nPitch : {0, 8}) {
            SCOPED_TRACE(testing::Message() << nLength << " pitch " << nPitch);
            VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, 8, 6, nPitch);
            desc.pPlaneY = luma.data();
            desc.pPlaneUV = chroma.data();
            desc.nDataLen = nLength;
            EXPECT_EQ(show(desc), 0);
            Bytes aExpected(luma.data(), luma.data() + 48);
            aExpected.insert(aExpected.end(), chroma.data(), chroma.data() + 24);
            ASSERT_EQ(m_yuv.FrameBufferBytes(), size(nLength));
            expectBuffer(aExpected);
            m_yuv.UnInit();
        }
    }
}

TEST_F(SubmissionCopy, NegativePitchCopiesNothing)
{
    const GuardedBytes block = hostBytes(72, 9);
    for (const int32_t nPitch : {-1, -8, INT32_MIN}) {
        VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, 8, 6, nPitch);
        desc.pFrameData = block.data();
        desc.pPlaneY = block.data();
        desc.pPlaneUV = block.data();
        EXPECT_EQ(show(desc), 0);
        expectBuffer({});
    }
}

TEST_F(SubmissionCopy, PlanarTypesCopyWidthTimesHeightTimesThreeHalves)
{
    for (const int32_t nType : {0, 1, 2, 4, 5, 7, 8, 9, -2}) {
        for (const auto &[nWidth, nHeight] : {std::pair(8, 6), std::pair(7, 5), std::pair(1, 1)}) {
            SCOPED_TRACE(testing::Message() << nType << ": " << nWidth << "x" << nHeight);
            const size_t nBytes = size(nWidth) * size(nHeight) * 3 / 2;
            const GuardedBytes block = hostBytes(nBytes, static_cast<uint8_t>(nType));
            VideoFrameDesc desc = frameOf(nType, nWidth, nHeight);
            desc.pFrameData = block.data();
            // Neither planes nor pitch count for these types.
            const GuardedBytes forbidden(0);
            desc.pPlaneY = forbidden.data();
            desc.pPlaneUV = forbidden.data();
            desc.nPitch = 1000;
            m_yuv.m_bExplicitLength = true;
            EXPECT_EQ(show(desc), 0);
            EXPECT_EQ(m_yuv.FrameBufferBytes(), nBytes);
            EXPECT_FALSE(m_yuv.m_bExplicitLength);
            expectBuffer(Bytes(block.data(), block.data() + nBytes));
            m_yuv.UnInit();
        }
    }
}

TEST_F(SubmissionCopy, PlanarCopiesTheDeclaredLength)
{
    for (const int32_t nLength : {1, 48, 71, 72, 73, 200, 4096}) {
        SCOPED_TRACE(nLength);
        const GuardedBytes block = hostBytes(size(nLength), 21);
        VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_YV12, 8, 6);
        desc.pFrameData = block.data();
        desc.nDataLen = nLength;
        EXPECT_EQ(show(desc), 0);
        EXPECT_TRUE(m_yuv.m_bExplicitLength);
        EXPECT_EQ(m_yuv.m_nFrameBufferSize, nLength);
        EXPECT_EQ(m_yuv.FrameBufferBytes(), size(nLength));
        EXPECT_TRUE(buffer() == Bytes(block.data(), block.data() + nLength));
    }
}

TEST_F(SubmissionCopy, AShortBufferGrowsForAFrameWithoutLength)
{
    const GuardedBytes block = hostBytes(72, 21);
    VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_YV12, 8, 6);
    desc.pFrameData = block.data();
    desc.nDataLen = 30;
    EXPECT_EQ(show(desc), 0);
    desc.nDataLen = 0;
    desc.pFrameData = nullptr; // nothing to copy, nothing to grow for
    EXPECT_EQ(show(desc), 0);
    EXPECT_EQ(m_yuv.FrameBufferBytes(), 30U);
    EXPECT_TRUE(buffer() == Bytes(block.data(), block.data() + 30));
    desc.pFrameData = block.data();
    EXPECT_EQ(show(desc), 0);
    EXPECT_FALSE(m_yuv.m_bExplicitLength);
    EXPECT_TRUE(buffer() == Bytes(block.data(), block.data() + 72));
    desc.nDataLen = 30;
    EXPECT_EQ(show(desc), 0);
    EXPECT_EQ(m_yuv.FrameBufferBytes(), 30U) << "a length that is declared counts";
}

TEST_F(SubmissionCopy, WithoutPlanesTheOldPictureStaysAndIsRepainted)
{
    const GuardedBytes block = hostBytes(72, 21);
    VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_YV12, 8, 6);
    desc.pFrameData = block.data();
    EXPECT_EQ(show(desc), 0);
    int nUpdates = 0;
    const QObject context; // ends the connection with this test
    QObject::connect(&m_yuv, &CLS_ShaderYuv::signalUpdate, &context, [&nUpdates] { ++nUpdates; });
    m_yuv.m_bExplicitLength = true;
    desc.pFrameData = nullptr;
    EXPECT_EQ(show(desc), 0);
    EXPECT_TRUE(m_yuv.m_bExplicitLength); // nothing was copied
    desc.nDisplayType = VIDEO_DISPLAY_NV12;
    EXPECT_EQ(show(desc), 0);
    EXPECT_EQ(nUpdates, 2);
    expectBuffer(Bytes(block.data(), block.data() + 72));
}

TEST_F(SubmissionCopy, HugePitchesAndPicturesStayInsideTheBuffer)
{
    // Only what the buffer of 16 bytes has room for is read.
    const GuardedBytes luma = hostBytes(16, 21);
    VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, INT32_MAX, INT32_MAX, INT32_MAX);
    desc.pPlaneY = luma.data();
    desc.pPlaneUV = luma.data();
    desc.nDataLen = 16;
    EXPECT_EQ(show(desc), 0);
    EXPECT_TRUE(buffer() == Bytes(luma.data(), luma.data() + 16));
    m_yuv.UnInit();
    desc.nDisplayType = VIDEO_DISPLAY_YV12;
    desc.pFrameData = luma.data();
    EXPECT_EQ(show(desc), 0);
    EXPECT_TRUE(buffer() == Bytes(luma.data(), luma.data() + 16));
}

} // namespace
