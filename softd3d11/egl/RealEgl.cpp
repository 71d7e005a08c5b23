#include "softd3d11/egl/RealEgl.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace softegl {
namespace {

// By the library's own handle: wherever this library stands in the search order, its own definitions are not
// found there.
template <typename Function> void Find(void *pLibrary, const char *pszName, Function &function) noexcept
{
    function = reinterpret_cast<Function>(dlsym(pLibrary, pszName));
    if (function == nullptr) {
        std::fprintf(stderr, "libEGL.so.1 has no %s: %s\n", pszName, dlerror());
        std::abort();
    }
}

RealEgl Load() noexcept
{
    void *const pLibrary = dlopen("libEGL.so.1", RTLD_LAZY | RTLD_LOCAL);
    if (pLibrary == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::abort();
    }
    RealEgl real{};
    Find(pLibrary, "eglBindAPI", real.BindAPI);
    Find(pLibrary, "eglBindTexImage", real.BindTexImage);
    Find(pLibrary, "eglChooseConfig", real.ChooseConfig);
    Find(pLibrary, "eglCreateContext", real.CreateContext);
    Find(pLibrary, "eglCreatePbufferFromClientBuffer", real.CreatePbufferFromClientBuffer);
    Find(pLibrary, "eglDestroyContext", real.DestroyContext);
    Find(pLibrary, "eglDestroySurface", real.DestroySurface);
    Find(pLibrary, "eglGetCurrentDisplay", real.GetCurrentDisplay);
    Find(pLibrary, "eglGetError", real.GetError);
    Find(pLibrary, "eglGetProcAddress", real.GetProcAddress);
    Find(pLibrary, "eglMakeCurrent", real.MakeCurrent);
    Find(pLibrary, "eglQueryString", real.QueryString);
    Find(pLibrary, "eglQuerySurface", real.QuerySurface);
    Find(pLibrary, "eglReleaseTexImage", real.ReleaseTexImage);
    Find(pLibrary, "eglReleaseThread", real.ReleaseThread);
    Find(pLibrary, "eglTerminate", real.Terminate);
    return real;
}

} // namespace

const RealEgl &Real() noexcept
{
    static const RealEgl s_real = Load();
    return s_real;
}

} // namespace softegl
