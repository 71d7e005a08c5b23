// The commands of CLS_ShaderBase. They run on the host's thread under the exports' lock. What a paint reads of them
// is copied in and out under m_mutexParameters.
#include "widget/CLS_ShaderBase.h"
#include "widget/InsideScope.h"

#include <QMutexLocker>
#include <QOpenGLContext>
#include <QThread>
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>

namespace {

constexpr auto kWinIdTimeout = std::chrono::milliseconds(500);

// A whole record from a payload, whatever length the host declared.
template <class Record> Record ReadWhole(const void *pPayload)
{
    Record record;
    std::memcpy(&record, pPayload, sizeof(record));
    return record;
}

// Overwrites the leading bytes of a record; the rest keeps its old value.
template <class Record> void Overwrite(Record &record, const void *pPayload, size_t nLength)
{
    std::memcpy(&record, pPayload, std::min(nLength, sizeof(record)));
}

// -1 where there is none.
int32_t CopyWinId(uint64_t hWinId, void *pBuffer, size_t nLength)
{
    if (hWinId == 0) {
        return -1;
    }
    std::memcpy(pBuffer, &hWinId, std::min(nLength, sizeof(hWinId)));
    return 0;
}

} // namespace

int32_t CLS_ShaderBase::SetParam(uint32_t nCommand, const void *pPayload, int32_t nLength)
{
    if (pPayload == nullptr || nLength < 1) {
        return -1;
    }
    const auto nBytes = static_cast<size_t>(nLength);
    switch (nCommand) {
    case XELTCMD_SET_DRAWINFO_CALLBACK:
        return OnSetDrawInfoCallback(pPayload, nBytes);
    case XELTCMD_SET_EZOOM_AREA:
        return OnSetEZoomArea(pPayload, nBytes);
    case XELTCMD_SET_LABEL_PARENT:
        return OnSetLabelParent(pPayload);
    case XELTCMD_SET_D3D11_DEVICE:
        return OnSetD3D11Device(pPayload, nBytes);
    case XELTCMD_SET_STOPDRAW_PARA:
        return OnSetStopDrawPara(pPayload, nBytes);
    case XELTCMD_SET_ROTATE_PARA:
        return OnSetVideoRotatePara(pPayload, nBytes);
    case XELTCMD_SET_DRAW_RATIO_MODE:
        return SetDrawRatioMode(ReadWhole<XeltDrawRatioPara>(pPayload).nMode);
    case XELTCMD_SET_DRAW_DST_RECT: {
        const auto rc = ReadWhole<XeltDrawDstRect>(pPayload);
        return SetDrawDstRect(rc.left, rc.top, rc.right, rc.bottom);
    }
    default:
        return -1;
    }
}

int32_t CLS_ShaderBase::OnSetDrawInfoCallback(const void *pPayload, size_t nLength)
{
    // A resize asks for records on the GUI thread: it must not see one host's function with another's
    // context.
    const QMutexLocker locker(&m_mutexDrawInfo);
    XeltDrawInfoCallbackPara para = {m_pfnDrawInfo, m_pDrawInfoUser};
    Overwrite(para, pPayload, nLength);
    m_pfnDrawInfo = para.pfnCallback;
    m_pDrawInfoUser = para.pUser;
    return 0;
}

int32_t CLS_ShaderBase::OnSetEZoomArea(const void *pPayload, size_t nLength)
{
    {
        // Deliberately as long as the host says: the contract is exactly 32 bytes, and more overwrites the
        // members that follow.
        const QMutexLocker locker(&m_mutexParameters);
        void *pZoom = &m_rcEZoom;
        std::memcpy(pZoom, pPayload, nLength);
    }
    XELT_LOG("[XeltRender::SetParam]XELTCMD_SET_EZOOM_AREA left = %f top = %f right = %f bottom = %f",
             m_rcEZoom.left, m_rcEZoom.top, m_rcEZoom.right, m_rcEZoom.bottom);
    return 0;
}

int32_t CLS_ShaderBase::OnSetLabelParent(const void *pPayload)
{
    disconnect(m_labelParentDestroyed);
    auto *pParent = static_cast<QWidget *>(const_cast<void *>(pPayload));
    m_pLabelParent = pParent;
    // The host may destroy its widget while labels are still rebuilt. By then another one may be set.
    m_labelParentDestroyed = connect(pParent, &QObject::destroyed, this, [this, pParent] {
        QWidget *pExpected = pParent;
        m_pLabelParent.compare_exchange_strong(pExpected, nullptr);
    });
    return 0;
}

int32_t CLS_ShaderBase::OnSetD3D11Device(const void *pPayload, size_t nLength)
{
    Overwrite(m_pD3D11Device, pPayload, nLength);
    return 0;
}

int32_t CLS_ShaderBase::OnSetStopDrawPara(const void *pPayload, size_t nLength)
{
    Overwrite(blReserveLastFrm, pPayload, nLength);
    XELT_LOG("CLS_ShaderBase::SetParam-XELTCMD_SET_STOPDRAW_PARA blReserveLastFrm=%d", blReserveLastFrm);
    return 0;
}

int32_t CLS_ShaderBase::SetDrawRatioMode(int32_t nMode)
{
    const QRect rcWidget = rect();
    m_rcDraw = rcWidget;
    XELT_LOG("[CLS_ShaderBase::SetDrawRatioMode] before l=%d, t=%d, r=%d, b=%d", m_rcDraw.left(),
             m_rcDraw.top(), m_rcDraw.right(), m_rcDraw.bottom());
    if (nMode == 0) {
        m_rcDraw = geometry::FitFrame(rcWidget, m_nVideoWidth, m_nVideoHeight);
    }
    UpdateDrawArea(rcWidget);
    // No blank after the bracket: the text is matched by log readers.
    XELT_LOG("[CLS_ShaderBase::SetDrawRatioMode]after l=%d, t=%d, r=%d, b=%d", m_rcDraw.left(),
             m_rcDraw.top(), m_rcDraw.right(), m_rcDraw.bottom());
    return 0;
}

int32_t CLS_ShaderBase::SetDrawDstRect(int32_t nLeft, int32_t nTop, int32_t nRight, int32_t nBottom)
{
    const QRect rcWidget = rect();
    XELT_LOG("[CLS_ShaderBase::SetDrawDstRect] width=%d, height=%d", rcWidget.width(), rcWidget.height());
    m_rcDraw.setCoords(nLeft, nTop, nRight, nBottom);
    XELT_LOG("[CLS_ShaderBase::SetDrawDstRect] left=%d, top=%d , right =%d ,bottom = %d", nLeft, nTop, nRight,
             nBottom);
    if (geometry::InclusiveLength(nLeft, nRight) < 2 || geometry::InclusiveLength(nTop, nBottom) < 2) {
        return -1; // the rejected rectangle stays stored, deliberately
    }
    UpdateDrawArea(rcWidget);
    XELT_LOG("[CLS_ShaderBase::SetDrawDstRect] left=%.2f, top=%.2f , right =%.2f ,bottom = %.2f",
             m_rcDrawArea.left, m_rcDrawArea.top, m_rcDrawArea.right, m_rcDrawArea.bottom);
    return 0;
}

void CLS_ShaderBase::UpdateDrawArea(const QRect &rcWidget)
{
    if (!rcWidget.isEmpty()) {
        const QMutexLocker locker(&m_mutexParameters);
        m_rcDrawArea = geometry::Normalise(m_rcDraw, rcWidget);
    }
}

CLS_ShaderBase::Picture CLS_ShaderBase::CurrentPicture() const
{
    const QMutexLocker locker(&m_mutexParameters);
    return {m_rcDrawArea, m_rcEZoom, {m_nVideoRotateDirection, m_nVideoRotateAngle, mirrorType}};
}

void CLS_ShaderBase::ResetPlacement()
{
    const QMutexLocker locker(&m_mutexParameters);
    m_rcDrawArea = geometry::NormRect();
    m_rcEZoom = geometry::NormRect();
}

void CLS_ShaderBase::ResetZoom()
{
    const QMutexLocker locker(&m_mutexParameters);
    m_rcEZoom = geometry::NormRect();
}

int32_t CLS_ShaderBase::GetParam(uint32_t nCommand, void *pBuffer, int32_t nLength)
{
    if (pBuffer == nullptr || nLength < 1) {
        return -1;
    }
    switch (nCommand) {
    case XELTCMD_GET_WINID:
        return OnGetWinId(pBuffer, static_cast<size_t>(nLength));
    case XELTCMD_GET_WIDGET_RECT:
        return OnGetWidgetRect(pBuffer);
    case XELTCMD_GET_IS_OPENGLES:
        return OnGetIsOpenGLES(pBuffer);
    default:
        return -1;
    }
}

int32_t CLS_ShaderBase::OnGetWinId(void *pBuffer, size_t nLength)
{
    if (CopyWinId(m_hWinId, pBuffer, nLength) == 0) {
        return 0;
    }
    if (QThread::currentThread() != thread()) {
        return AfterCall(RequestWinId(pBuffer, nLength), -1);
    }
    // Making the window tells the host's filters and other widgets of it: not with another renderer's locks held.
    if (InsideScope::IsInsideOther(this)) {
        RequestWinId(pBuffer, nLength);
        return -1;
    }
    return AfterCall(
        [pThis = QPointer<CLS_ShaderBase>(this), pBuffer, nLength](int32_t nResult) {
            return pThis.isNull() ? nResult : CopyWinId(pThis->winId(), pBuffer, nLength);
        },
        -1);
}

// A native window is made on the widget's own thread. Another thread asks for it and waits, but not for ever: the
// GUI thread may itself be waiting for what the asking one has locked. An answer that comes too late is kept.
CLS_ShaderBase::Afterwards CLS_ShaderBase::RequestWinId(void *pBuffer, size_t nLength)
{
    struct Answer
    {
        std::mutex mutex;
        std::condition_variable condition;
        bool blDone = false;
        uint64_t hWinId = 0;
    };
    const auto pAnswer = std::make_shared<Answer>();
    QMetaObject::invokeMethod(
        this,
        [this, pAnswer] {
            const uint64_t hWinId = winId(); // which an event of the widget's keeps
            const std::lock_guard<std::mutex> guard(pAnswer->mutex);
            pAnswer->hWinId = hWinId;
            pAnswer->blDone = true;
            pAnswer->condition.notify_one();
        },
        Qt::QueuedConnection);
    return [pAnswer, pBuffer, nLength](int32_t) {
        std::unique_lock<std::mutex> lock(pAnswer->mutex);
        pAnswer->condition.wait_for(lock, kWinIdTimeout, [&] { return pAnswer->blDone; });
        return CopyWinId(pAnswer->hWinId, pBuffer, nLength);
    };
}

// Top before left, deliberately: hosts read the record in this order.
int32_t CLS_ShaderBase::OnGetWidgetRect(void *pBuffer) const
{
    const QRect rcWidget = rect();
    const XeltWidgetRect record = {rcWidget.top(), rcWidget.left(), rcWidget.right(), rcWidget.bottom()};
    std::memcpy(pBuffer, &record, sizeof(record));
    return 0;
}

int32_t CLS_ShaderBase::OnGetIsOpenGLES(void *pBuffer)
{
    const QOpenGLContext *pContext = QOpenGLContext::currentContext();
    const bool blOpenGLES = pContext != nullptr ? pContext->isOpenGLES()
                                                : QOpenGLContext::openGLModuleType() != QOpenGLContext::LibGL;
    const uint32_t nAnswer = blOpenGLES ? 1 : 0;
    std::memcpy(pBuffer, &nAnswer, sizeof(nAnswer));
    return 0;
}
