// A COM object that ends with its last reference. The first one belongs to whoever makes it.
#pragma once

#include "platform/Direct3D11.h"

#include <atomic>

namespace xelttest {

template <typename Interface> class CountedObject : public Interface
{
public:
    CountedObject() = default;
    virtual ~CountedObject() = default;
    CountedObject(const CountedObject &) = delete;
    CountedObject &operator=(const CountedObject &) = delete;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_nReferences; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG nLeft = --m_nReferences;
        if (nLeft == 0) {
            delete this;
        }
        return nLeft;
    }

private:
    std::atomic<ULONG> m_nReferences{1};
};

} // namespace xelttest
