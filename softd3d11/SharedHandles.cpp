#include "softd3d11/SharedHandles.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <new>

namespace softd3d11 {

namespace {

// Handles are 32-bit numbers in multiples of 64 with bit 1 set, far from anything that could be a pointer.
constexpr std::uintptr_t kFirstHandle = 0x40000002;
constexpr std::uintptr_t kHandleStep = 0x40;
constexpr std::uintptr_t kLastHandle = 0xFFFFFFC2; // some fifty million later

struct HandleTable
{
    std::mutex mutex;
    std::uintptr_t nNext = kFirstHandle;
    std::map<std::uintptr_t, std::weak_ptr<TextureStorage>> storages;
};

// Never destroyed, as textures may outlive static objects.
HandleTable &TheTable()
{
    static HandleTable &table = *new HandleTable;
    return table;
}

std::uintptr_t NumberOf(HANDLE hShared)
{
    return reinterpret_cast<std::uintptr_t>(hShared);
}

} // namespace

HANDLE MakeSharedHandle(const std::shared_ptr<TextureStorage> &pStorage)
{
    HandleTable &table = TheTable();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const std::uintptr_t nHandle = table.nNext;
    if (nHandle > kLastHandle - kHandleStep) {
        throw std::bad_alloc();
    }
    table.storages.emplace(nHandle, pStorage);
    table.nNext += kHandleStep;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a number in a pointer's clothes
    return reinterpret_cast<HANDLE>(nHandle);
}

void DropSharedHandle(HANDLE hShared) noexcept
{
    if (hShared != nullptr) {
        HandleTable &table = TheTable();
        const std::lock_guard<std::mutex> lock(table.mutex);
        table.storages.erase(NumberOf(hShared));
    }
}

std::shared_ptr<TextureStorage> FindSharedStorage(HANDLE hShared) noexcept
{
    HandleTable &table = TheTable();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.storages.find(NumberOf(hShared));
    return found != table.storages.end() ? found->second.lock() : nullptr;
}

SharedImage::~SharedImage() = default;

std::shared_ptr<SharedImage> FindSharedImage(HANDLE hShared) noexcept
{
    std::shared_ptr<TextureStorage> pStorage = FindSharedStorage(hShared);
    const bool blImage = pStorage != nullptr && pStorage->Desc().ArraySize == 1 &&
                         pStorage->Desc().Format == DXGI_FORMAT_B8G8R8A8_UNORM;
    return blImage ? pStorage : nullptr;
}

} // namespace softd3d11
