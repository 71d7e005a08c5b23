#pragma once

#include "d3d11/ComPtr.h"

// A Direct3D 11 device for the textures; null when there is none to be had. Its immediate context takes calls
// of several threads at once. Any thread.
ComPtr<ID3D11Device> createTextureDevice();
