#pragma once

#include <EGL/egl.h>
#include <cstddef>
#include <cstring>

namespace softegl {

using AnyFunction = __eglMustCastToProperFunctionPointerType;

struct NamedFunction
{
    const char *pszName;
    AnyFunction pFunction;
};

template <typename Function> NamedFunction Named(const char *pszName, Function *pFunction) noexcept
{
    return {pszName, reinterpret_cast<AnyFunction>(pFunction)};
}

// The function of that name, or null.
template <std::size_t N>
AnyFunction FindByName(const NamedFunction (&functions)[N], const char *pszName) noexcept
{
    for (const NamedFunction &function : functions) {
        if (std::strcmp(function.pszName, pszName) == 0) {
            return function.pFunction;
        }
    }
    return nullptr;
}

} // namespace softegl
