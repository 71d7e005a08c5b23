#include "softd3d11/VideoOutputView.h"

namespace softd3d11 {

bool VideoOutputView::IsValid(const TextureStorage &texture,
                              const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC &desc) noexcept
{
    return (texture.Format().nProcessorSupport & D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_OUTPUT) != 0 &&
           (texture.Desc().BindFlags & D3D11_BIND_RENDER_TARGET) != 0 &&
           desc.ViewDimension == D3D11_VPOV_DIMENSION_TEXTURE2D && desc.Texture2D.MipSlice == 0;
}

void *VideoOutputView::FindInterface(REFIID riid) noexcept
{
    const bool blKnown = riid == IID_IUnknown || riid == IID_ID3D11DeviceChild || riid == IID_ID3D11View ||
                         riid == IID_ID3D11VideoProcessorOutputView;
    return blKnown ? static_cast<ID3D11VideoProcessorOutputView *>(this) : nullptr;
}

} // namespace softd3d11
