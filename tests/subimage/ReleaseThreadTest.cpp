// Panes lose their context or are released while threads push frames of all types.
#include "Decoders.h"
#include "ImageCompare.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPointer>

using namespace xelttest;

namespace {

constexpr int k_nPanes = 8;
constexpr int k_nTimeoutMs = 240000;
const QSize k_paneSize(80, 60);

TEST(SubImageThreads, PanesMoveBetweenWindowsWhileFramesArrive)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow first(k_paneSize, k_nPanes);
    HostWindow second(QSize(40, 40), 1);
    const std::vector<void *> vecPanes = first.panes();
    std::vector<Pushed> vecPushed(k_nPanes);
    Workers workers;
    for (size_t i = 0; i < k_nPanes; ++i) {
        setDrawInfoCallback(vecPanes[i], &Overlays::deliver, &overlays);
        workers.start([&, i](const std::atomic<bool> &blStop) {
            pushMany(vecPanes[i], vecFrames, int(i) * 5, 60, vecPushed[i], blStop);
        });
    }
    for (size_t nMove = 0; nMove < 2 * k_nPanes; ++nMove) {
        void *pane = vecPanes[nMove % k_nPanes];
        const QPointer<QOpenGLContext> pBefore = paneWidget(pane)->context();
        HostWindow &target = nMove < k_nPanes ? second : first;
        target.adopt(pane);
        EXPECT_TRUE(target.waitForPaint(pane, 0));
        EXPECT_TRUE(pBefore.isNull()) << "every move takes the context away";
    }
    ASSERT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    for (size_t i = 0; i < k_nPanes; ++i) {
        EXPECT_EQ(vecPushed[i].nAccepted, 60);
        EXPECT_EQ(vecPushed[i].nLost, 0);
        EXPECT_TRUE(pushFinalPicture(vecPanes[i]));
        EXPECT_TRUE(showsFinalPicture(vecPanes[i])) << "pane " << i;
        paneWidget(vecPanes[i])->makeCurrent();
        EXPECT_EQ(paneWidget(vecPanes[i])->context()->functions()->glGetError(), GLenum(GL_NO_ERROR));
    }
}

// Both stop modes from the decoders themselves.
TEST(SubImageThreads, DecodersClearAndGoOn)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow window(k_paneSize, k_nPanes);
    std::vector<Pushed> vecPushed(k_nPanes);
    Workers workers;
    for (size_t i = 0; i < k_nPanes; ++i) {
        void *pane = window.pane(int(i));
        workers.start([&, pane, i](const std::atomic<bool> &blStop) {
            for (int n = 0; n < 15 && !blStop; ++n) {
                setDrawInfoCallback(pane, &Overlays::deliver, &overlays);
                pushMany(pane, vecFrames, n * 3, 3, vecPushed[i], blStop);
                setReserveLastFrame(pane, int(i) % 2);
                Xelt_ClearDraw(pane);
            }
        });
    }
    ASSERT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    for (size_t i = 0; i < k_nPanes; ++i) {
        EXPECT_EQ(vecPushed[i].nAccepted, 45);
        EXPECT_TRUE(pushFinalPicture(window.pane(int(i))));
        EXPECT_TRUE(showsFinalPicture(window.pane(int(i)))) << "pane " << i;
    }
}

// Released in the middle of playing, by the threads that play.
TEST(SubImageThreads, DecodersReleaseTheirPanes)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    for (int nRound = 0; nRound < 3; ++nRound) {
        HostWindow window(k_paneSize, 1);
        std::vector<QPointer<QWidget>> vecPanes;
        std::vector<Pushed> vecPushed(k_nPanes);
        std::vector<int32_t> vecResults(k_nPanes, -2);
        Workers workers;
        for (size_t i = 0; i < k_nPanes; ++i) {
            const int32_t nTypeCode = XELT_RENDERER_YUV_SUBIMAGE;
            void *pane = Xelt_CreateEx(&nTypeCode, sizeof nTypeCode);
            ASSERT_NE(pane, nullptr);
            vecPanes.emplace_back(paneWidget(pane));
            vecPanes.back()->setParent(&window);
            vecPanes.back()->show();
            workers.start([&, pane, i](const std::atomic<bool> &blStop) {
                pushMany(pane, vecFrames, int(i), 12, vecPushed[i], blStop);
                vecResults[i] = Xelt_Release(pane);
            });
        }
        const auto allGone = [&] {
            for (const QPointer<QWidget> &pPane : vecPanes) {
                if (!pPane.isNull()) {
                    return false;
                }
            }
            return workers.running() == 0;
        };
        ASSERT_TRUE(pump(allGone, k_nTimeoutMs));
        workers.stop();
        for (size_t i = 0; i < k_nPanes; ++i) {
            EXPECT_EQ(vecResults[i], 0);
            EXPECT_EQ(vecPushed[i].nAccepted, 12);
        }
    }
}

} // namespace
