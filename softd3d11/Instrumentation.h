// What the counted methods go through (Methods.inc names them), and the bookkeeping of living objects.
// Thread-safe.
#pragma once

#include "softd3d11/SoftD3D11.h"

#include <new>

namespace softd3d11 {

// One call of a method: counts it and draws whether it is to fail. Lives on the stack of the method, which
// clears its results, then fails where it must, and only then looks at its arguments.
class Call
{
public:
    explicit Call(Method method) noexcept;

    // The failure that was asked for, or S_OK.
    HRESULT Injected() const noexcept { return m_hrInjected; }

    // Counts the call among the refused ones and passes the result on.
    HRESULT Refuse(HRESULT hr = E_INVALIDARG) const noexcept;

private:
    Method m_method;
    HRESULT m_hrInjected;
};

// Counts a call that cannot fail.
void CountCall(Method method) noexcept;

namespace live {

void AddDevice(const ID3D11Device *pDevice); // throws std::bad_alloc
void RemoveDevice(const ID3D11Device *pDevice) noexcept;
// pDevice is a device that has been added.
void AddChild(const ID3D11Device *pDevice) noexcept;
void RemoveChild(const ID3D11Device *pDevice) noexcept;

} // namespace live

// What every method does first of all to where its result goes, which may be nowhere.
template <class Result> void ClearResult(Result *pResult) noexcept
{
    if (pResult != nullptr) {
        *pResult = Result();
    }
}

// Runs what may run out of memory. No exception leaves a method.
template <class Action> HRESULT WithoutExceptions(Action &&action) noexcept
{
    try {
        return action();
    } catch (const std::bad_alloc &) {
        return E_OUTOFMEMORY;
    }
}

} // namespace softd3d11
