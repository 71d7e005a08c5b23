// The exports. A handle is looked up before anything is done with it, and the registry's lock is released
// before the renderer's is taken, so the two never nest.
#include "interface/XeltRender.h"

#include "interface/RendererRegistry.h"
#include "log/CLS_OmbrixApi.h"
#include "platform/Compiler.h"
#include "yuv/CLS_ShaderYuv.h"
#include "yuv/CLS_ShaderYuvSubImage.h"

#include <QApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>

namespace {

constexpr char kFile[] = "XeltRender";
constexpr int kFindTimeout = 500;    // ms
constexpr int kCreateTimeout = 2000; // ms
constexpr auto kFrameTimeout = std::chrono::milliseconds(500);

// A pane may outlive the registry when a process ends: this says so, and is there before and after it.
bool g_blRegistryAlive = false;

// Made when the library is loaded. Renderers that are still in it when it goes are left alone.
struct ProcessRegistry : RendererRegistry
{
    ProcessRegistry() { g_blRegistryAlive = true; }
    ~ProcessRegistry() { g_blRegistryAlive = false; }
    ProcessRegistry(const ProcessRegistry &) = delete;
    ProcessRegistry &operator=(const ProcessRegistry &) = delete;
} g_registry;

// Runs an export's body; nothing that it throws reaches the host.
template <class Result, class Body> Result Guarded(Result failure, Body body) noexcept
{
    try {
        return body();
    } catch (...) {
        return failure;
    }
}

// Runs a call on a registered renderer under its mutex. -1 when there is no such renderer.
template <class Call> int32_t OnRenderer(void *handle, Call call) noexcept
{
    return Guarded(-1, [&]() -> int32_t {
        QMutex *pMutex = g_registry.Find(handle, kFindTimeout);
        if (pMutex == nullptr) {
            return -1;
        }
        const QMutexLocker locker(pMutex);
        return call(*static_cast<CLS_ShaderBase *>(handle));
    });
}

// Null for a type code that makes no renderer, or without memory. 1 and 2 are gaps that stay rejected.
std::unique_ptr<CLS_ShaderBase> NewRenderer(int32_t nType)
{
    if (qobject_cast<QApplication *>(QCoreApplication::instance()) == nullptr) {
        return nullptr; // Qt would end the process over a widget without an application
    }
    switch (nType) {
    case 0:
    case 3:
    case 4:
    case 5:
    case 6:
        return std::unique_ptr<CLS_ShaderBase>(new (std::nothrow) CLS_ShaderYuv);
    case 7:
        return std::unique_ptr<CLS_ShaderBase>(new (std::nothrow) CLS_ShaderYuvSubImage);
    default:
        return nullptr;
    }
}

// Takes a handle out of the registry. Its mutex, null when it is unknown; the caller owns it.
QMutex *TakeOut(void *handle)
{
    const QWriteLocker locker(&g_registry.Lock());
    return g_registry.Remove(handle);
}

// A host may destroy a pane with its window and never release it: its handle is unknown from then on. Waits
// for a call that is still inside.
void ForgetRenderer(void *pWidget)
{
    if (!g_blRegistryAlive) {
        return;
    }
    const std::unique_ptr<QMutex> pMutex(TakeOut(pWidget));
    const QMutexLocker locker(pMutex.get());
}

// Needs the registry's write lock. False without memory.
bool Register(CLS_ShaderBase *pRenderer)
{
    try {
        std::unique_ptr<QMutex> pMutex(new (std::nothrow) QMutex(QMutex::NonRecursive));
        if (pMutex == nullptr) {
            return false;
        }
        g_registry.Insert(pRenderer, pMutex.get());
        static_cast<void>(pMutex.release()); // freed by whoever takes the handle out again
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

struct UnlockOnly
{
    void operator()(QReadWriteLock *pLock) const { pLock->unlock(); }
};

CLS_ShaderBase *CreateShader(int32_t nType)
{
    std::unique_ptr<CLS_ShaderBase> pRenderer;
    try {
        pRenderer = NewRenderer(nType);
    } catch (const std::bad_alloc &) {
        pRenderer = nullptr;
    }
    if (pRenderer == nullptr) {
        XELT_REPORT_ERROR(kFile, "CreateShader", "CreateShader failed, type=%d.", nType);
        return nullptr;
    }
    if (!g_registry.Lock().tryLockForWrite(kCreateTimeout)) {
        pRenderer.reset();
        XELT_REPORT_ERROR(kFile, "CreateShader", "CreateShader failed, type=%d. tryLockForWrite time out",
                          nType);
        return nullptr;
    }
    const std::unique_ptr<QReadWriteLock, UnlockOnly> unlock(&g_registry.Lock());
    if (!Register(pRenderer.get())) {
        pRenderer.reset();
        XELT_REPORT_ERROR(kFile, "CreateShader", "CreateShader failed, type=%d. QMutex alloc faild", nType);
        return nullptr;
    }
    pRenderer->SetDestroyHook(&ForgetRenderer);
    return pRenderer.release();
}

// Detaches the widget and leaves its destruction to its own thread's event loop.
void Dispose(CLS_ShaderBase *pRenderer)
{
    if (QThread::currentThread() == pRenderer->thread()) {
        pRenderer->setParent(nullptr);
    } else {
        QMetaObject::invokeMethod(
            pRenderer, [pRenderer] { pRenderer->setParent(nullptr); }, Qt::QueuedConnection);
    }
    pRenderer->deleteLater();
}

int32_t ReleaseRenderer(void *handle)
{
    XELT_LOG("[Xelt_Release] pcls = %p", handle);
    const std::unique_ptr<QMutex> pMutex(TakeOut(handle)); // goes after the locker below
    if (pMutex == nullptr) {
        return 0;
    }
    const QMutexLocker locker(pMutex.get()); // waits for a call that is still inside
    auto *pRenderer = static_cast<CLS_ShaderBase *>(handle);
    // The widget may live on for a while and be resized; the host's context need not.
    pRenderer->ForgetDrawInfoCallback();
    pRenderer->UnInit();
    Dispose(pRenderer);
    return 0;
}

} // namespace

extern "C" {

XELT_EXPORT void *Xelt_Create(void *layout)
{
    return Guarded<void *>(nullptr, [&]() -> void * {
        CLS_OmbrixApi::Instance().LoadCoreLibrary();
        CLS_ShaderBase *pRenderer = CreateShader(XELT_RENDERER_YUV);
        if (pRenderer == nullptr) {
            XELT_REPORT_ERROR(kFile, "Xelt_Create", "[XeltInterface::Xelt_Create] new XeltYUVShader failed");
            return nullptr;
        }
        if (layout != nullptr) {
            pRenderer->SetParentLayout(static_cast<QLayout *>(layout));
        }
        return pRenderer;
    });
}

XELT_EXPORT void *Xelt_CreateEx(const void *param, int32_t len)
{
    return Guarded<void *>(nullptr, [&]() -> void * {
        CLS_OmbrixApi::Instance().LoadCoreLibrary();
        if (param == nullptr) {
            return nullptr;
        }
        int32_t nType = 0;
        // A negative length counts as none: it must not become a huge one.
        std::memcpy(&nType, param, static_cast<size_t>(std::clamp(len, 0, 4)));
        CLS_ShaderBase *pRenderer = CreateShader(nType);
        if (pRenderer == nullptr) {
            XELT_REPORT_ERROR(kFile, "Xelt_CreateEx",
                              "[XeltInterface::Xelt_CreateEx] new XeltYUVShader failed, type=%d", nType);
        }
        return pRenderer;
    });
}

XELT_EXPORT int32_t Xelt_Release(void *handle)
{
    if (handle == nullptr) {
        return -1;
    }
    return Guarded(-1, [&] { return ReleaseRenderer(handle); });
}

XELT_EXPORT int32_t Xelt_SetParam(void *handle, uint32_t cmd, const void *data, uint32_t size)
{
    return OnRenderer(handle, [&](CLS_ShaderBase &renderer) {
        return renderer.SetParam(cmd, data, static_cast<int32_t>(size));
    });
}

XELT_EXPORT int32_t Xelt_GetParam(void *handle, uint32_t cmd, void *data, uint32_t size)
{
    return OnRenderer(handle, [&](CLS_ShaderBase &renderer) {
        return renderer.GetParam(cmd, data, static_cast<int32_t>(size));
    });
}

XELT_EXPORT int32_t Xelt_ShowYuvFrame(void *handle, const void *frame, uint32_t size)
{
    return Guarded(-1, [&]() -> int32_t {
        QMutex *pMutex = g_registry.Find(handle, kFindTimeout);
        if (pMutex == nullptr) {
            return -1;
        }
        // A frame may be dropped when the renderer is busy; every other call waits its turn.
        const std::unique_lock<QMutex> lock(*pMutex, kFrameTimeout);
        if (!lock.owns_lock()) {
            return -1;
        }
        return static_cast<CLS_ShaderBase *>(handle)->ShowYuvFrame(frame, static_cast<int32_t>(size));
    });
}

XELT_EXPORT void Xelt_ClearDraw(void *handle)
{
    OnRenderer(handle, [](CLS_ShaderBase &renderer) {
        renderer.ClearDraw();
        return 0;
    });
}

} // extern "C"
