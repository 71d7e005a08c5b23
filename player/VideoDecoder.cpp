#include "VideoDecoder.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <new>

namespace {

QString errorText(int nError)
{
    char szText[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(nError, szText, sizeof(szText));
    return QString::fromLocal8Bit(szText);
}

// A local name may hold what FFmpeg would take for a protocol.
QByteArray urlOf(const QString &strFile)
{
    const QByteArray name = QFile::encodeName(strFile);
    return QFileInfo::exists(strFile) ? QByteArrayLiteral("file:") + name : name;
}

} // namespace

bool VideoDecoder::open(const QString &strFile, int nThreads)
{
    m_pCodec.reset();
    m_pFormat.reset();
    m_strProblem.clear();
    m_seconds = 0.0;
    m_nPackets = m_nDamaged = m_nFrames = 0;
    m_nReadError = 0;
    m_pPacket.reset(av_packet_alloc());
    m_pFrame.reset(av_frame_alloc());
    if (!m_pPacket || !m_pFrame) {
        throw std::bad_alloc();
    }
    return openStream(strFile) && openCodec(m_pDecoder, nThreads);
}

bool VideoDecoder::openStream(const QString &strFile)
{
    AVFormatContext *pFormat = nullptr;
    int nResult = avformat_open_input(&pFormat, urlOf(strFile).constData(), nullptr, nullptr);
    m_pFormat.reset(pFormat);
    if (nResult >= 0) {
        nResult = avformat_find_stream_info(pFormat, nullptr);
    }
    if (nResult < 0) {
        m_strProblem = QStringLiteral("cannot be opened: %1").arg(errorText(nResult));
        return false;
    }
    nResult = av_find_best_stream(pFormat, AVMEDIA_TYPE_VIDEO, -1, -1, &m_pDecoder, 0);
    if (nResult < 0) {
        m_strProblem = QStringLiteral("holds no video that can be decoded");
        return false;
    }
    m_pStream = pFormat->streams[nResult];
    for (unsigned i = 0; i < pFormat->nb_streams; ++i) {
        pFormat->streams[i]->discard = pFormat->streams[i] == m_pStream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    const AVRational rate = av_guess_frame_rate(pFormat, m_pStream, nullptr);
    m_frameDuration = rate.num > 0 && rate.den > 0 ? av_q2d(av_inv_q(rate)) : 0.04;
    return true;
}

bool VideoDecoder::openCodec(const AVCodec *pCodec, int nThreads)
{
    m_pCodec.reset(avcodec_alloc_context3(pCodec));
    if (!m_pCodec) {
        throw std::bad_alloc();
    }
    int nResult = avcodec_parameters_to_context(m_pCodec.get(), m_pStream->codecpar);
    m_pCodec->pkt_timebase = m_pStream->time_base;
    m_pCodec->thread_count = nThreads;
    if (nResult >= 0) {
        nResult = avcodec_open2(m_pCodec.get(), pCodec, nullptr);
    }
    if (nResult < 0) {
        m_strProblem = QStringLiteral("its video cannot be decoded: %1").arg(errorText(nResult));
    }
    return nResult >= 0;
}

VideoDecoder::Step VideoDecoder::next()
{
    for (;;) {
        const int nResult = avcodec_receive_frame(m_pCodec.get(), m_pFrame.get());
        if (nResult == 0) {
            noteTime();
            ++m_nFrames;
            return Step::Frame;
        }
        if (nResult == AVERROR_EOF) {
            return atEnd();
        }
        if (nResult != AVERROR(EAGAIN)) {
            ++m_nDamaged; // one picture is lost; the next may be whole
            continue;
        }
        if (!feedPacket()) {
            return atEnd();
        }
    }
}

// Hands the decoder one packet of the stream, or the end of it. False when it takes nothing any more.
bool VideoDecoder::feedPacket()
{
    for (;;) {
        const int nRead = av_read_frame(m_pFormat.get(), m_pPacket.get());
        if (nRead < 0) {
            m_nReadError = nRead == AVERROR_EOF ? 0 : nRead;
            return avcodec_send_packet(m_pCodec.get(), nullptr) == 0;
        }
        const bool blOurs = m_pPacket->stream_index == m_pStream->index;
        int nSent = 0;
        if (blOurs) {
            ++m_nPackets;
            m_nDamaged += (m_pPacket->flags & AV_PKT_FLAG_CORRUPT) != 0 ? 1 : 0;
            nSent = avcodec_send_packet(m_pCodec.get(), m_pPacket.get());
        }
        av_packet_unref(m_pPacket.get());
        if (nSent < 0) {
            ++m_nDamaged;
        } else if (blOurs) {
            return true;
        }
    }
}

VideoDecoder::Step VideoDecoder::atEnd()
{
    // A container with an index of every packet tells when the file ends before them.
    const qint64 nIndexed = avformat_index_get_entries_count(m_pStream);
    if (m_nReadError != 0) {
        m_strProblem =
            QStringLiteral("breaks off after %1 frames: %2").arg(m_nFrames).arg(errorText(m_nReadError));
    } else if (m_nPackets < nIndexed) {
        m_strProblem = QStringLiteral("breaks off after %1 frames: %2 of %3 packets are there")
                           .arg(m_nFrames)
                           .arg(m_nPackets)
                           .arg(nIndexed);
    } else if (m_nDamaged > 0) {
        m_strProblem = QStringLiteral("is damaged in %1 places").arg(m_nDamaged);
    } else if (m_nFrames == 0) {
        m_strProblem = QStringLiteral("holds no picture");
    } else {
        return Step::End;
    }
    return Step::Broken;
}

void VideoDecoder::noteTime()
{
    const qint64 nStart = m_pStream->start_time == AV_NOPTS_VALUE ? 0 : m_pStream->start_time;
    const qint64 nStamp = m_pFrame->best_effort_timestamp;
    if (nStamp != AV_NOPTS_VALUE) {
        m_seconds = std::max(0.0, static_cast<double>(nStamp - nStart) * av_q2d(m_pStream->time_base));
    } else if (m_nFrames > 0) {
        m_seconds += m_frameDuration;
    }
}
