#include "HostThread.h"

#include <utility>

HostThread::HostThread() : m_thread([this] { Loop(); }) {}

HostThread::~HostThread()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_blQuit = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void HostThread::Run(std::function<void()> job)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_job = std::move(job);
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return !m_job; });
}

void HostThread::Loop()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_blQuit || m_job; });
        if (m_blQuit)
            return;
        lock.unlock();
        m_job();
        lock.lock();
        m_job = nullptr;
        m_changed.notify_all();
    }
}
