#include "RawContext.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace xelttest {
namespace {

template <typename Function> Function *gl(const char *pszName)
{
    return reinterpret_cast<Function *>(eglGetProcAddress(pszName));
}

template <typename Function> void find(void *pLibrary, const char *pszName, Function &function)
{
    function = reinterpret_cast<Function>(dlsym(pLibrary, pszName));
    EXPECT_NE(nullptr, function) << pszName;
}

EGLConfig anyConfig(EGLDisplay hDisplay)
{
    const EGLint attributes[] = {EGL_SURFACE_TYPE,
                                 EGL_PBUFFER_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_ES2_BIT,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_ALPHA_SIZE,
                                 8,
                                 EGL_NONE};
    EGLConfig hConfig = nullptr;
    EGLint nCount = 0;
    EXPECT_NE(EGL_FALSE, eglChooseConfig(hDisplay, attributes, &hConfig, 1, &nCount));
    EXPECT_EQ(1, nCount);
    return hConfig;
}

} // namespace

EglFunctions EglFunctions::found()
{
    return {eglCreateContext, eglDestroyContext, eglMakeCurrent};
}

EglFunctions EglFunctions::real()
{
    void *const pLibrary = dlopen("libEGL.so.1", RTLD_LAZY | RTLD_LOCAL);
    EglFunctions egl{};
    find(pLibrary, "eglCreateContext", egl.create);
    find(pLibrary, "eglDestroyContext", egl.destroy);
    find(pLibrary, "eglMakeCurrent", egl.makeCurrent);
    return egl;
}

RawContext::RawContext(EGLDisplay hDisplay, const EglFunctions &egl, EGLContext hShare)
    : m_hDisplay(hDisplay), m_egl(egl)
{
    const EGLConfig hConfig = anyConfig(hDisplay);
    const EGLint onePixel[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    EXPECT_NE(EGL_FALSE, eglBindAPI(EGL_OPENGL_ES_API));
    m_hSurface = eglCreatePbufferSurface(hDisplay, hConfig, onePixel);
    EXPECT_NE(EGL_NO_SURFACE, m_hSurface);
    m_hContext = m_egl.create(hDisplay, hConfig, hShare, version);
    EXPECT_NE(EGL_NO_CONTEXT, m_hContext);
}

RawContext::~RawContext()
{
    EXPECT_TRUE(doneCurrent());
    if (m_hContext != EGL_NO_CONTEXT) {
        EXPECT_TRUE(destroy());
    }
    EXPECT_NE(EGL_FALSE, eglDestroySurface(m_hDisplay, m_hSurface));
}

bool RawContext::makeCurrent()
{
    return m_egl.makeCurrent(m_hDisplay, m_hSurface, m_hSurface, m_hContext) != EGL_FALSE;
}

bool RawContext::doneCurrent()
{
    return m_egl.makeCurrent(m_hDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) != EGL_FALSE;
}

bool RawContext::destroy()
{
    const EGLContext hContext = m_hContext;
    m_hContext = EGL_NO_CONTEXT;
    return m_egl.destroy(m_hDisplay, hContext) != EGL_FALSE;
}

GLuint RawContext::makeTexture()
{
    GLuint nTexture = 0;
    gl<decltype(glGenTextures)>("glGenTextures")(1, &nTexture);
    gl<decltype(glBindTexture)>("glBindTexture")(GL_TEXTURE_2D, nTexture);
    return nTexture;
}

void RawContext::deleteTexture(GLuint nTexture)
{
    gl<decltype(glDeleteTextures)>("glDeleteTextures")(1, &nTexture);
}

QImage RawContext::read(GLuint nTexture, const QSize &size)
{
    GLuint nFramebuffer = 0;
    gl<decltype(glGenFramebuffers)>("glGenFramebuffers")(1, &nFramebuffer);
    const auto bindFramebuffer = gl<decltype(glBindFramebuffer)>("glBindFramebuffer");
    bindFramebuffer(GL_FRAMEBUFFER, nFramebuffer);
    gl<decltype(glFramebufferTexture2D)>("glFramebufferTexture2D")(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                                                   GL_TEXTURE_2D, nTexture, 0);
    QImage image(size, QImage::Format_RGBA8888);
    image.fill(Qt::magenta);
    gl<decltype(glReadPixels)>("glReadPixels")(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE,
                                               image.bits());
    bindFramebuffer(GL_FRAMEBUFFER, 0);
    gl<decltype(glDeleteFramebuffers)>("glDeleteFramebuffers")(1, &nFramebuffer);
    return image;
}

} // namespace xelttest
