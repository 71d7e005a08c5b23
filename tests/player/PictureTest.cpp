// What is on the screen, read off the player's screenshots.
#include "Clips.h"
#include "PlayerRun.h"
#include "Quarters.h"

#include <gtest/gtest.h>

namespace {

QImage shot(const QString &sFile, const char *pOptions)
{
    QStringList asArguments{sFile, QStringLiteral("--frames"), QStringLiteral("3"), QStringLiteral("--size"),
                            QStringLiteral("640x480")};
    asArguments += QString::fromLatin1(pOptions).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return screenshotOf(asArguments);
}

int countNear(const QImage &image, const QRect &area, QRgb color, int nTolerance)
{
    int nCount = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            nCount += isNear(image.pixel(x, y), color, nTolerance) ? 1 : 0;
        }
    }
    return nCount;
}

const QRect kWhole(0, 0, 640, 480);

void expectTexts(const QImage &without, const QImage &with)
{
    const struct
    {
        const char *pWhat;
        QRect area;
        QRgb color;
    } aTexts[] = {
        {"the name", QRect(0, 0, 320, 50), qRgb(255, 255, 255)},
        {"the Chinese text", QRect(480, 0, 160, 50), qRgb(255, 192, 64)},
        {"the time", QRect(0, 430, 320, 50), qRgb(128, 255, 128)},
    };
    for (const auto &entry : aTexts) {
        SCOPED_TRACE(entry.pWhat);
        EXPECT_EQ(countNear(without, entry.area, entry.color, 40), 0);
        EXPECT_GE(countNear(with, entry.area, entry.color, 40), 30);
    }
}

} // namespace

TEST(Picture, yv12)
{
    const QImage image = shot(Clips::quarters(), "");
    ASSERT_EQ(image.size(), QSize(640, 480));
    expectQuarters(image, kWhole, kUpright);
}

TEST(Picture, yv12OnDesktopGl)
{
    const QImage image = shot(Clips::quarters(), "--desktop-gl");
    ASSERT_EQ(image.size(), QSize(640, 480));
    expectQuarters(image, kWhole, kUpright);
}

TEST(Picture, bothNv12LayoutsAreTheSame)
{
    const QImage packed = shot(Clips::quarters(), "--format nv12");
    expectQuarters(packed, kWhole, kUpright, nv12Color);
    const QImage padded = shot(Clips::quarters(), "--format nv12-padded");
    EXPECT_EQ(packed, padded);
}

TEST(Picture, turnedAndMirrored)
{
    for (const Turn &turn : kTurns) {
        SCOPED_TRACE(turn.pOptions);
        expectQuarters(shot(Clips::quarters(), turn.pOptions), kWhole, turn.order);
    }
    expectQuarters(shot(Clips::quarters(), "--fill --rotate 90 --mirror h --format nv12-padded"), kWhole,
                   {0, 2, 1, 3}, nv12Color);
}

// On a quarter turn the player sees to the proportions itself: 480 high, 360 wide, in the middle.
TEST(Picture, turnedInItsOwnProportions)
{
    const QImage image = shot(Clips::quarters(), "--rotate 90");
    expectQuarters(image, QRect(140, 0, 360, 480), {2, 0, 3, 1});
    for (const int x : {0, 70, 136, 504, 570, 639}) {
        expectColor(image, x, 240, qRgb(0, 0, 0));
    }
    expectColor(image, 144, 120, yv12Color(Clips::kQuarters[2]));
    expectColor(image, 495, 120, yv12Color(Clips::kQuarters[0]));
}

TEST(Picture, keepsItsProportionsInAWideWindow)
{
    const QImage image = shot(Clips::quarters(), "--size 900x480");
    ASSERT_EQ(image.size(), QSize(900, 480));
    expectQuarters(image, QRect(130, 0, 640, 480), kUpright);
    expectColor(image, 120, 240, qRgb(0, 0, 0));
    expectColor(image, 780, 240, qRgb(0, 0, 0));
}

TEST(Picture, destinationRectangle)
{
    const QImage image = shot(Clips::quarters(), "--rect 100,50,299,249");
    expectQuarters(image, QRect(100, 50, 200, 200), kUpright);
    for (const QPoint &point : {QPoint(96, 150), QPoint(303, 150), QPoint(200, 46), QPoint(200, 253)}) {
        expectColor(image, point.x(), point.y(), qRgb(0, 0, 0));
    }
}

TEST(Picture, zoom)
{
    const QImage image = shot(Clips::quarters(), "--zoom 0.5,0,1,0.5");
    for (const QPoint &point : {QPoint(20, 20), QPoint(620, 20), QPoint(320, 240), QPoint(620, 440)}) {
        expectColor(image, point.x(), point.y(), yv12Color(Clips::kQuarters[1]));
    }
}

TEST(Picture, panesStandInAGrid)
{
    const QImage image =
        screenshotOf({Clips::quarters(), Clips::grey(), QStringLiteral("--panes"), QStringLiteral("4"),
                      QStringLiteral("--frames"), QStringLiteral("3"), QStringLiteral("--size"),
                      QStringLiteral("642x482"), QStringLiteral("--fill")});
    ASSERT_EQ(image.size(), QSize(642, 482));
    expectQuarters(image, QRect(0, 0, 320, 240), kUpright);
    expectColor(image, 322 + 160, 120, yv12Color(Clips::kGrey));
    expectQuarters(image, QRect(0, 242, 320, 240), kUpright);
    expectColor(image, 322 + 160, 242 + 120, yv12Color(Clips::kGrey));
}

class Overlay : public testing::TestWithParam<const char *>
{
};

TEST_P(Overlay, shapesAndTextsAreThere)
{
    const QRgb grey = yv12Color(Clips::kGrey);
    const QRgb redOverGrey = rgb((255 + qRed(grey)) / 2.0, qGreen(grey) / 2.0, qBlue(grey) / 2.0);
    const QByteArray off(GetParam());
    const QImage without = shot(Clips::grey(), off);
    const QImage with = shot(Clips::grey(), QByteArray("--overlay ") + off);
    const struct
    {
        const char *pWhat;
        QRgb color;
        int nLeast;
    } aShapes[] = {
        {"the wave", qRgb(255, 255, 0), 1500},
        {"the box", qRgb(0, 255, 0), 800},
        {"the hexagon", qRgb(0, 255, 255), 300},
        {"the half-transparent area", redOverGrey, 10000},
    };
    for (const auto &entry : aShapes) {
        SCOPED_TRACE(entry.pWhat);
        EXPECT_EQ(countNear(without, kWhole, entry.color, 2), 0);
        EXPECT_GE(countNear(with, kWhole, entry.color, 2), entry.nLeast);
    }
    expectTexts(without, with);
}

INSTANTIATE_TEST_SUITE_P(Gl, Overlay, testing::Values("", "--desktop-gl"));

TEST(Picture, textsOnTheWindow)
{
    for (const char *pRenderer : {"yuv", "subimage"}) {
        SCOPED_TRACE(pRenderer);
        const QByteArray options = QByteArray("--renderer ") + pRenderer;
        const QImage with = shot(Clips::grey(), options + " --overlay --label-parent");
        expectTexts(shot(Clips::grey(), options), with);
        EXPECT_EQ(countNear(with, kWhole, qRgb(40, 40, 40), 2), 0) << "the window's own colour shows";
    }
}

TEST(Picture, textsOfEachPaneOnTheWindow)
{
    const QImage image = screenshotOf(
        {Clips::grey(), QStringLiteral("--panes"), QStringLiteral("4"), QStringLiteral("--frames"),
         QStringLiteral("3"), QStringLiteral("--size"), QStringLiteral("642x482"), QStringLiteral("--fill"),
         QStringLiteral("--overlay"), QStringLiteral("--label-parent")});
    for (const QPoint &corner : {QPoint(0, 0), QPoint(322, 0), QPoint(0, 242), QPoint(322, 242)}) {
        EXPECT_GE(countNear(image, QRect(corner, QSize(160, 50)), qRgb(255, 255, 255), 40), 30)
            << "the name of the pane at " << corner.x() << ',' << corner.y();
    }
}

// The sub-image renderer: no turn, no placement, the zoom window all the same.
TEST(Picture, subImageRenderer)
{
    expectQuarters(shot(Clips::quarters(), "--renderer subimage"), kWhole, kUpright);
    expectQuarters(shot(Clips::quarters(), "--renderer subimage --format nv12-padded"), kWhole, kUpright,
                   nv12Color);
    expectQuarters(
        shot(Clips::quarters(), "--renderer subimage --rotate 90 --mirror h --rect 100,50,299,249"), kWhole,
        kUpright);
    const QImage zoomed = shot(Clips::quarters(), "--renderer subimage --zoom 0.5,0,1,0.5");
    for (const QPoint &point : {QPoint(20, 20), QPoint(620, 440)}) {
        expectColor(zoomed, point.x(), point.y(), yv12Color(Clips::kQuarters[1]));
    }
}

TEST(Picture, overlayOfTheSubImageRenderer)
{
    const QImage without = shot(Clips::grey(), "--renderer subimage");
    const QImage with = shot(Clips::grey(), "--renderer subimage --overlay");
    EXPECT_EQ(countNear(without, kWhole, qRgb(255, 255, 0), 2), 0);
    EXPECT_GE(countNear(with, kWhole, qRgb(255, 255, 0), 2), 1500);
    EXPECT_GE(countNear(with, kWhole, qRgb(255, 0, 0), 2), 10000) << "filled areas are opaque here";
    expectTexts(without, with);
}
