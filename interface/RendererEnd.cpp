#include "interface/RendererEnd.h"

#include "log/QtMessages.h"
#include "widget/CLS_ShaderBase.h"
#include "widget/InsideScope.h"

#include <QApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <new>
#include <utility>

namespace {

// Does what Qt needs memory for, which may be short now: it gets time to find some, as nobody else would dispose of the
// widget.
template <class Post> void Persistently(Post post)
{
    constexpr int nAttempts = 50;
    for (int i = 0; i < nAttempts; ++i) {
        try {
            post();
            return;
        } catch (const std::bad_alloc &) {
            QThread::msleep(10);
        }
    }
}

// Detaches the widget and leaves its destruction to the event loop. Its own thread, which runs code of the host's
// meanwhile: no lock is held.
void DisposeHere(const QPointer<CLS_ShaderBase> &pRenderer)
{
    if (!pRenderer.isNull()) {
        pRenderer->setParent(nullptr);
    }
    Persistently([&] {
        if (!pRenderer.isNull()) {
            pRenderer->deleteLater();
        }
    });
}

// Leaves both to the event loop. Needs the renderer's mutex, for which the widget's destruction waits. Any thread.
void DisposeThere(CLS_ShaderBase *pRenderer)
{
    try {
        QMetaObject::invokeMethod(
            pRenderer, [pRenderer] { pRenderer->setParent(nullptr); }, Qt::QueuedConnection);
    } catch (const std::bad_alloc &) {
        // The destruction detaches it as well.
    }
    Persistently([&] { pRenderer->deleteLater(); });
}

// Whether the widget may be detached by this thread, when the renderer's mutex is released.
bool MayDetachHere(const CLS_ShaderBase &renderer)
{
    return QThread::currentThread() == renderer.thread() && !renderer.IsBeingPainted() &&
           !InsideScope::IsInsideAny();
}

// Ends a renderer whose entry is in the registry no more; nothing where its destruction was faster. False when the
// renderer is busy for longer than a call from inside another one may wait.
bool TryEnd(RendererEntry &entry)
{
    QPointer<CLS_ShaderBase> pHere;
    {
        const qtlog::Deferral messages;
        const std::unique_lock<QMutex> lock = entry.Lock(Patience::WithoutLimit);
        if (!lock.owns_lock()) {
            return false;
        }
        CLS_ShaderBase *pRenderer = std::exchange(entry.pRenderer, nullptr);
        if (pRenderer == nullptr) {
            return true;
        }
        // The widget may live on for a while and be resized; the host's context need not.
        pRenderer->ForgetDrawInfoCallback();
        try {
            pRenderer->UnInit();
        } catch (const std::bad_alloc &) {
            // What is left of the frame state goes with the widget.
        }
        try {
            if (MayDetachHere(*pRenderer)) {
                pHere = pRenderer;
            }
        } catch (const std::bad_alloc &) {
            pHere.clear();
        }
        if (pHere.isNull()) {
            DisposeThere(pRenderer);
        }
    }
    DisposeHere(pHere);
    return true;
}

// Ends a renderer from the application's event loop, when this thread is out of it.
void EndLater(void *handle, const RendererRegistry::EntryPtr &pEntry)
{
    const auto end = [handle, pEntry] {
        if (InsideScope::IsInside(handle) || !TryEnd(*pEntry)) {
            // An event loop inside a callback.
            constexpr int nRetry = 10; // ms
            Persistently(
                [&] { QTimer::singleShot(nRetry, qApp, [handle, pEntry] { EndLater(handle, pEntry); }); });
        }
    };
    Persistently([&] { QMetaObject::invokeMethod(qApp, end, Qt::QueuedConnection); });
}

} // namespace

void EndRenderer(void *handle, const RendererRegistry::EntryPtr &pEntry)
{
    if (InsideScope::IsInside(handle) || !TryEnd(*pEntry)) {
        EndLater(handle, pEntry);
    }
}
