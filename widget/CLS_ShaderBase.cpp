#include "widget/CLS_ShaderBase.h"

#include "widget/InsideScope.h"

#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QMutexLocker>
#include <QOpenGLContext>
#include <QThread>
#include <algorithm>
#include <cstdlib>
#include <cstring>
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

// Whether the host gave something to copy: without, a buffer keeps its contents.
bool HasPixels(const VideoFrameDesc &frame)
{
    const bool blPlanes =
        frame.nDisplayType == VIDEO_DISPLAY_NV12 && frame.pPlaneY != nullptr && frame.pPlaneUV != nullptr;
    return blPlanes || frame.pFrameData != nullptr;
}

} // namespace

CLS_ShaderBase::CLS_ShaderBase(QWidget *pParent) : QOpenGLWidget(pParent)
{
    m_rcDrawArea = m_rcEZoom;
    connect(this, &CLS_ShaderBase::signalDrawTextInfo, this,
            [this] { RunUnlocked(&CLS_ShaderBase::AddLabel); });
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
                                       const LogPosition &position, int32_t &nResult)
{
    nResult = -1;
    const bool blOtherLength = frame.nDataLen > 0 && frame.nDataLen != m_nFrameBufferSize;
    // An earlier frame may have declared less than a whole one.
    const bool blTooShort =
        frame.nDataLen <= 0 && m_pFrameBuffer != nullptr && !HoldsWholeFrame() && HasPixels(frame);
    const bool blOtherSize = frame.iWidth != m_nVideoWidth || frame.iHeight != m_nVideoHeight;
    const bool blMissing = missing == MissingBuffer::Allocate && m_pFrameBuffer == nullptr;
    if (blOtherLength || blTooShort || blMissing || blOtherSize) {
        nResult = InitFrameBuffer(frame.iWidth, frame.iHeight, frame.nDataLen);
    }
    if (m_pFrameBuffer == nullptr) {
        return false;
    }
    if (frame.iWidth < 1 || frame.iHeight < 1) {
        XELT_REPORT_ERROR_FROM(position, "ShowYuvFrame iWidth = %d iHeight = %d is invalid param",
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

bool CLS_ShaderBase::FitsTextures(int32_t nLargest, const LogPosition &position)
{
    const QSize size(m_nVideoWidth, m_nVideoHeight);
    if (size.width() <= nLargest && size.height() <= nLargest) {
        return true;
    }
    if (std::find(m_aszTooLarge.begin(), m_aszTooLarge.end(), size) == m_aszTooLarge.end()) {
        m_aszTooLarge[m_nTooLarge++ % m_aszTooLarge.size()] = size;
        XELT_REPORT_ERROR_FROM(position, "frame %d x %d is larger than the context's textures, %d",
                               size.width(), size.height(), nLargest);
    }
    return false;
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
    if (m_fnDestroyHook) {
        std::exchange(m_fnDestroyHook, nullptr)();
    }
}

int32_t CLS_ShaderBase::AfterCall(Afterwards fnAfterwards, int32_t nResult)
{
    if (!InsideScope::IsInside(this)) {
        return fnAfterwards(nResult);
    }
    m_fnAfterwards = std::move(fnAfterwards);
    return nResult;
}

void CLS_ShaderBase::RunUnlocked(void (CLS_ShaderBase::*pfnWork)())
{
    if (m_blPainting || InsideScope::IsInsideOther(this)) {
        QMetaObject::invokeMethod(
            this, [this, pfnWork] { RunUnlocked(pfnWork); }, Qt::QueuedConnection);
        return;
    }
    AfterCall(
        [pThis = QPointer<CLS_ShaderBase>(this), pfnWork](int32_t nResult) {
            if (!pThis.isNull()) {
                (pThis->*pfnWork)();
            }
            return nResult;
        },
        0);
}

FrameMutex *CLS_ShaderBase::FrameMutexToBorrow()
{
    return InsideScope::IsInside(this) ? nullptr : &m_mutexFrame;
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
    } else if (pEvent->type() == QEvent::WinIdChange) {
        m_hWinId = internalWinId(); // 0 where the pane has no window of its own any more
    }
    return QOpenGLWidget::event(pEvent);
}

void CLS_ShaderBase::resizeGL(int nWidth, int nHeight)
{
    glViewport(0, 0, nWidth, nHeight != 0 ? nHeight : 1);
}

void CLS_ShaderBase::ComputeQuadVertices(geometry::QuadVertices &afOut) const
{
    const Picture picture = CurrentPicture();
    geometry::ComputeQuad(picture.rcDrawArea, picture.rcEZoom, afOut);
}

// Here and not with the other commands: the line that it logs is one of this file.
int32_t CLS_ShaderBase::OnSetVideoRotatePara(const void *pPayload, size_t nLength)
{
    XeltRotatePara para = CurrentPicture().rotation;
    std::memcpy(&para, pPayload, std::min(nLength, sizeof(para)));
    {
        const QMutexLocker locker(&m_mutexParameters);
        m_nVideoRotateDirection = para.nDirection;
        m_nVideoRotateAngle = para.nAngle;
        mirrorType = para.nMirror;
    }
    XELT_LOG("%s::%s(%d) OnSetVideoRotatePara m_nVideoRotateAngle:%d, m_nVideoRotateDirection=%d, "
             "mirrorType: %d",
             "CLS_ShaderBase", "CLS_ShaderBase::OnSetVideoRotatePara", __LINE__, para.nAngle, para.nDirection,
             para.nMirror);
    return 0;
}
