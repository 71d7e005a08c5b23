// The end of a picture: what UnInit resets, from whichever thread and through whichever export.
#include "Frames.h"
#include "HostWindow.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

namespace {

using namespace xelttest;

const geometry::NormRect k_rcWhole{0, 0, 1, 1};

// Gives the members of a renderer that an export made.
struct Inside : OpenYuv
{
    static int32_t displayType(CLS_ShaderYuv &yuv) { return yuv.*(&Inside::m_nDisplayType); }
    static const uint8_t *frameBuffer(CLS_ShaderYuv &yuv) { return yuv.*(&Inside::m_pFrameBuffer); }
    static int32_t unInit(CLS_ShaderYuv &yuv) { return yuv.*(&Inside::m_blUnInit); }
};

class UnInit : public testing::Test
{
protected:
    void fill()
    {
        const HostFrame frame = nv12Frame(solidPlanes(16, 16, 90, 128, 128));
        ASSERT_EQ(m_yuv.ShowYuvFrame(&frame.desc, sizeof frame.desc), 0);
        m_yuv.m_bTypeChanged = false;
        m_yuv.m_rcDrawArea = {0.1, 0.2, 0.3, 0.4};
        m_yuv.m_rcEZoom = {0.5, 0.6, 0.7, 0.8};
        m_yuv.m_rcDraw = QRect(1, 2, 3, 4);
        m_yuv.blReserveLastFrm = 1;
    }
    void expectReset() const
    {
        EXPECT_TRUE(m_yuv.m_bTypeChanged);
        EXPECT_EQ(m_yuv.m_nDisplayType, -1);
        EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
        EXPECT_EQ(m_yuv.m_pPlaneY, nullptr);
        EXPECT_EQ(m_yuv.m_pPlaneUV, nullptr);
        EXPECT_EQ(m_yuv.m_nVideoWidth, 0);
        EXPECT_EQ(m_yuv.m_nVideoHeight, 0);
        EXPECT_EQ(m_yuv.m_blUnInit, 1);
        EXPECT_EQ(m_yuv.m_rcDrawArea, k_rcWhole);
        EXPECT_EQ(m_yuv.m_rcEZoom, k_rcWhole);
    }

    OpenYuv m_yuv;
};

TEST_F(UnInit, ResetsTheFrameStateAndAsksForARepaint)
{
    fill();
    int nUpdates = 0;
    const QObject context; // ends the connection with this test
    QObject::connect(&m_yuv, &CLS_ShaderYuv::signalUpdate, &context, [&nUpdates] { ++nUpdates; });
    EXPECT_EQ(m_yuv.UnInit(), 0);
    expectReset();
    EXPECT_EQ(nUpdates, 1);
    // Parameters of the host stay.
    EXPECT_EQ(m_yuv.m_rcDraw, QRect(1, 2, 3, 4));
    EXPECT_EQ(m_yuv.blReserveLastFrm, 1);
    EXPECT_TRUE(m_yuv.m_mutexFrame.try_lock());
    m_yuv.m_mutexFrame.unlock();
}

TEST_F(UnInit, RunsOnAnyThreadAndMoreThanOnce)
{
    fill();
    std::thread([this] {
        EXPECT_EQ(m_yuv.UnInit(), 0);
        EXPECT_EQ(m_yuv.UnInit(), 0);
    }).join();
    expectReset();
    fill();
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_NV12);
}

TEST_F(UnInit, WaitsForTheFrameMutex)
{
    fill();
    m_yuv.m_mutexFrame.lock();
    std::thread ending([this] { m_yuv.UnInit(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_NE(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_NV12);
    m_yuv.m_mutexFrame.unlock();
    ending.join();
    expectReset();
}

TEST_F(UnInit, IsPartOfClearDrawWithoutReserve)
{
    fill();
    m_yuv.blReserveLastFrm = 0;
    m_yuv.ClearDraw();
    expectReset();
    EXPECT_FALSE(m_yuv.m_bClearPending);
}

TEST_F(UnInit, IsPartOfAReleaseOnTheWidgetsThread)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    auto &yuv = *static_cast<CLS_ShaderYuv *>(static_cast<CLS_ShaderBase *>(handle));
    ASSERT_EQ(show(handle, yv12Frame(solidPlanes(16, 16, 90, 128, 128))), 0);
    ASSERT_NE(Inside::frameBuffer(yuv), nullptr);
    EXPECT_EQ(Xelt_Release(handle), 0);
    // The widget is there until the event loop runs.
    EXPECT_EQ(Inside::displayType(yuv), -1);
    EXPECT_EQ(Inside::frameBuffer(yuv), nullptr);
    EXPECT_EQ(Inside::unInit(yuv), 1);
    drainEvents();
}

TEST_F(UnInit, IsPartOfAReleaseFromAnotherThread)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    auto &yuv = *static_cast<CLS_ShaderYuv *>(static_cast<CLS_ShaderBase *>(handle));
    ASSERT_EQ(show(handle, yv12Frame(solidPlanes(16, 16, 90, 128, 128))), 0);
    std::thread([handle] { EXPECT_EQ(Xelt_Release(handle), 0); }).join();
    EXPECT_EQ(Inside::displayType(yuv), -1);
    EXPECT_EQ(Inside::frameBuffer(yuv), nullptr);
    drainEvents();
}

} // namespace
