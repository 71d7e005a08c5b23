// A software device with its context, and short ways to make what the tests need. Whatever cannot be made
// fails the test that asked for it.
#pragma once

#include "d3d11/ComPtr.h"
#include "softd3d11/SharedImage.h"
#include "softd3d11/SoftD3D11.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace rig {

using softd3d11::Method;

struct Device
{
    Device();

    ComPtr<ID3D11Device> device;
    ComPtr<ID3D11DeviceContext> context;
    ComPtr<ID3D11VideoDevice> videoDevice;
    ComPtr<ID3D11VideoContext> videoContext;
};

D3D11_TEXTURE2D_DESC Desc(DXGI_FORMAT format, UINT nWidth, UINT nHeight, UINT nSlices = 1);
D3D11_TEXTURE2D_DESC VideoDesc(DXGI_FORMAT format, UINT nWidth, UINT nHeight,
                               UINT nSlices = 1);           // for decoding
D3D11_TEXTURE2D_DESC TargetDesc(UINT nWidth, UINT nHeight); // shared BGRA8
D3D11_TEXTURE2D_DESC StagingDesc(DXGI_FORMAT format, UINT nWidth, UINT nHeight,
                                 UINT nSlices = 1); // read, write

ComPtr<ID3D11Texture2D> MakeTexture(const Device &on, const D3D11_TEXTURE2D_DESC &desc);

std::size_t TexelBytes(DXGI_FORMAT format);
// Rows of a slice in one piece: luma and chroma, or BGRA.
std::size_t PackedRows(DXGI_FORMAT format, UINT nHeight);
std::vector<std::uint8_t> RandomBytes(std::size_t nCount, unsigned nSeed);
std::vector<std::uint8_t> RandomSlice(const D3D11_TEXTURE2D_DESC &desc, unsigned nSeed);

// The packed contents of a slice, put in and taken out through a staging texture.
void WriteSlice(const Device &on, ID3D11Texture2D *pTexture, UINT nSlice,
                const std::vector<std::uint8_t> &packed);
std::vector<std::uint8_t> ReadSlice(const Device &on, ID3D11Texture2D *pTexture, UINT nSlice);

HANDLE ShareHandle(ID3D11Texture2D *pTexture);

D3D11_VIDEO_PROCESSOR_CONTENT_DESC ContentDesc(UINT nWidth, UINT nHeight);

// Enumerator and processor for pictures of one size.
struct Processor
{
    Processor(const Device &on, UINT nWidth, UINT nHeight);

    const Device &device;
    ComPtr<ID3D11VideoProcessorEnumerator> enumerator;
    ComPtr<ID3D11VideoProcessor> processor;

    ComPtr<ID3D11VideoProcessorInputView> InputView(ID3D11Texture2D *pTexture, UINT nSlice) const;
    ComPtr<ID3D11VideoProcessorOutputView> OutputView(ID3D11Texture2D *pTexture) const;
    HRESULT Blt(ID3D11Texture2D *pInput, UINT nSlice, ID3D11Texture2D *pOutput) const;
    void SetColorSpace(UINT nMatrix, UINT nRange) const;
    void SetSourceRect(LONG nLeft, LONG nTop, LONG nRight, LONG nBottom) const;
};

D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC InputViewDesc(UINT nSlice);
D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC OutputViewDesc();

ULONG CountOf(IUnknown *pObject); // the reference count

// Begins and ends without living objects, failures or counts.
class SoftDeviceTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace rig
