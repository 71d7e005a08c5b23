// The one file that defines the interface identifiers which the others refer to.
#define INITGUID
#include "softd3d11/Direct3D.h"
