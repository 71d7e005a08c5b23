#pragma once

#include "softd3d11/PixelFormat.h"

#include <cstdint>

namespace softd3d11 {

// A slice of NV12 or P010, rows of both planes nPitch bytes apart.
struct VideoPicture
{
    DXGI_FORMAT format;
    const std::uint8_t *pLuma;
    const std::uint8_t *pChroma;
    std::size_t nPitch;
};

struct BgraPicture
{
    std::uint8_t *pRows;
    std::size_t nPitch; // bytes
    UINT nWidth;        // pixels
    UINT nHeight;
};

// Converts a part of the source, which is not empty and lies inside, to fill the whole target, which is not
// empty either. A target of another size is scaled bilinearly between pixel centres, from the converted
// pixels of that part alone. The caller keeps both from changing. Throws std::bad_alloc.
void BlitPicture(const VideoPicture &source, const TexelRect &rect,
                 const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace, const BgraPicture &target);

// Opaque black.
void FillBlack(const BgraPicture &target) noexcept;

} // namespace softd3d11
