#include "softd3d11/egl/EntryPoints.h"
#include "softd3d11/egl/NamedFunction.h"

namespace softegl {

AnyFunction FindEglFunction(const char *pszName) noexcept
{
    static const NamedFunction s_functions[] = {
        Named("eglBindAPI", eglBindAPI),
        Named("eglBindTexImage", eglBindTexImage),
        Named("eglChooseConfig", eglChooseConfig),
        Named("eglCreateContext", eglCreateContext),
        Named("eglCreatePbufferFromClientBuffer", eglCreatePbufferFromClientBuffer),
        Named("eglDestroyContext", eglDestroyContext),
        Named("eglDestroySurface", eglDestroySurface),
        Named("eglGetCurrentDisplay", eglGetCurrentDisplay),
        Named("eglGetError", eglGetError),
        Named("eglGetProcAddress", eglGetProcAddress),
        Named("eglMakeCurrent", eglMakeCurrent),
        Named("eglQueryString", eglQueryString),
        Named("eglQuerySurface", eglQuerySurface),
        Named("eglReleaseTexImage", eglReleaseTexImage),
        Named("eglReleaseThread", eglReleaseThread),
        Named("eglTerminate", eglTerminate),
    };
    return FindByName(s_functions, pszName);
}

} // namespace softegl
