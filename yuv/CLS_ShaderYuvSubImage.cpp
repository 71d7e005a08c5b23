// Life cycle and submission of CLS_ShaderYuvSubImage, and what of its programs may be logged, as records name this
// file. Painting is in SubImagePainting.cpp.
#include "yuv/CLS_ShaderYuvSubImage.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"
#include "yuv/HardwarePath.h"
#include "yuv/PlaneCopy.h"
#include "yuv/YuvShaderSources.h"

#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

CLS_ShaderYuvSubImage::CLS_ShaderYuvSubImage() : CLS_ShaderBase(nullptr)
{
    m_nDisplayType = -1;
    connect(this, &QObject::destroyed, this, &CLS_ShaderYuvSubImage::onDestroyed);
    connect(this, &CLS_ShaderYuvSubImage::signalUpdate, this, [this] { update(); });
    XELT_LOG("CreateShader CLS_ShaderYuvSubImage.");
}

CLS_ShaderYuvSubImage::~CLS_ShaderYuvSubImage()
{
    BeginDestruction();
    // QObject emits destroyed() when this part of the object is gone already. Only this one: a host's
    // functors without a context object are connected with this widget as their receiver too.
    disconnect(this, &QObject::destroyed, this, &CLS_ShaderYuvSubImage::onDestroyed);
    onDestroyed(this);
    DeleteLabels(); // those on a host's widget would outlive the pane
    const qtlog::Deferral messages;
    makeCurrent();
    if (context() != nullptr) {
        disconnect(context(), &QOpenGLContext::aboutToBeDestroyed, this, nullptr);
    }
    CLS_ShaderYuvSubImage::UnInit();
    {
        const std::lock_guard<FrameMutex> lock(m_mutexFrame);
        m_retired.DestroyAll();
        yuv::DestroyHardware(m_pD3D11EGL);
    }
    doneCurrent();
}

void CLS_ShaderYuvSubImage::onDestroyed(QObject *obj)
{
    if (obj == this) {
        m_bDestroyed = true;
    }
}

int32_t CLS_ShaderYuvSubImage::SetParam(uint32_t nCommand, const void *pPayload, int32_t nLength)
{
    const int32_t nResult = CLS_ShaderBase::SetParam(nCommand, pPayload, nLength);
    if (nCommand == XELTCMD_SET_EZOOM_AREA) {
        Q_EMIT signalUpdate();
    }
    return nResult;
}

int32_t CLS_ShaderYuvSubImage::ShowYuvFrame(const void *pData, int32_t nLength)
{
    if (m_bDestroyed || pData == nullptr || nLength < 1) {
        return -1;
    }
    VideoFrameDesc frame = {};
    std::memcpy(&frame, pData, std::min(static_cast<size_t>(nLength), sizeof(frame)));
    return TakeFrame(frame, pData, nLength);
}

int32_t CLS_ShaderYuvSubImage::TakeFrame(const VideoFrameDesc &frame, const void *pData, int32_t nLength)
{
    const std::lock_guard<FrameMutex> lock(m_mutexFrame);
    if (frame.nDisplayType != m_nDisplayType) {
        TakeDisplayType(frame.nDisplayType);
    }
    if (frame.nDisplayType == VIDEO_DISPLAY_DXGL) {
        yuv::HandOverFrame(m_pD3D11EGL.get(), m_pD3D11Device, pData, nLength);
    } else {
        int32_t nResult = -1;
        if (!TakeSoftwareFrame(frame, nResult)) {
            return nResult;
        }
    }
    RenewDrawInfo(frame.nDrawInfoKind, m_nDrawInfoKind);
    Q_EMIT signalUpdate();
    return 0;
}

void CLS_ShaderYuvSubImage::TakeDisplayType(int32_t nDisplayType)
{
    ReleaseGLResource();
    if (nDisplayType != VIDEO_DISPLAY_DXGL && m_pD3D11EGL != nullptr) {
        m_pD3D11EGL->ReleaseHostObjects(); // the next paint releases the surface
    }
    switch (nDisplayType) {
    case VIDEO_DISPLAY_DXGL:
        if (m_pD3D11EGL == nullptr) {
            m_pD3D11EGL = std::make_unique<CLS_D3D11EGL>();
        }
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_DXGL,The Player is D3D11Player");
        break;
    case VIDEO_DISPLAY_NV12:
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_NV12,The Player is DxvaPlayer");
        break;
    default:
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player");
        break;
    }
    m_nDisplayType = nDisplayType;
}

bool CLS_ShaderYuvSubImage::TakeSoftwareFrame(const VideoFrameDesc &frame, int32_t &nResult)
{
    if (!EnsureFrameBuffer(frame, MissingBuffer::Leave,
                           XELT_POSITION("CLS_ShaderYuvSubImage", "CLS_ShaderYuvSubImage::ShowYuvFrame"),
                           nResult)) {
        return false;
    }
    yuv::StoreFrame(frame, {m_pFrameBuffer, FrameBufferBytes(), m_nVideoWidth, m_nVideoHeight},
                    {m_pPlaneY, m_pPlaneUV, m_bExplicitLength});
    return true;
}

void CLS_ShaderYuvSubImage::ClearDraw()
{
    ClearDrawInfo();
    // Labels belong to the GUI thread.
    QMetaObject::invokeMethod(this, [this] { RunUnlocked(&CLS_ShaderYuvSubImage::ClearLabels); });
    PaintDrawInfo();
    if (blReserveLastFrm == 0) {
        UnInit();
    }
    ForgetDrawInfoCallback();
    XELT_LOG("CLS_ShaderYuvSubImage::ClearDraw, blReserveLastFrm=%d", blReserveLastFrm);
}

int32_t CLS_ShaderYuvSubImage::UnInit()
{
    const std::lock_guard<FrameMutex> lock(m_mutexFrame);
    CLS_ShaderYuvSubImage::ReleaseGLResource(); // the destructor comes here too
    FreeFrameBuffer();
    m_nVideoWidth = 0;
    m_nVideoHeight = 0;
    CLS_ShaderBase::UnInit();
    if (m_pD3D11EGL != nullptr) {
        auto pD3D11EGL = std::make_unique<CLS_D3D11EGL>();
        m_retired.Add(m_pD3D11EGL);
        m_pD3D11EGL = std::move(pD3D11EGL);
    }
    ResetZoom();
    return 0;
}

void CLS_ShaderYuvSubImage::ReleaseGLResource()
{
    m_retired.Add(m_pProgram);
    m_retired.Add(m_pTexY);
    m_retired.Add(m_pTexU);
    m_retired.Add(m_pTexV);
    m_blReleaseSurface = true;
    m_blGLReady = false;
    if (!m_bExplicitLength) {
        // The next frame then counts as one of a new type, deliberately.
        m_nDisplayType = -1;
        Q_EMIT signalUpdate();
    }
}

void CLS_ShaderYuvSubImage::InitGLYV12()
{
    m_pProgram = yuv::BuildProgram(yuv::kYv12PlainVertexShader, yuv::kYv12FragmentShader);
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    m_nLocTexV = m_pProgram->uniformLocation("tex_v");
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_nLocDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    yuv::UseTextureCoordinates(*this);
    if (CreateTextures("CLS_ShaderYuvSubImage::InitGLYV12", true)) {
        glClearColor(0, 0, 0, 0);
    }
}

void CLS_ShaderYuvSubImage::InitGLNV12()
{
    m_pProgram = yuv::BuildProgram(yuv::kNv12PlainVertexShader, yuv::kNv12FragmentShader);
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_nLocDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    yuv::UseTextureCoordinates(*this);
    if (CreateTextures("CLS_ShaderYuvSubImage::InitGLNV12", false)) {
        glClearColor(0, 0, 0, 0);
    }
}

bool CLS_ShaderYuvSubImage::CreateTextures(const char *pszFunction, bool blThirdPlane)
{
    Q_ASSERT(IsContextCurrent());
    m_szTextures = QSize(); // the first draw of a whole frame allocates
    m_pTexY = yuv::NewTexture();
    m_pTexU = m_pTexY != nullptr ? yuv::NewTexture() : nullptr;
    m_pTexV = m_pTexU != nullptr && blThirdPlane ? yuv::NewTexture() : nullptr;
    if (m_pTexU == nullptr || (blThirdPlane && m_pTexV == nullptr)) {
        XELT_REPORT_ERROR("CLS_ShaderYuvSubImage", pszFunction,
                          "new QOpenGLTexture faild,can not malloc memory!");
        return false;
    }
    return true;
}

bool CLS_ShaderYuvSubImage::EnsureTextures(uint32_t nChromaFormat)
{
    const QSize szLuma(m_nVideoWidth, m_nVideoHeight);
    if (m_szTextures == szLuma) {
        return true;
    }
    if (!FitsTextures(yuv::MaxTextureSize(*this),
                      XELT_POSITION("CLS_ShaderYuvSubImage", "CLS_ShaderYuvSubImage::EnsureTextures"))) {
        return false;
    }
    const QSize szChroma(m_nVideoWidth / 2, m_nVideoHeight / 2);
    AllocatePlane(*m_pTexY, GL_RED, szLuma);
    AllocatePlane(*m_pTexU, nChromaFormat, szChroma);
    if (m_pTexV != nullptr) {
        AllocatePlane(*m_pTexV, nChromaFormat, szChroma);
    }
    m_szTextures = szLuma;
    return true;
}
