// The host's overlay callback as the exports call it: when, with which kind, and what it throws.
#include "CoreLog.h"
#include "Frames.h"
#include "HostWindow.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

struct Host
{
    std::vector<int> vecKinds;
    bool blThrows = false;

    static int32_t callback(void *, const XeltDrawInfoRequest *pRequest, int32_t, void *pUser)
    {
        auto *pHost = static_cast<Host *>(pUser);
        pHost->vecKinds.push_back(pRequest->nKind);
        if (pHost->blThrows) {
            throw std::runtime_error("thrown by the host");
        }
        return 0;
    }
};

HostFrame frameOfKind(int nKind)
{
    HostFrame frame = yv12Frame(solidPlanes(16, 16, 90, 128, 128));
    frame.desc.nDrawInfoKind = nKind;
    return frame;
}

class HostCallback : public testing::Test
{
protected:
    void SetUp() override { CoreLog::instance().reset(); }

    HostWindow m_window{QSize(160, 120)};
    void *m_handle = m_window.pane();
    Host m_host;
};

TEST_F(HostCallback, IsAskedOnceForEachFrameWithItsKind)
{
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    for (const int nKind : {0, 7, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(show(m_handle, frameOfKind(nKind)), 0);
    }
    EXPECT_THAT(m_host.vecKinds, ElementsAre(0, 7, -1, INT32_MAX, INT32_MIN));
}

TEST_F(HostCallback, IsAskedAgainOnResizeWithTheLastKind)
{
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    EXPECT_EQ(show(m_handle, frameOfKind(42)), 0);
    m_host.vecKinds.clear();
    ASSERT_TRUE(m_window.resizePane(m_handle, QSize(200, 130)));
    ASSERT_TRUE(pump([&] { return !m_host.vecKinds.empty(); }));
    EXPECT_THAT(m_host.vecKinds, testing::Each(42));
}

TEST_F(HostCallback, KindOfFramesWithoutCallbackIsNotRemembered)
{
    EXPECT_EQ(show(m_handle, frameOfKind(42)), 0);
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    ASSERT_TRUE(m_window.resizePane(m_handle, QSize(200, 130)));
    ASSERT_TRUE(pump([&] { return !m_host.vecKinds.empty(); }));
    EXPECT_THAT(m_host.vecKinds, testing::Each(0));
}

TEST_F(HostCallback, IsNotAskedForRefusedFrames)
{
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    HostFrame frame = frameOfKind(1);
    frame.desc.iWidth = 0;
    EXPECT_EQ(show(m_handle, frame), -1);
    EXPECT_EQ(Xelt_ShowYuvFrame(m_handle, nullptr, 112), -1);
    EXPECT_EQ(Xelt_ShowYuvFrame(m_handle, &frame.desc, 0), -1);
    EXPECT_THAT(m_host.vecKinds, IsEmpty());
}

TEST_F(HostCallback, IsForgottenByClearDraw)
{
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(show(m_handle, frameOfKind(1)), 0);
    EXPECT_THAT(m_host.vecKinds, IsEmpty());
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    EXPECT_EQ(show(m_handle, frameOfKind(2)), 0);
    EXPECT_THAT(m_host.vecKinds, ElementsAre(2));
}

TEST_F(HostCallback, RegisteredBeforeADeferredClearIsDroppedByIt)
{
    EXPECT_EQ(show(m_handle, frameOfKind(1)), 0);
    EXPECT_EQ(setReserveLastFrame(m_handle, 1), 0);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    CoreLog::instance().clear();
    EXPECT_EQ(show(m_handle, frameOfKind(2)), 0);
    EXPECT_THAT(m_host.vecKinds, IsEmpty());
    EXPECT_THAT(CoreLog::instance().messages(),
                ElementsAre("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0",
                            "ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player"));
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    EXPECT_EQ(show(m_handle, frameOfKind(3)), 0);
    EXPECT_THAT(m_host.vecKinds, ElementsAre(3));
}

TEST_F(HostCallback, ClearDrawLogsTheReserveFlag)
{
    EXPECT_EQ(setReserveLastFrame(m_handle, 5), 0);
    CoreLog::instance().clear();
    Xelt_ClearDraw(m_handle);
    EXPECT_THAT(CoreLog::instance().messages(), ElementsAre("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=5"));
}

TEST_F(HostCallback, ExceptionsEndAtTheLibrary)
{
    m_host.blThrows = true;
    EXPECT_EQ(setDrawInfoCallback(m_handle, &Host::callback, &m_host), 0);
    EXPECT_NO_THROW(EXPECT_EQ(show(m_handle, frameOfKind(1)), 0));
    EXPECT_THAT(m_host.vecKinds, ElementsAre(1));
    // The renderer is not left locked.
    EXPECT_NO_THROW(EXPECT_EQ(show(m_handle, frameOfKind(2)), 0));
    EXPECT_THAT(m_host.vecKinds, ElementsAre(1, 2));
    // From inside the event loop.
    ASSERT_TRUE(m_window.resizePane(m_handle, QSize(200, 130)));
    EXPECT_NO_THROW(EXPECT_TRUE(pump([&] { return m_host.vecKinds.size() > 2; })));
    const int nPaints = m_window.paints(m_handle);
    m_host.blThrows = false;
    EXPECT_EQ(show(m_handle, frameOfKind(3)), 0);
    EXPECT_TRUE(m_window.waitForPaint(m_handle, nPaints));
}

TEST_F(HostCallback, LengthAndResultOfTheCallDoNotReachTheHost)
{
    const auto refuse = [](void *pReserved, const XeltDrawInfoRequest *, int32_t nLength,
                           void *pUser) -> int32_t {
        *static_cast<int32_t *>(pUser) = pReserved == nullptr ? nLength : -1;
        return -1;
    };
    int32_t nLength = 0;
    EXPECT_EQ(setDrawInfoCallback(m_handle, refuse, &nLength), 0);
    EXPECT_EQ(show(m_handle, frameOfKind(1)), 0);
    EXPECT_EQ(nLength, 88);
}

} // namespace
