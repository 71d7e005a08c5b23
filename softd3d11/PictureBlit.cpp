#include "softd3d11/PictureBlit.h"

#include "softd3d11/RowConverter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace softd3d11 {

// Pixels are written as numbers whose first byte is the lowest.
#ifdef __BYTE_ORDER__
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
#endif

namespace {

constexpr int kWeightBits = 11; // 8 bits of a level and twice these still fit into 32
constexpr std::uint32_t kWeightOne = 1U << kWeightBits;

// Where between two neighbouring source pixels the centre of a target pixel falls.
struct Tap
{
    std::size_t nFirst;
    std::size_t nSecond;
    std::uint32_t nWeight; // of the second, kWeightOne is all of it
};

Tap MakeTap(UINT nTarget, UINT nTargetSize, UINT nSourceSize)
{
    const double dCentre = (nTarget + 0.5) * nSourceSize / nTargetSize - 0.5;
    const double dPosition = std::clamp(dCentre, 0.0, static_cast<double>(nSourceSize - 1));
    const auto nFirst = static_cast<std::size_t>(dPosition);
    const double dWeight = (dPosition - static_cast<double>(nFirst)) * kWeightOne;
    return {nFirst, std::min<std::size_t>(nFirst + 1, nSourceSize - 1),
            static_cast<std::uint32_t>(std::lround(dWeight))};
}

class SourceRows
{
public:
    SourceRows(const VideoPicture &source, const TexelRect &rect,
               const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace)
        : m_source(source), m_rect(rect), m_converter(source.format, colorSpace)
    {
    }

    // Row nRow of the rectangle.
    void Convert(std::size_t nRow, std::uint8_t *pTarget) const
    {
        const std::size_t y = m_rect.nTop + nRow;
        m_converter.Convert(m_source.pLuma + y * m_source.nPitch, m_source.pChroma + y / 2 * m_source.nPitch,
                            m_rect.nLeft, m_rect.width(), pTarget);
    }

private:
    const VideoPicture &m_source;
    const TexelRect &m_rect;
    const RowConverter m_converter;
};

// The two source rows that a target row lies between. Going down, each source row is converted once.
class RowPair
{
public:
    RowPair(const SourceRows &rows, std::size_t nWidth)
        : m_rows(rows), m_cache{std::vector<std::uint8_t>(nWidth * 4), std::vector<std::uint8_t>(nWidth * 4)}
    {
    }

    const std::uint8_t *Row(std::size_t nRow)
    {
        const std::size_t nSlot = nRow % 2; // neighbours never push each other out
        if (m_held[nSlot] != nRow) {
            m_rows.Convert(nRow, m_cache[nSlot].data());
            m_held[nSlot] = nRow;
        }
        return m_cache[nSlot].data();
    }

private:
    static constexpr std::size_t kNone = ~std::size_t{0};
    const SourceRows &m_rows;
    std::array<std::vector<std::uint8_t>, 2> m_cache;
    std::array<std::size_t, 2> m_held{kNone, kNone};
};

void MixRows(const std::uint8_t *pUpper, const std::uint8_t *pLower, std::uint32_t nWeight,
             std::vector<std::uint32_t> &mixed)
{
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        mixed[i] = pUpper[i] * (kWeightOne - nWeight) + pLower[i] * nWeight;
    }
}

void MixColumns(const std::vector<std::uint32_t> &mixed, const std::vector<Tap> &taps, std::uint8_t *pTarget)
{
    for (std::size_t x = 0; x < taps.size(); ++x) {
        const Tap &tap = taps[x];
        for (std::size_t c = 0; c < 4; ++c) {
            const std::uint32_t nSum = mixed[tap.nFirst * 4 + c] * (kWeightOne - tap.nWeight) +
                                       mixed[tap.nSecond * 4 + c] * tap.nWeight;
            pTarget[x * 4 + c] =
                static_cast<std::uint8_t>((nSum + (1U << (2 * kWeightBits - 1))) >> (2 * kWeightBits));
        }
    }
}

void ScaleRows(const SourceRows &rows, const TexelRect &rect, const BgraPicture &target)
{
    std::vector<Tap> columns(target.nWidth);
    for (UINT x = 0; x < target.nWidth; ++x) {
        columns[x] = MakeTap(x, target.nWidth, rect.width());
    }
    RowPair pair(rows, rect.width());
    std::vector<std::uint32_t> mixed(std::size_t{rect.width()} * 4);
    for (UINT y = 0; y < target.nHeight; ++y) {
        const Tap tap = MakeTap(y, target.nHeight, rect.height());
        const std::uint8_t *pUpper = pair.Row(tap.nFirst);
        MixRows(pUpper, pair.Row(tap.nSecond), tap.nWeight, mixed);
        MixColumns(mixed, columns, target.pRows + y * target.nPitch);
    }
}

} // namespace

void BlitPicture(const VideoPicture &source, const TexelRect &rect,
                 const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace, const BgraPicture &target)
{
    const SourceRows rows(source, rect, colorSpace);
    if (rect.width() != target.nWidth || rect.height() != target.nHeight) {
        ScaleRows(rows, rect, target);
        return;
    }
    for (UINT y = 0; y < target.nHeight; ++y) {
        rows.Convert(y, target.pRows + y * target.nPitch);
    }
}

void FillBlack(const BgraPicture &target) noexcept
{
    for (UINT y = 0; y < target.nHeight; ++y) {
        auto *pRow = reinterpret_cast<std::uint32_t *>(target.pRows + y * target.nPitch);
        std::fill_n(pRow, target.nWidth, 0xFF000000U);
    }
}

} // namespace softd3d11
