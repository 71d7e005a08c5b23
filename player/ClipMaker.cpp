#include "ClipMaker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>

namespace {

// The name tells what is in it, so that another version does not take an old clip for its own.
const char *const kClipName = "testsrc2-1920x1080-25fps-8s.mp4";

QString clipFolder()
{
    const QStringList astrRoots{QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation),
                                QDir::tempPath()};
    for (const QString &strRoot : astrRoots) {
        QString strFolder = strRoot + QStringLiteral("/xeltplay");
        if (!strRoot.isEmpty() && QDir().mkpath(strFolder) && QFileInfo(strFolder).isWritable()) {
            return strFolder;
        }
    }
    return {};
}

// Empty on success.
QString runFfmpeg(const QString &strTarget)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("ffmpeg"),
                  {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                   QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                   QStringLiteral("testsrc2=size=1920x1080:rate=25:duration=8"), QStringLiteral("-c:v"),
                   QStringLiteral("libx264"), QStringLiteral("-preset"), QStringLiteral("veryfast"),
                   QStringLiteral("-crf"), QStringLiteral("20"), QStringLiteral("-pix_fmt"),
                   QStringLiteral("yuv420p"), QStringLiteral("-y"), strTarget});
    if (!process.waitForStarted()) {
        return QStringLiteral("the ffmpeg program does not start: %1").arg(process.errorString());
    }
    if (!process.waitForFinished(180000)) {
        process.kill();
        process.waitForFinished();
        return QStringLiteral("the ffmpeg program does not come to an end");
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return QStringLiteral("the ffmpeg program failed: %1")
            .arg(QString::fromLocal8Bit(process.readAll()).simplified());
    }
    return {};
}

} // namespace

Clip testClip()
{
    const QString strFolder = clipFolder();
    if (strFolder.isEmpty()) {
        return {{}, QStringLiteral("no folder to put the test clip into")};
    }
    const QString strFile = strFolder + QLatin1Char('/') + QLatin1String(kClipName);
    if (QFileInfo::exists(strFile)) {
        return {strFile, {}};
    }
    std::fprintf(stderr, "Making a test clip: %s\n", qPrintable(strFile));
    // Made beside its place and then moved there: another player never sees half a clip.
    const QTemporaryDir work(strFolder + QStringLiteral("/new-XXXXXX"));
    const QString strNew = work.filePath(QLatin1String(kClipName));
    QString strProblem = runFfmpeg(strNew);
    if (strProblem.isEmpty() && !QFile::rename(strNew, strFile) && !QFileInfo::exists(strFile)) {
        strProblem = QStringLiteral("'%1' cannot be written").arg(strFile);
    }
    return {strFile, strProblem};
}
