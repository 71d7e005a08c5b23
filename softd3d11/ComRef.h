#pragma once

#include <memory>

namespace softd3d11 {

struct ReleaseReference
{
    template <class Object> void operator()(Object *pObject) const noexcept { pObject->Release(); }
};

// Owns one reference to a COM object.
template <class Object> using ComRef = std::unique_ptr<Object, ReleaseReference>;

// One more reference.
template <class Object> ComRef<Object> Retain(Object *pObject) noexcept
{
    if (pObject != nullptr) {
        pObject->AddRef();
    }
    return ComRef<Object>(pObject);
}

} // namespace softd3d11
