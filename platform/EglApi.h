// The EGL functions that the hardware-texture path uses, behind one interface for all systems. They are EGL's
// own, with EGL's own results. Where no EGL library is loaded they fail as EGL does, with false or null, but for
// ReleaseThread, which then has nothing to release. GUI thread.
#pragma once

#ifndef EGL_NO_X11
#define EGL_NO_X11 // the X headers define common words
#endif
#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace platform {
namespace egl {

// About the calling thread.
EGLBoolean BindApi(EGLenum nApi);
EGLint GetError();
EGLDisplay GetCurrentDisplay();
EGLBoolean ReleaseThread();

EGLBoolean MakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read, EGLContext context);
const char *QueryString(EGLDisplay display, EGLint nName);
EGLBoolean ChooseConfig(EGLDisplay display, const EGLint *pAttributes, EGLConfig *pConfigs, EGLint nSize,
                        EGLint *pCount);
EGLSurface CreatePbufferFromClientBuffer(EGLDisplay display, EGLenum nType, EGLClientBuffer buffer,
                                         EGLConfig config, const EGLint *pAttributes);
EGLBoolean DestroySurface(EGLDisplay display, EGLSurface surface);
EGLBoolean BindTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer);
EGLBoolean ReleaseTexImage(EGLDisplay display, EGLSurface surface, EGLint nBuffer);

} // namespace egl
} // namespace platform
