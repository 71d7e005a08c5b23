#pragma once

#include <QProcess>
#include <QString>

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

private:
    QProcess m_server;
    QString m_sProblem;
};
