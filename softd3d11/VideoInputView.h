#pragma once

#include "softd3d11/VideoView.h"

namespace softd3d11 {

class VideoInputView final
    : public VideoView<VideoInputView, ID3D11VideoProcessorInputView, D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC>
{
public:
    static constexpr GUID kClassId = {
        0xc4e60b1d, 0x2a97, 0x4b38, {0x95, 0x5f, 0x08, 0xd2, 0x7a, 0x4e, 0x13, 0xb9}};

    using VideoView::VideoView;

    // Whether such a view of the texture can be made.
    static bool IsValid(const TextureStorage &texture,
                        const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC &desc) noexcept;

    void *FindInterface(REFIID riid) noexcept;
    UINT Slice() const noexcept { return Desc().Texture2D.ArraySlice; }
};

} // namespace softd3d11
