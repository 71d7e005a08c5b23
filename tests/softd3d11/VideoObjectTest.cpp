#include "DeviceRig.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>

using namespace rig;
using softd3d11::LiveObjects;
using softd3d11::RefusedCallCount;

namespace {

using VideoObjectTest = SoftDeviceTest;

// An object of somebody else's that happens to have the right interface.
class ForeignResource final : public ID3D11Resource
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void **ppObject) override
    {
        *ppObject = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    void STDMETHODCALLTYPE GetDevice(ID3D11Device **ppDevice) override { *ppDevice = nullptr; }
    HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT *, void *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown *) override
    {
        return E_NOTIMPL;
    }
    void STDMETHODCALLTYPE GetType(D3D11_RESOURCE_DIMENSION *) override {}
    void STDMETHODCALLTYPE SetEvictionPriority(UINT) override {}
    UINT STDMETHODCALLTYPE GetEvictionPriority() override { return 0; }
};

HRESULT MakeInputView(const Processor &on, ID3D11Resource *pTexture,
                      const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC &desc)
{
    ComPtr<ID3D11VideoProcessorInputView> view;
    const HRESULT hr = on.device.videoDevice->CreateVideoProcessorInputView(
        pTexture, on.enumerator.Get(), &desc, view.ReleaseAndGetAddressOf());
    EXPECT_EQ(SUCCEEDED(hr), static_cast<bool>(view));
    EXPECT_EQ(
        on.device.videoDevice->CreateVideoProcessorInputView(pTexture, on.enumerator.Get(), &desc, nullptr),
        hr == S_OK ? S_FALSE : hr);
    return hr;
}

HRESULT MakeOutputView(const Processor &on, ID3D11Resource *pTexture,
                       const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC &desc)
{
    ComPtr<ID3D11VideoProcessorOutputView> view;
    const HRESULT hr = on.device.videoDevice->CreateVideoProcessorOutputView(
        pTexture, on.enumerator.Get(), &desc, view.ReleaseAndGetAddressOf());
    EXPECT_EQ(SUCCEEDED(hr), static_cast<bool>(view));
    EXPECT_EQ(
        on.device.videoDevice->CreateVideoProcessorOutputView(pTexture, on.enumerator.Get(), &desc, nullptr),
        hr == S_OK ? S_FALSE : hr);
    return hr;
}

} // namespace

TEST_F(VideoObjectTest, EnumeratorTellsItsContents)
{
    const Device on;
    const Processor made(on, 1920, 1080);
    const D3D11_VIDEO_PROCESSOR_CONTENT_DESC expected = ContentDesc(1920, 1080);
    D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = {};
    EXPECT_EQ(made.enumerator->GetVideoProcessorContentDesc(&desc), S_OK);
    EXPECT_EQ(std::memcmp(&desc, &expected, sizeof desc), 0);
    desc = {};
    made.processor->GetContentDesc(&desc);
    EXPECT_EQ(std::memcmp(&desc, &expected, sizeof desc), 0);
    EXPECT_EQ(made.enumerator->GetVideoProcessorContentDesc(nullptr), E_INVALIDARG);

    D3D11_VIDEO_PROCESSOR_CAPS caps = {};
    EXPECT_EQ(made.enumerator->GetVideoProcessorCaps(&caps), S_OK);
    EXPECT_EQ(caps.RateConversionCapsCount, 1U);
    EXPECT_EQ(caps.MaxInputStreams, 1U);
    EXPECT_EQ(caps.MaxStreamStates, 1U);
    EXPECT_EQ(caps.FeatureCaps, 0U);
    D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS rates = {9, 9, 9, 9, 9};
    EXPECT_EQ(made.enumerator->GetVideoProcessorRateConversionCaps(1, &rates), E_INVALIDARG);
    EXPECT_EQ(made.enumerator->GetVideoProcessorRateConversionCaps(0, nullptr), E_INVALIDARG);
    EXPECT_EQ(made.enumerator->GetVideoProcessorRateConversionCaps(0, &rates), S_OK);
    EXPECT_EQ(rates.PastFrames, 0U);
    EXPECT_EQ(rates.FutureFrames, 0U);
    EXPECT_EQ(made.enumerator->GetVideoProcessorCustomRate(0, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(made.enumerator->GetVideoProcessorFilterRange(D3D11_VIDEO_PROCESSOR_FILTER_HUE, nullptr),
              E_NOTIMPL);
}

TEST_F(VideoObjectTest, EnumeratorKnowsTheFormats)
{
    const Device on;
    const Processor made(on, 16, 16);
    const auto flags = [&](DXGI_FORMAT format) {
        UINT nFlags = 99;
        EXPECT_EQ(made.enumerator->CheckVideoProcessorFormat(format, &nFlags), S_OK);
        return nFlags;
    };
    EXPECT_EQ(flags(DXGI_FORMAT_NV12), static_cast<UINT>(D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_INPUT));
    EXPECT_EQ(flags(DXGI_FORMAT_P010), static_cast<UINT>(D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_INPUT));
    EXPECT_EQ(flags(DXGI_FORMAT_B8G8R8A8_UNORM),
              static_cast<UINT>(D3D11_VIDEO_PROCESSOR_FORMAT_SUPPORT_OUTPUT));
    EXPECT_EQ(flags(DXGI_FORMAT_R32_FLOAT), 0U);
    EXPECT_EQ(made.enumerator->CheckVideoProcessorFormat(DXGI_FORMAT_NV12, nullptr), E_INVALIDARG);
}

TEST_F(VideoObjectTest, EnumeratorRefusesImpossibleContents)
{
    const Device on;
    const std::function<void(D3D11_VIDEO_PROCESSOR_CONTENT_DESC &)> impossible[] = {
        [](auto &desc) { desc.InputWidth = 0; },
        [](auto &desc) { desc.InputHeight = 0; },
        [](auto &desc) { desc.OutputWidth = 0; },
        [](auto &desc) { desc.OutputHeight = 0; },
        [](auto &desc) { desc.OutputWidth = 16385; },
        [](auto &desc) { desc.InputFrameFormat = static_cast<D3D11_VIDEO_FRAME_FORMAT>(3); },
        [](auto &desc) { desc.Usage = static_cast<D3D11_VIDEO_USAGE>(3); },
    };
    for (const auto &change : impossible) {
        D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = ContentDesc(64, 64);
        change(desc);
        auto *pEnumerator = reinterpret_cast<ID3D11VideoProcessorEnumerator *>(1);
        EXPECT_EQ(on.videoDevice->CreateVideoProcessorEnumerator(&desc, &pEnumerator), E_INVALIDARG);
        EXPECT_EQ(pEnumerator, nullptr);
    }
    const D3D11_VIDEO_PROCESSOR_CONTENT_DESC good = ContentDesc(64, 64);
    ComPtr<ID3D11VideoProcessorEnumerator> enumerator;
    EXPECT_EQ(on.videoDevice->CreateVideoProcessorEnumerator(&good, nullptr), E_INVALIDARG);
    EXPECT_EQ(on.videoDevice->CreateVideoProcessorEnumerator(nullptr, enumerator.ReleaseAndGetAddressOf()),
              E_INVALIDARG);
}

// Drivers take interlaced content too. It is told back, and shown as the frames that it comes in.
TEST_F(VideoObjectTest, EnumeratorTakesInterlacedContents)
{
    const Device on;
    for (const D3D11_VIDEO_FRAME_FORMAT format : {D3D11_VIDEO_FRAME_FORMAT_INTERLACED_TOP_FIELD_FIRST,
                                                  D3D11_VIDEO_FRAME_FORMAT_INTERLACED_BOTTOM_FIELD_FIRST}) {
        D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = ContentDesc(64, 64);
        desc.InputFrameFormat = format;
        desc.InputFrameRate = {30000, 1001};
        ComPtr<ID3D11VideoProcessorEnumerator> enumerator;
        ASSERT_EQ(on.videoDevice->CreateVideoProcessorEnumerator(&desc, enumerator.ReleaseAndGetAddressOf()),
                  S_OK);
        D3D11_VIDEO_PROCESSOR_CONTENT_DESC told = {};
        EXPECT_EQ(enumerator->GetVideoProcessorContentDesc(&told), S_OK);
        EXPECT_EQ(told.InputFrameFormat, format);
        EXPECT_EQ(told.InputFrameRate.Numerator, 30000U);
        D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS rates = {9, 9, 9, 9, 9};
        EXPECT_EQ(enumerator->GetVideoProcessorRateConversionCaps(0, &rates), S_OK);
        EXPECT_EQ(rates.ProcessorCaps, 0U) << "no deinterlacing";
    }
}

TEST_F(VideoObjectTest, ProcessorNeedsAnEnumeratorOfItsDevice)
{
    const Device on;
    const Device other;
    const Processor theirs(other, 16, 16);
    const Processor mine(on, 16, 16);
    ComPtr<ID3D11VideoProcessor> processor;
    EXPECT_EQ(
        on.videoDevice->CreateVideoProcessor(theirs.enumerator.Get(), 0, processor.ReleaseAndGetAddressOf()),
        E_INVALIDARG);
    EXPECT_EQ(on.videoDevice->CreateVideoProcessor(nullptr, 0, processor.ReleaseAndGetAddressOf()),
              E_INVALIDARG);
    EXPECT_EQ(
        on.videoDevice->CreateVideoProcessor(mine.enumerator.Get(), 1, processor.ReleaseAndGetAddressOf()),
        E_INVALIDARG);
    EXPECT_EQ(on.videoDevice->CreateVideoProcessor(mine.enumerator.Get(), 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(LiveObjects(on.device.Get()), 2U);
    D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS rates = {9, 9, 9, 9, 9};
    mine.processor->GetRateConversionCaps(&rates);
    EXPECT_EQ(rates.CustomRateCount, 0U);
}

TEST_F(VideoObjectTest, InputViewsFollowTheRules)
{
    const Device on;
    const Processor made(on, 16, 16);
    const ComPtr<ID3D11Texture2D> array = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 16, 16, 4));
    EXPECT_EQ(MakeInputView(made, array.Get(), InputViewDesc(0)), S_OK);
    EXPECT_EQ(MakeInputView(made, array.Get(), InputViewDesc(3)), S_OK);
    EXPECT_EQ(MakeInputView(made, array.Get(), InputViewDesc(4)), E_INVALIDARG);
    D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC desc = InputViewDesc(2);
    desc.Texture2D.MipSlice = 1;
    EXPECT_EQ(MakeInputView(made, array.Get(), desc), E_INVALIDARG);
    desc = InputViewDesc(2);
    desc.ViewDimension = D3D11_VPIV_DIMENSION_UNKNOWN;
    EXPECT_EQ(MakeInputView(made, array.Get(), desc), E_INVALIDARG);
    desc = InputViewDesc(2);
    desc.FourCC = 0x3231564E; // NV12
    EXPECT_EQ(MakeInputView(made, array.Get(), desc), S_OK);
    desc.FourCC = 0x30313050; // P010
    EXPECT_EQ(MakeInputView(made, array.Get(), desc), E_INVALIDARG);
    EXPECT_EQ(MakeInputView(made, MakeTexture(on, VideoDesc(DXGI_FORMAT_P010, 16, 16)).Get(),
                            [] {
                                D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC tenBits = InputViewDesc(0);
                                tenBits.FourCC = 0x30313050;
                                return tenBits;
                            }()),
              S_OK);
    EXPECT_EQ(
        on.videoDevice->CreateVideoProcessorInputView(array.Get(), made.enumerator.Get(), nullptr, nullptr),
        E_INVALIDARG);

    const ComPtr<ID3D11VideoProcessorInputView> view = made.InputView(array.Get(), 3);
    D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC told = {};
    view->GetDesc(&told);
    EXPECT_EQ(told.Texture2D.ArraySlice, 3U);
    ComPtr<ID3D11Resource> resource;
    view->GetResource(resource.ReleaseAndGetAddressOf());
    EXPECT_EQ(resource.Get(), array.Get());
}

TEST_F(VideoObjectTest, InputViewsNeedTheRightTexture)
{
    const Device on;
    const Processor made(on, 16, 16);
    const auto view = [&](UINT nBindFlags) {
        D3D11_TEXTURE2D_DESC desc = Desc(DXGI_FORMAT_NV12, 16, 16);
        desc.BindFlags = nBindFlags;
        return MakeInputView(made, MakeTexture(on, desc).Get(), InputViewDesc(0));
    };
    EXPECT_EQ(view(0), S_OK);
    EXPECT_EQ(view(D3D11_BIND_DECODER), S_OK);
    EXPECT_EQ(view(D3D11_BIND_DECODER | D3D11_BIND_SHADER_RESOURCE), S_OK);
    EXPECT_EQ(view(D3D11_BIND_RENDER_TARGET), S_OK);
    EXPECT_EQ(view(D3D11_BIND_VIDEO_ENCODER), S_OK);
    EXPECT_EQ(view(D3D11_BIND_SHADER_RESOURCE), E_INVALIDARG);
    const ComPtr<ID3D11Texture2D> staging = MakeTexture(on, StagingDesc(DXGI_FORMAT_NV12, 16, 16));
    EXPECT_EQ(MakeInputView(made, staging.Get(), InputViewDesc(0)), E_INVALIDARG);
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(16, 16));
    EXPECT_EQ(MakeInputView(made, target.Get(), InputViewDesc(0)), E_INVALIDARG);
    EXPECT_EQ(MakeInputView(made, nullptr, InputViewDesc(0)), E_INVALIDARG);
    ForeignResource foreign;
    EXPECT_EQ(MakeInputView(made, &foreign, InputViewDesc(0)), E_INVALIDARG);

    const Device other;
    const Processor theirs(other, 16, 16);
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(other, VideoDesc(DXGI_FORMAT_NV12, 16, 16));
    EXPECT_EQ(MakeInputView(made, texture.Get(), InputViewDesc(0)), E_INVALIDARG);
    const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC desc = InputViewDesc(0);
    ComPtr<ID3D11VideoProcessorInputView> mixed;
    EXPECT_EQ(other.videoDevice->CreateVideoProcessorInputView(texture.Get(), made.enumerator.Get(), &desc,
                                                               mixed.ReleaseAndGetAddressOf()),
              E_INVALIDARG);
}

TEST_F(VideoObjectTest, OutputViewsFollowTheRules)
{
    const Device on;
    const Device other;
    const Processor made(on, 16, 16);
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(16, 16));
    EXPECT_EQ(MakeOutputView(made, target.Get(), OutputViewDesc()), S_OK);
    D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC desc = OutputViewDesc();
    desc.Texture2D.MipSlice = 1;
    EXPECT_EQ(MakeOutputView(made, target.Get(), desc), E_INVALIDARG);
    desc = OutputViewDesc();
    desc.ViewDimension = D3D11_VPOV_DIMENSION_TEXTURE2DARRAY;
    EXPECT_EQ(MakeOutputView(made, target.Get(), desc), E_INVALIDARG);
    EXPECT_EQ(
        on.videoDevice->CreateVideoProcessorOutputView(target.Get(), made.enumerator.Get(), nullptr, nullptr),
        E_INVALIDARG);

    D3D11_TEXTURE2D_DESC unbound = TargetDesc(16, 16);
    unbound.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    EXPECT_EQ(MakeOutputView(made, MakeTexture(on, unbound).Get(), OutputViewDesc()), E_INVALIDARG);
    D3D11_TEXTURE2D_DESC video = VideoDesc(DXGI_FORMAT_NV12, 16, 16);
    video.BindFlags = D3D11_BIND_RENDER_TARGET;
    EXPECT_EQ(MakeOutputView(made, MakeTexture(on, video).Get(), OutputViewDesc()), E_INVALIDARG);
    EXPECT_EQ(MakeOutputView(made, MakeTexture(other, TargetDesc(16, 16)).Get(), OutputViewDesc()),
              E_INVALIDARG);

    const ComPtr<ID3D11VideoProcessorOutputView> view = made.OutputView(target.Get());
    D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC told = {};
    view->GetDesc(&told);
    EXPECT_EQ(told.ViewDimension, D3D11_VPOV_DIMENSION_TEXTURE2D);
    ComPtr<ID3D11Resource> resource;
    view->GetResource(resource.ReleaseAndGetAddressOf());
    EXPECT_EQ(resource.Get(), target.Get());
}

TEST_F(VideoObjectTest, StreamSettingsAreKept)
{
    const Device on;
    const Processor made(on, 16, 16);
    ID3D11VideoContext &context = *on.videoContext.Get();
    ID3D11VideoProcessor *pProcessor = made.processor.Get();
    BOOL blEnabled = TRUE;
    RECT rect = {9, 9, 9, 9};
    context.VideoProcessorGetStreamSourceRect(pProcessor, 0, &blEnabled, &rect);
    EXPECT_EQ(blEnabled, FALSE);
    EXPECT_EQ(rect.right, 0);
    made.SetSourceRect(1, 2, 3, 4);
    context.VideoProcessorGetStreamSourceRect(pProcessor, 0, &blEnabled, &rect);
    EXPECT_EQ(blEnabled, TRUE);
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(rect.top, 2);
    EXPECT_EQ(rect.right, 3);
    EXPECT_EQ(rect.bottom, 4);
    context.VideoProcessorSetStreamSourceRect(pProcessor, 0, FALSE, nullptr);
    context.VideoProcessorGetStreamSourceRect(pProcessor, 0, &blEnabled, nullptr);
    EXPECT_EQ(blEnabled, FALSE);

    D3D11_VIDEO_PROCESSOR_COLOR_SPACE space = {};
    space.Reserved = 1;
    context.VideoProcessorGetStreamColorSpace(pProcessor, 0, &space);
    UINT nBits = 9;
    std::memcpy(&nBits, &space, sizeof nBits);
    EXPECT_EQ(nBits, 0U);
    made.SetColorSpace(1, D3D11_VIDEO_PROCESSOR_NOMINAL_RANGE_16_235);
    context.VideoProcessorGetStreamColorSpace(pProcessor, 0, &space);
    std::memcpy(&nBits, &space, sizeof nBits);
    EXPECT_EQ(nBits, 20U);

    context.VideoProcessorGetStreamAutoProcessingMode(pProcessor, 0, &blEnabled);
    EXPECT_EQ(blEnabled, TRUE);
    context.VideoProcessorSetStreamAutoProcessingMode(pProcessor, 0, FALSE);
    context.VideoProcessorGetStreamAutoProcessingMode(pProcessor, 0, &blEnabled);
    EXPECT_EQ(blEnabled, FALSE);
}

TEST_F(VideoObjectTest, StreamSettingsNeedTheRightProcessor)
{
    const Device on;
    const Device other;
    const Processor made(on, 16, 16);
    const Processor theirs(other, 16, 16);
    ID3D11VideoContext &context = *on.videoContext.Get();
    const RECT rect = {0, 0, 8, 8};
    const D3D11_VIDEO_PROCESSOR_COLOR_SPACE space = {};
    const struct
    {
        ID3D11VideoProcessor *pProcessor;
        UINT nStream;
    } wrong[] = {{nullptr, 0}, {made.processor.Get(), 1}, {theirs.processor.Get(), 0}};
    for (const auto &target : wrong) {
        BOOL blEnabled = 5;
        context.VideoProcessorSetStreamSourceRect(target.pProcessor, target.nStream, TRUE, &rect);
        context.VideoProcessorGetStreamSourceRect(target.pProcessor, target.nStream, &blEnabled, nullptr);
        context.VideoProcessorSetStreamColorSpace(target.pProcessor, target.nStream, &space);
        context.VideoProcessorGetStreamColorSpace(target.pProcessor, target.nStream, nullptr);
        context.VideoProcessorSetStreamAutoProcessingMode(target.pProcessor, target.nStream, FALSE);
        context.VideoProcessorGetStreamAutoProcessingMode(target.pProcessor, target.nStream, &blEnabled);
        EXPECT_EQ(blEnabled, 5);
    }
    context.VideoProcessorSetStreamSourceRect(made.processor.Get(), 0, TRUE, nullptr);
    context.VideoProcessorSetStreamColorSpace(made.processor.Get(), 0, nullptr);
    EXPECT_EQ(RefusedCallCount(Method::VideoContextSetStreamSourceRect), 4U);
    EXPECT_EQ(RefusedCallCount(Method::VideoContextGetStreamSourceRect), 3U);
    EXPECT_EQ(RefusedCallCount(Method::VideoContextSetStreamColorSpace), 4U);
    EXPECT_EQ(RefusedCallCount(Method::VideoContextGetStreamColorSpace), 3U);
    EXPECT_EQ(RefusedCallCount(Method::VideoContextSetStreamAutoProcessingMode), 3U);
    EXPECT_EQ(RefusedCallCount(Method::VideoContextGetStreamAutoProcessingMode), 3U);
    BOOL blEnabled = TRUE;
    context.VideoProcessorGetStreamSourceRect(made.processor.Get(), 0, &blEnabled, nullptr);
    EXPECT_EQ(blEnabled, FALSE);
}

TEST_F(VideoObjectTest, BlitRefusesWrongArguments)
{
    const Device on;
    const Device other;
    const Processor made(on, 16, 16);
    const Processor theirs(other, 16, 16);
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 16, 16));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(16, 16));
    const ComPtr<ID3D11Texture2D> theirVideo = MakeTexture(other, VideoDesc(DXGI_FORMAT_NV12, 16, 16));
    const ComPtr<ID3D11Texture2D> theirTarget = MakeTexture(other, TargetDesc(16, 16));
    const ComPtr<ID3D11VideoProcessorInputView> input = made.InputView(video.Get(), 0);
    const ComPtr<ID3D11VideoProcessorOutputView> output = made.OutputView(target.Get());
    const ComPtr<ID3D11VideoProcessorInputView> theirInput = theirs.InputView(theirVideo.Get(), 0);
    const ComPtr<ID3D11VideoProcessorOutputView> theirOutput = theirs.OutputView(theirTarget.Get());
    D3D11_VIDEO_PROCESSOR_STREAM good = {};
    good.Enable = TRUE;
    good.pInputSurface = input.Get();
    ID3D11VideoProcessorInputView *pView = input.Get();
    const auto blit = [&](const D3D11_VIDEO_PROCESSOR_STREAM &stream) {
        return on.videoContext->VideoProcessorBlt(made.processor.Get(), output.Get(), 0, 1, &stream);
    };
    EXPECT_EQ(blit(good), S_OK);
    EXPECT_EQ(on.videoContext->VideoProcessorBlt(made.processor.Get(), output.Get(), 7, 1, &good), S_OK);
    const std::function<void(D3D11_VIDEO_PROCESSOR_STREAM &)> wrong[] = {
        [](auto &stream) { stream.pInputSurface = nullptr; },
        [&](auto &stream) { stream.pInputSurface = theirInput.Get(); },
        [](auto &stream) { stream.OutputIndex = 1; },
        [](auto &stream) { stream.PastFrames = 1; },
        [](auto &stream) { stream.FutureFrames = 1; },
        [&](auto &stream) { stream.pInputSurfaceRight = pView; },
        [&](auto &stream) { stream.ppPastSurfacesRight = &pView; },
        [&](auto &stream) { stream.ppFutureSurfacesRight = &pView; },
    };
    for (std::size_t i = 0; i < std::size(wrong); ++i) {
        D3D11_VIDEO_PROCESSOR_STREAM stream = good;
        wrong[i](stream);
        EXPECT_EQ(blit(stream), E_INVALIDARG) << "number " << i;
    }
    ID3D11VideoContext &context = *on.videoContext.Get();
    ID3D11VideoProcessor *pProcessor = made.processor.Get();
    EXPECT_EQ(context.VideoProcessorBlt(nullptr, output.Get(), 0, 1, &good), E_INVALIDARG);
    EXPECT_EQ(context.VideoProcessorBlt(theirs.processor.Get(), output.Get(), 0, 1, &good), E_INVALIDARG);
    EXPECT_EQ(context.VideoProcessorBlt(pProcessor, nullptr, 0, 1, &good), E_INVALIDARG);
    EXPECT_EQ(context.VideoProcessorBlt(pProcessor, theirOutput.Get(), 0, 1, &good), E_INVALIDARG);
    EXPECT_EQ(context.VideoProcessorBlt(pProcessor, output.Get(), 0, 0, &good), E_INVALIDARG);
    EXPECT_EQ(context.VideoProcessorBlt(pProcessor, output.Get(), 0, 2, &good), E_INVALIDARG);
    EXPECT_EQ(context.VideoProcessorBlt(pProcessor, output.Get(), 0, 1, nullptr), E_INVALIDARG);
    const RECT rects[] = {{-1, 0, 8, 8}, {0, -1, 8, 8}, {0, 0, 17, 16}, {0, 0, 16, 17},
                          {8, 8, 8, 12}, {8, 8, 12, 8}, {12, 0, 4, 8},  {0, 12, 8, 4}};
    for (const RECT &rect : rects) {
        made.SetSourceRect(rect.left, rect.top, rect.right, rect.bottom);
        EXPECT_EQ(blit(good), E_INVALIDARG) << rect.left << ' ' << rect.top << ' ' << rect.right;
    }
    EXPECT_EQ(RefusedCallCount(Method::VideoContextVideoProcessorBlt),
              std::size(wrong) + 7 + std::size(rects));
    context.VideoProcessorSetStreamSourceRect(pProcessor, 0, FALSE, nullptr);
    EXPECT_EQ(blit(good), S_OK);
}
