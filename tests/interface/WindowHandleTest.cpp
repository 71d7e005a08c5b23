// The native window handle: of the window that the pane has now, for whoever asks.
#include "Background.h"
#include "HostilePane.h"

#include <QVBoxLayout>

namespace {

using namespace xelttest;

struct Asked
{
    int32_t nResult;
    uint64_t hWindow;
};

class WindowHandle : public HostilePane
{
protected:
    static Asked ask(void *handle)
    {
        Asked asked{0, 0};
        asked.nResult = Xelt_GetParam(handle, XELTCMD_GET_WINID, &asked.hWindow, sizeof asked.hWindow);
        return asked;
    }
    // From another thread, while the event loop runs or while this thread is blocked.
    static Asked askFromThread(void *handle, bool blBlocked)
    {
        Asked asked{-2, 0};
        Background asking([&] {
            asked = ask(handle);
            return asked.nResult;
        });
        EXPECT_TRUE(blBlocked || pump([&] { return asking.isDone(); }));
        asking.join();
        return asked;
    }
    // Whether the answer names a window that the pane has at this moment.
    static testing::AssertionResult isCurrent(void *handle, const Asked &asked)
    {
        if (asked.nResult != 0) {
            return testing::AssertionFailure() << "answered " << asked.nResult;
        }
        const auto hCurrent = static_cast<uint64_t>(paneWidget(handle)->effectiveWinId());
        if (hCurrent == 0 || asked.hWindow != hCurrent) {
            return testing::AssertionFailure() << asked.hWindow << " and not " << hCurrent;
        }
        return testing::AssertionSuccess();
    }
    void *addTopLevelPane()
    {
        void *handle = addPane();
        EXPECT_TRUE(showWindow(*paneWidget(handle), handle));
        return handle;
    }
    void expectCurrent(void *handle, bool blOnThread)
    {
        EXPECT_TRUE(isCurrent(handle, blOnThread ? askFromThread(handle, false) : ask(handle)));
    }
    // Into a window's layout and out again, with a question in each place.
    void wander(bool blOnThread)
    {
        QWidget window;
        QVBoxLayout layout(&window);
        void *handle = addTopLevelPane();
        expectCurrent(handle, blOnThread);
        layout.addWidget(paneWidget(handle));
        ASSERT_TRUE(showWindow(window, handle));
        expectCurrent(handle, blOnThread);
        paneWidget(handle)->setParent(nullptr);
        ASSERT_TRUE(showWindow(*paneWidget(handle), handle));
        expectCurrent(handle, blOnThread);
        EXPECT_TRUE(playsOn(handle));
        release(handle);
    }
};

TEST_P(WindowHandle, FollowsThePaneIntoAWindowAndOut)
{
    wander(false);
}

TEST_P(WindowHandle, FollowsThePaneForAnotherThread)
{
    wander(true);
}

TEST_P(WindowHandle, AWindowThatIsThereIsNamedWhileTheGuiThreadIsBusy)
{
    void *handle = addTopLevelPane();
    EXPECT_TRUE(isCurrent(handle, askFromThread(handle, true))) << "never asked before";
    EXPECT_TRUE(isCurrent(handle, ask(handle)));
    EXPECT_TRUE(isCurrent(handle, askFromThread(handle, true)));
}

TEST_P(WindowHandle, AStaleOneIsNeverNamedWhileTheGuiThreadIsBusy)
{
    QWidget window;
    QVBoxLayout layout(&window);
    void *handle = addTopLevelPane();
    EXPECT_TRUE(isCurrent(handle, ask(handle)));
    layout.addWidget(paneWidget(handle));
    window.show();
    const Asked asked = askFromThread(handle, true);
    EXPECT_TRUE(asked.nResult == -1 || isCurrent(handle, asked));
    EXPECT_TRUE(isCurrent(handle, ask(handle)));
    EXPECT_TRUE(isCurrent(handle, askFromThread(handle, true)));
    release(handle);
}

// Panes in a window have no native window before they are asked for one.
class WindowHandleOfAChild : public WindowHandle
{
protected:
    void SetUp() override
    {
        WindowHandle::SetUp();
        m_pane = addPane(new QVBoxLayout(&m_window));
        ASSERT_TRUE(showWindow(m_window, m_pane));
    }

    QWidget m_window;
    void *m_pane = nullptr;
};

TEST_P(WindowHandleOfAChild, AnAnswerThatComesTooLateIsKept)
{
    const Asked tooLate = askFromThread(m_pane, true);
    EXPECT_EQ(tooLate.nResult, -1);
    drainEvents();
    EXPECT_TRUE(isCurrent(m_pane, askFromThread(m_pane, true)));
    EXPECT_TRUE(playsOn(m_pane));
}

TEST_P(WindowHandleOfAChild, ItIsMadeOnceTheEventLoopRuns)
{
    EXPECT_TRUE(isCurrent(m_pane, askFromThread(m_pane, false)));
    EXPECT_TRUE(isCurrent(m_pane, askFromThread(m_pane, true)));
}

// The wait has a limit of its own; that it holds nobody up shows where another call is over long before it.
TEST_P(WindowHandleOfAChild, OtherCallsDoNotWaitForTheGuiThreadWithIt)
{
    constexpr int k_nAttempts = 5;
    bool blCameBack = false;
    for (int i = 0; i < k_nAttempts && !blCameBack; ++i) {
        Background asking([this] { return ask(m_pane).nResult; });
        std::this_thread::sleep_for(Milliseconds(100)); // it waits for this thread now
        Background others([this] { return setReserveLastFrame(m_pane, 0) | show(m_pane, m_frame); });
        const Timed over = others.join();
        EXPECT_EQ(over.nResult, 0);
        blCameBack = !asking.isDone() && over.duration < Milliseconds(200);
        EXPECT_EQ(asking.join().nResult, -1);
    }
    EXPECT_TRUE(blCameBack);
}

XELT_FOR_BOTH_RENDERERS(WindowHandle);
XELT_FOR_BOTH_RENDERERS(WindowHandleOfAChild);

} // namespace
