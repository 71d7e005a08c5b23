#pragma once

namespace softegl {

// Whether the code at the address belongs to the executable, or to the library that this one is for.
bool IsWatched(const void *pAddress) noexcept;

} // namespace softegl
