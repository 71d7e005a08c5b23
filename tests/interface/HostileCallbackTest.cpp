// An overlay callback that calls the library: about other panes, about its own, and two at a time.
#include "Background.h"
#include "EveryCall.h"
#include "HostilePane.h"
#include "Workers.h"

#include <QApplication>
#include <QThread>

#include <atomic>
#include <functional>
#include <stdexcept>

namespace {

using namespace xelttest;

// Runs a body inside the callback, a limited number of times.
struct CallingHost
{
    std::function<void()> body;
    std::atomic<int> nCalls{0};
    int nLimit = 8;

    static int32_t callback(void *, const XeltDrawInfoRequest *, int32_t, void *pUser)
    {
        auto *pThis = static_cast<CallingHost *>(pUser);
        if (pThis->nCalls++ < pThis->nLimit) {
            pThis->body();
        }
        return 0;
    }
};

class HostileCallback : public HostilePane
{
protected:
    void SetUp() override
    {
        HostilePane::SetUp();
        auto *pLayout = new QHBoxLayout(&m_window);
        m_pane = addPane(pLayout);
        m_neighbour = addPane(pLayout);
        ASSERT_TRUE(showWindow(m_window, m_pane));
    }

    void runInside(std::function<void()> body)
    {
        m_host.body = std::move(body);
        ASSERT_EQ(setDrawInfoCallback(m_pane, &CallingHost::callback, &m_host), 0);
    }
    int32_t pushOnThread(void *handle)
    {
        Background pushing([this, handle] { return show(handle, m_frame); });
        EXPECT_TRUE(pump([&] { return pushing.isDone(); }));
        return pushing.join().nResult;
    }
    // The callback runs on this thread, on another one, and once more for a resize.
    void askInEveryWay()
    {
        EXPECT_EQ(show(m_pane, m_frame), 0);
        EXPECT_EQ(m_host.nCalls, 1);
        EXPECT_EQ(pushOnThread(m_pane), 0);
        EXPECT_EQ(m_host.nCalls, 2);
        m_window.resize(m_window.width() + 40, m_window.height() + 10);
        EXPECT_TRUE(pump([this] { return m_host.nCalls > 2; }));
        drainEvents();
    }

    CallingHost m_host; // outlives the panes
    QWidget m_window;
    void *m_pane = nullptr;
    void *m_neighbour = nullptr;
};

TEST_P(HostileCallback, MayThrow)
{
    runInside([] { throw std::runtime_error("thrown by the host"); });
    askInEveryWay();
    EXPECT_TRUE(playsOn(m_pane));
}

TEST_P(HostileCallback, MayThrowWhatIsNoException)
{
    runInside([] { throw 7; }); // NOLINT(hicpp-exception-baseclass)
    askInEveryWay();
    EXPECT_TRUE(playsOn(m_pane));
}

TEST_P(HostileCallback, MayCallEverythingForAnotherPane)
{
    runInside([this] {
        EXPECT_TRUE(callEverything(m_neighbour, m_frame).areAll(0));
        EXPECT_TRUE(createAndRelease(QThread::currentThread() == qApp->thread()));
    });
    askInEveryWay();
    EXPECT_TRUE(playsOn(m_pane));
    EXPECT_TRUE(playsOn(m_neighbour));
}

TEST_P(HostileCallback, MayReleaseAnotherPane)
{
    int32_t nReleased = -2;
    runInside([&] { nReleased = nReleased == -2 ? Xelt_Release(m_neighbour) : nReleased; });
    EXPECT_EQ(show(m_pane, m_frame), 0);
    EXPECT_EQ(nReleased, 0);
    EXPECT_TRUE(goes(m_neighbour));
    EXPECT_TRUE(playsOn(m_pane));
}

TEST_P(HostileCallback, IsRefusedEverythingForItsOwnPane)
{
    int nRefused = 0;
    runInside([&] { nRefused += callEverything(m_pane, m_frame).areAll(-1) ? 1 : 0; });
    EXPECT_EQ(show(m_pane, m_frame), 0);
    EXPECT_EQ(nRefused, 1);
    EXPECT_EQ(pushOnThread(m_pane), 0);
    EXPECT_EQ(nRefused, 2) << "or the clear was not left out";
    EXPECT_TRUE(playsOn(m_pane));
}

// Nothing is pushed then; the answers are those of a pane that is free or of one that is busy.
TEST_P(HostileCallback, ComesBackFromCallsForItsOwnPaneWhileItIsResized)
{
    bool blResults = true;
    EXPECT_EQ(show(m_pane, m_frame), 0);
    runInside([&] { blResults &= callEverything(m_pane, m_frame).areResults(); });
    m_window.resize(m_window.width() + 40, m_window.height() + 10);
    EXPECT_TRUE(pump([this] { return m_host.nCalls > 0; }));
    drainEvents();
    EXPECT_TRUE(blResults);
    EXPECT_TRUE(playsOn(m_pane));
}

class HostileRelease : public HostileCallback
{
protected:
    void SetUp() override
    {
        HostileCallback::SetUp();
        m_host.nLimit = 1;
        runInside([this] {
            m_nReleased = Xelt_Release(m_pane);
            m_blThere = !m_pWidget.isNull();
            m_nAfterwards = setReserveLastFrame(m_pane, 0);
            m_nAgain = Xelt_Release(m_pane);
        });
        m_pWidget = paneWidget(m_pane);
    }
    void expectReleased()
    {
        EXPECT_EQ(m_nReleased, 0);
        EXPECT_TRUE(m_blThere);
        EXPECT_EQ(m_nAfterwards, -1);
        EXPECT_EQ(m_nAgain, 0);
        EXPECT_EQ(show(m_pane, m_frame), -1);
        EXPECT_EQ(Xelt_Release(m_pane), 0);
        EXPECT_TRUE(goes(m_pane));
        EXPECT_TRUE(playsOn(m_neighbour));
    }

    QPointer<QWidget> m_pWidget;
    std::atomic<int32_t> m_nReleased{-2};
    std::atomic<int32_t> m_nAfterwards{-2};
    std::atomic<int32_t> m_nAgain{-2};
    std::atomic<bool> m_blThere{false};
};

TEST_P(HostileRelease, OfItsOwnPaneIsFinishedByTheEventLoop)
{
    show(m_pane, m_frame);
    EXPECT_FALSE(m_pWidget.isNull()) << "not inside the call";
    expectReleased();
}

TEST_P(HostileRelease, OfItsOwnPaneOnAnotherThread)
{
    Background pushing([this] { return show(m_pane, m_frame); });
    pushing.join(); // without an event loop
    EXPECT_FALSE(m_pWidget.isNull());
    expectReleased();
}

TEST_P(HostileRelease, OfItsOwnPaneWhileItIsResized)
{
    m_window.resize(m_window.width() + 40, m_window.height() + 10);
    EXPECT_TRUE(pump([this] { return m_host.nCalls > 0; }));
    expectReleased();
}

// Each is inside its callback when it turns to the other pane: one of them has to give up.
TEST_P(HostileCallback, TwoMayTurnToEachOthersPanes)
{
    CallingHost other;
    StartLine bothInside(2);
    int32_t anResults[2] = {-2, -2};
    m_host.nLimit = 1;
    other.nLimit = 1;
    runInside([&] {
        bothInside.wait();
        anResults[0] = setReserveLastFrame(m_neighbour, 0);
    });
    other.body = [&] {
        bothInside.wait();
        anResults[1] = setReserveLastFrame(m_pane, 0);
    };
    ASSERT_EQ(setDrawInfoCallback(m_neighbour, &CallingHost::callback, &other), 0);
    {
        Background one([this] { return show(m_pane, m_frame); });
        Background two([this] { return show(m_neighbour, m_frame); });
        EXPECT_TRUE(pump([&] { return one.isDone() && two.isDone(); }));
        EXPECT_EQ(one.join().nResult, 0);
        EXPECT_EQ(two.join().nResult, 0);
    }
    for (const int32_t nResult : anResults) {
        EXPECT_TRUE(nResult == 0 || nResult == -1) << nResult;
    }
    EXPECT_TRUE(anResults[0] == -1 || anResults[1] == -1);
    EXPECT_TRUE(playsOn(m_pane));
    EXPECT_TRUE(playsOn(m_neighbour));
}

TEST_P(HostileCallback, TwoMayReleaseEachOthersPanes)
{
    CallingHost other;
    StartLine bothInside(2);
    int32_t anResults[2] = {-2, -2};
    m_host.nLimit = 1;
    other.nLimit = 1;
    runInside([&] {
        bothInside.wait();
        anResults[0] = Xelt_Release(m_neighbour);
    });
    other.body = [&] {
        bothInside.wait();
        anResults[1] = Xelt_Release(m_pane);
    };
    ASSERT_EQ(setDrawInfoCallback(m_neighbour, &CallingHost::callback, &other), 0);
    Workers pushing;
    for (void *handle : {m_pane, m_neighbour}) {
        pushing.start([this, handle](const std::atomic<bool> &) { show(handle, m_frame); });
    }
    EXPECT_TRUE(pump([&] { return pushing.running() == 0; }));
    pushing.stop();
    for (const int32_t nResult : anResults) {
        EXPECT_TRUE(nResult == 0 || nResult == -1) << nResult;
    }
    EXPECT_EQ(Xelt_Release(m_pane), 0);
    EXPECT_EQ(Xelt_Release(m_neighbour), 0);
    EXPECT_TRUE(goes(m_pane));
    EXPECT_TRUE(goes(m_neighbour));
}

// Every call, while nobody keeps to an order.
TEST_P(HostileCallback, TwoMayCallEverythingForEachOthersPanes)
{
    CallingHost other;
    std::atomic<bool> blResults{true};
    m_host.nLimit = 1;
    other.nLimit = 1;
    runInside([&] { blResults = callEverything(m_neighbour, m_frame).areResults() && blResults; });
    other.body = [&] { blResults = callEverything(m_pane, m_frame).areResults() && blResults; };
    ASSERT_EQ(setDrawInfoCallback(m_neighbour, &CallingHost::callback, &other), 0);
    Workers pushing;
    for (void *handle : {m_pane, m_neighbour}) {
        pushing.start([this, handle](const std::atomic<bool> &) { show(handle, m_frame); });
    }
    EXPECT_TRUE(pump([&] { return pushing.running() == 0; }, 4 * k_nPumpTimeoutMs));
    pushing.stop();
    EXPECT_TRUE(blResults);
    EXPECT_TRUE(playsOn(m_pane));
    EXPECT_TRUE(playsOn(m_neighbour));
}

XELT_FOR_BOTH_RENDERERS(HostileCallback);
XELT_FOR_BOTH_RENDERERS(HostileRelease);

} // namespace
