// What cannot be played gets one clear line and a status that is not 0.
#include "Clips.h"
#include "PlayerRun.h"

#include <gtest/gtest.h>

namespace {

PlayerResult expectOneLine(const QStringList &asArguments, int nStatus, const QString &sPart,
                           const Environment &environment = {})
{
    const PlayerResult result = runPlayer(asArguments, environment);
    EXPECT_FALSE(result.blCrashed);
    EXPECT_EQ(result.nStatus, nStatus);
    EXPECT_EQ(result.asErrors.size(), 1) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
    EXPECT_TRUE(result.asErrors.value(0).startsWith(QStringLiteral("xeltplay: ")));
    EXPECT_TRUE(result.asErrors.value(0).contains(sPart))
        << qPrintable(result.asErrors.value(0)) << " lacks " << qPrintable(sPart);
    return result;
}

} // namespace

TEST(Errors, commandLine)
{
    const struct
    {
        const char *pArguments;
        const char *pPart;
    } aCases[] = {
        {"--bogus", "bogus"},
        {"--frames", "--frames"},
        {"--frames 0", "--frames"},
        {"--frames many", "many"},
        {"--panes 0", "--panes"},
        {"--panes 257", "--panes"},
        {"--rotate 45", "--rotate takes 0, 90, 180, 270, not '45'"},
        {"--mirror x", "--mirror"},
        {"--zoom 0,0,1", "--zoom"},
        {"--zoom 0,0,1,nan", "--zoom"},
        {"--rect 5,5,5,99", "--rect"},
        {"--rect -2147483648,0,2147483648,9", "--rect"},
        {"--size 640", "--size"},
        {"--size 640x0", "--size"},
        {"--seconds 0", "--seconds"},
        {"--seconds inf", "--seconds"},
        {"--log loud", "--log"},
        {"--format jpeg", "--format takes yv12, nv12, nv12-padded, d3d11, not 'jpeg'"},
        {"--renderer gl", "--renderer takes yuv, subimage, not 'gl'"},
        {"--panes 1 one.mp4 two.mp4", "2 files"},
        {"--pattern film.mp4", "--pattern plays no files"},
        {"--pattern-size 640x480", "--pattern-size needs --pattern"},
        {"--pattern-rate 30 film.mp4", "--pattern-rate needs --pattern"},
        {"--pattern --pattern-size 640x1", "--pattern-size takes WxH, each from 2 to 16384, not '640x1'"},
        {"--pattern --pattern-rate 0", "--pattern-rate"},
        {"--pattern --pattern-rate nan", "--pattern-rate"},
    };
    for (const auto &entry : aCases) {
        SCOPED_TRACE(entry.pArguments);
        const PlayerResult result = expectOneLine(
            QString::fromLatin1(entry.pArguments).split(QLatin1Char(' ')), 2, QLatin1String(entry.pPart));
        EXPECT_EQ(result.sOutput, QString());
    }
}

TEST(Errors, helpIsNoError)
{
    const PlayerResult result =
        runPlayer({QStringLiteral("--help")}, {{QStringLiteral("DISPLAY"), QString()}});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.asErrors, QStringList());
    for (const char *pOption :
         {"--panes",   "--pattern", "--pattern-size", "--pattern-rate", "--format", "--loop",   "--fast",
          "--seconds", "--frames",  "--overlay",      "--rotate",       "--ccw",    "--mirror", "--zoom",
          "--rect",    "--fill",    "--desktop-gl",   "--screenshot",   "--size",   "--log"}) {
        EXPECT_TRUE(result.sOutput.contains(QLatin1String(pOption))) << pOption;
    }
}

TEST(Errors, noDisplay)
{
    const PlayerResult result = expectOneLine(
        {Clips::quarters()}, 1, QStringLiteral("no display"),
        {{QStringLiteral("DISPLAY"), QString()}, {QStringLiteral("QT_QPA_PLATFORM"), QString()}});
    EXPECT_TRUE(result.panes.empty());
}

TEST(Errors, missingFile)
{
    const PlayerResult result =
        expectOneLine({QStringLiteral("missing.mp4")}, 1, QStringLiteral("'missing.mp4' cannot be opened"));
    ASSERT_EQ(result.panes.size(), 1U);
    EXPECT_EQ(result.panes[0].nDecoded, 0);
}

TEST(Errors, noVideoInTheFile)
{
    expectOneLine({Clips::noVideo()}, 1, QStringLiteral("cannot be opened"));
}

TEST(Errors, folderInsteadOfFile)
{
    expectOneLine({Clips::folder()}, 1, QStringLiteral("cannot be opened"));
}

TEST(Errors, streamBreaksOff)
{
    const PlayerResult result =
        expectOneLine({Clips::brokenOff(), QStringLiteral("--fast")}, 1, QStringLiteral("breaks off after"));
    ASSERT_EQ(result.panes.size(), 1U);
    EXPECT_GT(result.panes[0].nPushed, 0); // what was there is shown
    EXPECT_LT(result.panes[0].nPushed, 50);
}

TEST(Errors, loopDoesNotRepeatABrokenStream)
{
    expectOneLine({Clips::brokenOff(), QStringLiteral("--fast"), QStringLiteral("--loop")}, 1,
                  QStringLiteral("breaks off after"));
}

TEST(Errors, brokenPaneDoesNotStopTheOther)
{
    const PlayerResult result =
        expectOneLine({Clips::noVideo(), Clips::quarters()}, 1, QStringLiteral("pane 1: "));
    ASSERT_EQ(result.panes.size(), 2U);
    EXPECT_EQ(result.panes[0].nPushed, 0);
    EXPECT_EQ(result.panes[1].nDecoded, Clips::kFrames);
    EXPECT_EQ(result.panes[1].nPushed, Clips::kFrames);
    EXPECT_EQ(result.panes[1].nRefused, 0);
}

TEST(Errors, screenshotThatCannotBeWritten)
{
    expectOneLine({Clips::quarters(), QStringLiteral("--fast"), QStringLiteral("--screenshot"),
                   Clips::folder() + QStringLiteral("/missing/shot.png")},
                  1, QStringLiteral("cannot be written"));
}

TEST(Errors, noFfmpegForTheTestClip)
{
    expectOneLine({}, 1, QStringLiteral("the ffmpeg program does not start"),
                  {{QStringLiteral("PATH"), Clips::folder()},
                   {QStringLiteral("XDG_CACHE_HOME"), Clips::folder() + QStringLiteral("/empty-cache")}});
}
