#include "softd3d11/egl/CallFaults.h"

#include "softd3d11/egl/WatchedCode.h"

#include <EGL/egl.h>
#include <algorithm>

namespace softegl {

CallFaults &CallFaults::Instance()
{
    // Never destroyed: EGL is used until the last static object of the process is gone.
    static CallFaults &s_faults = *new CallFaults;
    return s_faults;
}

std::optional<std::int32_t> CallFaults::Arrive(Call call, const void *pReturnAddress) noexcept
{
    if (!IsWatched(pReturnAddress)) {
        return std::nullopt;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    Entry &entry = m_entries[static_cast<std::size_t>(call)];
    ++entry.nCount;
    if (m_nOrdered < m_order.size()) {
        m_order[m_nOrdered++] = call;
    }
    if (entry.nFailing == 0) {
        return std::nullopt;
    }
    if (entry.nPassing > 0) {
        --entry.nPassing;
        return std::nullopt;
    }
    if (entry.nFailing != kAlways) {
        --entry.nFailing;
    }
    return entry.nError;
}

std::uint64_t CallFaults::Count(Call call) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return call < Call::Count ? m_entries[static_cast<std::size_t>(call)].nCount : 0;
}

void CallFaults::ResetCounts() noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (Entry &entry : m_entries) {
        entry.nCount = 0;
    }
    m_nOrdered = 0;
}

std::size_t CallFaults::InOrder(Call *pCalls, std::size_t nCapacity) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (pCalls != nullptr) {
        std::copy_n(m_order.begin(), std::min(nCapacity, m_nOrdered), pCalls);
    }
    return m_nOrdered;
}

bool CallFaults::Fail(Call call, std::int32_t nError, unsigned nNth, unsigned nTimes) noexcept
{
    if (call >= Call::Count || nError <= EGL_SUCCESS || nError > EGL_CONTEXT_LOST || nNth == 0 ||
        nTimes == 0) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    Entry &entry = m_entries[static_cast<std::size_t>(call)];
    entry.nError = nError;
    entry.nPassing = nNth - 1;
    entry.nFailing = nTimes;
    return true;
}

void CallFaults::Clear() noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (Entry &entry : m_entries) {
        entry.nFailing = 0;
    }
}

// The part of SoftEgl.h that is nothing else, whatever EGL lies behind.
std::uint64_t CallCount(Call call) noexcept
{
    return CallFaults::Instance().Count(call);
}

void ResetCallCounts() noexcept
{
    CallFaults::Instance().ResetCounts();
}

std::size_t CallsInOrder(Call *pCalls, std::size_t nCapacity) noexcept
{
    return CallFaults::Instance().InOrder(pCalls, nCapacity);
}

bool FailCall(Call call, std::int32_t nError, unsigned nNth, unsigned nTimes) noexcept
{
    return CallFaults::Instance().Fail(call, nError, nNth, nTimes);
}

} // namespace softegl
