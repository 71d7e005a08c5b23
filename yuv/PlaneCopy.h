// Copies the pixels of a frame descriptor into a packed frame buffer. The caller holds the lock that guards
// the buffer.
#pragma once

#include "interface/XeltRender.h"

#include <cstddef>
#include <cstdint>

namespace yuv {

// A packed picture: luma of nWidth x nHeight, chroma behind it. No copy goes beyond nBytes.
struct FrameTarget
{
    uint8_t *pBytes;
    size_t nBytes;
    int32_t nWidth;
    int32_t nHeight;

    size_t lumaBytes() const { return static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight); }
};

// What a renderer remembers of the frame in its buffer.
struct StoredFrame
{
    uint8_t *&pPlaneY;      // NV12: start of the luma in the buffer; other types leave it alone
    uint8_t *&pPlaneUV;     // NV12: start of the chroma, null when the buffer is too short for any
    bool &blExplicitLength; // whether nDataLen gave the length; a frame without pixels leaves it alone
};

// NV12: luma and interleaved chroma, rows of a padded source packed. Every other type: planes one after
// another, nDataLen bytes of them when that is positive. A frame without pixels copies nothing.
void StoreFrame(const VideoFrameDesc &frame, const FrameTarget &target, const StoredFrame &stored);

} // namespace yuv
