// Life cycle and submission of CLS_ShaderYuv, and what of its programs may be logged, as records name this file.
// Painting is in YuvPainting.cpp, picture draws are in YuvPrograms.cpp.
#include "yuv/CLS_ShaderYuv.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"
#include "widget/InsideScope.h"
#include "yuv/HardwarePath.h"
#include "yuv/PictureGl.h"
#include "yuv/PlaneCopy.h"
#include "yuv/YuvShaderSources.h"

#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QThread>
#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>

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
    const qtlog::Deferral messages;
    makeCurrent();
    if (context() != nullptr) {
        disconnect(context(), &QOpenGLContext::aboutToBeDestroyed, this, nullptr);
    }
    {
        const FrameEnding lock(m_mutexFrame);
        FreeFrameBuffer();
        m_nVideoWidth = 0;
        m_nVideoHeight = 0;
        if (m_pD3D11EGL != nullptr) {
            m_pD3D11EGL->ReleaseEGL();
        }
        yuv::DestroyHardware(m_pD3D11EGL);
        // Quirk: the pane's end makes one more, whose farewell line hosts see as the second.
        m_pD3D11EGL.reset(new (std::nothrow) CLS_D3D11EGL);
        Q_EMIT signalUpdate();
        CLS_ShaderYuv::ReleaseGLResource();
        yuv::DestroyHardware(m_pD3D11EGL);
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

    FrameMutex::HeldUp heldUp;
    if (m_mutexFrame.IsKept(heldUp)) {
        return AnswerHeldUp(heldUp); // before the clear, which would end that
    }
    const bool blLeavesD3D11 =
        m_nDisplayType == VIDEO_DISPLAY_DXGL && frame.nDisplayType != VIDEO_DISPLAY_DXGL;
    if (m_bClearPending || blLeavesD3D11) {
        // A callback that the host registered since its own ClearDraw is dropped here, deliberately.
        blReserveLastFrm = 0;
        ClearDraw();
        m_bClearPending = false;
    }

    if (!m_mutexFrame.LockUnlessKept(heldUp)) {
        return AnswerHeldUp(heldUp);
    }
    bool blDrawInfoChanged = false;
    int32_t nResult = -1;
    {
        const std::lock_guard<FrameMutex> lock(m_mutexFrame, std::adopt_lock);
        nResult = TakeFrame(frame, pData, nLength, blDrawInfoChanged);
    }
    if (blDrawInfoChanged) {
        // Labels may repaint at once when this is the GUI thread, and painting takes the frame mutex.
        Q_EMIT signalDrawTextInfo();
    }
    return nResult;
}

int32_t CLS_ShaderYuv::AnswerHeldUp(const FrameMutex::HeldUp &heldUp)
{
    if (QThread::currentThread() == thread() || InsideScope::IsInsideOther(this)) {
        return -1; // it would wait for itself, or with another renderer's locks held
    }
    return AfterCall(
        [heldUp](int32_t nResult) {
            heldUp.Wait();
            return nResult;
        },
        -1);
}

int32_t CLS_ShaderYuv::TakeFrame(const VideoFrameDesc &frame, const void *pData, int32_t nLength,
                                 bool &blDrawInfoChanged)
{
    if (frame.nDisplayType != m_nDisplayType) {
        TakeDisplayType(frame.nDisplayType);
    }
    if (frame.nDisplayType == VIDEO_DISPLAY_DXGL) {
        m_nVideoWidth = frame.iWidth;
        m_nVideoHeight = frame.iHeight;
        yuv::HandOverFrame(m_pD3D11EGL.get(), m_pD3D11Device, pData, nLength);
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
    if (!EnsureFrameBuffer(frame, MissingBuffer::Allocate,
                           XELT_POSITION("CLS_ShaderYuv", "CLS_ShaderYuv::ShowYuvFrame"), nResult)) {
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
    if (m_pD3D11EGL != nullptr) {
        m_pD3D11EGL->ClearFramePending(); // needs no frame mutex, which a paint may have for long
    }
    if (blReserveLastFrm == 0) {
        UnInit();
    } else {
        m_bClearPending = true;
    }
    ForgetDrawInfoCallback();
    XELT_LOG("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=%d", blReserveLastFrm);
}

int32_t CLS_ShaderYuv::UnInit()
{
    const FrameEnding lock(m_mutexFrame);
    ResetFrameState();
    return 0;
}

void CLS_ShaderYuv::ResetFrameState()
{
    auto pD3D11EGL = std::make_unique<CLS_D3D11EGL>(); // first, as memory may be short
    m_bTypeChanged = true;
    m_nDisplayType = -1;
    FreeFrameBuffer();
    m_nVideoWidth = 0;
    m_nVideoHeight = 0;
    CLS_ShaderBase::UnInit();
    m_blUnInit = 1;
    // This may be a host thread: the painting thread releases and destroys the old hardware path.
    m_retired.Add(m_pD3D11EGL);
    m_pD3D11EGL = std::move(pD3D11EGL);
    ResetPlacement();
    Q_EMIT signalUpdate();
}

void CLS_ShaderYuv::InitGLYV12()
{
    m_pProgram.reset(); // one picture program at a time
    m_pProgram = yuv::BuildProgram(yuv::kYv12VertexShader, yuv::kYv12FragmentShader);
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    m_nLocTexV = m_pProgram->uniformLocation("tex_v");
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_nLocDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    m_nLocDrawAlpha = m_pProgram->uniformLocation("u_fDrawAlpha");
    yuv::UseTextureCoordinates(*this);
    if (CreateTextures("CLS_ShaderYuv::InitGLYV12", true)) {
        glClearColor(0, 0, 0, 0);
    }
}

void CLS_ShaderYuv::InitGLNV12()
{
    m_pProgram.reset();
    m_pProgram = yuv::BuildProgram(yuv::kNv12VertexShader, yuv::kNv12FragmentShader);
    m_nLocDrawFlag = m_pProgram->uniformLocation("u_iDrawFlag");
    m_nLocDrawColor = m_pProgram->uniformLocation("u_vDrawColor");
    m_nLocDrawAlpha = m_pProgram->uniformLocation("u_fDrawAlpha");
    m_nLocTexY = m_pProgram->uniformLocation("tex_y");
    m_nLocTexU = m_pProgram->uniformLocation("tex_u");
    yuv::UseTextureCoordinates(*this);
    if (CreateTextures("CLS_ShaderYuv::InitGLNV12", false)) {
        glClearColor(0, 0, 0, 0);
    }
}

bool CLS_ShaderYuv::CreateTextures(const char *pszFunction, bool blThirdPlane)
{
    Q_ASSERT(IsContextCurrent());
    m_nTexIdY = 0;
    m_nTexIdU = 0;
    m_nTexIdV = 0;
    m_pTexY = yuv::NewTexture();
    m_pTexU = m_pTexY != nullptr ? yuv::NewTexture() : nullptr;
    m_pTexV = m_pTexU != nullptr && blThirdPlane ? yuv::NewTexture() : nullptr;
    if (m_pTexU == nullptr || (blThirdPlane && m_pTexV == nullptr)) {
        XELT_REPORT_ERROR("CLS_ShaderYuv", pszFunction, "new QOpenGLTexture faild,can not malloc memory!");
        return false;
    }
    m_nTexIdY = yuv::CreateTexture(*m_pTexY);
    m_nTexIdU = yuv::CreateTexture(*m_pTexU);
    if (blThirdPlane) {
        m_nTexIdV = yuv::CreateTexture(*m_pTexV);
    }
    m_nMaxTextureSize = yuv::MaxTextureSize(*this);
    return true;
}

bool CLS_ShaderYuv::CanUpload()
{
    return HoldsWholeFrame() &&
           FitsTextures(m_nMaxTextureSize, XELT_POSITION("CLS_ShaderYuv", "CLS_ShaderYuv::CanUpload"));
}
