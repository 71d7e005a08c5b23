// A pane whose hardware path could not be initialised: submissions wait, everything else goes on, and what ends the
// pane or clears it lets them go.
#include "../d3d11/RefuseBind.h"
#include "Background.h"
#include "CoreLog.h"
#include "HangWatchdog.h"
#include "HostWindow.h"
#include "ImageCompare.h"
#include "Workers.h"

#include <gtest/gtest.h>

#include <QPointer>
#include <QVBoxLayout>

#include <memory>

namespace {

using namespace xelttest;

class HeldUp : public testing::Test
{
protected:
    void SetUp() override
    {
        CoreLog::instance().reset();
        m_pWindow = std::make_unique<QWidget>();
        m_handle = Xelt_Create(new QVBoxLayout(m_pWindow.get()));
        ASSERT_NE(m_handle, nullptr);
        m_pPane = paneWidget(m_handle);
        m_pWindow->resize(160, 120);
        m_pWindow->show();
        ASSERT_TRUE(pump([this] { return m_pPane->isValid(); }));
        drainEvents();
        holdUp();
    }
    void TearDown() override
    {
        refuseProgramBind() = false;
        EXPECT_EQ(Xelt_Release(m_handle), 0);
        EXPECT_TRUE(pump([this] { return m_pPane.isNull(); }));
    }

    void holdUp()
    {
        refuseProgramBind() = true;
        EXPECT_EQ(show(m_handle, m_texture), 0);
        grab(m_handle);
        refuseProgramBind() = false;
        ASSERT_EQ(CoreLog::instance().count("InitD3D11EGL faild"), 1);
    }
    std::unique_ptr<Background> submission(const HostFrame &frame)
    {
        return std::make_unique<Background>([this, &frame] { return show(m_handle, frame); });
    }
    // Longer than the limit of frames, so that a wait with it would be over.
    static void expectWaiting(const Background &submission)
    {
        std::this_thread::sleep_for(Milliseconds(800));
        EXPECT_FALSE(submission.isDone());
    }
    static HostFrame textureFrame()
    {
        HostFrame frame;
        frame.desc.nDisplayType = VIDEO_DISPLAY_DXGL;
        frame.desc.iWidth = 32;
        frame.desc.iHeight = 24;
        return frame;
    }
    testing::AssertionResult showsFrames()
    {
        if (show(m_handle, m_frame) != 0) {
            return testing::AssertionFailure() << "a frame is refused";
        }
        View view;
        view.widgetSize = m_pPane->size();
        return imageMatches(grab(m_handle), renderPicture(bufferModel(m_frame.desc), view), {8.0, 1.0, 0.1});
    }

    const HangWatchdog m_watchdog;
    const HostFrame m_frame = yv12Frame(makePlanes(Pattern::Card, 64, 48));
    const HostFrame m_texture = textureFrame();
    std::unique_ptr<QWidget> m_pWindow;
    QPointer<QOpenGLWidget> m_pPane;
    void *m_handle = nullptr;
};

TEST_F(HeldUp, OtherCallsComeBackWhileSubmissionsWait)
{
    const auto pFirst = submission(m_texture);
    const auto pSecond = submission(m_frame);
    expectWaiting(*pFirst);
    EXPECT_FALSE(pSecond->isDone());
    EXPECT_EQ(setRotation(m_handle, 90), 0);
    EXPECT_EQ(setReserveLastFrame(m_handle, 0), 0);
    EXPECT_EQ(Background([this] { return setZoom(m_handle, 0.0, 0.0, 1.0, 1.0); }).join().nResult, 0);
    XeltWidgetRect rect{};
    EXPECT_EQ(Xelt_GetParam(m_handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect), 0);
    grab(m_handle); // gives up
    EXPECT_FALSE(pFirst->isDone() || pSecond->isDone());
    EXPECT_EQ(Xelt_Release(m_handle), 0);
    EXPECT_EQ(pFirst->join().nResult, -1);
    EXPECT_EQ(pSecond->join().nResult, -1);
}

TEST_F(HeldUp, TheGuiThreadIsRefusedAtOnce)
{
    const auto pSubmission = submission(m_frame);
    EXPECT_EQ(show(m_handle, m_texture), -1);
    EXPECT_EQ(show(m_handle, m_frame), -1);
    expectWaiting(*pSubmission);
    EXPECT_EQ(show(m_handle, m_frame), -1);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(pSubmission->join().nResult, -1);
}

// It would wait with the other pane's locks, which whatever ends this one may need first.
TEST_F(HeldUp, AnotherPanesCallbackIsRefusedAtOnce)
{
    struct Pushing
    {
        void *handle;
        const HostFrame &frame;
        int32_t nResult = 0;
    } pushing{m_handle, m_frame};
    void *const other = Xelt_Create(nullptr);
    ASSERT_NE(other, nullptr);
    const auto push = [](void *, const XeltDrawInfoRequest *, int32_t, void *pUser) -> int32_t {
        auto *pPushing = static_cast<Pushing *>(pUser);
        pPushing->nResult = show(pPushing->handle, pPushing->frame);
        return 0;
    };
    ASSERT_EQ(setDrawInfoCallback(other, push, &pushing), 0);
    EXPECT_EQ(Background([&] { return show(other, m_frame); }).join().nResult, 0);
    EXPECT_EQ(pushing.nResult, -1);
    EXPECT_EQ(Xelt_Release(other), 0);
}

TEST_F(HeldUp, AClearLetsSubmissionsGoAndFramesCome)
{
    const auto pFirst = submission(m_texture);
    const auto pSecond = submission(m_frame);
    expectWaiting(*pFirst);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(pFirst->join().nResult, -1);
    EXPECT_EQ(pSecond->join().nResult, -1);
    EXPECT_TRUE(isBlack(grab(m_handle)));
    EXPECT_TRUE(showsFrames());
    EXPECT_EQ(submission(m_frame)->join().nResult, 0);
}

TEST_F(HeldUp, AClearOnAnotherThreadDoesTheSame)
{
    const auto pSubmission = submission(m_frame);
    expectWaiting(*pSubmission);
    Background clearing([this] {
        Xelt_ClearDraw(m_handle);
        return 0;
    });
    clearing.join();
    EXPECT_EQ(pSubmission->join().nResult, -1);
    EXPECT_TRUE(showsFrames());
}

TEST_F(HeldUp, ItMayHappenAgainAfterAClear)
{
    Xelt_ClearDraw(m_handle);
    EXPECT_TRUE(showsFrames());
    CoreLog::instance().clear();
    holdUp();
    const auto pSubmission = submission(m_frame);
    expectWaiting(*pSubmission);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(pSubmission->join().nResult, -1);
    EXPECT_TRUE(showsFrames());
}

TEST_F(HeldUp, AClearThatKeepsThePictureKeepsThemWaiting)
{
    EXPECT_EQ(setReserveLastFrame(m_handle, 1), 0);
    const auto pSubmission = submission(m_texture);
    std::this_thread::sleep_for(Milliseconds(100));
    Xelt_ClearDraw(m_handle);
    expectWaiting(*pSubmission);
    EXPECT_EQ(setReserveLastFrame(m_handle, 0), 0);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(pSubmission->join().nResult, -1);
}

TEST_F(HeldUp, AReleaseLetsSubmissionsGo)
{
    const auto pFirst = submission(m_texture);
    const auto pSecond = submission(m_frame);
    expectWaiting(*pFirst);
    EXPECT_EQ(Background([this] { return Xelt_Release(m_handle); }).join().nResult, 0);
    EXPECT_EQ(pFirst->join().nResult, -1);
    EXPECT_EQ(pSecond->join().nResult, -1);
    EXPECT_EQ(show(m_handle, m_frame), -1);
}

TEST_F(HeldUp, ADestroyedWindowLetsSubmissionsGo)
{
    const auto pFirst = submission(m_texture);
    const auto pSecond = submission(m_frame);
    expectWaiting(*pFirst);
    EXPECT_TRUE(m_pWindow->close());
    drainEvents();
    EXPECT_FALSE(pFirst->isDone() || pSecond->isDone()) << "a closed window may be shown again";
    m_pWindow.reset();
    EXPECT_EQ(pFirst->join().nResult, -1);
    EXPECT_EQ(pSecond->join().nResult, -1);
    EXPECT_EQ(show(m_handle, m_frame), -1);
}

TEST_F(HeldUp, AWindowGoesWhileTwoThreadsKeepPushing)
{
    Workers decoders;
    std::atomic<int> nWrong{0};
    for (const HostFrame *pFrame : {&m_frame, &m_texture}) {
        decoders.start([this, pFrame, &nWrong](const std::atomic<bool> &blStop) {
            while (!blStop) {
                nWrong += show(m_handle, *pFrame) == -1 ? 0 : 1;
                std::this_thread::yield();
            }
        });
    }
    std::this_thread::sleep_for(Milliseconds(100));
    EXPECT_TRUE(m_pWindow->close());
    drainEvents();
    m_pWindow.reset();
    drainEvents();
    decoders.stop();
    EXPECT_EQ(nWrong, 0);
}

TEST_F(HeldUp, AMoveToAnotherWindowHoldsNothingUpButSubmissions)
{
    const auto pSubmission = submission(m_frame);
    QWidget other;
    QVBoxLayout layout(&other);
    layout.addWidget(m_pPane);
    other.resize(200, 150);
    other.show();
    drainEvents();
    grab(m_handle);
    EXPECT_EQ(setRotation(m_handle, 0), 0);
    Xelt_ClearDraw(m_handle);
    EXPECT_EQ(pSubmission->join().nResult, -1);
    EXPECT_TRUE(showsFrames());
    EXPECT_EQ(Xelt_Release(m_handle), 0);
    EXPECT_TRUE(pump([this] { return m_pPane.isNull(); }));
}

} // namespace
