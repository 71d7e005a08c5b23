#include "softd3d11/Instrumentation.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <mutex>

namespace softd3d11 {

namespace {

constexpr auto kMethods = static_cast<std::size_t>(Method::Count);

struct MethodInfo
{
    const char *pName;
    bool blCanFail;
};

constexpr MethodInfo kMethodInfo[] = {
#define SOFTD3D11_METHOD(id, name, fails) {name, fails},
#include "softd3d11/Methods.inc"
#undef SOFTD3D11_METHOD
};
static_assert(std::size(kMethodInfo) == kMethods);

struct PlannedFailure
{
    HRESULT hr = S_OK;
    unsigned nSkip = 0;  // calls to let pass
    unsigned nTimes = 0; // failures left
};

struct Book
{
    std::array<std::atomic<std::uint64_t>, kMethods> calls{};
    std::array<std::atomic<std::uint64_t>, kMethods> refused{};
    std::mutex mutexFailures;
    std::array<PlannedFailure, kMethods> failures{};
    std::atomic<std::size_t> nLive{0};
    std::mutex mutexDevices;
    std::map<const ID3D11Device *, std::size_t> childrenOfDevice;
};

// Never destroyed: objects may be released while static objects of the host are being destroyed.
Book &TheBook()
{
    static Book &book = *new Book;
    return book;
}

constexpr std::size_t IndexOf(Method method)
{
    return static_cast<std::size_t>(method);
}

HRESULT DrawFailure(Method method)
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexFailures);
    PlannedFailure &failure = book.failures[IndexOf(method)];
    if (failure.nTimes == 0) {
        return S_OK;
    }
    if (failure.nSkip > 0) {
        --failure.nSkip;
        return S_OK;
    }
    if (failure.nTimes != kAlways) {
        --failure.nTimes;
    }
    return failure.hr;
}

} // namespace

Call::Call(Method method) noexcept : m_method(method), m_hrInjected(S_OK)
{
    TheBook().calls[IndexOf(method)].fetch_add(1, std::memory_order_relaxed);
    if (kMethodInfo[IndexOf(method)].blCanFail) {
        m_hrInjected = DrawFailure(method);
    }
}

HRESULT Call::Refuse(HRESULT hr) const noexcept
{
    TheBook().refused[IndexOf(m_method)].fetch_add(1, std::memory_order_relaxed);
    return hr;
}

void CountCall(Method method) noexcept
{
    TheBook().calls[IndexOf(method)].fetch_add(1, std::memory_order_relaxed);
}

const char *MethodName(Method method) noexcept
{
    return method < Method::Count ? kMethodInfo[IndexOf(method)].pName : "";
}

bool CanFail(Method method) noexcept
{
    return method < Method::Count && kMethodInfo[IndexOf(method)].blCanFail;
}

std::uint64_t CallCount(Method method) noexcept
{
    return method < Method::Count ? TheBook().calls[IndexOf(method)].load(std::memory_order_relaxed) : 0;
}

std::uint64_t RefusedCallCount(Method method) noexcept
{
    return method < Method::Count ? TheBook().refused[IndexOf(method)].load(std::memory_order_relaxed) : 0;
}

void ResetCallCounts() noexcept
{
    for (std::size_t i = 0; i < kMethods; ++i) {
        TheBook().calls[i].store(0, std::memory_order_relaxed);
        TheBook().refused[i].store(0, std::memory_order_relaxed);
    }
}

bool FailCall(Method method, HRESULT hr, unsigned nNth, unsigned nTimes) noexcept
{
    if (!CanFail(method) || SUCCEEDED(hr) || nNth == 0 || nTimes == 0) {
        return false;
    }
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexFailures);
    book.failures[IndexOf(method)] = {hr, nNth - 1, nTimes};
    return true;
}

void ClearFailures() noexcept
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexFailures);
    book.failures.fill({});
}

std::size_t LiveObjects() noexcept
{
    return TheBook().nLive.load();
}

std::size_t LiveObjects(const ID3D11Device *pDevice) noexcept
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexDevices);
    const auto found = book.childrenOfDevice.find(pDevice);
    return found != book.childrenOfDevice.end() ? found->second : 0;
}

void live::AddDevice(const ID3D11Device *pDevice)
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexDevices);
    book.childrenOfDevice.emplace(pDevice, 0);
    ++book.nLive;
}

void live::RemoveDevice(const ID3D11Device *pDevice) noexcept
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexDevices);
    book.childrenOfDevice.erase(pDevice);
    --book.nLive;
}

void live::AddChild(const ID3D11Device *pDevice) noexcept
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexDevices);
    ++book.childrenOfDevice.find(pDevice)->second;
    ++book.nLive;
}

void live::RemoveChild(const ID3D11Device *pDevice) noexcept
{
    Book &book = TheBook();
    const std::lock_guard<std::mutex> lock(book.mutexDevices);
    --book.childrenOfDevice.find(pDevice)->second;
    --book.nLive;
}

} // namespace softd3d11
