#include "windows/ImportHook.h"

#include <windows.h>

#include <cstdint>
#include <cstring>

namespace xelttest {

namespace {

template <typename T> T *at(uint8_t *pBase, DWORD nOffset)
{
    return reinterpret_cast<T *>(pBase + nOffset);
}

IMAGE_IMPORT_DESCRIPTOR *importsOf(uint8_t *pBase)
{
    const auto *pDos = at<IMAGE_DOS_HEADER>(pBase, 0);
    const auto *pHeaders = at<IMAGE_NT_HEADERS>(pBase, static_cast<DWORD>(pDos->e_lfanew));
    const DWORD nOffset = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    return nOffset != 0 ? at<IMAGE_IMPORT_DESCRIPTOR>(pBase, nOffset) : nullptr;
}

void *exchange(ULONGLONG &entry, void *pReplacement)
{
    DWORD nBefore = 0;
    VirtualProtect(&entry, sizeof entry, PAGE_READWRITE, &nBefore);
    void *const pBefore = reinterpret_cast<void *>(entry);
    entry = reinterpret_cast<ULONGLONG>(pReplacement);
    VirtualProtect(&entry, sizeof entry, nBefore, &nBefore);
    return pBefore;
}

} // namespace

void *replaceImport(void *pModule, const char *pszName, void *pReplacement)
{
    static_assert(sizeof(void *) == sizeof(ULONGLONG));
    auto *pBase = static_cast<uint8_t *>(pModule != nullptr ? pModule : GetModuleHandleA(nullptr));
    auto *pImport = importsOf(pBase);
    for (; pImport != nullptr && pImport->Name != 0; ++pImport) {
        const auto *pNames = at<IMAGE_THUNK_DATA>(pBase, pImport->OriginalFirstThunk);
        auto *pEntries = at<IMAGE_THUNK_DATA>(pBase, pImport->FirstThunk);
        for (; pNames->u1.AddressOfData != 0; ++pNames, ++pEntries) {
            if (IMAGE_SNAP_BY_ORDINAL(pNames->u1.Ordinal)) {
                continue;
            }
            const auto *pByName =
                at<IMAGE_IMPORT_BY_NAME>(pBase, static_cast<DWORD>(pNames->u1.AddressOfData));
            if (std::strcmp(reinterpret_cast<const char *>(pByName->Name), pszName) == 0) {
                return exchange(pEntries->u1.Function, pReplacement);
            }
        }
    }
    return nullptr;
}

} // namespace xelttest
