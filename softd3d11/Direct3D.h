// The Direct3D 11 and DXGI interface declarations, without what else they would leave behind: short words as
// macros, and outside Windows the claim that this is Windows and names that OpenGL's headers use too.
#pragma once

#ifndef _WIN32
#define WINE_NO_UNICODE_MACROS
#endif

#include <d3d11.h>
#include <dxgi.h>

#ifndef _WIN32
#undef _WIN64
#undef APIENTRY
#undef WINGDIAPI
#endif
#undef far
#undef interface
#undef near
#undef small
