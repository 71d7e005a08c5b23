#pragma once

#include "FfmpegPtr.h"

#include <XeltRender.h>

#include <vector>

// How the planes lie in the memory that is handed to the renderer.
enum class FrameLayout {
    Yv12,
    Nv12,       // two plane pointers, packed rows
    Nv12Padded, // one pointer; rows wider and the surface higher than the picture, as decoders make them
    Texture,    // packed as Nv12, one plane behind the other, on its way into a Direct3D 11 texture
};

// Turns decoded pictures into frames for the renderer. Not shared between threads.
class FramePacker
{
public:
    explicit FramePacker(FrameLayout layout) : m_layout(layout) {}

    // Null when the picture cannot be converted. The frame points into this object and lasts until the next
    // call. An odd last row or column is left out: 4:2:0 planes have none.
    const VideoFrameDesc *pack(const AVFrame &picture);

private:
    struct ScalerSource
    {
        int nWidth = 0;
        int nHeight = 0;
        int nFormat = -1;
        bool blFullRange = false;

        bool operator==(const ScalerSource &other) const
        {
            return nWidth == other.nWidth && nHeight == other.nHeight && nFormat == other.nFormat &&
                   blFullRange == other.blFullRange;
        }
    };

    const AVFrame *convert(const AVFrame &picture);
    bool prepareConverted(int nWidth, int nHeight);
    bool prepareScaler(const AVFrame &picture, bool blFullRange);
    void packYv12(const AVFrame &picture);
    void packNv12(const AVFrame &picture);
    void packNv12Padded(const AVFrame &picture);
    AVPixelFormat wantedFormat() const;

    FrameLayout m_layout;
    VideoFrameDesc m_desc{};
    std::vector<uint8_t> m_buffer;
    ffmpeg::Ptr<AVFrame> m_pConverted;
    ffmpeg::Ptr<SwsContext> m_pScaler; // for pictures like m_scalerSource
    ScalerSource m_scalerSource;
};
