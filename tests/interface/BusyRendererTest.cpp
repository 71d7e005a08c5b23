// While one call is inside a renderer: a frame is refused after 500 ms, every other call waits its turn, and
// other renderers go on.
#include "Background.h"
#include "CoreLog.h"
#include "Frames.h"
#include "HostWindow.h"

#include <gtest/gtest.h>

#include <future>

namespace {

using namespace xelttest;

// Holds a submission up inside the host's overlay callback.
class BusyRenderer : public testing::Test
{
protected:
    void SetUp() override
    {
        CoreLog::instance().reset();
        m_handle = Xelt_Create(nullptr);
        ASSERT_NE(m_handle, nullptr);
        ASSERT_EQ(setDrawInfoCallback(m_handle, &BusyRenderer::callback, this), 0);
        m_pSubmission = std::make_unique<Background>([this] { return show(m_handle, m_frame); });
        m_entered.get_future().wait();
    }
    void TearDown() override
    {
        if (m_pSubmission != nullptr) {
            letGo();
        }
        Xelt_Release(m_handle);
        drainEvents();
    }

    void letGo()
    {
        m_go.set_value();
        EXPECT_EQ(m_pSubmission->join().nResult, 0);
        m_pSubmission.reset();
    }

    static int32_t callback(void *, const XeltDrawInfoRequest *, int32_t, void *pUser)
    {
        auto *pThis = static_cast<BusyRenderer *>(pUser);
        if (!pThis->m_blEntered.exchange(true)) {
            pThis->m_entered.set_value();
            pThis->m_go.get_future().wait();
        }
        return 0;
    }

    // Longer than the limit of frames, so that a call with a limit would be back.
    static void wait() { std::this_thread::sleep_for(Milliseconds(800)); }

    const HostFrame m_frame = yv12Frame(solidPlanes(8, 8, 90, 128, 128));
    void *m_handle = nullptr;
    std::atomic<bool> m_blEntered{false};
    std::promise<void> m_entered;
    std::promise<void> m_go;
    std::unique_ptr<Background> m_pSubmission;
};

TEST_F(BusyRenderer, FrameIsDroppedAfterHalfASecond)
{
    const auto vecBefore = CoreLog::instance().records();
    const Timed second = timed([this] { return show(m_handle, m_frame); });
    EXPECT_EQ(second.nResult, -1);
    EXPECT_TRUE(second.lasted(Milliseconds(500))) << second.duration.count();
    EXPECT_EQ(CoreLog::instance().records(), vecBefore);
    letGo();
    EXPECT_EQ(show(m_handle, m_frame), 0);
}

TEST_F(BusyRenderer, SetParamWaitsItsTurn)
{
    Background setting([this] { return setReserveLastFrame(m_handle, 1); });
    wait();
    EXPECT_FALSE(setting.isDone());
    EXPECT_EQ(CoreLog::instance().count("XELTCMD_SET_STOPDRAW_PARA"), 0);
    letGo();
    EXPECT_EQ(setting.join().nResult, 0);
    EXPECT_EQ(CoreLog::instance().count("XELTCMD_SET_STOPDRAW_PARA blReserveLastFrm=1"), 1);
}

TEST_F(BusyRenderer, GetParamWaitsItsTurn)
{
    XeltWidgetRect rect{-1, -1, -1, -1};
    Background getting([&] { return Xelt_GetParam(m_handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect); });
    wait();
    EXPECT_FALSE(getting.isDone());
    letGo();
    EXPECT_EQ(getting.join().nResult, 0);
    EXPECT_EQ(rect.top, 0);
}

TEST_F(BusyRenderer, ClearDrawWaitsItsTurn)
{
    Background clearing([this] {
        Xelt_ClearDraw(m_handle);
        return 0;
    });
    wait();
    EXPECT_FALSE(clearing.isDone());
    letGo();
    clearing.join();
    EXPECT_EQ(CoreLog::instance().count("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0"), 1);
}

TEST_F(BusyRenderer, ReleaseWaitsForTheCallInside)
{
    Background releasing([this] { return Xelt_Release(m_handle); });
    wait();
    EXPECT_FALSE(releasing.isDone());
    // The handle is unknown already: other calls need not wait.
    const Timed setting = timed([this] { return setReserveLastFrame(m_handle, 1); });
    EXPECT_EQ(setting.nResult, -1);
    EXPECT_LT(setting.duration, Milliseconds(400));
    letGo();
    EXPECT_EQ(releasing.join().nResult, 0);
}

TEST_F(BusyRenderer, OtherRenderersGoOn)
{
    void *other = Xelt_Create(nullptr);
    ASSERT_NE(other, nullptr);
    const Timed calls =
        timed([&] { return setReserveLastFrame(other, 1) | show(other, m_frame) | Xelt_Release(other); });
    EXPECT_EQ(calls.nResult, 0);
    EXPECT_LT(calls.duration, Milliseconds(400));
}

} // namespace
