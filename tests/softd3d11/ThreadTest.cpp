// Objects used from many threads at once. What can go wrong here shows best under the sanitizers.
#include "DeviceRig.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using namespace rig;
using softd3d11::FindSharedImage;
using softd3d11::LiveObjects;
using softd3d11::SharedImage;

namespace {

using ThreadTest = SoftDeviceTest;
constexpr int kThreads = 4;
constexpr int kRounds = 1000;

void RunThreads(const std::function<void(int)> &action)
{
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back(action, i);
    for (std::thread &thread : threads)
        thread.join();
}

// One colour all over, so that a torn picture shows.
std::vector<std::uint8_t> Flat(std::uint8_t nLuma)
{
    std::vector<std::uint8_t> bytes(64 * 32 * 3 / 2, 128);
    std::fill_n(bytes.begin(), 64 * 32, nLuma);
    return bytes;
}

bool IsFlat(const SharedImage &image)
{
    const SharedImage::Pixels pixels = image.Lock();
    for (UINT y = 0; y < image.Height(); ++y)
        for (UINT x = 0; x < image.Width(); ++x)
            if (pixels.pRows[y * pixels.nPitch + x * std::size_t{4}] != pixels.pRows[0])
                return false;
    return true;
}

} // namespace

TEST_F(ThreadTest, MakesAndDropsObjects)
{
    const Device on;
    RunThreads([&](int) {
        for (int i = 0; i < kRounds; ++i) {
            const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 16, 16, 2));
            const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(16, 16));
            const Processor processor(on, 16, 16);
            EXPECT_EQ(processor.Blt(video.Get(), 1, target.Get()), S_OK);
            EXPECT_NE(FindSharedImage(ShareHandle(target.Get())), nullptr);
        }
    });
    EXPECT_EQ(LiveObjects(on.device.Get()), 0U);
}

TEST_F(ThreadTest, KeepsADeviceForWhoeverHoldsItsContext)
{
    for (int i = 0; i < kRounds; ++i) {
        ComPtr<ID3D11Device> device;
        ASSERT_EQ(softd3d11::CreateDevice(device.ReleaseAndGetAddressOf()), S_OK);
        std::vector<ComPtr<ID3D11Device>> references(kThreads, device);
        device.Reset();
        RunThreads([&](int nThread) {
            ComPtr<ID3D11DeviceContext> context;
            references[static_cast<std::size_t>(nThread)]->GetImmediateContext(
                context.ReleaseAndGetAddressOf());
            references[static_cast<std::size_t>(nThread)].Reset();
            ComPtr<ID3D11Device> again;
            context->GetDevice(again.ReleaseAndGetAddressOf());
            EXPECT_EQ(again->GetFeatureLevel(), D3D_FEATURE_LEVEL_11_0);
        });
        EXPECT_EQ(LiveObjects(), 0U);
    }
}

TEST_F(ThreadTest, NeverShowsHalfAPicture)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 64, 32, kThreads));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(64, 32));
    const std::shared_ptr<SharedImage> pImage = FindSharedImage(ShareHandle(target.Get()));
    std::atomic<int> nTorn{0};
    std::atomic<int> nTold{0};
    RunThreads([&](int nThread) {
        const Processor processor(on, 64, 32);
        const auto nSlice = static_cast<UINT>(nThread);
        for (int i = 0; i < kRounds; ++i) {
            const std::vector<std::uint8_t> bytes = Flat(static_cast<std::uint8_t>(i + 50 * nThread));
            on.context->UpdateSubresource(video.Get(), nSlice, nullptr, bytes.data(), 64, 0);
            const std::uint64_t nListener = pImage->AddListener([&] { ++nTold; });
            EXPECT_EQ(processor.Blt(video.Get(), (nSlice + 1) % kThreads, target.Get()), S_OK);
            pImage->RemoveListener(nListener);
            nTorn += IsFlat(*pImage) ? 0 : 1;
        }
    });
    EXPECT_EQ(nTorn, 0);
    EXPECT_GE(nTold, kThreads * kRounds); // each at least of its own write
    EXPECT_EQ(pImage->Generation(), std::uint64_t{kThreads} * kRounds);
}

TEST_F(ThreadTest, CopiesInBothDirectionsAtOnce)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> one = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 64, 32));
    const ComPtr<ID3D11Texture2D> other = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 64, 32));
    WriteSlice(on, one.Get(), 0, Flat(77));
    WriteSlice(on, other.Get(), 0, Flat(77));
    RunThreads([&](int nThread) {
        ID3D11Texture2D *pTarget = nThread % 2 == 0 ? one.Get() : other.Get();
        ID3D11Texture2D *pSource = nThread % 2 == 0 ? other.Get() : one.Get();
        for (int i = 0; i < kRounds; ++i)
            on.context->CopyResource(pTarget, pSource);
    });
    EXPECT_EQ(ReadSlice(on, one.Get(), 0), Flat(77));
    EXPECT_EQ(ReadSlice(on, other.Get(), 0), Flat(77));
}

TEST_F(ThreadTest, MapsForOneThreadAtATime)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> staging = MakeTexture(on, StagingDesc(DXGI_FORMAT_NV12, 64, 32));
    int nShared = 0; // guarded by who has it mapped
    std::atomic<int> nMapped{0};
    RunThreads([&](int) {
        for (int i = 0; i < kRounds; ++i) {
            D3D11_MAPPED_SUBRESOURCE mapped = {};
            if (on.context->Map(staging.Get(), 0, D3D11_MAP_WRITE, 0, &mapped) == S_OK) {
                ++nShared;
                ++nMapped;
                static_cast<std::uint8_t *>(mapped.pData)[5] = static_cast<std::uint8_t>(nShared);
                on.context->Unmap(staging.Get(), 0);
            }
        }
    });
    EXPECT_GT(nMapped, 0);
    EXPECT_EQ(nShared, nMapped);
}

TEST_F(ThreadTest, SharesATextureBetweenTwoDevices)
{
    const Device one;
    const Device other;
    const ComPtr<ID3D11Texture2D> made = MakeTexture(one, TargetDesc(64, 32));
    const HANDLE hShared = ShareHandle(made.Get());
    std::atomic<int> nTorn{0};
    RunThreads([&](int nThread) {
        const Device &on = nThread % 2 == 0 ? one : other;
        ComPtr<ID3D11Texture2D> opened;
        const std::vector<std::uint8_t> bytes(std::size_t{64} * 32 * 4, static_cast<std::uint8_t>(nThread));
        for (int i = 0; i < kRounds; ++i) {
            ASSERT_EQ(on.device->OpenSharedResource(hShared, IID_ID3D11Texture2D,
                                                    opened.ReleaseAndGetVoidAddressOf()),
                      S_OK);
            on.context->UpdateSubresource(opened.Get(), 0, nullptr, bytes.data(), 64 * 4, 0);
            nTorn += IsFlat(*FindSharedImage(hShared)) ? 0 : 1;
        }
    });
    EXPECT_EQ(nTorn, 0);
}

TEST_F(ThreadTest, BlitsOnTwoDevicesIntoOneSharedOutput)
{
    const Device one;
    const Device other;
    const ComPtr<ID3D11Texture2D> made = MakeTexture(one, TargetDesc(64, 32));
    const HANDLE hShared = ShareHandle(made.Get());
    std::atomic<int> nTorn{0};
    RunThreads([&](int nThread) {
        const Device &on = nThread % 2 == 0 ? one : other;
        ComPtr<ID3D11Texture2D> opened;
        ASSERT_EQ(
            on.device->OpenSharedResource(hShared, IID_ID3D11Texture2D, opened.ReleaseAndGetVoidAddressOf()),
            S_OK);
        const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 64, 32));
        WriteSlice(on, video.Get(), 0, Flat(static_cast<std::uint8_t>(40 + 50 * nThread)));
        const Processor processor(on, 64, 32);
        for (int i = 0; i < kRounds; ++i) {
            EXPECT_EQ(processor.Blt(video.Get(), 0, opened.Get()), S_OK);
            nTorn += IsFlat(*FindSharedImage(hShared)) ? 0 : 1;
        }
    });
    EXPECT_EQ(nTorn, 0);
    EXPECT_EQ(FindSharedImage(hShared)->Generation(), std::uint64_t{kThreads} * kRounds);
}

TEST_F(ThreadTest, HandsOutItsContextToManyAtOnce)
{
    Device on;
    on.videoContext.Reset();
    on.context.Reset(); // so that the context's count goes to zero and back all the time
    const ULONG nReferences = CountOf(on.device.Get());
    RunThreads([&](int) {
        for (int i = 0; i < 20 * kRounds; ++i) {
            ID3D11DeviceContext *pContext = nullptr;
            on.device->GetImmediateContext(&pContext);
            pContext->Release();
        }
    });
    EXPECT_EQ(CountOf(on.device.Get()), nReferences);
    EXPECT_EQ(LiveObjects(), 1U);
    EXPECT_EQ(LiveObjects(on.device.Get()), 0U);
}

// A decoder fills its next slice while the last one is being shown. Were it to wait, a write could not begin and
// end within one blit, but for the moments before it takes its lock and after.
TEST_F(ThreadTest, WritesASliceWhileAnotherIsBlitted)
{
    constexpr int kWritesInOneBlit = 100;
    constexpr int kMostBlits = 2000;
    const Device on;
    const ComPtr<ID3D11Texture2D> video = MakeTexture(on, VideoDesc(DXGI_FORMAT_NV12, 64, 32, 2));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, TargetDesc(2048, 2048));
    const Processor processor(on, 64, 32);
    std::atomic<int> nBlit{0}; // odd while one runs
    std::atomic<bool> blEnough{false};
    std::thread painter([&] {
        while (!blEnough && nBlit < 2 * kMostBlits) {
            ++nBlit;
            EXPECT_EQ(processor.Blt(video.Get(), 0, target.Get()), S_OK); // scaling takes its time
            ++nBlit;
        }
        blEnough = true;
    });
    const D3D11_BOX box = {0, 0, 0, 2, 2, 1};
    const std::vector<std::uint8_t> bytes = RandomBytes(6, 70);
    int nWrites = 0; // within the blit of that number
    int nWithin = 0;
    while (!blEnough) {
        const int nBefore = nBlit;
        on.context->UpdateSubresource(video.Get(), 1, &box, bytes.data(), 2, 0);
        if (nBefore % 2 == 0 || nBefore != nBlit)
            continue;
        nWrites = nBefore == nWithin ? nWrites + 1 : 1;
        nWithin = nBefore;
        blEnough = blEnough || nWrites >= kWritesInOneBlit;
    }
    painter.join();
    EXPECT_GE(nWrites, kWritesInOneBlit);
}

TEST_F(ThreadTest, CopiesEverythingOrNothingWhileSlicesAreMapped)
{
    const Device on;
    constexpr UINT kSlices = 3;
    const ComPtr<ID3D11Texture2D> source = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 64, 32, kSlices));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, StagingDesc(DXGI_FORMAT_NV12, 64, 32, kSlices));
    for (UINT i = 0; i < kSlices; ++i)
        WriteSlice(on, source.Get(), i, Flat(77));
    std::atomic<bool> blDone{false};
    std::thread mapper([&] {
        while (!blDone) {
            D3D11_MAPPED_SUBRESOURCE mapped = {};
            EXPECT_EQ(on.context->Map(target.Get(), kSlices - 1, D3D11_MAP_READ, 0, &mapped), S_OK);
            on.context->Unmap(target.Get(), kSlices - 1);
        }
    });
    const std::vector<std::uint8_t> black(Flat(0).size());
    for (int i = 0; i < 10 * kRounds; ++i) {
        on.context->UpdateSubresource(target.Get(), 0, nullptr, black.data(), 64, 0);
        const std::uint64_t nRefused = softd3d11::RefusedCallCount(Method::ContextCopyResource);
        on.context->CopyResource(target.Get(), source.Get());
        const bool blCopied = softd3d11::RefusedCallCount(Method::ContextCopyResource) == nRefused;
        EXPECT_EQ(ReadSlice(on, target.Get(), 0), blCopied ? Flat(77) : black);
    }
    blDone = true;
    mapper.join();
}
