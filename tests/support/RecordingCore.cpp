// The core library of the tests: records what it is told.
#include "CoreLogControl.h"

#include <array>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Record
{
    CoreLogKind nKind;
    std::string sText;
    uint64_t nThread;
};

struct Recorder
{
    std::mutex mutexRecords; // guards the records and the hook
    std::vector<Record> vecRecords;
    CoreLogHook pfnHook = nullptr;
    void *pHookUser = nullptr;
    std::array<std::atomic<uint64_t>, CORELOG_GET_LEVEL + 1> aCalls{};
    std::atomic<int32_t> nFirst{200};
    std::atomic<int32_t> nSecond{0};
    // The log-buffer lock that callers hold from sdk_log_buf_lock to sdk_err_buf_msg_unlock.
    std::mutex mutexBuffer;
};

// Never destroyed: renderers may still log while the process ends.
Recorder &recorder()
{
    static auto *pRecorder = new Recorder;
    return *pRecorder;
}

void note(CoreLogKind nKind, const char *pText)
{
    Recorder &rec = recorder();
    rec.aCalls[static_cast<size_t>(nKind)].fetch_add(1);
    const uint64_t nThread = std::hash<std::thread::id>()(std::this_thread::get_id());
    const std::string sText = pText != nullptr ? pText : "";
    CoreLogHook pfnHook = nullptr;
    void *pUser = nullptr;
    {
        const std::lock_guard<std::mutex> guard(rec.mutexRecords);
        if (nKind != CORELOG_GET_LEVEL) {
            rec.vecRecords.push_back({nKind, sText, nThread});
        }
        pfnHook = rec.pfnHook;
        pUser = rec.pHookUser;
    }
    if (pfnHook != nullptr) {
        const CoreLogCall call{nKind, sText.c_str(), nThread};
        pfnHook(&call, pUser);
    }
}

void clearRecords()
{
    const std::lock_guard<std::mutex> guard(recorder().mutexRecords);
    recorder().vecRecords.clear();
    for (auto &nCalls : recorder().aCalls) {
        nCalls = 0;
    }
}

void setLevels(int32_t nFirst, int32_t nSecond)
{
    recorder().nFirst = nFirst;
    recorder().nSecond = nSecond;
}

void setHook(CoreLogHook pfnHook, void *pUser)
{
    const std::lock_guard<std::mutex> guard(recorder().mutexRecords);
    recorder().pfnHook = pfnHook;
    recorder().pHookUser = pUser;
}

void visit(CoreLogHook pfnVisitor, void *pUser)
{
    const std::lock_guard<std::mutex> guard(recorder().mutexRecords);
    for (const Record &record : recorder().vecRecords) {
        const CoreLogCall call{record.nKind, record.sText.c_str(), record.nThread};
        pfnVisitor(&call, pUser);
    }
}

uint64_t calls(CoreLogKind nKind)
{
    return recorder().aCalls[static_cast<size_t>(nKind)];
}

const CoreLogControl k_control{clearRecords, setLevels, setHook, visit, calls};

} // namespace

#define RECORDER_EXPORT extern "C" __attribute__((visibility("default")))

RECORDER_EXPORT const CoreLogControl *xelt_corelog_control()
{
    return &k_control;
}

RECORDER_EXPORT int sdk_log_msg(const char *pText)
{
    note(CORELOG_MSG, pText);
    return 0;
}

RECORDER_EXPORT int sdk_log_buf_lock()
{
    recorder().mutexBuffer.lock();
    note(CORELOG_BUF_LOCK, nullptr);
    return 0;
}

RECORDER_EXPORT int sdk_log_buf_date()
{
    note(CORELOG_BUF_DATE, nullptr);
    return 0;
}

RECORDER_EXPORT int sdk_log_buf_msg(const char *pText)
{
    note(CORELOG_BUF_MSG, pText);
    return 0;
}

RECORDER_EXPORT int sdk_err_buf_msg_unlock(const char *pText)
{
    note(CORELOG_ERR_MSG_UNLOCK, pText);
    recorder().mutexBuffer.unlock();
    return 0;
}

RECORDER_EXPORT int sdk_log_get_level(int *pFirst, int *pSecond)
{
    note(CORELOG_GET_LEVEL, nullptr);
    *pFirst = recorder().nFirst;
    *pSecond = recorder().nSecond;
    return 0;
}
