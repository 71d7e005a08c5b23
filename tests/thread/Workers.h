// Host threads of a test: decoders, parameter setters and the like.
#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace xelttest {

// Threads that run until they end by themselves or are told to stop. Used on the GUI thread.
class Workers
{
public:
    using Body = std::function<void(const std::atomic<bool> &blStop)>;

    Workers() = default;
    ~Workers() { stop(); }
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    void start(Body body)
    {
        ++m_nRunning;
        m_vecThreads.emplace_back([this, body = std::move(body)] {
            body(m_blStop);
            --m_nRunning;
        });
    }

    // How many have not ended yet. Orders what an ended thread did before the call.
    int running() const { return m_nRunning; }

    // Tells all to stop and waits for their end. A thread that waits for the GUI thread would wait in vain.
    void stop()
    {
        m_blStop = true;
        for (std::thread &thread : m_vecThreads) {
            thread.join();
        }
        m_vecThreads.clear();
        m_blStop = false;
    }

private:
    std::atomic<bool> m_blStop{false};
    std::atomic<int> m_nRunning{0};
    std::vector<std::thread> m_vecThreads;
};

// Lets the threads start together.
class StartLine
{
public:
    explicit StartLine(int nThreads) : m_nMissing(nThreads) {}

    void wait()
    {
        --m_nMissing;
        while (m_nMissing > 0) {
            std::this_thread::yield();
        }
    }

private:
    std::atomic<int> m_nMissing;
};

} // namespace xelttest
