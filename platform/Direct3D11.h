// The Direct3D 11 and DXGI interface declarations. To be included in place of d3d11.h and dxgi.h wherever
// Qt's headers are used too, before or after them. Only platform/Direct3D11Guids.cpp defines INITGUID before
// it, which makes the interface identifiers.
#pragma once

#include <QtGlobal> // finds out the operating system, which it could not after the declarations

#ifndef _WIN32
#define WINE_NO_UNICODE_MACROS
#endif

#include <d3d11.h>
#include <dxgi.h>

// What the declarations leave behind that would change the headers after them: a false claim, and a calling
// convention under a name that OpenGL's headers use too. Then short words that code uses as names.
#ifndef _WIN32
#undef _WIN64
#undef APIENTRY
#undef WINGDIAPI
#endif
#undef far
#undef interface
#undef near
#undef small
