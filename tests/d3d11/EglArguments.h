// The arguments of the calls to EGL by which the code under test makes its surface. The executable is linked so
// that these calls come here first (--wrap).
#pragma once

#include "platform/EglApi.h"

#include <vector>

namespace xelttest {

struct EglArguments
{
    std::vector<EGLint> vecConfigAttributes; // with EGL_NONE
    EGLint nConfigs = -1;                    // that there is room for
    EGLConfig chosen = nullptr;              // the first one that was found
    EGLenum nBufferType = 0;
    EGLClientBuffer buffer = nullptr;
    EGLConfig used = nullptr;
    std::vector<EGLint> vecSurfaceAttributes; // with EGL_NONE

    // Makes a choice that succeeds say that it has found nothing.
    bool blSayNoConfigs = false;

    // Of the calls since it was last assigned to.
    static EglArguments &last();
};

} // namespace xelttest
