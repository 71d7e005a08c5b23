// The code under test looks these functions up by name. They stand before those that count the calls and make
// them fail, which are there already when the application object is made.
#include "EglArguments.h"

#include "ImportTable.h"

#include <QCoreApplication>

#include <windows.h>

#include <cstdlib>
#include <cstring>

namespace {

decltype(&GetProcAddress) g_pfnLookup = nullptr;
xelttest::ChooseConfig g_pfnChooseConfig = nullptr;
xelttest::CreateSurface g_pfnCreateSurface = nullptr;

EGLBoolean EGLAPIENTRY onChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs,
                                      EGLint nSize, EGLint *pCount)
{
    return xelttest::noteChooseConfig(g_pfnChooseConfig, display, pAttributes, pConfigs, nSize, pCount);
}

EGLSurface EGLAPIENTRY onCreateSurface(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                       EGLConfig config, const EGLint *pAttributes)
{
    return xelttest::noteCreateSurface(g_pfnCreateSurface, display, nType, buffer, config, pAttributes);
}

template <typename Pfn> FARPROC replace(FARPROC pfnFound, Pfn &pfnReal, Pfn pfnReplacement)
{
    pfnReal = reinterpret_cast<Pfn>(reinterpret_cast<void *>(pfnFound));
    return reinterpret_cast<FARPROC>(reinterpret_cast<void *>(pfnReplacement));
}

FARPROC WINAPI onLookup(HMODULE hModule, LPCSTR pszName)
{
    const FARPROC pfnFound = g_pfnLookup(hModule, pszName);
    const bool blIsName = (reinterpret_cast<ULONG_PTR>(pszName) >> 16) != 0;
    if (pfnFound == nullptr || !blIsName) {
        return pfnFound;
    }
    if (std::strcmp(pszName, "eglChooseConfig") == 0) {
        return replace(pfnFound, g_pfnChooseConfig, &onChooseConfig);
    }
    if (std::strcmp(pszName, "eglCreatePbufferFromClientBuffer") == 0) {
        return replace(pfnFound, g_pfnCreateSurface, &onCreateSurface);
    }
    return pfnFound;
}

void install()
{
    void *const pBefore = xelttest::replaceImport("", "GetProcAddress", reinterpret_cast<void *>(&onLookup));
    if (pBefore == nullptr) {
        std::abort();
    }
    g_pfnLookup = reinterpret_cast<decltype(g_pfnLookup)>(pBefore);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(install)
