#include "PrivateDisplay.h"

#include <QFile>
#include <QtEndian>

#include <array>

namespace {

QString g_sFrameBuffer; // the file that is the screen

} // namespace

PrivateDisplay::PrivateDisplay()
{
    m_server.setStandardErrorFile(QProcess::nullDevice());
    // Without repetition: on a busy machine a key that is struck for a moment stays down for longer.
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("1280x1024x24"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp"), QStringLiteral("-noreset"), QStringLiteral("-r"),
                    QStringLiteral("-fbdir"), m_frameBuffer.path()});
    g_sFrameBuffer = m_frameBuffer.filePath(QStringLiteral("Xvfb_screen0"));
    while (!m_server.canReadLine()) {
        if (!m_server.waitForReadyRead(30000)) {
            m_sProblem = QStringLiteral("Xvfb does not start: %1").arg(m_server.errorString());
            return;
        }
    }
    qputenv("DISPLAY", ':' + m_server.readLine().trimmed());
    qunsetenv("WAYLAND_DISPLAY");
}

PrivateDisplay::~PrivateDisplay()
{
    m_server.terminate();
    if (!m_server.waitForFinished(5000)) {
        m_server.kill();
        m_server.waitForFinished();
    }
}

// The file is a window dump: a header of 32-bit numbers, the highest byte first, then colours of 12 bytes each,
// then the rows.
QImage PrivateDisplay::screen()
{
    constexpr int kHeader = 25;
    QFile file(g_sFrameBuffer);
    const uchar *pBytes = file.open(QIODevice::ReadOnly) ? file.map(0, file.size()) : nullptr;
    if (pBytes == nullptr || file.size() < kHeader * 4) {
        return {};
    }
    std::array<quint32, kHeader> header{};
    qFromBigEndian<quint32>(pBytes, kHeader, header.data());
    const qint64 nRows = header[0] + 12 * qint64{header[19]};
    const auto nWidth = static_cast<int>(header[4]);
    const auto nHeight = static_cast<int>(header[5]);
    const auto nPitch = static_cast<int>(header[12]);
    if (header[11] != 32 || file.size() < nRows + qint64{nPitch} * nHeight) {
        return {};
    }
    return QImage(pBytes + nRows, nWidth, nHeight, nPitch, QImage::Format_RGB32).copy();
}
