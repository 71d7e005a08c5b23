// The get commands, on the GUI thread and on others, with and without a current context.
#include "HostWindow.h"
#include "OpenRenderer.h"
#include "TestEnvironment.h"

#include <gmock/gmock.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QVBoxLayout>

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace xelttest;

class GetParam : public testing::Test
{
protected:
    template <class Value> int32_t get(uint32_t nCommand, Value &value, int32_t nLength)
    {
        return m_yuv.GetParam(nCommand, &value, nLength);
    }

    OpenYuv m_yuv;
};

TEST_F(GetParam, RefusesBadArguments)
{
    std::array<int32_t, 4> anBuffer{{7, 7, 7, 7}};
    for (uint32_t nCommand = 0; nCommand < 4; ++nCommand) {
        EXPECT_EQ(m_yuv.GetParam(nCommand, nullptr, 16), -1) << nCommand;
        EXPECT_EQ(get(nCommand, anBuffer, 0), -1) << nCommand;
        EXPECT_EQ(get(nCommand, anBuffer, -1), -1) << nCommand;
    }
    for (const uint32_t nCommand : {2U, 4U, 5U, 0xFFFFFFFFU}) {
        EXPECT_EQ(get(nCommand, anBuffer, 4), -1) << nCommand;
    }
    EXPECT_EQ(anBuffer, (std::array<int32_t, 4>{{7, 7, 7, 7}}));
}

TEST_F(GetParam, WidgetRectIsWrittenWholeTopFirst)
{
    m_yuv.resize(321, 123);
    m_yuv.move(40, 50);
    for (const int32_t nLength : {1, 4, 16, 100}) {
        std::array<int32_t, 5> anBuffer{{-7, -7, -7, -7, -7}};
        EXPECT_EQ(get(XELTCMD_GET_WIDGET_RECT, anBuffer, nLength), 0);
        EXPECT_EQ(anBuffer, (std::array<int32_t, 5>{{0, 0, 320, 122, -7}})) << nLength;
    }
    XeltWidgetRect rect{};
    EXPECT_EQ(get(XELTCMD_GET_WIDGET_RECT, rect, sizeof rect), 0);
    EXPECT_EQ(rect.right, 320);
    EXPECT_EQ(rect.bottom, 122);
}

TEST_F(GetParam, WinIdIsTheWidgetsAndKept)
{
    uint64_t hWindow = 0;
    EXPECT_EQ(get(XELTCMD_GET_WINID, hWindow, 8), 0);
    EXPECT_NE(hWindow, 0U);
    EXPECT_EQ(hWindow, m_yuv.winId());
    EXPECT_EQ(m_yuv.m_hWinId, hWindow);
    // What is kept is answered, not asked for again.
    m_yuv.m_hWinId = 0x1122334455667788;
    EXPECT_EQ(get(XELTCMD_GET_WINID, hWindow, 8), 0);
    EXPECT_EQ(hWindow, 0x1122334455667788U);
}

TEST_F(GetParam, WinIdIsCutToTheLength)
{
    m_yuv.m_hWinId = 0x1122334455667788;
    struct Case
    {
        int32_t nLength;
        uint64_t hExpected;
    };
    for (const Case &testCase :
         {Case{1, 0xAAAAAAAAAAAAAA88}, Case{4, 0xAAAAAAAA55667788}, Case{8, 0x1122334455667788}}) {
        uint64_t hWindow = 0xAAAAAAAAAAAAAAAA;
        EXPECT_EQ(get(XELTCMD_GET_WINID, hWindow, testCase.nLength), 0);
        EXPECT_EQ(hWindow, testCase.hExpected) << testCase.nLength;
    }
    std::array<uint64_t, 2> ahWindows{{0, 0xAAAAAAAAAAAAAAAA}};
    EXPECT_EQ(get(XELTCMD_GET_WINID, ahWindows, 16), 0);
    EXPECT_EQ(ahWindows[0], 0x1122334455667788U);
    EXPECT_EQ(ahWindows[1], 0xAAAAAAAAAAAAAAAAU);
}

TEST_F(GetParam, WinIdFromAnotherThreadIsMadeOnTheWidgets)
{
    std::atomic<bool> blDone{false};
    int32_t nResult = -7;
    uint64_t hWindow = 0;
    std::thread asking([&] {
        nResult = get(XELTCMD_GET_WINID, hWindow, 8);
        blDone = true;
    });
    EXPECT_TRUE(pump([&] { return blDone.load(); }));
    asking.join();
    EXPECT_EQ(nResult, 0);
    EXPECT_EQ(hWindow, m_yuv.winId());
}

TEST_F(GetParam, WinIdFromAnotherThreadGivesUpOnABlockedGuiThread)
{
    int32_t nResult = -7;
    uint64_t hWindow = 99;
    std::chrono::milliseconds duration{};
    std::thread([&] {
        const auto start = std::chrono::steady_clock::now();
        nResult = get(XELTCMD_GET_WINID, hWindow, 8);
        duration =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    }).join();
    EXPECT_EQ(nResult, -1);
    EXPECT_EQ(hWindow, 99U);
    EXPECT_GE(duration.count(), 480);
    EXPECT_LT(duration.count(), 5500);
    // The request that nobody waits for any more does no harm.
    drainEvents();
    EXPECT_EQ(get(XELTCMD_GET_WINID, hWindow, 8), 0);
    EXPECT_EQ(hWindow, m_yuv.winId());
    // Known by now, so that another thread need not wait.
    uint64_t hAgain = 0;
    std::thread([&] { nResult = get(XELTCMD_GET_WINID, hAgain, 8); }).join();
    EXPECT_EQ(nResult, 0);
    EXPECT_EQ(hAgain, hWindow);
}

TEST_F(GetParam, OpenGLESFollowsTheCurrentContext)
{
    QOpenGLContext context;
    ASSERT_TRUE(context.create());
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    ASSERT_TRUE(context.makeCurrent(&surface));
    std::array<uint32_t, 2> anAnswer{{77, 77}};
    EXPECT_EQ(get(XELTCMD_GET_IS_OPENGLES, anAnswer, 1), 0);
    EXPECT_EQ(anAnswer[0], glFlavour() == GlFlavour::Es ? 1U : 0U);
    EXPECT_EQ(anAnswer[1], 77U);
    context.doneCurrent();
}

TEST_F(GetParam, OpenGLESWithoutContextIsTheModulesType)
{
    ASSERT_EQ(QOpenGLContext::currentContext(), nullptr);
    uint32_t nAnswer = 77;
    EXPECT_EQ(get(XELTCMD_GET_IS_OPENGLES, nAnswer, 100), 0);
    EXPECT_EQ(nAnswer, QOpenGLContext::openGLModuleType() == QOpenGLContext::LibGL ? 0U : 1U);
}

} // namespace
