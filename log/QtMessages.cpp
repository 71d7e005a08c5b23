#include "log/QtMessages.h"

#include <QLoggingCategory>
#include <QMessageLogger>
#include <cstdarg>

namespace qtlog {

namespace {

thread_local Deferral *t_pOutermost = nullptr;

// Warnings have no such short cut: with QT_FATAL_WARNINGS they end the process even where they are filtered.
bool IsDebugEnabled()
{
    const QLoggingCategory *pCategory = QLoggingCategory::defaultCategory();
    return pCategory == nullptr || pCategory->isDebugEnabled();
}

} // namespace

void Debug(const char *pszFormat, ...) noexcept
{
    if (!IsDebugEnabled()) {
        return;
    }
    va_list arguments;
    va_start(arguments, pszFormat);
    try {
        Deferral::WriteOrKeep(QtDebugMsg, QString::vasprintf(pszFormat, arguments));
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
    va_end(arguments);
}

void Warning(const char *pszFormat, ...) noexcept
{
    va_list arguments;
    va_start(arguments, pszFormat);
    try {
        Deferral::WriteOrKeep(QtWarningMsg, QString::vasprintf(pszFormat, arguments));
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
    va_end(arguments);
}

Deferral::Deferral() noexcept
{
    if (t_pOutermost == nullptr) {
        t_pOutermost = this;
    }
}

Deferral::~Deferral()
{
    if (t_pOutermost != this) {
        return;
    }
    // First, so that a handler's own calls find no deferral that has ended.
    t_pOutermost = nullptr;
    for (const Message &message : m_vecMessages) {
        try {
            Write(message.type, message.sText);
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }
}

void Deferral::WriteOrKeep(QtMsgType type, const QString &sText)
{
    if (t_pOutermost != nullptr) {
        t_pOutermost->m_vecMessages.push_back({type, sText});
    } else {
        Write(type, sText);
    }
}

void Deferral::Write(QtMsgType type, const QString &sText)
{
    const QMessageLogger logger(nullptr, 0, nullptr);
    if (type == QtDebugMsg) {
        logger.debug("%s", qUtf8Printable(sText));
    } else {
        logger.warning("%s", qUtf8Printable(sText));
    }
}

} // namespace qtlog
