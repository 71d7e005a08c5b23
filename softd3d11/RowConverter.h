#pragma once

#include "softd3d11/ColorFactors.h"

#include <cstddef>
#include <cstdint>

namespace softd3d11 {

// Converts rows of NV12 or P010 to BGRA8 with alpha 255. Each chroma sample stands for two pixels of the row.
class RowConverter
{
public:
    // format is NV12 or P010.
    RowConverter(DXGI_FORMAT format, const D3D11_VIDEO_PROCESSOR_COLOR_SPACE &colorSpace) noexcept;

    // nCount pixels of a row from pixel nFirst on. The rows are aligned to their samples, the target to 4
    // bytes.
    void Convert(const std::uint8_t *pLumaRow, const std::uint8_t *pChromaRow, std::size_t nFirst,
                 std::size_t nCount, std::uint8_t *pTarget) const noexcept;

private:
    const bool m_blTenBits;
    const ColorFactors m_factors;
};

} // namespace softd3d11
