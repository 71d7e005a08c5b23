#include "LoadWatch.h"

namespace {

void (*g_pfnLoaded)(const char *) = nullptr;
xelttest::LoadCall g_lastCall;

} // namespace

extern "C" {

void *__real_dlopen(const char *pszFile, int nFlags); // NOLINT: the linker's name
void *__wrap_dlopen(const char *pszFile, int nFlags); // NOLINT

void *__wrap_dlopen(const char *pszFile, int nFlags) // NOLINT
{
    void *pModule = __real_dlopen(pszFile, nFlags);
    if (pModule != nullptr && pszFile != nullptr && g_pfnLoaded != nullptr) {
        g_lastCall = {"dlopen", static_cast<unsigned>(nFlags)};
        g_pfnLoaded(pszFile);
    }
    return pModule;
}
}

namespace xelttest {

void watchLoads(void (*pfnLoaded)(const char *))
{
    g_pfnLoaded = pfnLoaded;
}

LoadCall lastLoadCall()
{
    return g_lastCall;
}

} // namespace xelttest
