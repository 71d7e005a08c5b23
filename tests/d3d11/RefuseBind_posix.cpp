#include "RefuseBind.h"

#include <QOpenGLShaderProgram>

#include <dlfcn.h>

#include <cstdlib>

// The executable's definition comes before the one in Qt's library.
bool QOpenGLShaderProgram::bind()
{
    using Bind = bool (*)(QOpenGLShaderProgram *);
    static const auto pfnBind = reinterpret_cast<Bind>(dlsym(RTLD_NEXT, "_ZN20QOpenGLShaderProgram4bindEv"));
    if (pfnBind == nullptr) {
        std::abort();
    }
    return !xelttest::refuseProgramBind() && pfnBind(this);
}

bool &xelttest::refuseProgramBind()
{
    static bool s_blRefuse = false;
    return s_blRefuse;
}
