/* A program that knows EGL and nothing of the library that is preloaded into it. */
#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* With the argument "with" the extension must be there, with any other it must not. */
int main(int argc, char *argv[])
{
    unsetenv("LD_PRELOAD"); /* this program alone is meant, not what a sanitizer starts to read symbols */
    const EGLDisplay display =
        eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, NULL);
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, NULL, NULL)) {
        printf("no display: %#x\n", (unsigned)eglGetError());
        return 2;
    }
    const char *extensions = eglQueryString(display, EGL_EXTENSIONS);
    const int found = extensions && strstr(extensions, "EGL_ANGLE_d3d_share_handle_client_buffer") != NULL;
    printf("the extension is %s\n", found ? "there" : "missing");
    eglTerminate(display);
    return argc == 2 && found == (strcmp(argv[1], "with") == 0) ? 0 : 1;
}
