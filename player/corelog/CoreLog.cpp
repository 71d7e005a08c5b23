// A sample of the core library that XeltRender looks for beside its host: six logging functions that write
// whole records with time stamps. Two destinations, each with its own level:
//   XELT_CORELOG_LEVEL       standard error: 0 nothing, 100 errors (the default), 200 traces too
//   XELT_CORELOG_FILE        a file to append to; without it only standard error is written
//   XELT_CORELOG_FILE_LEVEL  the file's level, 200 by default
#include "XeltCoreLogExport.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>

namespace {

constexpr int kErrorLevel = 100;
constexpr int kTraceLevel = 200;

struct CloseFile
{
    void operator()(std::FILE *pFile) const { std::fclose(pFile); }
};

int levelFromEnvironment(const char *pszName, int nDefault)
{
    const char *pszValue = std::getenv(pszName);
    if (pszValue == nullptr || *pszValue == '\0') {
        return nDefault;
    }
    char *pszEnd = nullptr;
    const long nLevel = std::strtol(pszValue, &pszEnd, 10);
    return *pszEnd == '\0' && nLevel >= 0 && nLevel <= 1000 ? static_cast<int>(nLevel) : nDefault;
}

// Local time to the millisecond, and a blank.
std::string timeStamp()
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t nSeconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm parts{};
#ifdef _WIN32
    localtime_s(&parts, &nSeconds);
#else
    localtime_r(&nSeconds, &parts);
#endif
    char szDate[32];
    std::strftime(szDate, sizeof(szDate), "%Y-%m-%d %H:%M:%S", &parts);
    char szStamp[64];
    std::snprintf(szStamp, sizeof(szStamp), "%s.%03d ", szDate, static_cast<int>(milliseconds));
    return szStamp;
}

class Log
{
public:
    static Log &instance()
    {
        static Log *const pLog = new Log; // outlives every caller, also those at exit
        return *pLog;
    }

    int levelOfScreen() const { return m_nScreenLevel; }
    int levelOfFile() const { return m_pFile ? m_nFileLevel : 0; }

    // One whole record; each destination gets it in one piece.
    void write(int nLevel, std::string record)
    {
        record += '\n';
        if (m_nScreenLevel >= nLevel) {
            writeTo(stderr, record);
        }
        if (levelOfFile() >= nLevel) {
            writeTo(m_pFile.get(), record);
        }
    }

    // Held from sdk_log_buf_lock to sdk_err_buf_msg_unlock, by one thread; guards the record in the making.
    std::mutex &mutex() { return m_mutex; }
    std::string &record() { return m_record; }

private:
    Log()
    {
        const char *pszFile = std::getenv("XELT_CORELOG_FILE");
        if (pszFile == nullptr || *pszFile == '\0') {
            return;
        }
        m_pFile.reset(std::fopen(pszFile, "a"));
        if (!m_pFile) {
            std::perror(pszFile);
        }
    }

    static void writeTo(std::FILE *pFile, const std::string &text)
    {
        std::fwrite(text.data(), 1, text.size(), pFile);
        std::fflush(pFile);
    }

    const int m_nScreenLevel = levelFromEnvironment("XELT_CORELOG_LEVEL", kErrorLevel);
    const int m_nFileLevel = levelFromEnvironment("XELT_CORELOG_FILE_LEVEL", kTraceLevel);
    std::unique_ptr<std::FILE, CloseFile> m_pFile;
    std::mutex m_mutex;
    std::string m_record;
};

// Nothing may be thrown into a caller that is not ours.
template <typename Action> int guarded(Action action) noexcept
{
    try {
        action();
        return 0;
    } catch (...) {
        return -1;
    }
}

} // namespace

extern "C" {

// The two levels; a message passes when either destination keeps it.
XELTCORELOG_EXPORT int sdk_log_get_level(int *pFirst, int *pSecond)
{
    return guarded([=] {
        *pFirst = Log::instance().levelOfScreen();
        *pSecond = Log::instance().levelOfFile();
    });
}

// One trace, a record of its own.
XELTCORELOG_EXPORT int sdk_log_msg(const char *pszText)
{
    return guarded([=] { Log::instance().write(kTraceLevel, timeStamp() + pszText); });
}

// The four below make up one error record, in this order and on one thread.
XELTCORELOG_EXPORT int sdk_log_buf_lock()
{
    return guarded([] {
        Log::instance().mutex().lock();
        Log::instance().record().clear();
    });
}

XELTCORELOG_EXPORT int sdk_log_buf_date()
{
    return guarded([] { Log::instance().record() += timeStamp(); });
}

XELTCORELOG_EXPORT int sdk_log_buf_msg(const char *pszText)
{
    return guarded([=] { Log::instance().record() += pszText; });
}

XELTCORELOG_EXPORT int sdk_err_buf_msg_unlock(const char *pszText)
{
    const std::unique_lock<std::mutex> guard(Log::instance().mutex(), std::adopt_lock);
    return guarded([=] { Log::instance().write(kErrorLevel, Log::instance().record() + pszText); });
}
}
