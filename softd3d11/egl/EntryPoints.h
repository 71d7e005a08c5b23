#pragma once

#include <EGL/egl.h>

namespace softegl {

// This library's own function of the name, for eglGetProcAddress, or null.
__eglMustCastToProperFunctionPointerType FindEglFunction(const char *pszName) noexcept;

// The function that takes the place of a GL function, or null. It calls the real one.
__eglMustCastToProperFunctionPointerType FindGlHook(const char *pszName) noexcept;

} // namespace softegl
