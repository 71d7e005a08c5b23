#pragma once

#include <EGL/egl.h>
#include <cstdint>
#include <memory>

namespace softd3d11 {
class SharedImage;
}

namespace softegl {

// What eglCreatePbufferFromClientBuffer is told about a surface.
struct SurfaceAttributes
{
    EGLint nWidth = 0;
    EGLint nHeight = 0;
    EGLint nTextureFormat = EGL_NO_TEXTURE;
    EGLint nTextureTarget = EGL_NO_TEXTURE;
    EGLint nMipmapTexture = EGL_FALSE;
    EGLint nLargestPbuffer = EGL_FALSE;
};

// A pbuffer on a shared image. Its address is its EGL handle. While it lives the bridge hears of writes to
// the image. Apart from construction and destruction it is constant.
class Surface
{
public:
    Surface(EGLDisplay hDisplay, EGLConfig hConfig, const SurfaceAttributes &attributes,
            std::shared_ptr<softd3d11::SharedImage> pImage);
    ~Surface();
    Surface(const Surface &) = delete;
    Surface &operator=(const Surface &) = delete;

    EGLDisplay Display() const noexcept { return m_hDisplay; }
    const softd3d11::SharedImage &Image() const noexcept { return *m_pImage; }
    const SurfaceAttributes &Attributes() const noexcept { return m_attributes; }
    bool IsOpaque() const noexcept { return m_attributes.nTextureFormat == EGL_TEXTURE_RGB; }

    // EGL_SUCCESS, or the error of eglQuerySurface.
    EGLint Query(EGLint nAttribute, EGLint *pnValue) const noexcept;

private:
    const EGLDisplay m_hDisplay;
    const EGLConfig m_hConfig;
    const SurfaceAttributes m_attributes;
    const std::shared_ptr<softd3d11::SharedImage> m_pImage;
    std::uint64_t m_nListener = 0;
};

// Checks display, configuration, attributes and share handle in this order. EGL_SUCCESS and a surface, or the
// error of eglCreatePbufferFromClientBuffer and none.
EGLint MakeSurface(EGLDisplay hDisplay, EGLConfig hConfig, EGLClientBuffer hShared, const EGLint *pAttributes,
                   std::shared_ptr<Surface> &pSurface);

// EGL_SUCCESS for a display that is initialised, otherwise the error that says what is wrong with it.
EGLint CheckDisplay(EGLDisplay hDisplay) noexcept;

} // namespace softegl
