// The video side of the context.
#include "softd3d11/ImmediateContext.h"
#include "softd3d11/PictureBlit.h"
#include "softd3d11/SliceLock.h"
#include "softd3d11/VideoInputView.h"
#include "softd3d11/VideoOutputView.h"
#include "softd3d11/VideoProcessor.h"

#include <cstdint>
#include <mutex>

namespace softd3d11 {

namespace {

// The processor that a stream setting is about; null, and the call counts as refused, where there is none.
ComRef<VideoProcessor> StreamOwner(const Call &call, ID3D11VideoProcessor *pProcessor, UINT nStream,
                                   const ID3D11Device &device)
{
    ComRef<VideoProcessor> processor = Unwrap<VideoProcessor>(pProcessor, &device);
    if (processor == nullptr || nStream != 0) {
        call.Refuse();
        return nullptr;
    }
    return processor;
}

template <class Value> void Give(Value *pTarget, const Value &value)
{
    if (pTarget != nullptr) {
        *pTarget = value;
    }
}

// The part of the input to show, or false where that is empty or not within the input.
bool SourceRect(const StreamState &state, const D3D11_TEXTURE2D_DESC &input, TexelRect &rect)
{
    rect = {0, 0, input.Width, input.Height};
    if (!state.blSourceRect) {
        return true;
    }
    const RECT &rc = state.rcSource;
    if (rc.left < 0 || rc.top < 0 || rc.left >= rc.right || rc.top >= rc.bottom ||
        static_cast<UINT>(rc.right) > input.Width || static_cast<UINT>(rc.bottom) > input.Height) {
        return false;
    }
    rect = {static_cast<UINT>(rc.left), static_cast<UINT>(rc.top), static_cast<UINT>(rc.right),
            static_cast<UINT>(rc.bottom)};
    return true;
}

BgraPicture TargetPicture(const TextureStorage &output)
{
    return {output.Slice(0), output.RowPitch(), output.Desc().Width, output.Desc().Height};
}

// One progressive picture, nothing before or after it, no second eye.
bool IsPlainStream(const D3D11_VIDEO_PROCESSOR_STREAM &stream)
{
    return stream.OutputIndex == 0 && stream.PastFrames == 0 && stream.FutureFrames == 0 &&
           stream.ppPastSurfacesRight == nullptr && stream.pInputSurfaceRight == nullptr &&
           stream.ppFutureSurfacesRight == nullptr;
}

// Throws std::bad_alloc.
void BlitSlice(const TextureStorage &input, UINT nSlice, const TexelRect &rect, const StreamState &state,
               const TextureStorage &output)
{
    const SliceLock lock(input, nSlice, output, 0);
    const std::uint8_t *pLuma = input.Slice(nSlice);
    const VideoPicture picture = {input.Desc().Format, pLuma, pLuma + input.Desc().Height * input.RowPitch(),
                                  input.RowPitch()};
    BlitPicture(picture, rect, state.colorSpace, TargetPicture(output));
}

} // namespace

void ImmediateContext::VideoProcessorSetStreamSourceRect(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                                         BOOL blEnable, const RECT *pRect)
{
    const Call call(Method::VideoContextSetStreamSourceRect);
    const ComRef<VideoProcessor> processor = StreamOwner(call, pProcessor, nStream, m_device);
    if (processor == nullptr) {
        return;
    }
    if (blEnable != FALSE && pRect == nullptr) {
        call.Refuse();
        return;
    }
    processor->ChangeStream([&](StreamState &state) {
        state.blSourceRect = blEnable != FALSE;
        state.rcSource = blEnable != FALSE ? *pRect : RECT{};
    });
}

void ImmediateContext::VideoProcessorGetStreamSourceRect(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                                         BOOL *pEnabled, RECT *pRect)
{
    const Call call(Method::VideoContextGetStreamSourceRect);
    if (const ComRef<VideoProcessor> processor = StreamOwner(call, pProcessor, nStream, m_device)) {
        const StreamState state = processor->Stream();
        Give<BOOL>(pEnabled, state.blSourceRect ? TRUE : FALSE);
        Give(pRect, state.rcSource);
    }
}

void ImmediateContext::VideoProcessorSetStreamColorSpace(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                                         const D3D11_VIDEO_PROCESSOR_COLOR_SPACE *pColorSpace)
{
    const Call call(Method::VideoContextSetStreamColorSpace);
    const ComRef<VideoProcessor> processor = StreamOwner(call, pProcessor, nStream, m_device);
    if (processor == nullptr) {
        return;
    }
    if (pColorSpace == nullptr) {
        call.Refuse();
        return;
    }
    processor->ChangeStream([&](StreamState &state) { state.colorSpace = *pColorSpace; });
}

void ImmediateContext::VideoProcessorGetStreamColorSpace(ID3D11VideoProcessor *pProcessor, UINT nStream,
                                                         D3D11_VIDEO_PROCESSOR_COLOR_SPACE *pColorSpace)
{
    const Call call(Method::VideoContextGetStreamColorSpace);
    if (const ComRef<VideoProcessor> processor = StreamOwner(call, pProcessor, nStream, m_device)) {
        Give(pColorSpace, processor->Stream().colorSpace);
    }
}

void ImmediateContext::VideoProcessorSetStreamAutoProcessingMode(ID3D11VideoProcessor *pProcessor,
                                                                 UINT nStream, BOOL blEnable)
{
    const Call call(Method::VideoContextSetStreamAutoProcessingMode);
    if (const ComRef<VideoProcessor> processor = StreamOwner(call, pProcessor, nStream, m_device)) {
        processor->ChangeStream([&](StreamState &state) { state.blAutoProcessing = blEnable != FALSE; });
    }
}

void ImmediateContext::VideoProcessorGetStreamAutoProcessingMode(ID3D11VideoProcessor *pProcessor,
                                                                 UINT nStream, BOOL *pEnabled)
{
    const Call call(Method::VideoContextGetStreamAutoProcessingMode);
    if (const ComRef<VideoProcessor> processor = StreamOwner(call, pProcessor, nStream, m_device)) {
        Give<BOOL>(pEnabled, processor->Stream().blAutoProcessing ? TRUE : FALSE);
    }
}

HRESULT ImmediateContext::VideoProcessorBlt(ID3D11VideoProcessor *pProcessor,
                                            ID3D11VideoProcessorOutputView *pView, UINT, UINT nStreams,
                                            const D3D11_VIDEO_PROCESSOR_STREAM *pStreams)
{
    const Call call(Method::VideoContextVideoProcessorBlt);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    const ComRef<VideoProcessor> processor = Unwrap<VideoProcessor>(pProcessor, &m_device);
    const ComRef<VideoOutputView> output = Unwrap<VideoOutputView>(pView, &m_device);
    if (processor == nullptr || output == nullptr || nStreams != 1 || pStreams == nullptr) {
        return call.Refuse();
    }
    if (pStreams->Enable == FALSE) {
        {
            const std::lock_guard<std::mutex> lock(output->Storage().SliceMutex(0));
            FillBlack(TargetPicture(output->Storage()));
        }
        output->Storage().Written();
        return S_OK;
    }
    const ComRef<VideoInputView> input = Unwrap<VideoInputView>(pStreams->pInputSurface, &m_device);
    const StreamState state = processor->Stream();
    TexelRect rect;
    if (input == nullptr || !IsPlainStream(*pStreams) || !SourceRect(state, input->Storage().Desc(), rect)) {
        return call.Refuse();
    }
    const HRESULT hr = WithoutExceptions([&] {
        BlitSlice(input->Storage(), input->Slice(), rect, state, output->Storage());
        return S_OK;
    });
    if (SUCCEEDED(hr)) {
        output->Storage().Written();
    }
    return hr;
}

} // namespace softd3d11
