#pragma once

#include "platform/Direct3D11.h"

namespace d3d {

// Whether hr is a failure. If so, one Qt warning says which call failed: pszTemplate has %1 for nNumber, %2
// for the result in base 16 and %3 for the system's text for it. Any thread.
bool Failed(HRESULT hr, const char *pszTemplate, int nNumber);

} // namespace d3d
