#include "Clips.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

namespace Clips {

namespace {

QTemporaryDir &directory()
{
    static QTemporaryDir dir;
    return dir;
}

QString path(const char *pName)
{
    return directory().filePath(QLatin1String(pName));
}

QString write(const QString &sFile, const QByteArray &content)
{
    QFile file(sFile);
    const bool blWritten = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    return blWritten ? QString() : QStringLiteral("'%1' cannot be written").arg(sFile);
}

QString ffmpeg(const QStringList &asArguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("ffmpeg"), QStringList{QStringLiteral("-nostdin"), QStringLiteral("-v"),
                                                        QStringLiteral("error"), QStringLiteral("-y")} +
                                                asArguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0) {
        return QStringLiteral("ffmpeg failed: %1 %2")
            .arg(process.errorString(), QString::fromLocal8Bit(process.readAll()));
    }
    return {};
}

// Planes of one picture, by the colour of each pixel.
QByteArray planes(const std::function<Yuv(int x, int y)> &colorAt)
{
    QByteArray bytes;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            bytes.append(static_cast<char>(colorAt(x, y).nY));
        }
    }
    for (const auto component : {&Yuv::nU, &Yuv::nV}) {
        for (int y = 0; y < kHeight; y += 2) {
            for (int x = 0; x < kWidth; x += 2) {
                bytes.append(static_cast<char>(colorAt(x, y).*component));
            }
        }
    }
    return bytes;
}

QString encode(const QByteArray &picture, const QString &sFile)
{
    const QString sRaw = sFile + QStringLiteral(".yuv");
    const QString sProblem = write(sRaw, picture.repeated(kFrames));
    if (!sProblem.isEmpty()) {
        return sProblem;
    }
    return ffmpeg({QStringLiteral("-f"), QStringLiteral("rawvideo"), QStringLiteral("-pix_fmt"),
                   QStringLiteral("yuv420p"), QStringLiteral("-s"),
                   QStringLiteral("%1x%2").arg(kWidth).arg(kHeight), QStringLiteral("-r"),
                   QStringLiteral("25"), QStringLiteral("-i"), sRaw, QStringLiteral("-c:v"),
                   QStringLiteral("libx264"), QStringLiteral("-qp"), QStringLiteral("0"),
                   QStringLiteral("-movflags"), QStringLiteral("faststart"), sFile});
}

// Two thirds of a clip whose packets are of some size.
QString makeBrokenOff()
{
    const QString sWhole = path("whole.mp4");
    const QString sProblem =
        ffmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral("testsrc2=size=320x240:rate=25:duration=2"), QStringLiteral("-c:v"),
                QStringLiteral("libx264"), QStringLiteral("-movflags"), QStringLiteral("faststart"), sWhole});
    if (!sProblem.isEmpty()) {
        return sProblem;
    }
    QFile whole(sWhole);
    if (!whole.open(QIODevice::ReadOnly)) {
        return QStringLiteral("'%1' cannot be read").arg(sWhole);
    }
    return write(brokenOff(), whole.read(whole.size() * 2 / 3));
}

} // namespace

QString make()
{
    const auto quarterAt = [](int x, int y) {
        return kQuarters[(y < kHeight / 2 ? 0 : 2) + (x < kWidth / 2 ? 0 : 1)];
    };
    const std::function<QString()> aSteps[] = {
        [&] { return encode(planes(quarterAt), quarters()); },
        [&] { return encode(planes([](int, int) { return kGrey; }), grey()); },
        [] { return makeBrokenOff(); },
        [] { return write(noVideo(), "This is no video.\n"); },
        [] {
            return ffmpeg({QStringLiteral("-i"), quarters(), QStringLiteral("-c"), QStringLiteral("copy"),
                           otherContainer()});
        },
    };
    for (const auto &step : aSteps) {
        const QString sProblem = step();
        if (!sProblem.isEmpty()) {
            return sProblem;
        }
    }
    return {};
}

QString folder()
{
    return directory().path();
}
QString quarters()
{
    return path("quarters.mp4");
}
QString grey()
{
    return path("grey.mp4");
}
QString brokenOff()
{
    return path("broken-off.mp4");
}
QString noVideo()
{
    return path("no-video.mp4");
}
QString otherContainer()
{
    return path("quarters.mkv");
}

} // namespace Clips
