// Wide lines as strips of triangles.
#include "yuv/LineWidener.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::vector<yuv::SegmentQuad> widen(const std::vector<XeltPoint> &vecPoints, bool blClosed, double dWidth)
{
    std::vector<yuv::SegmentQuad> vecQuads;
    yuv::WidenLine(vecPoints.data(), static_cast<int>(vecPoints.size()), blClosed, dWidth, vecQuads);
    return vecQuads;
}

geometry::PointMapping plainMapping()
{
    geometry::PointMapping mapping; // clip space = widget pixels, y turned over
    mapping.dX0 = 0;
    mapping.dY0 = 0;
    return mapping;
}

TEST(LineWidenerTest, MovesTheEndsByHalfTheWidthAlongTheNormal)
{
    const auto vecQuads = widen({{10, 20}, {40, 60}}, false, 10.0);
    ASSERT_EQ(vecQuads.size(), 1u);
    // Direction (3, 4) / 5, normal (-4, 3) / 5, half width 5.
    const auto &aCorners = vecQuads[0].aCorners;
    EXPECT_NEAR(aCorners[0].x, 6, 1e-9);
    EXPECT_NEAR(aCorners[0].y, 23, 1e-9);
    EXPECT_NEAR(aCorners[1].x, 14, 1e-9);
    EXPECT_NEAR(aCorners[1].y, 17, 1e-9);
    EXPECT_NEAR(aCorners[2].x, 36, 1e-9);
    EXPECT_NEAR(aCorners[2].y, 63, 1e-9);
    EXPECT_NEAR(aCorners[3].x, 44, 1e-9);
    EXPECT_NEAR(aCorners[3].y, 57, 1e-9);
}

TEST(LineWidenerTest, LeavesOutSegmentsWithoutLength)
{
    EXPECT_TRUE(widen({{5, 5}}, true, 4).empty());
    EXPECT_TRUE(widen({{5, 5}, {5, 5}, {5, 5}}, true, 4).empty());
    EXPECT_EQ(widen({{5, 5}, {5, 5}, {9, 5}, {9, 5}}, false, 4).size(), 1u);
    EXPECT_EQ(widen({{5, 5}, {9, 5}, {5, 5}}, true, 4).size(), 2u) << "the closing segment has no length";
    for (const auto &quad : widen({{1, 1}, {1, 1}, {2, 7}}, true, 4)) {
        for (const auto &corner : quad.aCorners) {
            EXPECT_TRUE(std::isfinite(corner.x) && std::isfinite(corner.y));
        }
    }
}

TEST(LineWidenerTest, KeepsItsHeadWithExtremePoints)
{
    for (const auto &quad :
         widen({{INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX}, {INT32_MIN, 0}}, true, 3)) {
        for (const auto &corner : quad.aCorners) {
            EXPECT_TRUE(std::isfinite(corner.x) && std::isfinite(corner.y));
        }
    }
}

TEST(LineWidenerTest, AssemblesOneStripWithTheNextCornersBetween)
{
    const auto vecQuads = widen({{0, 0}, {10, 0}, {10, 10}}, false, 2);
    yuv::StripVertices afOut{};
    ASSERT_EQ(yuv::AssembleStrip(vecQuads, false, plainMapping(), afOut), 10u);
    const auto &next = vecQuads[1].aCorners;
    EXPECT_FLOAT_EQ(afOut[2 * 4], float(next[0].x));
    EXPECT_FLOAT_EQ(afOut[2 * 4 + 1], float(-next[0].y));
    EXPECT_FLOAT_EQ(afOut[2 * 5], float(next[1].x));
    EXPECT_FLOAT_EQ(afOut[2 * 6], float(next[0].x)) << "and then the next quad itself";
}

TEST(LineWidenerTest, AClosedStripEndsAtItsBeginning)
{
    const auto vecQuads = widen({{0, 0}, {10, 0}, {10, 10}}, true, 2);
    ASSERT_EQ(vecQuads.size(), 3u);
    yuv::StripVertices afOut{};
    const size_t nVertices = yuv::AssembleStrip(vecQuads, true, plainMapping(), afOut);
    ASSERT_EQ(nVertices, 18u);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(afOut[2 * (nVertices - 2) + i], afOut[i]);
    }
}

TEST(LineWidenerTest, TheLongestRecordFillsTheArrayExactly)
{
    std::vector<XeltPoint> vecPoints;
    for (int i = 0; i < XELT_DRAWINFO_MAX_POINTS; ++i) {
        vecPoints.push_back({i * 7, (i % 5) * 11});
    }
    const auto vecQuads = widen(vecPoints, true, 3);
    ASSERT_EQ(vecQuads.size(), 32u);
    yuv::StripVertices afOut{};
    EXPECT_EQ(yuv::AssembleStrip(vecQuads, true, plainMapping(), afOut), yuv::kMaxStripVertices);
    EXPECT_EQ(yuv::AssembleStrip(vecQuads, false, plainMapping(), afOut), 190u);
}

TEST(LineWidenerTest, MoreQuadsThanTheArrayHoldsAreCut)
{
    const std::vector<yuv::SegmentQuad> vecQuads(50);
    yuv::StripVertices afOut{};
    EXPECT_EQ(yuv::AssembleStrip(vecQuads, true, plainMapping(), afOut), yuv::kMaxStripVertices);
}

} // namespace
