// Uploads that GL refuses, and whose errors are whose.
#include "EglFixture.h"

#include <QOpenGLExtraFunctions>
#include <QOpenGLFunctions>

#include <dlfcn.h>
#include <utility>

namespace xelttest {
namespace {

class SoftEglUploadTest : public EglFixture
{
protected:
    // A GL function that the library does not stand before.
    template <typename Function> static Function *unnoticed(const char *pszName)
    {
        const auto pFunction = reinterpret_cast<Function *>(dlsym(RTLD_DEFAULT, pszName));
        EXPECT_NE(nullptr, pFunction) << pszName;
        return pFunction;
    }

    void expectNoGlError() { EXPECT_EQ(GLenum{GL_NO_ERROR}, context().gl().glGetError()); }

    const QSize m_size{21, 13};
};

TEST_F(SoftEglUploadTest, LeavesTheApplicationsErrorsAlone)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    QOpenGLFunctions &gl = context().gl();
    const std::pair<GLenum, void (*)(QOpenGLFunctions &)> errors[] = {
        {GL_INVALID_ENUM, [](QOpenGLFunctions &f) { f.glBindTexture(GL_FLOAT, 0); }},
        {GL_INVALID_VALUE, [](QOpenGLFunctions &f) { f.glViewport(0, 0, -1, 1); }},
        {GL_INVALID_OPERATION,
         [](QOpenGLFunctions &f) { f.glUseProgram(f.glCreateShader(GL_VERTEX_SHADER)); }},
    };
    int nSeed = 0;
    for (const auto &[nError, raise] : errors) {
        raise(gl);
        const QImage expected = texture.write(++nSeed);
        EXPECT_EQ(nError, gl.glGetError());
        expectNoGlError();
        EXPECT_EQ(expected, context().draw(nTexture, m_size));
        raise(gl);
        EXPECT_TRUE(release(hSurface));
        context().gl().glBindTexture(GL_TEXTURE_2D, nTexture);
        EXPECT_TRUE(bind(hSurface));
        EXPECT_EQ(nError, gl.glGetError());
        expectNoGlError();
    }
    EXPECT_TRUE(destroy(hSurface));
    gl.glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglUploadTest, KeepsItsOwnErrorsToItself)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    // The image has no room in this one, and it cannot be redefined.
    using TexStorage2D = void(GLenum, GLsizei, GLenum, GLsizei, GLsizei);
    unnoticed<TexStorage2D>("glTexStorage2D")(GL_TEXTURE_2D, 1, 0x8058 /* GL_RGBA8 */, 4, 4);
    expectNoGlError();
    texture.write(1);
    expectNoGlError();
    context().draw(nTexture, m_size);
    expectNoGlError();
    EXPECT_TRUE(release(hSurface));
    expectNoGlError();
    context().gl().glDeleteTextures(1, &nTexture);

    GLuint nOther = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    expectNextWriteShown(texture, 2, context(), nOther);
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nOther);
}

TEST_F(SoftEglUploadTest, ShowsInATextureThatWasRedefinedUnnoticed)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    const EGLSurface hOther = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    const auto texImage2D = unnoticed<decltype(glTexImage2D)>("glTexImage2D");
    texImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    expectNextWriteShown(texture, 1, context(), nTexture);
    texImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_TRUE(bind(hOther));
    expectNextWriteShown(texture, 2, context(), nTexture);
    expectNoGlError();
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_TRUE(destroy(hOther));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglUploadTest, RefusesImmutableTexturesOfDesktopContexts)
{
    dropContext();
    for (const auto &[nMajor, nMinor] : {std::pair(2, 1), std::pair(3, 3), std::pair(4, 3)}) {
        QSurfaceFormat format;
        format.setRenderableType(QSurfaceFormat::OpenGL);
        format.setVersion(nMajor, nMinor);
        format.setProfile(nMajor > 2 ? QSurfaceFormat::CoreProfile : QSurfaceFormat::NoProfile);
        GlContext desktop(nullptr, format);
        ASSERT_FALSE(desktop.context().isOpenGLES());
        SharedTexture texture(device(), m_size);
        const EGLSurface hSurface = makeSurface(texture);
        GLuint nTexture = desktop.makeTexture();
        desktop.context().extraFunctions()->glTexStorage2D(GL_TEXTURE_2D, 1, 0x8058 /* GL_RGBA8 */,
                                                           m_size.width(), m_size.height());
        ASSERT_EQ(GLenum{GL_NO_ERROR}, desktop.gl().glGetError());
        EXPECT_FALSE(bind(hSurface)) << nMajor;
        EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
        EXPECT_TRUE(destroy(hSurface));
        desktop.gl().glDeleteTextures(1, &nTexture);
        EXPECT_EQ(GLenum{GL_NO_ERROR}, desktop.gl().glGetError()) << nMajor;
    }
}

} // namespace
} // namespace xelttest
