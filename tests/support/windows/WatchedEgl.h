// ANGLE's functions behind those that the library under test is given.
#pragma once

#include "platform/EglApi.h"

namespace softegl {

// Set as the library looks them up.
struct EglFunctions
{
    decltype(&eglBindAPI) pfnBindApi;
    decltype(&eglGetError) pfnGetError;
    decltype(&eglGetCurrentDisplay) pfnGetCurrentDisplay;
    decltype(&eglReleaseThread) pfnReleaseThread;
    decltype(&eglMakeCurrent) pfnMakeCurrent;
    decltype(&eglQueryString) pfnQueryString;
    decltype(&eglChooseConfig) pfnChooseConfig;
    decltype(&eglCreatePbufferFromClientBuffer) pfnCreate;
    decltype(&eglDestroySurface) pfnDestroySurface;
    decltype(&eglBindTexImage) pfnBindTexImage;
    decltype(&eglReleaseTexImage) pfnReleaseTexImage;
};

EglFunctions &RealEgl();

} // namespace softegl
