#include "FramePacker.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

namespace {

int evenSize(int nSize)
{
    return std::max(2, nSize & ~1);
}

// The renderers read rows of NV12 frames in steps of four bytes.
int packedWidth(int nWidth, FrameLayout layout)
{
    return layout == FrameLayout::Yv12 ? evenSize(nWidth) : std::max(4, nWidth & ~3);
}

int roundedUp(int nValue, int nMultiple)
{
    return (nValue + nMultiple - 1) / nMultiple * nMultiple;
}

bool isFullRange(const AVFrame &picture)
{
    return picture.color_range == AVCOL_RANGE_JPEG || picture.format == AV_PIX_FMT_YUVJ420P ||
           picture.format == AV_PIX_FMT_YUVJ422P || picture.format == AV_PIX_FMT_YUVJ444P;
}

std::size_t bytes(int nPitch, int nRows)
{
    return static_cast<std::size_t>(nPitch) * static_cast<std::size_t>(nRows);
}

} // namespace

const VideoFrameDesc *FramePacker::pack(const AVFrame &picture)
{
    const AVFrame *pPlanes = convert(picture);
    if (pPlanes == nullptr) {
        return nullptr;
    }
    m_desc = VideoFrameDesc{};
    m_desc.iWidth = packedWidth(picture.width, m_layout);
    m_desc.iHeight = evenSize(picture.height);
    switch (m_layout) {
    case FrameLayout::Yv12:
        packYv12(*pPlanes);
        break;
    case FrameLayout::Nv12:
    case FrameLayout::Texture:
        packNv12(*pPlanes);
        break;
    case FrameLayout::Nv12Padded:
        packNv12Padded(*pPlanes);
        break;
    }
    return &m_desc;
}

AVPixelFormat FramePacker::wantedFormat() const
{
    return m_layout == FrameLayout::Yv12 ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_NV12;
}

// The picture itself when its planes fit as they are. Both picture programs take the limited range.
const AVFrame *FramePacker::convert(const AVFrame &picture)
{
    const bool blFullRange = isFullRange(picture);
    const int nWidth = packedWidth(picture.width, m_layout);
    const int nHeight = evenSize(picture.height);
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

void FramePacker::packYv12(const AVFrame &picture)
{
    const int nWidth = m_desc.iWidth;
    const int nHeight = m_desc.iHeight;
    const std::size_t nLuma = bytes(nWidth, nHeight);
    m_buffer.resize(nLuma * 3 / 2);
    uint8_t *pLuma = m_buffer.data();
    av_image_copy_plane(pLuma, nWidth, picture.data[0], picture.linesize[0], nWidth, nHeight);
    for (int i = 1; i <= 2; ++i) {
        uint8_t *pChroma = pLuma + nLuma + (i == 2 ? nLuma / 4 : 0);
        av_image_copy_plane(pChroma, nWidth / 2, picture.data[i], picture.linesize[i], nWidth / 2,
                            nHeight / 2);
    }
    m_desc.nDisplayType = VIDEO_DISPLAY_YV12;
    m_desc.pFrameData = pLuma;
}

void FramePacker::packNv12(const AVFrame &picture)
{
    const int nWidth = m_desc.iWidth;
    const int nHeight = m_desc.iHeight;
    const std::size_t nLuma = bytes(nWidth, nHeight);
    m_buffer.resize(nLuma * 3 / 2);
    uint8_t *pLuma = m_buffer.data();
    av_image_copy_plane(pLuma, nWidth, picture.data[0], picture.linesize[0], nWidth, nHeight);
    av_image_copy_plane(pLuma + nLuma, nWidth, picture.data[1], picture.linesize[1], nWidth, nHeight / 2);
    m_desc.nDisplayType = VIDEO_DISPLAY_NV12;
    m_desc.pPlaneY = pLuma;
    m_desc.pPlaneUV = pLuma + nLuma;
}

void FramePacker::packNv12Padded(const AVFrame &picture)
{
    const int nWidth = m_desc.iWidth;
    const int nHeight = m_desc.iHeight;
    const int nPitch = roundedUp(nWidth, 64) + 64;
    const int nRows = roundedUp(nHeight, 16);
    const std::size_t nLuma = bytes(nPitch, nRows);
    m_buffer.resize(nLuma * 3 / 2);
    uint8_t *pLuma = m_buffer.data();
    av_image_copy_plane(pLuma, nPitch, picture.data[0], picture.linesize[0], nWidth, nHeight);
    av_image_copy_plane(pLuma + nLuma, nPitch, picture.data[1], picture.linesize[1], nWidth, nHeight / 2);
    m_desc.nDisplayType = VIDEO_DISPLAY_NV12;
    m_desc.pFrameData = pLuma;
    m_desc.nPitch = nPitch;
}
