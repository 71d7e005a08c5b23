#include "CoreLog.h"

#include "System.h"

namespace xelttest {

namespace {

CoreLogRecord toRecord(const CoreLogCall *pCall)
{
    return {pCall->nKind, pCall->pText, pCall->nThread};
}

} // namespace

bool operator==(const CoreLogRecord &a, const CoreLogRecord &b)
{
    return a.nKind == b.nKind && a.sText == b.sText;
}

std::ostream &operator<<(std::ostream &stream, const CoreLogRecord &record)
{
    static const char *const k_apNames[] = {"msg", "lock", "date", "buf_msg", "err_msg_unlock", "get_level"};
    return stream << k_apNames[record.nKind] << "(\"" << record.sText << "\")";
}

CoreLog &CoreLog::instance()
{
    static CoreLog log;
    return log;
}

CoreLog::CoreLog()
{
    void *pModule = openModule(executableFolder() + "Ombrix.dll");
    if (pModule == nullptr) {
        return;
    }
    void *pSymbol = moduleSymbol(pModule, "xelt_corelog_control");
    if (pSymbol != nullptr) {
        m_pControl = reinterpret_cast<CoreLogControlFunction>(pSymbol)();
    }
}

void CoreLog::reset()
{
    setHook(nullptr);
    setLevels(200, 0);
    clear();
}

void CoreLog::clear()
{
    m_pControl->pfnClear();
}

void CoreLog::setLevels(int nFirst, int nSecond)
{
    m_pControl->pfnSetLevels(nFirst, nSecond);
}

void CoreLog::setHook(std::function<void(const CoreLogRecord &)> hook)
{
    m_pControl->pfnSetHook(nullptr, nullptr);
    m_hook = std::move(hook);
    if (m_hook) {
        m_pControl->pfnSetHook([](const CoreLogCall *pCall,
                                  void *pUser) { static_cast<CoreLog *>(pUser)->m_hook(toRecord(pCall)); },
                               this);
    }
}

std::vector<CoreLogRecord> CoreLog::records() const
{
    std::vector<CoreLogRecord> vecRecords;
    m_pControl->pfnVisit(
        [](const CoreLogCall *pCall, void *pUser) {
            static_cast<std::vector<CoreLogRecord> *>(pUser)->push_back(toRecord(pCall));
        },
        &vecRecords);
    return vecRecords;
}

static std::vector<std::string> textsOf(const std::vector<CoreLogRecord> &vecRecords, CoreLogKind nKind)
{
    std::vector<std::string> vecTexts;
    for (const CoreLogRecord &record : vecRecords) {
        if (record.nKind == nKind) {
            vecTexts.push_back(record.sText);
        }
    }
    return vecTexts;
}

std::vector<std::string> CoreLog::messages() const
{
    return textsOf(records(), CORELOG_MSG);
}

std::vector<std::string> CoreLog::errors() const
{
    return textsOf(records(), CORELOG_ERR_MSG_UNLOCK);
}

int CoreLog::count(const std::string &sPart) const
{
    int nCount = 0;
    for (const CoreLogRecord &record : records()) {
        nCount += record.sText.find(sPart) != std::string::npos ? 1 : 0;
    }
    return nCount;
}

uint64_t CoreLog::calls(CoreLogKind nKind) const
{
    return m_pControl->pfnCalls(nKind);
}

} // namespace xelttest
