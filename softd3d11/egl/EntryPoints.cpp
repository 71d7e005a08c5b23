// The EGL functions that a program finds here and not in libEGL.
#include "softd3d11/egl/EntryPoints.h"

#include "softd3d11/egl/CallFaults.h"
#include "softd3d11/egl/EglBridge.h"
#include "softd3d11/egl/ErrorState.h"
#include "softd3d11/egl/ExtensionString.h"
#include "softd3d11/egl/RealEgl.h"

#include <cstring>
#include <exception>

using softegl::Call;
using softegl::EglBridge;

namespace {

// Runs what answers with an EGL error; no exception leaves it.
template <typename Function> EGLint Guarded(Function function) noexcept
{
    try {
        return function();
    } catch (const std::exception &) {
        return EGL_BAD_ALLOC;
    }
}

// Whether the call that returns to the address must fail. The error is set then.
bool MustFail(Call call, const void *pReturnAddress) noexcept
{
    const auto nError = softegl::CallFaults::Instance().Arrive(call, pReturnAddress);
    if (nError) {
        softegl::SetError(*nError);
        return true;
    }
    softegl::LeaveErrorToRealEgl();
    return false;
}

} // namespace

extern "C" {

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglBindAPI(EGLenum nApi)
{
    if (MustFail(Call::BindApi, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    return softegl::Real().BindAPI(nApi);
}

SOFTD3D11_API EGLDisplay EGLAPIENTRY eglGetCurrentDisplay(void)
{
    if (MustFail(Call::GetCurrentDisplay, __builtin_return_address(0))) {
        return EGL_NO_DISPLAY;
    }
    return softegl::Real().GetCurrentDisplay();
}

SOFTD3D11_API const char *EGLAPIENTRY eglQueryString(EGLDisplay hDisplay, EGLint nName)
{
    if (MustFail(Call::QueryString, __builtin_return_address(0))) {
        return nullptr;
    }
    const char *const pszText = softegl::Real().QueryString(hDisplay, nName);
    if (pszText == nullptr || hDisplay == EGL_NO_DISPLAY || nName != EGL_EXTENSIONS) {
        return pszText;
    }
    const char *pszExtended = nullptr;
    const EGLint nError = Guarded([&] {
        pszExtended = softegl::WithExtension(pszText);
        return EGL_SUCCESS;
    });
    softegl::SetError(nError);
    return pszExtended;
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglChooseConfig(EGLDisplay hDisplay, const EGLint *pAttributes,
                                                     EGLConfig *pConfigs, EGLint nSize, EGLint *pnCount)
{
    if (MustFail(Call::ChooseConfig, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    return softegl::Real().ChooseConfig(hDisplay, pAttributes, pConfigs, nSize, pnCount);
}

SOFTD3D11_API EGLSurface EGLAPIENTRY eglCreatePbufferFromClientBuffer(EGLDisplay hDisplay, EGLenum nType,
                                                                      EGLClientBuffer hBuffer,
                                                                      EGLConfig hConfig,
                                                                      const EGLint *pAttributes)
{
    if (MustFail(Call::CreatePbufferFromClientBuffer, __builtin_return_address(0))) {
        return EGL_NO_SURFACE;
    }
    if (nType != EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE || softegl::IsExtensionHidden()) {
        return softegl::Real().CreatePbufferFromClientBuffer(hDisplay, nType, hBuffer, hConfig, pAttributes);
    }
    EGLSurface hSurface = EGL_NO_SURFACE;
    softegl::SetError(Guarded(
        [&] { return EglBridge::Instance().Create(hDisplay, hConfig, hBuffer, pAttributes, hSurface); }));
    return hSurface;
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglBindTexImage(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nBuffer)
{
    if (MustFail(Call::BindTexImage, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    EglBridge &bridge = EglBridge::Instance();
    if (!bridge.Owns(hSurface)) {
        return softegl::Real().BindTexImage(hDisplay, hSurface, nBuffer);
    }
    return softegl::SetError(Guarded([&] { return bridge.Bind(hDisplay, hSurface, nBuffer); }));
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglReleaseTexImage(EGLDisplay hDisplay, EGLSurface hSurface,
                                                        EGLint nBuffer)
{
    if (MustFail(Call::ReleaseTexImage, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    EglBridge &bridge = EglBridge::Instance();
    if (!bridge.Owns(hSurface) && !bridge.OwnsBound(hSurface)) {
        return softegl::Real().ReleaseTexImage(hDisplay, hSurface, nBuffer);
    }
    return softegl::SetError(Guarded([&] { return bridge.Release(hDisplay, hSurface, nBuffer); }));
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglDestroySurface(EGLDisplay hDisplay, EGLSurface hSurface)
{
    if (MustFail(Call::DestroySurface, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    EglBridge &bridge = EglBridge::Instance();
    if (!bridge.Owns(hSurface)) {
        return softegl::Real().DestroySurface(hDisplay, hSurface);
    }
    return softegl::SetError(Guarded([&] { return bridge.Destroy(hDisplay, hSurface); }));
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglQuerySurface(EGLDisplay hDisplay, EGLSurface hSurface,
                                                     EGLint nAttribute, EGLint *pnValue)
{
    softegl::LeaveErrorToRealEgl();
    EglBridge &bridge = EglBridge::Instance();
    if (!bridge.Owns(hSurface)) {
        return softegl::Real().QuerySurface(hDisplay, hSurface, nAttribute, pnValue);
    }
    return softegl::SetError(Guarded([&] { return bridge.Query(hDisplay, hSurface, nAttribute, pnValue); }));
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglMakeCurrent(EGLDisplay hDisplay, EGLSurface hDraw, EGLSurface hRead,
                                                    EGLContext hContext)
{
    if (MustFail(Call::MakeCurrent, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    EglBridge &bridge = EglBridge::Instance();
    if (bridge.Owns(hDraw) || bridge.Owns(hRead)) {
        return softegl::SetError(EGL_BAD_MATCH);
    }
    return bridge.MakeCurrent(hDisplay, hDraw, hRead, hContext);
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglReleaseThread(void)
{
    if (MustFail(Call::ReleaseThread, __builtin_return_address(0))) {
        return EGL_FALSE;
    }
    return EglBridge::Instance().ReleaseThread();
}

SOFTD3D11_API EGLContext EGLAPIENTRY eglCreateContext(EGLDisplay hDisplay, EGLConfig hConfig,
                                                      EGLContext hShare, const EGLint *pAttributes)
{
    softegl::LeaveErrorToRealEgl();
    EGLContext hContext = EGL_NO_CONTEXT;
    const EGLint nError = Guarded([&] {
        hContext = EglBridge::Instance().CreateContext(hDisplay, hConfig, hShare, pAttributes);
        return EGL_SUCCESS;
    });
    if (nError != EGL_SUCCESS) {
        softegl::SetError(nError);
    }
    return hContext;
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglDestroyContext(EGLDisplay hDisplay, EGLContext hContext)
{
    softegl::LeaveErrorToRealEgl();
    return EglBridge::Instance().DestroyContext(hDisplay, hContext);
}

SOFTD3D11_API EGLBoolean EGLAPIENTRY eglTerminate(EGLDisplay hDisplay)
{
    softegl::LeaveErrorToRealEgl();
    return EglBridge::Instance().Terminate(hDisplay);
}

SOFTD3D11_API EGLint EGLAPIENTRY eglGetError(void)
{
    return softegl::TakeError();
}

SOFTD3D11_API __eglMustCastToProperFunctionPointerType EGLAPIENTRY eglGetProcAddress(const char *pszName)
{
    softegl::LeaveErrorToRealEgl();
    const __eglMustCastToProperFunctionPointerType pReal = softegl::Real().GetProcAddress(pszName);
    if (pszName == nullptr || pReal == nullptr) {
        return pReal;
    }
    const __eglMustCastToProperFunctionPointerType pOwn = std::strncmp(pszName, "egl", 3) == 0
                                                              ? softegl::FindEglFunction(pszName)
                                                              : softegl::FindGlHook(pszName);
    return pOwn != nullptr ? pOwn : pReal;
}

} // extern "C"
