// Calls on other threads, with the time they took.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <thread>

namespace xelttest {

using Milliseconds = std::chrono::milliseconds;

// A wait that a limit ends may be a little short by the clock's grain; the upper bound only has to tell a
// limit from no limit on a busy machine.
constexpr Milliseconds k_clockGrain{20};
constexpr Milliseconds k_busyMachine{5000};

struct Timed
{
    int32_t nResult;
    Milliseconds duration;

    bool lasted(Milliseconds limit) const
    {
        return duration >= limit - k_clockGrain && duration < limit + k_busyMachine;
    }
};

inline Timed timed(const std::function<int32_t()> &call)
{
    const auto start = std::chrono::steady_clock::now();
    const int32_t nResult = call();
    return {nResult, std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start)};
}

// A call on a thread of its own.
class Background
{
public:
    explicit Background(std::function<int32_t()> call)
        : m_thread([this, call = std::move(call)] {
              m_timed = timed(call);
              m_blDone = true;
          })
    {
    }
    ~Background()
    {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }
    Background(const Background &) = delete;
    Background &operator=(const Background &) = delete;

    bool isDone() const { return m_blDone; }
    Timed join()
    {
        m_thread.join();
        return m_timed;
    }

private:
    Timed m_timed{};
    std::atomic<bool> m_blDone{false};
    std::thread m_thread;
};

} // namespace xelttest
