// The code under test looks these functions up by name. They stand before those that count the calls and make
// them fail, which are there already when the application object is made.
#include "EglArguments.h"

#include "LookupHook.h"

#include <QCoreApplication>

#include <cstdlib>
#include <cstring>

namespace {

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

FARPROC filter(const char *pszName, FARPROC pfnFound)
{
    if (std::strcmp(pszName, "eglChooseConfig") == 0) {
        return xelttest::replaceFound(pfnFound, g_pfnChooseConfig, &onChooseConfig);
    }
    if (std::strcmp(pszName, "eglCreatePbufferFromClientBuffer") == 0) {
        return xelttest::replaceFound(pfnFound, g_pfnCreateSurface, &onCreateSurface);
    }
    return pfnFound;
}

void install()
{
    if (!xelttest::LookupHook<&filter>::install("")) {
        std::abort();
    }
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(install)
