#pragma once

#include <EGL/egl.h>

#include <QImage>
#include <QSize>

#include <GLES2/gl2.h>

namespace xelttest {

// A set of EGL's functions: the ones that a program finds, or those of the real library.
struct EglFunctions
{
    decltype(&eglCreateContext) create;
    decltype(&eglDestroyContext) destroy;
    decltype(&eglMakeCurrent) makeCurrent;

    static EglFunctions found();
    static EglFunctions real();
};

// A context made and destroyed by EGL's own functions, which may happen on any thread. It is current on a
// surface of one pixel.
class RawContext
{
public:
    explicit RawContext(EGLDisplay hDisplay, const EglFunctions &egl = EglFunctions::found(),
                        EGLContext hShare = EGL_NO_CONTEXT);
    ~RawContext(); // destroys it if destroy() did not, and makes it not current first
    RawContext(const RawContext &) = delete;
    RawContext &operator=(const RawContext &) = delete;

    EGLContext handle() const { return m_hContext; }
    bool makeCurrent();
    bool doneCurrent();
    bool destroy(); // also while it is current

    // These need it to be current. Makes a texture and binds it.
    static GLuint makeTexture();
    static void deleteTexture(GLuint nTexture);
    // Its level 0, read with the glReadPixels that the library notices.
    static QImage read(GLuint nTexture, const QSize &size);

private:
    const EGLDisplay m_hDisplay;
    const EglFunctions m_egl;
    EGLSurface m_hSurface = EGL_NO_SURFACE;
    EGLContext m_hContext = EGL_NO_CONTEXT;
};

} // namespace xelttest
