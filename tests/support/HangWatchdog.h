// Ends the program when a test hangs: a GUI thread that waits for a lock of its own asserts nothing.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

namespace xelttest {

#if defined(__has_feature)
#define XELT_TEST_HAS_FEATURE(name) __has_feature(name)
#else
#define XELT_TEST_HAS_FEATURE(name) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    XELT_TEST_HAS_FEATURE(address_sanitizer) || XELT_TEST_HAS_FEATURE(thread_sanitizer)
constexpr bool k_blSanitized = true;
#else
constexpr bool k_blSanitized = false;
#endif

// A member of a fixture. Names the running test when it is not over within the limit.
class HangWatchdog
{
public:
    explicit HangWatchdog(std::chrono::seconds limit = std::chrono::seconds(k_blSanitized ? 300 : 60))
        : m_thread([this, limit, sTest = runningTest()] { watch(limit, sTest); })
    {
    }
    ~HangWatchdog()
    {
        {
            const std::lock_guard<std::mutex> guard(m_mutex);
            m_blOver = true;
        }
        m_over.notify_one();
        m_thread.join();
    }
    HangWatchdog(const HangWatchdog &) = delete;
    HangWatchdog &operator=(const HangWatchdog &) = delete;

private:
    static std::string runningTest()
    {
        const auto *pTest = testing::UnitTest::GetInstance()->current_test_info();
        return pTest == nullptr ? "?" : std::string(pTest->test_suite_name()) + "." + pTest->name();
    }

    void watch(std::chrono::seconds limit, const std::string &sTest)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_over.wait_for(lock, limit, [this] { return m_blOver; })) {
            std::fprintf(stderr, "%s hangs\n", sTest.c_str());
            std::fflush(nullptr);
            std::_Exit(1);
        }
    }

    std::mutex m_mutex; // guards m_blOver
    std::condition_variable m_over;
    bool m_blOver = false;
    std::thread m_thread;
};

} // namespace xelttest
