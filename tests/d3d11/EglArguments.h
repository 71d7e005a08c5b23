// The arguments of the calls to EGL by which the code under test makes its surface.
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

// The calls themselves, passed on. For the code that the system makes them come to first.
using ChooseConfig = decltype(&eglChooseConfig);
using CreateSurface = decltype(&eglCreatePbufferFromClientBuffer);
EGLBoolean noteChooseConfig(ChooseConfig pfnReal, EGLDisplay display, const EGLint *pAttributes,
                            EGLConfig *pConfigs, EGLint nSize, EGLint *pCount);
EGLSurface noteCreateSurface(CreateSurface pfnReal, EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                             EGLConfig config, const EGLint *pAttributes);

} // namespace xelttest
