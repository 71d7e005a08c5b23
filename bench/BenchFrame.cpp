#include "BenchFrame.h"

#include <cstring>

namespace {

constexpr std::size_t kRowPadding = 128;
constexpr std::size_t kAlignmentSlack = 64;

std::size_t AlignedTo16(int nValue)
{
    return (static_cast<std::size_t>(nValue) + 15) / 16 * 16;
}

} // namespace

BenchFrame::BenchFrame(FrameSize size, FrameLayout layout) : m_size(size), m_layout(layout)
{
    const bool blPadded = layout == FrameLayout::Nv12Padded;
    const std::size_t nRows = blPadded ? AlignedTo16(size.nHeight) : static_cast<std::size_t>(size.nHeight);
    m_nPitch = static_cast<std::size_t>(size.nWidth) + (blPadded ? kRowPadding : 0);
    m_nChromaOffset = m_nPitch * nRows;
    m_nSourceBytes = m_nChromaOffset + m_nChromaOffset / 2;
    m_pSource = std::make_unique<std::uint8_t[]>(m_nSourceBytes);

    // A pattern that is different in every row, so that a misplaced row or plane shows in a picture.
    for (std::size_t i = 0; i < m_nSourceBytes; ++i)
        m_pSource[i] = static_cast<std::uint8_t>(i * 7 + i / m_nPitch * 3);

    Describe();
}

BenchFrame::BenchFrame(const BenchFrame &other)
    : m_size(other.m_size),
      m_layout(other.m_layout),
      m_nPitch(other.m_nPitch),
      m_nChromaOffset(other.m_nChromaOffset),
      m_nSourceBytes(other.m_nSourceBytes),
      m_pSource(std::make_unique<std::uint8_t[]>(m_nSourceBytes))
{
    std::memcpy(m_pSource.get(), other.m_pSource.get(), m_nSourceBytes);
    Describe();
}

void BenchFrame::Describe()
{
    m_desc.iWidth = m_size.nWidth;
    m_desc.iHeight = m_size.nHeight;
    m_desc.nDisplayType = m_layout == FrameLayout::Yv12 ? VIDEO_DISPLAY_YV12 : VIDEO_DISPLAY_NV12;
    m_desc.nPitch = HasPaddedRows() ? static_cast<std::int32_t>(m_nPitch) : 0;
    if (m_layout == FrameLayout::Nv12Packed) {
        m_desc.pPlaneY = m_pSource.get();
        m_desc.pPlaneUV = m_pSource.get() + m_nChromaOffset;
    } else {
        m_desc.pFrameData = m_pSource.get();
    }
}

std::size_t BenchFrame::PictureBytes() const
{
    return static_cast<std::size_t>(m_size.nWidth) * static_cast<std::size_t>(m_size.nHeight) * 3 / 2;
}

void BenchFrame::CopyOnce(std::uint8_t *pTarget) const
{
    std::memcpy(pTarget, m_pSource.get(), PictureBytes());
}

void BenchFrame::CopyRows(std::uint8_t *pTarget) const
{
    const auto nWidth = static_cast<std::size_t>(m_size.nWidth);
    const auto nHeight = static_cast<std::size_t>(m_size.nHeight);
    const auto copy = [&](const std::uint8_t *pFrom, std::size_t nRows) {
        for (std::size_t i = 0; i < nRows; ++i, pFrom += m_nPitch, pTarget += nWidth)
            std::memcpy(pTarget, pFrom, nWidth);
    };
    copy(m_pSource.get(), nHeight);
    copy(m_pSource.get() + m_nChromaOffset, nHeight / 2);
}

std::unique_ptr<std::uint8_t[]> BenchFrame::MakeTarget() const
{
    return std::make_unique<std::uint8_t[]>(PictureBytes() + kAlignmentSlack);
}

std::string LayoutName(FrameLayout layout)
{
    switch (layout) {
    case FrameLayout::Yv12:
        return "YV12";
    case FrameLayout::Nv12Packed:
        return "NV12";
    case FrameLayout::Nv12Padded:
        break;
    }
    return "NV12padded";
}

std::string SizeName(FrameSize size)
{
    return std::to_string(size.nWidth) + "x" + std::to_string(size.nHeight);
}
