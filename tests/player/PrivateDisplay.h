#pragma once

#include <QImage>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

// A virtual X display for this process and the ones it starts, as long as the object lives.
class PrivateDisplay
{
public:
    PrivateDisplay();
    ~PrivateDisplay();

    PrivateDisplay(const PrivateDisplay &) = delete;
    PrivateDisplay &operator=(const PrivateDisplay &) = delete;

    // Empty when it runs; DISPLAY names it then.
    const QString &problem() const { return m_sProblem; }

    // What it shows now; null when there is none.
    static QImage screen();

private:
    QTemporaryDir m_frameBuffer;
    QProcess m_server;
    QString m_sProblem;
};
