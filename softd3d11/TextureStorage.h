#pragma once

#include "softd3d11/PixelFormat.h"
#include "softd3d11/SharedImage.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace softd3d11 {

// The memory of a texture, shared by all textures opened from its handle. Zero at first. Thread-safe but for
// what says otherwise.
class TextureStorage final : public SharedImage
{
public:
    // The description has passed CheckTextureDesc. Gets a share handle where it asks for one. Throws
    // std::bad_alloc.
    static std::shared_ptr<TextureStorage> Create(const D3D11_TEXTURE2D_DESC &desc);

    explicit TextureStorage(const D3D11_TEXTURE2D_DESC &desc);
    ~TextureStorage() override;

    const D3D11_TEXTURE2D_DESC &Desc() const noexcept { return m_desc; }
    const PixelFormat &Format() const noexcept { return m_format; }
    std::size_t RowPitch() const noexcept { return m_nPitch; }        // bytes, a multiple of 64
    std::size_t SliceBytes() const noexcept { return m_nSliceBytes; } // both planes
    HANDLE SharedHandle() const noexcept { return m_hShared; }        // null for a texture that is not shared
    // For the contents of a slice, which change and are read under it alone, and whether it is mapped.
    std::mutex &SliceMutex(UINT nSlice) const noexcept { return m_slices[nSlice].mutex; }
    // While it is held no further slice gets mapped. Locked before the mutexes of slices.
    std::mutex &MapMutex() const noexcept { return m_mutexMap; }

    // First byte of a slice; the chroma follows Desc().Height rows later. The caller holds the
    // slice's mutex, or the slice is mapped.
    std::uint8_t *Slice(UINT nSlice) const noexcept { return m_pBytes + nSlice * m_nSliceBytes; }

    // What a slice is mapped for, 0 when it is not. The caller holds the slice's mutex, and to map it the map
    // mutex too.
    UINT MappedFor(UINT nSlice) const noexcept { return m_slices[nSlice].nMappedFor; }
    void SetMapped(UINT nSlice, UINT nMapType) noexcept { m_slices[nSlice].nMappedFor = nMapType; }

    // Tells the listeners. The caller has written and holds no mutex.
    void Written() noexcept;

    UINT Width() const noexcept override { return m_desc.Width; }
    UINT Height() const noexcept override { return m_desc.Height; }
    Pixels Lock() const override { return {std::unique_lock<std::mutex>(SliceMutex(0)), m_pBytes, m_nPitch}; }
    std::uint64_t Generation() const noexcept override { return m_nGeneration.load(); }
    std::uint64_t AddListener(Listener listener) override;
    void RemoveListener(std::uint64_t nListener) noexcept override;

private:
    struct FreeMemory
    {
        void operator()(void *pMemory) const noexcept { std::free(pMemory); }
    };
    struct SliceState
    {
        mutable std::mutex mutex;
        UINT nMappedFor = 0;
    };
    using ListenerPointer = std::shared_ptr<const Listener>;

    // The first one after nListener, which becomes its number, and before nEnd; null where there is none.
    ListenerPointer NextListener(std::uint64_t &nListener, std::uint64_t nEnd) noexcept;

    const D3D11_TEXTURE2D_DESC m_desc;
    const PixelFormat &m_format;
    const std::size_t m_nPitch;
    const std::size_t m_nSliceBytes;
    std::unique_ptr<void, FreeMemory> m_pMemory;
    std::uint8_t *m_pBytes; // the first aligned byte of the memory
    HANDLE m_hShared = nullptr;
    std::vector<SliceState> m_slices;
    mutable std::mutex m_mutexMap;
    std::atomic<std::uint64_t> m_nGeneration{0};
    std::mutex m_mutexListeners;
    std::uint64_t m_nNextListener = 1;
    std::map<std::uint64_t, ListenerPointer> m_listeners;
};

} // namespace softd3d11
