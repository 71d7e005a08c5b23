#pragma once

#include <EGL/egl.h>

namespace softegl {

// The calling thread's error as far as it comes from this library and not from the real EGL. Each function
// that this library defines sets it, so that eglGetError tells about the latest call.

// Sets the error of a call that was answered here, EGL_SUCCESS included. Whether it was a success.
EGLBoolean SetError(EGLint nError) noexcept;

// For a call that is passed on: the real EGL has the error.
void LeaveErrorToRealEgl() noexcept;

// What eglGetError answers.
EGLint TakeError() noexcept;

} // namespace softegl
