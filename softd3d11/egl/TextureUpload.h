#pragma once

#include "softd3d11/egl/RealGl.h"

#include <cstddef>
#include <cstdint>

namespace softegl {

// What the GL of a context offers for uploads.
struct UploadAbilities
{
    bool blEs = true;
    bool blBgra = false;
    bool blRowLength = false;    // unpack row length and skips
    bool blUnpackBuffer = false; // pixel unpack buffers
    bool blImmutable = false;    // textures can be asked whether their storage is immutable
};

// Needs a current context, as all of this file does; this one's abilities.
UploadAbilities ReadAbilities() noexcept;

struct Rows
{
    const std::uint8_t *pRows; // B, G, R, A
    std::size_t nPitch;        // bytes; a multiple of 4
    GLsizei nWidth;            // pixels
    GLsizei nHeight;           // pixels
};

// What an earlier upload gave a texture; all zero for nothing.
struct TextureStorage
{
    GLenum nFormat = 0;
    GLsizei nWidth = 0;
    GLsizei nHeight = 0;
};

// Gives the texture the rows as its level 0, in place where the storage is already as it must be. blOpaque:
// the alpha of the rows is not used. GL state stays as it is, errors included (see GlErrors.h). The storage
// becomes what the texture has then, or nothing and the result false where GL did not take the rows. May
// throw std::bad_alloc, before it has touched GL.
bool UploadRows(const UploadAbilities &abilities, GLuint nTexture, const Rows &rows, bool blOpaque,
                TextureStorage &storage);

// Leaves the texture's level 0 without an image. GL state stays as it is.
void ClearTexture(const UploadAbilities &abilities, GLuint nTexture) noexcept;

// Whether the texture that is bound to GL_TEXTURE_2D has storage that cannot be defined anew.
bool IsBoundTextureImmutable(const UploadAbilities &abilities) noexcept;

GLuint BoundTexture() noexcept;

} // namespace softegl
