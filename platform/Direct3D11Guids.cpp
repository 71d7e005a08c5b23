// The interface identifiers of Direct3D 11 and DXGI, once for each binary.
#define INITGUID
#include "platform/Direct3D11.h"
