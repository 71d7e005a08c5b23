// Painting of CLS_ShaderYuvSubImage. GUI thread, the widget's context current.
#include "yuv/CLS_ShaderYuvSubImage.h"

#include "d3d11/CLS_D3D11EGL.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"
#include "widget/InsideScope.h"
#include "yuv/HardwarePath.h"

#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <chrono>
#include <mutex>

namespace {

constexpr auto kPaintTimeout = std::chrono::milliseconds(500);

} // namespace

void CLS_ShaderYuvSubImage::initializeGL()
{
    const qtlog::Deferral messages;
    const FrameBorrowing lock(FrameMutexToBorrow());
    const InsideScope inside(this);
    initializeOpenGLFunctions();
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, [this] { OnContextLost(); });
    yuv::LogGlStrings(*this, "CLS_ShaderYuvSubImage");
}

void CLS_ShaderYuvSubImage::OnContextLost()
{
    const qtlog::Deferral messages;
    makeCurrent();
    {
        const FrameBorrowing lock(FrameMutexToBorrow());
        const InsideScope inside(this);
        ReleaseGLResource();
        DestroyRetired();
        if (m_pD3D11EGL != nullptr) {
            m_pD3D11EGL->ReleaseContextObjects();
        }
        m_blPaintTwice = m_nDisplayType == VIDEO_DISPLAY_DXGL;
    }
    doneCurrent();
}

void CLS_ShaderYuvSubImage::DestroyRetired()
{
    m_retired.DestroyAll();
    if (m_blReleaseSurface && m_pD3D11EGL != nullptr) {
        m_pD3D11EGL->ReleaseEGL();
    }
    m_blReleaseSurface = false;
}

void CLS_ShaderYuvSubImage::resizeGL(int nWidth, int nHeight)
{
    CLS_ShaderBase::resizeGL(nWidth, nHeight);
    RepeatDrawInfo(m_nDrawInfoKind);
}

void CLS_ShaderYuvSubImage::paintGL()
{
    const PaintScope painting(*this);
    if (m_nDisplayType == -1) {
        PaintBlack();
        return;
    }
    // Labels last: their events run code of the host's, and no lock is held any more.
    if (PaintFrame()) {
        AddLabelWhilePainting();
    }
}

bool CLS_ShaderYuvSubImage::PaintFrame()
{
    const qtlog::Deferral messages; // the host's handler for them runs when the lock is released
    const std::unique_lock<FrameMutex> lock(m_mutexFrame, kPaintTimeout);
    if (!lock.owns_lock()) {
        return false;
    }
    const InsideScope inside(this);
    DestroyRetired();
    if (m_nDisplayType != VIDEO_DISPLAY_DXGL && m_pFrameBuffer == nullptr) {
        return false;
    }
    if (!m_blGLReady) {
        EnsurePrograms();
    }
    BindPictureProgram();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    PaintDrawInfo();
    DrawPicture();
    return true;
}

void CLS_ShaderYuvSubImage::PaintBlack()
{
    {
        const qtlog::Deferral messages;
        const std::unique_lock<FrameMutex> lock(m_mutexFrame, std::try_to_lock);
        if (lock.owns_lock()) {
            const InsideScope inside(this);
            DestroyRetired();
        }
    }
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void CLS_ShaderYuvSubImage::EnsurePrograms()
{
    switch (m_nDisplayType) {
    case VIDEO_DISPLAY_NV12:
        InitGLNV12();
        break;
    case VIDEO_DISPLAY_DXGL:
        InitHardwareProgram();
        break;
    default:
        // A type without a picture of its own still needs a program for its overlay shapes.
        InitGLYV12();
        break;
    }
    m_blGLReady = true;
}

void CLS_ShaderYuvSubImage::InitHardwareProgram()
{
    if (m_pD3D11EGL == nullptr) {
        return;
    }
    if (m_pD3D11EGL->InitD3D11EGL() != 0) {
        XELT_LOG("InitD3D11EGL faild");
        return;
    }
    m_nLocDrawFlag = m_pD3D11EGL->DrawFlagLocation();
    m_nLocDrawColor = m_pD3D11EGL->DrawColorLocation();
}

bool CLS_ShaderYuvSubImage::BindPictureProgram()
{
    if (m_nDisplayType == VIDEO_DISPLAY_DXGL) {
        return m_pD3D11EGL != nullptr && m_pD3D11EGL->BindProgram();
    }
    return m_pProgram != nullptr && m_pProgram->bind();
}

void CLS_ShaderYuvSubImage::AllocatePlane(QOpenGLTexture &texture, uint32_t nFormat, const QSize &size)
{
    // A QOpenGLTexture takes its size once: another size is another texture.
    texture.destroy();
    texture.setSize(size.width(), size.height());
    texture.create();
    glBindTexture(GL_TEXTURE_2D, texture.textureId());
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(nFormat), size.width(), size.height(), 0, nFormat,
                 GL_UNSIGNED_BYTE, nullptr);
}

void CLS_ShaderYuvSubImage::DrawPicture()
{
    if (m_nDisplayType == VIDEO_DISPLAY_DXGL) {
        DrawD3D11();
        return;
    }
    if (m_pTexU == nullptr || !HoldsWholeFrame()) {
        return;
    }
    if (m_nDisplayType == VIDEO_DISPLAY_YV12 && m_pTexV != nullptr) {
        DrawYV12();
    } else if (m_nDisplayType == VIDEO_DISPLAY_NV12 && m_pPlaneY != nullptr && m_pPlaneUV != nullptr) {
        DrawNV12();
    }
}

void CLS_ShaderYuvSubImage::PrepareQuad(geometry::QuadVertices &afPositions)
{
    Q_ASSERT(IsContextCurrent());
    m_pProgram->bind();
    // The whole widget is the drawn area: ratio mode and destination rectangle do not count here.
    geometry::ComputeQuad(geometry::NormRect(), CurrentPicture().rcEZoom, afPositions);
    yuv::UsePositions(*this, afPositions);
}

void CLS_ShaderYuvSubImage::UpdatePlane(uint32_t nUnit, QOpenGLTexture &texture, uint32_t nFormat,
                                        const QSize &size, const uint8_t *pPixels)
{
    glActiveTexture(GL_TEXTURE0 + nUnit);
    glBindTexture(GL_TEXTURE_2D, texture.textureId());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width(), size.height(), nFormat, GL_UNSIGNED_BYTE, pPixels);
    yuv::SetPlaneSampling(*this);
}

void CLS_ShaderYuvSubImage::DrawYV12()
{
    const QSize szLuma(m_nVideoWidth, m_nVideoHeight);
    const QSize szChroma(m_nVideoWidth / 2, m_nVideoHeight / 2);
    const size_t nLuma = static_cast<size_t>(m_nVideoWidth) * static_cast<size_t>(m_nVideoHeight);
    if (!EnsureTextures(GL_RED)) {
        return;
    }
    geometry::QuadVertices afPositions;
    PrepareQuad(afPositions);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    UpdatePlane(0, *m_pTexY, GL_RED, szLuma, m_pFrameBuffer);
    UpdatePlane(1, *m_pTexU, GL_RED, szChroma, m_pFrameBuffer + nLuma);
    UpdatePlane(2, *m_pTexV, GL_RED, szChroma, m_pFrameBuffer + nLuma * 5 / 4);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    glUniform1i(m_nLocTexV, 2);
    glUniform1i(m_nLocDrawFlag, 0);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void CLS_ShaderYuvSubImage::DrawNV12()
{
    const QSize szLuma(m_nVideoWidth, m_nVideoHeight);
    const QSize szChroma(m_nVideoWidth / 2, m_nVideoHeight / 2);
    if (!EnsureTextures(GL_RG)) {
        return;
    }
    geometry::QuadVertices afPositions;
    PrepareQuad(afPositions);
    // The unpack alignment is left as it is, deliberately; the frame buffer has spare bytes for it.
    UpdatePlane(0, *m_pTexY, GL_RED, szLuma, m_pPlaneY);
    UpdatePlane(1, *m_pTexU, GL_RG, szChroma, m_pPlaneUV);
    glUniform1i(m_nLocTexY, 0);
    glUniform1i(m_nLocTexU, 1);
    glUniform1i(m_nLocDrawFlag, 0);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void CLS_ShaderYuvSubImage::DrawD3D11()
{
    if (m_pD3D11EGL == nullptr) {
        return;
    }
    m_pD3D11EGL->SetAreas(geometry::NormRect(), CurrentPicture().rcEZoom);
    m_pD3D11EGL->Render(yuv::DeviceRect(*this));
    if (m_blPaintTwice) {
        m_blPaintTwice = false;
        Q_EMIT signalUpdate();
    }
}

void CLS_ShaderYuvSubImage::PaintDrawInfo()
{
    if (!IsContextCurrent()) {
        return;
    }
    const QVector<XeltDrawInfo> vecRecords = DrawInfo();
    if (vecRecords.isEmpty() || !BindPictureProgram()) {
        return;
    }
    // These programs' opacity uniform is not looked up: everything is opaque.
    const yuv::DrawInfoLocations locations = {m_nLocDrawFlag, m_nLocDrawColor, -1};
    m_painter.Paint(*this, context()->isOpenGLES(), vecRecords, yuv::DrawInfoPass::AllOpaque, locations,
                    geometry::MapPoints(rect(), CurrentPicture().rcEZoom));
}
