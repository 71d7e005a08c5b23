// Qt's platform plugin finds everything of GL by GetProcAddress: the functions themselves, and those that look up
// more. It asks with the first context, which comes after the application object.
#include "GlLookup.h"

#include "ImportTable.h"

#include <QCoreApplication>

#include <windows.h>

#include <cstdlib>
#include <cstring>

namespace {

using xelttest::GlFunction;
using xelttest::wrapGl;
using Lookup = GlFunction(WINAPI *)(const char *);

decltype(&GetProcAddress) g_pfnGetProcAddress = nullptr;
Lookup g_pfnEglLookup = nullptr;
Lookup g_pfnWglLookup = nullptr;

GlFunction WINAPI onEglLookup(const char *pszName)
{
    return wrapGl(pszName, g_pfnEglLookup(pszName));
}

GlFunction WINAPI onWglLookup(const char *pszName)
{
    return wrapGl(pszName, g_pfnWglLookup(pszName));
}

FARPROC replaceLookup(Lookup &pfnReal, FARPROC pfnFound, Lookup pfnReplacement)
{
    pfnReal = reinterpret_cast<Lookup>(reinterpret_cast<void *>(pfnFound));
    return reinterpret_cast<FARPROC>(reinterpret_cast<void *>(pfnReplacement));
}

FARPROC WINAPI onGetProcAddress(HMODULE hModule, LPCSTR pszName)
{
    const FARPROC pfnFound = g_pfnGetProcAddress(hModule, pszName);
    const bool blIsName = (reinterpret_cast<ULONG_PTR>(pszName) >> 16) != 0;
    if (pfnFound == nullptr || !blIsName) {
        return pfnFound;
    }
    if (std::strcmp(pszName, "eglGetProcAddress") == 0) {
        return replaceLookup(g_pfnEglLookup, pfnFound, &onEglLookup);
    }
    if (std::strcmp(pszName, "wglGetProcAddress") == 0) {
        return replaceLookup(g_pfnWglLookup, pfnFound, &onWglLookup);
    }
    return reinterpret_cast<FARPROC>(
        wrapGl(pszName, reinterpret_cast<GlFunction>(reinterpret_cast<void *>(pfnFound))));
}

void install()
{
    void *const pBefore = xelttest::replaceImport("qwindows.dll", "GetProcAddress",
                                                  reinterpret_cast<void *>(&onGetProcAddress));
    if (pBefore == nullptr) {
        std::abort();
    }
    g_pfnGetProcAddress = reinterpret_cast<decltype(g_pfnGetProcAddress)>(pBefore);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(install)
