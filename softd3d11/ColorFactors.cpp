#include "softd3d11/ColorFactors.h"

#include <cmath>
#include <cstdint>

namespace softd3d11 {

namespace {

// Samples of either depth are brought to 8 bits before the fraction, luma with 7 and chroma with 8 fractional
// bits (they fill 16 bits then); the upper half of the product keeps 5.
constexpr double kLumaOne = 1 << (16 + 5 - 7);
constexpr double kChromaOne = 1 << (16 + 5 - 8);

template <class Lanes> void Fill(Lanes &lanes, double dFactor)
{
    lanes.fill(static_cast<std::int16_t>(std::lround(dFactor)));
}

} // namespace

ColorFactors MakeColorFactors(const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace, int nBits) noexcept
{
    const bool blFull = colorSpace.Nominal_Range == D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_0_255;
    const double dRed = colorSpace.YCbCr_Matrix != 0 ? 0.2126 : 0.299;
    const double dBlue = colorSpace.YCbCr_Matrix != 0 ? 0.0722 : 0.114;
    const double dGreen = 1 - dRed - dBlue;
    // 1023 of 10 bits are not quite 255 of 8 bits and a fraction of two bits.
    const double dFullScale = nBits == 10 ? 255.0 * 4 / 1023 : 1.0;
    const double dLuma = (blFull ? dFullScale : 255.0 / 219) * kLumaOne;
    const double dChroma = (blFull ? dFullScale : 255.0 / 224) * kChromaOne;

    ColorFactors factors;
    factors.nLumaOffset = blFull ? 0 : 16 << 7;
    Fill(factors.luma, dLuma);
    Fill(factors.redFromCr, dChroma * 2 * (1 - dRed));
    Fill(factors.greenFromCb, -dChroma * 2 * (1 - dBlue) * dBlue / dGreen);
    Fill(factors.greenFromCr, -dChroma * 2 * (1 - dRed) * dRed / dGreen);
    Fill(factors.blueFromCb, dChroma * 2 * (1 - dBlue));
    return factors;
}

} // namespace softd3d11
