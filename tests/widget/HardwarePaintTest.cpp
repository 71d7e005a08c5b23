// What a paint asks of the hardware path, and which thread ends it.
#include "CoreLog.h"
#include "HardwareRecorder.h"
#include "HostWindow.h"
#include "OpenRenderer.h"
#include "TestEnvironment.h"

#include <gmock/gmock.h>

#include <QVBoxLayout>

#include <chrono>
#include <mutex>
#include <thread>

namespace {

using namespace xelttest;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class HardwarePaint : public testing::Test
{
protected:
    void SetUp() override
    {
        CoreLog::instance().reset();
        m_pYuv = new OpenYuv;
        auto *pLayout = new QVBoxLayout(&m_window);
        pLayout->setContentsMargins(0, 0, 0, 0);
        m_pYuv->SetParentLayout(pLayout);
        m_pYuv->setFixedSize(160, 120);
        m_window.show();
        ASSERT_TRUE(pump([this] { return m_pYuv->isValid(); }));
        drainEvents();
        m_pYuv->m_pD3D11EGL = std::make_unique<HardwareRecorder>(m_notes);
    }

    int32_t show(int32_t nType)
    {
        VideoFrameDesc desc{};
        desc.nDisplayType = nType;
        desc.iWidth = 64;
        desc.iHeight = 48;
        return m_pYuv->ShowYuvFrame(&desc, sizeof desc);
    }
    // One paint, at once.
    std::vector<std::string> paint()
    {
        m_notes.take();
        m_pYuv->grabFramebuffer();
        return m_notes.take();
    }
    std::string renderCall() const
    {
        return "Render 0 0 " + std::to_string(160 * scaleFactor()) + ' ' +
               std::to_string(120 * scaleFactor());
    }

    HardwareNotes m_notes;
    QWidget m_window;
    OpenYuv *m_pYuv = nullptr;
};

TEST_F(HardwarePaint, BuildsOnceThenDraws)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    const std::string sAreas = "SetAreas 0,0,1,1 0,0,1,1";
    EXPECT_THAT(paint(),
                ElementsAre("ReleaseEGL", "InitD3D11EGL", sAreas, "SetRotation 0 0 0", renderCall()));
    EXPECT_TRUE(m_pYuv->m_blGLReady);
    EXPECT_EQ(m_pYuv->m_nLocDrawFlag, 41);
    EXPECT_EQ(m_pYuv->m_nLocDrawColor, 42);
    EXPECT_THAT(paint(), ElementsAre(sAreas, "SetRotation 0 0 0", renderCall()));
}

TEST_F(HardwarePaint, HandsOverPlacementAndRotation)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    paint();
    m_pYuv->m_rcDrawArea = {0.25, 0.5, 0.75, 0.875};
    m_pYuv->m_rcEZoom = {0.125, 0, 0.5, 1};
    const XeltRotatePara para{1, 270, 2};
    EXPECT_EQ(m_pYuv->SetParam(XELTCMD_SET_ROTATE_PARA, &para, sizeof para), 0);
    EXPECT_THAT(paint(), ElementsAre("SetAreas 0.25,0.5,0.75,0.875 0.125,0,0.5,1", "SetRotation 1 270 2",
                                     renderCall()));
}

TEST_F(HardwarePaint, OtherTypesLeaveItAlone)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_YV12), 0);
    paint();
    EXPECT_THAT(paint(), IsEmpty());
    EXPECT_EQ(show(VIDEO_DISPLAY_VAGL), 0);
    paint();
    EXPECT_THAT(paint(), IsEmpty());
}

TEST_F(HardwarePaint, FailuresAreCountedAndAnswered)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_notes.nRenderResult = -1;
    paint();
    EXPECT_EQ(m_pYuv->m_nD3D11FailCount, 1U);
    paint();
    EXPECT_EQ(m_pYuv->m_nD3D11FailCount, 2U);
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), -1);
    m_notes.nRenderResult = 0;
    paint();
    EXPECT_EQ(m_pYuv->m_nD3D11FailCount, 0U);
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
}

TEST_F(HardwarePaint, FailedInitialisationIsLoggedAndLeavesTheFrameMutexLocked)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_notes.nInitResult = -1;
    CoreLog::instance().clear();
    const auto vecCalls = paint();
    EXPECT_THAT(vecCalls, Contains("InitD3D11EGL"));
    EXPECT_THAT(vecCalls, Not(Contains(StartsWith("Render"))));
    EXPECT_THAT(CoreLog::instance().records(), Contains(CoreLogRecord{CORELOG_MSG, "InitD3D11EGL faild", 0}));
    const bool blFree = m_pYuv->m_mutexFrame.try_lock();
    EXPECT_FALSE(blFree);
    // Locked or not: let the renderer go on, so that it can end.
    m_pYuv->m_mutexFrame.unlock();
    EXPECT_TRUE(m_pYuv->m_blGLReady);
    m_notes.nInitResult = 0;
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
}

// A new hardware path may do better.
TEST_F(HardwarePaint, AfterAFailedInitialisationAClearTakesFramesAgain)
{
    for (const bool blOnThisThread : {true, false}) {
        m_pYuv->m_pD3D11EGL = std::make_unique<HardwareRecorder>(m_notes);
        EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
        m_notes.nInitResult = -1;
        paint();
        ASSERT_FALSE(m_pYuv->m_mutexFrame.try_lock());
        m_pYuv->blReserveLastFrm = 1;
        m_pYuv->ClearDraw(); // keeps the picture, and the path
        EXPECT_FALSE(m_pYuv->m_mutexFrame.try_lock());
        m_pYuv->blReserveLastFrm = 0;
        if (blOnThisThread) {
            m_pYuv->ClearDraw();
        } else {
            std::thread([this] { m_pYuv->ClearDraw(); }).join();
        }
        m_notes.nInitResult = 0;
        EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
        EXPECT_EQ(m_pYuv->m_nDisplayType, VIDEO_DISPLAY_DXGL);
    }
}

TEST_F(HardwarePaint, AfterAFailedInitialisationAMoveAndAnEndGoOn)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_notes.nInitResult = -1;
    paint();
    // A window of another context takes it over, and closes.
    auto *pOther = new QWidget;
    m_pYuv->setParent(pOther);
    pOther->show();
    EXPECT_TRUE(pump([this] { return m_pYuv->isValid(); }));
    EXPECT_FALSE(m_pYuv->m_mutexFrame.try_lock());
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), -1) << "on the GUI thread, which is not made to wait for itself";
    delete pOther;
    EXPECT_TRUE(m_notes.blDestroyed);
}

TEST_F(HardwarePaint, EndedOnAHostThreadIsDestroyedByThePaintingOne)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    paint();
    std::thread([this] { EXPECT_EQ(m_pYuv->UnInit(), 0); }).join();
    EXPECT_THAT(m_notes.take(), ElementsAre("ReleaseHostObjects"));
    EXPECT_FALSE(m_notes.blDestroyed);
    EXPECT_THAT(paint(), ElementsAre("ReleaseEGL", "DestroyEglResource", "destroyed"));
    EXPECT_EQ(m_notes.pDestroyedOn, QThread::currentThread());
}

TEST_F(HardwarePaint, EndedAndNeverPaintedIsDestroyedWithTheWidget)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    paint();
    std::thread([this] { EXPECT_EQ(m_pYuv->UnInit(), 0); }).join();
    delete m_pYuv;
    EXPECT_THAT(m_notes.take(),
                ElementsAre("ReleaseHostObjects", "ReleaseEGL", "DestroyEglResource", "destroyed"));
    EXPECT_EQ(m_notes.pDestroyedOn, QThread::currentThread());
}

TEST_F(HardwarePaint, EndedWithoutContextObjectsIsDestroyedAtOnce)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_notes.blHoldsContextObjects = false;
    m_notes.take();
    std::thread([this] { EXPECT_EQ(m_pYuv->UnInit(), 0); }).join();
    EXPECT_THAT(m_notes.take(), ElementsAre("ReleaseHostObjects", "destroyed"));
}

TEST_F(HardwarePaint, LivesAsLongAsTheWidget)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    paint();
    EXPECT_FALSE(m_notes.blDestroyed);
    delete m_pYuv;
    EXPECT_TRUE(m_notes.blDestroyed);
    // The one that the end makes in its place is no recorder.
    EXPECT_THAT(m_notes.take(), ElementsAre("ReleaseEGL", "DestroyEglResource", "destroyed"));
}

// A clear that keeps the picture has nothing to wait for.
TEST_F(HardwarePaint, AClearThatKeepsThePictureTakesNoFrameMutex)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_pYuv->blReserveLastFrm = 1;
    const std::lock_guard<FrameMutex> lock(m_pYuv->m_mutexFrame);
    std::thread([this] { m_pYuv->ClearDraw(); }).join();
    EXPECT_THAT(m_notes.take(), Contains("ClearFramePending"));
    EXPECT_TRUE(m_pYuv->m_bClearPending);
}

TEST_F(HardwarePaint, OffEveryScreenPixelsAreNotScaled)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(paint(), Contains(renderCall()));
    m_window.move(20000, 20000);
    drainEvents();
    EXPECT_THAT(paint(), Contains("Render 0 0 160 120"));
}

TEST_F(HardwarePaint, BusyFrameMutexSkipsThePaint)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    paint();
    m_pYuv->m_mutexFrame.lock();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(paint(), IsEmpty());
    const auto duration = std::chrono::steady_clock::now() - start;
    m_pYuv->m_mutexFrame.unlock();
    EXPECT_GE(duration, std::chrono::milliseconds(480));
    EXPECT_LT(duration, std::chrono::milliseconds(5500));
    EXPECT_THAT(paint(), Contains(renderCall()));
}

} // namespace
