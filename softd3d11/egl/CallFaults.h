#pragma once

#include "softd3d11/SoftEgl.h"

#include <array>
#include <mutex>
#include <optional>

namespace softegl {

// Counts calls and decides which of them fail. Thread-safe.
class CallFaults
{
public:
    static CallFaults &Instance();

    // Takes note of a call that returns to pReturnAddress. The error that it must fail with, if it must.
    std::optional<std::int32_t> Arrive(Call call, const void *pReturnAddress) noexcept;

    std::uint64_t Count(Call call) noexcept;
    void ResetCounts() noexcept;
    std::size_t InOrder(Call *pCalls, std::size_t nCapacity) noexcept;
    bool Fail(Call call, std::int32_t nError, unsigned nNth, unsigned nTimes) noexcept;
    void Clear() noexcept;

private:
    struct Entry
    {
        std::uint64_t nCount = 0;
        std::int32_t nError = 0;
        unsigned nPassing = 0; // calls that still succeed before the first failure
        unsigned nFailing = 0; // failures to come after these
    };

    CallFaults() = default;

    std::mutex m_mutex;
    std::array<Entry, static_cast<std::size_t>(Call::Count)> m_entries;
    std::array<Call, kCallsKept> m_order{};
    std::size_t m_nOrdered = 0;
};

} // namespace softegl
