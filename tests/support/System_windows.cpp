#include "System.h"

#include "ImportTable.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace xelttest {

namespace {

constexpr char k_szLibrary[] = "XeltRender.dll";

size_t pageSize()
{
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

HMODULE moduleOf(const void *pAddress)
{
    HMODULE hModule = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCSTR>(pAddress), &hModule);
    return hModule;
}

// Runs before every other handler, on the thread and the stack of the fault.
LONG CALLBACK endProgram(EXCEPTION_POINTERS *pPointers)
{
    const EXCEPTION_RECORD &record = *pPointers->ExceptionRecord;
    switch (record.ExceptionCode) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_STACK_OVERFLOW:
        break;
    default: // C++ exceptions, messages to debuggers and the like
        return EXCEPTION_CONTINUE_SEARCH;
    }
    const HMODULE hModule = moduleOf(record.ExceptionAddress);
    char aPath[MAX_PATH] = "code of no module";
    if (hModule != nullptr) {
        GetModuleFileNameA(hModule, aPath, sizeof aPath);
    }
    std::fprintf(stderr, "Fault %08lx at %s+%zx\n", record.ExceptionCode, aPath,
                 static_cast<size_t>(static_cast<const char *>(record.ExceptionAddress) -
                                     reinterpret_cast<const char *>(hModule)));
    TerminateProcess(GetCurrentProcess(), 1);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void endOnFaults()
{
    AddVectoredExceptionHandler(1, endProgram);
}

std::string executableFolder()
{
    char aPath[MAX_PATH * 4];
    const DWORD nLength = GetModuleFileNameA(nullptr, aPath, sizeof aPath);
    const std::string sPath(aPath, nLength);
    return sPath.substr(0, sPath.rfind('\\') + 1);
}

void *openModule(const std::string &sPath)
{
    return LoadLibraryA(sPath.c_str());
}

void *moduleSymbol(void *pModule, const char *pszName)
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(pModule), pszName));
}

const char *moduleSearchVariable()
{
    return "PATH";
}

std::string comparablePath(std::string sPath)
{
    std::replace(sPath.begin(), sPath.end(), '/', '\\');
    CharLowerBuffA(sPath.data(), static_cast<DWORD>(sPath.size()));
    return sPath;
}

bool isOurCode(const void *pCode)
{
    const HMODULE hModule = moduleOf(pCode);
    return hModule != nullptr &&
           (hModule == GetModuleHandleA(nullptr) || hModule == GetModuleHandleA(k_szLibrary));
}

void hideConsole()
{
    if (std::getenv("XELT_TEST_HIDE_CONSOLE") != nullptr) {
        ShowWindow(GetConsoleWindow(), SW_HIDE);
    }
}

void *allocateGuarded(size_t nSize, size_t &nUsable)
{
    const size_t nPage = pageSize();
    nUsable = (nSize + nPage - 1) / nPage * nPage;
    void *pMemory = VirtualAlloc(nullptr, nUsable + nPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (pMemory == nullptr) {
        throw std::bad_alloc();
    }
    DWORD nBefore = 0;
    if (!VirtualProtect(static_cast<uint8_t *>(pMemory) + nUsable, nPage, PAGE_NOACCESS, &nBefore)) {
        freeGuarded(pMemory, nUsable);
        throw std::bad_alloc();
    }
    return pMemory;
}

void freeGuarded(void *pMemory, size_t /*nUsable*/)
{
    VirtualFree(pMemory, 0, MEM_RELEASE);
}

// What it allocated before and frees later, or the other way round, is of the C library's heap all the same.
void setLibraryAllocator(void *(*pfnNew)(size_t), void *(*pfnNewNoThrow)(size_t, const std::nothrow_t &))
{
    for (const char *pszName : {"_Znwy", "_Znay"}) {
        replaceImport(k_szLibrary, pszName, reinterpret_cast<void *>(pfnNew));
    }
    for (const char *pszName : {"_ZnwyRKSt9nothrow_t", "_ZnayRKSt9nothrow_t"}) {
        replaceImport(k_szLibrary, pszName, reinterpret_cast<void *>(pfnNewNoThrow));
    }
}

int openHandles()
{
    DWORD nHandles = 0;
    return GetProcessHandleCount(GetCurrentProcess(), &nHandles) ? static_cast<int>(nHandles) : -1;
}

size_t residentBytes()
{
    PROCESS_MEMORY_COUNTERS counters{};
    return GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) ? counters.WorkingSetSize
                                                                                 : 0;
}

bool hasSanitizerAllocator()
{
    return false;
}

size_t heapInUse()
{
    // The C run-time library allocates from the process's heap.
    const HANDLE hHeap = GetProcessHeap();
    PROCESS_HEAP_ENTRY entry{};
    size_t nBytes = 0;
    HeapLock(hHeap);
    while (HeapWalk(hHeap, &entry)) {
        nBytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    HeapUnlock(hHeap);
    return nBytes;
}

} // namespace xelttest
