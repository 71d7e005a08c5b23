// Panes that lose their GL context, are hidden or have no size while frames arrive.
#include "Decoders.h"
#include "ImageCompare.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QOpenGLContext>

#include <chrono>

using namespace xelttest;

namespace {

constexpr int k_nTimeoutMs = 240000;
constexpr int k_nPanes = 4;
constexpr std::chrono::milliseconds k_frameInterval(15);
const QSize k_paneSize(80, 60);

// Decoders that play until told to stop.
class Players
{
public:
    Players(const std::vector<void *> &vecPanes, const std::vector<HostFrame> &vecFrames, Overlays &overlays)
        : m_vecPushed(vecPanes.size())
    {
        for (size_t i = 0; i < vecPanes.size(); ++i) {
            void *handle = vecPanes[i];
            setDrawInfoCallback(handle, &Overlays::deliver, &overlays);
            m_workers.start([this, handle, i, &vecFrames](const std::atomic<bool> &blStop) {
                for (int n = 0; !blStop && !m_blDone; ++n) {
                    pushMany(handle, vecFrames, n, 1, m_vecPushed[i], blStop);
                    ++m_nFrames;
                    std::this_thread::sleep_for(k_frameInterval);
                }
            });
        }
    }

    // Runs the event loop until that many more frames came.
    bool play(int nMore)
    {
        const int nWanted = m_nFrames + nMore;
        return pump([&] { return m_nFrames >= nWanted; }, k_nTimeoutMs);
    }

    ::testing::AssertionResult finish()
    {
        m_blDone = true;
        if (!pump([&] { return m_workers.running() == 0; }, k_nTimeoutMs)) {
            return ::testing::AssertionFailure() << "a decoder hangs";
        }
        m_workers.stop();
        for (const Pushed &pushed : m_vecPushed) {
            if (pushed.nLost != 0 || pushed.nAccepted == 0) {
                return ::testing::AssertionFailure()
                       << pushed.nAccepted << " frames accepted, " << pushed.nLost << " lost";
            }
        }
        return ::testing::AssertionSuccess();
    }

private:
    std::vector<Pushed> m_vecPushed;
    std::atomic<int> m_nFrames{0};
    std::atomic<bool> m_blDone{false};
    Workers m_workers;
};

} // namespace

TEST(ThreadContext, PanesMoveBetweenWindowsWhileFramesArrive)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow first(k_paneSize, k_nPanes);
    HostWindow second(QSize(40, 40), 1);
    const std::vector<void *> vecPanes = first.panes();
    int nContexts = 0;
    Players players(vecPanes, vecFrames, overlays);
    for (int nMove = 0; nMove < 3 * k_nPanes; ++nMove) {
        void *handle = vecPanes[static_cast<size_t>(nMove) % k_nPanes];
        HostWindow &target = nMove / k_nPanes % 2 == 0 ? second : first;
        const QMetaObject::Connection connection =
            QObject::connect(paneWidget(handle)->context(), &QOpenGLContext::aboutToBeDestroyed, &target,
                             [&] { ++nContexts; });
        target.adopt(handle);
        EXPECT_TRUE(target.waitForPaint(handle, 0));
        QObject::disconnect(connection);
        EXPECT_TRUE(players.play(4));
    }
    EXPECT_EQ(nContexts, 3 * k_nPanes) << "every move takes the context away";
    ASSERT_TRUE(players.finish());
    for (void *handle : vecPanes) {
        EXPECT_TRUE(pushFinalPicture(handle));
        EXPECT_TRUE(showsFinalPicture(handle));
    }
    // Without another frame: the last one shows again in the new context.
    for (void *handle : vecPanes) {
        first.adopt(handle);
        ASSERT_TRUE(first.waitForPaint(handle, 0));
        EXPECT_TRUE(showsFinalPicture(handle));
        second.adopt(handle);
        ASSERT_TRUE(second.waitForPaint(handle, 0));
        EXPECT_TRUE(showsFinalPicture(handle));
    }
}

TEST(ThreadContext, HideAndShowWhileFramesArrive)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow window(k_paneSize, k_nPanes);
    Players players(window.panes(), vecFrames, overlays);
    for (int nRound = 0; nRound < 6; ++nRound) {
        QWidget *pHidden =
            nRound % 2 == 0 ? static_cast<QWidget *>(&window) : paneWidget(window.pane(nRound % k_nPanes));
        pHidden->hide();
        EXPECT_TRUE(players.play(12)) << "frames are accepted while nothing is painted";
        const int nBefore = window.paints(window.pane(nRound % k_nPanes));
        pHidden->show();
        EXPECT_TRUE(window.waitForPaint(window.pane(nRound % k_nPanes), nBefore));
        EXPECT_TRUE(players.play(4));
    }
    ASSERT_TRUE(players.finish());
    for (void *handle : window.panes()) {
        EXPECT_TRUE(pushFinalPicture(handle));
    }
    drainEvents();
    window.hide();
    drainEvents();
    ASSERT_TRUE(window.showAndWait());
    for (void *handle : window.panes()) {
        EXPECT_TRUE(showsFinalPicture(handle));
    }
}

// A frame that comes while the pane is hidden is the one that shows afterwards.
TEST(ThreadContext, AFrameForAHiddenPaneShowsWithIt)
{
    const std::vector<ColourFrame> vecColours = colourFrames();
    HostWindow window(k_paneSize, 1);
    void *handle = window.pane();
    Pushed pushed;
    ASSERT_TRUE(push(handle, vecColours.front().frame, pushed));
    drainEvents();
    window.hide();
    drainEvents();
    bool blPushed = false;
    std::thread([&] { blPushed = static_cast<bool>(pushFinalPicture(handle)); }).join();
    EXPECT_TRUE(blPushed);
    drainEvents();
    const int nBefore = window.paints(handle);
    window.show();
    ASSERT_TRUE(window.waitForPaint(handle, nBefore));
    EXPECT_TRUE(showsFinalPicture(handle));
}
