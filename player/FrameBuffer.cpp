#include "FrameBuffer.h"

#include <algorithm>
#include <cstddef>

namespace {

int roundedUp(int nValue, int nMultiple)
{
    return (nValue + nMultiple - 1) / nMultiple * nMultiple;
}

std::size_t bytes(int nPitch, int nRows)
{
    return static_cast<std::size_t>(nPitch) * static_cast<std::size_t>(nRows);
}

} // namespace

// The renderers read rows of NV12 frames in steps of four bytes.
int FrameBuffer::fittingWidth(int nPictureWidth, FrameLayout layout)
{
    return layout == FrameLayout::Yv12 ? std::max(2, nPictureWidth & ~1) : std::max(4, nPictureWidth & ~3);
}

int FrameBuffer::fittingHeight(int nPictureHeight)
{
    return std::max(2, nPictureHeight & ~1);
}

void FrameBuffer::fit(int nPictureWidth, int nPictureHeight)
{
    m_desc = VideoFrameDesc{};
    m_desc.iWidth = fittingWidth(nPictureWidth, m_layout);
    m_desc.iHeight = fittingHeight(nPictureHeight);
    const std::size_t nLuma = bytes(pitch(), rows());
    m_buffer.resize(nLuma * 3 / 2);
    uint8_t *pLuma = m_buffer.data();
    switch (m_layout) {
    case FrameLayout::Yv12:
        m_desc.nDisplayType = VIDEO_DISPLAY_YV12;
        m_desc.pFrameData = pLuma;
        break;
    case FrameLayout::Nv12:
    case FrameLayout::Texture:
        m_desc.nDisplayType = VIDEO_DISPLAY_NV12;
        m_desc.pPlaneY = pLuma;
        m_desc.pPlaneUV = pLuma + nLuma;
        break;
    case FrameLayout::Nv12Padded:
        m_desc.nDisplayType = VIDEO_DISPLAY_NV12;
        m_desc.pFrameData = pLuma;
        m_desc.nPitch = pitch();
        break;
    }
}

int FrameBuffer::pitch() const
{
    return m_layout == FrameLayout::Nv12Padded ? roundedUp(m_desc.iWidth, 64) + 64 : m_desc.iWidth;
}

int FrameBuffer::rows() const
{
    return m_layout == FrameLayout::Nv12Padded ? roundedUp(m_desc.iHeight, 16) : m_desc.iHeight;
}

FrameBuffer::Component FrameBuffer::component(int nIndex)
{
    uint8_t *pLuma = m_buffer.data();
    if (nIndex == 0) {
        return {pLuma, pitch(), 1, m_desc.iWidth, m_desc.iHeight};
    }
    const std::size_t nLuma = bytes(pitch(), rows());
    const int nWidth = m_desc.iWidth / 2;
    const int nHeight = m_desc.iHeight / 2;
    if (isInterleaved()) {
        return {pLuma + nLuma + (nIndex - 1), pitch(), 2, nWidth, nHeight};
    }
    return {pLuma + nLuma + (nIndex == 2 ? nLuma / 4 : 0), nWidth, 1, nWidth, nHeight};
}
