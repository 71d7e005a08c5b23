// Painting of CLS_ShaderYuv. GUI thread, the widget's context current.
#include "yuv/CLS_ShaderYuv.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"
#include "widget/InsideScope.h"
#include "yuv/HardwarePath.h"
#include "yuv/PictureGl.h"

#include <QColor>
#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <chrono>
#include <mutex>

namespace {

constexpr auto kPaintTimeout = std::chrono::milliseconds(500);

} // namespace

void CLS_ShaderYuv::initializeGL()
{
    const qtlog::Deferral messages;
    const FrameBorrowing lock(FrameMutexToBorrow());
    const InsideScope inside(this);
    initializeOpenGLFunctions();
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, [this] { OnContextLost(); });
    yuv::LogGlStrings(*this, "CLS_ShaderYuv");
}

void CLS_ShaderYuv::OnContextLost()
{
    const qtlog::Deferral messages;
    makeCurrent();
    {
        const FrameBorrowing lock(FrameMutexToBorrow());
        const InsideScope inside(this);
        ReleaseGLResource();
        if (m_pD3D11EGL != nullptr) {
            m_pD3D11EGL->ReleaseContextObjects();
        }
        m_blPaintTwice = m_nDisplayType == VIDEO_DISPLAY_DXGL;
    }
    doneCurrent();
}

void CLS_ShaderYuv::resizeGL(int nWidth, int nHeight)
{
    CLS_ShaderBase::resizeGL(nWidth, nHeight);
    if (RepeatDrawInfo(m_nDrawInfoKind)) {
        Q_EMIT signalDrawTextInfo();
    }
}

void CLS_ShaderYuv::paintGL()
{
    const PaintScope painting(*this);
    const qtlog::Deferral messages; // the host's handler for them runs when the lock is released
    std::unique_lock<FrameMutex> lock(m_mutexFrame, kPaintTimeout);
    if (!lock.owns_lock()) {
        return;
    }
    const InsideScope inside(this);
    m_retired.DestroyAll();
    if (m_bTypeChanged) {
        ReleaseGLResource();
        m_bTypeChanged = false;
    }
    if (m_nDisplayType == -1) {
        const QColor black(0, 0, 0, 255);
        glClearColor(static_cast<float>(black.redF()), static_cast<float>(black.greenF()),
                     static_cast<float>(black.blueF()), static_cast<float>(black.alphaF()));
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        return;
    }
    const bool blSoftware = m_nDisplayType == VIDEO_DISPLAY_YV12 || m_nDisplayType == VIDEO_DISPLAY_NV12;
    if (blSoftware && m_pFrameBuffer == nullptr) {
        return;
    }
    if (!m_blGLReady && !EnsurePrograms()) {
        // The frame mutex stays locked, deliberately: without a program no later frame may be accepted.
        lock.release()->Keep();
        return;
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    PaintDrawInfo(yuv::DrawInfoPass::BeforePicture);
    DrawPicture();
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    PaintDrawInfo(yuv::DrawInfoPass::OverPicture);
    glDisable(GL_BLEND);
}

bool CLS_ShaderYuv::EnsurePrograms()
{
    bool blReady = true;
    switch (m_nDisplayType) {
    case VIDEO_DISPLAY_NV12:
        InitGLNV12();
        break;
    case VIDEO_DISPLAY_DXGL:
        blReady = InitHardwareProgram();
        break;
    case VIDEO_DISPLAY_VAGL:
    case 8:
        break; // nothing is drawn of these
    default:
        // A type without a picture of its own still needs a program for its overlay shapes.
        InitGLYV12();
        break;
    }
    m_blGLReady = true;
    return blReady;
}

bool CLS_ShaderYuv::InitHardwareProgram()
{
    if (m_pD3D11EGL == nullptr) {
        return true;
    }
    if (m_pD3D11EGL->InitD3D11EGL() != 0) {
        XELT_LOG("InitD3D11EGL faild");
        return false;
    }
    m_nLocDrawFlag = m_pD3D11EGL->DrawFlagLocation();
    m_nLocDrawColor = m_pD3D11EGL->DrawColorLocation();
    return true;
}

void CLS_ShaderYuv::DrawPicture()
{
    switch (m_nDisplayType) {
    case VIDEO_DISPLAY_YV12:
        DrawYV12();
        break;
    case VIDEO_DISPLAY_NV12:
        DrawNV12();
        break;
    case VIDEO_DISPLAY_DXGL:
        DrawD3D11();
        break;
    default:
        break;
    }
}

void CLS_ShaderYuv::DrawD3D11()
{
    if (m_pD3D11EGL == nullptr) {
        return;
    }
    const Picture picture = CurrentPicture();
    m_pD3D11EGL->SetAreas(picture.rcDrawArea, picture.rcEZoom);
    m_pD3D11EGL->SetRotation(picture.rotation.nDirection, picture.rotation.nAngle, picture.rotation.nMirror);
    if (m_pD3D11EGL->Render(yuv::DeviceRect(*this)) != 0) {
        ++m_nD3D11FailCount;
    } else {
        m_nD3D11FailCount = 0;
    }
    if (m_blPaintTwice) {
        m_blPaintTwice = false;
        Q_EMIT signalUpdate();
    }
}

bool CLS_ShaderYuv::BindPictureProgram()
{
    if (m_nDisplayType == VIDEO_DISPLAY_DXGL) {
        if (m_pD3D11EGL == nullptr) {
            return false;
        }
        const XeltRotatePara para = CurrentPicture().rotation;
        m_pD3D11EGL->SetRotation(para.nDirection, para.nAngle, para.nMirror);
        return m_pD3D11EGL->BindProgram();
    }
    return m_pProgram != nullptr && m_pProgram->bind();
}

void CLS_ShaderYuv::PaintDrawInfo(yuv::DrawInfoPass pass)
{
    if (!IsContextCurrent()) {
        return;
    }
    const QVector<XeltDrawInfo> vecRecords = DrawInfo();
    if (vecRecords.isEmpty() || !BindPictureProgram()) {
        return;
    }
    yuv::DrawInfoLocations locations = {m_nLocDrawFlag, m_nLocDrawColor, m_nLocDrawAlpha};
    if (m_nDisplayType == VIDEO_DISPLAY_DXGL) {
        locations = {m_pD3D11EGL->DrawFlagLocation(), m_pD3D11EGL->DrawColorLocation(),
                     m_pD3D11EGL->DrawAlphaLocation()};
    } else {
        SetMatrix(); // shapes turn with the picture from its first paint on
    }
    m_painter.Paint(*this, context()->isOpenGLES(), vecRecords, pass, locations,
                    geometry::MapPoints(rect(), CurrentPicture().rcEZoom));
}
