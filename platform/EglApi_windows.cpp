// The EGL library that Qt has loaded. It is not linked, so that a host on desktop OpenGL starts without one.
#include "platform/EglApi.h"

#include "platform/ModuleLoader.h"

namespace platform {
namespace egl {

namespace {

template <typename Pfn> void Resolve(ModuleHandle hModule, const char *pszName, Pfn &pfn)
{
    pfn = reinterpret_cast<Pfn>(FindFunction(hModule, pszName));
}

struct Entries
{
    decltype(&eglBindAPI) pfnBindAPI = nullptr;
    decltype(&eglGetError) pfnGetError = nullptr;
    decltype(&eglGetCurrentDisplay) pfnGetCurrentDisplay = nullptr;
    decltype(&eglReleaseThread) pfnReleaseThread = nullptr;
    decltype(&eglMakeCurrent) pfnMakeCurrent = nullptr;
    decltype(&eglQueryString) pfnQueryString = nullptr;
    decltype(&eglChooseConfig) pfnChooseConfig = nullptr;
    decltype(&eglCreatePbufferFromClientBuffer) pfnCreatePbufferFromClientBuffer = nullptr;
    decltype(&eglDestroySurface) pfnDestroySurface = nullptr;
    decltype(&eglBindTexImage) pfnBindTexImage = nullptr;
    decltype(&eglReleaseTexImage) pfnReleaseTexImage = nullptr;

    explicit Entries(ModuleHandle hModule)
    {
        if (hModule == nullptr) {
            return;
        }
        Resolve(hModule, "eglBindAPI", pfnBindAPI);
        Resolve(hModule, "eglGetError", pfnGetError);
        Resolve(hModule, "eglGetCurrentDisplay", pfnGetCurrentDisplay);
        Resolve(hModule, "eglReleaseThread", pfnReleaseThread);
        Resolve(hModule, "eglMakeCurrent", pfnMakeCurrent);
        Resolve(hModule, "eglQueryString", pfnQueryString);
        Resolve(hModule, "eglChooseConfig", pfnChooseConfig);
        Resolve(hModule, "eglCreatePbufferFromClientBuffer", pfnCreatePbufferFromClientBuffer);
        Resolve(hModule, "eglDestroySurface", pfnDestroySurface);
        Resolve(hModule, "eglBindTexImage", pfnBindTexImage);
        Resolve(hModule, "eglReleaseTexImage", pfnReleaseTexImage);
    }
};

ModuleHandle LoadedEgl()
{
    const ModuleHandle hModule = FindModule("libEGL.dll");
    return hModule != nullptr ? hModule : FindModule("libEGLd.dll");
}

// Resolved when Qt has loaded the library; a pane that was never painted may ask before that. GUI thread.
const Entries &Loaded()
{
    static Entries entries(nullptr);
    if (entries.pfnGetError == nullptr) {
        entries = Entries(LoadedEgl());
    }
    return entries;
}

} // namespace

EGLBoolean BindApi(EGLenum nApi)
{
    const auto pfn = Loaded().pfnBindAPI;
    return pfn != nullptr ? pfn(nApi) : EGL_FALSE;
}

EGLint GetError()
{
    const auto pfn = Loaded().pfnGetError;
    return pfn != nullptr ? pfn() : EGL_NOT_INITIALIZED;
}

EGLDisplay GetCurrentDisplay()
{
    const auto pfn = Loaded().pfnGetCurrentDisplay;
    return pfn != nullptr ? pfn() : EGL_NO_DISPLAY;
}

EGLBoolean ReleaseThread()
{
    const auto pfn = Loaded().pfnReleaseThread;
    return pfn != nullptr ? pfn() : EGL_TRUE; // nothing to release
}

EGLBoolean MakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context)
{
    const auto pfn = Loaded().pfnMakeCurrent;
    return pfn != nullptr ? pfn(display, draw, read, context) : EGL_FALSE;
}

const char *QueryString(EGLDisplay display, EGLint nName)
{
    const auto pfn = Loaded().pfnQueryString;
    return pfn != nullptr ? pfn(display, nName) : nullptr;
}

EGLBoolean ChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs, EGLint nSize,
                        EGLint *pCount)
{
    const auto pfn = Loaded().pfnChooseConfig;
    return pfn != nullptr ? pfn(display, pAttributes, pConfigs, nSize, pCount) : EGL_FALSE;
}

EGLSurface CreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                         EGLConfig config, const EGLint *pAttributes)
{
    const auto pfn = Loaded().pfnCreatePbufferFromClientBuffer;
    return pfn != nullptr ? pfn(display, nType, buffer, config, pAttributes) : EGL_NO_SURFACE;
}

EGLBoolean DestroySurface(EGLDisplay display, EGLSurface surface)
{
    const auto pfn = Loaded().pfnDestroySurface;
    return pfn != nullptr ? pfn(display, surface) : EGL_FALSE;
}

EGLBoolean BindTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer)
{
    const auto pfn = Loaded().pfnBindTexImage;
    return pfn != nullptr ? pfn(display, surface, nBuffer) : EGL_FALSE;
}

EGLBoolean ReleaseTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer)
{
    const auto pfn = Loaded().pfnReleaseTexImage;
    return pfn != nullptr ? pfn(display, surface, nBuffer) : EGL_FALSE;
}

} // namespace egl
} // namespace platform
