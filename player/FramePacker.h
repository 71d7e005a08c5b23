#pragma once

#include "FfmpegPtr.h"
#include "FrameBuffer.h"

// Turns decoded pictures into frames for the renderer. Not shared between threads.
class FramePacker
{
public:
    explicit FramePacker(FrameLayout layout) : m_layout(layout), m_frame(layout) {}

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
    AVPixelFormat wantedFormat() const;

    FrameLayout m_layout;
    FrameBuffer m_frame;
    ffmpeg::Ptr<AVFrame> m_pConverted;
    ffmpeg::Ptr<SwsContext> m_pScaler; // for pictures like m_scalerSource
    ScalerSource m_scalerSource;
};
