#include "softd3d11/TextureStorage.h"

#include "softd3d11/SharedHandles.h"

#include <cstdint>
#include <memory>
#include <new>
#include <utility>

namespace softd3d11 {

namespace {

D3D11_TEXTURE2D_DESC WithOneLevel(D3D11_TEXTURE2D_DESC desc)
{
    desc.MipLevels = 1; // zero asked for all levels, and there is but one
    return desc;
}

} // namespace

std::shared_ptr<TextureStorage> TextureStorage::Create(const D3D11_TEXTURE2D_DESC &desc)
{
    auto pStorage = std::make_shared<TextureStorage>(desc);
    if ((desc.MiscFlags & D3D11_RESOURCE_MISC_SHARED) != 0) {
        pStorage->m_hShared = MakeSharedHandle(pStorage);
    }
    return pStorage;
}

TextureStorage::TextureStorage(const D3D11_TEXTURE2D_DESC &desc)
    : m_desc(WithOneLevel(desc)),
      m_format(*FindPixelFormat(desc.Format)),
      m_nPitch(RowPitchOf(m_format, desc.Width)),
      m_nSliceBytes(SliceBytesOf(m_format, desc.Width, desc.Height)),
      m_pMemory(std::calloc(1, m_nSliceBytes * desc.ArraySize +
                                   kRowAlignment)), // pages that nobody uses cost nothing
      m_pBytes(nullptr),
      m_slices(desc.ArraySize)
{
    if (m_pMemory == nullptr) {
        throw std::bad_alloc();
    }
    void *pAligned = m_pMemory.get();
    std::size_t nRoom = m_nSliceBytes * desc.ArraySize + kRowAlignment;
    m_pBytes = static_cast<std::uint8_t *>(std::align(kRowAlignment, nRoom - kRowAlignment, pAligned, nRoom));
}

TextureStorage::~TextureStorage()
{
    DropSharedHandle(m_hShared);
}

void TextureStorage::Written() noexcept
{
    ++m_nGeneration;
    std::uint64_t nEnd = 0; // those that are added from now on are not told
    {
        const std::lock_guard<std::mutex> lock(m_mutexListeners);
        nEnd = m_nNextListener;
    }
    // One after the other, as a list of them would need memory.
    std::uint64_t nListener = 0;
    while (const ListenerPointer pListener = NextListener(nListener, nEnd)) {
        (*pListener)();
    }
}

TextureStorage::ListenerPointer TextureStorage::NextListener(std::uint64_t &nListener,
                                                             std::uint64_t nEnd) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutexListeners);
    const auto next = m_listeners.upper_bound(nListener);
    if (next == m_listeners.end() || next->first >= nEnd) {
        return nullptr;
    }
    nListener = next->first;
    return next->second;
}

std::uint64_t TextureStorage::AddListener(Listener listener)
{
    auto pListener = std::make_shared<const Listener>(std::move(listener));
    const std::lock_guard<std::mutex> lock(m_mutexListeners);
    const std::uint64_t nListener = m_nNextListener++;
    m_listeners.emplace(nListener, std::move(pListener));
    return nListener;
}

void TextureStorage::RemoveListener(std::uint64_t nListener) noexcept
{
    ListenerPointer pRemoved; // destroyed after the lock is gone
    const std::lock_guard<std::mutex> lock(m_mutexListeners);
    const auto found = m_listeners.find(nListener);
    if (found != m_listeners.end()) {
        pRemoved = std::move(found->second);
        m_listeners.erase(found);
    }
}

} // namespace softd3d11
