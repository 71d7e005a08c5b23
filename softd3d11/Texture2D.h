#pragma once

#include "softd3d11/DeviceChild.h"
#include "softd3d11/DxgiResource.h"
#include "softd3d11/TextureStorage.h"

#include <atomic>
#include <memory>

namespace softd3d11 {

// A texture of one device. Several, of any devices, may share the storage.
class Texture2D final : public DeviceChild<Texture2D, ID3D11Texture2D>
{
public:
    static constexpr GUID kClassId = {
        0x5f0c6f30, 0x9d6e, 0x4b57, {0x9e, 0x1b, 0x6a, 0x0d, 0x51, 0xc8, 0x02, 0x77}};
    static constexpr Method kQueryMethod = Method::TextureQueryInterface;

    Texture2D(ID3D11Device &device, std::shared_ptr<TextureStorage> pStorage) noexcept;

    void *FindInterface(REFIID riid) noexcept;
    TextureStorage &Storage() const noexcept { return *m_pStorage; }

    void STDMETHODCALLTYPE GetType(D3D11_RESOURCE_DIMENSION *pDimension) override;
    void STDMETHODCALLTYPE SetEvictionPriority(UINT nPriority) override { m_nEvictionPriority = nPriority; }
    UINT STDMETHODCALLTYPE GetEvictionPriority() override { return m_nEvictionPriority; }
    void STDMETHODCALLTYPE GetDesc(D3D11_TEXTURE2D_DESC *pDesc) override;

private:
    const std::shared_ptr<TextureStorage> m_pStorage;
    DxgiResource m_dxgiResource;
    std::atomic<UINT> m_nEvictionPriority{DXGI_RESOURCE_PRIORITY_NORMAL};
};

} // namespace softd3d11
