// Renderers whose members the tests may look at and call.
#pragma once

#include "yuv/CLS_ShaderYuv.h"

#include <ostream>

class OpenBase : public CLS_ShaderBase
{
public:
    OpenBase() : CLS_ShaderBase(nullptr) {}
    ~OpenBase() override { FreeFrameBuffer(); }
    int32_t ShowYuvFrame(const void *, int32_t) override { return 0; }

    using CLS_ShaderBase::blReserveLastFrm;
    using CLS_ShaderBase::ClearLabels;
    using CLS_ShaderBase::ComputeQuadVertices;
    using CLS_ShaderBase::FrameBufferBytes;
    using CLS_ShaderBase::m_blGLReady;
    using CLS_ShaderBase::m_blLabelsShown;
    using CLS_ShaderBase::m_blUnInit;
    using CLS_ShaderBase::m_bTypeChanged;
    using CLS_ShaderBase::m_hWinId;
    using CLS_ShaderBase::m_mutexDrawInfo;
    using CLS_ShaderBase::m_mutexFrame;
    using CLS_ShaderBase::m_nDisplayType;
    using CLS_ShaderBase::m_nFrameBufferSize;
    using CLS_ShaderBase::m_nVideoHeight;
    using CLS_ShaderBase::m_nVideoRotateAngle;
    using CLS_ShaderBase::m_nVideoRotateDirection;
    using CLS_ShaderBase::m_nVideoWidth;
    using CLS_ShaderBase::m_pD3D11Device;
    using CLS_ShaderBase::m_pDrawInfoUser;
    using CLS_ShaderBase::m_pfnDrawInfo;
    using CLS_ShaderBase::m_pFrameBuffer;
    using CLS_ShaderBase::m_pLabelParent;
    using CLS_ShaderBase::m_pLabels;
    using CLS_ShaderBase::m_pPlaneUV;
    using CLS_ShaderBase::m_pPlaneY;
    using CLS_ShaderBase::m_rcDraw;
    using CLS_ShaderBase::m_rcDrawArea;
    using CLS_ShaderBase::m_rcEZoom;
    using CLS_ShaderBase::m_vecDrawInfo;
    using CLS_ShaderBase::mirrorType;
    using CLS_ShaderBase::paintGL;
    using CLS_ShaderBase::resizeGL;
};

class OpenYuv : public CLS_ShaderYuv
{
public:
    using CLS_ShaderYuv::blReserveLastFrm;
    using CLS_ShaderYuv::ComputeQuadVertices;
    using CLS_ShaderYuv::FrameBufferBytes;
    using CLS_ShaderYuv::m_bClearPending;
    using CLS_ShaderYuv::m_bExplicitLength;
    using CLS_ShaderYuv::m_blGLReady;
    using CLS_ShaderYuv::m_blUnInit;
    using CLS_ShaderYuv::m_bTypeChanged;
    using CLS_ShaderYuv::m_hWinId;
    using CLS_ShaderYuv::m_mutexFrame;
    using CLS_ShaderYuv::m_nD3D11FailCount;
    using CLS_ShaderYuv::m_nDisplayType;
    using CLS_ShaderYuv::m_nDrawInfoKind;
    using CLS_ShaderYuv::m_nFrameBufferSize;
    using CLS_ShaderYuv::m_nLocDrawColor;
    using CLS_ShaderYuv::m_nLocDrawFlag;
    using CLS_ShaderYuv::m_nVideoHeight;
    using CLS_ShaderYuv::m_nVideoRotateAngle;
    using CLS_ShaderYuv::m_nVideoRotateDirection;
    using CLS_ShaderYuv::m_nVideoWidth;
    using CLS_ShaderYuv::m_pD3D11Device;
    using CLS_ShaderYuv::m_pD3D11EGL;
    using CLS_ShaderYuv::m_pDrawInfoUser;
    using CLS_ShaderYuv::m_pfnDrawInfo;
    using CLS_ShaderYuv::m_pFrameBuffer;
    using CLS_ShaderYuv::m_pLabelParent;
    using CLS_ShaderYuv::m_pPlaneUV;
    using CLS_ShaderYuv::m_pPlaneY;
    using CLS_ShaderYuv::m_rcDraw;
    using CLS_ShaderYuv::m_rcDrawArea;
    using CLS_ShaderYuv::m_rcEZoom;
    using CLS_ShaderYuv::m_vecDrawInfo;
    using CLS_ShaderYuv::mirrorType;
    using CLS_ShaderYuv::resizeGL;
};

namespace geometry {

inline bool operator==(const NormRect &a, const NormRect &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

inline void PrintTo(const NormRect &rc, std::ostream *pStream)
{
    *pStream << '(' << rc.left << ", " << rc.top << ", " << rc.right << ", " << rc.bottom << ')';
}

} // namespace geometry
