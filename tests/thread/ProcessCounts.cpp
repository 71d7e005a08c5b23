#include "ProcessCounts.h"

#include <QOpenGLFunctions>

#include <malloc.h>

// Of the sanitizer's run-time library, where there is one.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace xelttest {

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
