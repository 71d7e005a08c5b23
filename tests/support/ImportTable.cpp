#include "ImportTable.h"

#include <windows.h>

#include <cstdint>

namespace xelttest {

namespace {

// The table is read-only once the module is loaded.
void *replaceEntry(IMAGE_THUNK_DATA *pEntry, void *pReplacement)
{
    DWORD nBefore = 0;
    if (!VirtualProtect(pEntry, sizeof *pEntry, PAGE_READWRITE, &nBefore)) {
        return nullptr;
    }
    void *pFormer = reinterpret_cast<void *>(pEntry->u1.Function);
    pEntry->u1.Function = reinterpret_cast<uintptr_t>(pReplacement);
    VirtualProtect(pEntry, sizeof *pEntry, nBefore, &nBefore);
    return pFormer;
}

} // namespace

void *replaceImport(const std::string &sModule, const std::string &sFunction, void *pReplacement)
{
    auto *pBase = reinterpret_cast<uint8_t *>(GetModuleHandleA(sModule.empty() ? nullptr : sModule.c_str()));
    if (pBase == nullptr) {
        return nullptr;
    }
    const auto *pDos = reinterpret_cast<const IMAGE_DOS_HEADER *>(pBase);
    const auto *pHeaders = reinterpret_cast<const IMAGE_NT_HEADERS *>(pBase + pDos->e_lfanew);
    const auto nImports = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto *pModule = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR *>(pBase + nImports);
         nImports != 0 && pModule->Name != 0; ++pModule) {
        const auto *pName = reinterpret_cast<const IMAGE_THUNK_DATA *>(pBase + pModule->OriginalFirstThunk);
        auto *pEntry = reinterpret_cast<IMAGE_THUNK_DATA *>(pBase + pModule->FirstThunk);
        for (; pName->u1.AddressOfData != 0; ++pName, ++pEntry) {
            if (IMAGE_SNAP_BY_ORDINAL(pName->u1.Ordinal)) {
                continue;
            }
            const auto *pImport =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME *>(pBase + pName->u1.AddressOfData);
            if (sFunction == reinterpret_cast<const char *>(pImport->Name)) {
                return replaceEntry(pEntry, pReplacement);
            }
        }
    }
    return nullptr;
}

} // namespace xelttest
