#include "softd3d11/PixelFormat.h"

#include <algorithm>
#include <iterator>

namespace softd3d11 {

namespace {

constexpr UINT kVideoBinding =
    D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET | D3D11_BIND_DECODER | D3D11_BIND_VIDEO_ENCODER;
constexpr UINT kPictureBinding = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET;
constexpr UINT kEverySupport = D3D11_FORMAT_SUPPORT_TEXTURE2D | D3D11_FORMAT_SUPPORT_CPU_LOCKABLE;

// A texture may be bound for it, even though the device draws, decodes and encodes nothing itself.
constexpr UINT SupportOfBinding(UINT nBindFlags)
{
    constexpr struct
    {
        UINT nBindFlag;
        UINT nSupport;
    } kUses[] = {
        {D3D11_BIND_SHADER_RESOURCE, D3D11_FORMAT_SUPPORT_SHADER_LOAD | D3D11_FORMAT_SUPPORT_SHADER_SAMPLE},
        {D3D11_BIND_RENDER_TARGET, D3D11_FORMAT_SUPPORT_RENDER_TARGET},
        {D3D11_BIND_DECODER, D3D11_FORMAT_SUPPORT_DECODER_OUTPUT},
        {D3D11_BIND_VIDEO_ENCODER, D3D11_FORMAT_SUPPORT_VIDEO_ENCODER},
    };
    UINT nSupport = 0;
    for (const auto &use : kUses) {
        nSupport |= (nBindFlags & use.nBindFlag) != 0 ? use.nSupport : 0;
    }
    return nSupport;
}

constexpr UINT kVideoSupport =
    kEverySupport | SupportOfBinding(kVideoBinding) | D3D11_FORMAT_SUPPORT_VIDEO_PROCESSOR_INPUT;
constexpr UINT kPictureSupport =
    kEverySupport | SupportOfBinding(kPictureBinding) | D3D11_FORMAT_SUPPORT_VIDEO_PROCESSOR_OUTPUT;

constexpr UINT FourCC(char a, char b, char c, char d)
{
    return static_cast<UINT>(a) | static_cast<UINT>(b) << 8 | static_cast<UINT>(c) << 16 |
           static_cast<UINT>(d) << 24;
}

constexpr PixelFormat kFormats[] = {
    {DXGI_FORMAT_NV12, 1, true, 2, kVideoBinding, D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_INPUT, kVideoSupport,
     FourCC('N', 'V', '1', '2')},
    {DXGI_FORMAT_P010, 2, true, 2, kVideoBinding, D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_INPUT, kVideoSupport,
     FourCC('P', '0', '1', '0')},
    {DXGI_FORMAT_B8G8R8A8_UNORM, 4, false, 1, kPictureBinding, D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_OUTPUT,
     kPictureSupport, 0},
};

} // namespace

const PixelFormat *FindPixelFormat(DXGI_FORMAT format) noexcept
{
    const auto *pFound = std::find_if(std::begin(kFormats), std::end(kFormats),
                                      [format](const PixelFormat &known) { return known.format == format; });
    return pFound != std::end(kFormats) ? pFound : nullptr;
}

bool FitsInto(const TexelRect &rect, const PixelFormat &format, UINT nWidth, UINT nHeight) noexcept
{
    const UINT nEdges = rect.nLeft | rect.nTop | rect.nRight | rect.nBottom;
    return rect.nLeft <= rect.nRight && rect.nTop <= rect.nBottom && rect.nRight <= nWidth &&
           rect.nBottom <= nHeight && nEdges % format.nAlignment == 0;
}

} // namespace softd3d11
