// Contexts that come, go and are current in ways that a toolkit does not use.
#include "EglFixture.h"
#include "RawContext.h"

#include <thread>
#include <vector>

namespace xelttest {
namespace {

class SoftEglContextTest : public EglFixture
{
protected:
    // Binds in the current context, and expects the image and the next write to show.
    GLuint expectShown(SharedTexture &texture, int nSeed)
    {
        const EGLSurface hSurface = makeSurface(texture);
        const GLuint nTexture = RawContext::makeTexture();
        QImage expected = texture.write(nSeed);
        EXPECT_TRUE(bind(hSurface));
        EXPECT_EQ(EGL_SUCCESS, eglGetError());
        EXPECT_EQ(1U, softegl::BoundTextures());
        EXPECT_EQ(expected, RawContext::read(nTexture, texture.size()));
        expected = texture.write(nSeed + 1);
        EXPECT_EQ(expected, RawContext::read(nTexture, texture.size()));
        EXPECT_TRUE(destroy(hSurface));
        return nTexture;
    }

    const QSize m_size{21, 13};
};

TEST_F(SoftEglContextTest, ShowsInAContextThatIsDestroyedWhileCurrent)
{
    SharedTexture texture(device(), m_size);
    RawContext raw(display());
    ASSERT_TRUE(raw.makeCurrent());
    EXPECT_TRUE(raw.destroy());
    expectShown(texture, 1);
    EXPECT_TRUE(raw.doneCurrent());
    EXPECT_EQ(0U, softegl::BoundTextures());
}

TEST_F(SoftEglContextTest, GoesOnShowingInAContextThatIsDestroyedWhileCurrent)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    RawContext raw(display());
    ASSERT_TRUE(raw.makeCurrent());
    const GLuint nTexture = RawContext::makeTexture();
    EXPECT_TRUE(bind(hSurface));
    EXPECT_TRUE(raw.destroy());
    EXPECT_EQ(1U, softegl::BoundTextures());
    QImage expected = texture.write(1);
    EXPECT_EQ(expected, RawContext::read(nTexture, m_size));
    std::thread([&] { expected = texture.write(2); }).join();
    EXPECT_EQ(expected, RawContext::read(nTexture, m_size));
    RawContext::deleteTexture(nTexture);
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglContextTest, ForgetsADestroyedContextWhenItsThreadEnds)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    RawContext raw(display());
    std::thread([&] {
        eglBindAPI(EGL_OPENGL_ES_API);
        EXPECT_TRUE(raw.makeCurrent());
        RawContext::makeTexture();
        EXPECT_TRUE(bind(hSurface));
        EXPECT_TRUE(raw.destroy());
        EXPECT_EQ(1U, softegl::BoundTextures());
        EXPECT_NE(EGL_FALSE, eglReleaseThread());
        EXPECT_EQ(0U, softegl::BoundTextures());
    }).join();
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglContextTest, ShowsInAContextThatWasMadeWithoutIt)
{
    SharedTexture texture(device(), m_size);
    RawContext raw(display(), EglFunctions::real());
    ASSERT_TRUE(raw.makeCurrent());
    const GLuint nTexture = expectShown(texture, 1);
    {
        RawContext sharing(display(), EglFunctions::found(), raw.handle());
        EXPECT_TRUE(raw.doneCurrent());
        EXPECT_TRUE(sharing.makeCurrent());
        EXPECT_EQ(1U, softegl::BoundTextures());
        RawContext::deleteTexture(nTexture);
        EXPECT_EQ(0U, softegl::BoundTextures()) << "they share their textures";
    }
}

TEST_F(SoftEglContextTest, LosesItsTexturesWithATerminatedDisplay)
{
    SharedTexture texture(device(), m_size);
    const EGLDisplay hOther = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    ASSERT_NE(display(), hOther);
    ASSERT_NE(EGL_FALSE, eglInitialize(hOther, nullptr, nullptr));
    const auto hConfig = pictureConfig(hOther);
    ASSERT_TRUE(hConfig);
    const std::vector<EGLint> list = attributes(m_size);
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    const EGLSurface hSurface = eglCreatePbufferFromClientBuffer(
        hOther, EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE, texture.handle(), *hConfig, list.data());
    ASSERT_NE(EGL_NO_SURFACE, hSurface);
    const EGLContext hContext = eglCreateContext(hOther, *hConfig, EGL_NO_CONTEXT, version);
    ASSERT_NE(EGL_FALSE, eglMakeCurrent(hOther, EGL_NO_SURFACE, EGL_NO_SURFACE, hContext));
    const GLuint nTexture = RawContext::makeTexture();
    EXPECT_NE(EGL_FALSE, eglBindTexImage(hOther, hSurface, EGL_BACK_BUFFER));
    EXPECT_EQ(1U, softegl::BoundTextures());

    EXPECT_NE(EGL_FALSE, eglTerminate(hOther));
    EXPECT_EQ(0U, softegl::LiveSurfaces());
    EXPECT_EQ(1U, softegl::BoundTextures()) << "the context is still current";
    const QImage expected = texture.write(1);
    EXPECT_EQ(expected, RawContext::read(nTexture, m_size));
    EXPECT_NE(EGL_FALSE, eglReleaseThread());
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(context().makeCurrent());
}

} // namespace
} // namespace xelttest
