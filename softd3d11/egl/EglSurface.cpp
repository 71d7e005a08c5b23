#include "softd3d11/egl/EglSurface.h"

#include "softd3d11/egl/EglBridge.h"
#include "softd3d11/egl/RealEgl.h"

#include "softd3d11/SharedImage.h"

#include <memory>
#include <utility>

namespace softegl {
namespace {

EGLint ReadAttributes(const EGLint *pAttributes, SurfaceAttributes &attributes) noexcept
{
    for (; pAttributes != nullptr && pAttributes[0] != EGL_NONE; pAttributes += 2) {
        const EGLint nValue = pAttributes[1];
        switch (pAttributes[0]) {
        case EGL_WIDTH:
        case EGL_HEIGHT:
            if (nValue < 0) {
                return EGL_BAD_PARAMETER;
            }
            (pAttributes[0] == EGL_WIDTH ? attributes.nWidth : attributes.nHeight) = nValue;
            break;
        case EGL_TEXTURE_FORMAT:
            if (nValue != EGL_NO_TEXTURE && nValue != EGL_TEXTURE_RGB && nValue != EGL_TEXTURE_RGBA) {
                return EGL_BAD_ATTRIBUTE;
            }
            attributes.nTextureFormat = nValue;
            break;
        case EGL_TEXTURE_TARGET:
            if (nValue != EGL_NO_TEXTURE && nValue != EGL_TEXTURE_2D) {
                return EGL_BAD_ATTRIBUTE;
            }
            attributes.nTextureTarget = nValue;
            break;
        case EGL_MIPMAP_TEXTURE:
            attributes.nMipmapTexture = nValue;
            break;
        case EGL_LARGEST_PBUFFER:
            attributes.nLargestPbuffer = nValue;
            break;
        default:
            return EGL_BAD_ATTRIBUTE;
        }
    }
    const bool blFormat = attributes.nTextureFormat != EGL_NO_TEXTURE;
    const bool blTarget = attributes.nTextureTarget != EGL_NO_TEXTURE;
    return blFormat == blTarget ? EGL_SUCCESS : EGL_BAD_MATCH;
}

// Whether the configuration allows such a surface.
EGLint CheckConfig(EGLDisplay hDisplay, EGLConfig hConfig, const SurfaceAttributes &attributes) noexcept
{
    EGLint nTypes = 0;
    EGLint nBindRgb = EGL_FALSE;
    EGLint nBindRgba = EGL_FALSE;
    if (eglGetConfigAttrib(hDisplay, hConfig, EGL_SURFACE_TYPE, &nTypes) == EGL_FALSE ||
        eglGetConfigAttrib(hDisplay, hConfig, EGL_BIND_TO_TEXTURE_RGB, &nBindRgb) == EGL_FALSE ||
        eglGetConfigAttrib(hDisplay, hConfig, EGL_BIND_TO_TEXTURE_RGBA, &nBindRgba) == EGL_FALSE) {
        return Real().GetError();
    }
    if ((nTypes & EGL_PBUFFER_BIT) == 0) {
        return EGL_BAD_MATCH;
    }
    const bool blRgbMissing = attributes.nTextureFormat == EGL_TEXTURE_RGB && nBindRgb == EGL_FALSE;
    const bool blRgbaMissing = attributes.nTextureFormat == EGL_TEXTURE_RGBA && nBindRgba == EGL_FALSE;
    return blRgbMissing || blRgbaMissing ? EGL_BAD_ATTRIBUTE : EGL_SUCCESS;
}

bool HasSize(const softd3d11::SharedImage &image, const SurfaceAttributes &attributes) noexcept
{
    return image.Width() == static_cast<unsigned>(attributes.nWidth) &&
           image.Height() == static_cast<unsigned>(attributes.nHeight);
}

} // namespace

Surface::Surface(EGLDisplay hDisplay, EGLConfig hConfig, const SurfaceAttributes &attributes,
                 std::shared_ptr<softd3d11::SharedImage> pImage)
    : m_hDisplay(hDisplay),
      m_hConfig(hConfig),
      m_attributes(attributes),
      m_pImage(std::move(pImage)),
      m_nListener(m_pImage->AddListener([] { EglBridge::Instance().ImageWritten(); }))
{
}

Surface::~Surface()
{
    m_pImage->RemoveListener(m_nListener);
}

EGLint Surface::Query(EGLint nAttribute, EGLint *pnValue) const noexcept
{
    if (pnValue == nullptr) {
        return EGL_BAD_PARAMETER;
    }
    if (nAttribute == EGL_CONFIG_ID) {
        return eglGetConfigAttrib(m_hDisplay, m_hConfig, EGL_CONFIG_ID, pnValue) != EGL_FALSE
                   ? EGL_SUCCESS
                   : Real().GetError();
    }
    const std::pair<EGLint, EGLint> values[] = {
        {EGL_WIDTH, m_attributes.nWidth},
        {EGL_HEIGHT, m_attributes.nHeight},
        {EGL_TEXTURE_FORMAT, m_attributes.nTextureFormat},
        {EGL_TEXTURE_TARGET, m_attributes.nTextureTarget},
        {EGL_MIPMAP_TEXTURE, m_attributes.nMipmapTexture},
        {EGL_LARGEST_PBUFFER, m_attributes.nLargestPbuffer},
        {EGL_MIPMAP_LEVEL, 0},
        {EGL_RENDER_BUFFER, EGL_BACK_BUFFER},
        {EGL_HORIZONTAL_RESOLUTION, EGL_UNKNOWN},
        {EGL_VERTICAL_RESOLUTION, EGL_UNKNOWN},
        {EGL_PIXEL_ASPECT_RATIO, EGL_UNKNOWN},
        {EGL_SWAP_BEHAVIOR, EGL_BUFFER_PRESERVED},
        {EGL_MULTISAMPLE_RESOLVE, EGL_MULTISAMPLE_RESOLVE_DEFAULT},
        {EGL_VG_COLORSPACE, EGL_VG_COLORSPACE_sRGB},
        {EGL_VG_ALPHA_FORMAT, EGL_VG_ALPHA_FORMAT_NONPRE},
    };
    for (const auto &[nKnown, nValue] : values) {
        if (nKnown == nAttribute) {
            *pnValue = nValue;
            return EGL_SUCCESS;
        }
    }
    return EGL_BAD_ATTRIBUTE;
}

EGLint MakeSurface(EGLDisplay hDisplay, EGLConfig hConfig, EGLClientBuffer hShared, const EGLint *pAttributes,
                   std::shared_ptr<Surface> &pSurface)
{
    SurfaceAttributes attributes;
    EGLint nError = CheckDisplay(hDisplay);
    if (nError == EGL_SUCCESS) {
        nError = ReadAttributes(pAttributes, attributes);
    }
    if (nError == EGL_SUCCESS) {
        nError = CheckConfig(hDisplay, hConfig, attributes);
    }
    if (nError != EGL_SUCCESS) {
        return nError;
    }
    std::shared_ptr<softd3d11::SharedImage> pImage = softd3d11::FindSharedImage(hShared);
    if (!pImage || !HasSize(*pImage, attributes)) {
        return EGL_BAD_PARAMETER;
    }
    pSurface = std::make_shared<Surface>(hDisplay, hConfig, attributes, std::move(pImage));
    return EGL_SUCCESS;
}

EGLint CheckDisplay(EGLDisplay hDisplay) noexcept
{
    // Asking no display for its version is allowed.
    if (hDisplay == EGL_NO_DISPLAY) {
        return EGL_BAD_DISPLAY;
    }
    return Real().QueryString(hDisplay, EGL_VERSION) != nullptr ? EGL_SUCCESS : Real().GetError();
}

} // namespace softegl
