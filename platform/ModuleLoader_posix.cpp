#include "platform/ModuleLoader.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <string>
#include <unistd.h>

namespace platform {

const char kPathSeparator = '/';

namespace {

void ExecutablePath(char *pszPath, std::size_t nSize)
{
    const ssize_t nLength = readlink("/proc/self/exe", pszPath, nSize - 1);
    pszPath[nLength > 0 ? nLength : 0] = '\0';
}

} // namespace

ModuleHandle FindModule(const char *pszName)
{
    const char *pszWanted = pszName[0] != '\0' ? pszName : nullptr;
    const ModuleHandle hModule = dlopen(pszWanted, RTLD_LAZY | RTLD_NOLOAD);
    if (hModule != nullptr) {
        dlclose(hModule); // whoever loaded it still holds it
    }
    return hModule;
}

void ModuleFileName(ModuleHandle hModule, char *pszPath, std::size_t nSize)
{
    pszPath[0] = '\0';
    link_map *pMap = nullptr;
    if (hModule != nullptr && dlinfo(hModule, RTLD_DI_LINKMAP, &pMap) != 0) {
        return;
    }
    // The executable's own entry carries no name.
    if (pMap == nullptr || pMap->l_name[0] == '\0') {
        ExecutablePath(pszPath, nSize);
        return;
    }
    std::snprintf(pszPath, nSize, "%s", pMap->l_name);
}

void FoldPathCase(char *) {}

ModuleHandle LoadModule(const char *pszPath, bool /*blAlteredSearchPath*/)
{
    if (std::strchr(pszPath, kPathSeparator) == nullptr) {
        char szExecutable[4096];
        ExecutablePath(szExecutable, sizeof(szExecutable));
        const std::string strExecutable(szExecutable);
        const std::string strBeside =
            strExecutable.substr(0, strExecutable.find_last_of(kPathSeparator) + 1) + pszPath;
        if (const ModuleHandle hModule = dlopen(strBeside.c_str(), RTLD_NOW | RTLD_LOCAL)) {
            return hModule;
        }
    }
    return dlopen(pszPath, RTLD_NOW | RTLD_LOCAL);
}

Function FindFunction(ModuleHandle hModule, const char *pszName)
{
    return reinterpret_cast<Function>(dlsym(hModule, pszName));
}

} // namespace platform
