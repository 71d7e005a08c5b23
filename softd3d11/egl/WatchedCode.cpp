#include "softd3d11/egl/WatchedCode.h"

#include <cstring>
#include <dlfcn.h>
#include <link.h>

namespace softegl {

bool IsWatched(const void *pAddress) noexcept
{
    // The name in Dl_info will not do: the executable's is whatever it was started by.
    Dl_info info{};
    link_map *pMap = nullptr;
    if (dladdr1(pAddress, &info, reinterpret_cast<void **>(&pMap), RTLD_DL_LINKMAP) == 0 || pMap == nullptr) {
        return false;
    }
    if (pMap->l_name[0] == '\0') {
        return true; // the executable's own entry carries no name
    }
    constexpr char szPrefix[] = "libXeltRender";
    const char *const pSlash = std::strrchr(pMap->l_name, '/');
    return std::strncmp(pSlash != nullptr ? pSlash + 1 : pMap->l_name, szPrefix, sizeof(szPrefix) - 1) == 0;
}

} // namespace softegl
