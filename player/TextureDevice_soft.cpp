// The software device, whose context takes calls of several threads as it is.
#include "TextureDevice.h"

#include "softd3d11/SoftD3D11.h"

ComPtr<ID3D11Device> createTextureDevice()
{
    ComPtr<ID3D11Device> device;
    softd3d11::CreateDevice(device.ReleaseAndGetAddressOf());
    return device;
}
