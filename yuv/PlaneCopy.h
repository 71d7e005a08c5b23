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

// Luma and interleaved chroma; rows of a padded source are packed.
void CopyNv12(const VideoFrameDesc &frame, const FrameTarget &target);

// Planes one after another. Without pFrameData nothing is copied and blExplicitLength keeps its value, which
// otherwise says whether nDataLen gave the length.
void CopyPlanar(const VideoFrameDesc &frame, const FrameTarget &target, bool &blExplicitLength);

} // namespace yuv
