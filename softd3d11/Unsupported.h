#pragma once

#include "softd3d11/Instrumentation.h"

#include <algorithm>
#include <cstdint>

namespace softd3d11 {

// What the methods of an interface do that are not supported: they are counted, leave null or zero where a
// caller looks for a result, and answer E_NOTIMPL where they answer.
template <Method kMethod> class Unsupported
{
protected:
    template <class... Values> static void Ignore(Values *...pOutputs) noexcept
    {
        CountCall(kMethod);
        (Clear(pOutputs, 1), ...);
    }

    template <class... Values> static HRESULT NotImplemented(Values *...pOutputs) noexcept
    {
        Ignore(pOutputs...);
        return E_NOTIMPL;
    }

    template <class Value> static void IgnoreArray(Value *pOutputs, UINT nCount) noexcept
    {
        CountCall(kMethod);
        Clear(pOutputs, nCount);
    }

    // A shader, and the class instances that *pnCount, where there is one, leaves room for.
    template <class Shader, class Instance>
    static void IgnoreShader(Shader *pShader, Instance *pInstances, UINT *pnCount) noexcept
    {
        Ignore(pShader);
        Clear(pInstances, pnCount != nullptr ? *pnCount : 0);
        Clear(pnCount, 1);
    }

    // An answer of so many bytes.
    static HRESULT NotImplementedBytes(void *pOutput, UINT nBytes) noexcept
    {
        IgnoreArray(static_cast<std::uint8_t *>(pOutput), nBytes);
        return E_NOTIMPL;
    }

    template <class Value> static void Clear(Value *pOutputs, UINT nCount) noexcept
    {
        if (pOutputs != nullptr) {
            std::fill_n(pOutputs, nCount, Value());
        }
    }
};

} // namespace softd3d11
