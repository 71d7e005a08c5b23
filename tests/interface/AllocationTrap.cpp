#include "AllocationTrap.h"

#include "System.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace xelttest {

namespace {

thread_local AllocationTrap *t_pTrap = nullptr;

void *allocate(AllocationTrap::Form form, size_t nSize, const void *pCaller)
{
    return AllocationTrap::passes(form, nSize, pCaller) ? std::malloc(nSize != 0 ? nSize : 1) : nullptr;
}

void *allocateOrThrow(size_t nSize, const void *pCaller)
{
    if (void *pMemory = allocate(AllocationTrap::Form::Throwing, nSize, pCaller)) {
        return pMemory;
    }
    throw std::bad_alloc();
}

} // namespace

AllocationTrap::AllocationTrap(Form form, size_t nSmallest, size_t nLargest, std::function<bool()> action)
    : m_form(form), m_nSmallest(nSmallest), m_nLargest(nLargest), m_action(std::move(action))
{
    static const bool s_blReady = (setLibraryAllocator(&operator new, &operator new), true);
    t_pTrap = s_blReady ? this : nullptr;
}

AllocationTrap::~AllocationTrap()
{
    if (t_pTrap == this) {
        t_pTrap = nullptr;
    }
}

bool AllocationTrap::passes(Form form, size_t nSize, const void *pCaller)
{
    AllocationTrap *pTrap = t_pTrap;
    if (pTrap == nullptr || form != pTrap->m_form || nSize < pTrap->m_nSmallest ||
        nSize > pTrap->m_nLargest || !isOurCode(pCaller)) {
        return true;
    }
    t_pTrap = nullptr;
    pTrap->m_blSprung = true;
    return pTrap->m_action();
}

} // namespace xelttest

using xelttest::AllocationTrap;

void *operator new(size_t nSize)
{
    return xelttest::allocateOrThrow(nSize, __builtin_return_address(0));
}

void *operator new[](size_t nSize)
{
    return xelttest::allocateOrThrow(nSize, __builtin_return_address(0));
}

void *operator new(size_t nSize, const std::nothrow_t &) noexcept
{
    return xelttest::allocate(AllocationTrap::Form::NoThrow, nSize, __builtin_return_address(0));
}

void *operator new[](size_t nSize, const std::nothrow_t &) noexcept
{
    return xelttest::allocate(AllocationTrap::Form::NoThrow, nSize, __builtin_return_address(0));
}

void operator delete(void *pMemory) noexcept
{
    std::free(pMemory);
}

void operator delete[](void *pMemory) noexcept
{
    std::free(pMemory);
}

void operator delete(void *pMemory, size_t) noexcept
{
    std::free(pMemory);
}

void operator delete[](void *pMemory, size_t) noexcept
{
    std::free(pMemory);
}

void operator delete(void *pMemory, const std::nothrow_t &) noexcept
{
    std::free(pMemory);
}

void operator delete[](void *pMemory, const std::nothrow_t &) noexcept
{
    std::free(pMemory);
}
