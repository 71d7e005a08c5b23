// Owning pointers to FFmpeg's objects.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace ffmpeg {

struct Deleter
{
    void operator()(AVFormatContext *p) const { avformat_close_input(&p); }
    void operator()(AVCodecContext *p) const { avcodec_free_context(&p); }
    void operator()(AVPacket *p) const { av_packet_free(&p); }
    void operator()(AVFrame *p) const { av_frame_free(&p); }
    void operator()(SwsContext *p) const { sws_freeContext(p); }
};

template <typename Object> using Ptr = std::unique_ptr<Object, Deleter>;

} // namespace ffmpeg
