#pragma once

#include <GLES3/gl3.h>

#include <GLES2/gl2ext.h>

namespace softegl {

// GL functions as libEGL gives them out, which work in whatever context is current.
struct RealGl
{
    PFNGLBINDBUFFERPROC BindBuffer;
    PFNGLBINDTEXTUREPROC BindTexture;
    PFNGLCOPYTEXIMAGE2DPROC CopyTexImage2D;
    PFNGLDELETETEXTURESPROC DeleteTextures;
    PFNGLDRAWARRAYSPROC DrawArrays;
    PFNGLDRAWELEMENTSPROC DrawElements;
    PFNGLGETERRORPROC GetError;
    PFNGLGETINTEGERVPROC GetIntegerv;
    PFNGLGETSTRINGPROC GetString;
    PFNGLGETSTRINGIPROC GetStringi;
    PFNGLGETTEXPARAMETERIVPROC GetTexParameteriv;
    PFNGLPIXELSTOREIPROC PixelStorei;
    PFNGLREADPIXELSPROC ReadPixels;
    PFNGLTEXIMAGE2DPROC TexImage2D;
    PFNGLTEXSTORAGE2DPROC TexStorage2D;
    PFNGLTEXSUBIMAGE2DPROC TexSubImage2D;
};

// Looked up at the first call. Thread-safe.
const RealGl &Gl() noexcept;

} // namespace softegl
