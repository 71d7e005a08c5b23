#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace softegl {

// Copies rows of B, G, R, A bytes to rows without gaps of R, G, B, A bytes. blOpaque: every alpha becomes
// 255.
std::vector<std::uint8_t> ToTightRgba(const std::uint8_t *pRows, std::size_t nPitch, std::size_t nWidth,
                                      std::size_t nHeight, bool blOpaque);

} // namespace softegl
