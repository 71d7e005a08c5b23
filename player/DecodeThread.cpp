#include "DecodeThread.h"

#include <exception>
#include <utility>

DecodeThread::DecodeThread(const DecodeSettings &settings, std::unique_ptr<VideoSource> pSource,
                           const xelt::Renderer &renderer)
    : m_settings(settings), m_pSource(std::move(pSource)), m_renderer(renderer)
{
    if (settings.layout == FrameLayout::Texture) {
        m_textures.emplace();
    }
}

DecodeThread::~DecodeThread()
{
    stop();
    wait();
}

void DecodeThread::start()
{
    m_thread = std::thread([this] { run(); });
}

void DecodeThread::wait()
{
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void DecodeThread::setPaused(bool blPaused)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_blAnnounce = m_blAnnounce || (m_blPaused && !blPaused);
    m_blPaused = blPaused;
    m_changed.notify_all();
}

void DecodeThread::stop()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_blStop = true;
    m_changed.notify_all();
}

void DecodeThread::run()
{
    try {
        playAll();
    } catch (const std::exception &error) {
        m_strProblem = QStringLiteral("cannot be played: %1").arg(QString::fromLocal8Bit(error.what()));
    }
    if (m_strProblem.isEmpty() && m_counts.nRefused > m_counts.nPushed) {
        m_strProblem = QStringLiteral("cannot be shown: the renderer refuses its pictures");
    }
    if (m_counts.nPushed > 1 && m_activeSeconds > 0.0) {
        m_counts.perSecond = static_cast<double>(m_counts.nPushed - 1) / m_activeSeconds;
    }
    Q_EMIT ended();
}

void DecodeThread::playAll()
{
    do {
        if (!m_pSource->open()) {
            m_strProblem = m_pSource->problem();
            return;
        }
    } while (playOnce() && m_settings.blLoop);
}

// True when the source came to its end and there is more to do.
bool DecodeThread::playOnce()
{
    for (;;) {
        switch (m_pSource->next()) {
        case VideoSource::Step::End:
            m_loopStart += m_pSource->frameSeconds() + m_pSource->frameDuration();
            return true;
        case VideoSource::Step::Broken:
            m_strProblem = m_pSource->problem();
            return false;
        case VideoSource::Step::Frame:
            if (!playFrame()) {
                return false;
            }
            break;
        }
    }
}

// False when there is nothing more to do.
bool DecodeThread::playFrame()
{
    ++m_counts.nDecoded;
    const VideoFrameDesc *pFrame = m_pSource->frame();
    if (pFrame == nullptr) {
        m_strProblem = QStringLiteral("holds a picture that cannot be converted");
        return false;
    }
    if (m_textures) {
        pFrame = m_textures->upload(*pFrame);
        if (pFrame == nullptr) {
            m_strProblem = QStringLiteral("holds a picture that no Direct3D 11 texture can hold");
            return false;
        }
    }
    return show(*pFrame, m_loopStart + m_pSource->frameSeconds()) && !reachedLast();
}

bool DecodeThread::reachedLast() const
{
    return m_settings.frames && m_counts.nDecoded >= *m_settings.frames;
}

// False when asked to stop.
bool DecodeThread::show(const VideoFrameDesc &frame, double seconds)
{
    std::unique_lock<std::mutex> guard(m_mutex);
    if (!waitUntilDue(guard, seconds)) {
        return false;
    }
    m_position = seconds;
    if (m_renderer.showFrame(frame)) {
        ++m_counts.nPushed;
        noteShown(frame);
    } else {
        ++m_counts.nRefused;
    }
    return true;
}

// Returns when the picture is due and no pause is on; false when asked to stop.
bool DecodeThread::waitUntilDue(std::unique_lock<std::mutex> &guard, double seconds)
{
    for (;;) {
        if (m_blPaused) {
            m_changed.wait(guard, [this] { return m_blStop || !m_blPaused; });
            m_pacer.restart();
            m_lastPush.reset();
        }
        if (m_settings.blFast || m_blStop) {
            return !m_blStop;
        }
        const auto due = m_pacer.due(seconds, Pacer::Clock::now());
        if (!m_changed.wait_until(guard, due, [this] { return m_blStop || m_blPaused; })) {
            return true;
        }
    }
}

// With m_mutex held.
void DecodeThread::noteShown(const VideoFrameDesc &frame)
{
    const auto now = Pacer::Clock::now();
    if (m_lastPush) {
        m_activeSeconds += std::chrono::duration<double>(now - *m_lastPush).count();
    }
    m_lastPush = now;
    if (m_blAnnounce || frame.iWidth != m_nWidth || frame.iHeight != m_nHeight) {
        m_blAnnounce = false;
        m_nWidth = frame.iWidth;
        m_nHeight = frame.iHeight;
        Q_EMIT pictureShown(m_nWidth, m_nHeight);
    }
}
