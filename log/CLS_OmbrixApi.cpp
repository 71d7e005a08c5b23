#include "log/CLS_OmbrixApi.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::size_t kMessageBytes = 4096;
constexpr std::size_t kMessageCount = 4095; // what formatting may use, terminator included

struct Message
{
    char szText[kMessageBytes];
};

using TextFunction = int32_t (*)(const char *);
using PlainFunction = int32_t (*)();
using LevelFunction = int32_t (*)(int32_t *, int32_t *);

void Format(Message &message, const char *pszFormat, va_list arguments)
{
    std::memset(message.szText, 0, kMessageCount);
    std::vsnprintf(message.szText, kMessageCount, pszFormat, arguments);
}

// The number is part of the note's text; hosts search for it, so it does not follow the source line.
int32_t WriteFallbackNote(int nNumber, const char *pszOperation)
{
    std::fprintf(stderr, "%d,%s", nNumber, pszOperation);
    return -1;
}

int32_t SendText(platform::Function pfnEntry, const char *pszText, int nNumber, const char *pszOperation)
{
    const auto pfnText = reinterpret_cast<TextFunction>(pfnEntry);
    return pfnText != nullptr ? pfnText(pszText) : WriteFallbackNote(nNumber, pszOperation);
}

int32_t CallPlain(platform::Function pfnEntry, int nNumber, const char *pszOperation)
{
    const auto pfnPlain = reinterpret_cast<PlainFunction>(pfnEntry);
    return pfnPlain != nullptr ? pfnPlain() : WriteFallbackNote(nNumber, pszOperation);
}

bool Passes(int32_t nKept, int32_t nLevel)
{
    return nKept != 0 && nKept >= nLevel;
}

} // namespace

CLS_OmbrixApi &CLS_OmbrixApi::Instance()
{
    static CLS_OmbrixApi api;
    return api;
}

int32_t CLS_OmbrixApi::LoadCoreLibrary()
{
    if (m_hModule.load(std::memory_order_acquire) != nullptr) {
        return 0;
    }
    const char szModule[256] = {};
    const platform::ModuleHandle hModule = LoadLibraryBesideModule(szModule, "Ombrix.dll", nullptr, false);
    if (hModule == nullptr) {
        return -1;
    }
    for (std::size_t i = 0; i < corelib::kEntryCount; ++i) {
        m_apfnEntries[i].store(platform::FindFunction(hModule, corelib::kEntryNames[i]),
                               std::memory_order_release);
    }
    // Last, so that whoever sees the module finds the table filled.
    m_hModule.store(hModule, std::memory_order_release);
    return 0;
}

platform::ModuleHandle CLS_OmbrixApi::LoadLibraryBesideModule(const char *pszModule, const char *pszFile,
                                                              platform::ModuleHandle hModule,
                                                              bool blAlteredSearchPath)
{
    char szPath[platform::kMaxPath] = {};
    platform::ModuleFileName(hModule != nullptr ? hModule : platform::FindModule(pszModule), szPath,
                             sizeof(szPath));
    char szName[platform::kMaxPath] = {};
    std::snprintf(szName, sizeof(szName), "%s", pszModule);
    platform::FoldPathCase(szPath);
    platform::FoldPathCase(szName);

    char *pCut = nullptr;
    if (hModule != nullptr) {
        pCut = std::strrchr(szPath, platform::kPathSeparator);
        pCut = pCut != nullptr ? pCut + 1 : nullptr;
    } else {
        // The empty name is found at the start, which leaves the bare file name: the core library belongs
        // beside the host, not beside this library.
        pCut = std::strstr(szPath, szName);
    }
    if (pCut == nullptr) {
        return nullptr;
    }
    const auto nRoom = static_cast<std::size_t>(szPath + sizeof(szPath) - pCut);
    std::memset(pCut, 0, nRoom);
    std::snprintf(pCut, nRoom, "%s", pszFile);
    return platform::LoadModule(szPath, blAlteredSearchPath);
}

platform::Function CLS_OmbrixApi::FindFunction(const char *pszName) const
{
    const platform::ModuleHandle hModule = Module();
    return hModule != nullptr ? platform::FindFunction(hModule, pszName) : nullptr;
}

platform::Function CLS_OmbrixApi::Entry(std::size_t nSlot) const
{
    return m_apfnEntries[nSlot].load(std::memory_order_acquire);
}

platform::ModuleHandle CLS_OmbrixApi::Module() const
{
    return m_hModule.load(std::memory_order_acquire);
}

int32_t CLS_OmbrixApi::inner_sdk_log_msg(const char *pszFormat, ...) const
{
    if (!inner_sdk_log_get_level(kLogLevel)) {
        return 0;
    }
    Message message;
    va_list arguments;
    va_start(arguments, pszFormat);
    Format(message, pszFormat, arguments);
    va_end(arguments);
    return SendText(Entry(corelib::kSdkLogMsg), message.szText, 562, "CLS_OmbrixApi::inner_sdk_log_msg");
}

int32_t CLS_OmbrixApi::inner_sdk_log_buf_lock() const
{
    return CallPlain(Entry(corelib::kSdkLogBufLock), 568, "CLS_OmbrixApi::inner_sdk_log_buf_lock");
}

int32_t CLS_OmbrixApi::inner_sdk_log_buf_date() const
{
    return CallPlain(Entry(corelib::kSdkLogBufDate), 574, "CLS_OmbrixApi::inner_sdk_log_buf_date");
}

int32_t CLS_OmbrixApi::inner_sdk_log_buf_msg(const char *pszFormat, ...) const
{
    if (!inner_sdk_log_get_level(kLogLevel)) {
        return 0;
    }
    Message message;
    va_list arguments;
    va_start(arguments, pszFormat);
    Format(message, pszFormat, arguments);
    va_end(arguments);
    return SendText(Entry(corelib::kSdkLogBufMsg), message.szText, 580,
                    "CLS_OmbrixApi::inner_sdk_log_buf_msg");
}

int32_t CLS_OmbrixApi::inner_sdk_err_buf_msg_unlock(const char *pszFormat, ...) const
{
    Message message;
    va_list arguments;
    va_start(arguments, pszFormat);
    Format(message, pszFormat, arguments);
    va_end(arguments);
    return SendText(Entry(corelib::kSdkErrBufMsgUnlock), message.szText, 618,
                    "CLS_OmbrixApi::inner_sdk_err_buf_msg_unlock");
}

bool CLS_OmbrixApi::inner_sdk_log_get_level(int32_t nLevel) const
{
    int32_t nFirst = 0;
    int32_t nSecond = 0;
    if (const auto pfnLevel = reinterpret_cast<LevelFunction>(Entry(corelib::kSdkLogGetLevel))) {
        pfnLevel(&nFirst, &nSecond);
    } else {
        WriteFallbackNote(1227, "CLS_OmbrixApi::inner_sdk_log_get_level");
    }
    return Passes(nFirst, nLevel) || Passes(nSecond, nLevel);
}
