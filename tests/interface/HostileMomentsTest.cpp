// Host code that comes at the moments when Qt or the library has something half done.
#include "HostilePane.h"

#include <gmock/gmock.h>

#include <QLoggingCategory>

#include <functional>
#include <utility>
#include <vector>

namespace {

using namespace xelttest;

// Answers the overlay callback by running something once.
struct OnceHost
{
    std::function<void()> body;

    static int32_t callback(void *, const XeltDrawInfoRequest *, int32_t, void *pUser)
    {
        if (const auto body = std::exchange(static_cast<OnceHost *>(pUser)->body, nullptr)) {
            body();
        }
        return 0;
    }
};

class HostileMoments : public HostilePane
{
protected:
    void SetUp() override
    {
        HostilePane::SetUp();
        m_pane = addPane(new QHBoxLayout(&m_window));
        m_pWidget = paneWidget(m_pane);
    }
    void TearDown() override
    {
        CoreLog::instance().reset();
        HostilePane::TearDown();
    }
    // Runs it inside a submission on the GUI thread, with the renderer's locks held.
    void pushWith(std::function<void()> body)
    {
        m_host.body = std::move(body);
        ASSERT_EQ(setDrawInfoCallback(m_pane, &OnceHost::callback, &m_host), 0);
        EXPECT_EQ(show(m_pane, m_frame), 0);
        EXPECT_EQ(m_host.body, nullptr) << "it was called";
    }

    OnceHost m_host;
    QWidget m_window;
    QWidget m_other;
    void *m_pane = nullptr;
    QPointer<QOpenGLWidget> m_pWidget;
};
INSTANTIATE_TEST_SUITE_P(, HostileMoments, testing::Values(XELT_RENDERER_YUV, XELT_RENDERER_YUV_SUBIMAGE),
                         rendererName);

// The pane gets its context, whose set-up has the frame to itself, in the middle of a frame.
TEST_P(HostileMoments, ACallbackShowsTheWindowForTheFirstTime)
{
    pushWith([this] {
        m_window.resize(320, 120);
        m_window.show();
        EXPECT_TRUE(pump([this] { return m_pWidget->isValid(); }));
    });
    EXPECT_TRUE(playsOn(m_pane));
}

TEST_P(HostileMoments, ACallbackMovesThePaneToAnotherWindow)
{
    ASSERT_TRUE(showWindow(m_window, m_pane));
    EXPECT_EQ(show(m_pane, m_frame), 0);
    drainEvents();
    auto *pLayout = new QHBoxLayout(&m_other);
    pushWith([&] {
        pLayout->addWidget(m_pWidget);
        m_other.resize(320, 120);
        m_other.show();
    });
    EXPECT_TRUE(pump([this] { return m_pWidget->isValid(); }));
    EXPECT_TRUE(playsOn(m_pane));
}

// The core library is called from paints and from the set-up of a context, with locks held.
TEST_P(HostileMoments, ALogFunctionCallsTheLibrary)
{
    std::vector<int32_t> vecResults;
    CoreLog::instance().setHook([&](const CoreLogRecord &record) {
        if (record.sText.find("GL_VERSION") != std::string::npos ||
            record.sText.find("larger than the context") != std::string::npos) {
            vecResults.push_back(show(m_pane, m_frame));
            vecResults.push_back(setReserveLastFrame(m_pane, 0));
            Xelt_ClearDraw(m_pane);
        }
    });
    ASSERT_TRUE(showWindow(m_window, m_pane));
    EXPECT_THAT(vecResults, testing::ElementsAre(-1, -1)) << "while its context is set up";
    HostFrame large;
    large.desc.iWidth = 1 << 20;
    large.desc.iHeight = 2;
    EXPECT_EQ(show(m_pane, large), 0);
    grab(m_pane);
    EXPECT_THAT(vecResults, testing::ElementsAre(-1, -1, -1, -1)) << "in a paint";
    CoreLog::instance().reset();
    EXPECT_TRUE(playsOn(m_pane));
}

// Inside Qt's own painting of the pane.
TEST_P(HostileMoments, AMessageHandlerReleasesThePane)
{
    ASSERT_TRUE(showWindow(m_window, m_pane));
    static std::function<void()> s_onMessage;
    static QtMessageHandler s_pfnBefore = nullptr;
    s_onMessage = [this] {
        s_onMessage = nullptr;
        EXPECT_EQ(Xelt_Release(m_pane), 0);
        EXPECT_EQ(show(m_pane, m_frame), -1);
    };
    s_pfnBefore =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &strText) {
            if (const auto onMessage = s_onMessage) {
                onMessage();
            }
            s_pfnBefore(type, context, strText);
        });
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    HostFrame texture;
    texture.desc.nDisplayType = VIDEO_DISPLAY_DXGL;
    texture.desc.iWidth = 32;
    texture.desc.iHeight = 24;
    EXPECT_EQ(show(m_pane, texture), 0);
    EXPECT_TRUE(goes(m_pane)) << "its first paint says where the uniforms lie";
    qInstallMessageHandler(s_pfnBefore);
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, false);
    EXPECT_EQ(s_onMessage, nullptr);
}

} // namespace
