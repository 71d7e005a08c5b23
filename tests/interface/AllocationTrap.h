// Runs code inside one chosen allocation, and may make it fail. This file's source replaces the global
// allocation functions of the program, which the library under test uses too.
#pragma once

#include <cstddef>
#include <functional>

namespace xelttest {

// Springs on the first allocation of its own thread that has the form and a size within the limits, once. What
// other libraries allocate does not count: the driver's compiler makes small objects too when it sees fit.
class AllocationTrap
{
public:
    enum class Form { Throwing, NoThrow };

    // The action says whether the allocation goes on; otherwise it fails. It runs with no trap set and may
    // set another one.
    AllocationTrap(Form form, size_t nSmallest, size_t nLargest, std::function<bool()> action);
    ~AllocationTrap();
    AllocationTrap(const AllocationTrap &) = delete;
    AllocationTrap &operator=(const AllocationTrap &) = delete;

    bool hasSprung() const { return m_blSprung; }

    // For the allocation functions: false when the allocation has to fail.
    static bool passes(Form form, size_t nSize, const void *pCaller);

private:
    Form m_form;
    size_t m_nSmallest;
    size_t m_nLargest;
    std::function<bool()> m_action;
    bool m_blSprung = false;
};

} // namespace xelttest
