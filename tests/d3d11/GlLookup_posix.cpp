#include "GlLookup.h"

#include <dlfcn.h>

#include <cstdlib>

namespace {

using Function = xelttest::GlFunction;
using Lookup = Function (*)(const char *);
using xelttest::wrapGl;

// The function behind the one that this executable exports under its name: that of a library that stands
// before the driver's, or the driver's own, which may not be there for all to see.
Lookup realLookup(const char *pszLibrary, const char *pszName)
{
    void *pSymbol = dlsym(RTLD_NEXT, pszName);
    if (pSymbol == nullptr) {
        void *pModule = dlopen(pszLibrary, RTLD_NOW | RTLD_LOCAL);
        pSymbol = pModule != nullptr ? dlsym(pModule, pszName) : nullptr;
    }
    if (pSymbol == nullptr) {
        std::abort();
    }
    return reinterpret_cast<Lookup>(pSymbol);
}

} // namespace

extern "C" __attribute__((visibility("default"))) Function eglGetProcAddress(const char *pszName)
{
    static const Lookup pfnLookup = realLookup("libEGL.so.1", "eglGetProcAddress");
    return wrapGl(pszName, pfnLookup(pszName));
}

extern "C" __attribute__((visibility("default"))) Function glXGetProcAddress(const char *pszName)
{
    static const Lookup pfnLookup = realLookup("libGL.so.1", "glXGetProcAddress");
    return wrapGl(pszName, pfnLookup(pszName));
}

extern "C" __attribute__((visibility("default"))) Function glXGetProcAddressARB(const char *pszName)
{
    static const Lookup pfnLookup = realLookup("libGL.so.1", "glXGetProcAddressARB");
    return wrapGl(pszName, pfnLookup(pszName));
}
