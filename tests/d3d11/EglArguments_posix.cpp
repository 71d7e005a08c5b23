// The executable is linked so that its calls of these functions come here first (--wrap).
#include "EglArguments.h"

// The linker's names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

EGLBoolean __real_eglChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs,
                                  EGLint nSize, EGLint *pCount);
EGLSurface __real_eglCreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                                   EGLConfig config, const EGLint *pAttributes);
EGLBoolean __wrap_eglChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs,
                                  EGLint nSize, EGLint *pCount);
EGLSurface __wrap_eglCreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                                   EGLConfig config, const EGLint *pAttributes);

EGLBoolean __wrap_eglChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs,
                                  EGLint nSize, EGLint *pCount)
{
    return xelttest::noteChooseConfig(&__real_eglChooseConfig, display, pAttributes, pConfigs, nSize, pCount);
}

EGLSurface __wrap_eglCreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                                   EGLConfig config, const EGLint *pAttributes)
{
    return xelttest::noteCreateSurface(&__real_eglCreatePbufferFromClientBuffer, display, nType, buffer,
                                       config, pAttributes);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
