// Moves texels into and between slices of textures. Edges are within the slices and fit the format; the
// caller holds the mutexes of the slices.
#pragma once

#include "softd3d11/TextureStorage.h"

namespace softd3d11 {

// Texels in the caller's memory: rows nPitch bytes apart, the chroma's rows right behind the luma's.
void WriteTexels(const TextureStorage &target, UINT nSlice, const TexelRect &rect, const void *pTexels,
                 std::size_t nPitch) noexcept;

// From rect of one slice to the texel nLeft, nTop of another slice of the same format.
void CopyTexels(const TextureStorage &target, UINT nTargetSlice, UINT nLeft, UINT nTop,
                const TextureStorage &source, UINT nSourceSlice, const TexelRect &rect) noexcept;

} // namespace softd3d11
