// What happens to contexts and displays.
#include "softd3d11/egl/EglBridge.h"

#include "softd3d11/egl/RealEgl.h"

#include <iterator>
#include <mutex>
#include <new>
#include <utility>

namespace softegl {

EGLContext EglBridge::CreateContext(EGLDisplay hDisplay, EGLConfig hConfig, EGLContext hShare,
                                    const EGLint *pAttributes)
{
    ContextPointer pShare;
    if (hShare != EGL_NO_CONTEXT) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        pShare = m_contexts.Find(hShare);
    }
    const EGLContext hContext = Real().CreateContext(hDisplay, hConfig, hShare, pAttributes);
    if (hContext == EGL_NO_CONTEXT) {
        return EGL_NO_CONTEXT;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    try {
        if (hShare != EGL_NO_CONTEXT && !pShare) {
            pShare = m_contexts.FindOrAdd(hDisplay, hShare);
        }
        m_contexts.Add(hDisplay, hContext, pShare);
    } catch (const std::bad_alloc &) {
        Real().DestroyContext(hDisplay, hContext);
        throw;
    }
    return hContext;
}

EGLBoolean EglBridge::DestroyContext(EGLDisplay hDisplay, EGLContext hContext) noexcept
{
    // Under the lock: a new context of another thread that gets the handle waits here to be known.
    const std::lock_guard<std::mutex> lock(m_mutex);
    const EGLBoolean blDone = Real().DestroyContext(hDisplay, hContext);
    if (blDone != EGL_FALSE) {
        m_contexts.Remove(hContext);
        RemoveLost();
    }
    return blDone;
}

EGLBoolean EglBridge::Terminate(EGLDisplay hDisplay) noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const EGLBoolean blDone = Real().Terminate(hDisplay);
    if (blDone == EGL_FALSE) {
        return EGL_FALSE;
    }
    for (auto it = m_surfaces.begin(); it != m_surfaces.end();) {
        it = it->second->Display() == hDisplay ? m_surfaces.erase(it) : std::next(it);
    }
    m_contexts.RemoveAllOf(hDisplay);
    RemoveLost();
    return EGL_TRUE;
}

EGLBoolean EglBridge::MakeCurrent(EGLDisplay hDisplay, EGLSurface hDraw, EGLSurface hRead,
                                  EGLContext hContext) noexcept
{
    ContextPointer pContext;
    if (hContext != EGL_NO_CONTEXT) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        pContext = m_contexts.Find(hContext);
    }
    if (Real().MakeCurrent(hDisplay, hDraw, hRead, hContext) == EGL_FALSE) {
        return EGL_FALSE;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    ShareGroups::SetCurrent(hContext, std::move(pContext));
    RemoveLost();
    if (hContext != EGL_NO_CONTEXT && m_blPending) {
        UploadPending();
    }
    return EGL_TRUE;
}

EGLBoolean EglBridge::ReleaseThread() noexcept
{
    if (Real().ReleaseThread() == EGL_FALSE) {
        return EGL_FALSE;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    ShareGroups::SetCurrent(EGL_NO_CONTEXT, nullptr);
    RemoveLost();
    return EGL_TRUE;
}

void EglBridge::ForgetLost() noexcept
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    RemoveLost();
}

} // namespace softegl
