#pragma once

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace softegl {

// The functions of libEGL.so.1 that this library defines too. Functions that it does not define are simply
// called.
struct RealEgl
{
    decltype(&eglBindAPI) BindAPI;
    decltype(&eglBindTexImage) BindTexImage;
    decltype(&eglChooseConfig) ChooseConfig;
    decltype(&eglCreateContext) CreateContext;
    decltype(&eglCreatePbufferFromClientBuffer) CreatePbufferFromClientBuffer;
    decltype(&eglDestroyContext) DestroyContext;
    decltype(&eglDestroySurface) DestroySurface;
    decltype(&eglGetCurrentDisplay) GetCurrentDisplay;
    decltype(&eglGetError) GetError;
    decltype(&eglGetProcAddress) GetProcAddress;
    decltype(&eglMakeCurrent) MakeCurrent;
    decltype(&eglQueryString) QueryString;
    decltype(&eglQuerySurface) QuerySurface;
    decltype(&eglReleaseTexImage) ReleaseTexImage;
    decltype(&eglReleaseThread) ReleaseThread;
    decltype(&eglTerminate) Terminate;
};

// Loaded at the first call; ends the process where libEGL.so.1 lacks one of them. Thread-safe.
const RealEgl &Real() noexcept;

} // namespace softegl
