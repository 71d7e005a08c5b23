// Tells when a Direct3D object ends.
#pragma once

#include "platform/Direct3D11.h"

#include <functional>

namespace xelttest {

// One notice of each kind for an object.
enum class Notice { Counted, Shared };

// Runs the action when the object is destroyed, on that thread.
void whenItEnds(ID3D11DeviceChild &object, Notice notice, std::function<void()> action);
void whenItEnds(ID3D11Device &device, Notice notice, std::function<void()> action);

} // namespace xelttest
