#pragma once

#include "softd3d11/egl/TextureUpload.h"

#include <EGL/egl.h>
#include <map>
#include <memory>
#include <optional>

namespace softegl {

// Contexts that share their textures. It lives as long as one of them.
struct ShareGroup
{
};

// Lives as EGL's own contexts do: until it is destroyed and not current any more.
struct Context
{
    EGLDisplay hDisplay = EGL_NO_DISPLAY;
    std::shared_ptr<ShareGroup> pGroup;
    std::optional<UploadAbilities> abilities; // known once the context was current
    bool blDestroyed = false;
};

using ContextPointer = std::shared_ptr<Context>;

// Which contexts there are and which of them share. The caller locks.
class ShareGroups
{
public:
    // pShare: the context that textures are shared with, or null.
    void Add(EGLDisplay hDisplay, EGLContext hContext, const ContextPointer &pShare);
    // Null for a handle that is unknown.
    ContextPointer Find(EGLContext hContext) const noexcept;
    // A handle that is unknown becomes a context that shares with no other.
    ContextPointer FindOrAdd(EGLDisplay hDisplay, EGLContext hContext);
    void Remove(EGLContext hContext) noexcept;
    void RemoveAllOf(EGLDisplay hDisplay) noexcept;

    // The calling thread has made this one current, or none. Needs no lock.
    static void SetCurrent(EGLContext hContext, ContextPointer pContext) noexcept;
    // The calling thread's current context, with its abilities. Null without one and for an unknown one.
    ContextPointer Current() const noexcept;
    // Null without one alone.
    ContextPointer CurrentOrNew();

private:
    std::map<EGLContext, ContextPointer> m_contexts;
};

} // namespace softegl
