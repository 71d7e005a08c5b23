#pragma once

#include "softd3d11/egl/RealGl.h"

#include <array>

namespace softegl {

// Keeps the errors of this library's own GL calls apart from the application's while it lives. What the
// application had not asked for yet is raised again at the end, in other order perhaps. Two errors cannot be
// raised at will and are lost with it: GL_OUT_OF_MEMORY, after which nothing of GL's can be relied on, and
// GL_INVALID_FRAMEBUFFER_OPERATION. Needs a current context; no buffer may be bound for unpacking at its end
// that was not bound at its beginning.
class GlErrors
{
public:
    GlErrors() noexcept;
    ~GlErrors();
    GlErrors(const GlErrors &) = delete;
    GlErrors &operator=(const GlErrors &) = delete;

    // Whether a call has failed since the beginning or the last such question.
    bool Take() noexcept;

private:
    std::array<GLenum, 8> m_pending{}; // of the application; GL_NO_ERROR where there are no more
};

} // namespace softegl
