#include "ProcessCounts.h"

#include <QOpenGLFunctions>

#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>

// Of the sanitizer's run-time library, where there is one.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace xelttest {

int openFiles()
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
    return nResident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

bool GlObjects::operator==(const GlObjects &other) const
{
    return nTextures == other.nTextures && nPrograms == other.nPrograms && nShaders == other.nShaders;
}

GlObjects glObjects(QOpenGLContext &context)
{
    constexpr GLuint k_nNames = 4096;
    QOpenGLFunctions &gl = *context.functions();
    GlObjects objects;
    for (GLuint nName = 1; nName <= k_nNames; ++nName) {
        objects.nTextures += gl.glIsTexture(nName) != GL_FALSE ? 1 : 0;
        objects.nPrograms += gl.glIsProgram(nName) != GL_FALSE ? 1 : 0;
        objects.nShaders += gl.glIsShader(nName) != GL_FALSE ? 1 : 0;
    }
    return objects;
}

} // namespace xelttest
