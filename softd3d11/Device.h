#pragma once

#include "softd3d11/ImmediateContext.h"
#include "softd3d11/UnsupportedDevice.h"
#include "softd3d11/UnsupportedVideoDevice.h"

#include <atomic>

namespace softd3d11 {

// A device with its video side and its immediate context.
class Device final : public UnsupportedDevice, public UnsupportedVideoDevice
{
public:
    Device(); // throws std::bad_alloc

    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppObject) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_nReferences; }
    ULONG STDMETHODCALLTYPE Release() override;

    // QueryInterface for this library itself: not counted, and no failure is drawn.
    HRESULT Query(REFIID riid, void **ppObject) noexcept;

    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID guid, UINT nBytes, const void *pData) override;
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID guid, const IUnknown *pData) override;

    HRESULT STDMETHODCALLTYPE CreateTexture2D(const D3D11_TEXTURE2D_DESC *pDesc,
                                              const D3D11_SUBRESOURCE_DATA *pInitialData,
                                              ID3D11Texture2D **ppTexture) override;
    HRESULT STDMETHODCALLTYPE OpenSharedResource(HANDLE hResource, REFIID riid, void **ppResource) override;
    HRESULT STDMETHODCALLTYPE CheckFormatSupport(DXGI_FORMAT format, UINT *pFormatSupport) override;
    D3D_FEATURE_LEVEL STDMETHODCALLTYPE GetFeatureLevel() override;
    UINT STDMETHODCALLTYPE GetCreationFlags() override;
    HRESULT STDMETHODCALLTYPE GetDeviceRemovedReason() override;
    void STDMETHODCALLTYPE GetImmediateContext(ID3D11DeviceContext **ppContext) override;

    HRESULT STDMETHODCALLTYPE CreateVideoProcessor(ID3D11VideoProcessorEnumerator *pEnumerator,
                                                   UINT nRateConversionIndex,
                                                   ID3D11VideoProcessor **ppProcessor) override;
    HRESULT STDMETHODCALLTYPE CreateVideoProcessorInputView(
        ID3D11Resource *pResource, ID3D11VideoProcessorEnumerator *pEnumerator,
        const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC *pDesc, ID3D11VideoProcessorInputView **ppView) override;
    HRESULT STDMETHODCALLTYPE
    CreateVideoProcessorOutputView(ID3D11Resource *pResource, ID3D11VideoProcessorEnumerator *pEnumerator,
                                   const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC *pDesc,
                                   ID3D11VideoProcessorOutputView **ppView) override;
    HRESULT STDMETHODCALLTYPE
    CreateVideoProcessorEnumerator(const D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pDesc,
                                   ID3D11VideoProcessorEnumerator **ppEnumerator) override;

private:
    ~Device();

    ImmediateContext m_context{*this};
    std::atomic<ULONG> m_nReferences{1};
};

} // namespace softd3d11
