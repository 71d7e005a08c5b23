#include "softd3d11/TextureRules.h"

#include "softd3d11/PixelFormat.h"

#include <algorithm>
#include <cstdint>

namespace softd3d11 {

namespace {

constexpr UINT kMaxTextureEdge = 16384;
constexpr UINT kMaxSlices = 2048;
constexpr std::uint64_t kMaxBytes = 2048ULL << 20;

bool SizeAllowed(const D3D11_TEXTURE2D_DESC &desc, const PixelFormat &format)
{
    return desc.Width > 0 && desc.Height > 0 && desc.ArraySize > 0 && desc.Width <= kMaxTextureEdge &&
           desc.Height <= kMaxTextureEdge && desc.ArraySize <= kMaxSlices &&
           (desc.Width | desc.Height) % format.nAlignment == 0;
}

// What the usage says about binding, access by the processor, initial data and sharing.
bool UsageAllowed(const D3D11_TEXTURE2D_DESC &desc, bool blInitialData)
{
    const bool blShared = (desc.MiscFlags & D3D11_RESOURCE_MISC_SHARED) != 0;
    switch (desc.Usage) {
    case D3D11_USAGE_DEFAULT:
        return desc.CPUAccessFlags == 0;
    case D3D11_USAGE_IMMUTABLE:
        return desc.CPUAccessFlags == 0 && blInitialData && !blShared &&
               desc.BindFlags == D3D11_BIND_SHADER_RESOURCE;
    case D3D11_USAGE_DYNAMIC:
        return desc.CPUAccessFlags == D3D11_CPU_ACCESS_WRITE && !blShared && desc.ArraySize == 1 &&
               desc.BindFlags == D3D11_BIND_SHADER_RESOURCE;
    case D3D11_USAGE_STAGING: {
        constexpr UINT kAccess = D3D11_CPU_ACCESS_READ | D3D11_CPU_ACCESS_WRITE;
        return desc.CPUAccessFlags != 0 && (desc.CPUAccessFlags & ~kAccess) == 0 && !blShared &&
               desc.BindFlags == 0;
    }
    default:
        return false;
    }
}

bool DataAllowed(const D3D11_TEXTURE2D_DESC &desc, const PixelFormat &format,
                 const D3D11_SUBRESOURCE_DATA *pData)
{
    for (UINT i = 0; pData != nullptr && i < desc.ArraySize; ++i) {
        if (pData[i].pSysMem == nullptr || pData[i].SysMemPitch < desc.Width * format.nTexelBytes) {
            return false;
        }
    }
    return true;
}

std::uint64_t ByteCount(const D3D11_TEXTURE2D_DESC &desc, const PixelFormat &format)
{
    return std::uint64_t{SliceBytesOf(format, desc.Width, desc.Height)} * desc.ArraySize;
}

// Down to a level of one texel.
UINT FullLevelCount(const D3D11_TEXTURE2D_DESC &desc)
{
    UINT nLevels = 1;
    for (UINT nEdge = std::max(desc.Width, desc.Height); nEdge > 1; nEdge /= 2) {
        ++nLevels;
    }
    return nLevels;
}

} // namespace

HRESULT CheckTextureDesc(const D3D11_TEXTURE2D_DESC &desc,
                         const D3D11_SUBRESOURCE_DATA *pInitialData) noexcept
{
    const PixelFormat *pFormat = FindPixelFormat(desc.Format);
    if (pFormat == nullptr || !SizeAllowed(desc, *pFormat) || (desc.BindFlags & ~pFormat->nBindFlags) != 0 ||
        desc.SampleDesc.Count == 0 || desc.MipLevels > FullLevelCount(desc) ||
        !UsageAllowed(desc, pInitialData != nullptr) || !DataAllowed(desc, *pFormat, pInitialData)) {
        return E_INVALIDARG;
    }
    const UINT nLevels = desc.MipLevels != 0 ? desc.MipLevels : FullLevelCount(desc);
    if (nLevels != 1 || desc.SampleDesc.Count != 1 || desc.SampleDesc.Quality != 0 ||
        (desc.MiscFlags & ~static_cast<UINT>(D3D11_RESOURCE_MISC_SHARED)) != 0) {
        return E_NOTIMPL;
    }
    return ByteCount(desc, *pFormat) <= kMaxBytes ? S_OK : E_OUTOFMEMORY;
}

} // namespace softd3d11
