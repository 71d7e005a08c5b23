#include "FailingCalloc.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<bool> g_blFails{false};
std::atomic<int> g_nFailures{0};

} // namespace

extern "C" {

void *__real_calloc(size_t nCount, size_t nSize); // NOLINT: the linker's name
void *__wrap_calloc(size_t nCount, size_t nSize); // NOLINT

void *__wrap_calloc(size_t nCount, size_t nSize) // NOLINT
{
    if (g_blFails) {
        ++g_nFailures;
        return nullptr;
    }
    return __real_calloc(nCount, nSize);
}
}

FailingCalloc::FailingCalloc()
{
    g_nFailures = 0;
    g_blFails = true;
}

FailingCalloc::~FailingCalloc()
{
    g_blFails = false;
}

int FailingCalloc::failures() const
{
    return g_nFailures;
}
