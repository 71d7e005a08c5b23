// Two hundred panes come and go, and nothing of them stays.
#include "Decoders.h"
#include "ProcessCounts.h"
#include "System.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QGridLayout>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPointer>

#include <algorithm>

using namespace xelttest;

namespace {

constexpr int k_nPanes = 200;
constexpr int k_nBatch = 20;
constexpr int k_nWarmUpBatches = 6;
constexpr int k_nTimeoutMs = 240000;
constexpr size_t k_nMiB = 1024 * 1024;
const QSize k_paneSize(40, 30);
const QSize k_frameSize(640, 480);

// Shows a batch of panes, plays into each from a thread of its own, releases half of them from the threads
// and half from the GUI thread.
void playBatch(QWidget &host, QLayout &layout, const HostFrame &frame, Overlays &overlays)
{
    std::vector<void *> vecPanes;
    std::vector<QPointer<QWidget>> vecWidgets;
    for (int i = 0; i < k_nBatch; ++i) {
        vecPanes.push_back(Xelt_Create(&layout));
        ASSERT_NE(vecPanes.back(), nullptr);
        vecWidgets.emplace_back(paneWidget(vecPanes.back()));
        vecWidgets.back()->setFixedSize(k_paneSize);
        setDrawInfoCallback(vecPanes.back(), &Overlays::deliver, &overlays);
    }
    host.show();
    drainEvents();
    std::atomic<int> nRefused{0};
    Workers workers;
    for (int nThread = 0; nThread < 4; ++nThread) {
        workers.start([&, nThread](const std::atomic<bool> &) {
            for (size_t i = static_cast<size_t>(nThread); i < k_nBatch; i += 4) {
                Pushed pushed;
                push(vecPanes[i], frame, pushed);
                nRefused += pushed.nLost;
            }
        });
    }
    ASSERT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    EXPECT_EQ(nRefused, 0);
    drainEvents();
    workers.start([&](const std::atomic<bool> &) {
        for (size_t i = 0; i < k_nBatch / 2; ++i) {
            Xelt_Release(vecPanes[i]);
        }
    });
    for (size_t i = k_nBatch / 2; i < k_nBatch; ++i) {
        Xelt_Release(vecPanes[i]);
    }
    const auto gone = [&] {
        return std::all_of(vecWidgets.begin(), vecWidgets.end(),
                           [](const QPointer<QWidget> &pWidget) { return pWidget.isNull(); });
    };
    ASSERT_TRUE(pump([&] { return workers.running() == 0 && gone(); }, k_nTimeoutMs));
    drainEvents();
}

struct Counts
{
    int nWidgets = QApplication::allWidgets().size();
    int nFiles = openHandles();
    size_t nHeap = heapInUse();
    size_t nResident = residentBytes();
};

// A context that sees the GL objects of a window's panes, and keeps their share group alive.
class GlObjectCounter
{
public:
    explicit GlObjectCounter(void *handle)
    {
        m_context.setShareContext(paneWidget(handle)->context());
        m_context.setFormat(paneWidget(handle)->context()->format());
        m_surface.setFormat(m_context.format());
        m_surface.create();
        m_blReady = m_context.create() && QOpenGLContext::areSharing(&m_context, m_context.shareContext());
    }

    bool ready() const { return m_blReady; }

    GlObjects count()
    {
        m_context.makeCurrent(&m_surface);
        const GlObjects objects = glObjects(m_context);
        m_context.doneCurrent();
        return objects;
    }

private:
    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
    bool m_blReady = false;
};

} // namespace

TEST(ThreadCounts, TwoHundredPanesLeaveNothingBehind)
{
    const HostFrame frame = yv12Frame(makePlanes(Pattern::Ramp, k_frameSize.width(), k_frameSize.height()));
    Overlays overlays;
    QWidget host;
    auto *pLayout = new QGridLayout(&host);
    // What Qt, the driver and the allocator keep for the whole process is there after the first panes.
    for (int nBatch = 0; nBatch < k_nWarmUpBatches && !HasFatalFailure(); ++nBatch) {
        playBatch(host, *pLayout, frame, overlays);
    }
    const Counts before;
    const int nChildren = host.children().size();
    for (int nPanes = 0; nPanes < k_nPanes && !HasFatalFailure(); nPanes += k_nBatch) {
        playBatch(host, *pLayout, frame, overlays);
    }
    const Counts after;
    EXPECT_EQ(pLayout->count(), 0);
    EXPECT_EQ(host.children().size(), nChildren);
    EXPECT_EQ(after.nWidgets, before.nWidgets);
    EXPECT_EQ(after.nFiles, before.nFiles);
    // The frames alone of 200 panes are 88 MiB.
    EXPECT_LT(after.nHeap, before.nHeap + 4 * k_nMiB);
    const size_t nKept = hasSanitizerAllocator() ? 512 * k_nMiB : 32 * k_nMiB;
    EXPECT_LT(after.nResident, before.nResident + nKept);
    RecordProperty("heapGrowth", std::to_string(static_cast<long long>(after.nHeap - before.nHeap)));
    RecordProperty("residentGrowth",
                   std::to_string(static_cast<long long>(after.nResident - before.nResident)));
}

TEST(ThreadCounts, GlObjectsGoWithTheirPanes)
{
    const HostFrame yv12 = yv12Frame(makePlanes(Pattern::Ramp, 32, 32));
    HostWindow window(k_paneSize, 1);
    ASSERT_EQ(show(window.pane(), yv12), 0);
    drainEvents();
    GlObjectCounter counter(window.pane());
    ASSERT_TRUE(counter.ready());
    const GlObjects before = counter.count();
    EXPECT_GE(before.nTextures, 3);
    EXPECT_GE(before.nPrograms, 1);
    for (int nRound = 0; nRound < 3; ++nRound) {
        std::vector<void *> vecPanes;
        for (int i = 0; i < 10; ++i) {
            vecPanes.push_back(window.addPane(k_paneSize));
            ASSERT_NE(vecPanes.back(), nullptr);
            std::thread([&] { show(vecPanes.back(), yv12); }).join();
        }
        ASSERT_TRUE(window.showAndWait());
        drainEvents();
        const GlObjects playing = counter.count();
        EXPECT_GE(playing.nTextures, before.nTextures + 30) << "three planes in each pane";
        EXPECT_GE(playing.nPrograms, before.nPrograms + 10);
        for (void *handle : vecPanes) {
            EXPECT_EQ(window.release(handle), 0);
        }
        drainEvents();
        const GlObjects after = counter.count();
        EXPECT_EQ(after.nTextures, before.nTextures);
        EXPECT_EQ(after.nPrograms, before.nPrograms);
        EXPECT_EQ(after.nShaders, before.nShaders);
    }
}

TEST(ThreadCounts, TypeChangesAndClearsKeepNoGlObjects)
{
    const Planes planes = makePlanes(Pattern::Ramp, 32, 32);
    const HostFrame aFrames[] = {yv12Frame(planes), nv12Frame(planes)};
    HostWindow window(k_paneSize, 1);
    void *handle = window.pane();
    ASSERT_EQ(show(handle, aFrames[0]), 0);
    drainEvents();
    GlObjectCounter counter(handle);
    ASSERT_TRUE(counter.ready());
    const GlObjects before = counter.count();
    for (int i = 1; i <= 40; ++i) {
        std::thread([&] {
            if (i % 5 == 0) {
                Xelt_ClearDraw(handle);
            }
            show(handle, aFrames[i % 2]);
        }).join();
        grab(handle);
    }
    const GlObjects after = counter.count();
    EXPECT_EQ(after.nTextures, before.nTextures);
    EXPECT_EQ(after.nPrograms, before.nPrograms);
    EXPECT_EQ(after.nShaders, before.nShaders);
}
