// Creation and release while other panes play, and releases from host threads.
#include "Decoders.h"
#include "ImageCompare.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>

using namespace xelttest;

namespace {

constexpr int k_nTimeoutMs = 240000;
const QSize k_paneSize(80, 60);

// Where a pane is detached and destroyed.
class FateOf : public QObject
{
public:
    explicit FateOf(void *handle) : m_pPane(paneWidget(handle))
    {
        m_pPane->installEventFilter(this);
        connect(
            m_pPane, &QObject::destroyed, this, [this] { note(m_nDestroyed); }, Qt::DirectConnection);
    }

    bool gone() const { return m_pPane.isNull(); }
    int detached() const { return m_nDetached; }
    int destroyed() const { return m_nDestroyed; }
    // Events of the pane that another thread than its own handled.
    int onWrongThread() const { return m_nOnWrongThread; }

    bool eventFilter(QObject *pObject, QEvent *pEvent) override
    {
        if (pEvent->type() == QEvent::ParentAboutToChange) {
            note(m_nDetached);
        }
        return QObject::eventFilter(pObject, pEvent);
    }

private:
    void note(std::atomic<int> &nCounter)
    {
        ++nCounter;
        m_nOnWrongThread += QThread::currentThread() == thread() ? 0 : 1;
    }

    QPointer<QWidget> m_pPane;
    std::atomic<int> m_nDetached{0};
    std::atomic<int> m_nDestroyed{0};
    std::atomic<int> m_nOnWrongThread{0};
};

// A host's own event loop, which handles events in the order in which they came, until the condition holds.
bool runLoop(const std::function<bool()> &condition)
{
    QEventLoop loop;
    QElapsedTimer elapsed;
    elapsed.start();
    QTimer timer;
    bool blHolds = false;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        blHolds = condition();
        if (blHolds || elapsed.hasExpired(k_nTimeoutMs)) {
            loop.quit();
        }
    });
    timer.start(1);
    loop.exec();
    return blHolds;
}

// Every call with a handle that was never one. Wrong answers are counted.
int probeUnknownHandle(void *handle, const HostFrame &frame)
{
    int nWrong = show(handle, frame) == -1 ? 0 : 1;
    nWrong += setRotation(handle, 90) == -1 ? 0 : 1;
    uint64_t nBuffer = 0;
    nWrong += Xelt_GetParam(handle, XELTCMD_GET_WINID, &nBuffer, sizeof nBuffer) == -1 ? 0 : 1;
    Xelt_ClearDraw(handle);
    nWrong += Xelt_Release(handle) == 0 ? 0 : 1;
    return nWrong;
}

} // namespace

TEST(ThreadLifecycle, PanesComeAndGoWhileOthersPlay)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow window(k_paneSize, 4);
    std::vector<Pushed> vecPushed(4);
    std::atomic<bool> blAllDone{false};
    Workers players;
    for (size_t i = 0; i < 4; ++i) {
        void *handle = window.pane(static_cast<int>(i));
        ASSERT_EQ(setDrawInfoCallback(handle, &Overlays::deliver, &overlays), 0);
        players.start([&, handle, i](const std::atomic<bool> &blStop) {
            for (int n = 0; !blStop && !blAllDone; ++n) {
                pushMany(handle, vecFrames, n, 1, vecPushed[i], blStop);
                std::this_thread::sleep_for(std::chrono::milliseconds(15));
            }
        });
    }
    static char s_acNoPane[16];
    int nWrong = 0;
    players.start([&](const std::atomic<bool> &blStop) {
        for (size_t n = 0; !blStop && !blAllDone; ++n) {
            nWrong += probeUnknownHandle(&s_acNoPane[n % sizeof s_acNoPane], vecFrames.front());
        }
    });

    constexpr int k_nRounds = 12;
    for (int nRound = 0; nRound < k_nRounds; ++nRound) {
        void *handle = window.addPane(k_paneSize, nRound % 2 == 0 ? Creator::Create : Creator::CreateEx);
        ASSERT_NE(handle, nullptr);
        ASSERT_EQ(setDrawInfoCallback(handle, &Overlays::deliver, &overlays), 0);
        Pushed pushed;
        Workers decoder;
        decoder.start([&](const std::atomic<bool> &blStop) {
            pushMany(handle, vecFrames, nRound, 10, pushed, blStop);
        });
        ASSERT_TRUE(pump([&] { return decoder.running() == 0; }, k_nTimeoutMs));
        decoder.stop();
        EXPECT_EQ(pushed.nAccepted, 10);
        ASSERT_TRUE(window.waitForPaint(handle, 0));
        EXPECT_TRUE(pushFinalPicture(handle));
        EXPECT_TRUE(showsFinalPicture(handle)) << "round " << nRound;

        const FateOf fate(handle);
        EXPECT_EQ(window.release(handle), 0);
        EXPECT_TRUE(fate.gone());
        EXPECT_EQ(fate.detached(), 1);
    }
    blAllDone = true;
    ASSERT_TRUE(pump([&] { return players.running() == 0; }, k_nTimeoutMs));
    players.stop();
    EXPECT_EQ(nWrong, 0);
    for (int i = 0; i < 4; ++i) {
        EXPECT_GT(vecPushed[static_cast<size_t>(i)].nAccepted, 0);
        EXPECT_EQ(vecPushed[static_cast<size_t>(i)].nLost, 0);
        EXPECT_TRUE(pushFinalPicture(window.pane(i)));
        EXPECT_TRUE(showsFinalPicture(window.pane(i))) << "pane " << i;
    }
}

TEST(ThreadLifecycle, DecodersReleaseTheirOwnPanes)
{
    constexpr int k_nPanes = 8;
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow host(nullptr);
    std::vector<void *> vecHandles;
    std::vector<std::unique_ptr<FateOf>> vecFates;
    // Not through the window's own bookkeeping, which expects to release the panes itself.
    for (int i = 0; i < k_nPanes; ++i) {
        vecHandles.push_back(Xelt_Create(host.hostLayout()));
        ASSERT_NE(vecHandles.back(), nullptr);
        paneWidget(vecHandles.back())->setFixedSize(k_paneSize);
        vecFates.push_back(std::make_unique<FateOf>(vecHandles.back()));
        ASSERT_EQ(setDrawInfoCallback(vecHandles.back(), &Overlays::deliver, &overlays), 0);
    }
    host.show();
    std::vector<Pushed> vecPushed(k_nPanes);
    std::vector<int32_t> vecReleased(k_nPanes, -2);
    std::vector<int32_t> vecAfterwards(k_nPanes, -2);
    Workers workers;
    for (size_t i = 0; i < k_nPanes; ++i) {
        workers.start([&, i](const std::atomic<bool> &blStop) {
            pushMany(vecHandles[i], vecFrames, static_cast<int>(i) * 3, 30, vecPushed[i], blStop);
            vecReleased[i] = Xelt_Release(vecHandles[i]);
        });
    }
    const auto allGone = [&] {
        return std::all_of(vecFates.begin(), vecFates.end(), [](const auto &pFate) { return pFate->gone(); });
    };
    ASSERT_TRUE(runLoop([&] { return workers.running() == 0 && allGone(); }));
    workers.stop();
    for (size_t i = 0; i < k_nPanes; ++i) {
        EXPECT_EQ(vecPushed[i].nAccepted, 30);
        EXPECT_EQ(vecReleased[i], 0);
        EXPECT_EQ(vecFates[i]->detached(), 1);
        EXPECT_EQ(vecFates[i]->destroyed(), 1);
        EXPECT_EQ(vecFates[i]->onWrongThread(), 0);
        EXPECT_EQ(Xelt_Release(vecHandles[i]), 0) << "a handle that is unknown now";
        EXPECT_EQ(show(vecHandles[i], vecFrames.front()), -1);
    }
    EXPECT_EQ(host.hostLayout()->count(), 0);
}

// The handle is unknown from the release on, though the widget lives until the event loop destroys it.
TEST(ThreadLifecycle, AReleasedHandleIsUnknownOnEveryThreadBeforeTheWidgetIsGone)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    HostWindow host(nullptr);
    void *handle = Xelt_Create(host.hostLayout());
    ASSERT_NE(handle, nullptr);
    const FateOf fate(handle);
    host.show();
    drainEvents();
    ASSERT_EQ(Xelt_Release(handle), 0);
    int nWrong = 0;
    std::thread([&] { nWrong = probeUnknownHandle(handle, vecFrames.front()); }).join();
    EXPECT_EQ(nWrong, 0);
    EXPECT_FALSE(fate.gone());
    EXPECT_TRUE(pump([&] { return fate.gone(); }));
    EXPECT_EQ(fate.destroyed(), 1);
}

TEST(ThreadLifecycle, TwoReleasesAtOnceDestroyThePaneOnce)
{
    constexpr int k_nRounds = 20;
    const std::vector<HostFrame> vecFrames = mixedFrames();
    HostWindow host(nullptr);
    host.show();
    for (int nRound = 0; nRound < k_nRounds; ++nRound) {
        void *handle = Xelt_Create(host.hostLayout());
        ASSERT_NE(handle, nullptr);
        const FateOf fate(handle);
        ASSERT_EQ(show(handle, vecFrames[static_cast<size_t>(nRound) % vecFrames.size()]), 0);
        int32_t anResults[2] = {-2, -2};
        StartLine startLine(2);
        Workers workers;
        for (int32_t &nResult : anResults) {
            workers.start([&, handle](const std::atomic<bool> &) {
                startLine.wait();
                nResult = Xelt_Release(handle);
            });
        }
        ASSERT_TRUE(runLoop([&] { return workers.running() == 0 && fate.gone(); }));
        workers.stop();
        EXPECT_EQ(anResults[0], 0);
        EXPECT_EQ(anResults[1], 0);
        drainEvents();
        EXPECT_EQ(fate.destroyed(), 1);
        EXPECT_EQ(fate.detached(), 1);
        EXPECT_EQ(fate.onWrongThread(), 0);
    }
}

// A host that closes its window without releasing leaves no handle behind that a later call could reach.
TEST(ThreadLifecycle, APaneThatIsDestroyedWithItsWindowIsUnknownAfterwards)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    auto pWindow = std::make_unique<QWidget>();
    auto *pLayout = new QGridLayout(pWindow.get());
    void *handle = Xelt_Create(pLayout);
    ASSERT_NE(handle, nullptr);
    const FateOf fate(handle);
    pWindow->show();
    drainEvents();
    ASSERT_EQ(show(handle, vecFrames.front()), 0);
    pWindow.reset();
    EXPECT_TRUE(fate.gone());
    int nWrong = 0;
    std::thread([&] { nWrong = probeUnknownHandle(handle, vecFrames.front()); }).join();
    EXPECT_EQ(nWrong, 0);
}
