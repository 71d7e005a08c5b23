#pragma once

#include "platform/Direct3DDeclarations.h"
#include "softd3d11/Export.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

namespace softd3d11 {

// The pixels of a shared BGRA8 texture, as somebody outside Direct3D sees them who knows the share handle.
// All textures opened from one handle are one image. Size and format never change. Thread-safe.
class SOFTD3D11_API SharedImage
{
public:
    using Listener = std::function<void()>;

    // Keeps writers out while it lives; keep it short, and call no Direct3D method on the texture meanwhile.
    struct Pixels
    {
        std::unique_lock<std::mutex> lock;
        const std::uint8_t *pRows; // bytes in the order B, G, R, A; top row first; 64-byte aligned
        std::size_t nPitch;        // bytes from one row to the next
    };

    SharedImage(const SharedImage &) = delete;
    SharedImage &operator=(const SharedImage &) = delete;
    virtual ~SharedImage();

    virtual UINT Width() const noexcept = 0;  // pixels
    virtual UINT Height() const noexcept = 0; // pixels
    virtual Pixels Lock() const = 0;

    // Goes up with every write to the texture: blit, UpdateSubresource, a copy into it.
    virtual std::uint64_t Generation() const noexcept = 0;

    // The listener is called after each write, on the writing thread, with no lock of this library held; it
    // may call everything here. The result is never 0. A call that has begun on another thread may still run
    // when RemoveListener returns, so a listener holds what it uses by shared or weak pointers. A listener
    // that throws ends the process.
    virtual std::uint64_t AddListener(Listener listener) = 0;
    virtual void RemoveListener(std::uint64_t nListener) noexcept = 0; // an unknown number is ignored

protected:
    SharedImage() = default;
};

// The image that a handle of IDXGIResource::GetSharedHandle stands for; null for any other value, for
// textures that are not BGRA8 or have several slices, and after the last texture and the last pointer to the
// image are gone. Handles are never given out twice. Thread-safe.
SOFTD3D11_API std::shared_ptr<SharedImage> FindSharedImage(HANDLE hShared) noexcept;

} // namespace softd3d11
