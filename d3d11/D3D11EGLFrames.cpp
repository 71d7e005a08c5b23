// What a host hands to CLS_D3D11EGL. Any thread, the renderer's frame mutex held, but for ClearFramePending.
#include "d3d11/CLS_D3D11EGL.h"

#include "d3d11/D3D11VP.h"
#include "interface/XeltRender.h"
#include "log/CLS_OmbrixApi.h"

#include <algorithm>
#include <cstring>

int32_t CLS_D3D11EGL::SetDevice(void *pDevice)
{
    auto *pD3DDevice = static_cast<ID3D11Device *>(pDevice);
    if (pD3DDevice == nullptr) {
        return -1;
    }
    if (m_pD3DDevice && m_pD3DDevice.Get() != pD3DDevice) {
        m_pTexture.Reset();
        m_blDeviceChanged = true; // the rest is the painting thread's
    }
    m_pD3DDevice = ComPtr<ID3D11Device>(pD3DDevice);
    XELT_LOG("CLS_D3D11EGL::SetDevice this = %p m_pD3DDevice = %p", static_cast<void *>(this),
             static_cast<void *>(m_pD3DDevice.Get()));
    return 0;
}

void *CLS_D3D11EGL::Device() const
{
    return m_pD3DDevice.Get();
}

int32_t CLS_D3D11EGL::SetFrame(const void *pData, int32_t nLength)
{
    if (pData == nullptr || nLength < 1) {
        return -1;
    }
    VideoFrameDesc frame = {};
    std::memcpy(&frame, pData, std::min(static_cast<size_t>(nLength), sizeof(frame)));
    m_nFrameWidth = frame.iWidth;
    m_nFrameHeight = frame.iHeight;
    auto *pTexture = static_cast<ID3D11Texture2D *>(frame.pD3D11Texture);
    if (pTexture == nullptr) {
        return -1; // the old texture stays
    }
    m_pTexture = ComPtr<ID3D11Texture2D>(pTexture);
    m_nSlice = frame.nTextureSlice;
    m_blFramePending = true;
    return -1; // deliberate: nobody looks at it
}

void CLS_D3D11EGL::ClearFramePending()
{
    m_blFramePending = false;
}

void CLS_D3D11EGL::SetHue(double dHue)
{
    m_colorMatrix.setHue(dHue);
}

void CLS_D3D11EGL::SetSaturation(double dSaturation)
{
    m_colorMatrix.setSaturation(dSaturation);
}

void CLS_D3D11EGL::SetContrast(double dContrast)
{
    m_colorMatrix.setContrast(dContrast);
}

void CLS_D3D11EGL::SetBrightness(double dBrightness)
{
    m_colorMatrix.setBrightness(dBrightness);
}

void CLS_D3D11EGL::SetColorSpace(int32_t nColorSpace)
{
    m_nColorSpace = nColorSpace;
    m_colorMatrix.invalidate();
    if (m_pD3Dvp != nullptr) {
        m_pD3Dvp->setColorSpace(nColorSpace);
    }
}

void CLS_D3D11EGL::SetColorRange(int32_t nColorRange)
{
    m_nColorRange = nColorRange;
    m_colorMatrix.invalidate();
    if (m_pD3Dvp != nullptr) {
        m_pD3Dvp->setColorRange(nColorRange);
    }
}

void CLS_D3D11EGL::ReleaseHostObjects()
{
    m_pTexture.Reset();
    m_pD3Dvp.reset();
    m_pd3dtex.Reset();
    m_pD3DDevice.Reset();
    m_blDeviceChanged = false;
}
