#include "LoadedLibrary.h"

#include <windows.h>

namespace xelttest {

LoadedLibrary::LoadedLibrary() : m_hModule(LoadLibraryA(XELT_LIBRARY))
{
    if (m_hModule == nullptr) {
        m_sProblem = "LoadLibrary: error " + std::to_string(GetLastError());
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
    const bool blClosed = FreeLibrary(static_cast<HMODULE>(m_hModule)) != 0;
    m_hModule = nullptr;
    return blClosed;
}

void *LoadedLibrary::function(const char *pszName) const
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(m_hModule), pszName));
}

bool LoadedLibrary::isLoaded()
{
    return GetModuleHandleA(XELT_LIBRARY) != nullptr;
}

} // namespace xelttest
