#include "DeviceRig.h"

#include <array>
#include <vector>

using namespace rig;
using softd3d11::LiveObjects;

namespace {

using DeviceTest = SoftDeviceTest;

void *Query(IUnknown *pObject, REFIID iid)
{
    void *pFound = nullptr;
    EXPECT_EQ(pObject->QueryInterface(iid, &pFound), S_OK);
    static_cast<IUnknown *>(pFound)->Release();
    return pFound;
}

// What COM asks of an object: each of its interfaces leads to each other one, and always to the same
// IUnknown.
void ExpectOneIdentity(IUnknown *pObject, const std::vector<GUID> &interfaces)
{
    const ULONG nReferences = CountOf(pObject);
    void *pUnknown = Query(pObject, IID_IUnknown);
    for (const GUID &from : interfaces) {
        auto *pFrom = static_cast<IUnknown *>(Query(pObject, from));
        EXPECT_EQ(Query(pFrom, IID_IUnknown), pUnknown);
        EXPECT_EQ(Query(pFrom, from), pFrom);
        for (const GUID &to : interfaces)
            EXPECT_EQ(Query(pFrom, to), Query(pObject, to));
    }
    EXPECT_EQ(CountOf(pObject), nReferences);
}

void ExpectNoInterface(IUnknown *pObject, const GUID &iid)
{
    void *pFound = pObject;
    EXPECT_EQ(pObject->QueryInterface(iid, &pFound), E_NOINTERFACE);
    EXPECT_EQ(pFound, nullptr);
    EXPECT_EQ(pObject->QueryInterface(iid, nullptr), E_POINTER);
}

template <class Child> ID3D11Device *DeviceOf(Child *pChild)
{
    ComPtr<ID3D11Device> device;
    pChild->GetDevice(device.ReleaseAndGetAddressOf());
    return device.Get();
}

} // namespace

TEST_F(DeviceTest, IsMadeWithOneReference)
{
    EXPECT_EQ(softd3d11::CreateDevice(nullptr), E_POINTER);
    ID3D11Device *pDevice = nullptr;
    ASSERT_EQ(softd3d11::CreateDevice(&pDevice), S_OK);
    EXPECT_EQ(LiveObjects(), 1U);
    EXPECT_EQ(LiveObjects(pDevice), 0U);
    EXPECT_EQ(pDevice->AddRef(), 2U);
    EXPECT_EQ(pDevice->Release(), 1U);
    EXPECT_EQ(pDevice->Release(), 0U);
    EXPECT_EQ(LiveObjects(), 0U);
    EXPECT_EQ(LiveObjects(pDevice), 0U); // unknown by now
}

TEST_F(DeviceTest, TellsWhatItIs)
{
    const Device rig;
    EXPECT_EQ(rig.device->GetFeatureLevel(), D3D_FEATURE_LEVEL_11_0);
    EXPECT_EQ(rig.device->GetCreationFlags(),
              static_cast<UINT>(D3D11_CREATE_DEVICE_BGRA_SUPPORT | D3D11_CREATE_DEVICE_VIDEO_SUPPORT));
    EXPECT_EQ(rig.device->GetDeviceRemovedReason(), S_OK);
    EXPECT_EQ(rig.context->GetType(), D3D11_DEVICE_CONTEXT_IMMEDIATE);
    EXPECT_EQ(rig.context->GetContextFlags(), 0U);
}

TEST_F(DeviceTest, EveryObjectHasOneIdentity)
{
    const Device rig;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(rig, VideoDesc(DXGI_FORMAT_NV12, 4, 2));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(rig, TargetDesc(4, 2));
    const Processor processor(rig, 4, 2);
    ExpectOneIdentity(rig.device.Get(), {IID_ID3D11Device, IID_ID3D11VideoDevice});
    ExpectOneIdentity(rig.context.Get(),
                      {IID_ID3D11DeviceContext, IID_ID3D11VideoContext, IID_ID3D11DeviceChild});
    ExpectOneIdentity(target.Get(), {IID_ID3D11Texture2D, IID_ID3D11Resource, IID_ID3D11DeviceChild,
                                     IID_IDXGIResource, IID_IDXGIDeviceSubObject, IID_IDXGIObject});
    ExpectOneIdentity(processor.enumerator.Get(),
                      {IID_ID3D11VideoProcessorEnumerator, IID_ID3D11DeviceChild});
    ExpectOneIdentity(processor.processor.Get(), {IID_ID3D11VideoProcessor, IID_ID3D11DeviceChild});
    ExpectOneIdentity(processor.InputView(video.Get(), 0).Get(),
                      {IID_ID3D11VideoProcessorInputView, IID_ID3D11View, IID_ID3D11DeviceChild});
    ExpectOneIdentity(processor.OutputView(target.Get()).Get(),
                      {IID_ID3D11VideoProcessorOutputView, IID_ID3D11View, IID_ID3D11DeviceChild});
}

TEST_F(DeviceTest, RefusesInterfacesThatAnObjectHasNot)
{
    const Device rig;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(rig, VideoDesc(DXGI_FORMAT_NV12, 4, 2));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(rig, TargetDesc(4, 2));
    const Processor processor(rig, 4, 2);
    ExpectNoInterface(rig.device.Get(), IID_ID3D11DeviceContext);
    ExpectNoInterface(rig.context.Get(), IID_ID3D11Device);
    ExpectNoInterface(video.Get(), IID_ID3D11Buffer);
    ExpectNoInterface(processor.enumerator.Get(), IID_ID3D11VideoProcessor);
    ExpectNoInterface(processor.processor.Get(), IID_ID3D11VideoProcessorEnumerator);
    ExpectNoInterface(processor.InputView(video.Get(), 0).Get(), IID_ID3D11VideoProcessorOutputView);
    ExpectNoInterface(processor.OutputView(target.Get()).Get(), IID_ID3D11VideoProcessorInputView);
}

TEST_F(DeviceTest, HandsOutOneContextThatKeepsTheDevice)
{
    Device rig;
    ComPtr<ID3D11DeviceContext> again;
    rig.device->GetImmediateContext(again.ReleaseAndGetAddressOf());
    EXPECT_EQ(again.Get(), rig.context.Get());
    EXPECT_EQ(DeviceOf(rig.context.Get()), rig.device.Get());
    EXPECT_EQ(CountOf(rig.context.Get()), 3U); // two of the rig's interfaces, and again

    ID3D11Device *pDevice = rig.device.Get();
    rig.videoDevice.Reset();
    rig.device.Reset();
    EXPECT_EQ(LiveObjects(), 1U);
    EXPECT_EQ(DeviceOf(again.Get()), pDevice);
    again.Reset();
    rig.context.Reset();
    EXPECT_EQ(LiveObjects(), 1U);
    rig.videoContext.Reset();
    EXPECT_EQ(LiveObjects(), 0U);
}

TEST_F(DeviceTest, LivesAsLongAsItsChildren)
{
    ComPtr<ID3D11VideoProcessorInputView> view;
    {
        const Device rig;
        const ComPtr<ID3D11Texture2D> texture = MakeTexture(rig, VideoDesc(DXGI_FORMAT_NV12, 8, 8, 2));
        const Processor processor(rig, 8, 8);
        view = processor.InputView(texture.Get(), 1);
        EXPECT_EQ(LiveObjects(rig.device.Get()), 4U);
        EXPECT_EQ(LiveObjects(), 5U);
        EXPECT_EQ(DeviceOf(view.Get()), rig.device.Get());
        EXPECT_EQ(DeviceOf(texture.Get()), rig.device.Get());
        EXPECT_EQ(DeviceOf(processor.enumerator.Get()), rig.device.Get());
        EXPECT_EQ(DeviceOf(processor.processor.Get()), rig.device.Get());
    }
    // The view holds its texture, and both hold the device.
    EXPECT_EQ(LiveObjects(), 3U);
    ComPtr<ID3D11Resource> resource;
    view->GetResource(resource.ReleaseAndGetAddressOf());
    ComPtr<ID3D11Texture2D> texture;
    ASSERT_EQ(resource.As(IID_ID3D11Texture2D, texture), S_OK);
    D3D11_TEXTURE2D_DESC desc = {};
    texture->GetDesc(&desc);
    EXPECT_EQ(desc.ArraySize, 2U);
}

TEST_F(DeviceTest, CountsObjectsOfEachDevice)
{
    const Device one;
    const Device other;
    const ComPtr<ID3D11Texture2D> first = MakeTexture(one, TargetDesc(2, 2));
    ComPtr<ID3D11Texture2D> second = MakeTexture(other, TargetDesc(2, 2));
    const ComPtr<ID3D11Texture2D> third = MakeTexture(other, TargetDesc(2, 2));
    EXPECT_EQ(LiveObjects(one.device.Get()), 1U);
    EXPECT_EQ(LiveObjects(other.device.Get()), 2U);
    EXPECT_EQ(LiveObjects(), 5U);
    second.Reset();
    EXPECT_EQ(LiveObjects(one.device.Get()), 1U);
    EXPECT_EQ(LiveObjects(other.device.Get()), 1U);
    EXPECT_EQ(LiveObjects(nullptr), 0U);
}

TEST_F(DeviceTest, AnswersNotImplementedForTheRest)
{
    const Device rig;
    auto *pBuffer = reinterpret_cast<ID3D11Buffer *>(1);
    EXPECT_EQ(rig.device->CreateBuffer(nullptr, nullptr, &pBuffer), E_NOTIMPL);
    EXPECT_EQ(pBuffer, nullptr);
    auto *pView = reinterpret_cast<ID3D11ShaderResourceView *>(1);
    EXPECT_EQ(rig.device->CreateShaderResourceView(nullptr, nullptr, &pView), E_NOTIMPL);
    EXPECT_EQ(pView, nullptr);
    EXPECT_EQ(rig.device->CreateDeferredContext(0, nullptr), E_NOTIMPL);
    EXPECT_EQ(rig.device->SetPrivateData(IID_IUnknown, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(softd3d11::CallCount(Method::DeviceUnsupported), 4U);

    auto *pDecoder = reinterpret_cast<ID3D11VideoDecoder *>(1);
    EXPECT_EQ(rig.videoDevice->CreateVideoDecoder(nullptr, nullptr, &pDecoder), E_NOTIMPL);
    EXPECT_EQ(pDecoder, nullptr);
    EXPECT_EQ(rig.videoDevice->GetVideoDecoderProfileCount(), 0U);
    EXPECT_EQ(softd3d11::CallCount(Method::VideoDeviceUnsupported), 2U);

    std::array<ID3D11Buffer *, 3> buffers;
    buffers.fill(reinterpret_cast<ID3D11Buffer *>(1));
    rig.context->VSGetConstantBuffers(0, 2, buffers.data());
    EXPECT_EQ(buffers[0], nullptr);
    EXPECT_EQ(buffers[1], nullptr);
    EXPECT_NE(buffers[2], nullptr);
    rig.context->Draw(3, 0);
    EXPECT_EQ(rig.context->FinishCommandList(FALSE, nullptr), E_NOTIMPL);
    UINT nBytes = 7;
    EXPECT_EQ(rig.context->GetPrivateData(IID_IUnknown, &nBytes, nullptr), E_NOTIMPL);
    EXPECT_EQ(softd3d11::CallCount(Method::ContextUnsupported), 4U);

    EXPECT_EQ(rig.videoContext->DecoderEndFrame(nullptr), E_NOTIMPL);
    BOOL blEnabled = TRUE;
    RECT rect = {1, 2, 3, 4};
    rig.videoContext->VideoProcessorGetOutputTargetRect(nullptr, &blEnabled, &rect);
    EXPECT_EQ(blEnabled, FALSE);
    EXPECT_EQ(rect.bottom, 0);
    EXPECT_EQ(softd3d11::CallCount(Method::VideoContextUnsupported), 2U);
}

TEST_F(DeviceTest, KeepsNoPrivateData)
{
    const Device rig;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(rig, TargetDesc(2, 2));
    UINT nBytes = 0;
    EXPECT_EQ(texture->GetPrivateData(IID_IUnknown, &nBytes, nullptr), E_NOTIMPL);
    EXPECT_EQ(texture->SetPrivateData(IID_IUnknown, 0, nullptr), E_NOTIMPL);
    EXPECT_EQ(texture->SetPrivateDataInterface(IID_IUnknown, nullptr), E_NOTIMPL);
    ComPtr<IDXGIResource> resource;
    ASSERT_EQ(texture.As(IID_IDXGIResource, resource), S_OK);
    EXPECT_EQ(resource->SetPrivateData(IID_IUnknown, 0, nullptr), E_NOTIMPL);
    void *pParent = &nBytes;
    EXPECT_EQ(resource->GetParent(IID_IUnknown, &pParent), E_NOTIMPL);
    EXPECT_EQ(pParent, nullptr);
    EXPECT_EQ(softd3d11::CallCount(Method::OtherUnsupported), 5U);
}

TEST_F(DeviceTest, TellsWhatFormatsCanDo)
{
    const Device rig;
    UINT nSupport = 0;
    EXPECT_EQ(rig.device->CheckFormatSupport(DXGI_FORMAT_NV12, &nSupport), S_OK);
    EXPECT_NE(nSupport & D3D11_FORMAT_SUPPORT_TEXTURE2D, 0U);
    EXPECT_NE(nSupport & D3D11_FORMAT_SUPPORT_VIDEO_PROCESSOR_INPUT, 0U);
    EXPECT_EQ(nSupport & D3D11_FORMAT_SUPPORT_VIDEO_PROCESSOR_OUTPUT, 0U);
    EXPECT_EQ(rig.device->CheckFormatSupport(DXGI_FORMAT_B8G8R8A8_UNORM, &nSupport), S_OK);
    EXPECT_EQ(nSupport & D3D11_FORMAT_SUPPORT_VIDEO_PROCESSOR_INPUT, 0U);
    EXPECT_NE(nSupport & D3D11_FORMAT_SUPPORT_VIDEO_PROCESSOR_OUTPUT, 0U);
    EXPECT_EQ(rig.device->CheckFormatSupport(DXGI_FORMAT_R32_FLOAT, &nSupport), E_FAIL);
    EXPECT_EQ(nSupport, 0U);
    EXPECT_EQ(rig.device->CheckFormatSupport(DXGI_FORMAT_NV12, nullptr), E_INVALIDARG);
}
