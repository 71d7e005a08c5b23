// A library that calls EGL. It is built under several file names, to see whose calls are counted.
#include <EGL/egl.h>

extern "C" __attribute__((visibility("default"))) EGLBoolean callEgl()
{
    const EGLBoolean blDone = eglBindAPI(EGL_OPENGL_ES_API);
    return blDone == EGL_FALSE ? EGL_FALSE : EGL_TRUE; // no tail call: it would return to somebody else
}
