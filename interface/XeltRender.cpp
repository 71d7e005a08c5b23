// The exports. A handle is looked up before anything is done with it, and the registry's lock is released
// before the renderer's is taken, so the two never nest.
#include "interface/XeltRender.h"

#include "interface/RendererEnd.h"
#include "interface/RendererRegistry.h"
#include "log/CLS_OmbrixApi.h"
#include "log/QtMessages.h"
#include "platform/Compiler.h"
#include "widget/InsideScope.h"
#include "yuv/CLS_ShaderYuv.h"
#include "yuv/CLS_ShaderYuvSubImage.h"

#include <QApplication>
#include <QMutex>
#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace {

constexpr char kFile[] = "XeltRender";
constexpr int kFindTimeout = 500;    // ms
constexpr int kCreateTimeout = 2000; // ms

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

// Runs a call on a registered renderer under its mutex. -1 when there is no such renderer, or none any more when its
// turn comes, or when this thread is inside the renderer already.
template <class Call> int32_t OnRenderer(void *handle, Patience patience, Call call) noexcept
{
    return Guarded(-1, [&]() -> int32_t {
        int32_t nResult = -1;
        CLS_ShaderBase::Afterwards fnAfterwards;
        {
            const qtlog::Deferral messages; // the host's handler for them runs when the locks are released
            const RendererRegistry::EntryPtr pEntry = g_registry.Find(handle, kFindTimeout);
            if (pEntry == nullptr || pEntry->pMutex == nullptr || InsideScope::IsInside(handle)) {
                return -1;
            }
            const std::unique_lock<QMutex> lock = pEntry->Lock(patience);
            if (!lock.owns_lock() || pEntry->pRenderer == nullptr) {
                return -1;
            }
            const InsideScope inside(handle);
            static_cast<void>(pEntry->pRenderer->TakeAfterwards()); // of a call that was left by an exception
            nResult = call(*pEntry->pRenderer);
            fnAfterwards = pEntry->pRenderer->TakeAfterwards();
        }
        return fnAfterwards ? fnAfterwards(nResult) : nResult;
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

// A host may destroy a pane with its window and never release it: its handle is unknown from then on. Waits for a
// call that is still inside, a release on another thread included.
void ForgetRenderer(void *handle, RendererEntry &entry)
{
    {
        std::unique_lock<QMutex> lock(*entry.pMutex, std::defer_lock);
        if (!InsideScope::IsInside(handle)) {
            lock.lock(); // or this thread has it already
        }
        entry.pRenderer = nullptr;
    }
    if (g_blRegistryAlive) {
        const QWriteLocker locker(&g_registry.Lock());
        g_registry.Remove(handle);
    }
}

// Needs the registry's write lock. False without memory.
bool Register(CLS_ShaderBase *pRenderer)
{
    try {
        const auto pEntry = std::make_shared<RendererEntry>();
        pEntry->pMutex.reset(new (std::nothrow) QMutex(QMutex::NonRecursive));
        if (pEntry->pMutex == nullptr) {
            return false;
        }
        pEntry->pRenderer = pRenderer;
        CLS_ShaderBase::DestroyHook fnHook = [pRenderer, pEntry] { ForgetRenderer(pRenderer, *pEntry); };
        g_registry.Insert(pRenderer, pEntry);
        pRenderer->SetDestroyHook(std::move(fnHook));
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
    const qtlog::Deferral messages;
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
    return pRenderer.release();
}

int32_t ReleaseRenderer(void *handle)
{
    XELT_LOG("[Xelt_Release] pcls = %p", handle);
    RendererRegistry::EntryPtr pEntry;
    {
        const QWriteLocker locker(&g_registry.Lock());
        pEntry = g_registry.Remove(handle);
    }
    if (pEntry == nullptr || pEntry->pMutex == nullptr) {
        return 0;
    }
    EndRenderer(handle, pEntry);
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
    return OnRenderer(handle, Patience::WithoutLimit, [&](CLS_ShaderBase &renderer) {
        return renderer.SetParam(cmd, data, static_cast<int32_t>(size));
    });
}

XELT_EXPORT int32_t Xelt_GetParam(void *handle, uint32_t cmd, void *data, uint32_t size)
{
    return OnRenderer(handle, Patience::WithoutLimit, [&](CLS_ShaderBase &renderer) {
        return renderer.GetParam(cmd, data, static_cast<int32_t>(size));
    });
}

XELT_EXPORT int32_t Xelt_ShowYuvFrame(void *handle, const void *frame, uint32_t size)
{
    // A frame may be dropped when the renderer is busy; every other call waits its turn.
    return OnRenderer(handle, Patience::OfAFrame, [&](CLS_ShaderBase &renderer) {
        return renderer.ShowYuvFrame(frame, static_cast<int32_t>(size));
    });
}

XELT_EXPORT void Xelt_ClearDraw(void *handle)
{
    OnRenderer(handle, Patience::WithoutLimit, [](CLS_ShaderBase &renderer) {
        renderer.ClearDraw();
        return 0;
    });
}

} // extern "C"
