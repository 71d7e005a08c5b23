// A decoder's Direct3D 11 device and texture array: on the software device, on Windows on a real one.
#pragma once

#include "Frames.h"

#include "d3d11/ComPtr.h"
#include "softd3d11/SoftD3D11.h"

#include <QSize>

namespace xelttest {

ComPtr<ID3D11Device> makeDevice();

// What is alive of a device's objects, or of all devices' and the devices themselves, when the driver lets go of what
// was drawn last. GUI thread.
size_t liveObjects(ID3D11Device *pDevice);
size_t liveObjects();

// NV12 bytes, both planes packed.
std::vector<uint8_t> packedNv12Bytes(const Planes &planes);

// Slices of one texture array, filled one at a time.
class DecoderTextures
{
public:
    DecoderTextures(const ComPtr<ID3D11Device> &device, const QSize &size, UINT nSlices = 16,
                    DXGI_FORMAT format = DXGI_FORMAT_NV12);

    void fill(UINT nSlice, const Planes &planes);
    ID3D11Texture2D *texture() const { return m_texture.Get(); }
    ID3D11Device *device() const { return m_device.Get(); }
    QSize size() const { return m_size; }
    // The descriptor of a frame in a slice.
    VideoFrameDesc frame(UINT nSlice) const;

private:
    ComPtr<ID3D11Device> m_device;
    ComPtr<ID3D11DeviceContext> m_context;
    ComPtr<ID3D11Texture2D> m_texture;
    QSize m_size;
};

// A BGRA render target such as the picture is converted into.
ComPtr<ID3D11Texture2D> makeTarget(ID3D11Device &device, const QSize &size, UINT nMiscFlags = 0);
// Its pixels, read back: rows of B, G, R, A.
std::vector<uint8_t> readTarget(ID3D11Device &device, ID3D11Texture2D &texture);

} // namespace xelttest
