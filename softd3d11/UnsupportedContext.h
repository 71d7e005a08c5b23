#pragma once

#include "softd3d11/Unsupported.h"

namespace softd3d11 {

// What a context does not do: everything but the handling of textures.
class UnsupportedContext : public ID3D11DeviceContext, private Unsupported<Method::ContextUnsupported>
{
public:
    void STDMETHODCALLTYPE VSSetConstantBuffers(UINT, UINT, ID3D11Buffer *const *) override { Ignore(); }
    void STDMETHODCALLTYPE PSSetShaderResources(UINT, UINT, ID3D11ShaderResourceView *const *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE PSSetShader(ID3D11PixelShader *, ID3D11ClassInstance *const *, UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE PSSetSamplers(UINT, UINT, ID3D11SamplerState *const *) override { Ignore(); }
    void STDMETHODCALLTYPE VSSetShader(ID3D11VertexShader *, ID3D11ClassInstance *const *, UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE DrawIndexed(UINT, UINT, INT) override { Ignore(); }
    void STDMETHODCALLTYPE Draw(UINT, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE PSSetConstantBuffers(UINT, UINT, ID3D11Buffer *const *) override { Ignore(); }
    void STDMETHODCALLTYPE IASetInputLayout(ID3D11InputLayout *) override { Ignore(); }
    void STDMETHODCALLTYPE IASetVertexBuffers(UINT, UINT, ID3D11Buffer *const *, const UINT *,
                                              const UINT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE IASetIndexBuffer(ID3D11Buffer *, DXGI_FORMAT, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE DrawIndexedInstanced(UINT, UINT, UINT, INT, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE DrawInstanced(UINT, UINT, UINT, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE GSSetConstantBuffers(UINT, UINT, ID3D11Buffer *const *) override { Ignore(); }
    void STDMETHODCALLTYPE GSSetShader(ID3D11GeometryShader *, ID3D11ClassInstance *const *, UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY) override { Ignore(); }
    void STDMETHODCALLTYPE VSSetShaderResources(UINT, UINT, ID3D11ShaderResourceView *const *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VSSetSamplers(UINT, UINT, ID3D11SamplerState *const *) override { Ignore(); }
    void STDMETHODCALLTYPE Begin(ID3D11Asynchronous *) override { Ignore(); }
    void STDMETHODCALLTYPE End(ID3D11Asynchronous *) override { Ignore(); }
    HRESULT STDMETHODCALLTYPE GetData(ID3D11Asynchronous *, void *pData, UINT DataSize, UINT) override
    {
        return NotImplementedBytes(pData, DataSize);
    }
    void STDMETHODCALLTYPE SetPredication(ID3D11Predicate *, BOOL) override { Ignore(); }
    void STDMETHODCALLTYPE GSSetShaderResources(UINT, UINT, ID3D11ShaderResourceView *const *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE GSSetSamplers(UINT, UINT, ID3D11SamplerState *const *) override { Ignore(); }
    void STDMETHODCALLTYPE OMSetRenderTargets(UINT, ID3D11RenderTargetView *const *,
                                              ID3D11DepthStencilView *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE OMSetRenderTargetsAndUnorderedAccessViews(UINT, ID3D11RenderTargetView *const *,
                                                                     ID3D11DepthStencilView *, UINT, UINT,
                                                                     ID3D11UnorderedAccessView *const *,
                                                                     const UINT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE OMSetBlendState(ID3D11BlendState *, const FLOAT *, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE OMSetDepthStencilState(ID3D11DepthStencilState *, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE SOSetTargets(UINT, ID3D11Buffer *const *, const UINT *) override { Ignore(); }
    void STDMETHODCALLTYPE DrawAuto() override { Ignore(); }
    void STDMETHODCALLTYPE DrawIndexedInstancedIndirect(ID3D11Buffer *, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE DrawInstancedIndirect(ID3D11Buffer *, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE Dispatch(UINT, UINT, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE DispatchIndirect(ID3D11Buffer *, UINT) override { Ignore(); }
    void STDMETHODCALLTYPE RSSetState(ID3D11RasterizerState *) override { Ignore(); }
    void STDMETHODCALLTYPE RSSetViewports(UINT, const D3D11_VIEWPORT *) override { Ignore(); }
    void STDMETHODCALLTYPE RSSetScissorRects(UINT, const D3D11_RECT *) override { Ignore(); }
    void STDMETHODCALLTYPE CopyStructureCount(ID3D11Buffer *, UINT, ID3D11UnorderedAccessView *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE ClearRenderTargetView(ID3D11RenderTargetView *, const FLOAT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE ClearUnorderedAccessViewUint(ID3D11UnorderedAccessView *, const UINT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE ClearUnorderedAccessViewFloat(ID3D11UnorderedAccessView *, const FLOAT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE ClearDepthStencilView(ID3D11DepthStencilView *, UINT, FLOAT, UINT8) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE GenerateMips(ID3D11ShaderResourceView *) override { Ignore(); }
    void STDMETHODCALLTYPE SetResourceMinLOD(ID3D11Resource *, FLOAT) override { Ignore(); }
    FLOAT STDMETHODCALLTYPE GetResourceMinLOD(ID3D11Resource *) override
    {
        Ignore();
        return 0;
    }
    void STDMETHODCALLTYPE ResolveSubresource(ID3D11Resource *, UINT, ID3D11Resource *, UINT,
                                              DXGI_FORMAT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE ExecuteCommandList(ID3D11CommandList *, BOOL) override { Ignore(); }
    void STDMETHODCALLTYPE HSSetShaderResources(UINT, UINT, ID3D11ShaderResourceView *const *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE HSSetShader(ID3D11HullShader *, ID3D11ClassInstance *const *, UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE HSSetSamplers(UINT, UINT, ID3D11SamplerState *const *) override { Ignore(); }
    void STDMETHODCALLTYPE HSSetConstantBuffers(UINT, UINT, ID3D11Buffer *const *) override { Ignore(); }
    void STDMETHODCALLTYPE DSSetShaderResources(UINT, UINT, ID3D11ShaderResourceView *const *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE DSSetShader(ID3D11DomainShader *, ID3D11ClassInstance *const *, UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE DSSetSamplers(UINT, UINT, ID3D11SamplerState *const *) override { Ignore(); }
    void STDMETHODCALLTYPE DSSetConstantBuffers(UINT, UINT, ID3D11Buffer *const *) override { Ignore(); }
    void STDMETHODCALLTYPE CSSetShaderResources(UINT, UINT, ID3D11ShaderResourceView *const *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE CSSetUnorderedAccessViews(UINT, UINT, ID3D11UnorderedAccessView *const *,
                                                     const UINT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE CSSetShader(ID3D11ComputeShader *, ID3D11ClassInstance *const *, UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE CSSetSamplers(UINT, UINT, ID3D11SamplerState *const *) override { Ignore(); }
    void STDMETHODCALLTYPE CSSetConstantBuffers(UINT, UINT, ID3D11Buffer *const *) override { Ignore(); }
    void STDMETHODCALLTYPE VSGetConstantBuffers(UINT, UINT NumBuffers,
                                                ID3D11Buffer **ppConstantBuffers) override
    {
        IgnoreArray(ppConstantBuffers, NumBuffers);
    }
    void STDMETHODCALLTYPE PSGetShaderResources(UINT, UINT NumViews,
                                                ID3D11ShaderResourceView **ppShaderResourceViews) override
    {
        IgnoreArray(ppShaderResourceViews, NumViews);
    }
    void STDMETHODCALLTYPE PSGetShader(ID3D11PixelShader **ppPixelShader,
                                       ID3D11ClassInstance **ppClassInstances,
                                       UINT *pNumClassInstances) override
    {
        IgnoreShader(ppPixelShader, ppClassInstances, pNumClassInstances);
    }
    void STDMETHODCALLTYPE PSGetSamplers(UINT, UINT NumSamplers, ID3D11SamplerState **ppSamplers) override
    {
        IgnoreArray(ppSamplers, NumSamplers);
    }
    void STDMETHODCALLTYPE VSGetShader(ID3D11VertexShader **ppVertexShader,
                                       ID3D11ClassInstance **ppClassInstances,
                                       UINT *pNumClassInstances) override
    {
        IgnoreShader(ppVertexShader, ppClassInstances, pNumClassInstances);
    }
    void STDMETHODCALLTYPE PSGetConstantBuffers(UINT, UINT NumBuffers,
                                                ID3D11Buffer **ppConstantBuffers) override
    {
        IgnoreArray(ppConstantBuffers, NumBuffers);
    }
    void STDMETHODCALLTYPE IAGetInputLayout(ID3D11InputLayout **ppInputLayout) override
    {
        Ignore(ppInputLayout);
    }
    void STDMETHODCALLTYPE IAGetVertexBuffers(UINT, UINT NumBuffers, ID3D11Buffer **ppVertexBuffers,
                                              UINT *pStrides, UINT *pOffsets) override
    {
        IgnoreArray(ppVertexBuffers, NumBuffers);
        Clear(pStrides, NumBuffers);
        Clear(pOffsets, NumBuffers);
    }
    void STDMETHODCALLTYPE IAGetIndexBuffer(ID3D11Buffer **pIndexBuffer, DXGI_FORMAT *Format,
                                            UINT *Offset) override
    {
        Ignore(pIndexBuffer, Format, Offset);
    }
    void STDMETHODCALLTYPE GSGetConstantBuffers(UINT, UINT NumBuffers,
                                                ID3D11Buffer **ppConstantBuffers) override
    {
        IgnoreArray(ppConstantBuffers, NumBuffers);
    }
    void STDMETHODCALLTYPE GSGetShader(ID3D11GeometryShader **ppGeometryShader,
                                       ID3D11ClassInstance **ppClassInstances,
                                       UINT *pNumClassInstances) override
    {
        IgnoreShader(ppGeometryShader, ppClassInstances, pNumClassInstances);
    }
    void STDMETHODCALLTYPE IAGetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY *pTopology) override
    {
        Ignore(pTopology);
    }
    void STDMETHODCALLTYPE VSGetShaderResources(UINT, UINT NumViews,
                                                ID3D11ShaderResourceView **ppShaderResourceViews) override
    {
        IgnoreArray(ppShaderResourceViews, NumViews);
    }
    void STDMETHODCALLTYPE VSGetSamplers(UINT, UINT NumSamplers, ID3D11SamplerState **ppSamplers) override
    {
        IgnoreArray(ppSamplers, NumSamplers);
    }
    void STDMETHODCALLTYPE GetPredication(ID3D11Predicate **ppPredicate, BOOL *pPredicateValue) override
    {
        Ignore(ppPredicate, pPredicateValue);
    }
    void STDMETHODCALLTYPE GSGetShaderResources(UINT, UINT NumViews,
                                                ID3D11ShaderResourceView **ppShaderResourceViews) override
    {
        IgnoreArray(ppShaderResourceViews, NumViews);
    }
    void STDMETHODCALLTYPE GSGetSamplers(UINT, UINT NumSamplers, ID3D11SamplerState **ppSamplers) override
    {
        IgnoreArray(ppSamplers, NumSamplers);
    }
    void STDMETHODCALLTYPE OMGetRenderTargets(UINT NumViews, ID3D11RenderTargetView **ppRenderTargetViews,
                                              ID3D11DepthStencilView **ppDepthStencilView) override
    {
        IgnoreArray(ppRenderTargetViews, NumViews);
        Clear(ppDepthStencilView, 1);
    }
    void STDMETHODCALLTYPE
    OMGetRenderTargetsAndUnorderedAccessViews(UINT NumRTVs, ID3D11RenderTargetView **ppRenderTargetViews,
                                              ID3D11DepthStencilView **ppDepthStencilView, UINT, UINT NumUAVs,
                                              ID3D11UnorderedAccessView **ppUnorderedAccessViews) override
    {
        IgnoreArray(ppRenderTargetViews, NumRTVs);
        Clear(ppUnorderedAccessViews, NumUAVs);
        Clear(ppDepthStencilView, 1);
    }
    void STDMETHODCALLTYPE OMGetBlendState(ID3D11BlendState **ppBlendState, FLOAT *pBlendFactor,
                                           UINT *pSampleMask) override
    {
        Ignore(ppBlendState, pSampleMask);
        Clear(pBlendFactor, 4);
    }
    void STDMETHODCALLTYPE OMGetDepthStencilState(ID3D11DepthStencilState **ppDepthStencilState,
                                                  UINT *pStencilRef) override
    {
        Ignore(ppDepthStencilState, pStencilRef);
    }
    void STDMETHODCALLTYPE SOGetTargets(UINT NumBuffers, ID3D11Buffer **ppSOTargets) override
    {
        IgnoreArray(ppSOTargets, NumBuffers);
    }
    void STDMETHODCALLTYPE RSGetState(ID3D11RasterizerState **ppRasterizerState) override
    {
        Ignore(ppRasterizerState);
    }
    void STDMETHODCALLTYPE RSGetViewports(UINT *pNumViewports, D3D11_VIEWPORT *) override
    {
        Ignore(pNumViewports);
    }
    void STDMETHODCALLTYPE RSGetScissorRects(UINT *pNumRects, D3D11_RECT *) override { Ignore(pNumRects); }
    void STDMETHODCALLTYPE HSGetShaderResources(UINT, UINT NumViews,
                                                ID3D11ShaderResourceView **ppShaderResourceViews) override
    {
        IgnoreArray(ppShaderResourceViews, NumViews);
    }
    void STDMETHODCALLTYPE HSGetShader(ID3D11HullShader **ppHullShader,
                                       ID3D11ClassInstance **ppClassInstances,
                                       UINT *pNumClassInstances) override
    {
        IgnoreShader(ppHullShader, ppClassInstances, pNumClassInstances);
    }
    void STDMETHODCALLTYPE HSGetSamplers(UINT, UINT NumSamplers, ID3D11SamplerState **ppSamplers) override
    {
        IgnoreArray(ppSamplers, NumSamplers);
    }
    void STDMETHODCALLTYPE HSGetConstantBuffers(UINT, UINT NumBuffers,
                                                ID3D11Buffer **ppConstantBuffers) override
    {
        IgnoreArray(ppConstantBuffers, NumBuffers);
    }
    void STDMETHODCALLTYPE DSGetShaderResources(UINT, UINT NumViews,
                                                ID3D11ShaderResourceView **ppShaderResourceViews) override
    {
        IgnoreArray(ppShaderResourceViews, NumViews);
    }
    void STDMETHODCALLTYPE DSGetShader(ID3D11DomainShader **ppDomainShader,
                                       ID3D11ClassInstance **ppClassInstances,
                                       UINT *pNumClassInstances) override
    {
        IgnoreShader(ppDomainShader, ppClassInstances, pNumClassInstances);
    }
    void STDMETHODCALLTYPE DSGetSamplers(UINT, UINT NumSamplers, ID3D11SamplerState **ppSamplers) override
    {
        IgnoreArray(ppSamplers, NumSamplers);
    }
    void STDMETHODCALLTYPE DSGetConstantBuffers(UINT, UINT NumBuffers,
                                                ID3D11Buffer **ppConstantBuffers) override
    {
        IgnoreArray(ppConstantBuffers, NumBuffers);
    }
    void STDMETHODCALLTYPE CSGetShaderResources(UINT, UINT NumViews,
                                                ID3D11ShaderResourceView **ppShaderResourceViews) override
    {
        IgnoreArray(ppShaderResourceViews, NumViews);
    }
    void STDMETHODCALLTYPE
    CSGetUnorderedAccessViews(UINT, UINT NumUAVs, ID3D11UnorderedAccessView **ppUnorderedAccessViews) override
    {
        IgnoreArray(ppUnorderedAccessViews, NumUAVs);
    }
    void STDMETHODCALLTYPE CSGetShader(ID3D11ComputeShader **ppComputeShader,
                                       ID3D11ClassInstance **ppClassInstances,
                                       UINT *pNumClassInstances) override
    {
        IgnoreShader(ppComputeShader, ppClassInstances, pNumClassInstances);
    }
    void STDMETHODCALLTYPE CSGetSamplers(UINT, UINT NumSamplers, ID3D11SamplerState **ppSamplers) override
    {
        IgnoreArray(ppSamplers, NumSamplers);
    }
    void STDMETHODCALLTYPE CSGetConstantBuffers(UINT, UINT NumBuffers,
                                                ID3D11Buffer **ppConstantBuffers) override
    {
        IgnoreArray(ppConstantBuffers, NumBuffers);
    }
    HRESULT STDMETHODCALLTYPE FinishCommandList(BOOL, ID3D11CommandList **ppCommandList) override
    {
        return NotImplemented(ppCommandList);
    }
};

} // namespace softd3d11
