// What the tests need of the operating system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

namespace xelttest {

// With the separator at its end.
std::string executableFolder();
// A module by its full path, loaded if it is not; null when that fails. It stays loaded.
void *openModule(const std::string &sPath);
// Null when the module does not export the name.
void *moduleSymbol(void *pModule, const char *pszName);
// The environment variable with the folders in which the system looks for modules.
const char *moduleSearchVariable();
// The same for all ways to write one path: where the system takes no notice of case and of which separator it is,
// neither do comparisons.
std::string comparablePath(std::string sPath);
// Whether the code is this program's or the library's under test.
bool isOurCode(const void *pCode);

// Lets a fault end the program with a line that says where it was, whatever is being called at the time: a window's
// procedure may be left by one, and the program goes on with whatever it had locked or half changed, where the system
// permits that.
void endOnFaults();

// Takes the console's window off the screen, where it might lie over those of the tests, if there is one and the
// environment says XELT_TEST_HIDE_CONSOLE.
void hideConsole();

// Zeroed memory of whole pages with at least nSize bytes, and a page behind it that cannot be read. Throws
// std::bad_alloc. nUsable is how much lies before that page.
void *allocateGuarded(size_t nSize, size_t &nUsable);
void freeGuarded(void *pMemory, size_t nUsable);

// Makes the library under test allocate by these functions, where it does not do so by itself because the program
// has them for operators new and new[].
void setLibraryAllocator(void *(*pfnNew)(size_t), void *(*pfnNewNoThrow)(size_t, const std::nothrow_t &));

// Open files and the like of this process; -1 when they cannot be counted.
int openHandles();
size_t residentBytes();
// Bytes that the allocator has handed out and not got back.
size_t heapInUse();
// Whether a sanitizer's allocator is in use, which keeps freed memory for a while.
bool hasSanitizerAllocator();

} // namespace xelttest
