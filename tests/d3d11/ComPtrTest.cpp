// The counted reference itself.
#include "DecoderTextures.h"

#include <gtest/gtest.h>

namespace {

using namespace xelttest;

// References to the object besides the one that asks.
ULONG references(IUnknown *pObject)
{
    pObject->AddRef();
    return pObject->Release();
}

class ComPtrTest : public testing::Test
{
protected:
    ComPtr<ID3D11Device> m_device = makeDevice();
};

TEST_F(ComPtrTest, OwnsOneReference)
{
    EXPECT_EQ(references(m_device.Get()), 1U);
    {
        const ComPtr<ID3D11Device> other(m_device.Get());
        EXPECT_EQ(references(m_device.Get()), 2U);
        EXPECT_EQ(other.Get(), m_device.Get());
        EXPECT_TRUE(other);
    }
    EXPECT_EQ(references(m_device.Get()), 1U);
    const ComPtr<ID3D11Device> empty;
    EXPECT_FALSE(empty);
    EXPECT_EQ(empty.Get(), nullptr);
    const ComPtr<ID3D11Device> null(nullptr);
    EXPECT_FALSE(null);
}

TEST_F(ComPtrTest, CopiesAddAndMovesDoNot)
{
    ComPtr<ID3D11Device> copy(m_device);
    EXPECT_EQ(references(m_device.Get()), 2U);
    ComPtr<ID3D11Device> moved(std::move(copy));
    EXPECT_FALSE(copy); // NOLINT(bugprone-use-after-move): empty is what it has to be
    EXPECT_EQ(references(m_device.Get()), 2U);
    copy = moved;
    EXPECT_EQ(references(m_device.Get()), 3U);
    copy = std::move(moved);
    EXPECT_EQ(references(m_device.Get()), 2U);
    EXPECT_FALSE(moved); // NOLINT(bugprone-use-after-move)
}

TEST_F(ComPtrTest, AssigningItselfKeepsIt)
{
    ComPtr<ID3D11Device> &same = m_device;
    m_device = same;
    EXPECT_EQ(references(m_device.Get()), 1U);
    m_device = ComPtr<ID3D11Device>(m_device.Get());
    EXPECT_EQ(references(m_device.Get()), 1U);
    m_device = std::move(same);
    ASSERT_TRUE(m_device);
    EXPECT_EQ(references(m_device.Get()), 1U);
}

TEST_F(ComPtrTest, ReplacingAndDroppingRelease)
{
    const ComPtr<ID3D11Device> second = makeDevice();
    ComPtr<ID3D11Device> pointer(m_device);
    pointer = second;
    EXPECT_EQ(references(m_device.Get()), 1U);
    EXPECT_EQ(references(second.Get()), 2U);
    pointer.Reset();
    EXPECT_EQ(references(second.Get()), 1U);
    pointer.Reset();
    EXPECT_EQ(references(second.Get()), 1U);
    pointer = second;
    *pointer.ReleaseAndGetAddressOf() = nullptr;
    EXPECT_EQ(references(second.Get()), 1U);
}

TEST_F(ComPtrTest, AsAsksForAnotherInterface)
{
    ComPtr<ID3D11VideoDevice> video;
    EXPECT_EQ(m_device.As(IID_ID3D11VideoDevice, video), S_OK);
    EXPECT_EQ(references(m_device.Get()), 2U);
    // What was held is released, also by a query that fails.
    ComPtr<IDXGIResource> resource;
    EXPECT_EQ(m_device.As(IID_IDXGIResource, resource), E_NOINTERFACE);
    EXPECT_FALSE(resource);
    EXPECT_EQ(m_device.As(IID_IDXGIResource, video), E_NOINTERFACE);
    EXPECT_FALSE(video);
    EXPECT_EQ(references(m_device.Get()), 1U);
}

} // namespace
