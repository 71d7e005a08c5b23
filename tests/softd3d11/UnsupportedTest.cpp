// What methods without a function leave in their outputs.
#include "DeviceRig.h"

#include <array>
#include <cstdint>

using namespace rig;

namespace {

using UnsupportedTest = SoftDeviceTest;

template <class Object> Object *Canary()
{
    return reinterpret_cast<Object *>(std::uintptr_t{0x5A5A5A50});
}

template <class Shader>
using GetShader = void (STDMETHODCALLTYPE ID3D11DeviceContext::*)(Shader **, ID3D11ClassInstance **, UINT *);

template <class Shader> void ExpectShaderCleared(ID3D11DeviceContext &context, GetShader<Shader> pGetShader)
{
    for (const UINT nRoom : {0U, 2U}) {
        auto *pShader = Canary<Shader>();
        std::array<ID3D11ClassInstance *, 3> instances;
        instances.fill(Canary<ID3D11ClassInstance>());
        UINT nCount = nRoom;
        (context.*pGetShader)(&pShader, instances.data(), &nCount);
        EXPECT_EQ(pShader, nullptr);
        EXPECT_EQ(nCount, 0U);
        for (UINT i = 0; i < instances.size(); ++i)
            EXPECT_EQ(instances[i], i < nRoom ? nullptr : Canary<ID3D11ClassInstance>())
                << i << " of " << nRoom;
    }
    std::array<ID3D11ClassInstance *, 1> one = {Canary<ID3D11ClassInstance>()};
    (context.*pGetShader)(nullptr, one.data(), nullptr);
    EXPECT_EQ(one[0], Canary<ID3D11ClassInstance>()) << "nobody said that there is room";
}

} // namespace

TEST_F(UnsupportedTest, GettersOfShadersKeepToTheRoomThatTheyHave)
{
    const Device on;
    ID3D11DeviceContext &context = *on.context.Get();
    ExpectShaderCleared<ID3D11VertexShader>(context, &ID3D11DeviceContext::VSGetShader);
    ExpectShaderCleared<ID3D11PixelShader>(context, &ID3D11DeviceContext::PSGetShader);
    ExpectShaderCleared<ID3D11GeometryShader>(context, &ID3D11DeviceContext::GSGetShader);
    ExpectShaderCleared<ID3D11HullShader>(context, &ID3D11DeviceContext::HSGetShader);
    ExpectShaderCleared<ID3D11DomainShader>(context, &ID3D11DeviceContext::DSGetShader);
    ExpectShaderCleared<ID3D11ComputeShader>(context, &ID3D11DeviceContext::CSGetShader);
    EXPECT_EQ(softd3d11::CallCount(Method::ContextUnsupported), 18U);
}

TEST_F(UnsupportedTest, OutputsOfTheDeviceAreCleared)
{
    const Device on;
    D3D11_COUNTER_INFO info = {D3D11_COUNTER_DEVICE_DEPENDENT_0, 7, 7};
    on.device->CheckCounterInfo(&info);
    EXPECT_EQ(info.LastDeviceDependentCounter, 0);
    EXPECT_EQ(info.NumSimultaneousCounters, 0U);
    EXPECT_EQ(info.NumDetectableParallelUnits, 0);
    D3D11_FEATURE_DATA_THREADING threading = {TRUE, TRUE};
    EXPECT_EQ(on.device->CheckFeatureSupport(D3D11_FEATURE_THREADING, &threading, sizeof threading),
              E_NOTIMPL);
    EXPECT_EQ(threading.DriverConcurrentCreates, FALSE);
    EXPECT_EQ(threading.DriverCommandLists, FALSE);
    EXPECT_EQ(on.device->CheckFeatureSupport(D3D11_FEATURE_THREADING, nullptr, 8), E_NOTIMPL);
}

TEST_F(UnsupportedTest, OutputsOfTheContextsAreCleared)
{
    const Device on;
    std::array<FLOAT, 5> factors = {1, 2, 3, 4, 5};
    auto *pBlendState = Canary<ID3D11BlendState>();
    UINT nMask = 7;
    on.context->OMGetBlendState(&pBlendState, factors.data(), &nMask);
    EXPECT_EQ(pBlendState, nullptr);
    EXPECT_EQ(factors, (std::array<FLOAT, 5>{0, 0, 0, 0, 5}));
    EXPECT_EQ(nMask, 0U);
    std::array<UINT, 3> data = {1, 2, 3};
    EXPECT_EQ(on.context->GetData(nullptr, data.data(), 8, 0), E_NOTIMPL);
    EXPECT_EQ(data, (std::array<UINT, 3>{0, 0, 3}));
    std::array<UINT, 3> entries = {1, 2, 3};
    on.videoContext->VideoProcessorGetStreamPalette(nullptr, 0, 2, entries.data());
    EXPECT_EQ(entries, (std::array<UINT, 3>{0, 0, 3}));
    UINT nBytes = 7;
    void *pBuffer = &nBytes;
    EXPECT_EQ(
        on.videoContext->GetDecoderBuffer(nullptr, D3D11_VIDEO_DECODER_BUFFER_BITSTREAM, &nBytes, &pBuffer),
        E_NOTIMPL);
    EXPECT_EQ(nBytes, 0U);
    EXPECT_EQ(pBuffer, nullptr);
}

TEST_F(UnsupportedTest, PrivateDataHasNoSize)
{
    const Device on;
    const ComPtr<ID3D11Texture2D> texture = MakeTexture(on, TargetDesc(2, 2));
    ComPtr<IDXGIResource> resource;
    ASSERT_EQ(texture.As(IID_IDXGIResource, resource), S_OK);
    UINT sizes[] = {7, 7, 7, 7};
    EXPECT_EQ(on.device->GetPrivateData(IID_IUnknown, &sizes[0], nullptr), E_NOTIMPL);
    EXPECT_EQ(on.context->GetPrivateData(IID_IUnknown, &sizes[1], nullptr), E_NOTIMPL);
    EXPECT_EQ(texture->GetPrivateData(IID_IUnknown, &sizes[2], nullptr), E_NOTIMPL);
    EXPECT_EQ(resource->GetPrivateData(IID_IUnknown, &sizes[3], nullptr), E_NOTIMPL);
    for (const UINT nSize : sizes)
        EXPECT_EQ(nSize, 0U);
}
