#include "softd3d11/egl/ShareGroups.h"

#include "softd3d11/egl/EglBridge.h"
#include "softd3d11/egl/RealEgl.h"

#include <iterator>
#include <utility>

namespace softegl {
namespace {

// What a thread has made current; keeps the context alive, as EGL does.
struct CurrentContext
{
    CurrentContext() = default;
    ~CurrentContext()
    {
        if (pContext) {
            pContext.reset();
            EglBridge::Instance().ForgetLost();
        }
    }
    CurrentContext(const CurrentContext &) = delete;
    CurrentContext &operator=(const CurrentContext &) = delete;

    EGLContext hContext = EGL_NO_CONTEXT;
    ContextPointer pContext;
};

thread_local CurrentContext t_current;

} // namespace

void ShareGroups::Add(EGLDisplay hDisplay, EGLContext hContext, const ContextPointer &pShare)
{
    auto pContext = std::make_shared<Context>();
    pContext->hDisplay = hDisplay;
    pContext->pGroup = pShare ? pShare->pGroup : std::make_shared<ShareGroup>();
    m_contexts.insert_or_assign(hContext, std::move(pContext));
}

ContextPointer ShareGroups::Find(EGLContext hContext) const noexcept
{
    const auto it = m_contexts.find(hContext);
    return it != m_contexts.end() ? it->second : nullptr;
}

ContextPointer ShareGroups::FindOrAdd(EGLDisplay hDisplay, EGLContext hContext)
{
    if (m_contexts.count(hContext) == 0) {
        Add(hDisplay, hContext, nullptr);
    }
    return Find(hContext);
}

void ShareGroups::Remove(EGLContext hContext) noexcept
{
    const auto it = m_contexts.find(hContext);
    if (it != m_contexts.end()) {
        it->second->blDestroyed = true;
        m_contexts.erase(it);
    }
}

void ShareGroups::RemoveAllOf(EGLDisplay hDisplay) noexcept
{
    for (auto it = m_contexts.begin(); it != m_contexts.end();) {
        const auto itNext = std::next(it);
        if (it->second->hDisplay == hDisplay) {
            it->second->blDestroyed = true;
            m_contexts.erase(it);
        }
        it = itNext;
    }
}

void ShareGroups::SetCurrent(EGLContext hContext, ContextPointer pContext) noexcept
{
    t_current.hContext = hContext;
    t_current.pContext = std::move(pContext);
}

ContextPointer ShareGroups::Current() const noexcept
{
    const EGLContext hContext = eglGetCurrentContext();
    // Some implementations do not tell the handle of a context that was destroyed while it was current.
    const bool blHidden = hContext == EGL_NO_CONTEXT && t_current.pContext && t_current.pContext->blDestroyed;
    if (hContext != t_current.hContext && !blHidden) {
        SetCurrent(hContext, nullptr); // changed without this library
    }
    if (!t_current.pContext && hContext != EGL_NO_CONTEXT) {
        t_current.pContext = Find(hContext);
    }
    const ContextPointer &pContext = t_current.pContext;
    if (pContext && !pContext->abilities) {
        pContext->abilities = ReadAbilities();
    }
    return pContext;
}

ContextPointer ShareGroups::CurrentOrNew()
{
    ContextPointer pContext = Current();
    const EGLContext hContext = eglGetCurrentContext();
    if (pContext || hContext == EGL_NO_CONTEXT) {
        return pContext;
    }
    FindOrAdd(Real().GetCurrentDisplay(), hContext);
    return Current();
}

} // namespace softegl
