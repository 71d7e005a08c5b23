#pragma once

#include "log/CoreLibraryEntries.h"
#include "platform/Compiler.h"
#include "platform/ModuleLoader.h"

#include <array>
#include <atomic>
#include <cstdint>

// The run-time binding of the core library and the log facade on it. Every member may be called from any
// thread; nothing here blocks but what the core library does itself.
class CLS_OmbrixApi
{
public:
    // Messages tagged with this level pass when the core library keeps it or a higher one.
    static constexpr int32_t kLogLevel = 200;

    static CLS_OmbrixApi &Instance();

    CLS_OmbrixApi(const CLS_OmbrixApi &) = delete;
    CLS_OmbrixApi &operator=(const CLS_OmbrixApi &) = delete;

    // 0 when the core library is (already) loaded, -1 when it is not to be had; the next call tries again.
    int32_t LoadCoreLibrary();

    // Loads pszFile from the folder in which the named module (or hModule) lies. With an empty module name
    // the bare file name is left to the system's search order, which begins beside the host's executable.
    static platform::ModuleHandle LoadLibraryBesideModule(const char *pszModule, const char *pszFile,
                                                          platform::ModuleHandle hModule,
                                                          bool blAlteredSearchPath);

    // Address of a name that the loaded core library exports, or null.
    platform::Function FindFunction(const char *pszName) const;

    // Function in a slot of corelib::kEntryNames; null when it was not resolved.
    platform::Function Entry(std::size_t nSlot) const;
    platform::ModuleHandle Module() const;

    // The facade. Results are the core library's; 0 when the level filters the message out, -1 without the
    // function. Callers ignore them.
    int32_t inner_sdk_log_msg(const char *pszFormat, ...) const XELT_PRINTF(2, 3);
    int32_t inner_sdk_log_buf_lock() const;
    int32_t inner_sdk_log_buf_date() const;
    int32_t inner_sdk_log_buf_msg(const char *pszFormat, ...) const XELT_PRINTF(2, 3);
    int32_t inner_sdk_err_buf_msg_unlock(const char *pszFormat, ...) const XELT_PRINTF(2, 3);
    bool inner_sdk_log_get_level(int32_t nLevel) const;

private:
    CLS_OmbrixApi() = default;

    // Atomic because two first loads may race; both store the same values.
    std::array<std::atomic<platform::Function>, corelib::kEntryCount> m_apfnEntries{};
    std::atomic<platform::ModuleHandle> m_hModule{nullptr};
};

// Where an error record says that it comes from: the file of the class, and the line of that file which holds
// the report or the call that leads to it. Code in another file takes its caller's.
struct LogPosition
{
    const char *pszFile;
    const char *pszFunction;
    int nLine;
};

// The line that it stands in.
#define XELT_POSITION(file, function) (LogPosition{file, function, __LINE__})

// One error record: lock, date, position line, message. The last call releases the core library's lock.
#define XELT_REPORT_ERROR_FROM(position, ...)                                               \
    do {                                                                                    \
        const LogPosition xeltPosition = (position);                                        \
        const CLS_OmbrixApi &xeltApi = CLS_OmbrixApi::Instance();                           \
        xeltApi.inner_sdk_log_buf_lock();                                                   \
        xeltApi.inner_sdk_log_buf_date();                                                   \
        xeltApi.inner_sdk_log_buf_msg("file: %s, func:%s, line: %d ", xeltPosition.pszFile, \
                                      xeltPosition.pszFunction, xeltPosition.nLine);        \
        xeltApi.inner_sdk_err_buf_msg_unlock(__VA_ARGS__);                                  \
    } while (false)

// The same with a given line, and with the source line that it stands in.
#define XELT_REPORT_ERROR_AT(file, function, line, ...) \
    XELT_REPORT_ERROR_FROM((LogPosition{file, function, line}), __VA_ARGS__)
#define XELT_REPORT_ERROR(file, function, ...) XELT_REPORT_ERROR_AT(file, function, __LINE__, __VA_ARGS__)

// One informational message.
#define XELT_LOG(...) CLS_OmbrixApi::Instance().inner_sdk_log_msg(__VA_ARGS__)
