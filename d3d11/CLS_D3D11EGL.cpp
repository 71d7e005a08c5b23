// Life cycle of CLS_D3D11EGL, and all that it reports: an error record names this file, so its line has to be one
// of this file. What the host hands in is in D3D11EGLFrames.cpp, the steps of surface and conversion are in
// D3D11EGLSurface.cpp, drawing is in D3D11EGLPainting.cpp.
#include "d3d11/CLS_D3D11EGL.h"

#include "d3d11/D3D11VP.h"
#include "d3d11/GeometryRenderer.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"

#include <QOpenGLContext>

namespace {

constexpr char kFile[] = "CLS_D3D11EGL";
constexpr char kEnsureSurface[] = "CLS_D3D11EGL::EnsureSurface";
constexpr char kMap[] = "CLS_D3D11EGL::Map";

// The bound texture after a conversion failed: equal to no name.
constexpr uint32_t kBindAgain = static_cast<uint32_t>(-1);

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

int32_t CLS_D3D11EGL::InitD3D11EGL()
{
    if (platform::egl::BindApi(EGL_OPENGL_ES_API) == EGL_FALSE) {
        XELT_REPORT_ERROR(kFile, "CLS_D3D11EGL::InitD3D11EGL",
                          "[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API fail, eglErr=%#x!",
                          platform::egl::GetError());
    }
    // Said after a failure too, deliberately.
    XELT_LOG("[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API Success!");
    if (m_program.CreateGlslResource(XELT_POSITION(kFile, "CLS_D3D11EGL::CreateGlslResource")) != 0) {
        return -1;
    }
    m_program.BindEglTextures(XELT_POSITION(kFile, "CLS_D3D11EGL::BindEglTextures"), m_nFrameWidth,
                              m_nFrameHeight);
    m_blMapped = false; // the new texture shows nothing yet
    return 0;
}

bool CLS_D3D11EGL::EnsureSurface(int32_t nWidth, int32_t nHeight)
{
    if (m_eglSurface != EGL_NO_SURFACE && m_szSurface == QSize(nWidth, nHeight)) {
        return true;
    }
    if (!m_pD3DDevice) {
        XELT_REPORT_ERROR(kFile, kEnsureSurface,
                          "[CLS_D3D11EGL::EnsureSurface] NULL == m_pD3DDevice,this = %p",
                          static_cast<void *>(this));
        return false;
    }
    if (!EnsureDisplay()) {
        XELT_REPORT_ERROR(kFile, kEnsureSurface,
                          "[CLS_EGLBase::CreateEglResource]nullptr == m_eglDisplay! eglErr=%d",
                          platform::egl::GetError());
        return false;
    }
    if (!HasShareHandles()) {
        XELT_REPORT_ERROR(kFile, kEnsureSurface,
                          "EGL extension 'ANGLE_d3d_share_handle_client_buffer' is required!");
        return false;
    }
    EGLConfig config = nullptr;
    if (!ChooseConfig(config)) {
        XELT_REPORT_ERROR(kFile, kEnsureSurface, "Failed to create EGL configuration, eglErr=%d",
                          platform::egl::GetError());
        return false;
    }
    HANDLE hShare = nullptr;
    if (!CreateOutputTexture(nWidth, nHeight, hShare) || !FitsContext(nWidth, nHeight)) {
        return false;
    }
    EnsureProcessor();
    ReleaseEGL();
    return CreateSurface(config, hShare, nWidth, nHeight);
}

// A device may have larger textures than the context has. Neither EGL nor GL gets to see such a size.
bool CLS_D3D11EGL::FitsContext(int32_t nWidth, int32_t nHeight)
{
    const int32_t nMax = rgb::MaxTextureSize();
    if (rgb::IsTextureSize(nWidth, nHeight, nMax)) {
        m_szTooLarge = QSize();
        return true;
    }
    if (m_szTooLarge != QSize(nWidth, nHeight)) {
        m_szTooLarge = QSize(nWidth, nHeight);
        XELT_REPORT_ERROR(
            kFile, kEnsureSurface,
            "[CLS_D3D11EGL::EnsureSurface] frame %d x %d is larger than the context's textures, %d", nWidth,
            nHeight, nMax);
    }
    m_pd3dtex.Reset(); // nothing will show it
    return false;
}

int32_t CLS_D3D11EGL::Map()
{
    if (!m_blFramePending && !m_blConvertAgain) {
        return 0;
    }
    m_blConvertAgain = false;
    if (!Convert()) {
        m_blMapped = false;
        qtlog::Debug("Map fail");
        m_pTexture.Reset();
        return -1;
    }
    BindSurface();
    m_blMapped = true;
    return 0;
}

bool CLS_D3D11EGL::Convert()
{
    if (!m_pTexture) {
        // Render does not come here without one.
        XELT_REPORT_ERROR(kFile, kMap, "[CLS_D3D11EGL::Map] nullptr == surface fail!");
        return false;
    }
    DropOldDevice();
    if (!EnsureSurface(m_nFrameWidth, m_nFrameHeight)) {
        ReleaseEGL();
        XELT_REPORT_ERROR(kFile, kMap, "[CLS_D3D11EGL::Map] EnsureSurface fail!");
        return false;
    }
    m_pD3Dvp->setSourceRect(QRect(0, 0, m_nFrameWidth, m_nFrameHeight));
    if (!m_pD3Dvp->process(m_pTexture.Get(), m_nSlice)) {
        XELT_REPORT_ERROR(kFile, kMap, "[CLS_D3D11EGL::Map] m_pD3Dvp->process fail!");
        ReleaseEGL();
        m_pD3Dvp.reset();
        if (m_nBoundTexture != 0) {
            m_nBoundTexture = kBindAgain;
        }
        return false;
    }
    return true;
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

bool CLS_D3D11EGL::HoldsContextObjects() const
{
    return m_eglSurface != EGL_NO_SURFACE || m_program.Program() != nullptr || m_program.Texture() != 0 ||
           (m_pGeometryRenderer != nullptr && m_pGeometryRenderer->holdsObjects());
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
    if (m_pGeometryRenderer != nullptr) {
        m_pGeometryRenderer->destroy();
    }
    m_colorMatrix.invalidate();
    m_nBoundTexture = 0;
    m_szTooLarge = QSize(); // the next context may have other textures
    // A frame that does not wait any more, because the host has stopped drawing, shows again all the same.
    m_blConvertAgain = m_blConvertAgain || m_blMapped;
    m_blMapped = false;
}
