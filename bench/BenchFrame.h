#pragma once

#include <XeltRender.h>

#include <cstdint>
#include <memory>
#include <string>

enum class FrameLayout {
    Yv12,
    Nv12Packed, // two plane pointers, rows without padding
    Nv12Padded  // a decoder's surface: rows 128 bytes longer, the height rounded up to a multiple of 16
};

struct FrameSize
{
    int nWidth;
    int nHeight;
};

constexpr FrameSize kFrame360p{640, 360};
constexpr FrameSize kFrame1080p{1920, 1080};
constexpr FrameSize kFrame4K{3840, 2160};

// A frame in memory as a decoder hands it over, with the descriptor that the library takes. Copies are
// deep.
class BenchFrame
{
public:
    BenchFrame(FrameSize size, FrameLayout layout);
    BenchFrame(const BenchFrame &other);
    BenchFrame(BenchFrame &&other) = default; // the pixels stay where they are
    BenchFrame &operator=(const BenchFrame &) = delete;
    BenchFrame &operator=(BenchFrame &&) = delete;

    FrameSize Size() const { return m_size; }
    FrameLayout Layout() const { return m_layout; }
    bool HasPaddedRows() const { return m_layout == FrameLayout::Nv12Padded; }
    std::size_t PictureBytes() const; // without padding
    const VideoFrameDesc &Desc() const { return m_desc; }

    // The picture in one piece.
    void CopyOnce(std::uint8_t *pTarget) const;

    // The picture row by row, the way its padding asks for.
    void CopyRows(std::uint8_t *pTarget) const;

    // A buffer that the picture fits into, with room behind it for GL's row alignment.
    std::unique_ptr<std::uint8_t[]> MakeTarget() const;

private:
    void Describe();

    FrameSize m_size;
    FrameLayout m_layout;
    std::size_t m_nPitch;
    std::size_t m_nChromaOffset;
    std::size_t m_nSourceBytes;
    std::unique_ptr<std::uint8_t[]> m_pSource;
    VideoFrameDesc m_desc = {};
};

std::string LayoutName(FrameLayout layout);
std::string SizeName(FrameSize size);
