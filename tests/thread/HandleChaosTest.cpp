// Hosts without any order: panes are made, used, released and destroyed from all sides, also by handles that are no
// longer valid.
#include "Decoders.h"
#include "HangWatchdog.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QVBoxLayout>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <random>

using namespace xelttest;

namespace {

constexpr int k_nThreads = 8;
constexpr size_t k_nSlots = 6;
constexpr std::chrono::seconds k_guiLimit(20);

// A minute where a sanitizer looks on, in one flavour: what it looks at is the same in both.
int playMs()
{
    return k_blSanitized && glFlavour() == GlFlavour::Es ? 60000 : 6000;
}

// Functions that are waiting for the GUI thread. They lie here and not in what is posted, which Qt hands over in ways that
// a sanitizer does not see.
class GuiCalls
{
public:
    struct Call
    {
        std::function<void()> function;
        bool blEnded = false;
    };

    // Waits for the function's end; false when that does not come in time.
    bool run(std::function<void()> function)
    {
        const auto pCall = std::make_shared<Call>();
        pCall->function = std::move(function);
        std::unique_lock<std::mutex> lock(m_mutex);
        m_calls.push_back(pCall);
        QMetaObject::invokeMethod(
            qApp, [] { instance().runNext(); }, Qt::QueuedConnection);
        return m_ended.wait_for(lock, k_guiLimit, [&] { return pCall->blEnded; });
    }
    static GuiCalls &instance()
    {
        static GuiCalls s_calls;
        return s_calls;
    }

private:
    void runNext()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const std::shared_ptr<Call> pCall = m_calls.front();
        m_calls.pop_front();
        lock.unlock();
        pCall->function();
        lock.lock();
        pCall->blEnded = true;
        m_ended.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::deque<std::shared_ptr<Call>> m_calls;
};

bool onGuiThread(std::function<void()> function)
{
    return GuiCalls::instance().run(std::move(function));
}

int livePanes()
{
    int nCount = 0;
    for (const QWidget *pWidget : QApplication::allWidgets()) {
        nCount += pWidget->inherits("CLS_ShaderBase") ? 1 : 0;
    }
    return nCount;
}

// The panes' places. Windows and widgets are for the GUI thread; a handle stays behind when its pane is gone.
class Table
{
public:
    void *handle(size_t nSlot) const { return m_aSlots[nSlot].handle; }

    // False when a pane could not be made.
    bool fill(size_t nSlot, int32_t nType, bool blShown)
    {
        Slot &slot = m_aSlots[nSlot];
        if (!slot.pPane.isNull()) {
            return true;
        }
        slot.pWindow = std::make_unique<QWidget>();
        auto *pLayout = new QVBoxLayout(slot.pWindow.get());
        void *handle = Xelt_CreateEx(&nType, sizeof nType);
        if (handle == nullptr) {
            return false;
        }
        slot.pPane = paneWidget(handle);
        pLayout->addWidget(slot.pPane);
        slot.pWindow->resize(96, 80);
        slot.pWindow->setVisible(blShown);
        slot.handle = handle;
        return true;
    }
    // Without a release, as a host that closes its window.
    void destroy(size_t nSlot) { m_aSlots[nSlot].pWindow.reset(); }
    void destroyLater(size_t nSlot)
    {
        if (m_aSlots[nSlot].pWindow != nullptr) {
            m_aSlots[nSlot].pWindow.release()->deleteLater();
        }
    }
    void resize(size_t nSlot, const QSize &size)
    {
        if (m_aSlots[nSlot].pWindow != nullptr) {
            m_aSlots[nSlot].pWindow->resize(size);
        }
    }
    void releaseAll()
    {
        for (Slot &slot : m_aSlots) {
            if (!slot.pPane.isNull()) {
                EXPECT_EQ(Xelt_Release(slot.handle), 0);
            }
            slot.pWindow.reset();
        }
    }

private:
    struct Slot
    {
        std::atomic<void *> handle{nullptr};
        std::unique_ptr<QWidget> pWindow;
        QPointer<QWidget> pPane;
    };
    std::array<Slot, k_nSlots> m_aSlots;
};

// What all of them share.
struct Playground
{
    Table table;
    Overlays overlays;
    QWidget labelParent;
    const std::vector<HostFrame> vecFrames = mixedFrames();
    std::atomic<int> nCalls{0};
    std::atomic<int> nWrong{0};
    std::atomic<int> nTimeouts{0};

    bool hasFailed() const { return nWrong > 0 || nTimeouts > 0 || testing::Test::HasFailure(); }
};

// One thread's host. What it does follows from its number alone.
class Host
{
public:
    Host(Playground &ground, uint32_t nSeed) : m_ground(ground), m_random(nSeed) {}

    void run(const std::atomic<bool> &blStop)
    {
        while (!blStop && !m_ground.hasFailed()) {
            act();
            ++m_ground.nCalls;
        }
    }

private:
    size_t pick(size_t nCount) { return m_random() % nCount; }
    int number(int nCount) { return static_cast<int>(pick(static_cast<size_t>(nCount))); }
    void expect(bool blRight) { m_ground.nWrong += blRight ? 0 : 1; }
    void expectResult(int32_t nResult) { expect(nResult == 0 || nResult == -1); }
    void onGui(std::function<void()> function)
    {
        m_ground.nTimeouts += onGuiThread(std::move(function)) ? 0 : 1;
    }

    void act()
    {
        const size_t nSlot = pick(k_nSlots);
        void *handle = m_ground.table.handle(nSlot);
        const int nAction = number(100);
        if (nAction < 40) {
            push(handle);
        } else if (nAction < 60) {
            set(handle);
        } else if (nAction < 72) {
            get(handle);
        } else if (nAction < 78) {
            Xelt_ClearDraw(handle);
        } else if (nAction < 83) {
            const int32_t nResult = Xelt_Release(handle);
            expect(nResult == (handle == nullptr ? -1 : 0));
        } else {
            changeWindow(nSlot);
        }
    }

    void push(void *handle)
    {
        const HostFrame &frame = m_ground.vecFrames[pick(m_ground.vecFrames.size())];
        VideoFrameDesc desc = frame.desc;
        if (number(10) == 0) {
            desc.nDisplayType = VIDEO_DISPLAY_DXGL;
        }
        expectResult(Xelt_ShowYuvFrame(handle, &desc, sizeof desc));
    }

    void set(void *handle)
    {
        switch (number(7)) {
        case 0:
            return expectResult(setRotation(handle, number(4) * 90, number(2), number(3)));
        case 1:
            return expectResult(setZoom(handle, 0.1, 0.0, 0.5 + number(5) / 10.0, 1.0));
        case 2:
            return expectResult(setRatioMode(handle, number(2)));
        case 3:
            return expectResult(setDstRect(handle, number(20), 3, 60 + number(20), 70));
        case 4:
            return expectResult(setReserveLastFrame(handle, number(2)));
        case 5:
            return expectResult(
                Xelt_SetParam(handle, XELTCMD_SET_LABEL_PARENT, &m_ground.labelParent, sizeof(void *)));
        default:
            return expectResult(setDrawInfoCallback(handle, number(3) > 0 ? &Overlays::deliver : nullptr,
                                                    &m_ground.overlays));
        }
    }

    void get(void *handle)
    {
        XeltWidgetRect rect{};
        uint64_t nValue = 0;
        switch (number(4)) {
        case 0:
            return expectResult(Xelt_GetParam(handle, XELTCMD_GET_WINID, &nValue, sizeof nValue));
        case 1:
            return expectResult(Xelt_GetParam(handle, XELTCMD_GET_IS_OPENGLES, &nValue, sizeof nValue));
        default:
            return expectResult(Xelt_GetParam(handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect));
        }
    }

    // What a host does on its GUI thread.
    void changeWindow(size_t nSlot)
    {
        Table &table = m_ground.table;
        const int nAction = number(10);
        const int32_t nType = number(2) == 0 ? XELT_RENDERER_YUV : XELT_RENDERER_YUV_SUBIMAGE;
        const bool blShown = number(4) > 0;
        const QSize size(80 + number(60), 60 + number(60));
        onGui([this, &table, nSlot, nAction, nType, blShown, size] {
            if (nAction < 6) {
                expect(table.fill(nSlot, nType, blShown));
            } else if (nAction < 7) {
                table.destroy(nSlot);
            } else if (nAction < 8) {
                table.destroyLater(nSlot);
            } else {
                table.resize(nSlot, size);
            }
        });
    }

    Playground &m_ground;
    std::mt19937 m_random;
};

} // namespace

TEST(HandleChaos, EveryCallIsAnsweredAndNoPaneIsLeft)
{
    const HangWatchdog watchdog{std::chrono::seconds(playMs() / 1000 + (k_blSanitized ? 300 : 60))};
    ASSERT_EQ(livePanes(), 0);
    Playground ground;
    ground.labelParent.resize(96, 80);
    ground.labelParent.show();
    Workers hosts;
    for (uint32_t nSeed = 1; nSeed <= k_nThreads; ++nSeed) {
        hosts.start([&ground, nSeed](const std::atomic<bool> &blStop) { Host(ground, nSeed).run(blStop); });
    }
    std::printf("%d threads, seeds 1 to %d\n", k_nThreads, k_nThreads);
    QElapsedTimer played;
    played.start();
    pump([&] { return played.hasExpired(playMs()) || ground.hasFailed(); }, playMs() + k_nPumpTimeoutMs);
    // Those that wait for this thread get their answers before all are told to stop and waited for.
    Workers stopping;
    stopping.start([&hosts](const std::atomic<bool> &) { hosts.stop(); });
    ASSERT_TRUE(pump([&] { return stopping.running() == 0; }, 60000)) << "a call does not come back";
    stopping.stop();
    EXPECT_EQ(ground.nWrong, 0);
    EXPECT_EQ(ground.nTimeouts, 0);
    EXPECT_GT(ground.nCalls, 100);
    ground.table.releaseAll();
    EXPECT_TRUE(pump([] { return livePanes() == 0; }));
}
