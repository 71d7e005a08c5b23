// What a blit should give, in double precision and one pixel at a time.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <cstddef>

namespace reference {

struct VideoFrame
{
    std::size_t nWidth = 0;
    std::size_t nHeight = 0;
    int nBits = 8; // 10: two bytes a sample, the value in the upper bits
    std::vector<std::uint8_t> packed;
};

struct ColorSpace
{
    bool blBt709 = false;
    bool blFullRange = false;
};

struct Rect
{
    std::size_t nLeft = 0;
    std::size_t nTop = 0;
    std::size_t nWidth = 0;
    std::size_t nHeight = 0;
};

using Bgr = std::array<double, 3>; // levels of 0 to 255, not rounded

// The colour of one pixel, its chroma that of its 2x2 block.
Bgr PixelColor(const VideoFrame &frame, const ColorSpace &space, std::size_t x, std::size_t y);

// The rectangle brought to another size: bilinear between pixel centres, nothing from outside.
std::vector<Bgr> Picture(const VideoFrame &frame, const ColorSpace &space, const Rect &rect,
                         std::size_t nWidth, std::size_t nHeight);

} // namespace reference
