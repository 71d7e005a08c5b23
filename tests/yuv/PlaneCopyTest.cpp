// Copies write exactly what the target has room for and read exactly what the descriptor promises.
#include "yuv/PlaneCopy.h"

#include "Frames.h"
#include "Reference.h"

#include <gtest/gtest.h>

#include <numeric>

namespace xelttest {
namespace {

// A frame buffer of a chosen size, and what is remembered of the frame in it.
struct Buffer
{
    explicit Buffer(size_t nSize) : block(nSize) {}

    void store(const HostFrame &frame)
    {
        const yuv::FrameTarget target{block.data(), block.size(), frame.desc.iWidth, frame.desc.iHeight};
        yuv::StoreFrame(frame.desc, target, {pPlaneY, pPlaneUV, blExplicitLength});
    }
    std::vector<uint8_t> bytes() const { return {block.data(), block.data() + block.size()}; }

    GuardedBytes block;
    uint8_t *pPlaneY = nullptr;
    uint8_t *pPlaneUV = nullptr;
    bool blExplicitLength = false;
};

std::vector<uint8_t> expectedBytes(HostFrame &frame, size_t nSize)
{
    const int32_t nLength = frame.desc.nDataLen;
    frame.desc.nDataLen = static_cast<int32_t>(nSize); // makes the model's buffer as large as the target
    const BufferModel model = bufferModel(frame.desc);
    frame.desc.nDataLen = nLength;
    return model.aBytes;
}

using SizeAndPitch = std::tuple<std::pair<int, int>, int, bool>;

class Nv12CopyTest : public ::testing::TestWithParam<SizeAndPitch>
{
};

TEST_P(Nv12CopyTest, FillsTheBufferAsFarAsItGoes)
{
    const auto &[size, nExtraPitch, blPlanes] = GetParam();
    const int nPitch = nExtraPitch < 0 ? 0 : size.first + nExtraPitch;
    HostFrame frame = nv12Frame(makePlanes(Pattern::Noise, size.first, size.second), {nPitch, blPlanes});
    const auto nLuma = static_cast<size_t>(size.first) * static_cast<size_t>(size.second);
    for (const size_t nSize : {nLuma * 3 / 2, nLuma * 3 / 2 + 100, nLuma, nLuma - 1, nLuma + 1, size_t(1)}) {
        if (nSize == 0) {
            continue;
        }
        Buffer buffer(nSize);
        buffer.blExplicitLength = true;
        buffer.store(frame);
        EXPECT_EQ(buffer.bytes(), expectedBytes(frame, nSize)) << nSize;
        EXPECT_EQ(buffer.pPlaneY, buffer.block.data());
        EXPECT_EQ(buffer.pPlaneUV, nSize >= nLuma ? buffer.block.data() + nLuma : nullptr);
        EXPECT_FALSE(buffer.blExplicitLength);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, Nv12CopyTest,
    ::testing::Combine(::testing::Values(std::pair(1, 1), std::pair(2, 2), std::pair(3, 3), std::pair(5, 7),
                                         std::pair(64, 64), std::pair(33, 18), std::pair(16, 17)),
                       ::testing::Values(-1, 0, 1, 3, 64), ::testing::Bool()));

TEST(PlanarCopyTest, CopiesTheWholePictureOrTheDeclaredLength)
{
    HostFrame frame = yv12Frame(makePlanes(Pattern::Noise, 6, 4));
    Buffer whole(36);
    whole.blExplicitLength = true;
    whole.store(frame);
    EXPECT_FALSE(whole.blExplicitLength);
    EXPECT_EQ(whole.bytes(), std::vector<uint8_t>(frame.desc.pFrameData, frame.desc.pFrameData + 36));
    EXPECT_EQ(whole.pPlaneY, nullptr) << "these belong to the other format";

    frame.desc.nDataLen = 10;
    Buffer part(36);
    part.store(frame);
    EXPECT_TRUE(part.blExplicitLength);
    std::vector<uint8_t> expected(frame.desc.pFrameData, frame.desc.pFrameData + 10);
    expected.resize(36);
    EXPECT_EQ(part.bytes(), expected);
}

TEST(PlanarCopyTest, WritesNoMoreThanTheBufferHolds)
{
    const HostFrame frame = yv12Frame(makePlanes(Pattern::Noise, 6, 4));
    Buffer buffer(20);
    buffer.store(frame);
    EXPECT_EQ(buffer.bytes(), std::vector<uint8_t>(frame.desc.pFrameData, frame.desc.pFrameData + 20));
}

TEST(PlanarCopyTest, WithoutPixelsNothingChanges)
{
    HostFrame frame = yv12Frame(makePlanes(Pattern::Noise, 6, 4));
    frame.desc.pFrameData = nullptr;
    frame.desc.nDataLen = 10;
    for (const bool blExplicit : {false, true}) {
        Buffer buffer(36);
        buffer.blExplicitLength = blExplicit;
        buffer.store(frame);
        EXPECT_EQ(buffer.blExplicitLength, blExplicit);
        EXPECT_EQ(buffer.bytes(), std::vector<uint8_t>(36, 0));
    }
}

} // namespace
} // namespace xelttest
