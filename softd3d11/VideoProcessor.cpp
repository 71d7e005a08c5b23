#include "softd3d11/VideoProcessor.h"

namespace softd3d11 {

void *VideoProcessor::FindInterface(REFIID riid) noexcept
{
    const bool blKnown =
        riid == IID_IUnknown || riid == IID_ID3D11DeviceChild || riid == IID_ID3D11VideoProcessor;
    return blKnown ? static_cast<ID3D11VideoProcessor *>(this) : nullptr;
}

StreamState VideoProcessor::Stream() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_stream;
}

void VideoProcessor::GetContentDesc(D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pDesc)
{
    if (pDesc != nullptr) {
        *pDesc = m_desc;
    }
}

void VideoProcessor::GetRateConversionCaps(D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS *pCaps)
{
    if (pCaps != nullptr) {
        *pCaps = {};
    }
}

} // namespace softd3d11
