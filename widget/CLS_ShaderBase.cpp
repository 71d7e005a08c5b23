#include "widget/CLS_ShaderBase.h"

#include "log/CLS_OmbrixApi.h"

#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QOpenGLContext>
#include <QThread>
#include <cstdlib>
#include <limits>

namespace {

// Bytes beyond a packed 4:2:0 frame that an NV12 upload reads with rows aligned to 4.
uint64_t AlignmentSlack(uint64_t nWidth, uint64_t nHeight)
{
    const auto alignUp = [](uint64_t n) { return (n + 3) & ~uint64_t{3}; };
    const uint64_t nFrame = nWidth * nHeight * 3 / 2;
    const uint64_t nLuma = alignUp(nWidth) * nHeight;
    const uint64_t nChroma = nWidth * nHeight + alignUp(nWidth / 2 * 2) * (nHeight / 2);
    const uint64_t nRead = nLuma > nChroma ? nLuma : nChroma;
    return nRead > nFrame ? nRead - nFrame : 0;
}

} // namespace

CLS_ShaderBase::CLS_ShaderBase(QWidget *pParent) : QOpenGLWidget(pParent)
{
    m_rcDrawArea = m_rcEZoom;
    connect(this, &CLS_ShaderBase::signalDrawTextInfo, this, [this] { AddLabel(); });
}

// The renderers free the frame buffer. Labels go with their parent.
CLS_ShaderBase::~CLS_ShaderBase()
{
    // Where the widget is its own label parent, its destroyed() comes when this part of it is gone.
    disconnect(m_labelParentDestroyed);
}

int32_t CLS_ShaderBase::SetParentLayout(QLayout *pLayout)
{
    if (pLayout == nullptr) {
        return -1;
    }
    pLayout->addWidget(this);
    return 0;
}

int32_t CLS_ShaderBase::UnInit()
{
    return 0;
}

void CLS_ShaderBase::ClearDraw() {}

void CLS_ShaderBase::ReleaseGLResource() {}

int32_t CLS_ShaderBase::InitFrameBuffer(int32_t nWidth, int32_t nHeight, int32_t nSize)
{
    if (nWidth < 1 || nHeight < 1) {
        return -1;
    }
    FreeFrameBuffer();
    m_nFrameBufferSize = nSize;
    m_nVideoWidth = nWidth;
    m_nVideoHeight = nHeight;

    const auto nPixels = static_cast<uint64_t>(nWidth) * static_cast<uint64_t>(nHeight);
    // A frame size is a 32-bit figure all the way; one that does not fit cannot be had.
    constexpr uint64_t nMaxPixels = std::numeric_limits<int32_t>::max() / 3;
    if (nSize < 1 && nPixels > nMaxPixels) {
        return -1;
    }
    const uint64_t nBytes = nSize >= 1 ? static_cast<uint64_t>(nSize) : nPixels * 3 / 2;
    // A buffer that does not hold the whole frame is never uploaded.
    const uint64_t nSlack = nBytes >= nPixels * 3 / 2 ? AlignmentSlack(static_cast<uint64_t>(nWidth),
                                                                       static_cast<uint64_t>(nHeight))
                                                      : 0;
    m_pFrameBuffer = static_cast<uint8_t *>(std::calloc(static_cast<size_t>(nBytes + nSlack), 1));
    if (m_pFrameBuffer == nullptr) {
        return -1;
    }
    m_nFrameBufferBytes = static_cast<size_t>(nBytes);
    return 0;
}

bool CLS_ShaderBase::EnsureFrameBuffer(const VideoFrameDesc &frame, MissingBuffer missing,
                                       const char *pszFile, const char *pszFunction, int32_t &nResult)
{
    nResult = -1;
    const bool blOtherLength = frame.nDataLen > 0 && frame.nDataLen != m_nFrameBufferSize;
    const bool blOtherSize = frame.iWidth != m_nVideoWidth || frame.iHeight != m_nVideoHeight;
    const bool blMissing = missing == MissingBuffer::Allocate && m_pFrameBuffer == nullptr;
    if (blOtherLength || blMissing || blOtherSize) {
        nResult = InitFrameBuffer(frame.iWidth, frame.iHeight, frame.nDataLen);
    }
    if (m_pFrameBuffer == nullptr) {
        return false;
    }
    if (frame.iWidth < 1 || frame.iHeight < 1) {
        XELT_REPORT_ERROR(pszFile, pszFunction, "ShowYuvFrame iWidth = %d iHeight = %d is invalid param",
                          frame.iWidth, frame.iHeight);
        return false;
    }
    return true;
}

void CLS_ShaderBase::FreeFrameBuffer()
{
    std::free(m_pFrameBuffer);
    m_pFrameBuffer = nullptr;
    m_pPlaneY = nullptr;
    m_pPlaneUV = nullptr;
    m_nFrameBufferBytes = 0;
}

bool CLS_ShaderBase::HoldsWholeFrame() const
{
    const auto nPixels = static_cast<uint64_t>(m_nVideoWidth) * static_cast<uint64_t>(m_nVideoHeight);
    return m_nFrameBufferBytes >= nPixels * 3 / 2;
}

bool CLS_ShaderBase::IsContextCurrent() const
{
    if (QThread::currentThread() != thread()) {
        return false;
    }
    const QOpenGLContext *pContext = QOpenGLContext::currentContext();
    return pContext != nullptr && pContext == context();
}

void CLS_ShaderBase::BeginDestruction()
{
    if (m_pfnDestroyHook != nullptr) {
        m_pfnDestroyHook(this);
        m_pfnDestroyHook = nullptr;
    }
}

QSize CLS_ShaderBase::sizeHint() const
{
    return {200, 200};
}

QSize CLS_ShaderBase::minimumSizeHint() const
{
    return {50, 50};
}

bool CLS_ShaderBase::event(QEvent *pEvent)
{
    if (pEvent->type() == QEvent::Show) {
        update();
    }
    return QOpenGLWidget::event(pEvent);
}

void CLS_ShaderBase::resizeGL(int nWidth, int nHeight)
{
    glViewport(0, 0, nWidth, nHeight != 0 ? nHeight : 1);
}

void CLS_ShaderBase::ComputeQuadVertices(geometry::QuadVertices &afOut) const
{
    geometry::ComputeQuad(m_rcDrawArea, m_rcEZoom, afOut);
}
