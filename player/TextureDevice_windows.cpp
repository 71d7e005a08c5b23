// A device of the system, as a hardware decoder makes it.
#include <d3d10.h> // before Direct3D11.h, which takes away words that this one uses

#include "TextureDevice.h"

ComPtr<ID3D11Device> createTextureDevice()
{
    ComPtr<ID3D11Device> device;
    const UINT nFlags = D3D11_CREATE_DEVICE_VIDEO_SUPPORT | D3D11_CREATE_DEVICE_BGRA_SUPPORT;
    const HRESULT hResult =
        D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, nFlags, nullptr, 0, D3D11_SDK_VERSION,
                          device.ReleaseAndGetAddressOf(), nullptr, nullptr);
    ComPtr<ID3D10Multithread> multithread;
    if (FAILED(hResult) || FAILED(device.As(__uuidof(ID3D10Multithread), multithread))) {
        return {};
    }
    multithread->SetMultithreadProtected(TRUE);
    return device;
}
