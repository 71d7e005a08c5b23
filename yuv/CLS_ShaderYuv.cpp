// Life cycle and submission of CLS_ShaderYuv. Painting is in YuvPainting.cpp, programs in YuvPrograms.cpp.
#include "yuv/CLS_ShaderYuv.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "yuv/HardwarePath.h"
#include "yuv/PlaneCopy.h"

#include <QMutexLocker>
#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QThread>
#include <algorithm>
#include <cstring>

CLS_ShaderYuv::CLS_ShaderYuv() : CLS_ShaderBase(nullptr), m_pD3D11EGL(std::make_unique<CLS_D3D11EGL>())
{
    m_nDisplayType = -1;
    connect(this, &QObject::destroyed, this, &CLS_ShaderYuv::onDestroyed);
    connect(this, &CLS_ShaderYuv::signalUpdate, this, [this] { update(); });
    XELT_LOG("CreateShader CLS_ShaderYuv.");
}

CLS_ShaderYuv::~CLS_ShaderYuv()
{
    BeginDestruction();
    // QObject emits destroyed() when this part of the object is gone already. Only this one: a host's
    // functors without a context object are connected with this widget as their receiver too.
    disconnect(this, &QObject::destroyed, this, &CLS_ShaderYuv::onDestroyed);
    onDestroyed(this);
    DeleteLabels(); // those on a host's widget would outlive the pane
    makeCurrent();
    if (context() != nullptr) {
        disconnect(context(), &QOpenGLContext::aboutToBeDestroyed, this, nullptr);
    }
    {
        const auto lock = LockFrame();
        FreeFrameBuffer();
        m_nVideoWidth = 0;
        m_nVideoHeight = 0;
        CLS_ShaderYuv::ReleaseGLResource();
        yuv::DestroyHardware(m_pD3D11EGL);
        Q_EMIT signalUpdate();
    }
    doneCurrent();
}

void CLS_ShaderYuv::onDestroyed(QObject *obj)
{
    if (obj == this) {
        m_bDestroyed = true;
    }
}

int32_t CLS_ShaderYuv::SetParam(uint32_t nCommand, const void *pPayload, int32_t nLength)
{
    const int32_t nResult = CLS_ShaderBase::SetParam(nCommand, pPayload, nLength);
    if (nCommand == XELTCMD_SET_EZOOM_AREA) {
        Q_EMIT signalUpdate();
    }
    return nResult;
}

int32_t CLS_ShaderYuv::GetParam(uint32_t nCommand, void *pBuffer, int32_t nLength)
{
    return CLS_ShaderBase::GetParam(nCommand, pBuffer, nLength);
}

int32_t CLS_ShaderYuv::ShowYuvFrame(const void *pData, int32_t nLength)
{
    if (m_bDestroyed || pData == nullptr || nLength < 1) {
        return -1;
    }
    VideoFrameDesc frame = {};
    std::memcpy(&frame, pData, std::min(static_cast<size_t>(nLength), sizeof(frame)));

    const bool blLeavesD3D11 =
        m_nDisplayType == VIDEO_DISPLAY_DXGL && frame.nDisplayType != VIDEO_DISPLAY_DXGL;
    if (m_bClearPending || blLeavesD3D11) {
        // A callback that the host registered since its own ClearDraw is dropped here, deliberately.
        blReserveLastFrm = 0;
        ClearDraw();
        m_bClearPending = false;
    }

    bool blDrawInfoChanged = false;
    const int32_t nResult = TakeFrame(frame, pData, nLength, blDrawInfoChanged);
    if (blDrawInfoChanged) {
        // Labels may repaint at once when this is the GUI thread, and painting takes the frame mutex.
        Q_EMIT signalDrawTextInfo();
    }
    return nResult;
}

int32_t CLS_ShaderYuv::TakeFrame(const VideoFrameDesc &frame, const void *pData, int32_t nLength,
                                 bool &blDrawInfoChanged)
{
    const QMutexLocker locker(&m_mutexFrame);
    if (frame.nDisplayType != m_nDisplayType) {
        TakeDisplayType(frame.nDisplayType);
    }
    if (frame.nDisplayType == VIDEO_DISPLAY_DXGL) {
        m_nVideoWidth = frame.iWidth;
        m_nVideoHeight = frame.iHeight;
        yuv::HandOverFrame(m_mutexFrame, m_pD3D11EGL.get(), m_pD3D11Device, pData, nLength);
    } else {
        int32_t nResult = -1;
        if (!TakeSoftwareFrame(frame, nResult)) {
            return nResult;
        }
    }
    blDrawInfoChanged = RenewDrawInfo(frame.nDrawInfoKind, m_nDrawInfoKind);
    Q_EMIT signalUpdate();
    return m_nDisplayType == VIDEO_DISPLAY_DXGL && m_nD3D11FailCount != 0 ? -1 : 0;
}

void CLS_ShaderYuv::TakeDisplayType(int32_t nDisplayType)
{
    m_bTypeChanged = true;
    switch (nDisplayType) {
    case VIDEO_DISPLAY_VAGL:
    case 8:
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_VAGL,The Player is HWVaapiPlayer");
        break;
    case VIDEO_DISPLAY_DXGL:
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_DXGL,The Player is D3D11Player");
        break;
    case VIDEO_DISPLAY_NV12:
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_NV12,The Player is DxvaPlayer");
        break;
    default:
        XELT_LOG("ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player");
        break;
    }
    // 4 never equals what is stored for it, so that each of its frames counts as a change, deliberately.
    m_nDisplayType = nDisplayType == 4 ? VIDEO_DISPLAY_VAGL : nDisplayType;
}

bool CLS_ShaderYuv::TakeSoftwareFrame(const VideoFrameDesc &frame, int32_t &nResult)
{
    if (!EnsureFrameBuffer(frame, MissingBuffer::Allocate, "CLS_ShaderYuv", "CLS_ShaderYuv::ShowYuvFrame",
                           nResult)) {
        return false;
    }
    yuv::StoreFrame(frame, {m_pFrameBuffer, FrameBufferBytes(), m_nVideoWidth, m_nVideoHeight},
                    {m_pPlaneY, m_pPlaneUV, m_bExplicitLength});
    return true;
}

void CLS_ShaderYuv::ClearDraw()
{
    ClearDrawInfo();
    Q_EMIT signalDrawTextInfo();
    PaintDrawInfo(yuv::DrawInfoPass::BeforePicture);
    {
        const auto lock = LockFrame();
        if (m_pD3D11EGL != nullptr) {
            Q_ASSERT(yuv::IsLocked(m_mutexFrame));
            m_pD3D11EGL->ClearFramePending();
        }
    }
    if (blReserveLastFrm == 0) {
        UnInit();
    } else {
        m_bClearPending = true;
    }
    ForgetDrawInfoCallback();
    XELT_LOG("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=%d", blReserveLastFrm);
}

std::unique_lock<QMutex> CLS_ShaderYuv::LockFrame()
{
    if (QThread::currentThread() == thread() && m_blFrameMutexKept) {
        return {}; // a second lock would wait for this thread itself
    }
    return std::unique_lock<QMutex>(m_mutexFrame);
}

int32_t CLS_ShaderYuv::UnInit()
{
    const auto lock = LockFrame();
    ResetFrameState();
    return 0;
}

void CLS_ShaderYuv::ResetFrameState()
{
    m_bTypeChanged = true;
    m_nDisplayType = -1;
    FreeFrameBuffer();
    m_nVideoWidth = 0;
    m_nVideoHeight = 0;
    CLS_ShaderBase::UnInit();
    m_blUnInit = 1;
    // This may be a host thread: the painting thread releases and destroys the old hardware path.
    m_retired.Add(std::move(m_pD3D11EGL));
    m_pD3D11EGL = std::make_unique<CLS_D3D11EGL>();
    m_rcDrawArea = geometry::NormRect();
    m_rcEZoom = geometry::NormRect();
    Q_EMIT signalUpdate();
}
