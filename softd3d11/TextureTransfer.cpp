#include "softd3d11/TextureTransfer.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace softd3d11 {

namespace {

struct Rows
{
    std::uint8_t *pFirst;
    std::size_t nPitch;
};

struct ConstRows
{
    const std::uint8_t *pFirst;
    std::size_t nPitch;
};

void CopyRows(Rows target, ConstRows source, std::size_t nBytes, std::size_t nRows)
{
    for (std::size_t i = 0; i < nRows; ++i) {
        std::memcpy(target.pFirst + i * target.nPitch, source.pFirst + i * source.nPitch, nBytes);
    }
}

Rows LumaRows(const TextureStorage &storage, UINT nSlice, UINT nLeft, UINT nTop)
{
    const std::size_t nOffset = nTop * storage.RowPitch() + nLeft * storage.Format().nTexelBytes;
    return {storage.Slice(nSlice) + nOffset, storage.RowPitch()};
}

Rows ChromaRows(const TextureStorage &storage, UINT nSlice, UINT nLeft, UINT nTop)
{
    return LumaRows(storage, nSlice, nLeft, storage.Desc().Height + nTop / 2);
}

ConstRows Const(Rows rows)
{
    return {rows.pFirst, rows.nPitch};
}

} // namespace

void WriteTexels(const TextureStorage &target, UINT nSlice, const TexelRect &rect, const void *pTexels,
                 std::size_t nPitch) noexcept
{
    const std::size_t nBytes = rect.width() * target.Format().nTexelBytes;
    const auto *pLuma = static_cast<const std::uint8_t *>(pTexels);
    CopyRows(LumaRows(target, nSlice, rect.nLeft, rect.nTop), {pLuma, nPitch}, nBytes, rect.height());
    if (target.Format().blChroma) {
        CopyRows(ChromaRows(target, nSlice, rect.nLeft, rect.nTop), {pLuma + rect.height() * nPitch, nPitch},
                 nBytes, rect.height() / 2);
    }
}

void CopyTexels(const TextureStorage &target, UINT nTargetSlice, UINT nLeft, UINT nTop,
                const TextureStorage &source, UINT nSourceSlice, const TexelRect &rect) noexcept
{
    const std::size_t nBytes = rect.width() * target.Format().nTexelBytes;
    CopyRows(LumaRows(target, nTargetSlice, nLeft, nTop),
             Const(LumaRows(source, nSourceSlice, rect.nLeft, rect.nTop)), nBytes, rect.height());
    if (target.Format().blChroma) {
        CopyRows(ChromaRows(target, nTargetSlice, nLeft, nTop),
                 Const(ChromaRows(source, nSourceSlice, rect.nLeft, rect.nTop)), nBytes, rect.height() / 2);
    }
}

} // namespace softd3d11
