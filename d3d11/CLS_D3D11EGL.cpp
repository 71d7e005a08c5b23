#include "d3d11/CLS_D3D11EGL.h"

std::unique_ptr<CLS_D3D11EGL> CLS_D3D11EGL::Create()
{
    return nullptr;
}

CLS_D3D11EGL::~CLS_D3D11EGL() = default;
