// More devices than there are: each passes its calls on to a real one, whose textures they share, and is told from
// it and from the others by its address, its references and the objects that it has made.
#pragma once

#include "platform/Direct3D11.h"

namespace xelttest {

// The only reference is the caller's. Null when the real device has no video device.
ID3D11Device *makeHostDevice(ID3D11Device &real);

} // namespace xelttest
