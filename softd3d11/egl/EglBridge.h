#pragma once

#include "softd3d11/egl/EglSurface.h"
#include "softd3d11/egl/ShareGroups.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace softegl {

// Surfaces on shared images and the GL textures that show them. All functions may be called on any thread;
// those that say "current" work on the context that is current there. EGLint results are EGL_SUCCESS or the
// error of the EGL function.
class EglBridge
{
public:
    static EglBridge &Instance();

    // The EGL functions of these names, done by the real library, and taken note of. A handle that it frees is
    // forgotten before anybody can get it anew.
    EGLContext CreateContext(EGLDisplay hDisplay, EGLConfig hConfig, EGLContext hShare,
                             const EGLint *pAttributes); // throws std::bad_alloc
    EGLBoolean DestroyContext(EGLDisplay hDisplay, EGLContext hContext) noexcept;
    EGLBoolean Terminate(EGLDisplay hDisplay) noexcept;
    EGLBoolean MakeCurrent(EGLDisplay hDisplay, EGLSurface hDraw, EGLSurface hRead,
                           EGLContext hContext) noexcept;
    EGLBoolean ReleaseThread() noexcept;
    // A thread that ends had a context current.
    void ForgetLost() noexcept;

    // Checks display, configuration, attributes and share handle in this order. EGL_SUCCESS and a surface, or
    // the error of eglCreatePbufferFromClientBuffer and none.
    EGLint Create(EGLDisplay hDisplay, EGLConfig hConfig, EGLClientBuffer hShared, const EGLint *pAttributes,
                  EGLSurface &hSurface);
    // Whether the handle is one of ours that is not destroyed.
    bool Owns(EGLSurface hSurface);
    // Whether it is one of ours that may still be released: destroyed, but bound.
    bool OwnsBound(EGLSurface hSurface);
    EGLint Query(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nAttribute, EGLint *pnValue);
    EGLint Destroy(EGLDisplay hDisplay, EGLSurface hSurface);
    EGLint Bind(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nBuffer);
    EGLint Release(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nBuffer);

    // Somebody wrote to an image.
    void ImageWritten() noexcept;
    // Uploads what the current context's textures do not show yet. Cheap when there is nothing.
    void ShowWrites() noexcept;
    // The current context's textures are about to be deleted.
    void TexturesDeleted(GLsizei nCount, const GLuint *pTextures) noexcept;
    // The current context's bound texture is about to get other storage.
    void BoundTextureRedefined() noexcept;

    std::size_t LiveSurfaces();
    std::size_t BoundTextures();

private:
    // A GL texture that has, or still has to lose, the image of a surface.
    struct Texture
    {
        std::weak_ptr<ShareGroup> pGroup;
        std::weak_ptr<Context> pContext; // that it was bound in
        GLuint nTexture;
        std::shared_ptr<Surface> pSurface; // null: released, the image is still to be taken away
        TextureStorage storage{};          // what it was given here
        std::uint64_t nGeneration = 0;     // of the image that it shows
    };
    using Textures = std::vector<Texture>;

    EglBridge() = default;

    // All of these need the lock.
    std::shared_ptr<Surface> Find(EGLSurface hSurface) const;
    Textures::iterator FindBound(EGLSurface hSurface);
    Textures::iterator FindTexture(const Context &context, GLuint nTexture);
    static bool Knows(const Context &context, const Texture &texture) noexcept;
    static bool IsLost(const Texture &texture) noexcept;
    static bool IsPending(const Texture &texture) noexcept;
    // False where GL did not take the image.
    static bool Upload(const UploadAbilities &abilities, Texture &texture);
    void UploadPending() noexcept;
    void RemoveLost() noexcept;
    void Changed() noexcept;

    std::mutex m_mutex;
    ShareGroups m_contexts;
    std::map<EGLSurface, std::shared_ptr<Surface>> m_surfaces;
    Textures m_textures;
    // Read without the lock, written with it.
    std::atomic<bool> m_blPending{false};
    std::atomic<bool> m_blTextures{false};
};

} // namespace softegl
