#include "HostWindow.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QPointer>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <thread>

namespace xelttest {

bool pump(const std::function<bool()> &condition, int nTimeoutMs)
{
    QElapsedTimer elapsed;
    elapsed.start();
    QTimer wakeUp; // so that waiting for events also looks at the condition
    wakeUp.start(2);
    for (;;) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (condition()) {
            return true;
        }
        if (elapsed.hasExpired(nTimeoutMs)) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
}

void drainEvents()
{
    for (int nRound = 0; nRound < 3; ++nRound) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
}

QOpenGLWidget *paneWidget(void *handle)
{
    return qobject_cast<QOpenGLWidget *>(static_cast<QWidget *>(handle));
}

QImage grab(void *handle)
{
    // OpenGL ES and desktop GL hand the bytes over in different orders; these conversions only reorder them.
    const QImage image = paneWidget(handle)->grabFramebuffer();
    switch (image.format()) {
    case QImage::Format_RGBX8888:
        return image.convertToFormat(QImage::Format_RGB32);
    case QImage::Format_RGBA8888:
        return image.convertToFormat(QImage::Format_ARGB32);
    case QImage::Format_RGBA8888_Premultiplied:
        return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    default:
        return image;
    }
}

Creator defaultCreator()
{
    return rendererType() == XELT_RENDERER_YUV ? Creator::Create : Creator::CreateEx;
}

HostWindow::HostWindow(std::nullptr_t) : m_pLayout(new QGridLayout(this))
{
    m_pLayout->setContentsMargins(0, 0, 0, 0);
    m_pLayout->setSpacing(0);
}

HostWindow::HostWindow(const QSize &paneSize, int nCount, Creator creator, int32_t nTypeCode)
    : HostWindow(nullptr)
{
    for (int i = 0; i < nCount; ++i) {
        addPane(paneSize, creator, nTypeCode);
    }
    showAndWait();
}

HostWindow::~HostWindow()
{
    releaseAll();
}

void *HostWindow::addPane(const QSize &paneSize, Creator creator, int32_t nTypeCode)
{
    void *handle =
        creator == Creator::Create ? Xelt_Create(m_pLayout) : Xelt_CreateEx(&nTypeCode, sizeof nTypeCode);
    if (handle != nullptr) {
        QWidget *pWidget = paneWidget(handle);
        pWidget->setFixedSize(paneSize);
        m_pLayout->removeWidget(pWidget);
        place(pWidget);
    }
    return handle;
}

void HostWindow::adopt(void *handle)
{
    QWidget *pWidget = paneWidget(handle);
    if (auto *pBefore = qobject_cast<HostWindow *>(pWidget->window())) {
        pBefore->forget(handle);
    }
    place(pWidget);
}

void HostWindow::forget(void *handle)
{
    QWidget *pWidget = paneWidget(handle);
    m_vecPanes.erase(std::remove(m_vecPanes.begin(), m_vecPanes.end(), handle), m_vecPanes.end());
    m_mapPaints.erase(pWidget);
    pWidget->removeEventFilter(this);
    m_pLayout->removeWidget(pWidget);
}

void HostWindow::place(QWidget *pWidget)
{
    constexpr int k_nColumns = 4;
    m_pLayout->addWidget(pWidget, m_nPlaced / k_nColumns, m_nPlaced % k_nColumns);
    ++m_nPlaced;
    m_vecPanes.push_back(pWidget);
    m_mapPaints[pWidget] = 0;
    pWidget->installEventFilter(this);
    if (isVisible()) {
        pWidget->show();
    }
}

bool HostWindow::painted() const
{
    return windowHandle() != nullptr && windowHandle()->isExposed() &&
           std::all_of(m_mapPaints.begin(), m_mapPaints.end(),
                       [](const auto &pane) { return pane.second > 0; });
}

bool HostWindow::showAndWait()
{
    show();
    return pump([this] { return painted(); });
}

bool HostWindow::resizePane(void *handle, const QSize &size)
{
    QWidget *pWidget = paneWidget(handle);
    pWidget->setFixedSize(size);
    return pump([=] { return pWidget->size() == size; });
}

int32_t HostWindow::release(void *handle)
{
    const QPointer<QWidget> pWidget = paneWidget(handle);
    forget(handle);
    const int32_t nResult = Xelt_Release(handle);
    pump([&] { return pWidget.isNull(); });
    return nResult;
}

int32_t HostWindow::releaseOnThread(void *handle)
{
    const QPointer<QWidget> pWidget = paneWidget(handle);
    forget(handle);
    int32_t nResult = -1;
    std::thread([&] { nResult = Xelt_Release(handle); }).join();
    pump([&] { return pWidget.isNull(); });
    return nResult;
}

void HostWindow::releaseAll()
{
    while (!m_vecPanes.empty()) {
        release(m_vecPanes.back());
    }
}

int HostWindow::paints(void *handle) const
{
    const auto it = m_mapPaints.find(paneWidget(handle));
    return it == m_mapPaints.end() ? 0 : it->second;
}

bool HostWindow::waitForPaint(void *handle, int nBefore)
{
    return pump([&] { return paints(handle) > nBefore; });
}

bool HostWindow::eventFilter(QObject *pObject, QEvent *pEvent)
{
    if (pEvent->type() == QEvent::Paint) {
        const auto it = m_mapPaints.find(pObject);
        if (it != m_mapPaints.end()) {
            ++it->second;
        }
    }
    return QWidget::eventFilter(pObject, pEvent);
}

int32_t setRotation(void *handle, int nAngle, int nDirection, int nMirror)
{
    const XeltRotatePara para{nDirection, nAngle, nMirror};
    return Xelt_SetParam(handle, XELTCMD_SET_ROTATE_PARA, &para, sizeof para);
}

int32_t setZoom(void *handle, double left, double top, double right, double bottom)
{
    const XeltEZoomArea area{left, top, right, bottom};
    return Xelt_SetParam(handle, XELTCMD_SET_EZOOM_AREA, &area, sizeof area);
}

int32_t setRatioMode(void *handle, int nMode)
{
    const XeltDrawRatioPara para{nMode};
    return Xelt_SetParam(handle, XELTCMD_SET_DRAW_RATIO_MODE, &para, sizeof para);
}

int32_t setDstRect(void *handle, int left, int top, int right, int bottom)
{
    const XeltDrawDstRect rect{left, top, right, bottom};
    return Xelt_SetParam(handle, XELTCMD_SET_DRAW_DST_RECT, &rect, sizeof rect);
}

int32_t setReserveLastFrame(void *handle, int nReserve)
{
    const XeltStopDrawPara para{nReserve};
    return Xelt_SetParam(handle, XELTCMD_SET_STOPDRAW_PARA, &para, sizeof para);
}

int32_t setDrawInfoCallback(void *handle, XeltDrawInfoCallback pfnCallback, void *pUser)
{
    const XeltDrawInfoCallbackPara para{pfnCallback, pUser};
    return Xelt_SetParam(handle, XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para);
}

} // namespace xelttest
