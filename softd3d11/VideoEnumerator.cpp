#include "softd3d11/VideoEnumerator.h"

#include "softd3d11/PixelFormat.h"

namespace softd3d11 {

namespace {

constexpr UINT kMaxPictureEdge = 16384;

bool SizeValid(UINT nWidth, UINT nHeight)
{
    return nWidth > 0 && nHeight > 0 && nWidth <= kMaxPictureEdge && nHeight <= kMaxPictureEdge;
}

// The common course of the methods that hand out a record.
template <class Record> HRESULT Answer(const Call &call, Record *pRecord, const Record &answer)
{
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (pRecord == nullptr) {
        return call.Refuse();
    }
    *pRecord = answer;
    return S_OK;
}

} // namespace

bool VideoEnumerator::IsValid(const D3D11_VIDEO_PROCESSOR_CONTENT_DESC &desc) noexcept
{
    return SizeValid(desc.InputWidth, desc.InputHeight) && SizeValid(desc.OutputWidth, desc.OutputHeight) &&
           desc.InputFrameFormat <= D3D11_VIDEO_FRAME_FORMAT_INTERLACED_BOTTOM_FIELD_FIRST &&
           desc.Usage <= D3D11_VIDEO_USAGE_OPTIMAL_QUALITY;
}

void *VideoEnumerator::FindInterface(REFIID riid) noexcept
{
    const bool blKnown =
        riid == IID_IUnknown || riid == IID_ID3D11DeviceChild || riid == IID_ID3D11VideoProcessorEnumerator;
    return blKnown ? static_cast<ID3D11VideoProcessorEnumerator *>(this) : nullptr;
}

HRESULT VideoEnumerator::GetVideoProcessorContentDesc(D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pContentDesc)
{
    return Answer(Call(Method::EnumeratorGetVideoProcessorContentDesc), pContentDesc, m_desc);
}

HRESULT VideoEnumerator::CheckVideoProcessorFormat(DXGI_FORMAT format, UINT *pFlags)
{
    const PixelFormat *pFormat = FindPixelFormat(format);
    return Answer(Call(Method::EnumeratorCheckVideoProcessorFormat), pFlags,
                  pFormat != nullptr ? pFormat->nProcessorSupport : 0U);
}

HRESULT VideoEnumerator::GetVideoProcessorCaps(D3D11_VIDEO_PROCESSOR_CAPS *pCaps)
{
    D3D11_VIDEO_PROCESSOR_CAPS caps = {};
    caps.DeviceCaps = D3D11_VIDEO_PROCESSOR_DEVICE_CAPS_NOMINAL_RANGE;
    caps.RateConversionCapsCount = 1;
    caps.MaxInputStreams = 1;
    caps.MaxStreamStates = 1;
    return Answer(Call(Method::EnumeratorGetVideoProcessorCaps), pCaps, caps);
}

HRESULT
VideoEnumerator::GetVideoProcessorRateConversionCaps(UINT nTypeIndex,
                                                     D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS *pCaps)
{
    const Call call(Method::EnumeratorGetVideoProcessorRateConversionCaps);
    return nTypeIndex == 0 || FAILED(call.Injected()) ? Answer(call, pCaps, {}) : call.Refuse();
}

} // namespace softd3d11
