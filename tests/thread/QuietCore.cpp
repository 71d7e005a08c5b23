// The core library of the thread tests. It takes no lock and orders no memory: one that does would order the
// threads that log through it, and so hide the races that these tests are there to find.
#include <atomic>
#include <cstdint>

namespace {

std::atomic<uint64_t> g_nCalls{0};

int32_t count()
{
    g_nCalls.fetch_add(1, std::memory_order_relaxed);
    return 0;
}

} // namespace

#define QUIET_EXPORT extern "C" __attribute__((visibility("default")))

QUIET_EXPORT int32_t sdk_log_msg(const char *)
{
    return count();
}

QUIET_EXPORT int32_t sdk_log_buf_lock()
{
    return count();
}

QUIET_EXPORT int32_t sdk_log_buf_date()
{
    return count();
}

QUIET_EXPORT int32_t sdk_log_buf_msg(const char *)
{
    return count();
}

QUIET_EXPORT int32_t sdk_err_buf_msg_unlock(const char *)
{
    return count();
}

// Everything is wanted, so that the messages are formatted.
QUIET_EXPORT int32_t sdk_log_get_level(int32_t *pFirst, int32_t *pSecond)
{
    *pFirst = 200;
    *pSecond = 0;
    return count();
}
