#pragma once

#include "FrameLayout.h"
#include "Pacer.h"
#include "TextureFrames.h"
#include "VideoSource.h"

#include <XeltRender.hpp>

#include <QObject>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

struct DecodeSettings
{
    FrameLayout layout = FrameLayout::Yv12;
    bool blLoop = false;
    bool blFast = false;
    std::optional<qint64> frames;
};

struct FrameCounts
{
    qint64 nDecoded = 0;
    qint64 nPushed = 0; // taken by the renderer
    qint64 nRefused = 0;
    double perSecond = 0.0; // pushed, while not paused
};

// Takes pictures from one source on a thread of its own and pushes them into one renderer, in time. The renderer
// must outlive the thread. Functions that name no thread belong to the thread that made the object.
class DecodeThread : public QObject
{
    Q_OBJECT

public:
    // The source, which must not be null, makes frames of the layout in the settings.
    DecodeThread(const DecodeSettings &settings, std::unique_ptr<VideoSource> pSource,
                 const xelt::Renderer &renderer);

    // As stop() and wait().
    ~DecodeThread() override;

    void start();

    // Returns after the frame in progress; none is pushed from then on until setPaused(false).
    void setPaused(bool blPaused);

    // Asks the thread to end; wait() waits for it, at most for the frame in progress.
    void stop();
    void wait();

    // Time in the stream of the last frame. Any thread.
    double position() const { return m_position; }

    // These two only after wait(). The problem goes behind the name of the source; empty: none.
    const FrameCounts &counts() const { return m_counts; }
    const QString &problem() const { return m_strProblem; }

Q_SIGNALS:
    // The renderer has taken a picture of this size: the first, the first after a pause, or one of new size.
    void pictureShown(int nWidth, int nHeight);
    // The thread has nothing more to do.
    void ended();

private:
    void run();
    void playAll();
    bool playOnce();
    bool playFrame();
    bool show(const VideoFrameDesc &frame, double seconds);
    bool waitUntilDue(std::unique_lock<std::mutex> &guard, double seconds);
    void noteShown(const VideoFrameDesc &frame);
    bool reachedLast() const;

    const DecodeSettings m_settings;
    const std::unique_ptr<VideoSource> m_pSource;
    const xelt::Renderer &m_renderer;
    std::optional<TextureFrames> m_textures; // where the frames go that way
    Pacer m_pacer;
    FrameCounts m_counts;
    QString m_strProblem;
    double m_loopStart = 0.0; // time of the current pass through the stream
    double m_activeSeconds = 0.0;
    std::optional<Pacer::Clock::time_point> m_lastPush;
    int m_nWidth = 0;
    int m_nHeight = 0;
    std::atomic<double> m_position{0.0};

    std::mutex m_mutex; // guards the flags below and is held while a frame is pushed
    std::condition_variable m_changed;
    bool m_blPaused = false;
    bool m_blStop = false;
    bool m_blAnnounce = true;

    std::thread m_thread;
};
