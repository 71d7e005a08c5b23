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

EGLBoolean noteChooseConfig(ChooseConfig pfnReal, EGLDisplay display, const EGLint *pAttributes,
                            EGLConfig *pConfigs, EGLint nSize, EGLint *pCount)
{
    EglArguments &arguments = EglArguments::last();
    arguments.vecConfigAttributes = withEnd(pAttributes);
    arguments.nConfigs = nSize;
    const EGLBoolean blDone = pfnReal(display, pAttributes, pConfigs, nSize, pCount);
    arguments.chosen = *pConfigs;
    if (arguments.blSayNoConfigs) {
        *pCount = 0;
    }
    return blDone;
}

EGLSurface noteCreateSurface(CreateSurface pfnReal, EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                             EGLConfig config, const EGLint *pAttributes)
{
    EglArguments &arguments = EglArguments::last();
    arguments.nBufferType = nType;
    arguments.buffer = buffer;
    arguments.used = config;
    arguments.vecSurfaceAttributes = withEnd(pAttributes);
    return pfnReal(display, nType, buffer, config, pAttributes);
}

} // namespace xelttest
