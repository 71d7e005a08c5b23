#include "LoadWatch.h"

#include "ImportTable.h"

#include <windows.h>

namespace {

void (*g_pfnLoaded)(const char *) = nullptr;
xelttest::LoadCall g_lastCall;

HMODULE told(HMODULE hModule, const char *pszPath, const xelttest::LoadCall &call)
{
    if (hModule != nullptr) {
        g_lastCall = call;
        g_pfnLoaded(pszPath);
    }
    return hModule;
}

decltype(&LoadLibraryA) g_pfnLoad = nullptr;
decltype(&LoadLibraryExA) g_pfnLoadEx = nullptr;

HMODULE WINAPI load(const char *pszPath)
{
    return told(g_pfnLoad(pszPath), pszPath, {"LoadLibraryA", 0});
}

HMODULE WINAPI loadEx(const char *pszPath, HANDLE hFile, DWORD nFlags)
{
    return told(g_pfnLoadEx(pszPath, hFile, nFlags), pszPath, {"LoadLibraryExA", nFlags});
}

} // namespace

namespace xelttest {

void watchLoads(void (*pfnLoaded)(const char *))
{
    g_pfnLoaded = pfnLoaded;
    // Not what the replacing answers: the functions must be known before they can be called.
    g_pfnLoad = &LoadLibraryA;
    g_pfnLoadEx = &LoadLibraryExA;
    replaceImport("", "LoadLibraryA", reinterpret_cast<void *>(&load));
    replaceImport("", "LoadLibraryExA", reinterpret_cast<void *>(&loadEx));
}

LoadCall lastLoadCall()
{
    return g_lastCall;
}

} // namespace xelttest
