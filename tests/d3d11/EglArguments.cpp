#include "EglArguments.h"

namespace xelttest {

namespace {

std::vector<EGLint> withEnd(const EGLint *pAttributes)
{
    std::vector<EGLint> vecAttributes;
    for (; *pAttributes != EGL_NONE; pAttributes += 2) {
        vecAttributes.insert(vecAttributes.end(), {pAttributes[0], pAttributes[1]});
    }
    vecAttributes.push_back(EGL_NONE);
    return vecAttributes;
}

} // namespace

EglArguments &EglArguments::last()
{
    static EglArguments arguments;
    return arguments;
}

} // namespace xelttest

using xelttest::EglArguments;

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
    EglArguments &arguments = EglArguments::last();
    arguments.vecConfigAttributes = xelttest::withEnd(pAttributes);
    arguments.nConfigs = nSize;
    const EGLBoolean blDone = __real_eglChooseConfig(display, pAttributes, pConfigs, nSize, pCount);
    arguments.chosen = *pConfigs;
    if (arguments.blSayNoConfigs) {
        *pCount = 0;
    }
    return blDone;
}

EGLSurface __wrap_eglCreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                                   EGLConfig config, const EGLint *pAttributes)
{
    EglArguments &arguments = EglArguments::last();
    arguments.nBufferType = nType;
    arguments.buffer = buffer;
    arguments.used = config;
    arguments.vecSurfaceAttributes = xelttest::withEnd(pAttributes);
    return __real_eglCreatePbufferFromClientBuffer(display, nType, buffer, config, pAttributes);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
