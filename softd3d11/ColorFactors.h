#pragma once

#include "platform/Direct3DDeclarations.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace softd3d11 {

// What the conversion from YCbCr to RGB multiplies by, in fixed point: the products keep 5 fractional bits.
// Each factor fills a row of lanes, as the vectorised loops load them.
struct ColorFactors
{
    static constexpr std::size_t kLanes = 64; // pixels that are converted at once
    template <std::size_t nCount> using Lanes = std::array<std::int16_t, nCount>;

    std::int16_t nLumaOffset; // of samples shifted to 7 fractional bits
    alignas(64) Lanes<kLanes> luma;
    alignas(64) Lanes<kLanes / 2> redFromCr;
    alignas(64) Lanes<kLanes / 2> greenFromCb;
    alignas(64) Lanes<kLanes / 2> greenFromCr;
    alignas(64) Lanes<kLanes / 2> blueFromCb;
};

// nBits is 8 or 10. The bits of the colour space mean what Direct3D says: YCbCr_Matrix 0 is BT.601 and 1
// BT.709, Nominal_Range 2 is 0-255 (0-1023), any other 16-235 (64-940). The rest does not matter here.
ColorFactors MakeColorFactors(const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace, int nBits) noexcept;

} // namespace softd3d11
