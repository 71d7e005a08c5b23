#include "LoadedLibrary.h"

#include <dlfcn.h>

namespace xelttest {

namespace {

// Sanitizer builds have a dlclose of their own that keeps modules; this is the system's.
bool unload(void *hModule)
{
    const auto pfnClose = reinterpret_cast<int (*)(void *)>(dlsym(RTLD_NEXT, "dlclose"));
    return pfnClose != nullptr && pfnClose(hModule) == 0;
}

} // namespace

LoadedLibrary::LoadedLibrary() : m_hModule(dlopen(XELT_LIBRARY, RTLD_NOW | RTLD_LOCAL))
{
    if (m_hModule == nullptr) {
        m_sProblem = dlerror();
    }
}

LoadedLibrary::~LoadedLibrary()
{
    close();
}

bool LoadedLibrary::close()
{
    if (m_hModule == nullptr) {
        return false;
    }
    const bool blClosed = unload(m_hModule);
    m_hModule = nullptr;
    return blClosed;
}

void *LoadedLibrary::function(const char *pszName) const
{
    return dlsym(m_hModule, pszName);
}

bool LoadedLibrary::isLoaded()
{
    void *hModule = dlopen(XELT_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (hModule != nullptr) {
        unload(hModule);
    }
    return hModule != nullptr;
}

} // namespace xelttest
