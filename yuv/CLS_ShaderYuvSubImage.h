#pragma once

#include "widget/CLS_ShaderBase.h"
#include "yuv/DrawInfoPainter.h"
#include "yuv/PictureGl.h"

#include <QSize>
#include <atomic>
#include <memory>

class CLS_D3D11EGL;
class QOpenGLShaderProgram;
class QOpenGLTexture;

// The sibling of CLS_ShaderYuv that allocates its textures once for each frame size and updates them in
// place. It has no matrix, so it neither turns nor mirrors, and it places the picture by the zoom window
// alone. Threads are those of CLS_ShaderYuv.
class CLS_ShaderYuvSubImage : public CLS_ShaderBase
{
    Q_OBJECT

public:
    CLS_ShaderYuvSubImage();
    ~CLS_ShaderYuvSubImage() override;

    int32_t UnInit() override;
    int32_t ShowYuvFrame(const void *pData, int32_t nLength) override;
    int32_t SetParam(uint32_t nCommand, const void *pPayload, int32_t nLength) override;
    void ClearDraw() override;
    // Retires the program and the textures, so that it may be called on a host thread too; needs
    // m_mutexFrame. Without an explicit length of the last frame, the frame counts as gone.
    void ReleaseGLResource() override;

Q_SIGNALS:
    // Asks for a repaint; may be emitted on any thread.
    void signalUpdate();

public Q_SLOTS:
    void onDestroyed(QObject *obj);

protected:
    void initializeGL() override;
    void resizeGL(int nWidth, int nHeight) override;
    void paintGL() override;

    // Submission: host thread, m_mutexFrame held.
    void TakeDisplayType(int32_t nDisplayType);
    // False when the frame is not stored; nResult is then what the submission answers.
    bool TakeSoftwareFrame(const VideoFrameDesc &frame, int32_t &nResult);

    // Painting: GUI thread, the widget's context current, m_mutexFrame held.
    void InitGLYV12();
    void InitGLNV12();
    void EnsurePrograms();
    void InitHardwareProgram();
    void DrawPicture();
    void DrawYV12();
    void DrawNV12();
    void DrawD3D11();
    // Draws every overlay shape, opaque. Does nothing where the widget's context is not current.
    void PaintDrawInfo();

    std::unique_ptr<QOpenGLTexture> m_pTexY;
    std::unique_ptr<QOpenGLTexture> m_pTexU;
    std::unique_ptr<QOpenGLTexture> m_pTexV;
    int32_t m_nLocTexY = 0;
    int32_t m_nLocTexU = 0;
    int32_t m_nLocTexV = 0;
    int32_t m_nLocDrawFlag = 0;
    int32_t m_nLocDrawColor = 0;
    std::atomic<bool> m_bDestroyed{false};
    std::unique_ptr<QOpenGLShaderProgram> m_pProgram;
    std::unique_ptr<CLS_D3D11EGL> m_pD3D11EGL;
    bool m_bExplicitLength = false;
    int32_t m_nDrawInfoKind = 0;

private:
    int32_t TakeFrame(const VideoFrameDesc &frame, const void *pData, int32_t nLength);
    // False (and logged) when a texture cannot be allocated; those made so far are kept.
    bool CreateTextures(const char *pszFunction, bool blThirdPlane);
    // Gives the textures storage of the frame's size, unless they have it; nChromaFormat is that of the
    // second and third. False when the driver has no textures of that size.
    bool EnsureTextures(uint32_t nChromaFormat);
    void AllocatePlane(QOpenGLTexture &texture, uint32_t nFormat, const QSize &size);
    void PrepareQuad(geometry::QuadVertices &afPositions);
    void UpdatePlane(uint32_t nUnit, QOpenGLTexture &texture, uint32_t nFormat, const QSize &size,
                     const uint8_t *pPixels);
    void PaintBlack();
    // False where there is nothing to paint of a frame. Takes m_mutexFrame.
    bool PaintFrame();
    bool BindPictureProgram();
    // Does what host threads have left to the painting one; needs m_mutexFrame.
    void DestroyRetired();
    void OnContextLost();

    yuv::DrawInfoPainter m_painter;
    yuv::RetiredObjects m_retired;   // guarded by m_mutexFrame
    QSize m_szTextures;              // frame size that the textures are allocated for
    bool m_blReleaseSurface = false; // the hardware path's, by the next paint; guarded by m_mutexFrame
    // As in CLS_ShaderYuv. Painting thread
    bool m_blPaintTwice = false;
};
