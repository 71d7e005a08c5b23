// The one file that defines the interface identifiers which the others refer to.
#define INITGUID
#include "platform/Direct3DDeclarations.h"
