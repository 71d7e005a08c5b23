#include "softd3d11/Texture2D.h"

#include <utility>

namespace softd3d11 {

Texture2D::Texture2D(ID3D11Device &device, std::shared_ptr<TextureStorage> pStorage) noexcept
    : DeviceChild(device), m_pStorage(std::move(pStorage)), m_dxgiResource(*this)
{
}

void *Texture2D::FindInterface(REFIID riid) noexcept
{
    if (riid == IID_IUnknown || riid == IID_ID3D11DeviceChild || riid == IID_ID3D11Resource ||
        riid == IID_ID3D11Texture2D) {
        return static_cast<ID3D11Texture2D *>(this);
    }
    if (riid == IID_IDXGIObject || riid == IID_IDXGIDeviceSubObject || riid == IID_IDXGIResource) {
        return static_cast<IDXGIResource *>(&m_dxgiResource);
    }
    return nullptr;
}

void Texture2D::GetType(D3D11_RESOURCE_DIMENSION *pDimension)
{
    if (pDimension != nullptr) {
        *pDimension = D3D11_RESOURCE_DIMENSION_TEXTURE2D;
    }
}

void Texture2D::GetDesc(D3D11_TEXTURE2D_DESC *pDesc)
{
    const Call call(Method::TextureGetDesc);
    if (pDesc == nullptr) {
        call.Refuse();
        return;
    }
    *pDesc = m_pStorage->Desc();
}

} // namespace softd3d11
