#include "InsideTest.h"

#include "log/CLS_OmbrixApi.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace xelttest {

void startInsideTest()
{
    ASSERT_TRUE(CoreLog::instance().isPresent());
    ASSERT_EQ(CLS_OmbrixApi::Instance().LoadCoreLibrary(), 0);
    CoreLog::instance().reset();
}

HostFrame insideFrame(int nType, const QSize &size, uint32_t nSeed)
{
    const Planes planes = makePlanes(Pattern::Card, size.width(), size.height(), nSeed);
    HostFrame made = nType == VIDEO_DISPLAY_NV12 ? nv12Frame(planes) : yv12Frame(planes);
    made.desc.nDisplayType = nType;
    return made;
}

::testing::AssertionResult showsFrame(const QImage &picture, const QSize &widgetSize, const HostFrame &frame)
{
    View view;
    view.widgetSize = widgetSize;
    view.dPixelRatio = scaleFactor();
    return imageMatches(picture, renderPicture(bufferModel(frame.desc), view), Tolerance{4.0, 0.8, 0.1});
}

namespace {

// Values that the renderers give to no object of theirs. The first is of GL_EXT_texture_filter_anisotropic.
constexpr GLenum k_nAnisotropy = 0x84FE;
constexpr GLfloat k_fMarkedAnisotropy = 2.0F;
constexpr GLint k_nMarkedUnit = 7;

bool programExists(QOpenGLFunctions &gl, GLuint nProgram)
{
    if (gl.glIsProgram(nProgram) == 0) {
        return false;
    }
    // A deleted program lives on while it is current in a context.
    GLint nDeleted = 0;
    gl.glGetProgramiv(nProgram, GL_DELETE_STATUS, &nDeleted);
    return nDeleted == 0;
}

// Of the program's first sampler; -1 when there is none.
GLint samplerLocation(QOpenGLFunctions &gl, GLuint nProgram)
{
    GLint nUniforms = 0;
    gl.glGetProgramiv(nProgram, GL_ACTIVE_UNIFORMS, &nUniforms);
    for (GLuint i = 0; i < static_cast<GLuint>(nUniforms); ++i) {
        GLsizei nLength = 0;
        GLint nSize = 0;
        GLenum nType = 0;
        char szName[256] = {};
        gl.glGetActiveUniform(nProgram, i, sizeof(szName) - 1, &nLength, &nSize, &nType, szName);
        if (nType == GL_SAMPLER_2D) {
            return gl.glGetUniformLocation(nProgram, szName);
        }
    }
    return -1;
}

} // namespace

int existing(QOpenGLWidget &witness, const GlNames &names)
{
    witness.makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = programExists(gl, names.nProgram) ? 1 : 0;
    for (const GLuint nTexture : names.vecTextures) {
        nCount += gl.glIsTexture(nTexture) != 0 ? 1 : 0;
    }
    witness.doneCurrent();
    return nCount;
}

void mark(QOpenGLWidget &witness, const GlNames &names)
{
    witness.makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    if (names.nProgram != 0) {
        gl.glUseProgram(names.nProgram);
        gl.glUniform1i(samplerLocation(gl, names.nProgram), k_nMarkedUnit);
        gl.glUseProgram(0);
    }
    for (const GLuint nTexture : names.vecTextures) {
        gl.glBindTexture(GL_TEXTURE_2D, nTexture);
        gl.glTexParameterf(GL_TEXTURE_2D, k_nAnisotropy, k_fMarkedAnisotropy);
    }
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    witness.doneCurrent();
}

int marked(QOpenGLWidget &witness, const GlNames &names)
{
    witness.makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = 0;
    if (programExists(gl, names.nProgram)) {
        GLint nUnit = 0;
        const GLint nLocation = samplerLocation(gl, names.nProgram);
        if (nLocation >= 0) {
            gl.glGetUniformiv(names.nProgram, nLocation, &nUnit);
        }
        nCount += nUnit == k_nMarkedUnit ? 1 : 0;
    }
    for (const GLuint nTexture : names.vecTextures) {
        if (gl.glIsTexture(nTexture) != 0) {
            GLfloat fAnisotropy = 0.0F;
            gl.glBindTexture(GL_TEXTURE_2D, nTexture);
            gl.glGetTexParameterfv(GL_TEXTURE_2D, k_nAnisotropy, &fAnisotropy);
            nCount += fAnisotropy >= k_fMarkedAnisotropy ? 1 : 0;
        }
    }
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    witness.doneCurrent();
    return nCount;
}

int textures(QOpenGLWidget &witness)
{
    constexpr GLuint k_nHighestName = 1000;
    witness.makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    int nCount = 0;
    for (GLuint nName = 1; nName <= k_nHighestName; ++nName) {
        nCount += gl.glIsTexture(nName) != 0 ? 1 : 0;
    }
    witness.doneCurrent();
    return nCount;
}

} // namespace xelttest
