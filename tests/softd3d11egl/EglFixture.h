#pragma once

#include <gtest/gtest.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QSize>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "softd3d11/SoftEgl.h"

struct ID3D11Device;
struct ID3D11Texture2D;

namespace xelttest {

// A GL context of Qt's with a surface to make it current on.
class GlContext
{
public:
    explicit GlContext(QOpenGLContext *pShare = nullptr, const QSurfaceFormat &format = {});
    ~GlContext();
    GlContext(const GlContext &) = delete;
    GlContext &operator=(const GlContext &) = delete;

    bool makeCurrent() { return m_context.makeCurrent(&m_surface); }
    void doneCurrent() { m_context.doneCurrent(); }
    QOpenGLContext &context() { return m_context; }
    QSurface *surface() { return &m_surface; }
    QOpenGLFunctions &gl() { return *m_context.functions(); }

    // A texture with the parameters of a picture and no image, left bound.
    GLuint makeTexture();
    // Draws the texture over a framebuffer of that size, texture row 0 on top, and reads it back.
    QImage draw(GLuint nTexture, const QSize &size);
    // Reads level 0 of the texture through a framebuffer, with a glReadPixels that nobody stands before.
    QImage readUnnoticed(GLuint nTexture, const QSize &size);

private:
    QOpenGLContext m_context;
    QOffscreenSurface m_surface;
};

// A shared BGRA texture of the software device, and the reference to it.
class SharedTexture
{
public:
    SharedTexture(ID3D11Device *pDevice, const QSize &size);
    ~SharedTexture();
    SharedTexture(const SharedTexture &) = delete;
    SharedTexture &operator=(const SharedTexture &) = delete;

    // Writes a picture that differs in every pixel, and for every seed, through the device. What a texture
    // must show of it.
    QImage write(int nSeed);
    QSize size() const { return m_size; }
    EGLClientBuffer handle() const { return m_hShared; }
    ID3D11Texture2D *texture() { return m_pTexture; }

private:
    ID3D11Texture2D *m_pTexture = nullptr;
    EGLClientBuffer m_hShared = nullptr;
    QSize m_size;
};

class SoftDevice
{
public:
    SoftDevice();
    ~SoftDevice();
    SoftDevice(const SoftDevice &) = delete;
    SoftDevice &operator=(const SoftDevice &) = delete;
    operator ID3D11Device *() const { return m_pDevice; }

private:
    ID3D11Device *m_pDevice = nullptr;
};

// A current context, a device, and the check that nothing is left over when the test is done with them.
class EglFixture : public ::testing::Test
{
protected:
    EglFixture();
    ~EglFixture() override;

    EGLDisplay display() const { return m_hDisplay; }
    EGLConfig config() const { return m_hConfig; }
    ID3D11Device *device() const { return *m_pDevice; }
    GlContext &context() { return *m_pContext; }
    void dropContext() { m_pContext.reset(); }

    // The attributes that surfaces for pictures have.
    static std::vector<EGLint> attributes(const QSize &size, EGLint nFormat = EGL_TEXTURE_RGBA);
    // eglCreatePbufferFromClientBuffer with these.
    EGLSurface makeSurface(const SharedTexture &texture, EGLint nFormat = EGL_TEXTURE_RGBA);
    EGLSurface makeSurface(EGLClientBuffer hBuffer, const std::vector<EGLint> &attributes);
    bool bind(EGLSurface hSurface)
    {
        return eglBindTexImage(m_hDisplay, hSurface, EGL_BACK_BUFFER) != EGL_FALSE;
    }
    bool release(EGLSurface hSurface)
    {
        return eglReleaseTexImage(m_hDisplay, hSurface, EGL_BACK_BUFFER) != EGL_FALSE;
    }
    bool destroy(EGLSurface hSurface) { return eglDestroySurface(m_hDisplay, hSurface) != EGL_FALSE; }
    // Writes the picture of that seed and expects the GL texture to show it when it is drawn.
    static void expectNextWriteShown(SharedTexture &texture, int nSeed, GlContext &context, GLuint nTexture);

private:
    std::unique_ptr<GlContext> m_pContext;
    std::unique_ptr<SoftDevice> m_pDevice;
    EGLDisplay m_hDisplay = EGL_NO_DISPLAY;
    EGLConfig m_hConfig = nullptr;
};

// The configuration that a display offers for surfaces of pictures; empty when the call fails.
std::optional<EGLConfig> pictureConfig(EGLDisplay hDisplay);

// What a texture without an image shows.
QImage blackImage(const QSize &size);

} // namespace xelttest
