// The system's EGL, linked in the ordinary way.
#include "platform/EglApi.h"

namespace platform {
namespace egl {

EGLBoolean BindApi(EGLenum nApi)
{
    return eglBindAPI(nApi);
}

EGLint GetError()
{
    return eglGetError();
}

EGLDisplay GetCurrentDisplay()
{
    return eglGetCurrentDisplay();
}

EGLBoolean ReleaseThread()
{
    return eglReleaseThread();
}

EGLBoolean MakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context)
{
    return eglMakeCurrent(display, draw, read, context);
}

const char *QueryString(EGLDisplay display, EGLint nName)
{
    return eglQueryString(display, nName);
}

EGLBoolean ChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs, EGLint nSize,
                        EGLint *pCount)
{
    return eglChooseConfig(display, pAttributes, pConfigs, nSize, pCount);
}

EGLSurface CreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                         EGLConfig config, const EGLint *pAttributes)
{
    return eglCreatePbufferFromClientBuffer(display, nType, buffer, config, pAttributes);
}

EGLBoolean DestroySurface(EGLDisplay display, EGLSurface surface)
{
    return eglDestroySurface(display, surface);
}

EGLBoolean BindTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer)
{
    return eglBindTexImage(display, surface, nBuffer);
}

EGLBoolean ReleaseTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer)
{
    return eglReleaseTexImage(display, surface, nBuffer);
}

} // namespace egl
} // namespace platform
