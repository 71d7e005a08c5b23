// Each kind of overlay shape: geometry, widths, counts and colours.
#include "PaneTest.h"

#include <climits>
#include <cmath>

namespace xelttest {
namespace {

constexpr uint32_t k_nRed = overlayColour(252, 0, 0);
constexpr uint32_t k_nGreen = overlayColour(0, 252, 0);
const PointList k_zigzag = {{20, 90}, {55, 22}, {83, 70}, {140, 25}, {128, 100}};

// Shapes are compared over a flat picture, so that only the shapes can differ. How much of the widget lies on
// edges that are left to the driver depends on the flavour and is bounded.
class OverlayShapeTest : public PaneTest
{
protected:
    void openFlat(const QSize &size = QSize(161, 117))
    {
        open(size);
        m_frame = yv12Frame(solidPlanes(32, 32, 90, 128, 128));
    }

    void showShapes(const std::vector<XeltDrawInfo> &vecRecords) { submitWithOverlays(m_frame, vecRecords); }

    static Tolerance tolerance(double dIgnoredShare = 0.15) { return {2.0, 0.6, dIgnoredShare}; }

    // Device pixels of the colour, roughly.
    int coloured(const std::array<int, 3> &aRgb) const
    {
        const QImage image = picture();
        int nCount = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                nCount += rgbAt(image, x, y) == aRgb ? 1 : 0;
            }
        }
        return nCount;
    }

    HostFrame m_frame;
};

TEST_F(OverlayShapeTest, DrawsAnOpenLine)
{
    openFlat();
    showShapes({overlayRecord(DRAWINFO_POLYLINE, k_zigzag, k_nRed, 6)});
    EXPECT_TRUE(matches(tolerance()));
    EXPECT_GT(coloured({255, 0, 0}), 500);
}

TEST_F(OverlayShapeTest, DrawsClosedLinesOfBothTypes)
{
    openFlat();
    for (const int nType : {DRAWINFO_OUTLINE, DRAWINFO_OUTLINE_ALT}) {
        showShapes({overlayRecord(nType, k_zigzag, k_nRed, 6)});
        EXPECT_TRUE(matches(tolerance(), "type" + std::to_string(nType)));
        const int nClosed = coloured({255, 0, 0});
        showShapes({overlayRecord(DRAWINFO_POLYLINE, k_zigzag, k_nRed, 6)});
        EXPECT_GT(nClosed, coloured({255, 0, 0}) + 200) << "the closing segment is missing";
    }
}

TEST_F(OverlayShapeTest, DrawsFilledAreas)
{
    openFlat();
    const PointList strip = {{30, 20}, {20, 95}, {90, 30}, {70, 100}, {150, 60}};
    for (const float fOpacity : {0.0f, 1.0f}) {
        showShapes({overlayRecord(DRAWINFO_FILLED_AREA, strip, k_nGreen, 1, fOpacity)});
        EXPECT_TRUE(matches(tolerance(), "opacity" + std::to_string(fOpacity)));
        EXPECT_GT(coloured({0, 255, 0}), 3000);
    }
}

TEST_F(OverlayShapeTest, DrawsNothingForOtherTypes)
{
    openFlat();
    std::vector<XeltDrawInfo> vecRecords;
    for (const int nType : {4, 5, 7, 8, 255, -1, INT_MAX, INT_MIN}) {
        vecRecords.push_back(overlayRecord(nType, k_zigzag, k_nRed, 6, 0.5f));
    }
    showShapes(vecRecords);
    EXPECT_TRUE(matches({2.0, 0.6, 0.0}));
    EXPECT_EQ(coloured({255, 0, 0}), 0);
}

TEST_F(OverlayShapeTest, DrawsEveryWidthFromOneToTwenty)
{
    openFlat();
    for (int nWidth = 1; nWidth <= 20; ++nWidth) {
        showShapes({overlayRecord(DRAWINFO_OUTLINE, {{30, 30}, {130, 40}, {80, 95}}, k_nRed, nWidth)});
        EXPECT_TRUE(matches(tolerance(0.2), "width" + std::to_string(nWidth)));
    }
}

// Every column that a flat line passes, and every row that a steep one passes, has a pixel of it.
TEST_F(OverlayShapeTest, ThinLinesHaveNoGaps)
{
    openFlat();
    showShapes({overlayRecord(DRAWINFO_POLYLINE, {{10, 20}, {150, 60}}, k_nRed, 1)});
    const QImage image = picture();
    for (int x = 14 * scaleFactor(); x < 146 * scaleFactor(); ++x) {
        int nColumn = 0;
        for (int y = 0; y < image.height(); ++y) {
            nColumn += rgbAt(image, x, y) == std::array<int, 3>{255, 0, 0} ? 1 : 0;
        }
        EXPECT_GE(nColumn, 1) << "column " << x;
        EXPECT_LE(nColumn, 2 * scaleFactor()) << "column " << x;
    }
    EXPECT_TRUE(matches(tolerance()));
}

TEST_F(OverlayShapeTest, WidthsOutOfRangeCountAsOneOrAsTheWidest)
{
    openFlat();
    const PointList line = {{20, 20}, {140, 90}};
    showShapes({overlayRecord(DRAWINFO_POLYLINE, line, k_nRed, 1)});
    const QImage one = picture();
    for (const int nWidth : {0, -1, INT_MIN}) {
        showShapes({overlayRecord(DRAWINFO_POLYLINE, line, k_nRed, nWidth)});
        EXPECT_EQ(picture(), one) << nWidth;
    }
    for (const int nWidth : {1000, 100000, INT_MAX}) {
        showShapes({overlayRecord(DRAWINFO_POLYLINE, line, k_nRed, nWidth)});
        EXPECT_EQ(rgbAt(picture(), 80 * scaleFactor(), 55 * scaleFactor()), (std::array<int, 3>{255, 0, 0}));
    }
}

PointList ring(int nCount)
{
    PointList points;
    for (int i = 0; i < nCount; ++i) {
        const double dAngle = 6.283185307179586 * i / nCount;
        points.emplace_back(static_cast<int>(80 + 60 * std::cos(dAngle)),
                            static_cast<int>(58 + 45 * std::sin(dAngle)));
    }
    return points;
}

class PointCountTest : public OverlayShapeTest, public ::testing::WithParamInterface<int>
{
};

TEST_P(PointCountTest, DrawsAsManyPointsAsTheRecordHas)
{
    openFlat();
    for (const int nType : {DRAWINFO_POLYLINE, DRAWINFO_OUTLINE}) {
        showShapes({overlayRecord(nType, ring(GetParam()), k_nRed, 5)});
        EXPECT_TRUE(matches(tolerance(0.2), "type" + std::to_string(nType)));
    }
}

TEST_P(PointCountTest, FillsAsManyPointsAsTheRecordHas)
{
    openFlat();
    showShapes({overlayRecord(DRAWINFO_FILLED_AREA, ring(GetParam()), k_nGreen)});
    EXPECT_TRUE(matches(tolerance(0.2)));
}

INSTANTIATE_TEST_SUITE_P(Counts, PointCountTest,
                         ::testing::Values(0, 1, 2, 3, 4, 31, 32, 33, 40, 191, 192, 193, 500));

TEST_F(OverlayShapeTest, CountsThatNoRecordHoldsDrawNoMoreThanTheArray)
{
    openFlat();
    XeltDrawInfo record = overlayRecord(DRAWINFO_OUTLINE, ring(192), k_nRed, 5);
    showShapes({record});
    const QImage expected = picture();
    for (const int nCount : {193, 100000, INT_MAX}) {
        record.nPointNum = nCount;
        showShapes({record});
        EXPECT_EQ(picture(), expected) << nCount;
    }
}

TEST_F(OverlayShapeTest, NegativeCountsDrawNothing)
{
    openFlat();
    XeltDrawInfo record = overlayRecord(DRAWINFO_OUTLINE, k_zigzag, k_nRed, 5);
    for (const int nCount : {0, -1, INT_MIN}) {
        record.nPointNum = nCount;
        showShapes({record});
        EXPECT_EQ(coloured({255, 0, 0}), 0) << nCount;
    }
}

TEST_F(OverlayShapeTest, RepeatedPointsAddNothing)
{
    openFlat();
    const PointList repeated = {{20, 90}, {20, 90}, {55, 22}, {55, 22}, {55, 22}, {140, 25}, {20, 90}};
    for (const int nType : {DRAWINFO_POLYLINE, DRAWINFO_OUTLINE}) {
        showShapes({overlayRecord(nType, repeated, k_nRed, 7)});
        EXPECT_TRUE(matches(tolerance(), "type" + std::to_string(nType)));
    }
    showShapes({overlayRecord(DRAWINFO_OUTLINE, {{50, 50}, {50, 50}, {50, 50}}, k_nRed, 7)});
    EXPECT_LE(coloured({255, 0, 0}), 49 * scaleFactor() * scaleFactor()) << "no direction, no line";
}

TEST_F(OverlayShapeTest, PointsFarOutsideAreClipped)
{
    openFlat();
    showShapes({overlayRecord(DRAWINFO_POLYLINE, {{-3000, 58}, {4000, 58}}, k_nRed, 8)});
    EXPECT_TRUE(matches(tolerance()));
    for (const int nExtreme : {INT_MIN, INT_MAX}) {
        showShapes(
            {overlayRecord(DRAWINFO_OUTLINE, {{nExtreme, nExtreme}, {20, 20}, {nExtreme, 5}}, k_nRed, 3)});
        EXPECT_FALSE(picture().isNull());
    }
}

TEST_F(OverlayShapeTest, ScalesColoursFrom126To252)
{
    openFlat();
    for (const unsigned nByte : {0u, 1u, 125u, 126u, 127u, 150u, 189u, 220u, 251u, 252u, 253u, 255u}) {
        for (const uint32_t nColour : {overlayColour(nByte, 0, 0), overlayColour(0, nByte, 0),
                                       overlayColour(0, 0, nByte), overlayColour(nByte, nByte, 255)}) {
            showShapes(
                {overlayRecord(DRAWINFO_FILLED_AREA, {{0, 0}, {0, 116}, {160, 0}, {160, 116}}, nColour)});
            ASSERT_TRUE(matches({1.0, 1.0, 0.05})) << "byte " << nByte;
        }
    }
}

TEST_F(OverlayShapeTest, TheHighestByteOfTheColourIsNotRead)
{
    openFlat();
    showShapes({overlayRecord(DRAWINFO_FILLED_AREA, k_zigzag, k_nRed)});
    const QImage expected = picture();
    showShapes({overlayRecord(DRAWINFO_FILLED_AREA, k_zigzag, k_nRed | 0xFF000000u)});
    EXPECT_EQ(picture(), expected);
}

TEST_F(OverlayShapeTest, ShapesZoomWithTheWidget)
{
    openFlat();
    submitWithOverlays(m_frame,
                       {overlayRecord(DRAWINFO_OUTLINE, {{60, 40}, {100, 45}, {80, 70}}, k_nRed, 4)});
    for (const Area &area : {Area{0.25, 0.25, 0.75, 0.75}, Area{0.3, 0.2, 0.8, 0.6}, Area{0.5, 0.5, 0.5, 0.5},
                             Area{0.9, 0.1, 0.1, 0.9}}) {
        zoom(area[0], area[1], area[2], area[3]);
        EXPECT_TRUE(matches(tolerance(0.2), "zoom" + std::to_string(area[0])));
    }
}

TEST_F(OverlayShapeTest, ShapesTurnAndMirrorWithThePicture)
{
    openFlat();
    submitWithOverlays(m_frame,
                       {overlayRecord(DRAWINFO_POLYLINE, k_zigzag, k_nRed, 5),
                        overlayRecord(DRAWINFO_FILLED_AREA, {{5, 5}, {5, 50}, {40, 5}}, k_nGreen, 1, 0.5f)});
    for (const int nAngle : {0, 90, 180, 270}) {
        for (const int nMirror : {0, 1, 2}) {
            turnPicture(nAngle, 1, nMirror);
            EXPECT_TRUE(matches(tolerance(), std::to_string(nAngle) + "m" + std::to_string(nMirror)));
        }
    }
}

TEST_F(OverlayShapeTest, TinyWidgetsDoNotDivideByZero)
{
    for (const QSize &size : {QSize(1, 1), QSize(2, 2), QSize(3, 1)}) {
        openFlat(size);
        showShapes({overlayRecord(DRAWINFO_OUTLINE, k_zigzag, k_nRed, 5)});
        EXPECT_EQ(picture().size(), m_view.deviceSize());
    }
}

} // namespace
} // namespace xelttest
