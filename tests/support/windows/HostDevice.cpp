#include "windows/HostDevice.h"

#include "windows/CountedDevice.h"
#include "windows/CountedObject.h"

#include "d3d11/ComPtr.h"
#include "softd3d11/Instrumentation.h"

#include <utility>

namespace xelttest {

namespace {

// The device's other interface, with the same life.
class HostVideoDevice final : public ID3D11VideoDevice
{
public:
    HostVideoDevice(ID3D11Device &host, ComPtr<ID3D11VideoDevice> real)
        : m_host(host), m_real(std::move(real))
    {
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void **ppObject) override
    {
        return m_host.QueryInterface(iid, ppObject);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return m_host.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_host.Release(); }

    HRESULT STDMETHODCALLTYPE CreateVideoDecoder(const D3D11_VIDEO_DECODER_DESC *pVideoDesc,
                                                 const D3D11_VIDEO_DECODER_CONFIG *pConfig,
                                                 ID3D11VideoDecoder **ppDecoder) override
    {
        return m_real->CreateVideoDecoder(pVideoDesc, pConfig, ppDecoder);
    }
    HRESULT STDMETHODCALLTYPE CreateVideoProcessor(ID3D11VideoProcessorEnumerator *pEnum,
                                                   UINT RateConversionIndex,
                                                   ID3D11VideoProcessor **ppVideoProcessor) override
    {
        const MadeOn madeOn(m_host);
        return m_real->CreateVideoProcessor(pEnum, RateConversionIndex, ppVideoProcessor);
    }
    HRESULT STDMETHODCALLTYPE
    CreateAuthenticatedChannel(D3D11_AUTHENTICATED_CHANNEL_TYPE ChannelType,
                               ID3D11AuthenticatedChannel **ppAuthenticatedChannel) override
    {
        return m_real->CreateAuthenticatedChannel(ChannelType, ppAuthenticatedChannel);
    }
    HRESULT STDMETHODCALLTYPE CreateCryptoSession(const GUID *pCryptoType, const GUID *pDecoderProfile,
                                                  const GUID *pKeyExchangeType,
                                                  ID3D11CryptoSession **ppCryptoSession) override
    {
        return m_real->CreateCryptoSession(pCryptoType, pDecoderProfile, pKeyExchangeType, ppCryptoSession);
    }
    HRESULT STDMETHODCALLTYPE CreateVideoDecoderOutputView(ID3D11Resource *pResource,
                                                           const D3D11_VIDEO_DECODER_OUTPUT_VIEW_DESC *pDesc,
                                                           ID3D11VideoDecoderOutputView **ppVDOVView) override
    {
        return m_real->CreateVideoDecoderOutputView(pResource, pDesc, ppVDOVView);
    }
    HRESULT STDMETHODCALLTYPE
    CreateVideoProcessorInputView(ID3D11Resource *pResource, ID3D11VideoProcessorEnumerator *pEnum,
                                  const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC *pDesc,
                                  ID3D11VideoProcessorInputView **ppVPIView) override
    {
        const MadeOn madeOn(m_host);
        return m_real->CreateVideoProcessorInputView(pResource, pEnum, pDesc, ppVPIView);
    }
    HRESULT STDMETHODCALLTYPE
    CreateVideoProcessorOutputView(ID3D11Resource *pResource, ID3D11VideoProcessorEnumerator *pEnum,
                                   const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC *pDesc,
                                   ID3D11VideoProcessorOutputView **ppVPOView) override
    {
        const MadeOn madeOn(m_host);
        return m_real->CreateVideoProcessorOutputView(pResource, pEnum, pDesc, ppVPOView);
    }
    HRESULT STDMETHODCALLTYPE CreateVideoProcessorEnumerator(const D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pDesc,
                                                             ID3D11VideoProcessorEnumerator **ppEnum) override
    {
        const MadeOn madeOn(m_host);
        return m_real->CreateVideoProcessorEnumerator(pDesc, ppEnum);
    }
    UINT STDMETHODCALLTYPE GetVideoDecoderProfileCount() override
    {
        return m_real->GetVideoDecoderProfileCount();
    }
    HRESULT STDMETHODCALLTYPE GetVideoDecoderProfile(UINT Index, GUID *pDecoderProfile) override
    {
        return m_real->GetVideoDecoderProfile(Index, pDecoderProfile);
    }
    HRESULT STDMETHODCALLTYPE CheckVideoDecoderFormat(const GUID *pDecoderProfile, DXGI_FORMAT Format,
                                                      BOOL *pSupported) override
    {
        return m_real->CheckVideoDecoderFormat(pDecoderProfile, Format, pSupported);
    }
    HRESULT STDMETHODCALLTYPE GetVideoDecoderConfigCount(const D3D11_VIDEO_DECODER_DESC *pDesc,
                                                         UINT *pCount) override
    {
        return m_real->GetVideoDecoderConfigCount(pDesc, pCount);
    }
    HRESULT STDMETHODCALLTYPE GetVideoDecoderConfig(const D3D11_VIDEO_DECODER_DESC *pDesc, UINT Index,
                                                    D3D11_VIDEO_DECODER_CONFIG *pConfig) override
    {
        return m_real->GetVideoDecoderConfig(pDesc, Index, pConfig);
    }
    HRESULT STDMETHODCALLTYPE GetContentProtectionCaps(const GUID *pCryptoType, const GUID *pDecoderProfile,
                                                       D3D11_VIDEO_CONTENT_PROTECTION_CAPS *pCaps) override
    {
        return m_real->GetContentProtectionCaps(pCryptoType, pDecoderProfile, pCaps);
    }
    HRESULT STDMETHODCALLTYPE CheckCryptoKeyExchange(const GUID *pCryptoType, const GUID *pDecoderProfile,
                                                     UINT Index, GUID *pKeyExchangeType) override
    {
        return m_real->CheckCryptoKeyExchange(pCryptoType, pDecoderProfile, Index, pKeyExchangeType);
    }
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID guid, UINT DataSize, const void *pData) override
    {
        return m_real->SetPrivateData(guid, DataSize, pData);
    }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID guid, const IUnknown *pData) override
    {
        return m_real->SetPrivateDataInterface(guid, pData);
    }

private:
    ID3D11Device &m_host;
    ComPtr<ID3D11VideoDevice> m_real;
};

class HostDevice final : public CountedObject<ID3D11Device>
{
public:
    HostDevice(ID3D11Device &real, ComPtr<ID3D11VideoDevice> video)
        : m_real(&real), m_video(*this, std::move(video))
    {
        softd3d11::live::AddDevice(this);
    }
    ~HostDevice() override { softd3d11::live::RemoveDevice(this); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void **ppObject) override
    {
        // The real device answers, so that the call is counted and can be made to fail.
        const HRESULT hr = m_real->QueryInterface(iid, ppObject);
        if (FAILED(hr)) {
            return hr;
        }
        const bool blVideo = IsEqualGUID(iid, IID_ID3D11VideoDevice);
        if (blVideo || IsEqualGUID(iid, IID_ID3D11Device) || IsEqualGUID(iid, IID_IUnknown)) {
            static_cast<IUnknown *>(*ppObject)->Release();
            *ppObject = blVideo ? static_cast<void *>(&m_video) : static_cast<void *>(this);
            AddRef();
        }
        return hr;
    }

    HRESULT STDMETHODCALLTYPE CreateBuffer(const D3D11_BUFFER_DESC *pDesc,
                                           const D3D11_SUBRESOURCE_DATA *pInitialData,
                                           ID3D11Buffer **ppBuffer) override
    {
        return m_real->CreateBuffer(pDesc, pInitialData, ppBuffer);
    }
    HRESULT STDMETHODCALLTYPE CreateTexture1D(const D3D11_TEXTURE1D_DESC *pDesc,
                                              const D3D11_SUBRESOURCE_DATA *pInitialData,
                                              ID3D11Texture1D **ppTexture1D) override
    {
        return m_real->CreateTexture1D(pDesc, pInitialData, ppTexture1D);
    }
    HRESULT STDMETHODCALLTYPE CreateTexture2D(const D3D11_TEXTURE2D_DESC *pDesc,
                                              const D3D11_SUBRESOURCE_DATA *pInitialData,
                                              ID3D11Texture2D **ppTexture2D) override
    {
        const MadeOn madeOn(*this);
        return m_real->CreateTexture2D(pDesc, pInitialData, ppTexture2D);
    }
    HRESULT STDMETHODCALLTYPE CreateTexture3D(const D3D11_TEXTURE3D_DESC *pDesc,
                                              const D3D11_SUBRESOURCE_DATA *pInitialData,
                                              ID3D11Texture3D **ppTexture3D) override
    {
        return m_real->CreateTexture3D(pDesc, pInitialData, ppTexture3D);
    }
    HRESULT STDMETHODCALLTYPE CreateShaderResourceView(ID3D11Resource *pResource,
                                                       const D3D11_SHADER_RESOURCE_VIEW_DESC *pDesc,
                                                       ID3D11ShaderResourceView **ppSRView) override
    {
        return m_real->CreateShaderResourceView(pResource, pDesc, ppSRView);
    }
    HRESULT STDMETHODCALLTYPE CreateUnorderedAccessView(ID3D11Resource *pResource,
                                                        const D3D11_UNORDERED_ACCESS_VIEW_DESC *pDesc,
                                                        ID3D11UnorderedAccessView **ppUAView) override
    {
        return m_real->CreateUnorderedAccessView(pResource, pDesc, ppUAView);
    }
    HRESULT STDMETHODCALLTYPE CreateRenderTargetView(ID3D11Resource *pResource,
                                                     const D3D11_RENDER_TARGET_VIEW_DESC *pDesc,
                                                     ID3D11RenderTargetView **ppRTView) override
    {
        return m_real->CreateRenderTargetView(pResource, pDesc, ppRTView);
    }
    HRESULT STDMETHODCALLTYPE CreateDepthStencilView(ID3D11Resource *pResource,
                                                     const D3D11_DEPTH_STENCIL_VIEW_DESC *pDesc,
                                                     ID3D11DepthStencilView **ppDepthStencilView) override
    {
        return m_real->CreateDepthStencilView(pResource, pDesc, ppDepthStencilView);
    }
    HRESULT STDMETHODCALLTYPE CreateInputLayout(const D3D11_INPUT_ELEMENT_DESC *pInputElementDescs,
                                                UINT NumElements,
                                                const void *pShaderBytecodeWithInputSignature,
                                                SIZE_T BytecodeLength,
                                                ID3D11InputLayout **ppInputLayout) override
    {
        return m_real->CreateInputLayout(pInputElementDescs, NumElements, pShaderBytecodeWithInputSignature,
                                         BytecodeLength, ppInputLayout);
    }
    HRESULT STDMETHODCALLTYPE CreateVertexShader(const void *pShaderBytecode, SIZE_T BytecodeLength,
                                                 ID3D11ClassLinkage *pClassLinkage,
                                                 ID3D11VertexShader **ppVertexShader) override
    {
        return m_real->CreateVertexShader(pShaderBytecode, BytecodeLength, pClassLinkage, ppVertexShader);
    }
    HRESULT STDMETHODCALLTYPE CreateGeometryShader(const void *pShaderBytecode, SIZE_T BytecodeLength,
                                                   ID3D11ClassLinkage *pClassLinkage,
                                                   ID3D11GeometryShader **ppGeometryShader) override
    {
        return m_real->CreateGeometryShader(pShaderBytecode, BytecodeLength, pClassLinkage, ppGeometryShader);
    }
    HRESULT STDMETHODCALLTYPE CreateGeometryShaderWithStreamOutput(
        const void *pShaderBytecode, SIZE_T BytecodeLength, const D3D11_SO_DECLARATION_ENTRY *pSODeclaration,
        UINT NumEntries, const UINT *pBufferStrides, UINT NumStrides, UINT RasterizedStream,
        ID3D11ClassLinkage *pClassLinkage, ID3D11GeometryShader **ppGeometryShader) override
    {
        return m_real->CreateGeometryShaderWithStreamOutput(
            pShaderBytecode, BytecodeLength, pSODeclaration, NumEntries, pBufferStrides, NumStrides,
            RasterizedStream, pClassLinkage, ppGeometryShader);
    }
    HRESULT STDMETHODCALLTYPE CreatePixelShader(const void *pShaderBytecode, SIZE_T BytecodeLength,
                                                ID3D11ClassLinkage *pClassLinkage,
                                                ID3D11PixelShader **ppPixelShader) override
    {
        return m_real->CreatePixelShader(pShaderBytecode, BytecodeLength, pClassLinkage, ppPixelShader);
    }
    HRESULT STDMETHODCALLTYPE CreateHullShader(const void *pShaderBytecode, SIZE_T BytecodeLength,
                                               ID3D11ClassLinkage *pClassLinkage,
                                               ID3D11HullShader **ppHullShader) override
    {
        return m_real->CreateHullShader(pShaderBytecode, BytecodeLength, pClassLinkage, ppHullShader);
    }
    HRESULT STDMETHODCALLTYPE CreateDomainShader(const void *pShaderBytecode, SIZE_T BytecodeLength,
                                                 ID3D11ClassLinkage *pClassLinkage,
                                                 ID3D11DomainShader **ppDomainShader) override
    {
        return m_real->CreateDomainShader(pShaderBytecode, BytecodeLength, pClassLinkage, ppDomainShader);
    }
    HRESULT STDMETHODCALLTYPE CreateComputeShader(const void *pShaderBytecode, SIZE_T BytecodeLength,
                                                  ID3D11ClassLinkage *pClassLinkage,
                                                  ID3D11ComputeShader **ppComputeShader) override
    {
        return m_real->CreateComputeShader(pShaderBytecode, BytecodeLength, pClassLinkage, ppComputeShader);
    }
    HRESULT STDMETHODCALLTYPE CreateClassLinkage(ID3D11ClassLinkage **ppLinkage) override
    {
        return m_real->CreateClassLinkage(ppLinkage);
    }
    HRESULT STDMETHODCALLTYPE CreateBlendState(const D3D11_BLEND_DESC *pBlendStateDesc,
                                               ID3D11BlendState **ppBlendState) override
    {
        return m_real->CreateBlendState(pBlendStateDesc, ppBlendState);
    }
    HRESULT STDMETHODCALLTYPE CreateDepthStencilState(const D3D11_DEPTH_STENCIL_DESC *pDepthStencilDesc,
                                                      ID3D11DepthStencilState **ppDepthStencilState) override
    {
        return m_real->CreateDepthStencilState(pDepthStencilDesc, ppDepthStencilState);
    }
    HRESULT STDMETHODCALLTYPE CreateRasterizerState(const D3D11_RASTERIZER_DESC *pRasterizerDesc,
                                                    ID3D11RasterizerState **ppRasterizerState) override
    {
        return m_real->CreateRasterizerState(pRasterizerDesc, ppRasterizerState);
    }
    HRESULT STDMETHODCALLTYPE CreateSamplerState(const D3D11_SAMPLER_DESC *pSamplerDesc,
                                                 ID3D11SamplerState **ppSamplerState) override
    {
        return m_real->CreateSamplerState(pSamplerDesc, ppSamplerState);
    }
    HRESULT STDMETHODCALLTYPE CreateQuery(const D3D11_QUERY_DESC *pQueryDesc, ID3D11Query **ppQuery) override
    {
        return m_real->CreateQuery(pQueryDesc, ppQuery);
    }
    HRESULT STDMETHODCALLTYPE CreatePredicate(const D3D11_QUERY_DESC *pPredicateDesc,
                                              ID3D11Predicate **ppPredicate) override
    {
        return m_real->CreatePredicate(pPredicateDesc, ppPredicate);
    }
    HRESULT STDMETHODCALLTYPE CreateCounter(const D3D11_COUNTER_DESC *pCounterDesc,
                                            ID3D11Counter **ppCounter) override
    {
        return m_real->CreateCounter(pCounterDesc, ppCounter);
    }
    HRESULT STDMETHODCALLTYPE CreateDeferredContext(UINT ContextFlags,
                                                    ID3D11DeviceContext **ppDeferredContext) override
    {
        return m_real->CreateDeferredContext(ContextFlags, ppDeferredContext);
    }
    HRESULT STDMETHODCALLTYPE OpenSharedResource(HANDLE hResource, REFIID ReturnedInterface,
                                                 void **ppResource) override
    {
        return m_real->OpenSharedResource(hResource, ReturnedInterface, ppResource);
    }
    HRESULT STDMETHODCALLTYPE CheckFormatSupport(DXGI_FORMAT Format, UINT *pFormatSupport) override
    {
        return m_real->CheckFormatSupport(Format, pFormatSupport);
    }
    HRESULT STDMETHODCALLTYPE CheckMultisampleQualityLevels(DXGI_FORMAT Format, UINT SampleCount,
                                                            UINT *pNumQualityLevels) override
    {
        return m_real->CheckMultisampleQualityLevels(Format, SampleCount, pNumQualityLevels);
    }
    void STDMETHODCALLTYPE CheckCounterInfo(D3D11_COUNTER_INFO *pCounterInfo) override
    {
        m_real->CheckCounterInfo(pCounterInfo);
    }
    HRESULT STDMETHODCALLTYPE CheckCounter(const D3D11_COUNTER_DESC *pDesc, D3D11_COUNTER_TYPE *pType,
                                           UINT *pActiveCounters, LPSTR szName, UINT *pNameLength,
                                           LPSTR szUnits, UINT *pUnitsLength, LPSTR szDescription,
                                           UINT *pDescriptionLength) override
    {
        return m_real->CheckCounter(pDesc, pType, pActiveCounters, szName, pNameLength, szUnits, pUnitsLength,
                                    szDescription, pDescriptionLength);
    }
    HRESULT STDMETHODCALLTYPE CheckFeatureSupport(D3D11_FEATURE Feature, void *pFeatureSupportData,
                                                  UINT FeatureSupportDataSize) override
    {
        return m_real->CheckFeatureSupport(Feature, pFeatureSupportData, FeatureSupportDataSize);
    }
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID guid, UINT *pDataSize, void *pData) override
    {
        return m_real->GetPrivateData(guid, pDataSize, pData);
    }
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID guid, UINT DataSize, const void *pData) override
    {
        return m_real->SetPrivateData(guid, DataSize, pData);
    }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID guid, const IUnknown *pData) override
    {
        return m_real->SetPrivateDataInterface(guid, pData);
    }
    D3D_FEATURE_LEVEL STDMETHODCALLTYPE GetFeatureLevel() override { return m_real->GetFeatureLevel(); }
    UINT STDMETHODCALLTYPE GetCreationFlags() override { return m_real->GetCreationFlags(); }
    HRESULT STDMETHODCALLTYPE GetDeviceRemovedReason() override { return m_real->GetDeviceRemovedReason(); }
    void STDMETHODCALLTYPE GetImmediateContext(ID3D11DeviceContext **ppImmediateContext) override
    {
        m_real->GetImmediateContext(ppImmediateContext);
    }
    HRESULT STDMETHODCALLTYPE SetExceptionMode(UINT RaiseFlags) override
    {
        return m_real->SetExceptionMode(RaiseFlags);
    }
    UINT STDMETHODCALLTYPE GetExceptionMode() override { return m_real->GetExceptionMode(); }

private:
    ComPtr<ID3D11Device> m_real;
    HostVideoDevice m_video;
};

} // namespace

ID3D11Device *makeHostDevice(ID3D11Device &real)
{
    const Uncounted uncounted;
    ComPtr<ID3D11VideoDevice> video;
    if (FAILED(real.QueryInterface(IID_ID3D11VideoDevice, video.ReleaseAndGetVoidAddressOf()))) {
        return nullptr;
    }
    return new HostDevice(real, std::move(video));
}

} // namespace xelttest
