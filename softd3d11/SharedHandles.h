// Share handles of the process: numbers that stand for the memory of a texture. Thread-safe.
#pragma once

#include "softd3d11/TextureStorage.h"

#include <memory>

namespace softd3d11 {

// A handle never given out before. Throws std::bad_alloc, also when there are no more numbers.
HANDLE MakeSharedHandle(const std::shared_ptr<TextureStorage> &pStorage);

// Forgets a handle, when the memory goes. Null is ignored.
void DropSharedHandle(HANDLE hShared) noexcept;

// Null when no such handle is alive.
std::shared_ptr<TextureStorage> FindSharedStorage(HANDLE hShared) noexcept;

} // namespace softd3d11
