#include "DeviceRig.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <vector>

using namespace rig;
using softd3d11::FindSharedImage;
using softd3d11::LiveObjects;
using softd3d11::SharedImage;

namespace {

using SharingTest = SoftDeviceTest;

std::vector<std::uint8_t> PixelsOf(const SharedImage &image)
{
    const SharedImage::Pixels pixels = image.Lock();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pixels.pRows) % 64, 0U);
    EXPECT_GE(pixels.nPitch, image.Width() * 4U);
    std::vector<std::uint8_t> bytes;
    for (UINT y = 0; y < image.Height(); ++y) {
        const std::uint8_t *pRow = pixels.pRows + y * pixels.nPitch;
        bytes.insert(bytes.end(), pRow, pRow + image.Width() * std::size_t{4});
    }
    return bytes;
}

} // namespace

TEST_F(SharingTest, GivesAHandleOnlyToSharedTextures)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> shared = MakeTexture(on, TargetDesc(4, 4));
    D3D11_TEXTURE2D_DESC desc = TargetDesc(4, 4);
    desc.MiscFlags = 0;
    const ComPtr<ID3D11Texture2D> alone = MakeTexture(on, desc);
    ComPtr<IDXGIResource> resource;
    ASSERT_EQ(alone.As(IID_IDXGIResource, resource), S_OK);
    HANDLE hShared = &desc;
    EXPECT_EQ(resource->GetSharedHandle(&hShared), E_INVALIDARG);
    EXPECT_EQ(hShared, nullptr);
    ASSERT_EQ(shared.As(IID_IDXGIResource, resource), S_OK);
    EXPECT_EQ(resource->GetSharedHandle(nullptr), E_INVALIDARG);
    EXPECT_EQ(resource->GetSharedHandle(&hShared), S_OK);
    EXPECT_NE(hShared, nullptr);
    EXPECT_EQ(ShareHandle(shared.Get()), hShared);
}

TEST_F(SharingTest, TellsTheUsage)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> shared = MakeTexture(on, TargetDesc(4, 4));
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 4, 4));
    ComPtr<IDXGIResource> resource;
    DXGI_USAGE usage = 0;
    ASSERT_EQ(shared.As(IID_IDXGIResource, resource), S_OK);
    EXPECT_EQ(resource->GetUsage(&usage), S_OK);
    EXPECT_EQ(usage, static_cast<DXGI_USAGE>(DXGI_USAGE_SHADER_INPUT | DXGI_USAGE_RENDER_TARGET_OUTPUT |
                                             DXGI_USAGE_SHARED));
    ASSERT_EQ(video.As(IID_IDXGIResource, resource), S_OK);
    EXPECT_EQ(resource->GetUsage(&usage), S_OK);
    EXPECT_EQ(usage, 0U);
    EXPECT_EQ(resource->GetUsage(nullptr), E_INVALIDARG);
}

TEST_F(SharingTest, NeverGivesAHandleTwice)
{
    const Device on;
    std::set<HANDLE> handles;
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(handles.insert(ShareHandle(MakeTexture(on, TargetDesc(2, 2)).Get())).second);
    for (const HANDLE hShared : handles)
        EXPECT_EQ(FindSharedImage(hShared), nullptr);
}

TEST_F(SharingTest, OpensOnAnyDevice)
{
    const Device one;
    const Device other;
    ComPtr<ID3D11Texture2D> made = MakeTexture(one, TargetDesc(5, 3));
    const HANDLE hShared = ShareHandle(made.Get());
    ComPtr<ID3D11Texture2D> opened;
    ASSERT_EQ(
        other.device->OpenSharedResource(hShared, IID_ID3D11Texture2D, opened.ReleaseAndGetVoidAddressOf()),
        S_OK);
    EXPECT_EQ(LiveObjects(one.device.Get()), 1U);
    EXPECT_EQ(LiveObjects(other.device.Get()), 1U);
    ComPtr<ID3D11Device> owner;
    opened->GetDevice(owner.ReleaseAndGetAddressOf());
    EXPECT_EQ(owner.Get(), other.device.Get());
    EXPECT_EQ(ShareHandle(opened.Get()), hShared);

    const std::vector<std::uint8_t> bytes = RandomBytes(60, 30);
    one.context->UpdateSubresource(made.Get(), 0, nullptr, bytes.data(), 20, 0);
    EXPECT_EQ(ReadSlice(other, opened.Get(), 0), bytes);
    // They are one texture: nothing to copy.
    ComPtr<ID3D11Texture2D> again;
    ASSERT_EQ(
        one.device->OpenSharedResource(hShared, IID_ID3D11Texture2D, again.ReleaseAndGetVoidAddressOf()),
        S_OK);
    one.context->CopyResource(made.Get(), again.Get());
    EXPECT_EQ(softd3d11::RefusedCallCount(Method::ContextCopyResource), 1U);
    again.Reset();

    // The contents live with the last of them, and the handle too.
    made.Reset();
    EXPECT_EQ(ReadSlice(other, opened.Get(), 0), bytes);
    ASSERT_EQ(one.device->OpenSharedResource(hShared, IID_ID3D11Texture2D, made.ReleaseAndGetVoidAddressOf()),
              S_OK);
    EXPECT_EQ(ReadSlice(one, made.Get(), 0), bytes);
    made.Reset();
    opened.Reset();
    EXPECT_EQ(one.device->OpenSharedResource(hShared, IID_ID3D11Texture2D, made.ReleaseAndGetVoidAddressOf()),
              E_INVALIDARG);
}

TEST_F(SharingTest, RefusesToOpenWhatIsNotThere)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, TargetDesc(4, 4));
    void *pOpened = &pOpened;
    EXPECT_EQ(on.device->OpenSharedResource(nullptr, IID_ID3D11Texture2D, &pOpened), E_INVALIDARG);
    EXPECT_EQ(pOpened, nullptr);
    pOpened = &pOpened;
    EXPECT_EQ(on.device->OpenSharedResource(&pOpened, IID_ID3D11Texture2D, &pOpened), E_INVALIDARG);
    EXPECT_EQ(pOpened, nullptr);
    EXPECT_EQ(on.device->OpenSharedResource(ShareHandle(texture.Get()), IID_ID3D11Buffer, &pOpened),
              E_NOINTERFACE);
    EXPECT_EQ(on.device->OpenSharedResource(ShareHandle(texture.Get()), IID_ID3D11Texture2D, nullptr),
              E_INVALIDARG);
    EXPECT_EQ(LiveObjects(on.device.Get()), 1U);
}

TEST_F(SharingTest, ShowsTheImageBehindAHandle)
{
    const Device on;
    ComPtr<ID3D11Texture2D> texture = MakeTexture(on, TargetDesc(5, 3));
    const HANDLE hShared = ShareHandle(texture.Get());
    std::shared_ptr<SharedImage> pImage = FindSharedImage(hShared);
    ASSERT_NE(pImage, nullptr);
    EXPECT_EQ(pImage->Width(), 5U);
    EXPECT_EQ(pImage->Height(), 3U);
    EXPECT_EQ(FindSharedImage(hShared), pImage);
    EXPECT_EQ(FindSharedImage(nullptr), nullptr);
    EXPECT_EQ(FindSharedImage(texture.Get()), nullptr);

    const std::vector<std::uint8_t> bytes = RandomBytes(60, 31);
    on.context->UpdateSubresource(texture.Get(), 0, nullptr, bytes.data(), 20, 0);
    EXPECT_EQ(PixelsOf(*pImage), bytes);
    texture.Reset();
    EXPECT_EQ(LiveObjects(on.device.Get()), 0U);
    EXPECT_EQ(PixelsOf(*pImage), bytes); // whoever holds the image keeps the pixels
    EXPECT_EQ(FindSharedImage(hShared), pImage);
    pImage.reset();
    EXPECT_EQ(FindSharedImage(hShared), nullptr);
}

TEST_F(SharingTest, HasImagesOfPlainBgraOnly)
{
    const Device on;
    D3D11_TEXTURE2D_DESC video = VideoDesc(DXGI_FORMAT_NV12, 4, 4);
    video.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
    D3D11_TEXTURE2D_DESC array = TargetDesc(4, 4);
    array.ArraySize = 2;
    const ComPtr<ID3D11Texture2D> videoTexture = MakeTexture(on, video);
    const ComPtr<ID3D11Texture2D> arrayTexture = MakeTexture(on, array);
    EXPECT_EQ(FindSharedImage(ShareHandle(videoTexture.Get())), nullptr);
    EXPECT_EQ(FindSharedImage(ShareHandle(arrayTexture.Get())), nullptr);
    ComPtr<ID3D11Texture2D> opened;
    EXPECT_EQ(on.device->OpenSharedResource(ShareHandle(videoTexture.Get()), IID_ID3D11Texture2D,
                                            opened.ReleaseAndGetVoidAddressOf()),
              S_OK);
}

TEST_F(SharingTest, TellsListenersOfEveryWrite)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, TargetDesc(4, 4));
    const ComPtr<ID3D11Texture2D> source = MakeTexture(on, TargetDesc(4, 4));
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 4, 4));
    const Processor processor(on, 4, 4);
    const std::shared_ptr<SharedImage> pImage = FindSharedImage(ShareHandle(texture.Get()));
    const std::vector<std::uint8_t> bytes = RandomBytes(64, 32);
    int nFirst = 0;
    int nSecond = 0;
    // A listener is called outside every lock: it may read the pixels.
    const std::uint64_t nListener = pImage->AddListener([&] { nFirst += PixelsOf(*pImage).empty() ? 0 : 1; });
    const std::uint64_t nOther = pImage->AddListener([&] { ++nSecond; });
    EXPECT_NE(nListener, 0U);
    EXPECT_NE(nListener, nOther);

    const std::function<void()> writes[] = {
        [&] { on.context->UpdateSubresource(texture.Get(), 0, nullptr, bytes.data(), 16, 0); },
        [&] { on.context->CopyResource(texture.Get(), source.Get()); },
        [&] { on.context->CopySubresourceRegion(texture.Get(), 0, 0, 0, 0, source.Get(), 0, nullptr); },
        [&] { EXPECT_EQ(processor.Blt(video.Get(), 0, texture.Get()), S_OK); },
    };
    int nWrites = 0;
    for (const auto &write : writes) {
        write();
        ++nWrites;
        EXPECT_EQ(nFirst, nWrites);
        EXPECT_EQ(nSecond, nWrites);
        EXPECT_EQ(pImage->Generation(), static_cast<std::uint64_t>(nWrites));
    }
    pImage->RemoveListener(nListener);
    pImage->RemoveListener(nListener);
    pImage->RemoveListener(12345);
    writes[0]();
    EXPECT_EQ(nFirst, nWrites);
    EXPECT_EQ(nSecond, nWrites + 1);

    // What writes nothing tells nothing.
    on.context->UpdateSubresource(texture.Get(), 1, nullptr, bytes.data(), 16, 0);
    on.context->CopyResource(source.Get(), texture.Get());
    ReadSlice(on, texture.Get(), 0);
    EXPECT_EQ(nSecond, nWrites + 1);
    EXPECT_EQ(pImage->Generation(), static_cast<std::uint64_t>(nWrites) + 1);
    pImage->RemoveListener(nOther);
}

TEST_F(SharingTest, LetsAListenerRemoveItself)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, TargetDesc(2, 2));
    const std::shared_ptr<SharedImage> pImage = FindSharedImage(ShareHandle(texture.Get()));
    int nCalls = 0;
    std::uint64_t nListener = 0;
    nListener = pImage->AddListener([&] {
        ++nCalls;
        pImage->RemoveListener(nListener);
    });
    const std::vector<std::uint8_t> bytes(16);
    on.context->UpdateSubresource(texture.Get(), 0, nullptr, bytes.data(), 8, 0);
    on.context->UpdateSubresource(texture.Get(), 0, nullptr, bytes.data(), 8, 0);
    EXPECT_EQ(nCalls, 1);
}
