#pragma once

#include "softd3d11/VideoView.h"

namespace softd3d11 {

// Always of slice 0.
class VideoOutputView final : public VideoView<VideoOutputView, ID3D11VideoProcessorOutputView,
                                               D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC>
{
public:
    static constexpr GUID kClassId = {
        0x91b7d5ae, 0xe30c, 0x4c62, {0x83, 0x19, 0x5b, 0xf6, 0x40, 0x8d, 0xa7, 0x25}};

    using VideoView::VideoView;

    // Whether such a view of the texture can be made.
    static bool IsValid(const TextureStorage &texture,
                        const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC &desc) noexcept;

    void *FindInterface(REFIID riid) noexcept;
};

} // namespace softd3d11
