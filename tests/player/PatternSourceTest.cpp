#include "PatternSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr FrameLayout kLayouts[] = {FrameLayout::Yv12, FrameLayout::Nv12, FrameLayout::Nv12Padded,
                                    FrameLayout::Texture};

// One component's samples, row by row without padding, as the frame itself says where they lie.
std::vector<int> samples(const VideoFrameDesc &frame, int nComponent)
{
    const bool blYv12 = frame.nDisplayType == VIDEO_DISPLAY_YV12;
    const int nPitch = frame.nPitch != 0 ? frame.nPitch : frame.iWidth;
    const uint8_t *pLuma = frame.pPlaneY != nullptr ? frame.pPlaneY : frame.pFrameData;
    const int nRows = frame.nPitch != 0 ? (frame.iHeight + 15) / 16 * 16 : frame.iHeight;
    const uint8_t *pChroma = frame.pPlaneUV != nullptr ? frame.pPlaneUV : pLuma + nPitch * nRows;
    const int nWidth = nComponent == 0 ? frame.iWidth : frame.iWidth / 2;
    const int nHeight = nComponent == 0 ? frame.iHeight : frame.iHeight / 2;
    std::vector<int> result;
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            if (nComponent == 0) {
                result.push_back(pLuma[y * nPitch + x]);
            } else if (blYv12) {
                result.push_back(pChroma[(nComponent - 1) * nWidth * nHeight + y * nWidth + x]);
            } else {
                result.push_back(pChroma[y * nPitch + 2 * x + nComponent - 1]);
            }
        }
    }
    return result;
}

using Picture = std::vector<std::vector<int>>;

Picture picture(PatternSource &source)
{
    const VideoFrameDesc *pFrame = source.frame();
    return {samples(*pFrame, 0), samples(*pFrame, 1), samples(*pFrame, 2)};
}

// The picture of that number, from a source of its own.
Picture pictureOf(int nNumber, const QSize &size, FrameLayout layout = FrameLayout::Yv12)
{
    PatternSource source({size, 25.0}, layout);
    EXPECT_TRUE(source.open());
    for (int i = 0; i <= nNumber; ++i) {
        EXPECT_EQ(source.next(), VideoSource::Step::Frame);
    }
    return picture(source);
}

void expectColor(const Picture &picture, int nWidth, int x, int y, const YuvColor &color)
{
    const auto at = [](int nColumns, int nColumn, int nRow) {
        return static_cast<std::size_t>(nRow * nColumns + nColumn);
    };
    EXPECT_EQ(picture[0].at(at(nWidth, x, y)), color.nY) << x << ',' << y;
    EXPECT_EQ(picture[1].at(at(nWidth / 2, x / 2, y / 2)), color.nU) << x << ',' << y;
    EXPECT_EQ(picture[2].at(at(nWidth / 2, x / 2, y / 2)), color.nV) << x << ',' << y;
}

} // namespace

TEST(PatternSource, pictureFollowsFromItsNumber)
{
    const QSize size(320, 240);
    EXPECT_EQ(pictureOf(7, size), pictureOf(7, size));
    for (int i = 0; i < 40; ++i) {
        EXPECT_NE(pictureOf(i, size), pictureOf(i + 1, size)) << i;
    }
}

TEST(PatternSource, opensAtTheBeginning)
{
    PatternSource source({QSize(64, 48), 25.0}, FrameLayout::Nv12);
    for (int nPass = 0; nPass < 2; ++nPass) {
        ASSERT_TRUE(source.open());
        source.next();
        EXPECT_EQ(source.frameSeconds(), 0.0);
        EXPECT_EQ(picture(source), pictureOf(0, QSize(64, 48), FrameLayout::Nv12));
        source.next();
    }
    EXPECT_TRUE(source.problem().isEmpty());
}

TEST(PatternSource, layoutsHoldTheSamePicture)
{
    const QSize size(324, 242);
    const Picture yv12 = pictureOf(11, size);
    for (const FrameLayout layout : kLayouts) {
        EXPECT_EQ(pictureOf(11, size, layout), yv12) << static_cast<int>(layout);
    }
}

TEST(PatternSource, frameRecords)
{
    const auto desc = [](FrameLayout layout) {
        PatternSource source({QSize(100, 50), 25.0}, layout);
        source.next();
        return *source.frame();
    };
    const VideoFrameDesc yv12 = desc(FrameLayout::Yv12);
    EXPECT_EQ(yv12.nDisplayType, VIDEO_DISPLAY_YV12);
    EXPECT_NE(yv12.pFrameData, nullptr);
    EXPECT_EQ(yv12.nPitch, 0);
    for (const FrameLayout layout : {FrameLayout::Nv12, FrameLayout::Texture}) {
        const VideoFrameDesc nv12 = desc(layout);
        EXPECT_EQ(nv12.nDisplayType, VIDEO_DISPLAY_NV12);
        EXPECT_EQ(nv12.pFrameData, nullptr);
        EXPECT_EQ(nv12.pPlaneUV, nv12.pPlaneY + 100 * 50);
        EXPECT_EQ(nv12.nPitch, 0);
    }
    const VideoFrameDesc padded = desc(FrameLayout::Nv12Padded);
    EXPECT_EQ(padded.nDisplayType, VIDEO_DISPLAY_NV12);
    EXPECT_NE(padded.pFrameData, nullptr);
    EXPECT_EQ(padded.nPitch, 192);
}

// An odd row or column has no place in 4:2:0 planes, and NV12 rows come in fours.
TEST(PatternSource, oddSizes)
{
    const struct
    {
        QSize asked;
        QSize yv12;
        QSize nv12;
    } aCases[] = {
        {QSize(1280, 720), QSize(1280, 720), QSize(1280, 720)},
        {QSize(67, 51), QSize(66, 50), QSize(64, 50)},
        {QSize(1, 1), QSize(2, 2), QSize(4, 2)},
        {QSize(3, 5), QSize(2, 4), QSize(4, 4)},
        {QSize(5, 3), QSize(4, 2), QSize(4, 2)},
        {QSize(7, 33), QSize(6, 32), QSize(4, 32)},
        {QSize(2001, 9), QSize(2000, 8), QSize(2000, 8)},
    };
    for (const auto &entry : aCases) {
        SCOPED_TRACE(testing::Message() << entry.asked.width() << 'x' << entry.asked.height());
        for (const FrameLayout layout : kLayouts) {
            PatternSource source({entry.asked, 25.0}, layout);
            const QSize expected = layout == FrameLayout::Yv12 ? entry.yv12 : entry.nv12;
            for (int i = 0; i < 50; ++i) {
                source.next();
                const VideoFrameDesc *pFrame = source.frame();
                ASSERT_NE(pFrame, nullptr);
                EXPECT_EQ(QSize(pFrame->iWidth, pFrame->iHeight), expected);
                const QRect whole(QPoint(0, 0), expected);
                EXPECT_TRUE(whole.contains(source.box(i))) << i;
            }
            for (const auto &component : picture(source)) {
                for (const int nSample : component) {
                    ASSERT_GE(nSample, 16);
                    ASSERT_LE(nSample, 240);
                }
            }
        }
    }
}

TEST(PatternSource, parts)
{
    const QSize size(640, 480);
    const Picture first = pictureOf(0, size);
    for (int i = 0; i < PatternSource::kBars; ++i) {
        expectColor(first, 640, 80 * i + 2, 238, PatternSource::barColor(i));
        expectColor(first, 640, 80 * i + 77, 100, PatternSource::barColor(i));
    }
    for (int x = 0; x < 640; x += 71) {
        expectColor(first, 640, x, 240, {16 + 219 * x / 639, 128, 128});
        expectColor(first, 640, x, 299, {16 + 219 * x / 639, 128, 128});
        expectColor(first, 640, x, 300, PatternSource::kGroundColor);
        expectColor(first, 640, x, 479, PatternSource::kGroundColor);
    }
}

TEST(PatternSource, boxMoves)
{
    PatternSource source({QSize(640, 480), 25.0}, FrameLayout::Yv12);
    EXPECT_EQ(source.box(0).topLeft(), QPoint(0, 0));
    int nTurns = 0;
    for (int i = 1; i < 1000; ++i) {
        const QPoint way = source.box(i).topLeft() - source.box(i - 1).topLeft();
        EXPECT_NE(way, QPoint(0, 0)) << i;
        EXPECT_LE(way.manhattanLength(), 6) << i;
        nTurns += way.x() < 0 ? 1 : 0;
    }
    EXPECT_GT(nTurns, 100) << "it comes back";
    for (const int nNumber : {0, 33, 200}) {
        const QRect box = source.box(nNumber);
        const Picture there = pictureOf(nNumber, QSize(640, 480));
        for (const QPoint &corner : {box.topLeft(), box.topRight(), box.bottomLeft(), box.bottomRight()}) {
            expectColor(there, 640, corner.x(), corner.y(), PatternSource::kBoxColor);
        }
    }
}

// The digits are told apart by how they differ from each other, not by their shapes.
TEST(PatternSource, counterShowsTheNumber)
{
    const auto counter = [](int nNumber) {
        const Picture whole = pictureOf(nNumber, QSize(640, 480));
        return std::vector<int>(whole[0].begin() + 300 * 640, whole[0].end());
    };
    const auto changedColumns = [](const std::vector<int> &one, const std::vector<int> &other) {
        int nFirst = 640;
        int nLast = -1;
        for (std::size_t i = 0; i < one.size(); ++i) {
            if (one[i] != other[i]) {
                nFirst = std::min(nFirst, static_cast<int>(i % 640));
                nLast = std::max(nLast, static_cast<int>(i % 640));
            }
        }
        return std::make_pair(nFirst, nLast);
    };
    const std::vector<int> zero = counter(0);
    std::vector<std::vector<int>> digits;
    for (int i = 0; i < 10; ++i) {
        digits.push_back(counter(i));
        for (int j = 0; j < i; ++j) {
            EXPECT_NE(digits[static_cast<std::size_t>(i)], digits[static_cast<std::size_t>(j)])
                << i << " and " << j;
        }
    }
    const auto last = changedColumns(zero, counter(8));
    const auto tens = changedColumns(zero, counter(80));
    EXPECT_GT(last.first, tens.second) << "the last digit stands right of the one before it";
    EXPECT_GT(tens.first, 320);
}

TEST(PatternSource, timing)
{
    PatternSource source({QSize(64, 48), 50.0}, FrameLayout::Yv12);
    ASSERT_TRUE(source.open());
    EXPECT_DOUBLE_EQ(source.frameDuration(), 0.02);
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(source.next(), VideoSource::Step::Frame);
        EXPECT_DOUBLE_EQ(source.frameSeconds(), i * 0.02);
    }
}
