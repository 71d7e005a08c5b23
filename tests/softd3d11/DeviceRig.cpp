#include "DeviceRig.h"

#include <cstring>
#include <random>

namespace rig {

namespace {

void ExpectOk(HRESULT hr, const char *pWhat)
{
    EXPECT_EQ(hr, S_OK) << pWhat;
}

} // namespace

Device::Device()
{
    ExpectOk(softd3d11::CreateDevice(device.ReleaseAndGetAddressOf()), "CreateDevice");
    device->GetImmediateContext(context.ReleaseAndGetAddressOf());
    ExpectOk(device.As(IID_ID3D11VideoDevice, videoDevice), "ID3D11VideoDevice");
    ExpectOk(context.As(IID_ID3D11VideoContext, videoContext), "ID3D11VideoContext");
}

D3D11_TEXTURE2D_DESC Desc(DXGI_FORMAT format, UINT nWidth, UINT nHeight, UINT nSlices)
{
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = nWidth;
    desc.Height = nHeight;
    desc.MipLevels = 1;
    desc.ArraySize = nSlices;
    desc.Format = format;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_DEFAULT;
    return desc;
}

D3D11_TEXTURE2D_DESC VideoDesc(DXGI_FORMAT format, UINT nWidth, UINT nHeight, UINT nSlices)
{
    D3D11_TEXTURE2D_DESC desc = Desc(format, nWidth, nHeight, nSlices);
    desc.BindFlags = D3D11_BIND_DECODER;
    return desc;
}

D3D11_TEXTURE2D_DESC TargetDesc(UINT nWidth, UINT nHeight)
{
    D3D11_TEXTURE2D_DESC desc = Desc(DXGI_FORMAT_B8G8R8A8_UNORM, nWidth, nHeight);
    desc.BindFlags = D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE;
    desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
    return desc;
}

D3D11_TEXTURE2D_DESC StagingDesc(DXGI_FORMAT format, UINT nWidth, UINT nHeight, UINT nSlices)
{
    D3D11_TEXTURE2D_DESC desc = Desc(format, nWidth, nHeight, nSlices);
    desc.Usage = D3D11_USAGE_STAGING;
    desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ | D3D11_CPU_ACCESS_WRITE;
    return desc;
}

ComPtr<ID3D11Texture2D> MakeTexture(const Device &on, const D3D11_TEXTURE2D_DESC &desc)
{
    ComPtr<ID3D11Texture2D> texture;
    ExpectOk(on.device->CreateTexture2D(&desc, nullptr, texture.ReleaseAndGetAddressOf()), "CreateTexture2D");
    return texture;
}

std::size_t TexelBytes(DXGI_FORMAT format)
{
    return format == DXGI_FORMAT_NV12 ? 1 : format == DXGI_FORMAT_P010 ? 2 : 4;
}

std::size_t PackedRows(DXGI_FORMAT format, UINT nHeight)
{
    return format == DXGI_FORMAT_B8G8R8A8_UNORM ? nHeight : nHeight + nHeight / 2;
}

std::vector<std::uint8_t> RandomBytes(std::size_t nCount, unsigned nSeed)
{
    std::mt19937 random(nSeed);
    std::vector<std::uint8_t> bytes(nCount);
    for (std::uint8_t &n : bytes) {
        n = static_cast<std::uint8_t>(random() >> 13);
    }
    return bytes;
}

std::vector<std::uint8_t> RandomSlice(const D3D11_TEXTURE2D_DESC &desc, unsigned nSeed)
{
    return RandomBytes(desc.Width * TexelBytes(desc.Format) * PackedRows(desc.Format, desc.Height), nSeed);
}

namespace {

D3D11_TEXTURE2D_DESC DescOf(ID3D11Texture2D *pTexture)
{
    D3D11_TEXTURE2D_DESC desc = {};
    pTexture->GetDesc(&desc);
    return desc;
}

ComPtr<ID3D11Texture2D> MakeStaging(const Device &on, const D3D11_TEXTURE2D_DESC &desc)
{
    return MakeTexture(on, StagingDesc(desc.Format, desc.Width, desc.Height));
}

// Runs rowAction(mapped row, offset in the packed bytes, bytes of a row) for every row.
template <class Action>
void ForMappedRows(const Device &on, ID3D11Texture2D *pStaging, D3D11_MAP mapType, Action &&rowAction)
{
    const D3D11_TEXTURE2D_DESC desc = DescOf(pStaging);
    D3D11_MAPPED_SUBRESOURCE mapped = {};
    ASSERT_EQ(on.context->Map(pStaging, 0, mapType, 0, &mapped), S_OK);
    const std::size_t nRowBytes = desc.Width * TexelBytes(desc.Format);
    for (std::size_t y = 0; y < PackedRows(desc.Format, desc.Height); ++y) {
        rowAction(static_cast<std::uint8_t *>(mapped.pData) + y * mapped.RowPitch, y * nRowBytes, nRowBytes);
    }
    on.context->Unmap(pStaging, 0);
}

} // namespace

void WriteSlice(const Device &on, ID3D11Texture2D *pTexture, UINT nSlice,
                const std::vector<std::uint8_t> &packed)
{
    const ComPtr<ID3D11Texture2D> staging = MakeStaging(on, DescOf(pTexture));
    ForMappedRows(on, staging.Get(), D3D11_MAP_WRITE,
                  [&](std::uint8_t *pRow, std::size_t nOffset, std::size_t nBytes) {
                      std::memcpy(pRow, packed.data() + nOffset, nBytes);
                  });
    on.context->CopySubresourceRegion(pTexture, nSlice, 0, 0, 0, staging.Get(), 0, nullptr);
}

std::vector<std::uint8_t> ReadSlice(const Device &on, ID3D11Texture2D *pTexture, UINT nSlice)
{
    const D3D11_TEXTURE2D_DESC desc = DescOf(pTexture);
    const ComPtr<ID3D11Texture2D> staging = MakeStaging(on, desc);
    on.context->CopySubresourceRegion(staging.Get(), 0, 0, 0, 0, pTexture, nSlice, nullptr);
    std::vector<std::uint8_t> packed(desc.Width * TexelBytes(desc.Format) *
                                     PackedRows(desc.Format, desc.Height));
    ForMappedRows(on, staging.Get(), D3D11_MAP_READ,
                  [&](const std::uint8_t *pRow, std::size_t nOffset, std::size_t nBytes) {
                      std::memcpy(packed.data() + nOffset, pRow, nBytes);
                  });
    return packed;
}

HANDLE ShareHandle(ID3D11Texture2D *pTexture)
{
    ComPtr<IDXGIResource> resource;
    ExpectOk(pTexture->QueryInterface(IID_IDXGIResource, resource.ReleaseAndGetVoidAddressOf()),
             "IDXGIResource");
    HANDLE hShared = nullptr;
    ExpectOk(resource->GetSharedHandle(&hShared), "GetSharedHandle");
    return hShared;
}

D3D11_VIDEO_PROCESSOR_CONTENT_DESC ContentDesc(UINT nWidth, UINT nHeight)
{
    D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = {};
    desc.InputFrameFormat = D3D11_VIDEO_FRAME_FORMAT_PROGRESSIVE;
    desc.InputWidth = desc.OutputWidth = nWidth;
    desc.InputHeight = desc.OutputHeight = nHeight;
    desc.Usage = D3D11_VIDEO_USAGE_PLAYBACK_NORMAL;
    return desc;
}

Processor::Processor(const Device &on, UINT nWidth, UINT nHeight) : device(on)
{
    const D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = ContentDesc(nWidth, nHeight);
    ExpectOk(on.videoDevice->CreateVideoProcessorEnumerator(&desc, enumerator.ReleaseAndGetAddressOf()),
             "CreateVideoProcessorEnumerator");
    ExpectOk(on.videoDevice->CreateVideoProcessor(enumerator.Get(), 0, processor.ReleaseAndGetAddressOf()),
             "CreateVideoProcessor");
}

D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC InputViewDesc(UINT nSlice)
{
    D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC desc = {};
    desc.ViewDimension = D3D11_VPIV_DIMENSION_TEXTURE2D;
    desc.Texture2D.ArraySlice = nSlice;
    return desc;
}

D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC OutputViewDesc()
{
    D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC desc = {};
    desc.ViewDimension = D3D11_VPOV_DIMENSION_TEXTURE2D;
    return desc;
}

ComPtr<ID3D11VideoProcessorInputView> Processor::InputView(ID3D11Texture2D *pTexture, UINT nSlice) const
{
    const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC desc = InputViewDesc(nSlice);
    ComPtr<ID3D11VideoProcessorInputView> view;
    ExpectOk(device.videoDevice->CreateVideoProcessorInputView(pTexture, enumerator.Get(), &desc,
                                                               view.ReleaseAndGetAddressOf()),
             "CreateVideoProcessorInputView");
    return view;
}

ComPtr<ID3D11VideoProcessorOutputView> Processor::OutputView(ID3D11Texture2D *pTexture) const
{
    const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC desc = OutputViewDesc();
    ComPtr<ID3D11VideoProcessorOutputView> view;
    ExpectOk(device.videoDevice->CreateVideoProcessorOutputView(pTexture, enumerator.Get(), &desc,
                                                                view.ReleaseAndGetAddressOf()),
             "CreateVideoProcessorOutputView");
    return view;
}

HRESULT Processor::Blt(ID3D11Texture2D *pInput, UINT nSlice, ID3D11Texture2D *pOutput) const
{
    const ComPtr<ID3D11VideoProcessorInputView> input = InputView(pInput, nSlice);
    const ComPtr<ID3D11VideoProcessorOutputView> output = OutputView(pOutput);
    D3D11_VIDEO_PROCESSOR_STREAM stream = {};
    stream.Enable = TRUE;
    stream.pInputSurface = input.Get();
    return device.videoContext->VideoProcessorBlt(processor.Get(), output.Get(), 0, 1, &stream);
}

void Processor::SetColorSpace(UINT nMatrix, UINT nRange) const
{
    D3D11_VIDEO_PROCESSOR_COLOR_SPACE colorSpace = {};
    colorSpace.YCbCr_Matrix = nMatrix & 1;
    colorSpace.Nominal_Range = nRange & 3;
    device.videoContext->VideoProcessorSetStreamColorSpace(processor.Get(), 0, &colorSpace);
}

void Processor::SetSourceRect(LONG nLeft, LONG nTop, LONG nRight, LONG nBottom) const
{
    const RECT rect = {nLeft, nTop, nRight, nBottom};
    device.videoContext->VideoProcessorSetStreamSourceRect(processor.Get(), 0, TRUE, &rect);
}

ULONG CountOf(IUnknown *pObject)
{
    pObject->AddRef();
    return pObject->Release();
}

void SoftDeviceTest::SetUp()
{
    softd3d11::ClearFailures();
    softd3d11::ResetCallCounts();
    ASSERT_EQ(softd3d11::LiveObjects(), 0U);
}

void SoftDeviceTest::TearDown()
{
    softd3d11::ClearFailures();
    EXPECT_EQ(softd3d11::LiveObjects(), 0U);
}

} // namespace rig
