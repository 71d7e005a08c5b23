// Textures that show an image: when they get it, what they show later, and how they lose it.
#include "EglFixture.h"

#include <QOpenGLExtraFunctions>
#include <QOpenGLFunctions>

#include <cstdint>
#include <thread>
#include <utility>

namespace xelttest {
namespace {

constexpr GLenum k_nBgra = 0x80E1; // GL_BGRA_EXT, which desktop headers call otherwise

QImage opaque(const QImage &image)
{
    return image.convertToFormat(QImage::Format_RGBX8888).convertToFormat(QImage::Format_RGBA8888);
}

class SoftEglBindTest : public EglFixture
{
protected:
    static constexpr int k_nWidth = 21;
    static constexpr int k_nHeight = 13;
    const QSize m_size{k_nWidth, k_nHeight};
};

TEST_F(SoftEglBindTest, ShowsTheImageInEverySize)
{
    for (const QSize &size : {QSize(1, 1), QSize(1, 4), QSize(3, 5), QSize(64, 48), QSize(161, 117)}) {
        SharedTexture texture(device(), size);
        const QImage expected = texture.write(1);
        const EGLSurface hSurface = makeSurface(texture);
        GLuint nTexture = context().makeTexture();
        EXPECT_TRUE(bind(hSurface));
        EXPECT_EQ(EGL_SUCCESS, eglGetError());
        EXPECT_EQ(1U, softegl::BoundTextures());
        EXPECT_EQ(expected, context().draw(nTexture, size)) << size.width();
        EXPECT_TRUE(release(hSurface));
        EXPECT_TRUE(destroy(hSurface));
        context().gl().glDeleteTextures(1, &nTexture);
        EXPECT_EQ(GLenum{GL_NO_ERROR}, context().gl().glGetError());
    }
}

TEST_F(SoftEglBindTest, ShowsTheImageInATextureThatHadStorage)
{
    SharedTexture texture(device(), m_size);
    const QImage expected = texture.write(2);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    context().gl().glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 100, 50, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_TRUE(bind(hSurface));
    EXPECT_EQ(expected, context().draw(nTexture, m_size));
    context().gl().glDeleteTextures(1, &nTexture);
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglBindTest, ShowsAnOpaqueImageOnASurfaceWithoutAlpha)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture, EGL_TEXTURE_RGB);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    const QImage expected = texture.write(3);
    EXPECT_NE(expected, context().draw(nTexture, m_size));
    EXPECT_EQ(opaque(expected), context().draw(nTexture, m_size));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, ShowsAWriteAtOnceWhereTheContextIsCurrent)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    for (int nSeed = 1; nSeed < 5; ++nSeed) {
        const QImage expected = texture.write(nSeed);
        EXPECT_EQ(expected, context().readUnnoticed(nTexture, m_size)) << nSeed;
    }
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, ShowsAWriteOfAnotherThreadWithTheNextDraw)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    QImage expected;
    std::thread([&] { expected = texture.write(4); }).join();
    EXPECT_EQ(expected, context().draw(nTexture, m_size));
    std::thread([&] { expected = texture.write(5); }).join();
    EXPECT_NE(expected, context().readUnnoticed(nTexture, m_size));
    std::uint32_t nPixel = 0;
    context().gl().glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &nPixel);
    EXPECT_EQ(expected, context().readUnnoticed(nTexture, m_size));
    std::thread([&] { expected = texture.write(6); }).join();
    context().gl().glDrawElements(GL_POINTS, 0, GL_UNSIGNED_SHORT, nullptr);
    EXPECT_EQ(expected, context().readUnnoticed(nTexture, m_size));
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, ShowsAWriteUnderAnotherContextOnceItsOwnIsCurrent)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    QImage expected;
    {
        GlContext other;
        expected = texture.write(6);
    }
    EXPECT_TRUE(context().makeCurrent());
    EXPECT_EQ(expected, context().readUnnoticed(nTexture, m_size));
    context().doneCurrent();
    expected = texture.write(7);
    EXPECT_TRUE(context().makeCurrent());
    EXPECT_EQ(expected, context().readUnnoticed(nTexture, m_size));
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, UploadsAWriteOnce)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    QImage expected = texture.write(1);
    const std::uint8_t pixel[] = {1, 2, 3, 4};
    context().gl().glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, k_nBgra, GL_UNSIGNED_BYTE, pixel);
    EXPECT_EQ(GLenum{GL_NO_ERROR}, context().gl().glGetError());
    expected.setPixelColor(0, 0, QColor(3, 2, 1, 4));
    EXPECT_EQ(expected, context().draw(nTexture, m_size));
    EXPECT_EQ(expected, context().draw(nTexture, m_size));
    expectNextWriteShown(texture, 2, context(), nTexture);
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, LeavesTheTextureWithoutAnImageWhenReleased)
{
    SharedTexture texture(device(), m_size);
    texture.write(1);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    EXPECT_TRUE(release(hSurface));
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_EQ(blackImage(m_size), context().draw(nTexture, m_size));
    texture.write(2);
    EXPECT_EQ(blackImage(m_size), context().draw(nTexture, m_size));
    EXPECT_TRUE(release(hSurface)) << "once more is no error";
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
    const QImage expected = texture.write(3);
    EXPECT_TRUE(bind(hSurface));
    EXPECT_EQ(expected, context().draw(nTexture, m_size));
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
    EXPECT_EQ(GLenum{GL_NO_ERROR}, context().gl().glGetError());
}

TEST_F(SoftEglBindTest, TakesTheImageAwayLaterWhenReleasedWithoutAContext)
{
    SharedTexture texture(device(), m_size);
    texture.write(1);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    context().doneCurrent();
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(context().makeCurrent());
    EXPECT_EQ(blackImage(m_size), context().draw(nTexture, m_size));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, RefusesWhatCannotBeBound)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    const EGLSurface hPlain = makeSurface(texture, EGL_NO_TEXTURE);
    GLuint nTexture = context().makeTexture();
    EXPECT_EQ(EGL_FALSE, eglBindTexImage(display(), hSurface, EGL_SINGLE_BUFFER));
    EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
    EXPECT_EQ(EGL_FALSE, eglReleaseTexImage(display(), hSurface, EGL_SINGLE_BUFFER));
    EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
    EXPECT_FALSE(bind(hPlain));
    EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
    EXPECT_FALSE(release(hPlain));
    EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
    EXPECT_TRUE(bind(hSurface));
    EXPECT_FALSE(bind(hSurface)) << "it is bound already";
    EXPECT_EQ(EGL_BAD_ACCESS, eglGetError());
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_TRUE(destroy(hPlain));
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, RefusesImmutableTextures)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    ASSERT_GE(context().context().format().majorVersion(), 3) << "the driver gives out its newest";
    context().context().extraFunctions()->glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, k_nWidth, k_nHeight);
    EXPECT_FALSE(bind(hSurface));
    EXPECT_EQ(EGL_BAD_MATCH, eglGetError());
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
    EXPECT_EQ(GLenum{GL_NO_ERROR}, context().gl().glGetError());
}

TEST_F(SoftEglBindTest, DoesNothingWithoutAContext)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    context().doneCurrent();
    EXPECT_TRUE(bind(hSurface));
    EXPECT_EQ(EGL_SUCCESS, eglGetError());
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_TRUE(context().makeCurrent());
}

TEST_F(SoftEglBindTest, GivesTheTextureToTheSurfaceThatIsBoundLast)
{
    SharedTexture first(device(), m_size);
    SharedTexture second(device(), QSize(9, 40));
    first.write(1);
    const EGLSurface hFirst = makeSurface(first);
    const EGLSurface hSecond = makeSurface(second);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hFirst));
    const QImage expected = second.write(2);
    EXPECT_TRUE(bind(hSecond));
    EXPECT_EQ(1U, softegl::BoundTextures());
    const QImage other = first.write(3);
    EXPECT_EQ(expected, context().draw(nTexture, second.size()));
    EXPECT_TRUE(release(hFirst)) << "it is not bound any more, which is no error";
    EXPECT_EQ(expected, context().draw(nTexture, second.size()));
    GLuint nOther = context().makeTexture();
    EXPECT_TRUE(bind(hFirst));
    EXPECT_EQ(other, context().draw(nOther, first.size()));
    EXPECT_EQ(expected, context().draw(nTexture, second.size()));
    for (const EGLSurface hSurface : {hFirst, hSecond}) {
        EXPECT_TRUE(release(hSurface));
        EXPECT_TRUE(destroy(hSurface));
    }
    context().gl().glDeleteTextures(1, &nTexture);
    context().gl().glDeleteTextures(1, &nOther);
}

TEST_F(SoftEglBindTest, GivesOneTextureToSurfacesOfEveryShape)
{
    GLuint nTexture = context().makeTexture();
    for (const QSize &size : {m_size, QSize(k_nWidth + 1, k_nHeight), QSize(k_nWidth - 1, k_nHeight), m_size,
                              QSize(k_nWidth, k_nHeight + 1), QSize(k_nWidth, k_nHeight - 1)}) {
        for (const EGLint nFormat : {EGL_TEXTURE_RGBA, EGL_TEXTURE_RGB, EGL_TEXTURE_RGBA}) {
            SharedTexture texture(device(), size);
            const EGLSurface hSurface = makeSurface(texture, nFormat);
            QImage expected = texture.write(size.width() + size.height());
            if (nFormat == EGL_TEXTURE_RGB) {
                expected = opaque(expected);
            }
            context().gl().glBindTexture(GL_TEXTURE_2D, nTexture);
            EXPECT_TRUE(bind(hSurface));
            EXPECT_EQ(expected, context().draw(nTexture, size)) << size.width() << 'x' << size.height();
            EXPECT_EQ(GLenum{GL_NO_ERROR}, context().gl().glGetError());
            EXPECT_TRUE(destroy(hSurface)); // still bound: the next one takes its place
        }
    }
    EXPECT_EQ(1U, softegl::BoundTextures());
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, GoesOnShowingADestroyedSurfaceUntilItIsReleased)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    EXPECT_EQ(0U, softegl::LiveSurfaces());
    EXPECT_EQ(1U, softegl::BoundTextures());
    expectNextWriteShown(texture, 8, context(), nTexture);
    EXPECT_FALSE(destroy(hSurface));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
    EXPECT_TRUE(release(hSurface));
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_EQ(blackImage(m_size), context().draw(nTexture, m_size));
    EXPECT_FALSE(release(hSurface));
    EXPECT_EQ(EGL_BAD_SURFACE, eglGetError());
    context().gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, ReleasesWhenTheTextureIsDeleted)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
    EXPECT_EQ(0U, softegl::BoundTextures());

    // The name comes again; the texture that has it now is somebody else's.
    context().gl().glBindTexture(GL_TEXTURE_2D, nTexture);
    context().gl().glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    QImage own(m_size, QImage::Format_RGBA8888);
    own.fill(Qt::yellow);
    context().gl().glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, k_nWidth, k_nHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                                own.constBits());
    texture.write(1);
    EXPECT_EQ(own, context().draw(nTexture, m_size));
    context().gl().glDeleteTextures(1, &nTexture);

    GLuint nNew = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    expectNextWriteShown(texture, 2, context(), nNew);
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nNew);
}

TEST_F(SoftEglBindTest, ReleasesWhenTheTextureIsDefinedAnew)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    QImage own(m_size, QImage::Format_RGBA8888);
    own.fill(Qt::cyan);
    EXPECT_TRUE(bind(hSurface));
    context().gl().glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(1U, softegl::BoundTextures()) << "another level";
    context().gl().glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, k_nWidth, k_nHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                                own.constBits());
    EXPECT_EQ(0U, softegl::BoundTextures());
    texture.write(1);
    EXPECT_EQ(own, context().draw(nTexture, m_size));

    EXPECT_TRUE(bind(hSurface));
    expectNextWriteShown(texture, 2, context(), nTexture);
    context().gl().glCopyTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 0, 0, 1, 1, 0);
    EXPECT_EQ(0U, softegl::BoundTextures());

    GLuint nStorage = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    context().context().extraFunctions()->glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 4, 4);
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(destroy(hSurface));
    context().gl().glDeleteTextures(1, &nTexture);
    context().gl().glDeleteTextures(1, &nStorage);
}

TEST_F(SoftEglBindTest, ReleasesWhenTheContextIsLost)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    dropContext();
    EXPECT_EQ(0U, softegl::BoundTextures());
    texture.write(1);

    GlContext next;
    GLuint nTexture = next.makeTexture();
    EXPECT_TRUE(bind(hSurface));
    expectNextWriteShown(texture, 2, next, nTexture);
    EXPECT_TRUE(release(hSurface));
    EXPECT_TRUE(destroy(hSurface));
    next.gl().glDeleteTextures(1, &nTexture);
}

TEST_F(SoftEglBindTest, KeepsEachContextsDefaultTextureApart)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    context().gl().glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_TRUE(bind(hSurface));
    EXPECT_EQ(1U, softegl::BoundTextures());
    {
        GlContext sibling(&context().context());
        sibling.gl().glBindTexture(GL_TEXTURE_2D, 0);
        sibling.gl().glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        EXPECT_EQ(1U, softegl::BoundTextures());
        const GLuint nNone = 0;
        sibling.gl().glDeleteTextures(1, &nNone);
        EXPECT_EQ(1U, softegl::BoundTextures());
    }
    EXPECT_EQ(1U, softegl::BoundTextures());
    dropContext();
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglBindTest, FollowsATextureThroughSharingContexts)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    {
        GlContext sibling(&context().context());
        const QImage written = texture.write(1);
        EXPECT_EQ(written, sibling.readUnnoticed(nTexture, m_size));
        EXPECT_FALSE(bind(hSurface));
        EXPECT_EQ(EGL_BAD_ACCESS, eglGetError());
        dropContext();
        EXPECT_EQ(1U, softegl::BoundTextures()) << "the sibling still has the texture";
        EXPECT_TRUE(sibling.makeCurrent());
        expectNextWriteShown(texture, 2, sibling, nTexture);
        sibling.gl().glDeleteTextures(1, &nTexture);
        EXPECT_EQ(0U, softegl::BoundTextures());
    }
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglBindTest, KeepsContextsAndDevicesApart)
{
    SoftDevice otherDevice;
    SharedTexture first(device(), m_size);
    SharedTexture second(otherDevice, m_size);
    const EGLSurface hFirst = makeSurface(first);
    const EGLSurface hSecond = makeSurface(second);
    GLuint nFirst = context().makeTexture();
    EXPECT_TRUE(bind(hFirst));
    {
        GlContext other;
        GLuint nSecond = other.makeTexture();
        EXPECT_EQ(nFirst, nSecond) << "the names of contexts that do not share are alike";
        EXPECT_TRUE(bind(hSecond));
        const QImage firstImage = first.write(1);
        const QImage secondImage = second.write(2);
        EXPECT_EQ(secondImage, other.draw(nSecond, m_size));
        EXPECT_TRUE(context().makeCurrent());
        EXPECT_EQ(firstImage, context().draw(nFirst, m_size));
        EXPECT_TRUE(other.makeCurrent());
        other.gl().glDeleteTextures(1, &nSecond);
        EXPECT_EQ(1U, softegl::BoundTextures());
    }
    EXPECT_TRUE(context().makeCurrent());
    expectNextWriteShown(first, 3, context(), nFirst);
    EXPECT_TRUE(destroy(hSecond));
    EXPECT_TRUE(destroy(hFirst));
    context().gl().glDeleteTextures(1, &nFirst);
}

TEST_F(SoftEglBindTest, ShowsOneImageInTwoTextures)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hFirst = makeSurface(texture);
    const EGLSurface hSecond = makeSurface(texture);
    GLuint textures[] = {context().makeTexture(), 0};
    EXPECT_TRUE(bind(hFirst));
    textures[1] = context().makeTexture();
    EXPECT_TRUE(bind(hSecond));
    EXPECT_EQ(2U, softegl::BoundTextures());
    const QImage expected = texture.write(5);
    EXPECT_EQ(expected, context().draw(textures[0], m_size));
    EXPECT_EQ(expected, context().draw(textures[1], m_size));
    context().gl().glDeleteTextures(2, textures);
    EXPECT_EQ(0U, softegl::BoundTextures());
    EXPECT_TRUE(destroy(hFirst));
    EXPECT_TRUE(destroy(hSecond));
}

TEST_F(SoftEglBindTest, LeavesTheGlStateAlone)
{
    SharedTexture texture(device(), m_size);
    const EGLSurface hSurface = makeSurface(texture);
    GLuint nTexture = context().makeTexture();
    EXPECT_TRUE(bind(hSurface));
    QOpenGLFunctions &gl = context().gl();
    GLuint nOther = context().makeTexture();
    GLuint nBuffer = 0;
    gl.glGenBuffers(1, &nBuffer);
    gl.glActiveTexture(GL_TEXTURE3);
    gl.glBindTexture(GL_TEXTURE_2D, nOther);
    gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, nBuffer);
    const std::pair<GLenum, GLint> pixelStore[] = {{GL_UNPACK_ALIGNMENT, 1},
                                                   {GL_UNPACK_ROW_LENGTH, 5},
                                                   {GL_UNPACK_SKIP_ROWS, 2},
                                                   {GL_UNPACK_SKIP_PIXELS, 3}};
    for (const auto &[nName, nValue] : pixelStore) {
        gl.glPixelStorei(nName, nValue);
    }

    const QImage expected = texture.write(9);

    const auto get = [&gl](GLenum nName) {
        GLint nValue = -1;
        gl.glGetIntegerv(nName, &nValue);
        return nValue;
    };
    EXPECT_EQ(GL_TEXTURE3, get(GL_ACTIVE_TEXTURE));
    EXPECT_EQ(GLint(nOther), get(GL_TEXTURE_BINDING_2D));
    EXPECT_EQ(GLint(nBuffer), get(GL_PIXEL_UNPACK_BUFFER_BINDING));
    for (const auto &[nName, nValue] : pixelStore) {
        EXPECT_EQ(nValue, get(nName)) << nName;
    }
    EXPECT_EQ(GLenum{GL_NO_ERROR}, gl.glGetError());
    gl.glActiveTexture(GL_TEXTURE0);
    gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    EXPECT_EQ(expected, context().draw(nTexture, m_size));
    gl.glDeleteBuffers(1, &nBuffer);
    gl.glDeleteTextures(1, &nOther);
    gl.glDeleteTextures(1, &nTexture);
    EXPECT_TRUE(destroy(hSurface));
}

TEST_F(SoftEglBindTest, WorksInDesktopContextsToo)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 1);
    dropContext();
    GlContext desktop(nullptr, format);
    ASSERT_FALSE(desktop.context().isOpenGLES());
    for (const EGLint nFormat : {EGL_TEXTURE_RGBA, EGL_TEXTURE_RGB}) {
        SharedTexture texture(device(), m_size);
        const EGLSurface hSurface = makeSurface(texture, nFormat);
        GLuint nTexture = desktop.makeTexture();
        EXPECT_TRUE(bind(hSurface));
        QImage expected = texture.write(1);
        if (nFormat == EGL_TEXTURE_RGB) {
            expected = opaque(expected);
        }
        EXPECT_EQ(expected, desktop.draw(nTexture, m_size));
        EXPECT_TRUE(release(hSurface));
        EXPECT_EQ(blackImage(m_size), desktop.draw(nTexture, m_size));
        EXPECT_TRUE(destroy(hSurface));
        desktop.gl().glDeleteTextures(1, &nTexture);
        EXPECT_EQ(GLenum{GL_NO_ERROR}, desktop.gl().glGetError());
    }
}

} // namespace
} // namespace xelttest
