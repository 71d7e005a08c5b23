#pragma once

#include "softd3d11/Unsupported.h"

namespace softd3d11 {

// What a video device does not do.
class UnsupportedVideoDevice : public ID3D11VideoDevice, private Unsupported<Method::VideoDeviceUnsupported>
{
public:
    HRESULT STDMETHODCALLTYPE CreateVideoDecoder(const D3D11_VIDEO_DECODER_DESC *,
                                                 const D3D11_VIDEO_DECODER_CONFIG *,
                                                 ID3D11VideoDecoder **ppDecoder) override
    {
        return NotImplemented(ppDecoder);
    }
    HRESULT STDMETHODCALLTYPE CreateAuthenticatedChannel(
        D3D11_AUTHENTICATED_CHANNEL_TYPE, ID3D11AuthenticatedChannel **ppAuthenticatedChannel) override
    {
        return NotImplemented(ppAuthenticatedChannel);
    }
    HRESULT STDMETHODCALLTYPE CreateCryptoSession(const GUID *, const GUID *, const GUID *,
                                                  ID3D11CryptoSession **ppCryptoSession) override
    {
        return NotImplemented(ppCryptoSession);
    }
    HRESULT STDMETHODCALLTYPE CreateVideoDecoderOutputView(ID3D11Resource *,
                                                           const D3D11_VIDEO_DECODER_OUTPUT_VIEW_DESC *,
                                                           ID3D11VideoDecoderOutputView **ppVDOVView) override
    {
        return NotImplemented(ppVDOVView);
    }
    UINT STDMETHODCALLTYPE GetVideoDecoderProfileCount() override
    {
        Ignore();
        return 0;
    }
    HRESULT STDMETHODCALLTYPE GetVideoDecoderProfile(UINT, GUID *pDecoderProfile) override
    {
        return NotImplemented(pDecoderProfile);
    }
    HRESULT STDMETHODCALLTYPE CheckVideoDecoderFormat(const GUID *, DXGI_FORMAT, BOOL *pSupported) override
    {
        return NotImplemented(pSupported);
    }
    HRESULT STDMETHODCALLTYPE GetVideoDecoderConfigCount(const D3D11_VIDEO_DECODER_DESC *,
                                                         UINT *pCount) override
    {
        return NotImplemented(pCount);
    }
    HRESULT STDMETHODCALLTYPE GetVideoDecoderConfig(const D3D11_VIDEO_DECODER_DESC *, UINT,
                                                    D3D11_VIDEO_DECODER_CONFIG *pConfig) override
    {
        return NotImplemented(pConfig);
    }
    HRESULT STDMETHODCALLTYPE GetContentProtectionCaps(const GUID *, const GUID *,
                                                       D3D11_VIDEO_CONTENT_PROTECTION_CAPS *pCaps) override
    {
        return NotImplemented(pCaps);
    }
    HRESULT STDMETHODCALLTYPE CheckCryptoKeyExchange(const GUID *, const GUID *, UINT,
                                                     GUID *pKeyExchangeType) override
    {
        return NotImplemented(pKeyExchangeType);
    }
};

} // namespace softd3d11
