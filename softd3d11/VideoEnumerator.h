#pragma once

#include "softd3d11/DeviceChild.h"

namespace softd3d11 {

// Knows one kind of processor: one stream, NV12 or P010 in, BGRA8 out, no rate conversion. Never changes.
class VideoEnumerator final : public DeviceChild<VideoEnumerator, ID3D11VideoProcessorEnumerator>
{
public:
    static constexpr GUID kClassId = {
        0x0a8f5e52, 0x3f64, 0x4dd1, {0x8a, 0x27, 0x1c, 0x7e, 0x94, 0xb3, 0x5d, 0x10}};
    static constexpr Method kQueryMethod = Method::OtherQueryInterface;

    // Sizes beyond zero and at most 16384, known frame format and usage.
    static bool IsValid(const D3D11_VIDEO_PROCESSOR_CONTENT_DESC &desc) noexcept;

    VideoEnumerator(ID3D11Device &device, const D3D11_VIDEO_PROCESSOR_CONTENT_DESC &desc) noexcept
        : DeviceChild(device), m_desc(desc)
    {
    }

    void *FindInterface(REFIID riid) noexcept;
    const D3D11_VIDEO_PROCESSOR_CONTENT_DESC &ContentDesc() const noexcept { return m_desc; }

    HRESULT STDMETHODCALLTYPE
    GetVideoProcessorContentDesc(D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pContentDesc) override;
    HRESULT STDMETHODCALLTYPE CheckVideoProcessorFormat(DXGI_FORMAT format, UINT *pFlags) override;
    HRESULT STDMETHODCALLTYPE GetVideoProcessorCaps(D3D11_VIDEO_PROCESSOR_CAPS *pCaps) override;
    HRESULT STDMETHODCALLTYPE GetVideoProcessorRateConversionCaps(
        UINT nTypeIndex, D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS *pCaps) override;
    HRESULT STDMETHODCALLTYPE GetVideoProcessorCustomRate(UINT, UINT,
                                                          D3D11_VIDEO_PROCESSOR_CUSTOM_RATE *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE GetVideoProcessorFilterRange(D3D11_VIDEO_PROCESSOR_FILTER,
                                                           D3D11_VIDEO_PROCESSOR_FILTER_RANGE *) override
    {
        return NotImplemented();
    }

private:
    const D3D11_VIDEO_PROCESSOR_CONTENT_DESC m_desc;
};

} // namespace softd3d11
