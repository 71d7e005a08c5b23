// Xelt_ClearDraw from host threads, with both stop modes, while the pane plays and paints.
#include "Decoders.h"
#include "ImageCompare.h"
#include "Workers.h"

#include <gtest/gtest.h>

using namespace xelttest;

namespace {

constexpr int k_nPanes = 8;
constexpr int k_nTimeoutMs = 240000;
const QSize k_paneSize(80, 60);

// Odd panes keep their last picture.
int reserves(size_t nPane)
{
    return nPane % 2 != 0 ? 1 : 0;
}

} // namespace

TEST(ThreadClearDraw, BothStopModesFromDecodersAndFromAnotherThread)
{
    const std::vector<HostFrame> vecFrames = mixedFrames();
    Overlays overlays;
    HostWindow window(k_paneSize, k_nPanes);
    std::vector<Pushed> vecPushed(k_nPanes);
    std::atomic<int> nDecoding{k_nPanes};
    Workers workers;
    for (size_t i = 0; i < k_nPanes; ++i) {
        void *handle = window.pane(static_cast<int>(i));
        workers.start([&, handle, i](const std::atomic<bool> &blStop) {
            for (int n = 0; n < 20 && !blStop; ++n) {
                setDrawInfoCallback(handle, &Overlays::deliver, &overlays);
                pushMany(handle, vecFrames, n * 3, 3, vecPushed[i], blStop);
                setReserveLastFrame(handle, reserves(i));
                Xelt_ClearDraw(handle);
            }
            --nDecoding;
        });
    }
    int nClears = 0;
    workers.start([&](const std::atomic<bool> &blStop) {
        for (; !blStop && nDecoding > 0; ++nClears) {
            Xelt_ClearDraw(window.pane(nClears % k_nPanes));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    ASSERT_TRUE(pump([&] { return workers.running() == 0; }, k_nTimeoutMs));
    workers.stop();
    EXPECT_GT(nClears, 0);
    for (size_t i = 0; i < k_nPanes; ++i) {
        void *handle = window.pane(static_cast<int>(i));
        EXPECT_EQ(vecPushed[i].nAccepted, 60);
        EXPECT_TRUE(pushFinalPicture(handle));
        EXPECT_TRUE(showsFinalPicture(handle)) << "pane " << i;
    }
}

TEST(ThreadClearDraw, WithoutReserveThePaneTurnsBlack)
{
    HostWindow window(k_paneSize, 1);
    void *handle = window.pane();
    ASSERT_TRUE(pushFinalPicture(handle));
    ASSERT_TRUE(showsFinalPicture(handle));
    std::thread([&] { Xelt_ClearDraw(handle); }).join();
    drainEvents();
    EXPECT_TRUE(isBlack(grab(handle)));
    EXPECT_TRUE(pushFinalPicture(handle));
    EXPECT_TRUE(showsFinalPicture(handle));
}

TEST(ThreadClearDraw, WithReserveTheLastPictureStaysUntilTheNextFrame)
{
    const std::vector<ColourFrame> vecColours = colourFrames();
    HostWindow window(k_paneSize, 1);
    void *handle = window.pane();
    Overlays overlays;
    ASSERT_TRUE(pushFinalPicture(handle));
    std::thread([&] {
        setDrawInfoCallback(handle, &Overlays::deliver, &overlays);
        setReserveLastFrame(handle, 1);
        Xelt_ClearDraw(handle);
    }).join();
    EXPECT_TRUE(showsFinalPicture(handle));
    std::thread([&] { show(handle, vecColours.front().frame); }).join();
    drainEvents();
    EXPECT_TRUE(isUniform(grab(handle), vecColours.front().aRgb, 2));
    EXPECT_EQ(overlays.nRequests, 0) << "the clear forgets the callback";
    // The reserve mode is used up with the clear that the frame made.
    std::thread([&] { Xelt_ClearDraw(handle); }).join();
    drainEvents();
    EXPECT_TRUE(isBlack(grab(handle)));
}
