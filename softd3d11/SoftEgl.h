// EGL client buffers for the software Direct3D 11 device: a library that stands before libEGL and adds the
// extension EGL_ANGLE_d3d_share_handle_client_buffer to every display.
//
// How it gets into a process: the program is linked with it ahead of libEGL and of all that brings libEGL
// along, or the library is preloaded. It defines some of the EGL entry points itself (also for
// eglGetProcAddress) and passes on to libEGL.so.1 what does not concern a share handle. Active() tells
// whether that worked.
//
// What a surface does: eglCreatePbufferFromClientBuffer(EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE) takes the
// value of IDXGIResource::GetSharedHandle. EGL_WIDTH and EGL_HEIGHT must be the texture's
// (EGL_BAD_PARAMETER), as must the handle be one of a living texture (EGL_BAD_PARAMETER). eglBindTexImage
// gives the texture that is bound to GL_TEXTURE_2D the image (EGL_BAD_ALLOC where GL does not take it), the
// texture's first row at coordinate t = 0; until it is released it shows what is written to the Direct3D
// texture. The other rules are those of EGL 1.4: a destroyed surface keeps its image on the texture until that
// is released; deleting or redefining the GL texture releases it; a release leaves the GL texture without an
// image. The surface cannot be drawn to: eglMakeCurrent with it fails with EGL_BAD_MATCH.
//
// When a write shows: at once where the writing thread has a context current that knows the GL texture,
// otherwise with the next eglMakeCurrent, glDrawArrays, glDrawElements or glReadPixels in such a context. The
// three GL functions, and of those that delete or redefine textures glDeleteTextures, glTexImage2D,
// glCopyTexImage2D and glTexStorage2D, are noticed when they were looked up with eglGetProcAddress, as Qt does
// it. The GL state is left as it was, errors included, but for GL_OUT_OF_MEMORY and
// GL_INVALID_FRAMEBUFFER_OPERATION: where the application has not asked for these yet, they can get lost.
//
// Threads: everything may be called from any thread. The settings and counts below are for the whole process.
#pragma once

#include "softd3d11/Export.h"

#include <cstddef>
#include <cstdint>

namespace softegl {

// The calls that are counted and can be made to fail.
enum class Call : unsigned {
    BindApi,
    GetCurrentDisplay,
    QueryString,
    ChooseConfig,
    CreatePbufferFromClientBuffer,
    BindTexImage,
    ReleaseTexImage,
    DestroySurface,
    MakeCurrent,
    ReleaseThread,
    Count // how many there are; no call
};

// Whether the process finds this library's EGL functions and not those of libEGL. Thread-safe.
SOFTD3D11_API bool Active() noexcept;

// Takes the extension from what eglQueryString answers and refuses new surfaces, or ends that. Thread-safe.
SOFTD3D11_API void HideExtension(bool blHide) noexcept;

// Only calls made by the executable itself or by a library whose file name begins with "libXeltRender" are
// counted and made to fail: Qt keeps contexts current by the same functions, and is left in peace.

// How often the call was made since the start or ResetCallCounts, whatever came of it. Thread-safe.
SOFTD3D11_API std::uint64_t CallCount(Call call) noexcept;
SOFTD3D11_API void ResetCallCounts() noexcept;

// How many calls are kept in their order.
constexpr std::size_t kCallsKept = 256;

// The calls since the start or ResetCallCounts in the order in which they came: writes the first nCapacity of
// those that are kept to pCalls, which may be null for none. How many are kept. Thread-safe.
SOFTD3D11_API std::size_t CallsInOrder(Call *pCalls, std::size_t nCapacity) noexcept;

// Every further call from the chosen one on, for FailCall.
constexpr unsigned kAlways = ~0U;

// Makes calls fail without doing anything else, with nError (EGL_BAD_ALLOC, ...) for eglGetError: of the
// calls from now on the nNth (1 is the next one) and the nTimes - 1 after it. Replaces what was asked for
// before for this call. False, and nothing changes, when nError is EGL_SUCCESS or no EGL error, or a number
// is zero. Thread-safe; concurrent calls are numbered in the order in which they arrive.
SOFTD3D11_API bool FailCall(Call call, std::int32_t nError, unsigned nNth = 1, unsigned nTimes = 1) noexcept;

// Ends every failure asked for. Thread-safe.
SOFTD3D11_API void ClearFailures() noexcept;

// Surfaces made from share handles and not destroyed. Thread-safe.
SOFTD3D11_API std::size_t LiveSurfaces() noexcept;

// GL textures that show a share handle's image now, also that of a destroyed surface. Thread-safe.
SOFTD3D11_API std::size_t BoundTextures() noexcept;

} // namespace softegl
