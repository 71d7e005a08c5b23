#include "softd3d11/VideoInputView.h"

namespace softd3d11 {

bool VideoInputView::IsValid(const TextureStorage &texture,
                             const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC &desc) noexcept
{
    // Only bound for decoding, encoding or drawing, or for nothing at all, can a texture be an input;
    // textures that shaders alone can read cannot.
    constexpr UINT kBinding = D3D11_BIND_DECODER | D3D11_BIND_VIDEO_ENCODER | D3D11_BIND_RENDER_TARGET;
    const D3D11_TEXTURE2D_DESC &textureDesc = texture.Desc();
    const PixelFormat &format = texture.Format();
    return (format.nProcessorSupport & D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_INPUT) != 0 &&
           textureDesc.Usage == D3D11_USAGE_DEFAULT &&
           (textureDesc.BindFlags == 0 || (textureDesc.BindFlags & kBinding) != 0) &&
           desc.ViewDimension == D3D11_VPIV_DIMENSION_TEXTURE2D &&
           (desc.FourCC == 0 || desc.FourCC == format.nFourCC) && desc.Texture2D.MipSlice == 0 &&
           desc.Texture2D.ArraySlice < textureDesc.ArraySize;
}

void *VideoInputView::FindInterface(REFIID riid) noexcept
{
    const bool blKnown = riid == IID_IUnknown || riid == IID_ID3D11DeviceChild || riid == IID_ID3D11View ||
                         riid == IID_ID3D11VideoProcessorInputView;
    return blKnown ? static_cast<ID3D11VideoProcessorInputView *>(this) : nullptr;
}

} // namespace softd3d11
