// Qt's platform plugin finds everything of GL by GetProcAddress: the functions themselves, and those that look up
// more. It asks with the first context, which comes after the application object.
#include "GlLookup.h"

#include "LookupHook.h"

#include <QCoreApplication>

#include <cstdlib>
#include <cstring>

namespace {

using xelttest::GlFunction;
using xelttest::wrapGl;
using Lookup = GlFunction(WINAPI *)(const char *);

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

FARPROC filter(const char *pszName, FARPROC pfnFound)
{
    if (std::strcmp(pszName, "eglGetProcAddress") == 0) {
        return xelttest::replaceFound(pfnFound, g_pfnEglLookup, &onEglLookup);
    }
    if (std::strcmp(pszName, "wglGetProcAddress") == 0) {
        return xelttest::replaceFound(pfnFound, g_pfnWglLookup, &onWglLookup);
    }
    return reinterpret_cast<FARPROC>(
        wrapGl(pszName, reinterpret_cast<GlFunction>(reinterpret_cast<void *>(pfnFound))));
}

void install()
{
    if (!xelttest::LookupHook<&filter>::install("qwindows.dll")) {
        std::abort();
    }
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(install)
