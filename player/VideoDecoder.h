#pragma once

#include "FfmpegPtr.h"
#include "VideoSource.h"

#include <QString>

// Decodes the best video stream of one file. Not shared between threads.
class VideoDecoder
{
public:
    using Step = VideoSource::Step;

    // nThreads: for the codec; 0 lets it choose. On failure problem() says why. May be called again, which
    // starts at the beginning.
    bool open(const QString &strFile, int nThreads);

    // After Frame, frame() and frameSeconds() tell about the new picture; after Broken, problem() says what
    // is wrong with the file.
    Step next();

    const AVFrame &frame() const { return *m_pFrame; }

    // From the beginning of the stream to this picture.
    double frameSeconds() const { return m_seconds; }

    // How long a picture is shown.
    double frameDuration() const { return m_frameDuration; }

    // Goes behind the name of the file.
    const QString &problem() const { return m_strProblem; }

private:
    bool openStream(const QString &strFile);
    bool openCodec(const AVCodec *pCodec, int nThreads);
    bool feedPacket();
    Step atEnd();
    void noteTime();

    ffmpeg::Ptr<AVFormatContext> m_pFormat;
    ffmpeg::Ptr<AVCodecContext> m_pCodec;
    ffmpeg::Ptr<AVPacket> m_pPacket;
    ffmpeg::Ptr<AVFrame> m_pFrame;
    AVStream *m_pStream = nullptr; // the format context's
    const AVCodec *m_pDecoder = nullptr;
    QString m_strProblem;
    double m_seconds = 0.0;
    double m_frameDuration = 0.04;
    qint64 m_nPackets = 0;
    qint64 m_nDamaged = 0;
    qint64 m_nFrames = 0;
    int m_nReadError = 0;
};
