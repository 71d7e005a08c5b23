// What a Windows module looks up by GetProcAddress can be replaced on its way. For Windows alone.
#pragma once

#include "ImportTable.h"

#include <windows.h>

#include <string>

namespace xelttest {

// For a function that was found under the name: what the module gets for it, which may be the function itself.
using LookupFilter = FARPROC (*)(const char *pszName, FARPROC pfnFound);

// Keeps what was found, and answers with what is to be called in its place.
template <typename Pfn> FARPROC replaceFound(FARPROC pfnFound, Pfn &pfnReal, Pfn pfnReplacement)
{
    pfnReal = reinterpret_cast<Pfn>(reinterpret_cast<void *>(pfnFound));
    return reinterpret_cast<FARPROC>(reinterpret_cast<void *>(pfnReplacement));
}

// Stands before GetProcAddress, and before hooks with other filters that the module got earlier. One module for
// each filter.
template <LookupFilter filter> class LookupHook
{
public:
    // The module is named as for replaceImport. False when it is not there or looks nothing up.
    static bool install(const std::string &sModule)
    {
        s_pfnBefore = &GetProcAddress;
        void *const pBefore = replaceImport(sModule, "GetProcAddress", reinterpret_cast<void *>(&onLookup));
        if (pBefore == nullptr) {
            return false;
        }
        s_pfnBefore = reinterpret_cast<decltype(s_pfnBefore)>(pBefore);
        return true;
    }

private:
    static FARPROC WINAPI onLookup(HMODULE hModule, LPCSTR pszName)
    {
        const FARPROC pfnFound = s_pfnBefore(hModule, pszName);
        const bool blIsName = (reinterpret_cast<ULONG_PTR>(pszName) >> 16) != 0; // otherwise a number
        return pfnFound != nullptr && blIsName ? filter(pszName, pfnFound) : pfnFound;
    }

    // Without an initializer that runs: hooks are installed while static objects are still made.
    static inline decltype(&GetProcAddress) s_pfnBefore = nullptr;
};

} // namespace xelttest
