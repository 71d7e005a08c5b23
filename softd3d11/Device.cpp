#include "softd3d11/Device.h"

#include "softd3d11/SharedHandles.h"
#include "softd3d11/Texture2D.h"
#include "softd3d11/TextureRules.h"
#include "softd3d11/TextureTransfer.h"

#include <memory>
#include <utility>

namespace softd3d11 {

Device::Device()
{
    live::AddDevice(this);
}

Device::~Device()
{
    live::RemoveDevice(this);
}

HRESULT Device::QueryInterface(REFIID riid, void **ppObject)
{
    const Call call(Method::DeviceQueryInterface);
    ClearResult(ppObject);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    return ppObject != nullptr ? Query(riid, ppObject) : call.Refuse(E_POINTER);
}

HRESULT Device::Query(REFIID riid, void **ppObject) noexcept
{
    if (riid == IID_IUnknown || riid == IID_ID3D11Device) {
        *ppObject = static_cast<ID3D11Device *>(this);
    } else if (riid == IID_ID3D11VideoDevice) {
        *ppObject = static_cast<ID3D11VideoDevice *>(this);
    } else {
        *ppObject = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG Device::Release()
{
    const ULONG nLeft = --m_nReferences;
    if (nLeft == 0) {
        delete this;
    }
    return nLeft;
}

HRESULT Device::SetPrivateData(REFGUID, UINT, const void *)
{
    CountCall(Method::DeviceUnsupported);
    return E_NOTIMPL;
}

HRESULT Device::SetPrivateDataInterface(REFGUID, const IUnknown *)
{
    CountCall(Method::DeviceUnsupported);
    return E_NOTIMPL;
}

HRESULT Device::CreateTexture2D(const D3D11_TEXTURE2D_DESC *pDesc, const D3D11_SUBRESOURCE_DATA *pInitialData,
                                ID3D11Texture2D **ppTexture)
{
    const Call call(Method::DeviceCreateTexture2D);
    ClearResult(ppTexture);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    const HRESULT hr = pDesc != nullptr ? CheckTextureDesc(*pDesc, pInitialData) : E_INVALIDARG;
    if (FAILED(hr)) {
        return call.Refuse(hr);
    }
    if (ppTexture == nullptr) {
        return S_FALSE; // the caller only asks whether it could be made
    }
    return WithoutExceptions([&] {
        std::shared_ptr<TextureStorage> pStorage = TextureStorage::Create(*pDesc);
        for (UINT i = 0; pInitialData != nullptr && i < pDesc->ArraySize; ++i) {
            WriteTexels(*pStorage, i, {0, 0, pDesc->Width, pDesc->Height}, pInitialData[i].pSysMem,
                        pInitialData[i].SysMemPitch);
        }
        *ppTexture = new Texture2D(*this, std::move(pStorage));
        return S_OK;
    });
}

HRESULT Device::OpenSharedResource(HANDLE hResource, REFIID riid, void **ppResource)
{
    const Call call(Method::DeviceOpenSharedResource);
    ClearResult(ppResource);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (ppResource == nullptr) {
        return call.Refuse();
    }
    std::shared_ptr<TextureStorage> pStorage = FindSharedStorage(hResource);
    if (pStorage == nullptr) {
        return call.Refuse();
    }
    return WithoutExceptions([&] {
        const ComRef<Texture2D> texture(new Texture2D(*this, std::move(pStorage)));
        return texture->Query(riid, ppResource);
    });
}

HRESULT Device::CheckFormatSupport(DXGI_FORMAT format, UINT *pFormatSupport)
{
    const Call call(Method::DeviceCheckFormatSupport);
    ClearResult(pFormatSupport);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (pFormatSupport == nullptr) {
        return call.Refuse();
    }
    const PixelFormat *pFormat = FindPixelFormat(format);
    if (pFormat == nullptr) {
        return E_FAIL;
    }
    *pFormatSupport = pFormat->nFormatSupport;
    return S_OK;
}

D3D_FEATURE_LEVEL Device::GetFeatureLevel()
{
    CountCall(Method::DeviceGetFeatureLevel);
    return D3D_FEATURE_LEVEL_11_0;
}

UINT Device::GetCreationFlags()
{
    CountCall(Method::DeviceGetCreationFlags);
    return D3D11_CREATE_DEVICE_BGRA_SUPPORT | D3D11_CREATE_DEVICE_VIDEO_SUPPORT;
}

HRESULT Device::GetDeviceRemovedReason()
{
    return Call(Method::DeviceGetDeviceRemovedReason).Injected();
}

void Device::GetImmediateContext(ID3D11DeviceContext **ppContext)
{
    const Call call(Method::DeviceGetImmediateContext);
    if (ppContext == nullptr) {
        call.Refuse();
        return;
    }
    m_context.AddRef();
    *ppContext = &m_context;
}

namespace {

ID3D11Device *MakeDevice()
{
    return new Device;
}

} // namespace

HRESULT CreateDevice(ID3D11Device **ppDevice) noexcept
{
    if (ppDevice == nullptr) {
        return E_POINTER;
    }
    *ppDevice = nullptr;
    return WithoutExceptions([&] {
        *ppDevice = MakeDevice();
        return S_OK;
    });
}

} // namespace softd3d11
