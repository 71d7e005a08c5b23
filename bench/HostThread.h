#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

// A thread that stands for a host's decoding thread. Run may be called from one thread at a time.
class HostThread
{
public:
    HostThread();
    ~HostThread();
    HostThread(const HostThread &) = delete;
    HostThread &operator=(const HostThread &) = delete;

    // Runs the job on the thread and waits for its end.
    void Run(std::function<void()> job);

private:
    void Loop();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::function<void()> m_job; // empty: nothing to do
    bool m_blQuit = false;
    std::thread m_thread;
};
