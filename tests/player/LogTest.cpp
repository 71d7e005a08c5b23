// The library's log by way of the sample core library beside the player.
#include "Clips.h"
#include "PlayerRun.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

namespace {

const char *const kTrace = "CreateShader CLS_ShaderYuv.";
const char *const kFirstFrame =
    "ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player";

QStringList play(const QStringList &asOptions, const Environment &environment)
{
    const PlayerResult result =
        runPlayer(QStringList{Clips::quarters(), QStringLiteral("--fast")} + asOptions, environment);
    EXPECT_EQ(result.nStatus, 0);
    return result.asErrors;
}

QStringList linesOf(const QString &sFile)
{
    QFile file(sFile);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(sFile);
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

int countEndingWith(const QStringList &asLines, const char *pEnd)
{
    return static_cast<int>(std::count_if(asLines.begin(), asLines.end(), [pEnd](const QString &sLine) {
        return sLine.endsWith(QLatin1String(pEnd));
    }));
}

void expectWholeRecords(const QStringList &asLines)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} \\S"));
    for (const QString &sLine : asLines) {
        EXPECT_TRUE(pattern.match(sLine).hasMatch()) << qPrintable(sLine);
    }
}

} // namespace

TEST(Log, levelOptionShowsTraces)
{
    const QStringList asLines = play({QStringLiteral("--log"), QStringLiteral("200")}, {});
    EXPECT_EQ(countEndingWith(asLines, kTrace), 1);
    EXPECT_EQ(countEndingWith(asLines, kFirstFrame), 1);
    expectWholeRecords(asLines);
}

TEST(Log, silentBelowTheLevelOfTraces)
{
    EXPECT_EQ(play({}, {}), QStringList());
    EXPECT_EQ(play({QStringLiteral("--log"), QStringLiteral("199")}, {}), QStringList());
    EXPECT_EQ(play({QStringLiteral("--log"), QStringLiteral("0")}, {}), QStringList());
}

TEST(Log, fileGetsTracesOfItsOwn)
{
    const QString sFile = freshPath(QStringLiteral(".log"));
    EXPECT_EQ(play({}, {{QStringLiteral("XELT_CORELOG_FILE"), sFile}}), QStringList());
    const QStringList asLines = linesOf(sFile);
    EXPECT_EQ(countEndingWith(asLines, kTrace), 1);
    EXPECT_EQ(countEndingWith(asLines, kFirstFrame), 1);
    expectWholeRecords(asLines);
}

TEST(Log, fileLevel)
{
    const QString sFile = freshPath(QStringLiteral(".log"));
    const QStringList asErrors = play({QStringLiteral("--log"), QStringLiteral("200")},
                                      {{QStringLiteral("XELT_CORELOG_FILE"), sFile},
                                       {QStringLiteral("XELT_CORELOG_FILE_LEVEL"), QStringLiteral("100")}});
    EXPECT_EQ(countEndingWith(asErrors, kTrace), 1);
    EXPECT_EQ(linesOf(sFile), QStringList());
}

// Without --log the variable stands.
TEST(Log, levelByEnvironment)
{
    const QStringList asLines = play({}, {{QStringLiteral("XELT_CORELOG_LEVEL"), QStringLiteral("200")}});
    EXPECT_EQ(countEndingWith(asLines, kTrace), 1);
}
