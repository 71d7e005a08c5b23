#include "ProcessCounts.h"

#include <QOpenGLFunctions>

namespace xelttest {

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
