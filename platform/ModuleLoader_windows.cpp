#include "platform/ModuleLoader.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace platform {

const char kPathSeparator = '\\';

namespace {

HMODULE Native(ModuleHandle hModule)
{
    return static_cast<HMODULE>(hModule);
}

} // namespace

// The empty name finds no module; no module is the host's executable in the functions below.
ModuleHandle FindModule(const char *pszName)
{
    return GetModuleHandleA(pszName);
}

void ModuleFileName(ModuleHandle hModule, char *pszPath, std::size_t nSize)
{
    pszPath[0] = '\0';
    GetModuleFileNameA(Native(hModule), pszPath, static_cast<DWORD>(nSize));
    pszPath[nSize - 1] = '\0'; // a path that was cut is not terminated everywhere
}

void FoldPathCase(char *pszPath)
{
    for (; *pszPath != '\0'; ++pszPath) {
        if (*pszPath >= 'A' && *pszPath <= 'Z') {
            *pszPath = static_cast<char>(*pszPath - 'A' + 'a');
        }
    }
}

ModuleHandle LoadModule(const char *pszPath, bool blAlteredSearchPath)
{
    return blAlteredSearchPath ? LoadLibraryExA(pszPath, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)
                               : LoadLibraryA(pszPath);
}

Function FindFunction(ModuleHandle hModule, const char *pszName)
{
    return reinterpret_cast<Function>(GetProcAddress(Native(hModule), pszName));
}

} // namespace platform
