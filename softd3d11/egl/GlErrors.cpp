#include "softd3d11/egl/GlErrors.h"

#include <cstddef>

namespace softegl {
namespace {

constexpr std::size_t kMostErrors = 8; // a lost context tells of its loss for ever

// By a call that does nothing else.
void Raise(GLenum nError) noexcept
{
    switch (nError) {
    case GL_INVALID_ENUM:
        Gl().PixelStorei(GL_NONE, 0);
        break;
    case GL_INVALID_VALUE:
        Gl().PixelStorei(GL_UNPACK_ALIGNMENT, 3);
        break;
    case GL_INVALID_OPERATION: // three components do not fit a type of four
        Gl().TexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 1, 0, GL_RGB, GL_UNSIGNED_SHORT_4_4_4_4, nullptr);
        break;
    default:
        break;
    }
}

} // namespace

GlErrors::GlErrors() noexcept
{
    for (GLenum &nError : m_pending) {
        nError = Gl().GetError();
        if (nError == GL_NO_ERROR) {
            break;
        }
    }
}

GlErrors::~GlErrors()
{
    Take();
    for (const GLenum nError : m_pending) {
        Raise(nError);
    }
}

bool GlErrors::Take() noexcept
{
    bool blFailed = false;
    for (std::size_t i = 0; i < kMostErrors && Gl().GetError() != GL_NO_ERROR; ++i) {
        blFailed = true;
    }
    return blFailed;
}

} // namespace softegl
