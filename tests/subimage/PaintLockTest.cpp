// A paint waits half a second for the frame, and not at all where there is none.
#include "InsidePane.h"

#include <QElapsedTimer>

#include <mutex>
#include <thread>

namespace xelttest {
namespace {

constexpr int k_nTimeoutMs = 500;

class PaintLockTest : public InsideTest
{
protected:
    void SetUp() override
    {
        InsideTest::SetUp();
        openWindow();
    }

    // Paints while another thread holds the frame; milliseconds that it took.
    qint64 paintTime(int nHoldMs)
    {
        std::atomic<bool> blHeld{false};
        std::atomic<bool> blPainted{false};
        std::thread holder([&] {
            const std::lock_guard<FrameMutex> lock(pane().m_mutexFrame);
            blHeld = true;
            QElapsedTimer held;
            held.start();
            while (!blPainted && held.elapsed() < nHoldMs) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        });
        while (!blHeld) {
            std::this_thread::yield();
        }
        QElapsedTimer elapsed;
        elapsed.start();
        pane().picture();
        const qint64 nTime = elapsed.elapsed();
        blPainted = true;
        holder.join();
        return nTime;
    }
};

TEST_F(PaintLockTest, ThePaintGivesUpAfterTheTimeout)
{
    const HostFrame shown = frame(VIDEO_DISPLAY_YV12);
    ASSERT_EQ(pane().submit(shown), 0);
    const qint64 nTime = paintTime(20 * k_nTimeoutMs);
    EXPECT_GE(nTime, k_nTimeoutMs - 20);
    EXPECT_LT(nTime, 10 * k_nTimeoutMs);
    EXPECT_EQ(pane().m_pProgram, nullptr) << "nothing was drawn or built";
    EXPECT_TRUE(shows(shown)) << "the next paint is whole";
}

TEST_F(PaintLockTest, ThePaintWaitsForAFrameThatComesInTime)
{
    const HostFrame shown = frame(VIDEO_DISPLAY_YV12);
    ASSERT_EQ(pane().submit(shown), 0);
    EXPECT_GE(paintTime(100), 80);
    EXPECT_NE(pane().m_pProgram, nullptr);
    EXPECT_TRUE(shows(shown));
}

TEST_F(PaintLockTest, ABlackPaneDoesNotWait)
{
    EXPECT_LT(paintTime(20 * k_nTimeoutMs), k_nTimeoutMs - 100);
    EXPECT_TRUE(isBlack(pane().picture()));
}

} // namespace
} // namespace xelttest
