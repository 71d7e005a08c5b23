#pragma once

#include "platform/Direct3DDeclarations.h"

namespace softd3d11 {

class Texture2D;

// The DXGI side of a texture. A part of it, and no object of its own: references and queries go to the
// texture.
class DxgiResource final : public IDXGIResource
{
public:
    explicit DxgiResource(Texture2D &texture) noexcept : m_texture(texture) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppObject) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID guid, UINT nBytes, const void *pData) override;
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID guid, const IUnknown *pObject) override;
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID guid, UINT *pBytes, void *pData) override;
    HRESULT STDMETHODCALLTYPE GetParent(REFIID riid, void **ppParent) override;
    HRESULT STDMETHODCALLTYPE GetDevice(REFIID riid, void **ppDevice) override;

    // Always the same handle; E_INVALIDARG for a texture made without D3D11_RESOURCE_MISC_SHARED.
    HRESULT STDMETHODCALLTYPE GetSharedHandle(HANDLE *pSharedHandle) override;
    HRESULT STDMETHODCALLTYPE GetUsage(DXGI_USAGE *pUsage) override;
    HRESULT STDMETHODCALLTYPE SetEvictionPriority(UINT nPriority) override;
    HRESULT STDMETHODCALLTYPE GetEvictionPriority(UINT *pPriority) override;

private:
    Texture2D &m_texture;
};

} // namespace softd3d11
