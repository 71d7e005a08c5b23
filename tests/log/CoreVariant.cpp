// A core library that tells standard output its name and what it is called with; with WITHOUT_... one of its
// functions is missing, or all of them.
#include <cstdio>

#define CORE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

[[maybe_unused]] int say(const char *pszFunction, const char *pszText)
{
    std::printf("[%s] %s(%s)\n", VARIANT_NAME, pszFunction, pszText);
    std::fflush(stdout);
    return 0;
}

} // namespace

#ifndef WITHOUT_all

#ifndef WITHOUT_sdk_log_msg
CORE_EXPORT int sdk_log_msg(const char *pszText)
{
    return say("sdk_log_msg", pszText);
}
#endif

#ifndef WITHOUT_sdk_log_buf_lock
CORE_EXPORT int sdk_log_buf_lock()
{
    return say("sdk_log_buf_lock", "");
}
#endif

#ifndef WITHOUT_sdk_log_buf_date
CORE_EXPORT int sdk_log_buf_date()
{
    return say("sdk_log_buf_date", "");
}
#endif

#ifndef WITHOUT_sdk_log_buf_msg
CORE_EXPORT int sdk_log_buf_msg(const char *pszText)
{
    return say("sdk_log_buf_msg", pszText);
}
#endif

#ifndef WITHOUT_sdk_err_buf_msg_unlock
CORE_EXPORT int sdk_err_buf_msg_unlock(const char *pszText)
{
    return say("sdk_err_buf_msg_unlock", pszText);
}
#endif

#ifndef WITHOUT_sdk_log_get_level
CORE_EXPORT int sdk_log_get_level(int *pFirst, int *pSecond)
{
    *pFirst = 200;
    *pSecond = 0;
    return 0;
}
#endif

// No other name is ever called.
#define CALLED(name)
#define OTHER(name)                 \
    CORE_EXPORT void name()         \
    {                               \
        say(#name, "NEVER CALLED"); \
    }
#include "CoreNames.inc"

#endif
