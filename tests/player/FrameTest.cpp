// How many frames are decoded and pushed, and how fast.
#include "Clips.h"
#include "PlayerRun.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

void expectCounts(const PaneLine &line, qint64 nFrames)
{
    EXPECT_EQ(line.nDecoded, nFrames) << "pane " << line.nPane;
    EXPECT_EQ(line.nPushed, nFrames) << "pane " << line.nPane;
    EXPECT_EQ(line.nRefused, 0) << "pane " << line.nPane;
    EXPECT_GT(line.nPainted, 0) << "pane " << line.nPane;
}

PlayerResult runWell(const QStringList &asArguments)
{
    const PlayerResult result = runPlayer(asArguments);
    EXPECT_FALSE(result.blCrashed);
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.asErrors, QStringList()) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
    return result;
}

} // namespace

TEST(Frames, wholeFile)
{
    const PlayerResult result = runWell({Clips::quarters(), QStringLiteral("--fast")});
    ASSERT_EQ(result.panes.size(), 1U);
    expectCounts(result.panes[0], Clips::kFrames);
}

TEST(Frames, containerWithoutFullIndex)
{
    const PlayerResult result = runWell({Clips::otherContainer(), QStringLiteral("--fast")});
    ASSERT_EQ(result.panes.size(), 1U);
    expectCounts(result.panes[0], Clips::kFrames);
}

TEST(Frames, firstFramesOnly)
{
    for (const int nFrames : {1, 7, Clips::kFrames}) {
        const PlayerResult result = runWell({Clips::quarters(), QStringLiteral("--fast"),
                                             QStringLiteral("--frames"), QString::number(nFrames)});
        ASSERT_EQ(result.panes.size(), 1U);
        expectCounts(result.panes[0], nFrames);
    }
}

TEST(Frames, loopGoesOnAfterTheEnd)
{
    const PlayerResult result =
        runWell({Clips::quarters(), QStringLiteral("--fast"), QStringLiteral("--loop"),
                 QStringLiteral("--frames"), QString::number(3 * Clips::kFrames + 5)});
    ASSERT_EQ(result.panes.size(), 1U);
    expectCounts(result.panes[0], 3 * Clips::kFrames + 5);
}

TEST(Frames, eachFormat)
{
    for (const char *pFormat : {"yv12", "nv12", "nv12-padded"}) {
        SCOPED_TRACE(pFormat);
        const PlayerResult result = runWell({Clips::quarters(), QStringLiteral("--fast"),
                                             QStringLiteral("--format"), QLatin1String(pFormat)});
        ASSERT_EQ(result.panes.size(), 1U);
        expectCounts(result.panes[0], Clips::kFrames);
    }
}

TEST(Frames, panesTakeTurnsAtTheFiles)
{
    const PlayerResult result =
        runWell({Clips::quarters(), Clips::grey(), QStringLiteral("--panes"), QStringLiteral("4"),
                 QStringLiteral("--frames"), QStringLiteral("10"), QStringLiteral("--overlay")});
    ASSERT_EQ(result.panes.size(), 4U);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(result.panes[static_cast<std::size_t>(i)].nPane, i + 1);
        expectCounts(result.panes[static_cast<std::size_t>(i)], 10);
    }
}

// A machine under load may show them later than meant, but never sooner.
TEST(Frames, pacedAtTheStreamsRate)
{
    const PlayerResult result = runWell({Clips::quarters()});
    ASSERT_EQ(result.panes.size(), 1U);
    expectCounts(result.panes[0], Clips::kFrames);
    EXPECT_LT(result.panes[0].perSecond, 26.0);
    EXPECT_GT(result.panes[0].perSecond, 5.0);
}

TEST(Frames, secondsEndTheRun)
{
    const PlayerResult result = runWell(
        {Clips::quarters(), QStringLiteral("--loop"), QStringLiteral("--seconds"), QStringLiteral("2.5")});
    ASSERT_EQ(result.panes.size(), 1U);
    const PaneLine &line = result.panes[0];
    EXPECT_GT(line.nPushed, 0);
    EXPECT_LE(line.nPushed, 100); // 63 in 2.5 seconds, and some room for a machine that is late with the end
    EXPECT_EQ(line.nRefused, 0);
    EXPECT_LE(line.nDecoded - line.nPushed, 1); // one may have been waiting for its time
}

TEST(Frames, clipOfItsOwnIsMadeOnceAndLoops)
{
    const QString sCache = Clips::folder() + QStringLiteral("/cache");
    const Environment environment{{QStringLiteral("XDG_CACHE_HOME"), sCache}};
    const QStringList asArguments{QStringLiteral("--fast"), QStringLiteral("--frames"),
                                  QStringLiteral("250")};
    QDateTime written;
    for (int i = 0; i < 2; ++i) {
        const PlayerResult result = runPlayer(asArguments, environment);
        EXPECT_EQ(result.nStatus, 0) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
        ASSERT_EQ(result.panes.size(), 1U);
        expectCounts(result.panes[0], 250); // it is 200 frames long
        const QFileInfoList found =
            QDir(sCache + QStringLiteral("/xeltplay")).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);
        ASSERT_EQ(found.size(), 1);
        if (i == 0) {
            written = found[0].lastModified();
        }
        EXPECT_EQ(found[0].lastModified(), written);
    }
}

TEST(Frames, desktopGl)
{
    const PlayerResult result =
        runWell({Clips::quarters(), QStringLiteral("--fast"), QStringLiteral("--desktop-gl")});
    ASSERT_EQ(result.panes.size(), 1U);
    expectCounts(result.panes[0], Clips::kFrames);
}
