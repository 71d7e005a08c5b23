// A software Direct3D 11 device: the interfaces that a video player needs to decode into textures and to show
// them through the video processor, on machines without Direct3D.
//
// What a device has: 2D textures in NV12, P010 and BGRA8 (one mip level, arrays, default, dynamic, immutable
// and staging usage, share handles), an immediate context with Map, UpdateSubresource and copies, a video
// device with one kind of video processor (NV12 or P010 in, BGRA8 out). Every other method answers E_NOTIMPL,
// or does nothing where it returns nothing. Objects follow the rules of COM for reference counts and
// QueryInterface.
//
// Threads: every call of every object may come from any thread at any time; calls that touch the same slice
// of a texture wait for each other, calls for different slices do not. CopyResource copies all slices or
// none, one after the other. Otherwise the context behaves as one with multithread protection switched on.
//
// The video processor: one stream of whole frames. Contents may be described as interlaced; frame format and
// rates are told back, and change nothing. Honoured are the stream's source rectangle and colour space
// (matrix and nominal range; an undefined range means 16-235); the automatic processing mode is kept but
// there is no such processing. The picture fills the whole output view, as full-range RGB with alpha 255; a
// disabled stream leaves it black. Each chroma sample stands for its 2x2 pixels. Where the source rectangle
// is not as large as the output, the converted picture is scaled bilinearly between pixel centres, clamped at
// the rectangle's edges. No level is more than one away from the exact one, rounded.
//
// Wrong arguments get what Direct3D documents, E_INVALIDARG mostly. That goes for textures of other formats,
// for objects of another device or of another implementation, for a source rectangle that is empty or reaches
// out of the input, for video textures with odd edges, and for input views of textures that are bound, but
// not for decoding, encoding or rendering.
//
// Apart from the objects, the library offers what a test needs: counts of calls and of living objects, and
// calls that fail on demand. All of that is for the whole process.
#pragma once

#include "platform/Direct3DDeclarations.h"
#include "softd3d11/Export.h"

#include <cstddef>
#include <cstdint>

namespace softd3d11 {

// Makes a device of feature level 11_0 with its immediate context. *ppDevice gets the only reference.
// E_POINTER for null, E_OUTOFMEMORY. Thread-safe.
SOFTD3D11_API HRESULT CreateDevice(ID3D11Device **ppDevice) noexcept;

// The methods whose calls are counted. Not among them are AddRef and Release, and getters and setters that
// return no HRESULT and cannot go wrong: GetDevice of an ID3D11DeviceChild, the context's GetType and
// GetContextFlags, a texture's GetType and its priority, a view's GetDesc and GetResource, and
// ID3D11VideoProcessor's methods. The name says interface and method: DeviceCreateTexture2D is
// ID3D11Device::CreateTexture2D; MethodName tells it in full.
enum class Method : unsigned {
#define SOFTD3D11_METHOD(id, name, fails) id,
#include "softd3d11/Methods.inc"
#undef SOFTD3D11_METHOD
    Count // how many there are; no method
};

// "ID3D11Device::CreateTexture2D"; a static string, empty for Method::Count. Thread-safe.
SOFTD3D11_API const char *MethodName(Method method) noexcept;

// Whether FailCall works on the method, that is whether it returns an HRESULT. Thread-safe.
SOFTD3D11_API bool CanFail(Method method) noexcept;

// How often the method was called on any object since the start or ResetCallCounts, whatever came of it.
// Thread-safe.
SOFTD3D11_API std::uint64_t CallCount(Method method) noexcept;

// How many of these calls were wrong (bad arguments, objects of another device, a mapped texture) and
// therefore did nothing. The one way to see that for methods that return nothing. Injected failures are not
// among them. Thread-safe.
SOFTD3D11_API std::uint64_t RefusedCallCount(Method method) noexcept;

SOFTD3D11_API void ResetCallCounts() noexcept;

// Every further call from the chosen one on, for FailCall.
constexpr unsigned kAlways = ~0U;

// Makes calls of the method fail with hr, whatever their arguments, and do nothing but set the pointers and
// handles that they would give out to null: of the calls from now on, on whatever object, the nNth (1 is the
// next one) and the nTimes - 1 after it. Replaces what was asked for before for this method. False, and
// nothing changes, for a method that cannot fail, an hr that is no failure, or a zero. Thread-safe;
// concurrent calls are numbered in the order in which they arrive.
SOFTD3D11_API bool FailCall(Method method, HRESULT hr, unsigned nNth = 1, unsigned nTimes = 1) noexcept;

// Ends every failure asked for. Thread-safe.
SOFTD3D11_API void ClearFailures() noexcept;

// Devices (each with its immediate context), textures, enumerators, processors and views alive in this
// process. Thread-safe.
SOFTD3D11_API std::size_t LiveObjects() noexcept;

// Those made by one device, itself not counted: 0 when everything made on it is gone. 0 for a pointer that is
// no device of this library that is alive. Thread-safe.
SOFTD3D11_API std::size_t LiveObjects(const ID3D11Device *pDevice) noexcept;

} // namespace softd3d11
