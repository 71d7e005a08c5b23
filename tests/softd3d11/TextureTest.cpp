#include "DeviceRig.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <vector>

using namespace rig;
using softd3d11::LiveObjects;
using softd3d11::RefusedCallCount;

namespace {

using TextureTest = SoftDeviceTest;

HRESULT Create(const Device &on, const D3D11_TEXTURE2D_DESC &desc)
{
    auto *pTexture = reinterpret_cast<ID3D11Texture2D *>(1);
    const HRESULT hr = on.device->CreateTexture2D(&desc, nullptr, &pTexture);
    EXPECT_EQ(FAILED(hr), pTexture == nullptr);
    if (pTexture != nullptr)
        pTexture->Release();
    // Without a place for the result the same is said, and nothing made.
    EXPECT_EQ(on.device->CreateTexture2D(&desc, nullptr, nullptr), hr == S_OK ? S_FALSE : hr);
    EXPECT_EQ(LiveObjects(on.device.Get()), 0U);
    return hr;
}

D3D11_TEXTURE2D_DESC Changed(D3D11_TEXTURE2D_DESC desc,
                             const std::function<void(D3D11_TEXTURE2D_DESC &)> &change)
{
    change(desc);
    return desc;
}

constexpr DXGI_FORMAT kFormats[] = {DXGI_FORMAT_NV12, DXGI_FORMAT_P010, DXGI_FORMAT_B8G8R8A8_UNORM};

std::uint64_t Refused(Method method, const std::function<void()> &action)
{
    const std::uint64_t nBefore = RefusedCallCount(method);
    action();
    return RefusedCallCount(method) - nBefore;
}

} // namespace

TEST_F(TextureTest, TakesWhatDirect3DTakes)
{
    const Device on;
    for (const DXGI_FORMAT format : kFormats) {
        EXPECT_EQ(Create(on, Desc(format, 2, 2)), S_OK);
        EXPECT_EQ(Create(on, Desc(format, 16384, 2)), S_OK);
        EXPECT_EQ(Create(on, Desc(format, 64, 32, 20)), S_OK);
        EXPECT_EQ(Create(on, StagingDesc(format, 6, 4)), S_OK);
        EXPECT_EQ(Create(on, Changed(Desc(format, 6, 4),
                                     [](auto &desc) {
                                         desc.Usage = D3D11_USAGE_DYNAMIC;
                                         desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
                                         desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
                                     })),
                  S_OK);
    }
    EXPECT_EQ(Create(on, TargetDesc(1, 3)), S_OK);
    EXPECT_EQ(Create(on, VideoDesc(DXGI_FORMAT_NV12, 1920, 1088, 16)), S_OK);
}

TEST_F(TextureTest, RefusesWhatDirect3DForbids)
{
    const Device on;
    const D3D11_TEXTURE2D_DESC good = Desc(DXGI_FORMAT_NV12, 8, 8);
    const std::function<void(D3D11_TEXTURE2D_DESC &)> forbidden[] = {
        [](auto &desc) { desc.Width = 0; },
        [](auto &desc) { desc.Height = 0; },
        [](auto &desc) { desc.Width = 7; },
        [](auto &desc) { desc.Height = 7; },
        [](auto &desc) { desc.Width = 16386; },
        [](auto &desc) { desc.Height = 0xFFFFFFFE; },
        [](auto &desc) { desc.ArraySize = 0; },
        [](auto &desc) { desc.ArraySize = 2049; },
        [](auto &desc) { desc.SampleDesc.Count = 0; },
        [](auto &desc) { desc.Format = DXGI_FORMAT_R32_FLOAT; }, // no format of this device's
        [](auto &desc) { desc.MipLevels = 5; },                  // four lead down to one texel
        [](auto &desc) { desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE; },
        [](auto &desc) { desc.BindFlags = D3D11_BIND_DEPTH_STENCIL; },
        [](auto &desc) { desc.BindFlags = D3D11_BIND_VERTEX_BUFFER; },
        [](auto &desc) { desc.Usage = D3D11_USAGE_IMMUTABLE; }, // no initial data
        [](auto &desc) { desc.Usage = D3D11_USAGE_STAGING; },   // no access
        [](auto &desc) {
            desc.Usage = D3D11_USAGE_STAGING;
            desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
            desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
        },
        [](auto &desc) {
            desc.Usage = D3D11_USAGE_STAGING;
            desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
            desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED;
        },
        [](auto &desc) {
            desc.Usage = D3D11_USAGE_DYNAMIC;
            desc.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE; // bound to nothing
        },
        [](auto &desc) {
            desc.Usage = D3D11_USAGE_DYNAMIC;
            desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
            desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
        },
    };
    for (std::size_t i = 0; i < std::size(forbidden); ++i)
        EXPECT_EQ(Create(on, Changed(good, forbidden[i])), E_INVALIDARG) << "number " << i;
    EXPECT_EQ(Create(on, Changed(TargetDesc(4, 4), [](auto &desc) { desc.BindFlags = D3D11_BIND_DECODER; })),
              E_INVALIDARG);
    ComPtr<ID3D11Texture2D> texture;
    EXPECT_EQ(on.device->CreateTexture2D(nullptr, nullptr, texture.ReleaseAndGetAddressOf()), E_INVALIDARG);
}

TEST_F(TextureTest, SaysWhatItHasNotGot)
{
    const Device on;
    const D3D11_TEXTURE2D_DESC good = TargetDesc(8, 8);
    EXPECT_EQ(Create(on, Changed(good, [](auto &desc) { desc.MipLevels = 0; })), E_NOTIMPL);
    EXPECT_EQ(Create(on, Changed(good, [](auto &desc) { desc.MipLevels = 4; })), E_NOTIMPL);
    EXPECT_EQ(Create(on, Changed(good, [](auto &desc) { desc.SampleDesc.Count = 4; })), E_NOTIMPL);
    EXPECT_EQ(
        Create(on, Changed(good, [](auto &desc) { desc.MiscFlags = D3D11_RESOURCE_MISC_SHARED_KEYEDMUTEX; })),
        E_NOTIMPL);
    EXPECT_EQ(Create(on, Desc(DXGI_FORMAT_B8G8R8A8_UNORM, 16384, 16384, 2048)), E_OUTOFMEMORY);
}

TEST_F(TextureTest, TakesInitialData)
{
    const Device on;
    for (const DXGI_FORMAT format : kFormats) {
        const D3D11_TEXTURE2D_DESC desc = Desc(format, 6, 4, 3);
        const std::vector<std::uint8_t> slices[] = {RandomSlice(desc, 1), RandomSlice(desc, 2),
                                                    RandomSlice(desc, 3)};
        const auto nPitch = static_cast<UINT>(6 * TexelBytes(format));
        const D3D11_SUBRESOURCE_DATA data[] = {
            {slices[0].data(), nPitch, 0}, {slices[1].data(), nPitch, 0}, {slices[2].data(), nPitch, 0}};
        ComPtr<ID3D11Texture2D> texture;
        ASSERT_EQ(on.device->CreateTexture2D(&desc, data, texture.ReleaseAndGetAddressOf()), S_OK);
        for (UINT i = 0; i < 3; ++i)
            EXPECT_EQ(ReadSlice(on, texture.Get(), i), slices[i]) << "format " << format << " slice " << i;

        D3D11_SUBRESOURCE_DATA broken[] = {data[0], data[1], {slices[2].data(), nPitch - 1, 0}};
        EXPECT_EQ(on.device->CreateTexture2D(&desc, broken, texture.ReleaseAndGetAddressOf()), E_INVALIDARG);
        broken[2] = {nullptr, nPitch, 0};
        EXPECT_EQ(on.device->CreateTexture2D(&desc, broken, texture.ReleaseAndGetAddressOf()), E_INVALIDARG);
    }
}

TEST_F(TextureTest, StaysAsItWasMadeWhenImmutable)
{
    const Device on;
    D3D11_TEXTURE2D_DESC desc = Desc(DXGI_FORMAT_NV12, 6, 4);
    desc.Usage = D3D11_USAGE_IMMUTABLE;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    const std::vector<std::uint8_t> bytes = RandomSlice(desc, 4);
    const D3D11_SUBRESOURCE_DATA data = {bytes.data(), 6, 0};
    ComPtr<ID3D11Texture2D> texture;
    ASSERT_EQ(on.device->CreateTexture2D(&desc, &data, texture.ReleaseAndGetAddressOf()), S_OK);
    const std::vector<std::uint8_t> others = RandomSlice(desc, 5);
    const ComPtr<ID3D11Texture2D> source = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 6, 4));
    EXPECT_EQ(Refused(Method::ContextUpdateSubresource,
                      [&] { on.context->UpdateSubresource(texture.Get(), 0, nullptr, others.data(), 6, 0); }),
              1U);
    EXPECT_EQ(
        Refused(Method::ContextCopyResource, [&] { on.context->CopyResource(texture.Get(), source.Get()); }),
        1U);
    D3D11_MAPPED_SUBRESOURCE mapped = {};
    EXPECT_EQ(on.context->Map(texture.Get(), 0, D3D11_MAP_READ, 0, &mapped), E_INVALIDARG);
    EXPECT_EQ(ReadSlice(on, texture.Get(), 0), bytes);
}

TEST_F(TextureTest, BeginsBlackAndDescribesItself)
{
    const Device on;
    for (const DXGI_FORMAT format : kFormats) {
        const D3D11_TEXTURE2D_DESC made = Desc(format, 10, 6, 2);
        const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, made);
        D3D11_TEXTURE2D_DESC desc = {};
        texture->GetDesc(&desc);
        EXPECT_EQ(std::memcmp(&desc, &made, sizeof desc), 0);
        D3D11_RESOURCE_DIMENSION dimension = D3D11_RESOURCE_DIMENSION_UNKNOWN;
        texture->GetType(&dimension);
        EXPECT_EQ(dimension, D3D11_RESOURCE_DIMENSION_TEXTURE2D);
        for (const std::uint8_t n : ReadSlice(on, texture.Get(), 1))
            ASSERT_EQ(n, 0);
    }
}

TEST_F(TextureTest, KeepsTheEvictionPriority)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, TargetDesc(2, 2));
    ComPtr<IDXGIResource> resource;
    ASSERT_EQ(texture.As(IID_IDXGIResource, resource), S_OK);
    UINT nPriority = 0;
    EXPECT_EQ(resource->GetEvictionPriority(&nPriority), S_OK);
    EXPECT_EQ(nPriority, DXGI_RESOURCE_PRIORITY_NORMAL);
    texture->SetEvictionPriority(DXGI_RESOURCE_PRIORITY_HIGH);
    EXPECT_EQ(resource->GetEvictionPriority(&nPriority), S_OK);
    EXPECT_EQ(nPriority, DXGI_RESOURCE_PRIORITY_HIGH);
    EXPECT_EQ(resource->SetEvictionPriority(DXGI_RESOURCE_PRIORITY_LOW), S_OK);
    EXPECT_EQ(texture->GetEvictionPriority(), static_cast<UINT>(DXGI_RESOURCE_PRIORITY_LOW));
    EXPECT_EQ(resource->GetEvictionPriority(nullptr), E_INVALIDARG);
}

TEST_F(TextureTest, MapsByTheRules)
{
    const Device on;
    D3D11_TEXTURE2D_DESC readable = StagingDesc(DXGI_FORMAT_NV12, 6, 4);
    readable.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    D3D11_TEXTURE2D_DESC writable = StagingDesc(DXGI_FORMAT_NV12, 6, 4);
    writable.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    D3D11_TEXTURE2D_DESC dynamic = Desc(DXGI_FORMAT_NV12, 6, 4);
    dynamic.Usage = D3D11_USAGE_DYNAMIC;
    dynamic.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    dynamic.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;
    constexpr D3D11_MAP kTypes[] = {D3D11_MAP_READ, D3D11_MAP_WRITE, D3D11_MAP_READ_WRITE,
                                    D3D11_MAP_WRITE_DISCARD, D3D11_MAP_WRITE_NO_OVERWRITE};
    const struct
    {
        D3D11_TEXTURE2D_DESC desc;
        bool allowed[5];
    } cases[] = {
        {readable, {true, false, false, false, false}},
        {writable, {false, true, false, false, false}},
        {StagingDesc(DXGI_FORMAT_NV12, 6, 4), {true, true, true, false, false}},
        {dynamic, {false, false, false, true, false}},
        {Desc(DXGI_FORMAT_NV12, 6, 4), {false, false, false, false, false}},
    };
    for (const auto &expected : cases) {
        const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, expected.desc);
        for (std::size_t i = 0; i < std::size(kTypes); ++i) {
            D3D11_MAPPED_SUBRESOURCE mapped = {&mapped, 1, 1};
            EXPECT_EQ(on.context->Map(texture.Get(), 0, kTypes[i], 0, &mapped),
                      expected.allowed[i] ? S_OK : E_INVALIDARG);
            EXPECT_EQ(mapped.pData != nullptr, expected.allowed[i]);
            if (expected.allowed[i])
                on.context->Unmap(texture.Get(), 0);
        }
    }
}

TEST_F(TextureTest, MapsOnceAndUnmapsOnce)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, StagingDesc(DXGI_FORMAT_P010, 6, 4, 2));
    D3D11_MAPPED_SUBRESOURCE first = {};
    D3D11_MAPPED_SUBRESOURCE second = {};
    ASSERT_EQ(on.context->Map(texture.Get(), 0, D3D11_MAP_READ, D3D11_MAP_FLAG_DO_NOT_WAIT, &first), S_OK);
    EXPECT_GE(first.RowPitch, 12U);
    EXPECT_EQ(first.DepthPitch, first.RowPitch * 6);
    ASSERT_EQ(on.context->Map(texture.Get(), 1, D3D11_MAP_READ, 0, &second), S_OK);
    EXPECT_EQ(static_cast<std::uint8_t *>(second.pData) - static_cast<std::uint8_t *>(first.pData),
              static_cast<std::ptrdiff_t>(first.DepthPitch));
    EXPECT_EQ(on.context->Map(texture.Get(), 1, D3D11_MAP_READ, 0, &second), E_INVALIDARG);
    EXPECT_EQ(on.context->Map(texture.Get(), 2, D3D11_MAP_READ, 0, &second), E_INVALIDARG);
    EXPECT_EQ(on.context->Map(texture.Get(), 0, D3D11_MAP_READ, 1, &second), E_INVALIDARG);
    EXPECT_EQ(on.context->Map(texture.Get(), 0, D3D11_MAP_READ, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(on.context->Map(nullptr, 0, D3D11_MAP_READ, 0, &second), E_INVALIDARG);
    on.context->Unmap(texture.Get(), 0);
    on.context->Unmap(texture.Get(), 1);
    EXPECT_EQ(RefusedCallCount(Method::ContextUnmap), 0U);
    on.context->Unmap(texture.Get(), 1);
    on.context->Unmap(texture.Get(), 2);
    on.context->Unmap(nullptr, 0);
    EXPECT_EQ(RefusedCallCount(Method::ContextUnmap), 3U);
    EXPECT_EQ(on.context->Map(texture.Get(), 1, D3D11_MAP_READ, 0, &second), S_OK);
    on.context->Unmap(texture.Get(), 1);
}

TEST_F(TextureTest, LeavesMappedSlicesAlone)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> mappedTexture = MakeTexture(on, StagingDesc(DXGI_FORMAT_NV12, 6, 4, 2));
    const ComPtr<ID3D11Texture2D> other = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 6, 4, 2));
    const std::vector<std::uint8_t> bytes = RandomBytes(36, 6);
    D3D11_MAPPED_SUBRESOURCE mapped = {};
    ASSERT_EQ(on.context->Map(mappedTexture.Get(), 1, D3D11_MAP_READ, 0, &mapped), S_OK);
    ID3D11Texture2D *pMapped = mappedTexture.Get();
    ID3D11Texture2D *pOther = other.Get();
    EXPECT_EQ(Refused(Method::ContextUpdateSubresource,
                      [&] { on.context->UpdateSubresource(pMapped, 1, nullptr, bytes.data(), 6, 0); }),
              1U);
    EXPECT_EQ(Refused(Method::ContextCopySubresourceRegion,
                      [&] {
                          on.context->CopySubresourceRegion(pMapped, 1, 0, 0, 0, pOther, 0, nullptr);
                          on.context->CopySubresourceRegion(pOther, 0, 0, 0, 0, pMapped, 1, nullptr);
                      }),
              2U);
    // Slice 0 is not mapped, but a copy of everything is all or nothing.
    on.context->UpdateSubresource(pOther, 0, nullptr, bytes.data(), 6, 0);
    EXPECT_EQ(Refused(Method::ContextCopyResource, [&] { on.context->CopyResource(pMapped, pOther); }), 1U);
    EXPECT_EQ(Refused(Method::ContextUpdateSubresource,
                      [&] { on.context->UpdateSubresource(pMapped, 0, nullptr, bytes.data(), 6, 0); }),
              0U);
    on.context->Unmap(pMapped, 1);
    EXPECT_EQ(ReadSlice(on, pMapped, 1), std::vector<std::uint8_t>(36));
    EXPECT_EQ(ReadSlice(on, pMapped, 0), bytes);
}

namespace {

struct Region
{
    UINT nLeft, nTop, nRight, nBottom;
};

D3D11_BOX Box(const Region &region)
{
    return {region.nLeft, region.nTop, 0, region.nRight, region.nBottom, 1};
}

// Puts the texels of a region of one packed slice to a place in another, one byte at a time.
void PasteExpected(DXGI_FORMAT format, std::vector<std::uint8_t> &target, UINT nTargetWidth,
                   UINT nTargetHeight, UINT nLeft, UINT nTop, const std::vector<std::uint8_t> &source,
                   UINT nSourceWidth, UINT nSourceHeight, const Region &region)
{
    const std::size_t nTexel = TexelBytes(format);
    const std::size_t nTargetRow = nTargetWidth * nTexel;
    const std::size_t nSourceRow = nSourceWidth * nTexel;
    const bool blChroma = format != DXGI_FORMAT_B8G8R8A8_UNORM;
    for (std::size_t y = region.nTop; y < region.nBottom; ++y) {
        for (std::size_t n = region.nLeft * nTexel; n < region.nRight * nTexel; ++n) {
            const std::size_t nTo = n - region.nLeft * nTexel + nLeft * nTexel;
            const std::size_t nToRow = y - region.nTop + nTop;
            target[nToRow * nTargetRow + nTo] = source[y * nSourceRow + n];
            if (blChroma)
                target[(nTargetHeight + nToRow / 2) * nTargetRow + nTo] =
                    source[(nSourceHeight + y / 2) * nSourceRow + n];
        }
    }
}

} // namespace

TEST_F(TextureTest, UpdatesRegions)
{
    const Device on;
    const Region regions[] = {{0, 0, 10, 8}, {0, 0, 2, 2}, {8, 6, 10, 8}, {2, 4, 8, 6}};
    for (const DXGI_FORMAT format : kFormats) {
        for (const Region &region : regions) {
            const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, Desc(format, 10, 8, 2));
            std::vector<std::uint8_t> expected = RandomSlice(Desc(format, 10, 8), 7);
            on.context->UpdateSubresource(texture.Get(), 1, nullptr, expected.data(),
                                          static_cast<UINT>(10 * TexelBytes(format)), 0);
            const UINT nWidth = region.nRight - region.nLeft;
            const UINT nHeight = region.nBottom - region.nTop;
            // As a source with rows longer than needed; the last one ends with its last texel.
            const auto nPitch = static_cast<UINT>((nWidth + 4) * TexelBytes(format));
            const std::vector<std::uint8_t> padded = RandomSlice(Desc(format, nWidth + 4, nHeight), 8);
            std::vector<std::uint8_t> exact(
                padded.begin(), padded.end() - static_cast<std::ptrdiff_t>(4 * TexelBytes(format)));
            exact.shrink_to_fit();
            const D3D11_BOX box = Box(region);
            on.context->UpdateSubresource(texture.Get(), 1, &box, exact.data(), nPitch, 0);
            PasteExpected(format, expected, 10, 8, region.nLeft, region.nTop, padded, nWidth + 4, nHeight,
                          {0, 0, nWidth, nHeight});
            EXPECT_EQ(ReadSlice(on, texture.Get(), 1), expected)
                << "format " << format << " at " << region.nLeft;
            EXPECT_EQ(ReadSlice(on, texture.Get(), 0), std::vector<std::uint8_t>(expected.size()));
        }
    }
    EXPECT_EQ(RefusedCallCount(Method::ContextUpdateSubresource), 0U);
}

TEST_F(TextureTest, RefusesUpdatesThatDoNotFit)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 8, 8));
    const std::vector<std::uint8_t> bytes = RandomBytes(1000, 9);
    const auto update = [&](UINT nSlice, const D3D11_BOX *pBox, UINT nPitch) {
        return Refused(Method::ContextUpdateSubresource, [&] {
            on.context->UpdateSubresource(texture.Get(), nSlice, pBox, bytes.data(), nPitch, 0);
        });
    };
    EXPECT_EQ(update(1, nullptr, 8), 1U);
    EXPECT_EQ(update(0, nullptr, 7), 1U);
    for (const Region &region :
         {Region{0, 0, 10, 8}, Region{0, 0, 8, 10}, Region{1, 0, 8, 8}, Region{0, 1, 8, 8},
          Region{0, 0, 7, 8}, Region{0, 0, 8, 7}, Region{4, 4, 0xFFFFFFFE, 6}}) {
        const D3D11_BOX box = Box(region);
        EXPECT_EQ(update(0, &box, 100), 1U) << region.nLeft << ' ' << region.nRight << ' ' << region.nBottom;
    }
    const D3D11_BOX deep = {0, 0, 0, 8, 8, 2};
    EXPECT_EQ(update(0, &deep, 8), 1U);
    const D3D11_BOX empty = {4, 4, 0, 4, 8, 1}; // nothing to do, and nothing wrong with it
    EXPECT_EQ(update(0, &empty, 8), 0U);
    EXPECT_EQ(Refused(Method::ContextUpdateSubresource,
                      [&] { on.context->UpdateSubresource(texture.Get(), 0, nullptr, nullptr, 8, 0); }),
              1U);
    EXPECT_EQ(ReadSlice(on, texture.Get(), 0), std::vector<std::uint8_t>(96));
}

TEST_F(TextureTest, CopiesRegionsBetweenSlices)
{
    const Device on;
    const struct
    {
        UINT nLeft, nTop;
        Region from;
    } cases[] = {{0, 0, {0, 0, 10, 8}}, {4, 2, {0, 0, 6, 6}}, {0, 0, {8, 6, 10, 8}}, {12, 8, {2, 2, 6, 6}}};
    for (const DXGI_FORMAT format : kFormats) {
        for (const auto &copy : cases) {
            const ComPtr<ID3D11Texture2D> source = MakeTexture(on, Desc(format, 10, 8, 3));
            const ComPtr<ID3D11Texture2D> target = MakeTexture(on, Desc(format, 16, 12, 2));
            const std::vector<std::uint8_t> from = RandomSlice(Desc(format, 10, 8), 10);
            std::vector<std::uint8_t> expected = RandomSlice(Desc(format, 16, 12), 11);
            WriteSlice(on, source.Get(), 2, from);
            WriteSlice(on, target.Get(), 1, expected);
            const D3D11_BOX box = Box(copy.from);
            on.context->CopySubresourceRegion(target.Get(), 1, copy.nLeft, copy.nTop, 0, source.Get(), 2,
                                              &box);
            PasteExpected(format, expected, 16, 12, copy.nLeft, copy.nTop, from, 10, 8, copy.from);
            EXPECT_EQ(ReadSlice(on, target.Get(), 1), expected)
                << "format " << format << " at " << copy.nLeft;
        }
    }
    EXPECT_EQ(RefusedCallCount(Method::ContextCopySubresourceRegion), 0U);
}

TEST_F(TextureTest, CopiesFromOneSliceToAnotherOfTheSameTexture)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 6, 4, 2));
    const std::vector<std::uint8_t> bytes = RandomBytes(36, 12);
    WriteSlice(on, texture.Get(), 0, bytes);
    on.context->CopySubresourceRegion(texture.Get(), 1, 0, 0, 0, texture.Get(), 0, nullptr);
    EXPECT_EQ(ReadSlice(on, texture.Get(), 1), bytes);
}

TEST_F(TextureTest, RefusesCopiesThatDoNotFit)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> source = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 8, 8));
    const ComPtr<ID3D11Texture2D> target = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 10, 10));
    const ComPtr<ID3D11Texture2D> tenBits = MakeTexture(on, Desc(DXGI_FORMAT_P010, 8, 8));
    const auto copy = [&](ID3D11Texture2D *pTarget, UINT nSlice, UINT nLeft, UINT nTop, UINT nFront,
                          ID3D11Texture2D *pSource, UINT nSourceSlice, const D3D11_BOX *pBox) {
        return Refused(Method::ContextCopySubresourceRegion, [&] {
            on.context->CopySubresourceRegion(pTarget, nSlice, nLeft, nTop, nFront, pSource, nSourceSlice,
                                              pBox);
        });
    };
    EXPECT_EQ(copy(target.Get(), 0, 2, 2, 0, source.Get(), 0, nullptr), 0U);
    EXPECT_EQ(copy(target.Get(), 0, 4, 2, 0, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 2, 4, 0, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 1, 0, 0, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 0xFFFFFFFE, 0, 0, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 1, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 1, 0, 0, 0, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 0, source.Get(), 1, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 0, tenBits.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 0, target.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(nullptr, 0, 0, 0, 0, source.Get(), 0, nullptr), 1U);
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 0, nullptr, 0, nullptr), 1U);
    const D3D11_BOX tooFar = {4, 0, 0, 10, 8, 1};
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 0, source.Get(), 0, &tooFar), 1U);
    const D3D11_BOX empty = {4, 4, 0, 8, 4, 1};
    EXPECT_EQ(copy(target.Get(), 0, 0, 0, 0, source.Get(), 0, &empty), 0U);
}

TEST_F(TextureTest, CopiesWholeTextures)
{
    const Device on;
    for (const DXGI_FORMAT format : kFormats) {
        const ComPtr<ID3D11Texture2D> source = MakeTexture(on, Desc(format, 6, 4, 3));
        const ComPtr<ID3D11Texture2D> target = MakeTexture(on, StagingDesc(format, 6, 4, 3));
        std::vector<std::uint8_t> slices[3];
        for (UINT i = 0; i < 3; ++i) {
            slices[i] = RandomSlice(Desc(format, 6, 4), 20 + i);
            WriteSlice(on, source.Get(), i, slices[i]);
        }
        on.context->CopyResource(target.Get(), source.Get());
        for (UINT i = 0; i < 3; ++i)
            EXPECT_EQ(ReadSlice(on, target.Get(), i), slices[i]);
    }
    const ComPtr<ID3D11Texture2D> one = MakeTexture(on, Desc(DXGI_FORMAT_NV12, 6, 4));
    const D3D11_TEXTURE2D_DESC others[] = {Desc(DXGI_FORMAT_P010, 6, 4), Desc(DXGI_FORMAT_NV12, 8, 4),
                                           Desc(DXGI_FORMAT_NV12, 6, 6), Desc(DXGI_FORMAT_NV12, 6, 4, 2)};
    for (const D3D11_TEXTURE2D_DESC &desc : others) {
        const ComPtr<ID3D11Texture2D> other = MakeTexture(on, desc);
        EXPECT_EQ(
            Refused(Method::ContextCopyResource, [&] { on.context->CopyResource(one.Get(), other.Get()); }),
            1U);
    }
    EXPECT_EQ(Refused(Method::ContextCopyResource, [&] { on.context->CopyResource(one.Get(), one.Get()); }),
              1U);
    EXPECT_EQ(Refused(Method::ContextCopyResource, [&] { on.context->CopyResource(nullptr, one.Get()); }),
              1U);
}

TEST_F(TextureTest, KeepsDevicesApart)
{
    const Device on;
    const Device other;
    const ComPtr<ID3D11Texture2D> mine = MakeTexture(on, StagingDesc(DXGI_FORMAT_NV12, 6, 4));
    const ComPtr<ID3D11Texture2D> theirs = MakeTexture(other, StagingDesc(DXGI_FORMAT_NV12, 6, 4));
    D3D11_MAPPED_SUBRESOURCE mapped = {};
    EXPECT_EQ(on.context->Map(theirs.Get(), 0, D3D11_MAP_READ, 0, &mapped), E_INVALIDARG);
    on.context->CopyResource(mine.Get(), theirs.Get());
    on.context->CopyResource(theirs.Get(), mine.Get());
    EXPECT_EQ(RefusedCallCount(Method::ContextCopyResource), 2U);
    on.context->CopySubresourceRegion(theirs.Get(), 0, 0, 0, 0, mine.Get(), 0, nullptr);
    EXPECT_EQ(RefusedCallCount(Method::ContextCopySubresourceRegion), 1U);
    const std::vector<std::uint8_t> bytes(36);
    on.context->UpdateSubresource(theirs.Get(), 0, nullptr, bytes.data(), 6, 0);
    EXPECT_EQ(RefusedCallCount(Method::ContextUpdateSubresource), 1U);
}
