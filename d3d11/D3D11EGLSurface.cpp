// The steps to the surface that connects Direct3D 11 with OpenGL ES. CLS_D3D11EGL.cpp puts them in order and
// reports what fails. Painting thread, the widget's context current, the renderer's frame mutex held.
#include "d3d11/CLS_D3D11EGL.h"

#include "d3d11/D3D11VP.h"
#include "d3d11/D3DWarning.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"

#include <QByteArray>
#include <QList>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace egl = platform::egl;

namespace {

const char *EglString(EGLDisplay display, EGLint nName)
{
    const char *pszValue = egl::QueryString(display, nName);
    return pszValue != nullptr ? pszValue : "";
}

void WarnOfEglError(const char *pszCall)
{
    const EGLint nError = egl::GetError();
    // An error is no name that EGL has a string for; it is asked all the same, deliberately.
    const char *pszText = EglString(egl::GetCurrentDisplay(), nError);
    qtlog::Warning("EGL error@%d<<%s. %s: %#x %s", nError, pszText, pszCall, static_cast<unsigned>(nError),
                   pszText);
}

D3D11_TEXTURE2D_DESC OutputDesc(int32_t nWidth, int32_t nHeight)
{
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = static_cast<UINT>(nWidth);
    desc.Height = static_cast<UINT>(nHeight);
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_DEFAULT;
    desc.BindFlags = D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE;
    desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
    return desc;
}

} // namespace

bool CLS_D3D11EGL::EnsureDisplay()
{
    if (m_eglDisplay == EGL_NO_DISPLAY) {
        m_eglDisplay = egl::GetCurrentDisplay();
        if (m_eglDisplay == EGL_NO_DISPLAY) {
            return false;
        }
        XELT_LOG("[CLS_EGLBase::CreateEglResource]EGL eglVendor: %s", EglString(m_eglDisplay, EGL_VENDOR));
        XELT_LOG("[CLS_EGLBase::CreateEglResource]EGL eglVersion: %s", EglString(m_eglDisplay, EGL_VERSION));
        XELT_LOG("[CLS_EGLBase::CreateEglResource]EGL eglClientApis: %s",
                 EglString(m_eglDisplay, EGL_CLIENT_APIS));
    }
    return true;
}

bool CLS_D3D11EGL::HasShareHandles() const
{
    const QList<QByteArray> listExtensions = QByteArray(EglString(m_eglDisplay, EGL_EXTENSIONS)).split(' ');
    return listExtensions.contains("EGL_ANGLE_d3d_share_handle_client_buffer");
}

bool CLS_D3D11EGL::ChooseConfig(EGLConfig &config) const
{
    const EGLint anAttributes[] = {
        EGL_RED_SIZE,   8, EGL_GREEN_SIZE,           8,        EGL_BLUE_SIZE,    8,
        EGL_ALPHA_SIZE, 8, EGL_BIND_TO_TEXTURE_RGBA, EGL_TRUE, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
        EGL_NONE};
    EGLint nConfigs = 0; // not examined, deliberately
    return egl::ChooseConfig(m_eglDisplay, anAttributes, &config, 1, &nConfigs) != EGL_FALSE;
}

bool CLS_D3D11EGL::CreateOutputTexture(int32_t nWidth, int32_t nHeight, HANDLE &hShare)
{
    const D3D11_TEXTURE2D_DESC desc = OutputDesc(nWidth, nHeight);
    if (d3d::Failed(m_pD3DDevice->CreateTexture2D(&desc, nullptr, m_pd3dtex.ReleaseAndGetAddressOf()),
                    "DirectX error@%1. m_pD3DDevice->CreateTexture2D(&desc, 0, &m_pd3dtex): (0x%2) %3",
                    548)) {
        return false;
    }
    ComPtr<IDXGIResource> resource;
    if (d3d::Failed(m_pd3dtex.As(IID_IDXGIResource, resource),
                    "DirectX error@%1. m_pd3dtex.As(&resource): (0x%2) %3", 550)) {
        return false;
    }
    return !d3d::Failed(resource->GetSharedHandle(&hShare),
                        "DirectX error@%1. resource->GetSharedHandle(&share_handle): (0x%2) %3", 552);
}

void CLS_D3D11EGL::EnsureProcessor()
{
    if (m_pD3Dvp == nullptr) {
        m_pD3Dvp = std::make_unique<dx::D3D11VP>(m_pD3DDevice);
        m_pD3Dvp->setColorSpace(m_nColorSpace);
        m_pD3Dvp->setColorRange(m_nColorRange);
    }
    m_pD3Dvp->setOutputTexture(m_pd3dtex.Get());
}

bool CLS_D3D11EGL::CreateSurface(EGLConfig config, HANDLE hShare, int32_t nWidth, int32_t nHeight)
{
    const EGLint anAttributes[] = {
        EGL_WIDTH,          nWidth,         EGL_HEIGHT, nHeight, EGL_TEXTURE_FORMAT, EGL_TEXTURE_RGBA,
        EGL_TEXTURE_TARGET, EGL_TEXTURE_2D, EGL_NONE};
    m_eglSurface = egl::CreatePbufferFromClientBuffer(m_eglDisplay, EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE,
                                                      hShare, config, anAttributes);
    if (m_eglSurface == EGL_NO_SURFACE) {
        WarnOfEglError("(m_eglSurface = eglCreatePbufferFromClientBuffer(m_eglDisplay, "
                       "EGL_D3D_TEXTURE_2D_SHARE_HANDLE_ANGLE, share_handle, egl_cfg, attribs))");
        return false;
    }
    XELT_LOG("pbuffer surface from client buffer: %p", m_eglSurface);
    m_szSurface = QSize(nWidth, nHeight);
    return true;
}

void CLS_D3D11EGL::DropOldDevice()
{
    if (m_blDeviceChanged) {
        ReleaseEGL();
        m_pD3Dvp.reset();
        m_pd3dtex.Reset();
        m_blDeviceChanged = false;
    }
}

void CLS_D3D11EGL::BindSurface()
{
    // A new surface is not bound yet, even where the texture has kept its name.
    if (m_blSurfaceBound && m_nBoundTexture == m_program.Texture()) {
        return; // the texture shows what was converted just now
    }
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    gl.glBindTexture(GL_TEXTURE_2D, m_program.Texture());
    if (m_nBoundTexture != 0 &&
        egl::ReleaseTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER) == EGL_FALSE) {
        WarnOfEglError("eglReleaseTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER)");
    }
    m_blSurfaceBound = egl::BindTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER) != EGL_FALSE;
    if (!m_blSurfaceBound) {
        WarnOfEglError("eglBindTexImage(m_eglDisplay, m_eglSurface, EGL_BACK_BUFFER)");
    }
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    m_nBoundTexture = m_program.Texture();
}
