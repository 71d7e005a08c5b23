// The Direct3D 11 device that ANGLE draws with.
#pragma once

#include "d3d11/ComPtr.h"
#include "platform/EglApi.h"

namespace xelttest {

// Its calls are counted, and it has a stand-in for shared handles. Null without ANGLE. No reference for the
// caller; it lives until the process ends. GUI thread.
ID3D11Device *angleDevice();

// Draws something of no importance: what was drawn last stays bound, and alive, until something else is drawn.
// Leaves the current context as it was. GUI thread.
void unbindWhatWasDrawn();

} // namespace xelttest
