// Messages for Qt's own channel, without a source position. A host's message handler may call the library, so
// no message may be written while a lock is held: who takes one makes a Deferral first.
#pragma once

#include "platform/Compiler.h"

#include <QString>
#include <vector>

namespace qtlog {

// printf-style as QString::asprintf has it. Any thread. A message for which memory is wanting is dropped, and
// so is what a handler throws.
void Debug(const char *pszFormat, ...) noexcept XELT_PRINTF(1, 2);
void Warning(const char *pszFormat, ...) noexcept XELT_PRINTF(1, 2);

// While one lives, the messages of its thread wait; they are written in their order when the outermost one
// ends. It ends on the thread that it was made on, in the reverse order of making.
class Deferral
{
public:
    Deferral() noexcept;
    ~Deferral();
    Deferral(const Deferral &) = delete;
    Deferral &operator=(const Deferral &) = delete;

private:
    friend void Debug(const char *, ...) noexcept;
    friend void Warning(const char *, ...) noexcept;

    struct Message
    {
        QtMsgType type;
        QString sText;
    };

    static void Write(QtMsgType type, const QString &sText);
    static void WriteOrKeep(QtMsgType type, const QString &sText);

    std::vector<Message> m_vecMessages; // of the outermost one only
};

} // namespace qtlog
