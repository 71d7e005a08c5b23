#include "softd3d11/RowConverter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace softd3d11 {

// Pixels and chroma pairs are read and written as numbers whose first byte is the lowest.
#ifdef __BYTE_ORDER__
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
#endif

namespace {

constexpr std::size_t kLanes = ColorFactors::kLanes;
constexpr int kFractionBits = 5;
// A half for rounding, and what the products lose on average by being cut off.
constexpr std::int16_t kRounding = (1 << (kFractionBits - 1)) + 1;

// The loops below are written for the compilers' vectorisers: 16-bit lanes, fixed counts, one operation after
// another. Both compilers turn this into a multiplication that keeps the upper halves.
constexpr std::int16_t MultiplyHigh(std::int16_t a, std::int16_t b)
{
    return static_cast<std::int16_t>((static_cast<std::int32_t>(a) * b) >> 16);
}

constexpr std::uint16_t Level(std::int16_t nFixed)
{
    auto nLevel = static_cast<std::int16_t>(nFixed >> kFractionBits);
    nLevel = nLevel < 0 ? std::int16_t{0} : nLevel;
    nLevel = nLevel > 255 ? std::int16_t{255} : nLevel;
    return static_cast<std::uint16_t>(nLevel);
}

constexpr std::int16_t Sum(std::int16_t a, std::int16_t b)
{
    return static_cast<std::int16_t>(a + b);
}

// How samples of a format are read: a Pair holds Cb in its lower half and Cr in the upper one. Luma gets 7
// fractional bits, chroma is centred and gets 8.
struct EightBits
{
    using Sample = std::uint8_t;
    using Pair = std::uint16_t;
    static constexpr std::int16_t Luma(Sample n) { return static_cast<std::int16_t>(n << 7); }
    static constexpr std::int16_t Cb(Pair n) { return static_cast<std::int16_t>((n << 8) ^ 0x8000); }
    static constexpr std::int16_t Cr(Pair n) { return static_cast<std::int16_t>((n & 0xFF00) ^ 0x8000); }
};

// The ten bits are the upper ones; what is in the others is ignored.
struct TenBits
{
    using Sample = std::uint16_t;
    using Pair = std::uint32_t;
    static constexpr std::int16_t Luma(Sample n) { return static_cast<std::int16_t>((n >> 1) & 0x7FE0); }
    static constexpr std::int16_t Cb(Pair n) { return static_cast<std::int16_t>((n & 0xFFC0) ^ 0x8000); }
    static constexpr std::int16_t Cr(Pair n)
    {
        return static_cast<std::int16_t>(((n >> 16) & 0xFFC0) ^ 0x8000);
    }
};

// kLanes pixels. Nothing overlaps.
template <class Depth>
void ConvertBlock(const ColorFactors &factors, const typename Depth::Sample *pLuma,
                  const typename Depth::Pair *pChroma, std::uint32_t *pTarget)
{
    std::int16_t red[kLanes];
    std::int16_t green[kLanes];
    std::int16_t blue[kLanes];
    for (std::size_t i = 0; i < kLanes / 2; ++i) {
        const std::int16_t nCb = Depth::Cb(pChroma[i]);
        const std::int16_t nCr = Depth::Cr(pChroma[i]);
        red[2 * i] = red[2 * i + 1] = MultiplyHigh(nCr, factors.redFromCr[i]);
        green[2 * i] = green[2 * i + 1] =
            Sum(MultiplyHigh(nCb, factors.greenFromCb[i]), MultiplyHigh(nCr, factors.greenFromCr[i]));
        blue[2 * i] = blue[2 * i + 1] = MultiplyHigh(nCb, factors.blueFromCb[i]);
    }
    const std::int16_t nOffset = factors.nLumaOffset;
    std::uint16_t blueGreen[kLanes];
    std::uint16_t redAlpha[kLanes];
    for (std::size_t i = 0; i < kLanes; ++i) {
        const auto nSample = static_cast<std::int16_t>(Depth::Luma(pLuma[i]) - nOffset);
        const std::int16_t nLuma = Sum(MultiplyHigh(nSample, factors.luma[i]), kRounding);
        const std::uint16_t nBlue = Level(Sum(nLuma, blue[i]));
        const std::uint16_t nGreen = Level(Sum(nLuma, green[i]));
        const std::uint16_t nRed = Level(Sum(nLuma, red[i]));
        blueGreen[i] = static_cast<std::uint16_t>(nBlue | nGreen << 8);
        redAlpha[i] = static_cast<std::uint16_t>(nRed | 0xFF00);
    }
    for (std::size_t i = 0; i < kLanes; ++i) {
        pTarget[i] = blueGreen[i] | static_cast<std::uint32_t>(redAlpha[i]) << 16;
    }
}

// At most kLanes pixels, through copies as long as a block. blSecond: the first pixel is the second one of
// its chroma sample.
template <class Depth>
void ConvertPart(const ColorFactors &factors, const typename Depth::Sample *pLuma,
                 const typename Depth::Pair *pChroma, bool blSecond, std::size_t nCount,
                 std::uint32_t *pTarget)
{
    const std::size_t nSkip = blSecond ? 1 : 0;
    typename Depth::Sample luma[kLanes] = {};
    typename Depth::Pair chroma[kLanes / 2] = {};
    std::uint32_t pixels[kLanes];
    std::copy_n(pLuma, nCount, luma + nSkip);
    std::copy_n(pChroma, (nSkip + nCount + 1) / 2, chroma);
    ConvertBlock<Depth>(factors, luma, chroma, pixels);
    std::copy_n(pixels + nSkip, nCount, pTarget);
}

template <class Depth>
void ConvertRow(const ColorFactors &factors, const std::uint8_t *pLumaRow, const std::uint8_t *pChromaRow,
                std::size_t nFirst, std::size_t nCount, std::uint32_t *pTarget)
{
    const auto *pLuma = reinterpret_cast<const typename Depth::Sample *>(pLumaRow) + nFirst;
    const auto *pChroma = reinterpret_cast<const typename Depth::Pair *>(pChromaRow) + nFirst / 2;
    if (nFirst % 2 != 0) {
        const std::size_t nPart = std::min(nCount, kLanes - 1);
        ConvertPart<Depth>(factors, pLuma, pChroma, true, nPart, pTarget);
        pLuma += nPart;
        pChroma += (nPart + 1) / 2;
        pTarget += nPart;
        nCount -= nPart;
    }
    for (; nCount >= kLanes; nCount -= kLanes) {
        ConvertBlock<Depth>(factors, pLuma, pChroma, pTarget);
        pLuma += kLanes;
        pChroma += kLanes / 2;
        pTarget += kLanes;
    }
    if (nCount > 0) {
        ConvertPart<Depth>(factors, pLuma, pChroma, false, nCount, pTarget);
    }
}

} // namespace

RowConverter::RowConverter(DXGI_FORMAT format, const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace) noexcept
    : m_blTenBits(format == DXGI_FORMAT_P010), m_factors(MakeColorFactors(colorSpace, m_blTenBits ? 10 : 8))
{
}

void RowConverter::Convert(const std::uint8_t *pLumaRow, const std::uint8_t *pChromaRow, std::size_t nFirst,
                           std::size_t nCount, std::uint8_t *pTarget) const noexcept
{
    const auto convert = m_blTenBits ? ConvertRow<TenBits> : ConvertRow<EightBits>;
    convert(m_factors, pLumaRow, pChromaRow, nFirst, nCount, reinterpret_cast<std::uint32_t *>(pTarget));
}

} // namespace softd3d11
