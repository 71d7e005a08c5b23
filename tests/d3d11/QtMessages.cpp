#include "QtMessages.h"

#include "TestEnvironment.h"

#include <QLoggingCategory>

#include <utility>

namespace xelttest {

namespace {

QtMessages *g_pRecorder = nullptr;

} // namespace

bool operator==(const QtMessage &a, const QtMessage &b)
{
    return a.type == b.type && a.sText == b.sText;
}

std::ostream &operator<<(std::ostream &stream, const QtMessage &message)
{
    static const char *const k_apTypes[] = {"debug", "warning", "critical", "fatal", "info"};
    return stream << k_apTypes[message.type] << " \"" << message.sText << '"';
}

QtMessage debugLine(const std::string &sText)
{
    return {QtDebugMsg, sText};
}

QtMessage warningLine(const std::string &sText)
{
    return {QtWarningMsg, sText};
}

QtMessages::QtMessages()
    : m_pfnBefore(nullptr), m_blDebugBefore(QLoggingCategory::defaultCategory()->isDebugEnabled())
{
    g_pRecorder = this;
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    m_pfnBefore = qInstallMessageHandler(handle);
}

QtMessages::~QtMessages()
{
    qInstallMessageHandler(m_pfnBefore);
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, m_blDebugBefore);
    g_pRecorder = nullptr;
}

std::vector<QtMessage> QtMessages::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_vecMessages, {});
}

void QtMessages::handle(QtMsgType type, const QMessageLogContext &context, const QString &sText)
{
    if (isDisplaysNoise(sText.toUtf8())) {
        return;
    }
    const std::lock_guard lock(g_pRecorder->m_mutex);
    const bool blHasPosition = context.file != nullptr || context.line != 0 || context.function != nullptr;
    g_pRecorder->m_vecMessages.push_back({type, sText.toStdString(), blHasPosition});
}

} // namespace xelttest
