// Methods of COM objects, replaced for chosen objects alone.
#pragma once

#include <cstddef>

namespace xelttest {

// Gives the object a copy of its class's virtual table, the same one for all objects that get one, in which
// the slot leads to pReplacement. pReal gets what was there before. An object may come here again. Thread-safe.
void replaceMethod(void *pObject, size_t nSlot, void *pReplacement, void *&pReal);

template <typename Pfn> void replaceMethod(void *pObject, size_t nSlot, Pfn pfnReplacement, Pfn &pfnReal)
{
    void *pReal = reinterpret_cast<void *>(pfnReal);
    replaceMethod(pObject, nSlot, reinterpret_cast<void *>(pfnReplacement), pReal);
    pfnReal = reinterpret_cast<Pfn>(pReal);
}

} // namespace xelttest
