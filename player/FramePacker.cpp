#include "FramePacker.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <new>
#include <utility>

namespace {

bool isFullRange(const AVFrame &picture)
{
    return picture.color_range == AVCOL_RANGE_JPEG || picture.format == AV_PIX_FMT_YUVJ420P ||
           picture.format == AV_PIX_FMT_YUVJ422P || picture.format == AV_PIX_FMT_YUVJ444P;
}

} // namespace

const VideoFrameDesc *FramePacker::pack(const AVFrame &picture)
{
    const AVFrame *pPlanes = convert(picture);
    if (pPlanes == nullptr) {
        return nullptr;
    }
    m_frame.fit(picture.width, picture.height);
    const int nPlanes = m_frame.isInterleaved() ? 2 : 3;
    for (int i = 0; i < nPlanes; ++i) {
        const FrameBuffer::Component to = m_frame.component(i);
        av_image_copy_plane(to.pData, to.nPitch, pPlanes->data[i], pPlanes->linesize[i], to.nWidth * to.nStep,
                            to.nHeight);
    }
    return &m_frame.desc();
}

AVPixelFormat FramePacker::wantedFormat() const
{
    return m_frame.isInterleaved() ? AV_PIX_FMT_NV12 : AV_PIX_FMT_YUV420P;
}

// The picture itself when its planes fit as they are. Both picture programs take the limited range.
const AVFrame *FramePacker::convert(const AVFrame &picture)
{
    const bool blFullRange = isFullRange(picture);
    const int nWidth = FrameBuffer::fittingWidth(picture.width, m_layout);
    const int nHeight = FrameBuffer::fittingHeight(picture.height);
    const bool blBigEnough = picture.width >= nWidth && picture.height >= nHeight;
    if (picture.format == wantedFormat() && !blFullRange && blBigEnough) {
        return &picture;
    }
    if (!prepareConverted(nWidth, nHeight) || !prepareScaler(picture, blFullRange)) {
        return nullptr;
    }
    const int nRows = std::min(picture.height, nHeight);
    const int nDone = sws_scale(m_pScaler.get(), picture.data, picture.linesize, 0, nRows, m_pConverted->data,
                                m_pConverted->linesize);
    return nDone == nHeight ? m_pConverted.get() : nullptr;
}

// The scaler may write a little beyond a row, so it gets a frame with FFmpeg's own padding.
bool FramePacker::prepareConverted(int nWidth, int nHeight)
{
    if (m_pConverted && m_pConverted->width == nWidth && m_pConverted->height == nHeight) {
        return true;
    }
    m_pScaler.reset(); // it knows the size
    m_pConverted.reset(av_frame_alloc());
    if (!m_pConverted) {
        throw std::bad_alloc();
    }
    m_pConverted->format = wantedFormat();
    m_pConverted->width = nWidth;
    m_pConverted->height = nHeight;
    if (av_frame_get_buffer(m_pConverted.get(), 0) < 0) {
        m_pConverted.reset();
        return false;
    }
    return true;
}

bool FramePacker::prepareScaler(const AVFrame &picture, bool blFullRange)
{
    const ScalerSource source{picture.width, picture.height, picture.format, blFullRange};
    if (m_pScaler && source == m_scalerSource) {
        return true;
    }
    m_pScaler.reset(sws_alloc_context());
    if (!m_pScaler) {
        throw std::bad_alloc();
    }
    // The ranges have to be known before the context chooses its way.
    const std::pair<const char *, int> settings[] = {
        {"srcw", std::min(picture.width, m_pConverted->width)},
        {"srch", std::min(picture.height, m_pConverted->height)},
        {"src_format", picture.format},
        {"src_range", blFullRange ? 1 : 0},
        {"dstw", m_pConverted->width},
        {"dsth", m_pConverted->height},
        {"dst_format", m_pConverted->format},
        {"dst_range", 0},
        {"sws_flags", SWS_BILINEAR},
    };
    bool blOk = true;
    for (const auto &[pszName, nValue] : settings) {
        blOk = blOk && av_opt_set_int(m_pScaler.get(), pszName, nValue, 0) >= 0;
    }
    if (!blOk || sws_init_context(m_pScaler.get(), nullptr, nullptr) < 0) {
        m_pScaler.reset();
        return false;
    }
    m_scalerSource = source;
    return true;
}
