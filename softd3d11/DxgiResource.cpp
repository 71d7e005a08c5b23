#include "softd3d11/DxgiResource.h"

#include "softd3d11/Device.h"
#include "softd3d11/Texture2D.h"

namespace softd3d11 {

HRESULT DxgiResource::QueryInterface(REFIID riid, void **ppObject)
{
    return m_texture.QueryInterface(riid, ppObject);
}

ULONG DxgiResource::AddRef()
{
    return m_texture.AddRef();
}

ULONG DxgiResource::Release()
{
    return m_texture.Release();
}

HRESULT DxgiResource::SetPrivateData(REFGUID guid, UINT nBytes, const void *pData)
{
    return m_texture.SetPrivateData(guid, nBytes, pData);
}

HRESULT DxgiResource::SetPrivateDataInterface(REFGUID guid, const IUnknown *pObject)
{
    return m_texture.SetPrivateDataInterface(guid, pObject);
}

HRESULT DxgiResource::GetPrivateData(REFGUID guid, UINT *pBytes, void *pData)
{
    return m_texture.GetPrivateData(guid, pBytes, pData);
}

HRESULT DxgiResource::GetParent(REFIID, void **ppParent)
{
    CountCall(Method::OtherUnsupported);
    ClearResult(ppParent);
    return E_NOTIMPL;
}

HRESULT DxgiResource::GetDevice(REFIID riid, void **ppDevice)
{
    const Call call(Method::ResourceGetDevice);
    ClearResult(ppDevice);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (ppDevice == nullptr) {
        return call.Refuse(E_POINTER);
    }
    // Every texture is made by a device of this library.
    return static_cast<Device *>(m_texture.ParentDevice())->Query(riid, ppDevice);
}

HRESULT DxgiResource::GetSharedHandle(HANDLE *pSharedHandle)
{
    const Call call(Method::ResourceGetSharedHandle);
    ClearResult(pSharedHandle);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (pSharedHandle == nullptr) {
        return call.Refuse();
    }
    *pSharedHandle = m_texture.Storage().SharedHandle();
    return *pSharedHandle != nullptr ? S_OK : call.Refuse();
}

HRESULT DxgiResource::GetUsage(DXGI_USAGE *pUsage)
{
    const Call call(Method::ResourceGetUsage);
    ClearResult(pUsage);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (pUsage == nullptr) {
        return call.Refuse();
    }
    const D3D11_TEXTURE2D_DESC &desc = m_texture.Storage().Desc();
    *pUsage = ((desc.BindFlags & D3D11_BIND_SHADER_RESOURCE) != 0 ? DXGI_USAGE_SHADER_INPUT : 0U) |
              ((desc.BindFlags & D3D11_BIND_RENDER_TARGET) != 0 ? DXGI_USAGE_RENDER_TARGET_OUTPUT : 0U) |
              ((desc.MiscFlags & D3D11_RESOURCE_MISC_SHARED) != 0 ? DXGI_USAGE_SHARED : 0U);
    return S_OK;
}

HRESULT DxgiResource::SetEvictionPriority(UINT nPriority)
{
    const Call call(Method::ResourceSetEvictionPriority);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    m_texture.SetEvictionPriority(nPriority);
    return S_OK;
}

HRESULT DxgiResource::GetEvictionPriority(UINT *pPriority)
{
    const Call call(Method::ResourceGetEvictionPriority);
    ClearResult(pPriority);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (pPriority == nullptr) {
        return call.Refuse();
    }
    *pPriority = m_texture.GetEvictionPriority();
    return S_OK;
}

} // namespace softd3d11
