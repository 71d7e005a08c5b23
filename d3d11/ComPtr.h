#pragma once

#include "platform/Direct3D11.h"

#include <utility>

// A counted reference to a COM object: added when stored, released when replaced or dropped. It is as
// thread-safe as a plain pointer; the objects count their references themselves.
template <typename T> class ComPtr
{
public:
    ComPtr() = default;
    // Adds a reference of its own.
    explicit ComPtr(T *pObject) : m_pObject(pObject)
    {
        if (m_pObject != nullptr) {
            m_pObject->AddRef();
        }
    }
    ComPtr(const ComPtr &other) : ComPtr(other.m_pObject) {}
    ComPtr(ComPtr &&other) noexcept : m_pObject(std::exchange(other.m_pObject, nullptr)) {}
    ~ComPtr() { Reset(); }

    ComPtr &operator=(const ComPtr &other)
    {
        ComPtr(other).Swap(*this); // the new reference is added before the old one goes
        return *this;
    }
    ComPtr &operator=(ComPtr &&other) noexcept
    {
        ComPtr(std::move(other)).Swap(*this);
        return *this;
    }

    void Reset() noexcept
    {
        // Cleared first: the object's end may come back here.
        if (T *pObject = std::exchange(m_pObject, nullptr)) {
            pObject->Release();
        }
    }
    void Swap(ComPtr &other) noexcept { std::swap(m_pObject, other.m_pObject); }

    T *Get() const noexcept { return m_pObject; }
    T *operator->() const noexcept { return m_pObject; }
    explicit operator bool() const noexcept { return m_pObject != nullptr; }

    // For functions that hand out a reference: drops the one held and takes the new one in.
    T **ReleaseAndGetAddressOf() noexcept
    {
        Reset();
        return &m_pObject;
    }
    void **ReleaseAndGetVoidAddressOf() noexcept
    {
        return reinterpret_cast<void **>(ReleaseAndGetAddressOf());
    }

    // Asks for another interface of the object, which must not be null. What `to` held is released.
    template <typename U> HRESULT As(REFIID iid, ComPtr<U> &to) const
    {
        return m_pObject->QueryInterface(iid, to.ReleaseAndGetVoidAddressOf());
    }

private:
    T *m_pObject = nullptr;
};
