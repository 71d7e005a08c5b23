#pragma once

#include "softd3d11/Unsupported.h"

namespace softd3d11 {

// What a device does not do.
class UnsupportedDevice : public ID3D11Device, private Unsupported<Method::DeviceUnsupported>
{
public:
    HRESULT STDMETHODCALLTYPE CreateBuffer(const D3D11_BUFFER_DESC *, const D3D11_SUBRESOURCE_DATA *,
                                           ID3D11Buffer **ppBuffer) override
    {
        return NotImplemented(ppBuffer);
    }
    HRESULT STDMETHODCALLTYPE CreateTexture1D(const D3D11_TEXTURE1D_DESC *, const D3D11_SUBRESOURCE_DATA *,
                                              ID3D11Texture1D **ppTexture1D) override
    {
        return NotImplemented(ppTexture1D);
    }
    HRESULT STDMETHODCALLTYPE CreateTexture3D(const D3D11_TEXTURE3D_DESC *, const D3D11_SUBRESOURCE_DATA *,
                                              ID3D11Texture3D **ppTexture3D) override
    {
        return NotImplemented(ppTexture3D);
    }
    HRESULT STDMETHODCALLTYPE CreateShaderResourceView(ID3D11Resource *,
                                                       const D3D11_SHADER_RESOURCE_VIEW_DESC *,
                                                       ID3D11ShaderResourceView **ppSRView) override
    {
        return NotImplemented(ppSRView);
    }
    HRESULT STDMETHODCALLTYPE CreateUnorderedAccessView(ID3D11Resource *,
                                                        const D3D11_UNORDERED_ACCESS_VIEW_DESC *,
                                                        ID3D11UnorderedAccessView **ppUAView) override
    {
        return NotImplemented(ppUAView);
    }
    HRESULT STDMETHODCALLTYPE CreateRenderTargetView(ID3D11Resource *, const D3D11_RENDER_TARGET_VIEW_DESC *,
                                                     ID3D11RenderTargetView **ppRTView) override
    {
        return NotImplemented(ppRTView);
    }
    HRESULT STDMETHODCALLTYPE CreateDepthStencilView(ID3D11Resource *, const D3D11_DEPTH_STENCIL_VIEW_DESC *,
                                                     ID3D11DepthStencilView **ppDepthStencilView) override
    {
        return NotImplemented(ppDepthStencilView);
    }
    HRESULT STDMETHODCALLTYPE CreateInputLayout(const D3D11_INPUT_ELEMENT_DESC *, UINT, const void *, SIZE_T,
                                                ID3D11InputLayout **ppInputLayout) override
    {
        return NotImplemented(ppInputLayout);
    }
    HRESULT STDMETHODCALLTYPE CreateVertexShader(const void *, SIZE_T, ID3D11ClassLinkage *,
                                                 ID3D11VertexShader **ppVertexShader) override
    {
        return NotImplemented(ppVertexShader);
    }
    HRESULT STDMETHODCALLTYPE CreateGeometryShader(const void *, SIZE_T, ID3D11ClassLinkage *,
                                                   ID3D11GeometryShader **ppGeometryShader) override
    {
        return NotImplemented(ppGeometryShader);
    }
    HRESULT STDMETHODCALLTYPE CreateGeometryShaderWithStreamOutput(
        const void *, SIZE_T, const D3D11_SO_DECLARATION_ENTRY *, UINT, const UINT *, UINT, UINT,
        ID3D11ClassLinkage *, ID3D11GeometryShader **ppGeometryShader) override
    {
        return NotImplemented(ppGeometryShader);
    }
    HRESULT STDMETHODCALLTYPE CreatePixelShader(const void *, SIZE_T, ID3D11ClassLinkage *,
                                                ID3D11PixelShader **ppPixelShader) override
    {
        return NotImplemented(ppPixelShader);
    }
    HRESULT STDMETHODCALLTYPE CreateHullShader(const void *, SIZE_T, ID3D11ClassLinkage *,
                                               ID3D11HullShader **ppHullShader) override
    {
        return NotImplemented(ppHullShader);
    }
    HRESULT STDMETHODCALLTYPE CreateDomainShader(const void *, SIZE_T, ID3D11ClassLinkage *,
                                                 ID3D11DomainShader **ppDomainShader) override
    {
        return NotImplemented(ppDomainShader);
    }
    HRESULT STDMETHODCALLTYPE CreateComputeShader(const void *, SIZE_T, ID3D11ClassLinkage *,
                                                  ID3D11ComputeShader **ppComputeShader) override
    {
        return NotImplemented(ppComputeShader);
    }
    HRESULT STDMETHODCALLTYPE CreateClassLinkage(ID3D11ClassLinkage **ppLinkage) override
    {
        return NotImplemented(ppLinkage);
    }
    HRESULT STDMETHODCALLTYPE CreateBlendState(const D3D11_BLEND_DESC *,
                                               ID3D11BlendState **ppBlendState) override
    {
        return NotImplemented(ppBlendState);
    }
    HRESULT STDMETHODCALLTYPE CreateDepthStencilState(const D3D11_DEPTH_STENCIL_DESC *,
                                                      ID3D11DepthStencilState **ppDepthStencilState) override
    {
        return NotImplemented(ppDepthStencilState);
    }
    HRESULT STDMETHODCALLTYPE CreateRasterizerState(const D3D11_RASTERIZER_DESC *,
                                                    ID3D11RasterizerState **ppRasterizerState) override
    {
        return NotImplemented(ppRasterizerState);
    }
    HRESULT STDMETHODCALLTYPE CreateSamplerState(const D3D11_SAMPLER_DESC *,
                                                 ID3D11SamplerState **ppSamplerState) override
    {
        return NotImplemented(ppSamplerState);
    }
    HRESULT STDMETHODCALLTYPE CreateQuery(const D3D11_QUERY_DESC *, ID3D11Query **ppQuery) override
    {
        return NotImplemented(ppQuery);
    }
    HRESULT STDMETHODCALLTYPE CreatePredicate(const D3D11_QUERY_DESC *,
                                              ID3D11Predicate **ppPredicate) override
    {
        return NotImplemented(ppPredicate);
    }
    HRESULT STDMETHODCALLTYPE CreateCounter(const D3D11_COUNTER_DESC *, ID3D11Counter **ppCounter) override
    {
        return NotImplemented(ppCounter);
    }
    HRESULT STDMETHODCALLTYPE CreateDeferredContext(UINT, ID3D11DeviceContext **ppDeferredContext) override
    {
        return NotImplemented(ppDeferredContext);
    }
    HRESULT STDMETHODCALLTYPE CheckMultisampleQualityLevels(DXGI_FORMAT, UINT,
                                                            UINT *pNumQualityLevels) override
    {
        return NotImplemented(pNumQualityLevels);
    }
    void STDMETHODCALLTYPE CheckCounterInfo(D3D11_COUNTER_INFO *pCounterInfo) override
    {
        Ignore(pCounterInfo);
    }
    HRESULT STDMETHODCALLTYPE CheckCounter(const D3D11_COUNTER_DESC *, D3D11_COUNTER_TYPE *pType,
                                           UINT *pActiveCounters, LPSTR, UINT *pNameLength, LPSTR,
                                           UINT *pUnitsLength, LPSTR, UINT *pDescriptionLength) override
    {
        return NotImplemented(pType, pActiveCounters, pNameLength, pUnitsLength, pDescriptionLength);
    }
    HRESULT STDMETHODCALLTYPE CheckFeatureSupport(D3D11_FEATURE, void *pFeatureSupportData,
                                                  UINT FeatureSupportDataSize) override
    {
        return NotImplementedBytes(pFeatureSupportData, FeatureSupportDataSize);
    }
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT *pDataSize, void *) override
    {
        return NotImplemented(pDataSize);
    }
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE SetExceptionMode(UINT) override { return NotImplemented(); }
    UINT STDMETHODCALLTYPE GetExceptionMode() override
    {
        Ignore();
        return 0;
    }
};

} // namespace softd3d11
