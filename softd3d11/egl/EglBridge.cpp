#include "softd3d11/egl/EglBridge.h"

#include "softd3d11/SharedImage.h"

#include <algorithm>
#include <new>
#include <utility>

namespace softegl {

EglBridge &EglBridge::Instance()
{
    // Never destroyed: EGL is used until the last static object of the process is gone.
    static EglBridge &s_bridge = *new EglBridge;
    return s_bridge;
}

EGLint EglBridge::Create(EGLDisplay hDisplay, EGLConfig hConfig, EGLClientBuffer hShared,
                         const EGLint *pAttributes, EGLSurface &hSurface)
{
    // Under the lock, so that the display is not terminated between the check and the entry.
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::shared_ptr<Surface> pSurface;
    const EGLint nError = MakeSurface(hDisplay, hConfig, hShared, pAttributes, pSurface);
    if (nError == EGL_SUCCESS) {
        const EGLSurface hNew = pSurface.get();
        m_surfaces.emplace(hNew, std::move(pSurface));
        hSurface = hNew;
    }
    return nError;
}

bool EglBridge::Owns(EGLSurface hSurface)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_surfaces.count(hSurface) != 0;
}

bool EglBridge::OwnsBound(EGLSurface hSurface)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return FindBound(hSurface) != m_textures.end();
}

EGLint EglBridge::Query(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nAttribute, EGLint *pnValue)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::shared_ptr<Surface> pSurface = Find(hSurface);
    if (!pSurface || pSurface->Display() != hDisplay) {
        const EGLint nError = CheckDisplay(hDisplay);
        return nError != EGL_SUCCESS ? nError : EGL_BAD_SURFACE;
    }
    return pSurface->Query(nAttribute, pnValue);
}

EGLint EglBridge::Destroy(EGLDisplay hDisplay, EGLSurface hSurface)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::shared_ptr<Surface> pSurface = Find(hSurface);
    if (!pSurface || pSurface->Display() != hDisplay) {
        const EGLint nError = CheckDisplay(hDisplay);
        return nError != EGL_SUCCESS ? nError : EGL_BAD_SURFACE;
    }
    m_surfaces.erase(hSurface);
    return EGL_SUCCESS;
}

EGLint EglBridge::Bind(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nBuffer)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::shared_ptr<Surface> pSurface = Find(hSurface);
    if (!pSurface || pSurface->Display() != hDisplay) {
        const EGLint nError = CheckDisplay(hDisplay);
        return nError != EGL_SUCCESS ? nError : EGL_BAD_SURFACE;
    }
    if (pSurface->Attributes().nTextureFormat == EGL_NO_TEXTURE || nBuffer != EGL_BACK_BUFFER) {
        return EGL_BAD_MATCH;
    }
    if (FindBound(hSurface) != m_textures.end()) {
        return EGL_BAD_ACCESS;
    }
    const ContextPointer pContext = m_contexts.CurrentOrNew();
    if (!pContext) {
        return EGL_SUCCESS; // without a context the call has no effect
    }
    if (IsBoundTextureImmutable(*pContext->abilities)) {
        return EGL_BAD_MATCH;
    }
    const GLuint nTexture = BoundTexture();
    auto it = FindTexture(*pContext, nTexture);
    if (it == m_textures.end()) {
        it = m_textures.insert(it, Texture{pContext->pGroup, pContext, nTexture, pSurface});
    } else {
        it->pSurface = pSurface; // which releases the one that was there
    }
    bool blShown = false;
    try {
        blShown = Upload(*pContext->abilities, *it);
    } catch (const std::bad_alloc &) {
        blShown = false;
    }
    if (!blShown) {
        m_textures.erase(it);
    }
    Changed();
    return blShown ? EGL_SUCCESS : EGL_BAD_ALLOC;
}

EGLint EglBridge::Release(EGLDisplay hDisplay, EGLSurface hSurface, EGLint nBuffer)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = FindBound(hSurface);
    const std::shared_ptr<Surface> pSurface = it != m_textures.end() ? it->pSurface : Find(hSurface);
    if (!pSurface || pSurface->Display() != hDisplay) {
        const EGLint nError = CheckDisplay(hDisplay);
        return nError != EGL_SUCCESS ? nError : EGL_BAD_SURFACE;
    }
    if (pSurface->Attributes().nTextureFormat == EGL_NO_TEXTURE || nBuffer != EGL_BACK_BUFFER) {
        return EGL_BAD_MATCH;
    }
    if (it != m_textures.end()) {
        it->pSurface.reset();
        UploadPending();
    }
    return EGL_SUCCESS;
}

void EglBridge::ImageWritten() noexcept
{
    // Always under the lock: a texture that is being bound meanwhile would miss the write.
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_textures.empty()) {
        UploadPending();
    }
}

void EglBridge::ShowWrites() noexcept
{
    if (m_blPending) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        UploadPending();
    }
}

void EglBridge::TexturesDeleted(GLsizei nCount, const GLuint *pTextures) noexcept
{
    if (!m_blTextures) {
        return;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const ContextPointer pContext = m_contexts.Current();
    for (GLsizei i = 0; pContext != nullptr && pTextures != nullptr && i < nCount; ++i) {
        const auto it = FindTexture(*pContext, pTextures[i]);
        if (pTextures[i] != 0 && it != m_textures.end()) {
            m_textures.erase(it);
        }
    }
    Changed();
}

void EglBridge::BoundTextureRedefined() noexcept
{
    if (!m_blTextures) {
        return;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const ContextPointer pContext = m_contexts.Current();
    if (!pContext) {
        return;
    }
    const auto it = FindTexture(*pContext, BoundTexture());
    if (it != m_textures.end()) {
        m_textures.erase(it);
        Changed();
    }
}

std::size_t EglBridge::LiveSurfaces()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_surfaces.size();
}

std::size_t EglBridge::BoundTextures()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<std::size_t>(
        std::count_if(m_textures.begin(), m_textures.end(),
                      [](const Texture &texture) { return texture.pSurface && !IsLost(texture); }));
}

std::shared_ptr<Surface> EglBridge::Find(EGLSurface hSurface) const
{
    const auto it = m_surfaces.find(hSurface);
    return it != m_surfaces.end() ? it->second : nullptr;
}

EglBridge::Textures::iterator EglBridge::FindBound(EGLSurface hSurface)
{
    return std::find_if(m_textures.begin(), m_textures.end(), [hSurface](const Texture &texture) {
        return texture.pSurface != nullptr && texture.pSurface.get() == hSurface;
    });
}

EglBridge::Textures::iterator EglBridge::FindTexture(const Context &context, GLuint nTexture)
{
    return std::find_if(m_textures.begin(), m_textures.end(), [&](const Texture &texture) {
        return texture.nTexture == nTexture && Knows(context, texture);
    });
}

bool EglBridge::Knows(const Context &context, const Texture &texture) noexcept
{
    // Texture 0 is each context's own.
    return texture.pGroup.lock() == context.pGroup &&
           (texture.nTexture != 0 || texture.pContext.lock().get() == &context);
}

bool EglBridge::IsLost(const Texture &texture) noexcept
{
    return texture.nTexture != 0 ? texture.pGroup.expired() : texture.pContext.expired();
}

bool EglBridge::IsPending(const Texture &texture) noexcept
{
    return texture.pSurface == nullptr || texture.nGeneration != texture.pSurface->Image().Generation();
}

bool EglBridge::Upload(const UploadAbilities &abilities, Texture &texture)
{
    const softd3d11::SharedImage &image = texture.pSurface->Image();
    // Asked for before the pixels: a write between the two is uploaded once more and not lost.
    const std::uint64_t nGeneration = image.Generation();
    const softd3d11::SharedImage::Pixels pixels = image.Lock();
    const Rows rows{pixels.pRows, pixels.nPitch, static_cast<GLsizei>(image.Width()),
                    static_cast<GLsizei>(image.Height())};
    if (!UploadRows(abilities, texture.nTexture, rows, texture.pSurface->IsOpaque(), texture.storage)) {
        return false;
    }
    texture.nGeneration = nGeneration;
    return true;
}

void EglBridge::UploadPending() noexcept
{
    const ContextPointer pContext = m_contexts.Current();
    for (auto it = m_textures.begin(); pContext && it != m_textures.end();) {
        if (!IsPending(*it) || !Knows(*pContext, *it)) {
            ++it;
        } else if (it->pSurface == nullptr) {
            ClearTexture(*pContext->abilities, it->nTexture);
            it = m_textures.erase(it);
        } else {
            try {
                Upload(*pContext->abilities, *it);
            } catch (const std::bad_alloc &) {
                // As where GL does not take it: it stays pending, and the next draw tries again.
            }
            ++it;
        }
    }
    Changed();
}

void EglBridge::RemoveLost() noexcept
{
    m_textures.erase(std::remove_if(m_textures.begin(), m_textures.end(), IsLost), m_textures.end());
    Changed();
}

void EglBridge::Changed() noexcept
{
    m_blTextures = !m_textures.empty();
    m_blPending = std::any_of(m_textures.begin(), m_textures.end(), IsPending);
}

} // namespace softegl
