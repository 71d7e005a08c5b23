#pragma once

#include "platform/Direct3DDeclarations.h"

#include <cstddef>

namespace softd3d11 {

// How the texels of a format lie in memory. Both video formats have half-size interleaved chroma behind the
// luma, rows of the same pitch.
struct PixelFormat
{
    DXGI_FORMAT format;
    std::size_t nTexelBytes; // of a texel in the first plane
    bool blChroma;           // a second plane of half the rows
    UINT nAlignment;         // positions and sizes are multiples of this
    UINT nBindFlags;         // that a texture may have
    UINT nProcessorSupport;  // D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT bits
    UINT nFormatSupport;     // D3D11_FORMAT_SUPPORT bits
    UINT nFourCC;            // by which an input view may name it; 0 for none
};

// Null for formats that no texture here can have.
const PixelFormat *FindPixelFormat(DXGI_FORMAT format) noexcept;

constexpr std::size_t kRowAlignment = 64;

// Bytes from one row of a texture to the next, and of one slice of it with both planes.
constexpr std::size_t RowPitchOf(const PixelFormat &format, UINT nWidth) noexcept
{
    return (nWidth * format.nTexelBytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
}

constexpr std::size_t SliceBytesOf(const PixelFormat &format, UINT nWidth, UINT nHeight) noexcept
{
    return RowPitchOf(format, nWidth) * (nHeight + (format.blChroma ? nHeight / 2 : 0));
}

// Part of a texture's slice, in texels.
struct TexelRect
{
    UINT nLeft;
    UINT nTop;
    UINT nRight;  // exclusive
    UINT nBottom; // exclusive

    UINT width() const noexcept { return nRight - nLeft; }
    UINT height() const noexcept { return nBottom - nTop; }
};

// Whether the edges are in order and a picture of the format and size has them all.
bool FitsInto(const TexelRect &rect, const PixelFormat &format, UINT nWidth, UINT nHeight) noexcept;

} // namespace softd3d11
