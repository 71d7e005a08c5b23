// Life cycle of CLS_D3D11EGL. Surface and conversion are in D3D11EGLSurface.cpp, drawing in
// D3D11EGLPainting.cpp.
#include "d3d11/CLS_D3D11EGL.h"

#include "d3d11/D3D11VP.h"
#include "d3d11/GeometryRenderer.h"
#include "interface/XeltRender.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"

#include <QOpenGLContext>
#include <algorithm>
#include <cstring>

namespace {

constexpr char kFile[] = "CLS_D3D11EGL";

// EGL was told to let go of the thread's context behind Qt's back; Qt still counts on it.
void MakeQtContextCurrentAgain()
{
    QOpenGLContext *pContext = QOpenGLContext::currentContext();
    if (pContext != nullptr && pContext->surface() != nullptr) {
        pContext->makeCurrent(pContext->surface());
    }
}

} // namespace

CLS_D3D11EGL::CLS_D3D11EGL() : m_nColorSpace(dx::kColorSpaceBt709), m_nColorRange(dx::kColorRangeLimited) {}

CLS_D3D11EGL::~CLS_D3D11EGL()
{
    Q_ASSERT(m_eglSurface == EGL_NO_SURFACE);
    qtlog::Debug("[CLS_D3D11EGL::~CLS_D3D11EGL]Success!");
}

int32_t CLS_D3D11EGL::SetDevice(void *pDevice)
{
    auto *pD3DDevice = static_cast<ID3D11Device *>(pDevice);
    if (pD3DDevice == nullptr) {
        return -1;
    }
    if (m_pD3DDevice && m_pD3DDevice.Get() != pD3DDevice) {
        m_pTexture.Reset();
        m_blDeviceChanged = true; // the rest is the painting thread's
    }
    m_pD3DDevice = ComPtr<ID3D11Device>(pD3DDevice);
    XELT_LOG("CLS_D3D11EGL::SetDevice this = %p m_pD3DDevice = %p", static_cast<void *>(this),
             static_cast<void *>(m_pD3DDevice.Get()));
    return 0;
}

void *CLS_D3D11EGL::Device() const
{
    return m_pD3DDevice.Get();
}

int32_t CLS_D3D11EGL::SetFrame(const void *pData, int32_t nLength)
{
    if (pData == nullptr || nLength < 1) {
        return -1;
    }
    VideoFrameDesc frame = {};
    std::memcpy(&frame, pData, std::min(static_cast<size_t>(nLength), sizeof(frame)));
    m_nFrameWidth = frame.iWidth;
    m_nFrameHeight = frame.iHeight;
    auto *pTexture = static_cast<ID3D11Texture2D *>(frame.pD3D11Texture);
    if (pTexture == nullptr) {
        return -1; // the old texture stays
    }
    m_pTexture = ComPtr<ID3D11Texture2D>(pTexture);
    m_nSlice = frame.nTextureSlice;
    m_blFramePending = true;
    return -1; // deliberate: nobody looks at it
}

void CLS_D3D11EGL::ClearFramePending()
{
    m_blFramePending = false;
}

void CLS_D3D11EGL::SetHue(double dHue)
{
    m_colorMatrix.setHue(dHue);
}

void CLS_D3D11EGL::SetSaturation(double dSaturation)
{
    m_colorMatrix.setSaturation(dSaturation);
}

void CLS_D3D11EGL::SetContrast(double dContrast)
{
    m_colorMatrix.setContrast(dContrast);
}

void CLS_D3D11EGL::SetBrightness(double dBrightness)
{
    m_colorMatrix.setBrightness(dBrightness);
}

void CLS_D3D11EGL::SetColorSpace(int32_t nColorSpace)
{
    m_nColorSpace = nColorSpace;
    m_colorMatrix.invalidate();
    if (m_pD3Dvp != nullptr) {
        m_pD3Dvp->setColorSpace(nColorSpace);
    }
}

void CLS_D3D11EGL::SetColorRange(int32_t nColorRange)
{
    m_nColorRange = nColorRange;
    m_colorMatrix.invalidate();
    if (m_pD3Dvp != nullptr) {
        m_pD3Dvp->setColorRange(nColorRange);
    }
}

int32_t CLS_D3D11EGL::InitD3D11EGL()
{
    if (platform::egl::BindApi(EGL_OPENGL_ES_API) == EGL_FALSE) {
        XELT_REPORT_ERROR(kFile, "CLS_D3D11EGL::InitD3D11EGL",
                          "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API fail, eglErr=%#x!",
                          platform::egl::GetError());
    }
    // Said after a failure too, deliberately.
    XELT_LOG("[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API Success!");
    if (m_program.CreateGlslResource() != 0) {
        return -1;
    }
    m_program.BindEglTextures(m_nFrameWidth, m_nFrameHeight);
    m_blMapped = false; // the new texture shows nothing yet
    return 0;
}

int32_t CLS_D3D11EGL::DrawFlagLocation() const
{
    return m_program.Locations().nDrawFlag;
}

int32_t CLS_D3D11EGL::DrawColorLocation() const
{
    return m_program.Locations().nDrawColor;
}

int32_t CLS_D3D11EGL::DrawAlphaLocation() const
{
    return m_program.Locations().nDrawAlpha;
}

void CLS_D3D11EGL::ReleaseEGL()
{
    if (m_eglSurface == EGL_NO_SURFACE) {
        return;
    }
    if (platform::egl::ReleaseTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER) == EGL_FALSE) {
        XELT_REPORT_ERROR(kFile, "CLS_D3D11EGL::ReleaseEGL", "eglReleaseTexImage fail!");
    }
    if (platform::egl::DestroySurface(m_eglDisplay, m_eglSurface) == EGL_FALSE) {
        XELT_REPORT_ERROR(kFile, "CLS_D3D11EGL::ReleaseEGL", "eglDestroySurface fail!");
    }
    m_eglSurface = EGL_NO_SURFACE;
    m_blSurfaceBound = false;
}

void CLS_D3D11EGL::ReleaseHostObjects()
{
    m_pTexture.Reset();
    m_pD3Dvp.reset();
    m_pd3dtex.Reset();
    m_pD3DDevice.Reset();
    m_blDeviceChanged = false;
}

bool CLS_D3D11EGL::HoldsContextObjects() const
{
    return m_eglSurface != EGL_NO_SURFACE || m_program.Program() != nullptr || m_program.Texture() != 0 ||
           m_pGeometryRenderer != nullptr;
}

void CLS_D3D11EGL::DestroyEglResource()
{
    if (m_eglDisplay != EGL_NO_DISPLAY) {
        platform::egl::MakeCurrent(m_eglDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        MakeQtContextCurrentAgain();
    }
    m_program.DestroyProgram();
    if (platform::egl::ReleaseThread() == EGL_FALSE) {
        XELT_REPORT_ERROR(kFile, "CLS_D3D11EGL::DestroyEglResource",
                          "[CLS_D3D11EGL::DestroyEglResource] eglReleaseThread fail! eglErr=%d.",
                          platform::egl::GetError());
    }
    MakeQtContextCurrentAgain();
    ReleaseEGL();
    m_pD3DDevice.Reset();
    m_pD3Dvp.reset();
    m_pd3dtex.Reset();
    m_blDeviceChanged = false;
    if (m_pGeometryRenderer != nullptr) {
        m_pGeometryRenderer->destroy();
    }
    m_pTexture.Reset();
    m_program.DestroyTextures();
    m_colorMatrix.invalidate();
    m_rcDrawArea = geometry::NormRect();
    m_rcEZoom = geometry::NormRect();
}

void CLS_D3D11EGL::ReleaseContextObjects()
{
    ReleaseEGL();
    m_program.DestroyProgram();
    m_program.DestroyTextures();
    m_pGeometryRenderer.reset();
    m_colorMatrix.invalidate();
    m_nBoundTexture = 0;
    // A frame that does not wait any more, because the host has stopped drawing, shows again all the same.
    m_blConvertAgain = m_blConvertAgain || m_blMapped;
    m_blMapped = false;
}
