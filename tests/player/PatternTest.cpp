// The built-in test pattern on the screen.
#include "PatternPicture.h"
#include "PatternSource.h"
#include "PlayerRun.h"

#include <gtest/gtest.h>

namespace {

constexpr int kFrames = 4;

QImage shot(const char *pOptions)
{
    const QImage image = screenshotOf(patternArguments(kFrames) + QString::fromLatin1(pOptions).split(
                                                                      QLatin1Char(' '), Qt::SkipEmptyParts));
    EXPECT_EQ(image.size(), QSize(640, 480));
    return image;
}

} // namespace

TEST(Pattern, eachFormatOnEachGl)
{
    expectPattern(shot(""), kFrames, yv12Color);
    expectPattern(shot("--desktop-gl"), kFrames, yv12Color);
    expectPattern(shot("--format nv12"), kFrames, nv12Color);
    expectPattern(shot("--format nv12-padded"), kFrames, nv12Color);
    expectPattern(shot("--renderer subimage"), kFrames, yv12Color);
}

TEST(Pattern, turned)
{
    const QImage image = shot("--fill --rotate 180");
    for (int i = 0; i < PatternSource::kBars; ++i) {
        expectColor(image, 639 - (40 + 80 * i), 479 - 200, yv12Color(patternBar(i)));
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
