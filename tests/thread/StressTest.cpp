// Decoding threads on all panes, parameters from another thread, painting and resizing on the GUI thread.
#include "Decoders.h"
#include "ImageCompare.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>

using namespace xelttest;

namespace {

constexpr int k_nPanes = 8;
constexpr int k_nFrames = 300;
constexpr int k_nTimeoutMs = 240000;
const QSize k_paneSize(96, 72);

// Sets and reads every parameter that a host changes while it plays. What each pane answered wrongly is
// counted.
class ParameterThread
{
public:
    // The label parents outlive the panes.
    ParameterThread(const std::vector<void *> &vecPanes, Overlays &overlays,
                    const std::vector<QWidget *> &vecLabelParents)
        : m_vecPanes(vecPanes), m_overlays(overlays), m_vecLabelParents(vecLabelParents)
    {
    }

    void run(const std::atomic<bool> &blStop, const std::function<bool()> &done)
    {
        for (int i = 0; !blStop && !done(); ++i) {
            change(m_vecPanes[static_cast<size_t>(i) % m_vecPanes.size()], i);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    int nCalls = 0;
    int nFailed = 0;

private:
    void expect(int32_t nResult)
    {
        ++nCalls;
        nFailed += nResult == 0 ? 0 : 1;
    }

    void change(void *handle, int i)
    {
        const double dEdge = i % 40 / 100.0;
        expect(setRotation(handle, i % 4 * 90, i / 4 % 2, i / 8 % 3));
        expect(setZoom(handle, dEdge, dEdge / 2, 1.0 - dEdge, 1.0 - dEdge / 3));
        expect(i % 3 != 0 ? setRatioMode(handle, i % 2) : setDstRect(handle, i % 20 - 5, 3, 60 + i % 50, 70));
        expect(setReserveLastFrame(handle, i % 2));
        // Another context value with the same callback, or none: both records live as long as the panes.
        expect(setDrawInfoCallback(handle, i % 16 < 13 ? &Overlays::deliver : nullptr, &m_overlays));
        // The other panes have their labels on themselves.
        if (i % 2 == 0) {
            const QWidget *pParent =
                m_vecLabelParents[static_cast<size_t>(i) / 16 % m_vecLabelParents.size()];
            expect(Xelt_SetParam(handle, XELTCMD_SET_LABEL_PARENT, pParent, sizeof(void *)));
        }
        // No frame here is one of a device.
        const void *const apDevices[] = {&m_overlays, nullptr};
        expect(Xelt_SetParam(handle, XELTCMD_SET_D3D11_DEVICE, &apDevices[i / 8 % 2], sizeof apDevices[0]));
        XeltWidgetRect rect{};
        expect(Xelt_GetParam(handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect));
        uint32_t nOpenGLES = 2;
        expect(Xelt_GetParam(handle, XELTCMD_GET_IS_OPENGLES, &nOpenGLES, sizeof nOpenGLES));
        expect(nOpenGLES <= 1 && rect.top == 0 && rect.left == 0 ? 0 : -1);
    }

    const std::vector<void *> m_vecPanes;
    Overlays &m_overlays;
    const std::vector<QWidget *> m_vecLabelParents;
};

// Sizes down to a pixel, and none at all.
void resizeSome(HostWindow &window, int nTick)
{
    const QSize aSizes[] = {k_paneSize, {50, 50}, {120, 33}, {1, 1}, {97, 71}, {60, 0}};
    QWidget *pPane = paneWidget(window.pane(nTick % k_nPanes));
    pPane->setFixedSize(aSizes[static_cast<size_t>(nTick / k_nPanes) % std::size(aSizes)]);
}

// Decoders on every pane, with the parameter thread beside them and resizes on the GUI thread.
class PlayingPanes : public testing::TestWithParam<int32_t>
{
protected:
    PlayingPanes() : m_window(k_paneSize, k_nPanes, Creator::CreateEx, GetParam()), m_vecPushed(k_nPanes)
    {
        for (int i = 0; i < k_nPanes; ++i) {
            EXPECT_EQ(setDrawInfoCallback(m_window.pane(i), &Overlays::deliver, &m_overlays), 0);
            if (i % 2 == 0) {
                QWidget *pLabelParent = &m_window;
                EXPECT_EQ(
                    Xelt_SetParam(m_window.pane(i), XELTCMD_SET_LABEL_PARENT, pLabelParent, sizeof(void *)),
                    0);
            }
            m_vecPaints.push_back(m_window.paints(m_window.pane(i)));
        }
    }

    // False when the threads do not come to an end.
    bool play()
    {
        ParameterThread parameters(m_window.panes(), m_overlays, {&m_window, &m_otherLabelParent});
        std::atomic<int> nDecoding{k_nPanes};
        Workers workers;
        for (int i = 0; i < k_nPanes; ++i) {
            void *handle = m_window.pane(i);
            workers.start([&, handle, i](const std::atomic<bool> &blStop) {
                pushMany(handle, m_vecFrames, i * 5, k_nFrames, m_vecPushed[static_cast<size_t>(i)], blStop);
                --nDecoding;
            });
        }
        workers.start(
            [&](const std::atomic<bool> &blStop) { parameters.run(blStop, [&] { return nDecoding == 0; }); });
        int nTick = 0;
        const auto done = [&] {
            resizeSome(m_window, nTick++);
            return workers.running() == 0;
        };
        const bool blEnded = pump(done, k_nTimeoutMs);
        workers.stop();
        EXPECT_GT(parameters.nCalls, 8 * k_nPanes);
        EXPECT_EQ(parameters.nFailed, 0);
        return blEnded;
    }

    void expectAllAccepted()
    {
        EXPECT_GT(m_overlays.nRequests, 0);
        EXPECT_EQ(m_overlays.nDelivered, 4 * m_overlays.nRequests);
        EXPECT_EQ(m_overlays.nRejected, 0);
        for (int i = 0; i < k_nPanes; ++i) {
            const auto nIndex = static_cast<size_t>(i);
            EXPECT_EQ(m_vecPushed[nIndex].nAccepted, k_nFrames) << "pane " << i;
            EXPECT_EQ(m_vecPushed[nIndex].nLost, 0) << "pane " << i;
            EXPECT_GT(m_window.paints(m_window.pane(i)), m_vecPaints[nIndex]) << "pane " << i;
        }
    }

    const std::vector<HostFrame> m_vecFrames = mixedFrames();
    Overlays m_overlays;
    QWidget m_otherLabelParent;
    HostWindow m_window;
    std::vector<int> m_vecPaints;
    std::vector<Pushed> m_vecPushed;
};

} // namespace

TEST_P(PlayingPanes, AreAllRightAfterDecodersParametersAndResizes)
{
    ASSERT_TRUE(play());
    expectAllAccepted();
    const std::vector<ColourFrame> vecColours = colourFrames();
    const ColourFrame &colour = vecColours.front();
    for (void *handle : m_window.panes()) {
        ASSERT_TRUE(m_window.resizePane(handle, k_paneSize));
        EXPECT_TRUE(pushFinalPicture(handle));
        if (GetParam() == XELT_RENDERER_YUV) {
            EXPECT_TRUE(showsFinalPicture(handle));
        }
        Pushed pushed;
        EXPECT_TRUE(push(handle, colour.frame, pushed));
        drainEvents();
        const std::array<int, 3> aRgb = rgbAt(grab(handle), k_paneSize.width() / 2, k_paneSize.height() / 2);
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(aRgb[i], colour.aRgb[i], 2);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ThreadStress, PlayingPanes,
                         testing::Values(int32_t{XELT_RENDERER_YUV}, int32_t{XELT_RENDERER_YUV_SUBIMAGE}),
                         [](const auto &type) { return "Type" + std::to_string(type.param); });

// Labels make their parent repaint at once, which may paint panes whose records and frames are in use.
TEST(ThreadStress, LabelsOnTheWindowHoldNoPaneUp)
{
    const HostFrame frame = yv12Frame(finalPlanes());
    Overlays overlays;
    HostWindow window(k_paneSize, 2);
    for (void *handle : window.panes()) {
        QWidget *pLabelParent = &window;
        ASSERT_EQ(Xelt_SetParam(handle, XELTCMD_SET_LABEL_PARENT, pLabelParent, sizeof pLabelParent), 0);
        ASSERT_EQ(setDrawInfoCallback(handle, &Overlays::deliver, &overlays), 0);
    }
    Workers workers;
    for (void *handle : window.panes()) {
        workers.start([&, handle](const std::atomic<bool> &) {
            // Several at a time, so that requests for labels and for paints stand in the queue by turns.
            for (int i = 0; i < 200; ++i) {
                show(handle, frame);
                if (i % 4 == 3) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(4));
                }
            }
        });
    }
    // Submissions on the GUI thread itself make labels at once.
    QElapsedTimer elapsed;
    elapsed.start();
    qint64 nLongest = 0;
    const auto done = [&] {
        const qint64 nBefore = elapsed.elapsed();
        show(window.pane(0), frame);
        nLongest = std::max(nLongest, elapsed.elapsed() - nBefore);
        return workers.running() == 0;
    };
    EXPECT_TRUE(pump(done, k_nTimeoutMs));
    workers.stop();
    // A paint that waits for a lock of its own thread gives up after 500 ms.
    EXPECT_LT(nLongest, 450) << "ms";
    for (void *handle : window.panes()) {
        EXPECT_TRUE(pushFinalPicture(handle));
        EXPECT_TRUE(showsFinalPicture(handle));
    }
}

// Each frame has one colour, so a paint that reads a buffer while it is written or freed shows two.
TEST(ThreadStress, APictureNeverMixesTwoFrames)
{
    const std::vector<ColourFrame> vecColours = colourFrames();
    HostWindow window(k_paneSize, k_nPanes);
    std::vector<Pushed> vecPushed(k_nPanes);
    std::atomic<int> nPictures{0};
    Workers workers;
    for (int i = 0; i < k_nPanes; ++i) {
        void *handle = window.pane(i);
        workers.start([&, handle, i](const std::atomic<bool> &blStop) {
            for (int n = 0; n < k_nFrames && !blStop; ++n) {
                // On a slow machine the pictures would come when all frames are in.
                while (n == k_nFrames / 2 && nPictures <= k_nPanes && !blStop) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
                push(handle, vecColours[static_cast<size_t>(n * 7 + i) % vecColours.size()].frame,
                     vecPushed[static_cast<size_t>(i)]);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
    }
    int nMixed = 0;
    const auto done = [&] {
        const QImage image = grab(window.pane(nPictures % k_nPanes));
        const std::array<int, 3> aRgb = rgbAt(image, 0, 0);
        const bool blKnown =
            aRgb == std::array<int, 3>{} ||
            std::any_of(vecColours.begin(), vecColours.end(), [&](const ColourFrame &colour) {
                return std::equal(aRgb.begin(), aRgb.end(), colour.aRgb.begin(),
                                  [](int a, int b) { return std::abs(a - b) <= 2; });
            });
        nMixed += blKnown && isUniform(image, aRgb, 1) ? 0 : 1;
        ++nPictures;
        return workers.running() == 0;
    };
    ASSERT_TRUE(pump(done, k_nTimeoutMs)) << workers.running() << " threads have not ended";
    workers.stop();
    EXPECT_GT(nPictures, k_nPanes);
    EXPECT_EQ(nMixed, 0) << "of " << nPictures << " pictures";
    for (int i = 0; i < k_nPanes; ++i) {
        EXPECT_EQ(vecPushed[static_cast<size_t>(i)].nAccepted, k_nFrames) << "pane " << i;
        const ColourFrame &last =
            vecColours[static_cast<size_t>((k_nFrames - 1) * 7 + i) % vecColours.size()];
        drainEvents();
        EXPECT_TRUE(isUniform(grab(window.pane(i)), last.aRgb, 2)) << "pane " << i;
    }
}

// Calls on one pane exclude each other; several threads may make them all the same.
TEST(ThreadStress, ManyThreadsShareOnePane)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow window(k_paneSize, 1);
    void *handle = window.pane();
    std::vector<Pushed> vecPushed(4);
    Workers workers;
    StartLine startLine(4);
    for (int i = 0; i < 4; ++i) {
        workers.start([&, i](const std::atomic<bool> &blStop) {
            startLine.wait();
            for (int n = 0; n < 40 && !blStop; ++n) {
                setDrawInfoCallback(handle, &Overlays::deliver, &overlays);
                pushMany(handle, vecFrames, i * 9 + n, 1, vecPushed[static_cast<size_t>(i)], blStop);
                setRotation(handle, n % 4 * 90, i % 2, n % 3);
                if (n % 10 == i) {
                    Xelt_ClearDraw(handle);
                }
            }
        });
    }
    ASSERT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    for (const Pushed &pushed : vecPushed) {
        EXPECT_EQ(pushed.nAccepted, 40);
    }
    EXPECT_TRUE(pushFinalPicture(handle));
    EXPECT_TRUE(showsFinalPicture(handle));
}

// The answer comes from the GUI thread, which a host thread waits for in the middle of playing.
TEST(ThreadStress, AHostThreadGetsTheWindowHandleWhilePlaying)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    HostWindow window(k_paneSize, 2);
    std::vector<Pushed> vecPushed(2);
    std::vector<uint64_t> vecWinIds(2);
    std::vector<int32_t> vecResults(2, -2);
    Workers workers;
    for (size_t i = 0; i < 2; ++i) {
        void *handle = window.pane(static_cast<int>(i));
        workers.start([&, handle, i](const std::atomic<bool> &blStop) {
            pushMany(handle, vecFrames, 0, 20, vecPushed[i], blStop);
        });
        workers.start([&, handle, i](const std::atomic<bool> &) {
            vecResults[i] = Xelt_GetParam(handle, XELTCMD_GET_WINID, &vecWinIds[i], sizeof vecWinIds[i]);
        });
    }
    ASSERT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(vecResults[i], 0);
        EXPECT_EQ(vecWinIds[i], paneWidget(window.pane(static_cast<int>(i)))->internalWinId());
        EXPECT_NE(vecWinIds[i], 0u);
        EXPECT_EQ(vecPushed[i].nAccepted, 20);
    }
}
