#pragma once

#include "widget/CLS_ShaderBase.h"
#include "yuv/DrawInfoPainter.h"
#include "yuv/PictureGl.h"

#include <atomic>
#include <memory>

class CLS_D3D11EGL;
class QOpenGLShaderProgram;
class QOpenGLTexture;

// The main renderer: YV12 and NV12 frames with its own programs, Direct3D 11 textures through CLS_D3D11EGL.
// Host threads submit frames and parameters; the GUI thread paints. GL objects are made and destroyed on the
// GUI thread only.
class CLS_ShaderYuv : public CLS_ShaderBase
{
    Q_OBJECT

public:
    CLS_ShaderYuv();
    ~CLS_ShaderYuv() override;

    int32_t UnInit() override;
    int32_t ShowYuvFrame(const void *pData, int32_t nLength) override;
    int32_t SetParam(uint32_t nCommand, const void *pPayload, int32_t nLength) override;
    int32_t GetParam(uint32_t nCommand, void *pBuffer, int32_t nLength) override;
    void ClearDraw() override;
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

    // What a submission that the kept frame mutex holds up answers; it waits when the exports' lock is released.
    int32_t AnswerHeldUp(const FrameMutex::HeldUp &heldUp);
    // Stores a frame. Host thread, m_mutexFrame held; so are its steps.
    int32_t TakeFrame(const VideoFrameDesc &frame, const void *pData, int32_t nLength,
                      bool &blDrawInfoChanged);
    void TakeDisplayType(int32_t nDisplayType);
    // False when the frame is not stored; nResult is then what the submission answers.
    bool TakeSoftwareFrame(const VideoFrameDesc &frame, int32_t &nResult);
    // Back to the state without a frame. Needs m_mutexFrame.
    void ResetFrameState();

    // Painting: GUI thread, the widget's context current, m_mutexFrame held.
    void InitGLYV12();
    void InitGLNV12();
    // Builds what the display type needs. False when the hardware path cannot be initialised.
    bool EnsurePrograms();
    bool InitHardwareProgram();
    void DrawPicture();
    void DrawYV12();
    void DrawNV12();
    void DrawD3D11();
    void SetMatrix();

    // Draws the overlay shapes of a pass with the picture program. Does nothing where the widget's context is
    // not current, which is so when a host thread clears the pane.
    void PaintDrawInfo(yuv::DrawInfoPass pass);

    int32_t m_nLocTexY = 0;
    int32_t m_nLocTexU = 0;
    int32_t m_nLocTexV = 0;
    int32_t m_nLocDrawFlag = 0;
    int32_t m_nLocDrawColor = 0;
    int32_t m_nLocDrawAlpha = 0;
    uint32_t m_nTexIdY = 0;
    uint32_t m_nTexIdU = 0;
    uint32_t m_nTexIdV = 0;
    std::unique_ptr<QOpenGLTexture> m_pTexY;
    std::unique_ptr<QOpenGLTexture> m_pTexU;
    std::unique_ptr<QOpenGLTexture> m_pTexV;
    std::atomic<bool> m_bDestroyed{false};
    std::unique_ptr<QOpenGLShaderProgram> m_pProgram;
    std::unique_ptr<CLS_D3D11EGL> m_pD3D11EGL;
    bool m_bClearPending = false;
    yuv::DrawInfoPainter m_painter;
    bool m_bExplicitLength = false;
    int32_t m_nDrawInfoKind = 0;
    uint32_t m_nD3D11FailCount = 0;

private:
    // False (and logged) when a texture cannot be allocated; those made so far are kept.
    bool CreateTextures(const char *pszFunction, bool blThirdPlane);
    // Whether the buffer holds the whole frame and the driver has textures of its size.
    bool CanUpload();
    void PrepareQuad(geometry::QuadVertices &afPositions);
    void BindPlane(uint32_t nUnit, uint32_t nTexture);
    // Into the texture that is bound.
    void UploadPlane(uint32_t nFormat, int32_t nWidth, int32_t nHeight, const uint8_t *pPixels);
    bool BindPictureProgram();
    void OnContextLost();

    int32_t m_nMaxTextureSize = 0; // of the context that the textures belong to
    yuv::RetiredObjects m_retired; // guarded by m_mutexFrame
    // A hardware frame shows one paint after its conversion, so a new context needs two. Painting thread.
    bool m_blPaintTwice = false;
};
