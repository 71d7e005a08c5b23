#pragma once

#include "softd3d11/UnsupportedContext.h"
#include "softd3d11/UnsupportedVideoContext.h"

#include <atomic>

namespace softd3d11 {

class Texture2D;
class TextureStorage;
class VideoProcessor;

// The immediate context of a device, with its video side. A part of the device: while anybody holds a
// reference to the context, the context holds one to the device.
class ImmediateContext final : public UnsupportedContext, public UnsupportedVideoContext
{
public:
    explicit ImmediateContext(ID3D11Device &device) noexcept : m_device(device) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppObject) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    void STDMETHODCALLTYPE GetDevice(ID3D11Device **ppDevice) override;
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID guid, UINT *pBytes, void *pData) override;
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID guid, UINT nBytes, const void *pData) override;
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID guid, const IUnknown *pData) override;

    HRESULT STDMETHODCALLTYPE Map(ID3D11Resource *pResource, UINT nSubresource, D3D11_MAP mapType,
                                  UINT nMapFlags, D3D11_MAPPED_SUBRESOURCE *pMapped) override;
    void STDMETHODCALLTYPE Unmap(ID3D11Resource *pResource, UINT nSubresource) override;
    void STDMETHODCALLTYPE CopySubresourceRegion(ID3D11Resource *pTarget, UINT nTargetSubresource, UINT nLeft,
                                                 UINT nTop, UINT nFront, ID3D11Resource *pSource,
                                                 UINT nSourceSubresource, const D3D11_BOX *pBox) override;
    void STDMETHODCALLTYPE CopyResource(ID3D11Resource *pTarget, ID3D11Resource *pSource) override;
    void STDMETHODCALLTYPE UpdateSubresource(ID3D11Resource *pTarget, UINT nSubresource,
                                             const D3D11_BOX *pBox, const void *pData, UINT nRowPitch,
                                             UINT nDepthPitch) override;
    void STDMETHODCALLTYPE ClearState() override;
    void STDMETHODCALLTYPE Flush() override;
    D3D11_DEVICE_CONTEXT_TYPE STDMETHODCALLTYPE GetType() override { return D3D11_DEVICE_CONTEXT_IMMEDIATE; }
    UINT STDMETHODCALLTYPE GetContextFlags() override { return 0; }

    void STDMETHODCALLTYPE VideoProcessorSetStreamSourceRect(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                                             BOOL blEnable, const RECT *pRect) override;
    void STDMETHODCALLTYPE VideoProcessorGetStreamSourceRect(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                                             BOOL *pEnabled, RECT *pRect) override;
    void STDMETHODCALLTYPE
    VideoProcessorSetStreamColorSpace(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                      const D3D11_VIDEO_PROCESSOR_COLOR_SPACE *pColorSpace) override;
    void STDMETHODCALLTYPE
    VideoProcessorGetStreamColorSpace(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                      D3D11_VIDEO_PROCESSOR_COLOR_SPACE *pColorSpace) override;
    void STDMETHODCALLTYPE VideoProcessorSetStreamAutoProcessingMode(ID3D11VideoProcessor *pProcessor,
                                                                     UINT nStream, BOOL blEnable) override;
    void STDMETHODCALLTYPE VideoProcessorGetStreamAutoProcessingMode(ID3D11VideoProcessor *pProcessor,
                                                                     UINT nStream, BOOL *pEnabled) override;
    HRESULT STDMETHODCALLTYPE VideoProcessorBlt(ID3D11VideoProcessor *pProcessor,
                                                ID3D11VideoProcessorOutputView *pView, UINT nFrame,
                                                UINT nStreams,
                                                const D3D11_VIDEO_PROCESSOR_STREAM *pStreams) override;

private:
    ID3D11Device &m_device;
    std::atomic<ULONG> m_nReferences{0}; // the device itself needs none
};

} // namespace softd3d11
