// What a process holds: to be the same after panes have come and gone.
#pragma once

#include <QOpenGLContext>

#include <cstddef>

namespace xelttest {

// Textures, programs and shaders with small names that exist in the context's share group. Needs the context
// current; GUI thread.
struct GlObjects
{
    int nTextures = 0;
    int nPrograms = 0;
    int nShaders = 0;

    bool operator==(const GlObjects &other) const;
};
GlObjects glObjects(QOpenGLContext &context);

} // namespace xelttest
