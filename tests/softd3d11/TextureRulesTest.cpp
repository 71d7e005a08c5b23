// Limits of textures, and that what the device says of formats is what it does.
#include "DeviceRig.h"

using namespace rig;

namespace {

using TextureRulesTest = SoftDeviceTest;

HRESULT Ask(const Device &on, const D3D11_TEXTURE2D_DESC &desc)
{
    return on.device->CreateTexture2D(&desc, nullptr, nullptr);
}

} // namespace

// Rows take 64 bytes at least, so these 100 MB of texels are 3 GiB of memory.
TEST_F(TextureRulesTest, CountsTheMemoryOfNarrowTexturesInFull)
{
    const Device on;
    EXPECT_EQ(Ask(on, Desc(DXGI_FORMAT_NV12, 2, 16384, 2048)), E_OUTOFMEMORY);
    EXPECT_EQ(Ask(on, Desc(DXGI_FORMAT_NV12, 2, 16384, 1365)), S_FALSE);
    EXPECT_EQ(Ask(on, Desc(DXGI_FORMAT_NV12, 2, 16384, 1366)), E_OUTOFMEMORY);
    EXPECT_EQ(Ask(on, Desc(DXGI_FORMAT_B8G8R8A8_UNORM, 1, 16384, 2048)), S_FALSE);
    EXPECT_EQ(Ask(on, Desc(DXGI_FORMAT_B8G8R8A8_UNORM, 17, 16384, 2048)), E_OUTOFMEMORY);
}

TEST_F(TextureRulesTest, AllLevelsOfOneTexelAreOneLevel)
{
    const Device on;
    D3D11_TEXTURE2D_DESC desc = TargetDesc(1, 1);
    desc.MipLevels = 0;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, desc);
    texture->GetDesc(&desc);
    EXPECT_EQ(desc.MipLevels, 1U);
    desc = TargetDesc(2, 1);
    desc.MipLevels = 0;
    EXPECT_EQ(Ask(on, desc), E_NOTIMPL);
    desc.MipLevels = 2;
    EXPECT_EQ(Ask(on, desc), E_NOTIMPL);
    desc.MipLevels = 3;
    EXPECT_EQ(Ask(on, desc), E_INVALIDARG);
}

TEST_F(TextureRulesTest, SupportsTheBindingsThatItTakes)
{
    const Device on;
    const struct
    {
        D3D11_BIND_FLAG flag;
        UINT nSupport;
    } bindings[] = {
        {D3D11_BIND_SHADER_RESOURCE, D3D11_FORMAT_SUPPORT_SHADER_LOAD | D3D11_FORMAT_SUPPORT_SHADER_SAMPLE},
        {D3D11_BIND_RENDER_TARGET, D3D11_FORMAT_SUPPORT_RENDER_TARGET},
        {D3D11_BIND_DECODER, D3D11_FORMAT_SUPPORT_DECODER_OUTPUT},
        {D3D11_BIND_VIDEO_ENCODER, D3D11_FORMAT_SUPPORT_VIDEO_ENCODER},
        {D3D11_BIND_DEPTH_STENCIL, D3D11_FORMAT_SUPPORT_DEPTH_STENCIL},
        {D3D11_BIND_VERTEX_BUFFER, D3D11_FORMAT_SUPPORT_IA_VERTEX_BUFFER},
    };
    for (const DXGI_FORMAT format : {DXGI_FORMAT_NV12, DXGI_FORMAT_P010, DXGI_FORMAT_B8G8R8A8_UNORM}) {
        UINT nSupport = 0;
        ASSERT_EQ(on.device->CheckFormatSupport(format, &nSupport), S_OK);
        for (const auto &binding : bindings) {
            D3D11_TEXTURE2D_DESC desc = Desc(format, 4, 4);
            desc.BindFlags = binding.flag;
            const bool blTaken = Ask(on, desc) == S_FALSE;
            EXPECT_EQ(nSupport & binding.nSupport, blTaken ? binding.nSupport : 0U)
                << "format " << format << " binding " << binding.flag;
        }
    }
}

TEST_F(TextureRulesTest, MapsThatNeverWaitTakeNoWishNotToWait)
{
    const Device on;
    D3D11_TEXTURE2D_DESC desc = Desc(DXGI_FORMAT_NV12, 4, 4);
    desc.Usage = D3D11_USAGE_DYNAMIC;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, desc);
    D3D11_MAPPED_SUBRESOURCE mapped = {};
    for (const D3D11_MAP mapType : {D3D11_MAP_WRITE_DISCARD, D3D11_MAP_WRITE_NO_OVERWRITE})
        EXPECT_EQ(on.context->Map(texture.Get(), 0, mapType, D3D11_MAP_FLAG_DO_NOT_WAIT, &mapped),
                  E_INVALIDARG);
    EXPECT_EQ(softd3d11::RefusedCallCount(Method::ContextMap), 2U);
    EXPECT_EQ(on.context->Map(texture.Get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), S_OK);
    on.context->Unmap(texture.Get(), 0);
}
