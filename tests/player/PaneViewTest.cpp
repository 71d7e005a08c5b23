#include "PaneView.h"

#include <gtest/gtest.h>

namespace {

void expectArea(const XeltEZoomArea &area, double left, double top, double right, double bottom)
{
    EXPECT_NEAR(area.left, left, 1e-9);
    EXPECT_NEAR(area.top, top, 1e-9);
    EXPECT_NEAR(area.right, right, 1e-9);
    EXPECT_NEAR(area.bottom, bottom, 1e-9);
}

ViewSettings turned(int nAngle, bool blCounterClockwise, int nMirror)
{
    ViewSettings view;
    view.nAngle = nAngle;
    view.blCounterClockwise = blCounterClockwise;
    view.nMirror = nMirror;
    return view;
}

// The top left quarter of the screen.
const QRectF kTopLeft(0.0, 0.0, 0.5, 0.5);

} // namespace

TEST(PaneView, zoomKeepsThePaneProportions)
{
    expectArea(zoomedTo({}, QRectF(0.4, 0.45, 0.2, 0.1)), 0.4, 0.4, 0.6, 0.6);
    expectArea(zoomedTo({}, QRectF(0.0, 0.9, 0.2, 0.1)), 0.0, 0.8, 0.2, 1.0); // moved inside
}

TEST(PaneView, zoomOfNothingIsNotEmpty)
{
    const XeltEZoomArea area = zoomedTo({}, QRectF(0.5, 0.5, 0.0, 0.0));
    EXPECT_GT(area.right - area.left, 0.01);
    EXPECT_GT(area.bottom - area.top, 0.01);
}

TEST(PaneView, zoomInAZoom)
{
    ViewSettings view;
    view.rcZoom = {0.5, 0.0, 1.0, 0.5};
    expectArea(zoomedTo(view, kTopLeft), 0.5, 0.0, 0.75, 0.25);
}

TEST(PaneView, zoomInAnEmptyZoomStartsFromTheWhole)
{
    ViewSettings view;
    view.rcZoom = {0.7, 0.0, 0.2, 0.5};
    expectArea(zoomedTo(view, kTopLeft), 0.0, 0.0, 0.5, 0.5);
}

TEST(PaneView, zoomInATurnedPicture)
{
    expectArea(zoomedTo(turned(90, false, 0), kTopLeft), 0.0, 0.5, 0.5, 1.0);
    expectArea(zoomedTo(turned(90, true, 0), kTopLeft), 0.5, 0.0, 1.0, 0.5);
    expectArea(zoomedTo(turned(180, false, 0), kTopLeft), 0.5, 0.5, 1.0, 1.0);
    expectArea(zoomedTo(turned(270, false, 0), kTopLeft), 0.5, 0.0, 1.0, 0.5);
    expectArea(zoomedTo(turned(0, false, 1), kTopLeft), 0.5, 0.0, 1.0, 0.5);
    expectArea(zoomedTo(turned(0, false, 2), kTopLeft), 0.0, 0.5, 0.5, 1.0);
    // Turned first, then mirrored: the clip's top left stays where it was.
    expectArea(zoomedTo(turned(90, false, 1), kTopLeft), 0.0, 0.0, 0.5, 0.5);
}

TEST(PaneView, turnedRectInAWidePane)
{
    // 640x480 turned in a pane of 640x480 comes out 360x480: 3/4 as wide as high.
    const XeltDrawDstRect rect = turnedRect(QSize(640, 480), QSize(320, 240));
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.right, 639);
    EXPECT_EQ(rect.bottom - rect.top + 1, 270); // 480 x 360 / 640
    EXPECT_EQ(rect.top, 105);
}

TEST(PaneView, turnedRectOfAPictureThatFitsWhenTurned)
{
    const XeltDrawDstRect rect = turnedRect(QSize(480, 640), QSize(320, 240));
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    EXPECT_EQ(rect.right, 479);
    EXPECT_EQ(rect.bottom, 639);
}

TEST(PaneView, rotateRecord)
{
    const XeltRotatePara para = rotatePara(turned(270, true, 2));
    EXPECT_EQ(para.nDirection, 1);
    EXPECT_EQ(para.nAngle, 270);
    EXPECT_EQ(para.nMirror, 2);
    EXPECT_TRUE(isQuarterTurn(turned(270, true, 2)));
    EXPECT_FALSE(isQuarterTurn(turned(180, false, 0)));
}
