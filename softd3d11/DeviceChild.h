#pragma once

#include "softd3d11/ComRef.h"
#include "softd3d11/Instrumentation.h"

#include <atomic>
#include <utility>

namespace softd3d11 {

// Reference count, parent device and the like for an Object that a device makes. It is born with one
// reference. Object has kClassId, a GUID that nobody else knows and by which Unwrap finds it; kQueryMethod;
// and FindInterface, which gives the pointer for an interface without a reference, or null.
template <class Object, class Interface> class DeviceChild : public Interface
{
public:
    DeviceChild(const DeviceChild &) = delete;
    DeviceChild &operator=(const DeviceChild &) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppObject) override
    {
        if (ppObject != nullptr && riid == Object::kClassId) {
            AddRef();
            *ppObject = static_cast<Object *>(this);
            return S_OK;
        }
        const Call call(Object::kQueryMethod);
        ClearResult(ppObject);
        if (FAILED(call.Injected())) {
            return call.Injected();
        }
        return ppObject != nullptr ? Query(riid, ppObject) : call.Refuse(E_POINTER);
    }

    // QueryInterface for this library itself: not counted, and no failure is drawn.
    HRESULT Query(REFIID riid, void **ppObject) noexcept
    {
        *ppObject = static_cast<Object *>(this)->FindInterface(riid);
        if (*ppObject == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_nReferences; }

    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG nLeft = --m_nReferences;
        if (nLeft == 0) {
            delete static_cast<Object *>(this);
        }
        return nLeft;
    }

    void STDMETHODCALLTYPE GetDevice(ID3D11Device **ppDevice) override
    {
        if (ppDevice != nullptr) {
            *ppDevice = Retain(m_pDevice.get()).release();
        }
    }

    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT *pBytes, void *) override
    {
        ClearResult(pBytes);
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown *) override
    {
        return NotImplemented();
    }

    ID3D11Device *ParentDevice() const noexcept { return m_pDevice.get(); }

protected:
    explicit DeviceChild(ID3D11Device &device) noexcept : m_pDevice(Retain(&device))
    {
        live::AddChild(m_pDevice.get());
    }
    ~DeviceChild() { live::RemoveChild(m_pDevice.get()); }

    static HRESULT NotImplemented() noexcept
    {
        CountCall(Method::OtherUnsupported);
        return E_NOTIMPL;
    }

private:
    const ComRef<ID3D11Device> m_pDevice;
    std::atomic<ULONG> m_nReferences{1};
};

// The object behind an interface of this library and of one device; null for null, for objects of other
// devices and for objects of anybody else.
template <class Object> ComRef<Object> Unwrap(IUnknown *pUnknown, const ID3D11Device *pDevice) noexcept
{
    void *pFound = nullptr;
    if (pUnknown == nullptr || FAILED(pUnknown->QueryInterface(Object::kClassId, &pFound))) {
        return nullptr;
    }
    ComRef<Object> object(static_cast<Object *>(pFound));
    return object->ParentDevice() == pDevice ? std::move(object) : nullptr;
}

} // namespace softd3d11
