// The Direct3D 11 and DXGI interface declarations. To be included in place of d3d11.h and dxgi.h wherever
// Qt's headers are used too, before or after them. Only platform/Direct3D11Guids.cpp defines INITGUID before
// it, which makes the interface identifiers.
#pragma once

#include <QtGlobal> // finds out the operating system, which it could not after the declarations

#include "platform/Direct3DDeclarations.h"
