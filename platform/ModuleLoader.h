// Run-time loading of shared modules behind one interface for all systems. Paths are 8-bit.
#pragma once

#include <cstddef>

namespace platform {

using ModuleHandle = void *;
using Function = void (*)();

constexpr std::size_t kMaxPath = 260;
extern const char kPathSeparator;

// The module that is loaded under this name, or null. The empty name is the host's executable. Adds no
// reference.
ModuleHandle FindModule(const char *pszName);

// Full path of a loaded module, cut to nSize - 1 characters and terminated; empty when it is not known.
void ModuleFileName(ModuleHandle hModule, char *pszPath, std::size_t nSize);

// Lower-cases a path where the system's file names ignore case; leaves it alone elsewhere.
void FoldPathCase(char *pszPath);

// Loads a module. A bare file name is looked for beside the host's executable, then in the system's order.
// blAlteredSearchPath: the module's own folder is searched first for what it depends on (Windows only).
ModuleHandle LoadModule(const char *pszPath, bool blAlteredSearchPath);

// Address of an exported function, or null.
Function FindFunction(ModuleHandle hModule, const char *pszName);

} // namespace platform
