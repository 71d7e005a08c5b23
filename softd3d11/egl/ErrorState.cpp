#include "softd3d11/egl/ErrorState.h"

#include "softd3d11/egl/RealEgl.h"

namespace softegl {
namespace {

thread_local EGLint t_nError = EGL_SUCCESS;

} // namespace

EGLBoolean SetError(EGLint nError) noexcept
{
    Real().GetError(); // forgets what an earlier call left there
    t_nError = nError;
    return nError == EGL_SUCCESS ? EGL_TRUE : EGL_FALSE;
}

void LeaveErrorToRealEgl() noexcept
{
    t_nError = EGL_SUCCESS;
}

EGLint TakeError() noexcept
{
    const EGLint nError = t_nError;
    t_nError = EGL_SUCCESS;
    return nError != EGL_SUCCESS ? nError : Real().GetError();
}

} // namespace softegl
