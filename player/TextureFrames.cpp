#include "TextureFrames.h"

#include "TextureDevice.h"

namespace {

constexpr UINT kSlices = 16;

const ComPtr<ID3D11Device> &sharedDevice()
{
    static const ComPtr<ID3D11Device> device = createTextureDevice();
    return device;
}

} // namespace

struct TextureFrames::Textures
{
    ComPtr<ID3D11DeviceContext> context;
    ComPtr<ID3D11Texture2D> array;
    int nWidth = 0;
    int nHeight = 0;
    UINT nNext = 0;
    VideoFrameDesc frame{}; // handed out last

    bool fit(int nNewWidth, int nNewHeight);
};

// Makes an array of the size, unless it is there.
bool TextureFrames::Textures::fit(int nNewWidth, int nNewHeight)
{
    if (array && nNewWidth == nWidth && nNewHeight == nHeight) {
        return true;
    }
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = static_cast<UINT>(nNewWidth);
    desc.Height = static_cast<UINT>(nNewHeight);
    desc.MipLevels = 1;
    desc.ArraySize = kSlices;
    desc.Format = DXGI_FORMAT_NV12;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_DEFAULT;
    desc.BindFlags = D3D11_BIND_DECODER;
    nWidth = nNewWidth;
    nHeight = nNewHeight;
    nNext = 0;
    return SUCCEEDED(sharedDevice()->CreateTexture2D(&desc, nullptr, array.ReleaseAndGetAddressOf()));
}

bool TextureFrames::isAvailable()
{
    return true;
}

ID3D11Device *TextureFrames::device()
{
    return sharedDevice().Get();
}

TextureFrames::TextureFrames() : m_pTextures(std::make_unique<Textures>())
{
    if (sharedDevice()) {
        sharedDevice()->GetImmediateContext(m_pTextures->context.ReleaseAndGetAddressOf());
    }
}

TextureFrames::~TextureFrames() = default;

const VideoFrameDesc *TextureFrames::upload(const VideoFrameDesc &nv12)
{
    Textures &textures = *m_pTextures;
    if (!textures.context || !textures.fit(nv12.iWidth, nv12.iHeight)) {
        return nullptr;
    }
    textures.context->UpdateSubresource(textures.array.Get(), textures.nNext, nullptr, nv12.pPlaneY,
                                        static_cast<UINT>(nv12.iWidth), 0);
    textures.frame = VideoFrameDesc{};
    textures.frame.iWidth = nv12.iWidth;
    textures.frame.iHeight = nv12.iHeight;
    textures.frame.nDisplayType = VIDEO_DISPLAY_DXGL;
    textures.frame.pD3D11Texture = textures.array.Get();
    textures.frame.nTextureSlice = textures.nNext;
    textures.nNext = (textures.nNext + 1) % kSlices;
    return &textures.frame;
}
