// Surfaces: what makes one, what does not, and what happens to the handle.
#include "EglFixture.h"

#include <QOpenGLFunctions>

#include <cstdint>
#include <memory>
#include <vector>

namespace xelttest {
namespace {

class SoftEglSurfaceTest : public EglFixture
{
protected:
    void expectRefused(EGLint nError, EGLClientBuffer hBuffer, const std::vector<EGLint> &list)
    {
        EXPECT_EQ(EGL_NO_SURFACE, makeSurface(hBuffer, list));
        EXPECT_EQ(nError, eglGetError());
        EXPECT_EQ(EGL_SUCCESS, eglGetError());
        EXPECT_EQ(0U, softegl::LiveSurfaces());
    }

    EGLint query(EGLSurface hSurface, EGLint nAttribute)
    {
        EGLint nValue = -1;
        EXPECT_NE(EGL_FALSE, eglQuerySurface(display(), hSurface, nAttribute, &nValue)) << nAttribute;
        return nValue;
    }
};

TEST_F(SoftEglSurfaceTest, IsCountedUntilItIsDestroyed)
{
    SharedTexture texture(device(), QSize(7, 3));
    const EGLSurface hFirst = makeSurface(texture);
    const EGLSurface hSecond = makeSurface(texture);
    EXPECT_NE(EGL_NO_SURFACE, hFirst);
    EXPECT_NE(EGL_NO_SURFACE, hSecond);
    EXPECT_NE(hFirst, hSecond);
    EXPECT_EQ(2U, softegl::LiveSurfaces());
    EXPECT_TRUE(destroy(hFirst));
    EXPECT_EQ(1U, softegl::LiveSurfaces());
    EXPECT_TRUE(destroy(hSecond));
    EXPECT_EQ(0U, softegl::LiveSurfaces());
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
}

TEST_F(SoftEglSurfaceTest, NeedsAHandleOfALivingTexture)
{
    const std::vector<EGLint> list = attributes(QSize(8, 8));
    expectRefused(EGL_BAD_PARAMETER, nullptr, list);
    expectRefused(EGL_BAD_PARAMETER, reinterpret_cast<EGLClientBuffer>(std::uintptr_t{0x123450}), list);
    EGLClientBuffer hGone = nullptr;
    {
        SharedTexture texture(device(), QSize(8, 8));
        hGone = texture.handle();
    }
    expectRefused(EGL_BAD_PARAMETER, hGone, list);
}

TEST_F(SoftEglSurfaceTest, NeedsTheTexturesSize)
{
    SharedTexture texture(device(), QSize(16, 9));
    for (const QSize &size :
         {QSize(17, 9), QSize(15, 9), QSize(16, 8), QSize(16, 10), QSize(9, 16), QSize(0, 0)}) {
        expectRefused(EGL_BAD_PARAMETER, texture.handle(), attributes(size));
    }
    expectRefused(EGL_BAD_PARAMETER, texture.handle(), attributes(QSize(-16, 9)));
    expectRefused(EGL_BAD_PARAMETER, texture.handle(), attributes(QSize(16, -9)));
    expectRefused(EGL_BAD_PARAMETER, texture.handle(), {EGL_NONE});
}

TEST_F(SoftEglSurfaceTest, NeedsAttributesThatItKnows)
{
    SharedTexture texture(device(), QSize(2, 2));
    const auto with = [](std::vector<EGLint> list) {
        list.insert(list.end(), {EGL_WIDTH, 2, EGL_HEIGHT, 2, EGL_NONE});
        return list;
    };
    expectRefused(EGL_BAD_ATTRIBUTE, texture.handle(), with({EGL_RED_SIZE, 8}));
    expectRefused(EGL_BAD_ATTRIBUTE, texture.handle(), with({EGL_TEXTURE_FORMAT, EGL_TEXTURE_2D}));
    expectRefused(EGL_BAD_ATTRIBUTE, texture.handle(), with({EGL_TEXTURE_TARGET, EGL_TEXTURE_RGBA}));
    expectRefused(EGL_BAD_MATCH, texture.handle(), with({EGL_TEXTURE_FORMAT, EGL_TEXTURE_RGBA}));
    expectRefused(EGL_BAD_MATCH, texture.handle(), with({EGL_TEXTURE_TARGET, EGL_TEXTURE_2D}));
}

TEST_F(SoftEglSurfaceTest, NeedsDisplayAndConfiguration)
{
    SharedTexture texture(device(), QSize(2, 2));
    const std::vector<EGLint> list = attributes(QSize(2, 2));
    const auto create = [&](EGLDisplay hDisplay, EGLConfig hConfig) {
        return eglCreatePbufferFromClientBuffer(hDisplay, EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE,
                                                texture.handle(), hConfig, list.data());
    };
    EXPECT_EQ(EGL_NO_SURFACE, create(EGL_NO_DISPLAY, config()));
    EXPECT_EQ(EGL_BAD_DISPLAY, eglGetError());
    EXPECT_EQ(EGL_NO_SURFACE, create(display(), nullptr));
    EXPECT_EQ(EGL_BAD_CONFIG, eglGetError());
}

TEST_F(SoftEglSurfaceTest, LeavesOtherBufferTypesToTheRealLibrary)
{
    SharedTexture texture(device(), QSize(2, 2));
    const std::vector<EGLint> list = attributes(QSize(2, 2));
    EXPECT_EQ(EGL_NO_SURFACE, eglCreatePbufferFromClientBuffer(display(), EGL_OPENVG_IMAGE, texture.handle(),
                                                               config(), list.data()));
    EXPECT_NE(EGL_SUCCESS, eglGetError());
}

TEST_F(SoftEglSurfaceTest, AnswersQueries)
{
    SharedTexture texture(device(), QSize(31, 5));
    const EGLSurface hSurface = makeSurface(texture);
    EXPECT_EQ(31, query(hSurface, EGL_WIDTH));
    EXPECT_EQ(5, query(hSurface, EGL_HEIGHT));
    EXPECT_EQ(EGL_TEXTURE_RGBA, query(hSurface, EGL_TEXTURE_FORMAT));
    EXPECT_EQ(EGL_TEXTURE_2D, query(hSurface, EGL_TEXTURE_TARGET));
    EXPECT_EQ(EGL_FALSE, query(hSurface, EGL_MIPMAP_TEXTURE));
    EXPECT_EQ(EGL_FALSE, query(hSurface, EGL_LARGEST_PBUFFER));
    EXPECT_EQ(0, query(hSurface, EGL_MIPMAP_LEVEL));
    EXPECT_EQ(EGL_BACK_BUFFER, query(hSurface, EGL_RENDER_BUFFER));
    EXPECT_EQ(EGL_UNKNOWN, query(hSurface, EGL_HORIZONTAL_RESOLUTION));
    EXPECT_EQ(EGL_UNKNOWN, query(hSurface, EGL_VERTICAL_RESOLUTION));
    EXPECT_EQ(EGL_UNKNOWN, query(hSurface, EGL_PIXEL_ASPECT_RATIO));
    EXPECT_EQ(EGL_BUFFER_PRESERVED, query(hSurface, EGL_SWAP_BEHAVIOR));
    EXPECT_EQ(EGL_MULTISAMPLE_RESOLVE_DEFAULT, query(hSurface, EGL_MULTISAMPLE_RESOLVE));
    EXPECT_EQ(EGL_VG_COLORSPACE_sRGB, query(hSurface, EGL_VG_COLORSPACE));
    EXPECT_EQ(EGL_VG_ALPHA_FORMAT_NONPRE, query(hSurface, EGL_VG_ALPHA_FORMAT));
    EGLint nConfig = -1;
    eglGetConfigAttrib(display(), config(), EGL_CONFIG_ID, &nConfig);
    EXPECT_EQ(nConfig, query(hSurface, EGL_CONFIG_ID));
    EGLint nValue = 0;
    EXPECT_EQ(EGL_FALSE, eglQuerySurface(display(), hSurface, EGL_RED_SIZE, &nValue));
    EXPECT_EQ(EGL_BAD_ATTRIBUTE, eglGetError());
    EXPECT_EQ(EGL_FALSE, eglQuerySurface(display(), hSurface, EGL_WIDTH, nullptr));
    EXPECT_EQ(EGL_BAD_PARAMETER, eglGetError());
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_EQ(EGL_FALSE, eglQuerySurface(display(), hSurface, EGL_WIDTH, &nValue));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
}

TEST_F(SoftEglSurfaceTest, CannotBeDrawnTo)
{
    SharedTexture texture(device(), QSize(4, 4));
    const EGLSurface hSurface = makeSurface(texture);
    const EGLContext hContext = eglGetCurrentContext();
    ASSERT_NE(EGL_NO_CONTEXT, hContext);
    EXPECT_EQ(EGL_FALSE, eglMakeCurrent(display(), hSurface, hSurface, hContext));
    EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
    EXPECT_EQ(hContext, eglGetCurrentContext());
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglSurfaceTest, IsNotKnownOnAnotherDisplay)
{
    SharedTexture texture(device(), QSize(4, 4));
    const EGLSurface hSurface = makeSurface(texture);
    EXPECT_EQ(EGL_FALSE, eglDestroySurface(EGL_NO_DISPLAY, hSurface));
    EXPECT_EQ(EGL_BAD_DISPLAY, eglGetError());
    EXPECT_EQ(EGL_FALSE, eglBindTexImage(EGL_NO_DISPLAY, hSurface, EGL_BACK_BUFFER));
    EXPECT_EQ(EGL_BAD_DISPLAY, eglGetError());
    EXPECT_EQ(EGL_FALSE, eglReleaseTexImage(EGL_NO_DISPLAY, hSurface, EGL_BACK_BUFFER));
    EXPECT_EQ(EGL_BAD_DISPLAY, eglGetError());
    EXPECT_EQ(1U, softegl::LiveSurfaces());
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglSurfaceTest, IsUnknownOnceDestroyed)
{
    SharedTexture texture(device(), QSize(4, 4));
    const EGLSurface hSurface = makeSurface(texture);
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_FALSE(destroy(hSurface));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
    EXPECT_FALSE(bind(hSurface));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
    EXPECT_FALSE(release(hSurface));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
}

TEST_F(SoftEglSurfaceTest, KeepsTheImageOfATextureThatIsGone)
{
    auto pTexture = std::make_unique<SharedTexture>(device(), QSize(12, 6));
    const QImage expected = pTexture->write(1);
    const EGLSurface hSurface = makeSurface(*pTexture);
    pTexture.reset();
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    EXPECT_EQ(expected, context().draw(nTexture, QSize(12, 6)));
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglSurfaceTest, LeavesRealPbuffersAlone)
{
    EGLint nConfig = 0;
    ASSERT_NE(EGL_FALSE, eglQueryContext(display(), eglGetCurrentContext(), EGL_CONFIG_ID, &nConfig));
    const EGLint byId[] = {EGL_CONFIG_ID, nConfig, EGL_NONE};
    EGLConfig hConfig = nullptr;
    EGLint nCount = 0;
    ASSERT_NE(EGL_FALSE, eglChooseConfig(display(), byId, &hConfig, 1, &nCount));
    const EGLint list[] = {EGL_WIDTH, 20, EGL_HEIGHT, 10, EGL_NONE};
    const EGLSurface hSurface = eglCreatePbufferSurface(display(), hConfig, list);
    ASSERT_NE(EGL_NO_SURFACE, hSurface);
    EXPECT_EQ(20, query(hSurface, EGL_WIDTH));
    EXPECT_EQ(10, query(hSurface, EGL_HEIGHT));
    EXPECT_EQ(0U, softegl::LiveSurfaces());
    EXPECT_NE(EGL_FALSE, eglMakeCurrent(display(), hSurface, hSurface, eglGetCurrentContext()));
    EXPECT_TRUE(context().makeCurrent());
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
}

TEST_F(SoftEglSurfaceTest, GoesWithItsDisplay)
{
    SharedTexture texture(device(), QSize(4, 4));
    const EGLDisplay hDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    ASSERT_NE(display(), hDisplay);
    ASSERT_NE(EGL_FALSE, eglInitialize(hDisplay, nullptr, nullptr));
    const auto hConfig = pictureConfig(hDisplay);
    ASSERT_TRUE(hConfig);
    const std::vector<EGLint> list = attributes(QSize(4, 4));
    EXPECT_NE(EGL_NO_SURFACE,
              eglCreatePbufferFromClientBuffer(hDisplay, EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE,
                                               texture.handle(), *hConfig, list.data()));
    const EGLSurface hOther = makeSurface(texture);
    EXPECT_EQ(2U, softegl::LiveSurfaces());
    EXPECT_NE(EGL_FALSE, eglTerminate(hDisplay));
    EXPECT_EQ(1U, softegl::LiveSurfaces());
    EXPECT_EQ(EGL_NO_SURFACE,
              eglCreatePbufferFromClientBuffer(hDisplay, EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE,
                                               texture.handle(), *hConfig, list.data()));
    EXPECT_EQ(EGL_NOT_INITIALIZED, eglGetError());
    EXPECT_TRUE(destroy(hOther));
}

} // namespace
} // namespace xelttest
