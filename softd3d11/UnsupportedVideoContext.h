#pragma once

#include "softd3d11/Unsupported.h"

namespace softd3d11 {

// What a video context does not do: decoding, protection, and what the video processor has no feature for.
class UnsupportedVideoContext : public ID3D11VideoContext,
                                private Unsupported<Method::VideoContextUnsupported>
{
public:
    HRESULT STDMETHODCALLTYPE GetDecoderBuffer(ID3D11VideoDecoder *, D3D11_VIDEO_DECODER_BUFFER_TYPE,
                                               UINT *buffer_size, void **buffer) override
    {
        return NotImplemented(buffer_size, buffer);
    }
    HRESULT STDMETHODCALLTYPE ReleaseDecoderBuffer(ID3D11VideoDecoder *,
                                                   D3D11_VIDEO_DECODER_BUFFER_TYPE) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE DecoderBeginFrame(ID3D11VideoDecoder *, ID3D11VideoDecoderOutputView *, UINT,
                                                const void *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE DecoderEndFrame(ID3D11VideoDecoder *) override { return NotImplemented(); }
    HRESULT STDMETHODCALLTYPE SubmitDecoderBuffers(ID3D11VideoDecoder *, UINT,
                                                   const D3D11_VIDEO_DECODER_BUFFER_DESC *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE DecoderExtension(ID3D11VideoDecoder *,
                                               const D3D11_VIDEO_DECODER_EXTENSION *) override
    {
        return NotImplemented();
    }
    void STDMETHODCALLTYPE VideoProcessorSetOutputTargetRect(ID3D11VideoProcessor *, BOOL,
                                                             const RECT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetOutputBackgroundColor(ID3D11VideoProcessor *, BOOL,
                                                                  const D3D11_VIDEO_COLOR *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetOutputColorSpace(
        ID3D11VideoProcessor *, const D3D11_VIDEO_PROCESSOR_COLOR_SPACE *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetOutputAlphaFillMode(ID3D11VideoProcessor *,
                                                                D3D11_VIDEO_PROCESSOR_ALPHA_FILL_MODE,
                                                                UINT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetOutputConstriction(ID3D11VideoProcessor *, BOOL, SIZE) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetOutputStereoMode(ID3D11VideoProcessor *, BOOL) override
    {
        Ignore();
    }
    HRESULT STDMETHODCALLTYPE VideoProcessorSetOutputExtension(ID3D11VideoProcessor *, const GUID *, UINT,
                                                               void *) override
    {
        return NotImplemented();
    }
    void STDMETHODCALLTYPE VideoProcessorGetOutputTargetRect(ID3D11VideoProcessor *, BOOL *enabled,
                                                             RECT *rect) override
    {
        Ignore(enabled, rect);
    }
    void STDMETHODCALLTYPE VideoProcessorGetOutputBackgroundColor(ID3D11VideoProcessor *, BOOL *y_cb_cr,
                                                                  D3D11_VIDEO_COLOR *color) override
    {
        Ignore(y_cb_cr, color);
    }
    void STDMETHODCALLTYPE VideoProcessorGetOutputColorSpace(
        ID3D11VideoProcessor *, D3D11_VIDEO_PROCESSOR_COLOR_SPACE *color_space) override
    {
        Ignore(color_space);
    }
    void STDMETHODCALLTYPE VideoProcessorGetOutputAlphaFillMode(
        ID3D11VideoProcessor *, D3D11_VIDEO_PROCESSOR_ALPHA_FILL_MODE *alpha_fill_mode,
        UINT *stream_idx) override
    {
        Ignore(alpha_fill_mode, stream_idx);
    }
    void STDMETHODCALLTYPE VideoProcessorGetOutputConstriction(ID3D11VideoProcessor *, BOOL *enabled,
                                                               SIZE *size) override
    {
        Ignore(enabled, size);
    }
    void STDMETHODCALLTYPE VideoProcessorGetOutputStereoMode(ID3D11VideoProcessor *, BOOL *enabled) override
    {
        Ignore(enabled);
    }
    HRESULT STDMETHODCALLTYPE VideoProcessorGetOutputExtension(ID3D11VideoProcessor *, const GUID *,
                                                               UINT data_size, void *data) override
    {
        return NotImplementedBytes(data, data_size);
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamFrameFormat(ID3D11VideoProcessor *, UINT,
                                                              D3D11_VIDEO_FRAME_FORMAT) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamOutputRate(ID3D11VideoProcessor *, UINT,
                                                             D3D11_VIDEO_PROCESSOR_OUTPUT_RATE, BOOL,
                                                             const DXGI_RATIONAL *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamDestRect(ID3D11VideoProcessor *, UINT, BOOL,
                                                           const RECT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamAlpha(ID3D11VideoProcessor *, UINT, BOOL, float) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamPalette(ID3D11VideoProcessor *, UINT, UINT,
                                                          const UINT *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamPixelAspectRatio(ID3D11VideoProcessor *, UINT, BOOL,
                                                                   const DXGI_RATIONAL *,
                                                                   const DXGI_RATIONAL *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamLumaKey(ID3D11VideoProcessor *, UINT, BOOL, float,
                                                          float) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamStereoFormat(ID3D11VideoProcessor *, UINT, BOOL,
                                                               D3D11_VIDEO_PROCESSOR_STEREO_FORMAT, BOOL,
                                                               BOOL, D3D11_VIDEO_PROCESSOR_STEREO_FLIP_MODE,
                                                               int) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamFilter(ID3D11VideoProcessor *, UINT,
                                                         D3D11_VIDEO_PROCESSOR_FILTER, BOOL, int) override
    {
        Ignore();
    }
    HRESULT STDMETHODCALLTYPE VideoProcessorSetStreamExtension(ID3D11VideoProcessor *, UINT, const GUID *,
                                                               UINT, void *) override
    {
        return NotImplemented();
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamFrameFormat(ID3D11VideoProcessor *, UINT,
                                                              D3D11_VIDEO_FRAME_FORMAT *format) override
    {
        Ignore(format);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamOutputRate(ID3D11VideoProcessor *, UINT,
                                                             D3D11_VIDEO_PROCESSOR_OUTPUT_RATE *rate,
                                                             BOOL *repeat,
                                                             DXGI_RATIONAL *custom_rate) override
    {
        Ignore(rate, repeat, custom_rate);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamDestRect(ID3D11VideoProcessor *, UINT, BOOL *enabled,
                                                           RECT *rect) override
    {
        Ignore(enabled, rect);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamAlpha(ID3D11VideoProcessor *, UINT, BOOL *enabled,
                                                        float *alpha) override
    {
        Ignore(enabled, alpha);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamPalette(ID3D11VideoProcessor *, UINT, UINT entry_count,
                                                          UINT *entries) override
    {
        IgnoreArray(entries, entry_count);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamPixelAspectRatio(ID3D11VideoProcessor *, UINT,
                                                                   BOOL *enabled,
                                                                   DXGI_RATIONAL *src_aspect_ratio,
                                                                   DXGI_RATIONAL *dst_aspect_ratio) override
    {
        Ignore(enabled, src_aspect_ratio, dst_aspect_ratio);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamLumaKey(ID3D11VideoProcessor *, UINT, BOOL *enabled,
                                                          float *lower, float *upper) override
    {
        Ignore(enabled, lower, upper);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamStereoFormat(
        ID3D11VideoProcessor *, UINT, BOOL *enabled, D3D11_VIDEO_PROCESSOR_STEREO_FORMAT *format,
        BOOL *left_view_frame0, BOOL *base_view_frame0, D3D11_VIDEO_PROCESSOR_STEREO_FLIP_MODE *flip_mode,
        int *mono_offset) override
    {
        Ignore(enabled, format, left_view_frame0, base_view_frame0, flip_mode, mono_offset);
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamFilter(ID3D11VideoProcessor *, UINT,
                                                         D3D11_VIDEO_PROCESSOR_FILTER, BOOL *enabled,
                                                         int *level) override
    {
        Ignore(enabled, level);
    }
    HRESULT STDMETHODCALLTYPE VideoProcessorGetStreamExtension(ID3D11VideoProcessor *, UINT, const GUID *,
                                                               UINT data_size, void *data) override
    {
        return NotImplementedBytes(data, data_size);
    }
    HRESULT STDMETHODCALLTYPE NegotiateCryptoSessionKeyExchange(ID3D11CryptoSession *, UINT, void *) override
    {
        return NotImplemented();
    }
    void STDMETHODCALLTYPE EncryptionBlt(ID3D11CryptoSession *, ID3D11Texture2D *, ID3D11Texture2D *, UINT,
                                         void *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE DecryptionBlt(ID3D11CryptoSession *, ID3D11Texture2D *, ID3D11Texture2D *,
                                         D3D11_ENCRYPTED_BLOCK_INFO *, UINT, const void *, UINT,
                                         void *) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE StartSessionKeyRefresh(ID3D11CryptoSession *, UINT, void *) override { Ignore(); }
    void STDMETHODCALLTYPE FinishSessionKeyRefresh(ID3D11CryptoSession *) override { Ignore(); }
    HRESULT STDMETHODCALLTYPE GetEncryptionBltKey(ID3D11CryptoSession *, UINT key_size, void *key) override
    {
        return NotImplementedBytes(key, key_size);
    }
    HRESULT STDMETHODCALLTYPE NegotiateAuthenticatedChannelKeyExchange(ID3D11AuthenticatedChannel *, UINT,
                                                                       void *) override
    {
        return NotImplemented();
    }
    HRESULT STDMETHODCALLTYPE QueryAuthenticatedChannel(ID3D11AuthenticatedChannel *, UINT, const void *,
                                                        UINT output_size, void *output) override
    {
        return NotImplementedBytes(output, output_size);
    }
    HRESULT STDMETHODCALLTYPE
    ConfigureAuthenticatedChannel(ID3D11AuthenticatedChannel *, UINT, const void *,
                                  D3D11_AUTHENTICATED_CONFIGURE_OUTPUT *output) override
    {
        return NotImplemented(output);
    }
    void STDMETHODCALLTYPE VideoProcessorSetStreamRotation(ID3D11VideoProcessor *, UINT, BOOL,
                                                           D3D11_VIDEO_PROCESSOR_ROTATION) override
    {
        Ignore();
    }
    void STDMETHODCALLTYPE VideoProcessorGetStreamRotation(ID3D11VideoProcessor *, UINT, BOOL *enable,
                                                           D3D11_VIDEO_PROCESSOR_ROTATION *rotation) override
    {
        Ignore(enable, rotation);
    }
};

} // namespace softd3d11
