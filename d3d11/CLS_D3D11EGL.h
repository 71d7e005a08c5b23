#pragma once

#include "d3d11/ColorMatrix.h"
#include "d3d11/ComPtr.h"
#include "d3d11/RgbProgram.h"
#include "platform/EglApi.h"
#include "widget/DisplayGeometry.h"

#include <QRect>
#include <QSize>
#include <atomic>
#include <cstdint>
#include <memory>

class GeometryRenderer;
class QMatrix4x4;
namespace dx {
class D3D11VP;
}

// The hardware-texture path as a renderer sees it: frames of Direct3D 11 textures go in, and a paint draws
// them into the current OpenGL ES framebuffer. Between the two stands a BGRA texture on the host's device,
// which the video processor converts into and OpenGL ES sees through an EGL pbuffer.
//
// SetDevice, SetFrame and the picture settings are called on host threads under the renderer's frame mutex,
// ClearFramePending on any thread with or without it; everything else on the painting thread, under the same
// mutex, with the widget's context current, unless said otherwise. The constructor uses neither GL nor EGL.
// DestroyEglResource comes before the destructor where HoldsContextObjects() says that there is something to
// destroy.
class CLS_D3D11EGL
{
public:
    CLS_D3D11EGL();
    virtual ~CLS_D3D11EGL();
    CLS_D3D11EGL(const CLS_D3D11EGL &) = delete;
    CLS_D3D11EGL &operator=(const CLS_D3D11EGL &) = delete;

    // The host's ID3D11Device; a reference is held. 0, or -1 for null. With another device, what was made on
    // the old one is not used any more.
    virtual int32_t SetDevice(void *pDevice);
    // The held device, without a reference for the caller.
    virtual void *Device() const;
    // Takes over a VideoFrameDesc of nLength bytes. The result carries no meaning: it is always -1.
    virtual int32_t SetFrame(const void *pData, int32_t nLength);
    // Forgets that a frame is waiting to be converted. Any thread, without a lock: a paint that has begun to
    // convert ends that, the next one does not.
    virtual void ClearFramePending();

    // Picture adjustments, all 0 by default; ColorMatrix says what they mean.
    void SetHue(double dHue);
    void SetSaturation(double dSaturation);
    void SetContrast(double dContrast);
    void SetBrightness(double dBrightness);
    // Codes of dx::D3D11VP.
    void SetColorSpace(int32_t nColorSpace);
    void SetColorRange(int32_t nColorRange);

    // Builds the picture program and its texture. 0 or -1.
    virtual int32_t InitD3D11EGL();
    virtual int32_t DrawFlagLocation() const;
    virtual int32_t DrawColorLocation() const;
    virtual int32_t DrawAlphaLocation() const;
    // Makes the picture program current, for overlays, which turn with the picture. False without one.
    virtual bool BindProgram();
    // Drawn area and zoom window of the next draw.
    virtual void SetAreas(const geometry::NormRect &rcDrawArea, const geometry::NormRect &rcEZoom);
    virtual void SetRotation(int32_t nDirection, int32_t nAngle, int32_t nMirror);
    // Draws the frame converted last over rect (device pixels), then converts the pending one. 0, or -1 when
    // either fails; the next frame is tried afresh.
    virtual int32_t Render(const QRect &rect);
    // Drops the surface that the host's pictures are converted into.
    virtual void ReleaseEGL();
    // Lets go of what is the host's or lives on its device. GL and EGL keep what they show of it. Any thread,
    // under the frame mutex.
    virtual void ReleaseHostObjects();
    // Whether objects of GL or EGL are left, which only the painting thread may destroy.
    virtual bool HoldsContextObjects() const;
    // Releases everything, the device included. Qt's current context stays current.
    virtual void DestroyEglResource();
    // Releases what belongs to the context that is current and about to go; device and frame stay, and
    // InitD3D11EGL builds the rest again in another context. As after DestroyEglResource the picture is then drawn
    // without a vertex array object, for its layout stays what it was.
    virtual void ReleaseContextObjects();

private:
    bool EnsureSurface(int32_t nWidth, int32_t nHeight);
    bool FitsContext(int32_t nWidth, int32_t nHeight);
    int32_t Map();
    bool Convert();

    // Steps of these: D3D11EGLSurface.cpp. None writes an error record; EGL still has the error of what fails.
    bool EnsureDisplay();
    bool HasShareHandles() const;
    bool ChooseConfig(EGLConfig &config) const;
    bool CreateOutputTexture(int32_t nWidth, int32_t nHeight, HANDLE &hShare);
    void EnsureProcessor();
    bool CreateSurface(EGLConfig config, HANDLE hShare, int32_t nWidth, int32_t nHeight);
    void BindSurface();
    void DropOldDevice();

    // Drawing: D3D11EGLPainting.cpp.
    void Draw();
    void UpdateGeometry();
    QMatrix4x4 PictureMatrix() const;

    RgbProgram m_program{this};
    ComPtr<ID3D11Texture2D> m_pTexture; // the host's
    uint32_t m_nSlice = 0;
    EGLSurface m_eglSurface = EGL_NO_SURFACE;
    QSize m_szSurface;
    QSize m_szTooLarge;            // the last frame's size, once it is reported as too large
    bool m_blSurfaceBound = false; // to the texture m_nBoundTexture
    EGLDisplay m_eglDisplay = EGL_NO_DISPLAY;
    ComPtr<ID3D11Texture2D> m_pd3dtex; // converted into, shared with EGL
    std::unique_ptr<dx::D3D11VP> m_pD3Dvp;
    // 0 before the first one; after a failed conversion a value that no texture has, so that it is bound
    // again.
    uint32_t m_nBoundTexture = 0;
    ComPtr<ID3D11Device> m_pD3DDevice;
    bool m_blDeviceChanged = false;                        // objects of an old device are still held
    std::unique_ptr<GeometryRenderer> m_pGeometryRenderer; // made at the first draw, on its thread
    ColorMatrix m_colorMatrix;
    int32_t m_nColorSpace;
    int32_t m_nColorRange;
    int32_t m_nFrameWidth = 0;
    int32_t m_nFrameHeight = 0;
    geometry::NormRect m_rcDrawArea;
    geometry::NormRect m_rcEZoom;
    bool m_blMapped = false;                   // the surface holds a converted frame and the texture shows it
    std::atomic<bool> m_blFramePending{false}; // cleared without the lock
    bool m_blConvertAgain = false;             // the picture went with its context
    int32_t m_nRotateDirection = 0;
    int32_t m_nRotateAngle = 0;
    int32_t m_nMirror = 0;
};
