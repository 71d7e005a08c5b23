// The built-in test pattern on the screen.
#include "PatternSource.h"
#include "PlayerRun.h"
#include "ScreenColors.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

constexpr int kFrames = 4;

Clips::Yuv yuv(const YuvColor &color)
{
    return {color.nY, color.nU, color.nV};
}

QImage shot(const char *pOptions)
{
    QStringList asArguments{QStringLiteral("--pattern"), QStringLiteral("--pattern-size"),
                            QStringLiteral("640x480"),   QStringLiteral("--frames"),
                            QString::number(kFrames),    QStringLiteral("--size"),
                            QStringLiteral("640x480")};
    asArguments += QString::fromLatin1(pOptions).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QImage image = screenshotOf(asArguments);
    EXPECT_EQ(image.size(), QSize(640, 480));
    return image;
}

// All parts of the last picture, one pixel of the pattern being one of the screen.
void expectPattern(const QImage &image, const std::function<QRgb(const Clips::Yuv &)> &color)
{
    ASSERT_EQ(image.size(), QSize(640, 480));
    for (int i = 0; i < PatternSource::kBars; ++i) {
        expectColor(image, 40 + 80 * i, 200, color(yuv(PatternSource::barColor(i))));
    }
    const PatternSource pattern({QSize(640, 480), 25.0}, FrameLayout::Yv12);
    const QPoint box = pattern.box(kFrames - 1).center();
    expectColor(image, box.x(), box.y(), color(yuv(PatternSource::kBoxColor)));
    for (const int x : {1, 200, 400, 638}) {
        expectColor(image, x, 270, color({16 + 219 * x / 639, 128, 128}));
    }
    expectColor(image, 5, 470, color(yuv(PatternSource::kGroundColor)));
}

} // namespace

TEST(Pattern, eachFormatOnEachGl)
{
    expectPattern(shot(""), yv12Color);
    expectPattern(shot("--desktop-gl"), yv12Color);
    expectPattern(shot("--format nv12"), nv12Color);
    expectPattern(shot("--format nv12-padded"), nv12Color);
    expectPattern(shot("--renderer subimage"), yv12Color);
}

TEST(Pattern, turned)
{
    const QImage image = shot("--fill --rotate 180");
    for (int i = 0; i < PatternSource::kBars; ++i) {
        expectColor(image, 639 - (40 + 80 * i), 479 - 200, yv12Color(yuv(PatternSource::barColor(i))));
    }
}

TEST(Pattern, sameNumberSamePicture)
{
    EXPECT_EQ(shot(""), shot("--fast"));
    EXPECT_NE(shot(""), shot("--frames 5"));
}

TEST(Pattern, playsInEachPaneAtItsRate)
{
    const PlayerResult result =
        runPlayer({QStringLiteral("--pattern"), QStringLiteral("--pattern-size"), QStringLiteral("320x240"),
                   QStringLiteral("--pattern-rate"), QStringLiteral("20"), QStringLiteral("--panes"),
                   QStringLiteral("2"), QStringLiteral("--frames"), QStringLiteral("30")});
    EXPECT_FALSE(result.blCrashed);
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.asErrors, QStringList()) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
    ASSERT_EQ(result.panes.size(), 2U);
    for (const PaneLine &pane : result.panes) {
        EXPECT_EQ(pane.nDecoded, 30);
        EXPECT_EQ(pane.nPushed, 30);
        EXPECT_EQ(pane.nRefused, 0);
        EXPECT_LT(pane.perSecond, 21.0); // later than meant on a machine under load, never sooner
        EXPECT_GT(pane.perSecond, 4.0);
    }
}
