// Where the picture goes: the zoom window places it, everything else that places or turns does not.
#include "SubImageTest.h"

namespace xelttest {
namespace {

class SubImagePlacementTest : public SubImageTest
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(161, 117));
        submit(ofType(VIDEO_DISPLAY_YV12));
        ASSERT_TRUE(matches());
    }
};

TEST_F(SubImagePlacementTest, NeitherTurnsNorMirrors)
{
    for (const int nAngle : {0, 45, 90, 180, 270}) {
        for (const int nDirection : {0, 1}) {
            for (const int nMirror : {0, 1, 2}) {
                EXPECT_EQ(setRotation(handle(), nAngle, nDirection, nMirror), 0);
                EXPECT_TRUE(matches()) << nAngle << ' ' << nDirection << ' ' << nMirror;
            }
        }
    }
    submit(ofType(VIDEO_DISPLAY_NV12));
    EXPECT_TRUE(matches(k_scaled, "nv12"));
    View turned = m_view;
    turned.nAngle = 90;
    EXPECT_TRUE(imageDiffers(picture(), renderPicture(m_model, turned), k_scaled));
}

TEST_F(SubImagePlacementTest, TheTurnHasNoEffectOnShapesEither)
{
    submitWithOverlays(
        ofType(VIDEO_DISPLAY_YV12),
        {overlayRecord(DRAWINFO_FILLED_AREA, {{10, 10}, {10, 60}, {90, 20}}, overlayColour(252, 0, 0))});
    ASSERT_EQ(setRotation(handle(), 90, 1, 1), 0);
    EXPECT_TRUE(matches({4.0, 0.8, 0.25}));
}

TEST_F(SubImagePlacementTest, TheRatioModeDoesNotMoveThePicture)
{
    for (const int nMode : {0, 1, 0, 5}) {
        EXPECT_EQ(setRatioMode(handle(), nMode), 0);
        EXPECT_TRUE(matches()) << nMode;
    }
    View kept = m_view;
    kept.area = ratioArea(m_view.widgetSize, 96, 64, 0);
    EXPECT_TRUE(imageDiffers(picture(), renderPicture(m_model, kept), k_scaled));
}

TEST_F(SubImagePlacementTest, TheDestinationRectangleDoesNotMoveThePicture)
{
    EXPECT_EQ(setDstRect(handle(), 20, 30, 100, 80), 0);
    EXPECT_TRUE(matches());
    EXPECT_EQ(setDstRect(handle(), 1000, 1000, 1100, 1100), 0);
    EXPECT_TRUE(matches());
    EXPECT_EQ(setDstRect(handle(), 20, 30, 20, 80), -1);
    EXPECT_TRUE(matches());
}

// The host is still told where the picture would be.
TEST_F(SubImagePlacementTest, TheRequestForOverlaysNamesTheDestinationRectangle)
{
    ASSERT_EQ(setDstRect(handle(), 20, 30, 100, 80), 0);
    submitWithOverlays(ofType(VIDEO_DISPLAY_YV12), {});
    EXPECT_NEAR(m_overlays.lastRequest.nLeft, 20, 1);
    EXPECT_NEAR(m_overlays.lastRequest.nTop, 30, 1);
    // The share of the widget that is kept has single precision: a pixel may be lost on the way back.
    EXPECT_NEAR(m_overlays.lastRequest.nRight, 100, 1);
    EXPECT_NEAR(m_overlays.lastRequest.nBottom, 80, 1);
}

TEST_F(SubImagePlacementTest, Zooms)
{
    const Area aZooms[] = {{0.25, 0.25, 0.75, 0.75}, {0.0, 0.0, 0.5, 0.5},    {0.1, 0.6, 0.35, 0.9},
                           {0.4, 0.4, 0.45, 0.42},   {-0.5, -0.25, 1.5, 2.0}, {0.0, 0.0, 1.0, 1.0}};
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        submit(ofType(nType));
        for (const Area &area : aZooms) {
            zoom(area[0], area[1], area[2], area[3]);
            EXPECT_TRUE(matches(k_scaled, std::to_string(nType) + "zoom" + std::to_string(area[0])));
        }
    }
}

TEST_F(SubImagePlacementTest, ZoomsTheWholePictureAndNotThePlacedOne)
{
    ASSERT_EQ(setDstRect(handle(), 20, 30, 100, 80), 0);
    zoom(0.25, 0.25, 0.75, 0.75);
    EXPECT_TRUE(matches());
}

TEST_F(SubImagePlacementTest, AnEmptyOrInvertedZoomShowsTheWholePicture)
{
    for (const Area &area : {Area{0.5, 0.5, 0.5, 0.5}, Area{0.75, 0.25, 0.25, 0.75}, Area{1, 1, 0, 0}}) {
        zoom(area[0], area[1], area[2], area[3]);
        EXPECT_TRUE(matches());
    }
}

TEST_F(SubImagePlacementTest, OnlyZoomingAsksForARepaint)
{
    const auto paintsAfter = [&](const auto &action) {
        drainEvents();
        const int nPaints = window().paints(handle());
        action();
        drainEvents();
        return window().paints(handle()) - nPaints;
    };
    EXPECT_EQ(paintsAfter([&] { setRotation(handle(), 90, 0, 1); }), 0);
    EXPECT_EQ(paintsAfter([&] { setRatioMode(handle(), 0); }), 0);
    EXPECT_EQ(paintsAfter([&] { setDstRect(handle(), 20, 30, 100, 80); }), 0);
    EXPECT_GE(paintsAfter([&] { setZoom(handle(), 0.25, 0.25, 0.75, 0.75); }), 1);
}

TEST_F(SubImagePlacementTest, FollowsTheWidgetsSize)
{
    for (const QSize &size : {QSize(300, 50), QSize(50, 300), QSize(97, 61), QSize(1, 1), QSize(400, 300)}) {
        ASSERT_TRUE(window().resizePane(handle(), size));
        m_view.widgetSize = size;
        EXPECT_TRUE(matches(size.width() > 1 ? k_scaled : Tolerance{8.0, 8.0, 0.0}, sizeName(size)));
    }
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 0)));
    submit(ofType(VIDEO_DISPLAY_NV12, 3));
    drainEvents();
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 117)));
    m_view.widgetSize = QSize(161, 117);
    EXPECT_TRUE(matches(k_scaled, "back"));
}

TEST_F(SubImagePlacementTest, AResizeAsksForOverlaysOfTheLastKind)
{
    HostFrame frame = ofType(VIDEO_DISPLAY_YV12);
    frame.desc.nDrawInfoKind = 77;
    submitWithOverlays(frame, {});
    EXPECT_EQ(m_overlays.lastRequest.nKind, 77);
    const int nCalls = m_overlays.nCalls;
    ASSERT_TRUE(window().resizePane(handle(), QSize(200, 150)));
    ASSERT_TRUE(pump([&] { return m_overlays.nCalls > nCalls; }));
    EXPECT_EQ(m_overlays.lastRequest.nKind, 77);
    EXPECT_EQ(m_overlays.lastRequest.nRight, 200);
}

TEST_F(SubImagePlacementTest, HidingAndShowingKeepsThePicture)
{
    QWidget *pWidget = paneWidget(handle());
    for (int nRound = 0; nRound < 3; ++nRound) {
        pWidget->hide();
        drainEvents();
        const int nPaints = window().paints(handle());
        pWidget->show();
        EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
        EXPECT_TRUE(matches());
    }
    window().hide();
    drainEvents();
    submit(ofType(VIDEO_DISPLAY_NV12, 2));
    ASSERT_TRUE(window().showAndWait());
    EXPECT_TRUE(matches(k_scaled, "hidden"));
}

} // namespace
} // namespace xelttest
