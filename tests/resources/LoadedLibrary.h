// The shared library under test, loaded at run time and unloaded for real.
#pragma once

#include <string>

namespace xelttest {

class LoadedLibrary
{
public:
    // Loads the library, or adds a reference.
    LoadedLibrary();
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    bool isOpen() const { return m_hModule != nullptr; }
    // Why it is not open.
    const std::string &problem() const { return m_sProblem; }
    // Drops the reference; false when the loader refuses.
    bool close();
    // An exported function; null when missing.
    void *function(const char *pszName) const;
    // Whether the library is in this process, whoever loaded it.
    static bool isLoaded();

private:
    void *m_hModule = nullptr;
    std::string m_sProblem;
};

} // namespace xelttest
