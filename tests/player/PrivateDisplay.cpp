#include "PrivateDisplay.h"

PrivateDisplay::PrivateDisplay()
{
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("1280x1024x24"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp"), QStringLiteral("-noreset")});
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
