#include "PlayerRun.h"

#include "Clips.h"

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QRegularExpression>

namespace {

constexpr int kLongestRunMs = 120000;

QProcessEnvironment playerEnvironment(const Environment &extra)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *pName : {"QT_OPENGL", "QT_XCB_GL_INTEGRATION", "XELT_CORELOG_LEVEL", "XELT_CORELOG_FILE",
                              "XELT_CORELOG_FILE_LEVEL"}) {
        environment.remove(QLatin1String(pName));
    }
    // Qt complains on standard error where there is none.
    const QString sRuntime = Clips::folder() + QStringLiteral("/runtime");
    QDir().mkpath(sRuntime);
    QFile::setPermissions(sRuntime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), sRuntime);
    for (auto it = extra.begin(); it != extra.end(); ++it) {
        if (it.value().isNull()) {
            environment.remove(it.key());
        } else {
            environment.insert(it.key(), it.value());
        }
    }
    return environment;
}

// Windows ends a line with two characters.
QString text(const QByteArray &abOutput)
{
    return QString::fromUtf8(abOutput).remove(QLatin1Char('\r'));
}

std::vector<PaneLine> paneLines(const QString &sOutput)
{
    static const QRegularExpression pattern(
        QStringLiteral("^pane (\\d+): decoded (\\d+), pushed (\\d+), refused (\\d+), painted (\\d+), "
                       "([0-9.]+) frames a second$"),
        QRegularExpression::MultilineOption);
    std::vector<PaneLine> lines;
    for (auto it = pattern.globalMatch(sOutput); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        lines.push_back({match.captured(1).toInt(), match.captured(2).toLongLong(),
                         match.captured(3).toLongLong(), match.captured(4).toLongLong(),
                         match.captured(5).toLongLong(), match.captured(6).toDouble()});
    }
    return lines;
}

} // namespace

PlayerRun::PlayerRun(const QStringList &asArguments, const Environment &environment, const QString &sProgram)
{
    m_process.setProcessEnvironment(playerEnvironment(environment));
    m_process.setWorkingDirectory(Clips::folder());
    m_process.start(sProgram, asArguments);
}

bool PlayerRun::waitForError(const QByteArray &abText)
{
    const QDeadlineTimer deadline(kLongestRunMs);
    m_process.setReadChannel(QProcess::StandardError);
    while (!m_process.peek(m_process.bytesAvailable()).contains(abText)) {
        if (!m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
            return false;
        }
    }
    return true;
}

PlayerResult PlayerRun::finish()
{
    PlayerResult result;
    const bool blEnded = m_process.waitForFinished(kLongestRunMs);
    if (!blEnded) {
        m_process.kill();
        m_process.waitForFinished();
    }
    result.blCrashed = !blEnded || m_process.exitStatus() != QProcess::NormalExit;
    result.nStatus = m_process.exitCode();
    result.sOutput = text(m_process.readAllStandardOutput());
    result.panes = paneLines(result.sOutput);
    const QString sErrors = text(m_process.readAllStandardError());
    for (const QString &sLine : sErrors.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (!sLine.startsWith(QStringLiteral("Screenshot: ")) &&
            !sLine.startsWith(QStringLiteral("Making a test clip: "))) {
            result.asErrors << sLine;
        }
    }
    return result;
}

bool leakCheckFailed(const PlayerResult &result)
{
    return result.asErrors.join(QLatin1Char('\n'))
        .contains(QStringLiteral("LeakSanitizer has encountered a fatal error"));
}

PlayerResult runPlayer(const QStringList &asArguments, const Environment &environment)
{
    PlayerResult result = PlayerRun(asArguments, environment).finish();
    for (int i = 0; i < 2 && leakCheckFailed(result); ++i) {
        result = PlayerRun(asArguments, environment).finish();
    }
    return result;
}

QImage screenshotOf(const QStringList &asArguments)
{
    const QString sFile = freshPath(QStringLiteral(".png"));
    const PlayerResult result =
        runPlayer(QStringList(asArguments) << QStringLiteral("--screenshot") << sFile);
    const QImage image = QImage(sFile).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(result.nStatus, 0) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
    EXPECT_FALSE(image.isNull()) << qPrintable(result.asErrors.join(QLatin1Char('\n')));
    return image;
}

QString freshPath(const QString &sSuffix)
{
    static int nCount = 0;
    return QStringLiteral("%1/fresh-%2%3").arg(Clips::folder()).arg(++nCount).arg(sSuffix);
}
