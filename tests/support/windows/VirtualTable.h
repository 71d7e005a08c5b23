// Methods of COM objects, replaced for chosen objects alone.
#pragma once

#include <cstddef>
#include <functional>

namespace xelttest {

// Gives the object a copy of its class's virtual table, the same one for all objects that get one, in which
// the slot leads to pReplacement. keepReal is told what was there before, ahead of the first call that can come to
// the replacement. An object may come here again; nothing happens then. Thread-safe.
void replaceMethod(void *pObject, size_t nSlot, void *pReplacement,
                   const std::function<void(void *)> &keepReal);

template <typename Pfn> void replaceMethod(void *pObject, size_t nSlot, Pfn pfnReplacement, Pfn &pfnReal)
{
    replaceMethod(pObject, nSlot, reinterpret_cast<void *>(pfnReplacement),
                  [&pfnReal](void *pReal) { pfnReal = reinterpret_cast<Pfn>(pReal); });
}

} // namespace xelttest
