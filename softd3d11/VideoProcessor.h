#pragma once

#include "softd3d11/DeviceChild.h"

#include <mutex>

namespace softd3d11 {

// What the host has set for the stream.
struct StreamState
{
    bool blSourceRect = false; // off: the whole input
    RECT rcSource = {};
    D3D11_VIDEO_PROCESSOR_COLOR_SPACE colorSpace = {};
    bool blAutoProcessing = true;
};

class VideoProcessor final : public DeviceChild<VideoProcessor, ID3D11VideoProcessor>
{
public:
    static constexpr GUID kClassId = {
        0x7d23b9c4, 0x58e1, 0x4f0e, {0xb6, 0x4a, 0x93, 0x0f, 0x2d, 0x61, 0xe8, 0x3c}};
    static constexpr Method kQueryMethod = Method::OtherQueryInterface;

    VideoProcessor(ID3D11Device &device, const D3D11_VIDEO_PROCESSOR_CONTENT_DESC &desc) noexcept
        : DeviceChild(device), m_desc(desc)
    {
    }

    void *FindInterface(REFIID riid) noexcept;

    // Thread-safe: the state of one moment, and a change that nobody sees by halves.
    StreamState Stream() const;
    template <class Change> void ChangeStream(Change &&change)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        change(m_stream);
    }

    void STDMETHODCALLTYPE GetContentDesc(D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pDesc) override;
    void STDMETHODCALLTYPE GetRateConversionCaps(D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS *pCaps) override;

private:
    const D3D11_VIDEO_PROCESSOR_CONTENT_DESC m_desc;
    mutable std::mutex m_mutex;
    StreamState m_stream;
};

} // namespace softd3d11
