#include "DeviceRig.h"

#include <atomic>
#include <cctype>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace rig;
using softd3d11::CanFail;
using softd3d11::FailCall;
using softd3d11::LiveObjects;

namespace {

constexpr HRESULT kFailure = static_cast<HRESULT>(0x887A0005); // the device is gone

// Everything that the methods that can fail are called with.
struct Stage
{
    Device on;
    ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 8, 8, 2));
    ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(8, 8));
    ComPtr<ID3D11Texture2D> staging = MakeTexture(on, StagingDesc(DXGI_FORMAT_NV12, 8, 8));
    HANDLE hShared = ShareHandle(target.Get());
    ComPtr<IDXGIResource> resource = [this] {
        ComPtr<IDXGIResource> found;
        EXPECT_EQ(target.As(IID_IDXGIResource, found), S_OK);
        return found;
    }();
    Processor processor{on, 8, 8};
    ComPtr<ID3D11VideoProcessorInputView> input = processor.InputView(video.Get(), 0);
    ComPtr<ID3D11VideoProcessorOutputView> output = processor.OutputView(target.Get());
};

// Calls the method rightly and releases what comes of it. The last argument gets what a caller would find
// where an object is expected; it is left alone by methods that give none.
using Caller = std::function<HRESULT(Stage &, void *&)>;

template <class Interface> HRESULT Drop(HRESULT hr, Interface *pObject, void *&pResult)
{
    pResult = pObject;
    if (pObject != nullptr)
        pObject->Release();
    return hr;
}

HRESULT CallQuery(IUnknown *pObject, void *&pResult)
{
    void *pFound = pObject;
    const HRESULT hr = pObject->QueryInterface(IID_IUnknown, &pFound);
    return Drop(hr, static_cast<IUnknown *>(pFound), pResult);
}

std::map<Method, Caller> Callers()
{
    std::map<Method, Caller> callers;
    callers[Method::DeviceQueryInterface] = [](Stage &s, void *&p) {
        return CallQuery(s.on.device.Get(), p);
    };
    callers[Method::ContextQueryInterface] = [](Stage &s, void *&p) {
        return CallQuery(s.on.context.Get(), p);
    };
    callers[Method::TextureQueryInterface] = [](Stage &s, void *&p) { return CallQuery(s.target.Get(), p); };
    callers[Method::OtherQueryInterface] = [](Stage &s, void *&p) { return CallQuery(s.input.Get(), p); };
    callers[Method::DeviceCreateTexture2D] = [](Stage &s, void *&p) {
        const D3D11_TEXTURE2D_DESC desc = TargetDesc(4, 4);
        auto *pTexture = s.target.Get();
        const HRESULT hr = s.on.device->CreateTexture2D(&desc, nullptr, &pTexture);
        return Drop(hr, pTexture, p);
    };
    callers[Method::DeviceOpenSharedResource] = [](Stage &s, void *&p) {
        void *pOpened = &s;
        const HRESULT hr = s.on.device->OpenSharedResource(s.hShared, IID_ID3D11Texture2D, &pOpened);
        return Drop(hr, static_cast<ID3D11Texture2D *>(pOpened), p);
    };
    callers[Method::DeviceCheckFormatSupport] = [](Stage &s, void *&) {
        UINT nSupport = 0;
        return s.on.device->CheckFormatSupport(DXGI_FORMAT_NV12, &nSupport);
    };
    callers[Method::DeviceGetDeviceRemovedReason] = [](Stage &s, void *&) {
        return s.on.device->GetDeviceRemovedReason();
    };
    callers[Method::ContextMap] = [](Stage &s, void *&p) {
        D3D11_MAPPED_SUBRESOURCE mapped = {&s, 1, 1};
        const HRESULT hr = s.on.context->Map(s.staging.Get(), 0, D3D11_MAP_READ, 0, &mapped);
        if (SUCCEEDED(hr))
            s.on.context->Unmap(s.staging.Get(), 0);
        p = mapped.pData;
        return hr;
    };
    callers[Method::ResourceGetSharedHandle] = [](Stage &s, void *&p) {
        HANDLE hShared = &s;
        const HRESULT hr = s.resource->GetSharedHandle(&hShared);
        p = hShared;
        return hr;
    };
    callers[Method::ResourceGetUsage] = [](Stage &s, void *&) {
        DXGI_USAGE usage = 0;
        return s.resource->GetUsage(&usage);
    };
    callers[Method::ResourceGetDevice] = [](Stage &s, void *&p) {
        void *pDevice = &s;
        const HRESULT hr = s.resource->GetDevice(IID_ID3D11Device, &pDevice);
        return Drop(hr, static_cast<ID3D11Device *>(pDevice), p);
    };
    callers[Method::ResourceSetEvictionPriority] = [](Stage &s, void *&) {
        return s.resource->SetEvictionPriority(DXGI_RESOURCE_PRIORITY_HIGH);
    };
    callers[Method::ResourceGetEvictionPriority] = [](Stage &s, void *&) {
        UINT nPriority = 0;
        return s.resource->GetEvictionPriority(&nPriority);
    };
    callers[Method::VideoDeviceCreateVideoProcessorEnumerator] = [](Stage &s, void *&p) {
        const D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc = ContentDesc(8, 8);
        auto *pEnumerator = s.processor.enumerator.Get();
        const HRESULT hr = s.on.videoDevice->CreateVideoProcessorEnumerator(&desc, &pEnumerator);
        return Drop(hr, pEnumerator, p);
    };
    callers[Method::VideoDeviceCreateVideoProcessor] = [](Stage &s, void *&p) {
        auto *pProcessor = s.processor.processor.Get();
        const HRESULT hr =
            s.on.videoDevice->CreateVideoProcessor(s.processor.enumerator.Get(), 0, &pProcessor);
        return Drop(hr, pProcessor, p);
    };
    callers[Method::VideoDeviceCreateVideoProcessorInputView] = [](Stage &s, void *&p) {
        const D3D11_VIDEO_PROCESSOR_INPUT_VIEW_DESC desc = InputViewDesc(1);
        auto *pView = s.input.Get();
        const HRESULT hr = s.on.videoDevice->CreateVideoProcessorInputView(
            s.video.Get(), s.processor.enumerator.Get(), &desc, &pView);
        return Drop(hr, pView, p);
    };
    callers[Method::VideoDeviceCreateVideoProcessorOutputView] = [](Stage &s, void *&p) {
        const D3D11_VIDEO_PROCESSOR_OUTPUT_VIEW_DESC desc = OutputViewDesc();
        auto *pView = s.output.Get();
        const HRESULT hr = s.on.videoDevice->CreateVideoProcessorOutputView(
            s.target.Get(), s.processor.enumerator.Get(), &desc, &pView);
        return Drop(hr, pView, p);
    };
    callers[Method::EnumeratorCheckVideoProcessorFormat] = [](Stage &s, void *&) {
        UINT nFlags = 0;
        return s.processor.enumerator->CheckVideoProcessorFormat(DXGI_FORMAT_NV12, &nFlags);
    };
    callers[Method::EnumeratorGetVideoProcessorContentDesc] = [](Stage &s, void *&) {
        D3D11_VIDEO_PROCESSOR_CONTENT_DESC desc;
        return s.processor.enumerator->GetVideoProcessorContentDesc(&desc);
    };
    callers[Method::EnumeratorGetVideoProcessorCaps] = [](Stage &s, void *&) {
        D3D11_VIDEO_PROCESSOR_CAPS caps;
        return s.processor.enumerator->GetVideoProcessorCaps(&caps);
    };
    callers[Method::EnumeratorGetVideoProcessorRateConversionCaps] = [](Stage &s, void *&) {
        D3D11_VIDEO_PROCESSOR_RATE_CONVERSION_CAPS caps;
        return s.processor.enumerator->GetVideoProcessorRateConversionCaps(0, &caps);
    };
    callers[Method::VideoContextVideoProcessorBlt] = [](Stage &s, void *&) {
        D3D11_VIDEO_PROCESSOR_STREAM stream = {};
        stream.Enable = TRUE;
        stream.pInputSurface = s.input.Get();
        return s.on.videoContext->VideoProcessorBlt(s.processor.processor.Get(), s.output.Get(), 0, 1,
                                                    &stream);
    };
    return callers;
}

std::vector<Method> FailingMethods()
{
    std::vector<Method> methods;
    for (unsigned i = 0; i < static_cast<unsigned>(Method::Count); ++i)
        if (CanFail(static_cast<Method>(i)))
            methods.push_back(static_cast<Method>(i));
    return methods;
}

class FailureTest : public SoftDeviceTest, public ::testing::WithParamInterface<Method>
{
};

std::string NameOf(const ::testing::TestParamInfo<Method> &info)
{
    std::string name;
    for (const char c : std::string(softd3d11::MethodName(info.param)))
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            name += c;
    return name;
}

using InstrumentationTest = SoftDeviceTest;

HRESULT Poll(const Device &on)
{
    return on.device->GetDeviceRemovedReason();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Methods, FailureTest, ::testing::ValuesIn(FailingMethods()), NameOf);

TEST_P(FailureTest, FailsWhenToldAndOnlyThen)
{
    const std::map<Method, Caller> callers = Callers();
    const auto caller = callers.find(GetParam());
    ASSERT_NE(caller, callers.end()) << "nobody calls " << softd3d11::MethodName(GetParam());
    Stage stage;
    const std::size_t nLive = LiveObjects();
    const std::uint64_t nCalls = softd3d11::CallCount(GetParam());
    const auto call = [&](HRESULT hrExpected) {
        void *const pUntouched = &stage;
        void *pResult = pUntouched;
        EXPECT_EQ(caller->second(stage, pResult), hrExpected);
        EXPECT_TRUE(SUCCEEDED(hrExpected) || pResult == nullptr || pResult == pUntouched);
        EXPECT_EQ(LiveObjects(), nLive);
    };
    call(S_OK);
    ASSERT_TRUE(FailCall(GetParam(), kFailure, 3));
    call(S_OK);
    call(S_OK);
    call(kFailure);
    call(S_OK);
    ASSERT_TRUE(FailCall(GetParam(), E_OUTOFMEMORY, 1, 2));
    call(E_OUTOFMEMORY);
    call(E_OUTOFMEMORY);
    call(S_OK);
    ASSERT_TRUE(FailCall(GetParam(), kFailure, 2, softd3d11::kAlways));
    call(S_OK);
    for (int i = 0; i < 20; ++i)
        call(kFailure);
    softd3d11::ClearFailures();
    call(S_OK);
    EXPECT_EQ(softd3d11::CallCount(GetParam()), nCalls + 30);
    EXPECT_EQ(softd3d11::RefusedCallCount(GetParam()), 0U);
}

TEST_F(InstrumentationTest, AFailedBlitWritesNothing)
{
    Stage stage;
    const std::vector<std::uint8_t> bytes = RandomBytes(256, 60);
    stage.on.context->UpdateSubresource(stage.target.Get(), 0, nullptr, bytes.data(), 32, 0);
    const auto pImage = softd3d11::FindSharedImage(stage.hShared);
    ASSERT_TRUE(FailCall(Method::VideoContextVideoProcessorBlt, kFailure));
    EXPECT_EQ(stage.processor.Blt(stage.video.Get(), 0, stage.target.Get()), kFailure);
    EXPECT_EQ(pImage->Generation(), 1U);
    EXPECT_EQ(ReadSlice(stage.on, stage.target.Get(), 0), bytes);
}

TEST_F(InstrumentationTest, EveryMethodHasItsName)
{
    std::set<std::string> names;
    for (unsigned i = 0; i < static_cast<unsigned>(Method::Count); ++i) {
        const std::string name = softd3d11::MethodName(static_cast<Method>(i));
        EXPECT_FALSE(name.empty());
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_STREQ(softd3d11::MethodName(Method::DeviceCreateTexture2D), "ID3D11Device::CreateTexture2D");
    EXPECT_STREQ(softd3d11::MethodName(Method::Count), "");
    EXPECT_FALSE(CanFail(Method::Count));
    EXPECT_EQ(softd3d11::CallCount(Method::Count), 0U);
    EXPECT_EQ(softd3d11::RefusedCallCount(Method::Count), 0U);
}

TEST_F(InstrumentationTest, RefusesFailuresThatCannotBe)
{
    const Device on;
    EXPECT_FALSE(FailCall(Method::ContextUnmap, kFailure));
    EXPECT_FALSE(FailCall(Method::DeviceGetFeatureLevel, kFailure));
    EXPECT_FALSE(FailCall(Method::Count, kFailure));
    EXPECT_FALSE(FailCall(Method::DeviceGetDeviceRemovedReason, S_OK));
    EXPECT_FALSE(FailCall(Method::DeviceGetDeviceRemovedReason, S_FALSE));
    EXPECT_FALSE(FailCall(Method::DeviceGetDeviceRemovedReason, kFailure, 0));
    EXPECT_FALSE(FailCall(Method::DeviceGetDeviceRemovedReason, kFailure, 1, 0));
    EXPECT_EQ(Poll(on), S_OK);
}

TEST_F(InstrumentationTest, TheLastRequestCounts)
{
    const Device on;
    ASSERT_TRUE(FailCall(Method::DeviceGetDeviceRemovedReason, kFailure, 2));
    ASSERT_TRUE(FailCall(Method::DeviceGetDeviceRemovedReason, E_FAIL, 1));
    EXPECT_EQ(Poll(on), E_FAIL);
    EXPECT_EQ(Poll(on), S_OK);
    // One that cannot be leaves the one before in place.
    ASSERT_TRUE(FailCall(Method::DeviceGetDeviceRemovedReason, kFailure));
    EXPECT_FALSE(FailCall(Method::DeviceGetDeviceRemovedReason, S_OK));
    EXPECT_EQ(Poll(on), kFailure);
}

TEST_F(InstrumentationTest, CountsCallsUntilReset)
{
    const Device on;
    softd3d11::ResetCallCounts();
    for (int i = 0; i < 5; ++i)
        Poll(on);
    on.context->Flush();
    on.context->ClearState();
    EXPECT_EQ(softd3d11::CallCount(Method::DeviceGetDeviceRemovedReason), 5U);
    EXPECT_EQ(softd3d11::CallCount(Method::ContextFlush), 1U);
    EXPECT_EQ(softd3d11::CallCount(Method::ContextClearState), 1U);
    on.device->GetImmediateContext(nullptr);
    EXPECT_EQ(softd3d11::RefusedCallCount(Method::DeviceGetImmediateContext), 1U);
    softd3d11::ResetCallCounts();
    EXPECT_EQ(softd3d11::CallCount(Method::DeviceGetDeviceRemovedReason), 0U);
    EXPECT_EQ(softd3d11::RefusedCallCount(Method::DeviceGetImmediateContext), 0U);
}

TEST_F(InstrumentationTest, AFailedCallChangesNothing)
{
    Stage stage;
    ASSERT_EQ(stage.resource->SetEvictionPriority(DXGI_RESOURCE_PRIORITY_LOW), S_OK);
    ASSERT_TRUE(FailCall(Method::ResourceSetEvictionPriority, kFailure));
    EXPECT_EQ(stage.resource->SetEvictionPriority(DXGI_RESOURCE_PRIORITY_HIGH), kFailure);
    EXPECT_EQ(stage.target->GetEvictionPriority(), static_cast<UINT>(DXGI_RESOURCE_PRIORITY_LOW));
}

// A failure on demand comes before everything that could be wrong with the call.
TEST_F(InstrumentationTest, FailsCallsWithWrongArgumentsToo)
{
    Stage stage;
    const Device &on = stage.on;
    const std::pair<Method, std::function<HRESULT()>> calls[] = {
        {Method::DeviceQueryInterface, [&] { return on.device->QueryInterface(IID_IUnknown, nullptr); }},
        {Method::ContextQueryInterface, [&] { return on.context->QueryInterface(IID_IUnknown, nullptr); }},
        {Method::TextureQueryInterface, [&] { return stage.video->QueryInterface(IID_IUnknown, nullptr); }},
        {Method::OtherQueryInterface, [&] { return stage.input->QueryInterface(IID_IUnknown, nullptr); }},
        {Method::DeviceCreateTexture2D,
         [&] { return on.device->CreateTexture2D(nullptr, nullptr, nullptr); }},
        {Method::DeviceOpenSharedResource,
         [&] { return on.device->OpenSharedResource(nullptr, IID_IUnknown, nullptr); }},
        {Method::DeviceCheckFormatSupport,
         [&] { return on.device->CheckFormatSupport(DXGI_FORMAT_NV12, nullptr); }},
        {Method::ContextMap, [&] { return on.context->Map(nullptr, 0, D3D11_MAP_READ, 0, nullptr); }},
        {Method::ResourceGetSharedHandle, [&] { return stage.resource->GetSharedHandle(nullptr); }},
        {Method::ResourceGetUsage, [&] { return stage.resource->GetUsage(nullptr); }},
        {Method::ResourceGetDevice, [&] { return stage.resource->GetDevice(IID_IUnknown, nullptr); }},
        {Method::ResourceGetEvictionPriority, [&] { return stage.resource->GetEvictionPriority(nullptr); }},
        {Method::VideoDeviceCreateVideoProcessorEnumerator,
         [&] { return on.videoDevice->CreateVideoProcessorEnumerator(nullptr, nullptr); }},
        {Method::VideoDeviceCreateVideoProcessor,
         [&] { return on.videoDevice->CreateVideoProcessor(nullptr, 7, nullptr); }},
        {Method::EnumeratorCheckVideoProcessorFormat,
         [&] { return stage.processor.enumerator->CheckVideoProcessorFormat(DXGI_FORMAT_NV12, nullptr); }},
        {Method::EnumeratorGetVideoProcessorContentDesc,
         [&] { return stage.processor.enumerator->GetVideoProcessorContentDesc(nullptr); }},
        {Method::EnumeratorGetVideoProcessorCaps,
         [&] { return stage.processor.enumerator->GetVideoProcessorCaps(nullptr); }},
        {Method::EnumeratorGetVideoProcessorRateConversionCaps,
         [&] { return stage.processor.enumerator->GetVideoProcessorRateConversionCaps(9, nullptr); }},
        {Method::VideoContextVideoProcessorBlt,
         [&] { return on.videoContext->VideoProcessorBlt(nullptr, nullptr, 0, 0, nullptr); }},
    };
    for (const auto &[method, call] : calls) {
        const std::uint64_t nRefused = softd3d11::RefusedCallCount(method);
        ASSERT_TRUE(FailCall(method, kFailure));
        EXPECT_EQ(call(), kFailure) << softd3d11::MethodName(method);
        EXPECT_EQ(softd3d11::RefusedCallCount(method), nRefused);
        const HRESULT hr = call();
        EXPECT_TRUE(hr == E_INVALIDARG || hr == E_POINTER) << softd3d11::MethodName(method);
        EXPECT_EQ(softd3d11::RefusedCallCount(method), nRefused + 1);
    }
}

// Other calls that need an interface neither count as QueryInterface nor fail with it.
TEST_F(InstrumentationTest, AsksItsOwnObjectsWithoutQueryInterface)
{
    Stage stage;
    softd3d11::ResetCallCounts();
    ASSERT_TRUE(FailCall(Method::TextureQueryInterface, kFailure, 1, softd3d11::kAlways));
    ASSERT_TRUE(FailCall(Method::DeviceQueryInterface, kFailure, 1, softd3d11::kAlways));
    ComPtr<ID3D11Texture2D> opened;
    EXPECT_EQ(stage.on.device->OpenSharedResource(stage.hShared, IID_ID3D11Texture2D,
                                                  opened.ReleaseAndGetVoidAddressOf()),
              S_OK);
    ComPtr<IDXGIResource> resource;
    EXPECT_EQ(stage.on.device->OpenSharedResource(stage.hShared, IID_ID3D11Buffer,
                                                  resource.ReleaseAndGetVoidAddressOf()),
              E_NOINTERFACE);
    ComPtr<ID3D11VideoDevice> device;
    EXPECT_EQ(stage.resource->GetDevice(IID_ID3D11VideoDevice, device.ReleaseAndGetVoidAddressOf()), S_OK);
    EXPECT_EQ(device.Get(), stage.on.videoDevice.Get());
    EXPECT_EQ(softd3d11::CallCount(Method::TextureQueryInterface), 0U);
    EXPECT_EQ(softd3d11::CallCount(Method::DeviceQueryInterface), 0U);
    EXPECT_EQ(softd3d11::CallCount(Method::ResourceGetDevice), 1U);
}

// A view or a blit asks objects who they are; that is nobody's call.
TEST_F(InstrumentationTest, DoesNotCountItsOwnQuestions)
{
    Stage stage;
    softd3d11::ResetCallCounts();
    EXPECT_EQ(stage.processor.Blt(stage.video.Get(), 0, stage.target.Get()), S_OK);
    EXPECT_EQ(softd3d11::CallCount(Method::TextureQueryInterface), 0U);
    EXPECT_EQ(softd3d11::CallCount(Method::OtherQueryInterface), 0U);
    EXPECT_EQ(softd3d11::CallCount(Method::VideoDeviceCreateVideoProcessorInputView), 1U);
    EXPECT_EQ(softd3d11::CallCount(Method::VideoDeviceCreateVideoProcessorOutputView), 1U);
    EXPECT_EQ(softd3d11::CallCount(Method::VideoContextVideoProcessorBlt), 1U);
}

TEST_F(InstrumentationTest, FailsTheExactNumberOfCallsOfManyThreads)
{
    const Device on;
    constexpr int kThreads = 4;
    constexpr int kCalls = 2000;
    softd3d11::ResetCallCounts();
    ASSERT_TRUE(FailCall(Method::DeviceGetDeviceRemovedReason, kFailure, 1000, 777));
    std::atomic<int> nFailed{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < kCalls; ++n)
                nFailed += FAILED(Poll(on)) ? 1 : 0;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(nFailed, 777);
    EXPECT_EQ(softd3d11::CallCount(Method::DeviceGetDeviceRemovedReason), std::uint64_t{kThreads} * kCalls);
}
