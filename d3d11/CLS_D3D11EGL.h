#pragma once

#include "widget/DisplayGeometry.h"

#include <QRect>
#include <cstdint>
#include <memory>

// The hardware-texture path as a renderer sees it: frames of Direct3D 11 textures go in, and a paint draws
// them into the current OpenGL ES framebuffer. SetDevice and SetFrame are called on host threads under the
// renderer's frame mutex; everything else on the painting thread, under the same mutex, with the widget's
// context current.
class CLS_D3D11EGL
{
public:
    // A new object, or null where this build carries no hardware-texture path.
    static std::unique_ptr<CLS_D3D11EGL> Create();

    virtual ~CLS_D3D11EGL();

    // The host's ID3D11Device; a reference is held. 0, or -1 for null.
    virtual int32_t SetDevice(void *pDevice) = 0;
    // The held device, without a reference for the caller.
    virtual void *Device() const = 0;
    // Takes over a VideoFrameDesc of nLength bytes. The result carries no meaning.
    virtual int32_t SetFrame(const void *pData, int32_t nLength) = 0;
    // Forgets that a frame is waiting to be converted.
    virtual void ClearFramePending() = 0;

    // Builds the picture program. 0 or -1.
    virtual int32_t InitD3D11EGL() = 0;
    virtual int32_t DrawFlagLocation() const = 0;
    virtual int32_t DrawColorLocation() const = 0;
    virtual int32_t DrawAlphaLocation() const = 0;
    // Makes the picture program current, for overlays. False without one.
    virtual bool BindProgram() = 0;
    // Drawn area and zoom window of the next draw.
    virtual void SetAreas(const geometry::NormRect &rcDrawArea, const geometry::NormRect &rcEZoom) = 0;
    virtual void SetRotation(int32_t nDirection, int32_t nAngle, int32_t nMirror) = 0;
    // Draws the converted frame over rect (device pixels) and converts the pending one. 0 or -1.
    virtual int32_t Render(const QRect &rect) = 0;
    // Drops the surface that the host's pictures are converted into.
    virtual void ReleaseEGL() = 0;

protected:
    CLS_D3D11EGL() = default;
    CLS_D3D11EGL(const CLS_D3D11EGL &) = default;
    CLS_D3D11EGL &operator=(const CLS_D3D11EGL &) = default;
};
