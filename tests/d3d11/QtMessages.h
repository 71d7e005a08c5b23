// Records what goes to Qt's message channels while it lives, debug lines of the default category included.
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <mutex>
#include <ostream>
#include <string>
#include <vector>

namespace xelttest {

struct QtMessage
{
    QtMsgType type;
    std::string sText;
    bool blHasPosition = false; // a source file, line or function came with it
};

bool operator==(const QtMessage &a, const QtMessage &b); // type and text
std::ostream &operator<<(std::ostream &stream, const QtMessage &message);

QtMessage debugLine(const std::string &sText);
QtMessage warningLine(const std::string &sText);

// One at a time. The handler may run on any thread.
class QtMessages
{
public:
    QtMessages();
    ~QtMessages();
    QtMessages(const QtMessages &) = delete;
    QtMessages &operator=(const QtMessages &) = delete;

    // What has come since the last call.
    std::vector<QtMessage> take();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &sText);

    std::mutex m_mutex;
    std::vector<QtMessage> m_vecMessages;
    QtMessageHandler m_pfnBefore;
    bool m_blDebugBefore;
};

} // namespace xelttest
