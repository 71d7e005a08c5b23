#pragma once

namespace softegl {

// The display's extensions with the one that this library adds, unless it is hidden. The text stays valid
// until the process ends; the same input gives the same pointer. Thread-safe; may throw std::bad_alloc.
const char *WithExtension(const char *pszExtensions);

void HideExtensionString(bool blHide) noexcept;
bool IsExtensionHidden() noexcept;

} // namespace softegl
