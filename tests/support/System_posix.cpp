#include "System.h"

#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <new>

// Of the sanitizer's run-time library, where there is one.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace xelttest {

namespace {

size_t pageSize()
{
    return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

std::string executableFolder()
{
    char aPath[PATH_MAX];
    const ssize_t nLength = readlink("/proc/self/exe", aPath, sizeof aPath);
    const std::string sPath(aPath, nLength > 0 ? static_cast<size_t>(nLength) : 0);
    return sPath.substr(0, sPath.rfind('/') + 1);
}

void *openModule(const std::string &sPath)
{
    return dlopen(sPath.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void *moduleSymbol(void *pModule, const char *pszName)
{
    return dlsym(pModule, pszName);
}

const char *moduleSearchVariable()
{
    return "LD_LIBRARY_PATH";
}

std::string comparablePath(std::string sPath)
{
    return sPath;
}

bool isOurCode(const void *pCode)
{
    static const char s_chProgram = 0;
    Dl_info code{};
    Dl_info program{};
    return dladdr(pCode, &code) != 0 && dladdr(&s_chProgram, &program) != 0 &&
           (code.dli_fbase == program.dli_fbase || std::strstr(code.dli_fname, "libXeltRender") != nullptr);
}

// The system does so by itself, and a sanitizer says more.
void endOnFaults() {}

void hideConsole() {}

void *allocateGuarded(size_t nSize, size_t &nUsable)
{
    const size_t nPage = pageSize();
    nUsable = (nSize + nPage - 1) / nPage * nPage;
    void *pMemory =
        mmap(nullptr, nUsable + nPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pMemory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    if (mprotect(static_cast<uint8_t *>(pMemory) + nUsable, nPage, PROT_NONE) != 0) {
        freeGuarded(pMemory, nUsable);
        throw std::bad_alloc();
    }
    return pMemory;
}

void freeGuarded(void *pMemory, size_t nUsable)
{
    munmap(pMemory, nUsable + pageSize());
}

// The program's definitions come before those of the libraries.
void setLibraryAllocator(void *(* /*pfnNew*/)(size_t),
                         void *(* /*pfnNewNoThrow*/)(size_t, const std::nothrow_t &))
{
}

int openHandles()
{
    DIR *pDir = opendir("/proc/self/fd");
    if (pDir == nullptr) {
        return -1;
    }
    int nEntries = 0;
    while (readdir(pDir) != nullptr) {
        ++nEntries;
    }
    closedir(pDir);
    return nEntries;
}

size_t residentBytes()
{
    unsigned long nTotal = 0;
    unsigned long nResident = 0;
    std::FILE *pFile = std::fopen("/proc/self/statm", "r");
    if (pFile == nullptr || std::fscanf(pFile, "%lu %lu", &nTotal, &nResident) != 2) {
        nResident = 0;
    }
    if (pFile != nullptr) {
        std::fclose(pFile);
    }
    return nResident * pageSize();
}

bool hasSanitizerAllocator()
{
    return &__sanitizer_get_current_allocated_bytes != nullptr;
}

size_t heapInUse()
{
    if (hasSanitizerAllocator()) {
        return __sanitizer_get_current_allocated_bytes();
    }
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace xelttest
