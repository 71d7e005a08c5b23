#include "DecoderTextures.h"

#ifdef _WIN32
#include "TestEnvironment.h"
#include "windows/AngleDevice.h"
#endif

#include <cstring>
#include <stdexcept>
#include <string>

namespace xelttest {

namespace {

void require(HRESULT hr, const char *pszCall)
{
    if (FAILED(hr)) {
        throw std::runtime_error(std::string(pszCall) + " failed in the test itself");
    }
}

D3D11_TEXTURE2D_DESC describe(const QSize &size, DXGI_FORMAT format, UINT nSlices)
{
    D3D11_TEXTURE2D_DESC desc{};
    desc.Width = static_cast<UINT>(size.width());
    desc.Height = static_cast<UINT>(size.height());
    desc.MipLevels = 1;
    desc.ArraySize = nSlices;
    desc.Format = format;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_DEFAULT;
    return desc;
}

ComPtr<ID3D11Texture2D> makeTexture(ID3D11Device &device, const D3D11_TEXTURE2D_DESC &desc)
{
    ComPtr<ID3D11Texture2D> texture;
    require(device.CreateTexture2D(&desc, nullptr, texture.ReleaseAndGetAddressOf()), "CreateTexture2D");
    return texture;
}

void letGoOfWhatWasDrawn()
{
#ifdef _WIN32
    if (glFlavour() == GlFlavour::Es) {
        unbindWhatWasDrawn();
    }
#endif
}

} // namespace

size_t liveObjects(ID3D11Device *pDevice)
{
    letGoOfWhatWasDrawn();
    return softd3d11::LiveObjects(pDevice);
}

size_t liveObjects()
{
    letGoOfWhatWasDrawn();
    return softd3d11::LiveObjects();
}

ComPtr<ID3D11Device> makeDevice()
{
    ComPtr<ID3D11Device> device;
    require(softd3d11::CreateDevice(device.ReleaseAndGetAddressOf()), "CreateDevice");
    return device;
}

std::vector<uint8_t> packedNv12Bytes(const Planes &planes)
{
    std::vector<uint8_t> aBytes = planes.aY;
    for (size_t i = 0; i < planes.aU.size(); ++i) {
        aBytes.push_back(planes.aU[i]);
        aBytes.push_back(planes.aV[i]);
    }
    return aBytes;
}

DecoderTextures::DecoderTextures(const ComPtr<ID3D11Device> &device, const QSize &size, UINT nSlices,
                                 DXGI_FORMAT format)
    : m_device(device), m_size(size)
{
    m_device->GetImmediateContext(m_context.ReleaseAndGetAddressOf());
    D3D11_TEXTURE2D_DESC desc = describe(size, format, nSlices);
    desc.BindFlags = format == DXGI_FORMAT_NV12 ? static_cast<UINT>(D3D11_BIND_DECODER) : 0;
    m_texture = makeTexture(*m_device.Get(), desc);
}

void DecoderTextures::fill(UINT nSlice, const Planes &planes)
{
    const std::vector<uint8_t> aBytes = packedNv12Bytes(planes);
    m_context->UpdateSubresource(m_texture.Get(), nSlice, nullptr, aBytes.data(),
                                 static_cast<UINT>(planes.nWidth), 0);
}

VideoFrameDesc DecoderTextures::frame(UINT nSlice) const
{
    VideoFrameDesc desc{};
    desc.nDisplayType = VIDEO_DISPLAY_DXGL;
    desc.iWidth = m_size.width();
    desc.iHeight = m_size.height();
    desc.pD3D11Texture = m_texture.Get();
    desc.nTextureSlice = nSlice;
    return desc;
}

ComPtr<ID3D11Texture2D> makeTarget(ID3D11Device &device, const QSize &size, UINT nMiscFlags)
{
    D3D11_TEXTURE2D_DESC desc = describe(size, DXGI_FORMAT_B8G8R8A8_UNORM, 1);
    desc.BindFlags = D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE;
    desc.MiscFlags = nMiscFlags;
    return makeTexture(device, desc);
}

std::vector<uint8_t> readTarget(ID3D11Device &device, ID3D11Texture2D &texture)
{
    D3D11_TEXTURE2D_DESC desc{};
    texture.GetDesc(&desc);
    desc.Usage = D3D11_USAGE_STAGING;
    desc.BindFlags = 0;
    desc.MiscFlags = 0;
    desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    const ComPtr<ID3D11Texture2D> staging = makeTexture(device, desc);
    ComPtr<ID3D11DeviceContext> context;
    device.GetImmediateContext(context.ReleaseAndGetAddressOf());
    context->CopyResource(staging.Get(), &texture);
    D3D11_MAPPED_SUBRESOURCE mapped{};
    require(context->Map(staging.Get(), 0, D3D11_MAP_READ, 0, &mapped), "Map");
    std::vector<uint8_t> aPixels(size_t{4} * desc.Width * desc.Height);
    for (size_t nRow = 0; nRow < desc.Height; ++nRow) {
        std::memcpy(&aPixels[nRow * 4 * desc.Width],
                    static_cast<const uint8_t *>(mapped.pData) + nRow * mapped.RowPitch,
                    size_t{4} * desc.Width);
    }
    context->Unmap(staging.Get(), 0);
    return aPixels;
}

} // namespace xelttest
