// d3d11.h and dxgi.h, without what else they would leave behind. Free of Qt, for those who do without it.
#pragma once

#ifndef _WIN32
#define WINE_NO_UNICODE_MACROS
#endif

#include <d3d11.h>
#include <dxgi.h>

// What would change the headers after them: outside Windows a false claim, and a calling convention under names
// that OpenGL's headers use too. Then short words that code uses as names.
#ifndef _WIN32
#undef _WIN64
#undef APIENTRY
#undef WINGDIAPI
#endif
#undef far
#undef interface
#undef near
#undef small
