#include "yuv/PlaneCopy.h"

#include <algorithm>
#include <cstring>

namespace yuv {

namespace {

// Hosts may declare a buffer smaller than the picture; what does not fit is left out.
void CopyBytes(const FrameTarget &target, size_t nOffset, const uint8_t *pSource, size_t nCount)
{
    if (nOffset < target.nBytes) {
        std::memcpy(target.pBytes + nOffset, pSource, std::min(nCount, target.nBytes - nOffset));
    }
}

void CopyRows(const FrameTarget &target, size_t nOffset, const uint8_t *pSource, size_t nPitch, size_t nRows)
{
    const auto nWidth = static_cast<size_t>(target.nWidth);
    if (nPitch == nWidth) {
        CopyBytes(target, nOffset, pSource, nWidth * nRows);
        return;
    }
    if (nOffset >= target.nBytes) {
        return;
    }
    const size_t nWholeRows = std::min(nRows, (target.nBytes - nOffset) / nWidth);
    uint8_t *pTarget = target.pBytes + nOffset;
    for (size_t i = 0; i < nWholeRows; ++i) {
        std::memcpy(pTarget, pSource, nWidth);
        pTarget += nWidth;
        pSource += nPitch;
    }
    if (nWholeRows < nRows) {
        CopyBytes(target, nOffset + nWholeRows * nWidth, pSource, nWidth);
    }
}

void CopyNv12(const VideoFrameDesc &frame, const FrameTarget &target)
{
    const bool blPlanes = frame.pPlaneY != nullptr && frame.pPlaneUV != nullptr;
    if ((!blPlanes && frame.pFrameData == nullptr) || frame.nPitch < 0) {
        return;
    }
    const size_t nLuma = target.lumaBytes();
    const auto nHeight = static_cast<size_t>(target.nHeight);
    const size_t nPaddedHeight = (nHeight + 15) / 16 * 16;
    const auto nPitch = static_cast<size_t>(frame.nPitch);
    const bool blPacked = nPitch == 0 || (frame.nPitch == target.nWidth && nHeight == nPaddedHeight);
    if (blPacked && blPlanes) {
        CopyBytes(target, 0, frame.pPlaneY, nLuma);
        CopyBytes(target, nLuma, frame.pPlaneUV, nLuma / 2);
    } else if (blPacked) {
        CopyBytes(target, 0, frame.pFrameData, nLuma * 3 / 2);
    } else {
        // A decoder surface in one piece has its height padded to 16 rows before the chroma.
        const uint8_t *pChroma = blPlanes ? frame.pPlaneUV : frame.pFrameData + nPitch * nPaddedHeight;
        CopyRows(target, 0, blPlanes ? frame.pPlaneY : frame.pFrameData, nPitch, nHeight);
        CopyRows(target, nLuma, pChroma, nPitch, nHeight / 2);
    }
}

void CopyPlanar(const VideoFrameDesc &frame, const FrameTarget &target, bool &blExplicitLength)
{
    if (frame.pFrameData == nullptr) {
        return;
    }
    blExplicitLength = frame.nDataLen > 0;
    const size_t nCount = blExplicitLength ? static_cast<size_t>(frame.nDataLen) : target.lumaBytes() * 3 / 2;
    CopyBytes(target, 0, frame.pFrameData, nCount);
}

} // namespace

void StoreFrame(const VideoFrameDesc &frame, const FrameTarget &target, const StoredFrame &stored)
{
    if (frame.nDisplayType != VIDEO_DISPLAY_NV12) {
        CopyPlanar(frame, target, stored.blExplicitLength);
        return;
    }
    const size_t nLuma = target.lumaBytes();
    stored.pPlaneY = target.pBytes;
    stored.pPlaneUV = nLuma <= target.nBytes ? target.pBytes + nLuma : nullptr;
    stored.blExplicitLength = false;
    CopyNv12(frame, target);
}

} // namespace yuv
