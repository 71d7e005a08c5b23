// What the video processor makes, keeps and rebuilds.
#include "VpTest.h"

#include <gmock/gmock.h>

namespace {

using namespace xelttest;
using softd3d11::CallCount;
using softd3d11::FailCall;
using softd3d11::Method;
using softd3d11::RefusedCallCount;
using testing::IsEmpty;

class VpResource : public VpTest
{
};

TEST_F(VpResource, ANewOneHasTheVideoDeviceAndNothingElse)
{
    EXPECT_TRUE(m_vp->m_viddev);
    EXPECT_FALSE(m_vp->m_enum);
    EXPECT_FALSE(m_vp->m_vp);
    EXPECT_FALSE(m_vp->m_outview);
    EXPECT_EQ(m_vp->m_width, 0U);
    EXPECT_EQ(m_vp->m_height, 0U);
    EXPECT_TRUE(m_vp->m_sourceRect.isNull());
}

TEST_F(VpResource, HoldsTheDeviceAndLetsGoOfIt)
{
    const ULONG nBefore = (m_device->AddRef(), m_device->Release());
    {
        const OpenVp other(m_device);
        // The device and its video interface.
        EXPECT_EQ((m_device->AddRef(), m_device->Release()), nBefore + 2);
    }
    EXPECT_EQ((m_device->AddRef(), m_device->Release()), nBefore);
}

TEST_F(VpResource, TheFirstFrameMakesEverythingTheNextAnInputViewOnly)
{
    ASSERT_TRUE(process());
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(m_vp->m_width, 64U);
    EXPECT_EQ(m_vp->m_height, 48U);
    ASSERT_TRUE(process());
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 2, 1, 1, 2, 2}));
    EXPECT_EQ(CallCount(Method::DeviceGetImmediateContext), 2U);
    EXPECT_EQ(CallCount(Method::VideoContextSetStreamSourceRect), 0U);
    EXPECT_EQ(CallCount(Method::VideoContextSetStreamAutoProcessingMode), 2U);
    EXPECT_EQ(CallCount(Method::VideoContextSetStreamColorSpace), 2U);
    EXPECT_THAT(m_messages.take(), IsEmpty());
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(VpResource, TheInputViewEndsWithTheCall)
{
    ASSERT_TRUE(process());
    // Two textures, enumerator, processor and output view.
    EXPECT_EQ(liveObjects(m_device.Get()), 5U);
    ASSERT_TRUE(process());
    EXPECT_EQ(liveObjects(m_device.Get()), 5U);
}

TEST_F(VpResource, AnotherSizeRebuildsAllThree)
{
    ASSERT_TRUE(process());
    use(QSize(128, 80));
    ASSERT_TRUE(process());
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(m_vp->m_width, 128U);
    EXPECT_EQ(m_vp->m_height, 80U);
    use(QSize(128, 48)); // one length alone is enough
    ASSERT_TRUE(process());
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(liveObjects(m_device.Get()), 5U);
}

TEST_F(VpResource, AnotherOutputRebuildsTheOutputViewOnly)
{
    ASSERT_TRUE(process());
    const auto aBefore = pixels();
    m_target = makeTarget(*m_device.Get(), QSize(64, 48));
    m_vp->setOutputTexture(m_target.Get());
    EXPECT_EQ(m_vp->m_out.Get(), m_target.Get());
    EXPECT_FALSE(m_vp->m_outview);
    softd3d11::ResetCallCounts();
    ASSERT_TRUE(process());
    EXPECT_EQ(VpCalls::now(), (VpCalls{0, 1, 0, 1, 1, 1}));
    EXPECT_EQ(pixels(), aBefore);
}

TEST_F(VpResource, TheSameOutputAgainStillDropsTheView)
{
    ASSERT_TRUE(process());
    const ULONG nBefore = (m_target->AddRef(), m_target->Release());
    m_vp->setOutputTexture(m_target.Get());
    EXPECT_FALSE(m_vp->m_outview);
    EXPECT_EQ(m_vp->m_out.Get(), m_target.Get());
    softd3d11::ResetCallCounts();
    ASSERT_TRUE(process());
    EXPECT_EQ(VpCalls::now(), (VpCalls{0, 1, 0, 1, 1, 1}));
    EXPECT_EQ((m_target->AddRef(), m_target->Release()), nBefore);
}

TEST_F(VpResource, EnsureResourceAloneMakesNoInputView)
{
    EXPECT_TRUE(m_vp->ensureResource(64, 48, DXGI_FORMAT_NV12));
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 1, 1, 1, 0, 0}));
    EXPECT_TRUE(m_vp->ensureResource(64, 48, DXGI_FORMAT_P010));
    EXPECT_EQ(VpCalls::now(), (VpCalls{1, 2, 1, 1, 0, 0}));
}

TEST_F(VpResource, AFailureKeepsTheOldSizeAndTheNextFrameTriesAgain)
{
    for (const Method method :
         {Method::VideoDeviceCreateVideoProcessorEnumerator, Method::EnumeratorCheckVideoProcessorFormat,
          Method::VideoDeviceCreateVideoProcessor, Method::VideoDeviceCreateVideoProcessorOutputView}) {
        SCOPED_TRACE(softd3d11::MethodName(method));
        makeVp();
        use(QSize(64, 48));
        ASSERT_TRUE(process());
        use(QSize(96, 64));
        ASSERT_TRUE(FailCall(method, E_FAIL));
        EXPECT_FALSE(process());
        EXPECT_EQ(m_vp->m_width, 64U);
        EXPECT_EQ(m_vp->m_height, 48U);
        EXPECT_EQ(CallCount(Method::VideoContextVideoProcessorBlt), 0U);
        softd3d11::ResetCallCounts();
        EXPECT_TRUE(process());
        EXPECT_EQ(VpCalls::now(), (VpCalls{1, 1, 1, 1, 1, 1}));
        EXPECT_EQ(m_vp->m_width, 96U);
        EXPECT_EQ(m_vp->m_height, 64U);
        EXPECT_EQ(RefusedCallCount(Method::VideoContextVideoProcessorBlt), 0U);
    }
}

TEST_F(VpResource, WhatFailedIsEmptyAndTheRestStays)
{
    ASSERT_TRUE(process());
    use(QSize(96, 64));
    ASSERT_TRUE(FailCall(Method::VideoDeviceCreateVideoProcessorEnumerator, E_FAIL));
    EXPECT_FALSE(process());
    EXPECT_FALSE(m_vp->m_enum);
    EXPECT_TRUE(m_vp->m_vp);
    ASSERT_TRUE(FailCall(Method::VideoDeviceCreateVideoProcessor, E_FAIL));
    EXPECT_FALSE(process());
    EXPECT_TRUE(m_vp->m_enum);
    EXPECT_FALSE(m_vp->m_vp);
    ASSERT_TRUE(FailCall(Method::VideoDeviceCreateVideoProcessorOutputView, E_FAIL));
    EXPECT_FALSE(process());
    EXPECT_TRUE(m_vp->m_vp);
    EXPECT_FALSE(m_vp->m_outview);
    EXPECT_TRUE(process());
}

} // namespace
