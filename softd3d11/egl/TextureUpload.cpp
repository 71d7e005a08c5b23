#include "softd3d11/egl/TextureUpload.h"

#include "softd3d11/egl/GlErrors.h"
#include "softd3d11/egl/PixelRows.h"
#include "softd3d11/egl/WordList.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace softegl {
namespace {

GLint GlInteger(GLenum nName) noexcept
{
    GLint nValue = 0;
    Gl().GetIntegerv(nName, &nValue);
    return nValue;
}

const char *GlString(GLenum nName) noexcept
{
    return reinterpret_cast<const char *>(Gl().GetString(nName));
}

struct GlVersion
{
    bool blEs = false;
    int nMajor = 0;
    int nMinor = 0;

    bool IsAtLeast(int nOtherMajor, int nOtherMinor) const noexcept
    {
        return nMajor > nOtherMajor || (nMajor == nOtherMajor && nMinor >= nOtherMinor);
    }
};

GlVersion ReadVersion() noexcept
{
    constexpr char szEs[] = "OpenGL ES ";
    const char *psz = GlString(GL_VERSION);
    GlVersion version;
    if (psz == nullptr) {
        return version;
    }
    version.blEs = std::strncmp(psz, szEs, sizeof(szEs) - 1) == 0;
    char *pszEnd = nullptr;
    version.nMajor = static_cast<int>(std::strtol(version.blEs ? psz + sizeof(szEs) - 1 : psz, &pszEnd, 10));
    version.nMinor = *pszEnd == '.' ? static_cast<int>(std::strtol(pszEnd + 1, nullptr, 10)) : 0;
    return version;
}

bool HasExtension(const GlVersion &version, const char *pszName) noexcept
{
    if (version.nMajor < 3) {
        return HasWord(GlString(GL_EXTENSIONS), pszName);
    }
    const auto nCount = static_cast<GLuint>(GlInteger(GL_NUM_EXTENSIONS));
    for (GLuint i = 0; i < nCount; ++i) {
        const auto *const psz = reinterpret_cast<const char *>(Gl().GetStringi(GL_EXTENSIONS, i));
        if (psz != nullptr && std::strcmp(psz, pszName) == 0) {
            return true;
        }
    }
    return false;
}

// Makes a texture the bound one and the unpack state the default one while it lives.
class UploadState
{
public:
    UploadState(const UploadAbilities &abilities, GLuint nTexture) noexcept
        : m_abilities(abilities), m_nTexture(BoundTexture()), m_nAlignment(GlInteger(GL_UNPACK_ALIGNMENT))
    {
        if (m_abilities.blRowLength) {
            m_nRowLength = GlInteger(GL_UNPACK_ROW_LENGTH);
            m_nSkipRows = GlInteger(GL_UNPACK_SKIP_ROWS);
            m_nSkipPixels = GlInteger(GL_UNPACK_SKIP_PIXELS);
        }
        if (m_abilities.blUnpackBuffer) {
            m_nBuffer = static_cast<GLuint>(GlInteger(GL_PIXEL_UNPACK_BUFFER_BINDING));
        }
        Apply(nTexture, 4, 0, 0, 0, 0);
    }
    ~UploadState() { Apply(m_nTexture, m_nAlignment, m_nRowLength, m_nSkipRows, m_nSkipPixels, m_nBuffer); }
    UploadState(const UploadState &) = delete;
    UploadState &operator=(const UploadState &) = delete;

private:
    void Apply(GLuint nTexture, GLint nAlignment, GLint nRowLength, GLint nSkipRows, GLint nSkipPixels,
               GLuint nBuffer) const
    {
        Gl().BindTexture(GL_TEXTURE_2D, nTexture);
        Gl().PixelStorei(GL_UNPACK_ALIGNMENT, nAlignment);
        if (m_abilities.blRowLength) {
            Gl().PixelStorei(GL_UNPACK_ROW_LENGTH, nRowLength);
            Gl().PixelStorei(GL_UNPACK_SKIP_ROWS, nSkipRows);
            Gl().PixelStorei(GL_UNPACK_SKIP_PIXELS, nSkipPixels);
        }
        if (m_abilities.blUnpackBuffer) {
            Gl().BindBuffer(GL_PIXEL_UNPACK_BUFFER, nBuffer);
        }
    }

    const UploadAbilities m_abilities;
    const GLuint m_nTexture;
    const GLint m_nAlignment;
    GLint m_nRowLength = 0;
    GLint m_nSkipRows = 0;
    GLint m_nSkipPixels = 0;
    GLuint m_nBuffer = 0;
};

bool IsSame(const TextureStorage &one, const TextureStorage &other) noexcept
{
    return one.nFormat == other.nFormat && one.nWidth == other.nWidth && one.nHeight == other.nHeight;
}

// These two tell whether GL took the pixels for the texture that is bound.
bool PutInPlace(const TextureStorage &storage, const void *pPixels, GlErrors &errors) noexcept
{
    Gl().TexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, storage.nWidth, storage.nHeight, storage.nFormat,
                       GL_UNSIGNED_BYTE, pPixels);
    return !errors.Take();
}

bool Define(const UploadAbilities &abilities, const TextureStorage &storage, const void *pPixels,
            GlErrors &errors) noexcept
{
    // BGRA is an internal format in OpenGL ES alone.
    const GLenum nInternal = abilities.blEs ? storage.nFormat : GLenum{GL_RGBA8};
    Gl().TexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(nInternal), storage.nWidth, storage.nHeight, 0,
                    storage.nFormat, GL_UNSIGNED_BYTE, pPixels);
    return !errors.Take();
}

} // namespace

UploadAbilities ReadAbilities() noexcept
{
    const GlVersion version = ReadVersion();
    UploadAbilities abilities;
    abilities.blEs = version.blEs;
    if (!version.blEs) {
        // Desktop GL has these since long before any version that EGL gives out.
        abilities.blBgra = abilities.blRowLength = abilities.blUnpackBuffer = true;
        abilities.blImmutable = version.IsAtLeast(4, 2) || HasExtension(version, "GL_ARB_texture_storage");
        return abilities;
    }
    const bool blEs3 = version.IsAtLeast(3, 0);
    abilities.blBgra = HasExtension(version, "GL_EXT_texture_format_BGRA8888");
    abilities.blRowLength = blEs3 || HasExtension(version, "GL_EXT_unpack_subimage");
    abilities.blUnpackBuffer = blEs3;
    abilities.blImmutable = blEs3 || HasExtension(version, "GL_EXT_texture_storage");
    return abilities;
}

bool UploadRows(const UploadAbilities &abilities, GLuint nTexture, const Rows &rows, bool blOpaque,
                TextureStorage &storage)
{
    const bool blTight = rows.nPitch == static_cast<std::size_t>(rows.nWidth) * 4;
    const bool blDirect = abilities.blBgra && !blOpaque && (blTight || abilities.blRowLength);
    std::vector<std::uint8_t> converted;
    if (!blDirect) {
        converted = ToTightRgba(rows.pRows, rows.nPitch, static_cast<std::size_t>(rows.nWidth),
                                static_cast<std::size_t>(rows.nHeight), blOpaque);
    }
    const TextureStorage wanted{blDirect ? GLenum{GL_BGRA_EXT} : GLenum{GL_RGBA}, rows.nWidth, rows.nHeight};
    const void *const pPixels = blDirect ? rows.pRows : converted.data();

    GlErrors errors;
    const UploadState state(abilities, nTexture);
    if (blDirect && !blTight) {
        Gl().PixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(rows.nPitch / 4));
    }
    const bool blDone = (IsSame(storage, wanted) && PutInPlace(wanted, pPixels, errors)) ||
                        // Where that failed somebody has redefined the texture unnoticed.
                        Define(abilities, wanted, pPixels, errors);
    storage = blDone ? wanted : TextureStorage{};
    return blDone;
}

void ClearTexture(const UploadAbilities &abilities, GLuint nTexture) noexcept
{
    const GlErrors errors;
    const UploadState state(abilities, nTexture);
    Gl().TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 0, 0, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
}

bool IsBoundTextureImmutable(const UploadAbilities &abilities) noexcept
{
    GLint nImmutable = 0;
    if (abilities.blImmutable) {
        Gl().GetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_IMMUTABLE_FORMAT, &nImmutable);
    }
    return nImmutable != 0;
}

GLuint BoundTexture() noexcept
{
    return static_cast<GLuint>(GlInteger(GL_TEXTURE_BINDING_2D));
}

} // namespace softegl
