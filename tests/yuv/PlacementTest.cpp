// Zoom, destination rectangles and ratio modes.
#include "PaneTest.h"

namespace xelttest {
namespace {

class PlacementTest : public PaneTest
{
protected:
    void openWithPicture(const QSize &widgetSize = QSize(161, 117), const QSize &frameSize = QSize(96, 64))
    {
        open(widgetSize);
        submit(yv12Frame(makePlanes(Pattern::Bars, frameSize.width(), frameSize.height())));
    }
};

TEST_F(PlacementTest, ZoomsIn)
{
    openWithPicture();
    const Area aZooms[] = {{0.25, 0.25, 0.75, 0.75},
                           {0.0, 0.0, 0.5, 0.5},
                           {0.1, 0.6, 0.35, 0.9},
                           {0.4, 0.4, 0.45, 0.42},
                           {-0.5, -0.25, 1.5, 2.0}};
    for (const Area &area : aZooms) {
        zoom(area[0], area[1], area[2], area[3]);
        EXPECT_TRUE(matches(k_scaled, "zoom" + std::to_string(area[0])));
    }
}

TEST_F(PlacementTest, ZoomingRepaintsWithoutANewFrame)
{
    openWithPicture();
    const int nPaints = window().paints(handle());
    zoom(0.25, 0.25, 0.75, 0.75);
    EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
}

TEST_F(PlacementTest, ZoomsIntoThePlacedPicture)
{
    openWithPicture();
    dstRect(20, 30, 130, 90);
    for (const Area &area :
         {Area{0.25, 0.25, 0.75, 0.75}, Area{0.0, 0.5, 0.5, 1.0}, Area{0.3, 0.3, 0.6, 0.5}}) {
        zoom(area[0], area[1], area[2], area[3]);
        EXPECT_TRUE(matches(k_scaled, "zoom" + std::to_string(area[0])));
    }
}

TEST_F(PlacementTest, AnEmptyOrInvertedZoomShowsTheWholePictureOnTheWholeWidget)
{
    openWithPicture();
    dstRect(20, 30, 130, 90);
    const Area aZooms[] = {{0.5, 0.5, 0.5, 0.5},
                           {0.75, 0.25, 0.25, 0.75},
                           {0.25, 0.75, 0.75, 0.25},
                           {0.0, 0.0, 1.0, 0.0},
                           {1.0, 1.0, 0.0, 0.0}};
    for (const Area &area : aZooms) {
        zoom(area[0], area[1], area[2], area[3]);
        EXPECT_TRUE(matches(k_scaled));
        View whole = m_view;
        whole.zoom = {0, 0, 1, 1};
        whole.area = {0, 0, 1, 1};
        EXPECT_TRUE(imageMatches(picture(), renderPicture(m_model, whole), k_scaled));
    }
    zoom(0, 0, 1, 1);
    EXPECT_TRUE(matches(k_scaled)) << "the drawn area holds again";
}

TEST_F(PlacementTest, TurnsAfterZooming)
{
    openWithPicture();
    zoom(0.1, 0.2, 0.6, 0.9);
    for (const int nAngle : {90, 180, 270}) {
        turnPicture(nAngle, 0, nAngle == 180 ? 2 : 1);
        EXPECT_TRUE(matches(k_scaled, std::to_string(nAngle)));
    }
}

TEST_F(PlacementTest, DrawsIntoRectanglesInsideTheWidget)
{
    openWithPicture();
    for (const auto &rect :
         {QRect(10, 10, 60, 40), QRect(0, 0, 2, 2), QRect(80, 3, 2, 110), QRect(0, 0, 161, 117)}) {
        dstRect(rect.left(), rect.top(), rect.right(), rect.bottom());
        EXPECT_TRUE(matches(k_scaled, sizeName(rect.size())));
    }
}

TEST_F(PlacementTest, DrawsIntoRectanglesThatReachOutOfTheWidget)
{
    openWithPicture();
    for (const auto &rect : {QRect(-40, -30, 120, 90), QRect(100, 60, 200, 200), QRect(-300, -200, 900, 700),
                             QRect(-20, 40, 300, 20)}) {
        dstRect(rect.left(), rect.top(), rect.right(), rect.bottom());
        EXPECT_TRUE(matches(k_scaled, sizeName(rect.size())));
    }
}

TEST_F(PlacementTest, ShowsNothingOfRectanglesFarOutside)
{
    openWithPicture();
    for (const auto &rect :
         {QRect(1000, 1000, 200, 200), QRect(-5000, 10, 1000, 50), QRect(10, -100000, 50, 5000)}) {
        dstRect(rect.left(), rect.top(), rect.right(), rect.bottom());
        EXPECT_TRUE(isBlack(picture()));
    }
}

TEST_F(PlacementTest, SurvivesExtremeRectangles)
{
    openWithPicture();
    constexpr int k_nMin = INT32_MIN;
    constexpr int k_nMax = INT32_MAX;
    for (const auto &edges : {std::array<int, 4>{k_nMin, k_nMin, k_nMax, k_nMax},
                              std::array<int, 4>{k_nMax - 1, k_nMax - 1, k_nMax, k_nMax},
                              std::array<int, 4>{k_nMin, k_nMin, k_nMin + 1, k_nMin + 1}}) {
        setDstRect(handle(), edges[0], edges[1], edges[2], edges[3]);
        EXPECT_FALSE(picture().isNull());
    }
    dstRect(10, 10, 100, 100);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(PlacementTest, ATooSmallRectangleKeepsTheOldPlace)
{
    openWithPicture();
    dstRect(10, 10, 100, 80);
    EXPECT_EQ(setDstRect(handle(), 10, 10, 10, 80), -1);
    EXPECT_EQ(setDstRect(handle(), 10, 10, 80, 10), -1);
    EXPECT_EQ(setDstRect(handle(), 80, 80, 10, 10), -1);
    EXPECT_TRUE(matches(k_scaled));
}

using RatioCase = std::tuple<QSize, QSize>; // widget, frame

class RatioTest : public PaneTest, public ::testing::WithParamInterface<RatioCase>
{
};

TEST_P(RatioTest, KeepsTheRatioOrFills)
{
    const auto &[widgetSize, frameSize] = GetParam();
    open(widgetSize);
    submit(yv12Frame(makePlanes(Pattern::Bars, frameSize.width(), frameSize.height())));
    ratioMode(0);
    EXPECT_TRUE(matches(k_scaled, "keep"));
    ratioMode(1);
    EXPECT_TRUE(matches(k_scaled, "fill"));
    ratioMode(-3);
    EXPECT_TRUE(matches(k_scaled, "fill-negative"));
}

INSTANTIATE_TEST_SUITE_P(Sizes, RatioTest,
                         ::testing::Combine(::testing::Values(QSize(400, 100), QSize(100, 400),
                                                              QSize(161, 117), QSize(160, 120),
                                                              QSize(51, 53)),
                                            ::testing::Values(QSize(96, 54), QSize(54, 96), QSize(64, 64),
                                                              QSize(96, 72), QSize(33, 17))),
                         [](const auto &test) {
                             return sizeName(std::get<0>(test.param)) + "Frame" +
                                    sizeName(std::get<1>(test.param));
                         });

class RatioWordsTest : public PaneTest
{
};

TEST_F(RatioWordsTest, PlacesLandscapeAndPortraitAsWorkedOutByHand)
{
    EXPECT_EQ(ratioArea(QSize(800, 600), 1920, 1080, 0), dstArea(QSize(800, 600), 0, 75, 799, 524));
    EXPECT_EQ(ratioArea(QSize(800, 600), 1080, 1920, 0), dstArea(QSize(800, 600), 231, 0, 568, 599));
    open(QSize(800, 600));
    submit(yv12Frame(solidPlanes(1920, 1080, 255, 128, 128)));
    ratioMode(0);
    const QImage image = picture();
    const int nScale = scaleFactor();
    EXPECT_EQ(rgbAt(image, 400 * nScale, 74 * nScale)[1], 0);
    EXPECT_GE(rgbAt(image, 400 * nScale, 75 * nScale)[1], 254);
    EXPECT_GE(rgbAt(image, 400 * nScale, 524 * nScale - 1)[1], 254);
    EXPECT_EQ(rgbAt(image, 400 * nScale, 524 * nScale)[1], 0);
}

TEST_F(RatioWordsTest, ModeZeroWithoutAFrameTakesTheWholeWidget)
{
    open(QSize(161, 117));
    ratioMode(0);
    submit(yv12Frame(makePlanes(Pattern::Bars, 96, 64)));
    EXPECT_TRUE(matches(k_scaled));
}

// The placement is a share of the widget: a resize keeps it until the mode is sent again.
TEST_F(RatioWordsTest, AResizeKeepsThePlacement)
{
    open(QSize(200, 100));
    submit(yv12Frame(makePlanes(Pattern::Bars, 64, 64)));
    ratioMode(0);
    ASSERT_TRUE(window().resizePane(handle(), QSize(100, 150)));
    m_view.widgetSize = QSize(100, 150);
    EXPECT_TRUE(matches(k_scaled, "resized"));
    ratioMode(0);
    EXPECT_TRUE(matches(k_scaled, "sent-again"));
}

} // namespace
} // namespace xelttest
