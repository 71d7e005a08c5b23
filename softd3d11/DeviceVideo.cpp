// The video side of the device.
#include "softd3d11/Device.h"
#include "softd3d11/VideoEnumerator.h"
#include "softd3d11/VideoInputView.h"
#include "softd3d11/VideoOutputView.h"
#include "softd3d11/VideoProcessor.h"

#include <utility>

namespace softd3d11 {

namespace {

// Input and output views alike. Without ppView the caller only asks whether it could be made.
template <class View, class ViewDesc, class Interface>
HRESULT CreateView(const Call &call, Device &device, ID3D11Resource *pResource,
                   ID3D11VideoProcessorEnumerator *pEnumerator, const ViewDesc *pDesc, Interface **ppView)
{
    ClearResult(ppView);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    ComRef<Texture2D> texture = Unwrap<Texture2D>(pResource, &device);
    if (texture == nullptr || Unwrap<VideoEnumerator>(pEnumerator, &device) == nullptr || pDesc == nullptr ||
        !View::IsValid(texture->Storage(), *pDesc)) {
        return call.Refuse();
    }
    if (ppView == nullptr) {
        return S_FALSE;
    }
    return WithoutExceptions([&] {
        *ppView = new View(device, std::move(texture), *pDesc);
        return S_OK;
    });
}

} // namespace

HRESULT Device::CreateVideoProcessorEnumerator(const D3D11_VIDEO_PROCESSOR_CONTENT_DESC *pDesc,
                                               ID3D11VideoProcessorEnumerator **ppEnumerator)
{
    const Call call(Method::VideoDeviceCreateVideoProcessorEnumerator);
    ClearResult(ppEnumerator);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    if (pDesc == nullptr || ppEnumerator == nullptr || !VideoEnumerator::IsValid(*pDesc)) {
        return call.Refuse();
    }
    return WithoutExceptions([&] {
        *ppEnumerator = new VideoEnumerator(*this, *pDesc);
        return S_OK;
    });
}

HRESULT Device::CreateVideoProcessor(ID3D11VideoProcessorEnumerator *pEnumerator, UINT nRateConversionIndex,
                                     ID3D11VideoProcessor **ppProcessor)
{
    const Call call(Method::VideoDeviceCreateVideoProcessor);
    ClearResult(ppProcessor);
    if (FAILED(call.Injected())) {
        return call.Injected();
    }
    const ComRef<VideoEnumerator> enumerator = Unwrap<VideoEnumerator>(pEnumerator, this);
    if (enumerator == nullptr || nRateConversionIndex != 0 || ppProcessor == nullptr) {
        return call.Refuse();
    }
    return WithoutExceptions([&] {
        *ppProcessor = new VideoProcessor(*this, enumerator->ContentDesc());
        return S_OK;
    });
}

HRESULT Device::CreateVideoProcessorInputView(ID3D11Resource *pResource,
                                              ID3D11VideoProcessorEnumerator *pEnumerator,
                                              const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC *pDesc,
                                              ID3D11VideoProcessorInputView **ppView)
{
    return CreateView<VideoInputView>(Call(Method::VideoDeviceCreateVideoProcessorInputView), *this,
                                      pResource, pEnumerator, pDesc, ppView);
}

HRESULT Device::CreateVideoProcessorOutputView(ID3D11Resource *pResource,
                                               ID3D11VideoProcessorEnumerator *pEnumerator,
                                               const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC *pDesc,
                                               ID3D11VideoProcessorOutputView **ppView)
{
    return CreateView<VideoOutputView>(Call(Method::VideoDeviceCreateVideoProcessorOutputView), *this,
                                       pResource, pEnumerator, pDesc, ppView);
}

} // namespace softd3d11
