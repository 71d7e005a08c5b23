// Labels on windows whose layout is about to change, and on widgets that ask about the pane while they paint.
#include "Background.h"
#include "HostilePane.h"
#include "OverlayHost.h"

#include <gmock/gmock.h>

#include <QWindow>

namespace {

using namespace xelttest;
using testing::Each;

// Two panes beside one another on the window that the first one's labels are put on.
class LabelsOnAWindow : public HostilePane
{
protected:
    void SetUp() override
    {
        HostilePane::SetUp();
        auto *pLayout = new QHBoxLayout(&m_window);
        m_pane = addPane(pLayout);
        m_neighbour = addPane(pLayout);
        ASSERT_TRUE(showWindow(m_window, m_pane));
        m_nWidth = paneWidget(m_pane)->width();
        m_overlays.vecRecords = {textRecord("first")};
        ASSERT_EQ(setLabelParent(m_pane, &m_window), 0);
        ASSERT_EQ(setDrawInfoCallback(m_pane, &OverlayHost::callback, &m_overlays), 0);
    }
    void TearDown() override
    {
        HostilePane::TearDown();
        EXPECT_EQ(labelWithText(&m_window, "first"), nullptr);
    }

    // Leaves the layout with something to do that the event loop has not come to yet.
    void dropNeighbour()
    {
        ASSERT_EQ(Xelt_Release(m_neighbour), 0);
        ASSERT_EQ(paneWidget(m_pane)->width(), m_nWidth);
    }
    void expectLabelAndRoom()
    {
        EXPECT_TRUE(goes(m_neighbour));
        EXPECT_TRUE(pump([&] {
            const QLabel *pLabel = labelWithText(&m_window, "first");
            return pLabel != nullptr && pLabel->isVisible() && paneWidget(m_pane)->width() > m_nWidth;
        }));
        EXPECT_TRUE(playsOn(m_pane));
    }

    OverlayHost m_overlays;
    QWidget m_window;
    void *m_pane = nullptr;
    void *m_neighbour = nullptr;
    int m_nWidth = 0;
};

TEST_P(LabelsOnAWindow, TheFirstTextComesWhileALayoutIsPending)
{
    dropNeighbour();
    EXPECT_EQ(show(m_pane, m_frame), 0);
    grab(m_pane); // a paint ahead of what is posted
    expectLabelAndRoom();
}

TEST_P(LabelsOnAWindow, TheFirstTextOfAnotherThreadComesWhileALayoutIsPending)
{
    EXPECT_EQ(Background([this] { return show(m_pane, m_frame); }).join().nResult, 0);
    dropNeighbour();
    if (GetParam() == XELT_RENDERER_YUV_SUBIMAGE) {
        grab(m_pane); // it makes its labels when it paints
    }
    expectLabelAndRoom();
}

TEST_P(LabelsOnAWindow, AResizeBringsTheFirstTextWhileALayoutIsPending)
{
    m_overlays.vecRecords.clear();
    EXPECT_EQ(show(m_pane, m_frame), 0);
    drainEvents();
    m_overlays.vecRecords = {textRecord("first")};
    dropNeighbour();
    paneWidget(m_pane)->resize(m_nWidth - 10, 50);
    grab(m_pane);
    expectLabelAndRoom();
}

XELT_FOR_BOTH_RENDERERS(LabelsOnAWindow);

// Asks for the pane's rectangle whenever it paints.
class AskingWidget : public QWidget
{
public:
    void *m_pane = nullptr; // null: does not ask
    std::vector<int32_t> m_vecResults;

protected:
    void paintEvent(QPaintEvent *) override
    {
        if (m_pane != nullptr) {
            XeltWidgetRect rect{};
            m_vecResults.push_back(Xelt_GetParam(m_pane, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect));
        }
    }
};

class LabelsOnAnAskingWidget : public HostilePane
{
protected:
    void SetUp() override
    {
        HostilePane::SetUp();
        m_pane = addPane(new QHBoxLayout(&m_window));
        ASSERT_TRUE(showWindow(m_window, m_pane));
        m_labelParent.resize(200, 100);
        m_labelParent.show();
        ASSERT_TRUE(pump([this] { return m_labelParent.windowHandle()->isExposed(); }));
        drainEvents();
        m_overlays.vecRecords = {textRecord("first")};
        ASSERT_EQ(setLabelParent(m_pane, &m_labelParent), 0);
        ASSERT_EQ(setDrawInfoCallback(m_pane, &OverlayHost::callback, &m_overlays), 0);
    }
    void TearDown() override
    {
        m_labelParent.m_pane = nullptr;
        HostilePane::TearDown();
    }

    void expectAsked()
    {
        EXPECT_TRUE(pump([this] { return !m_labelParent.m_vecResults.empty(); }));
        drainEvents();
        EXPECT_THAT(m_labelParent.m_vecResults, Each(0));
        EXPECT_TRUE(playsOn(m_pane));
    }

    OverlayHost m_overlays;
    AskingWidget m_labelParent; // a window without OpenGL, which is painted at once
    QWidget m_window;
    void *m_pane = nullptr;
};

TEST_P(LabelsOnAnAskingWidget, AnswersWhileAFrameBringsText)
{
    m_labelParent.m_pane = m_pane;
    EXPECT_EQ(show(m_pane, m_frame), 0);
    expectAsked();
}

TEST_P(LabelsOnAnAskingWidget, AnswersWhileAClearTakesTextAway)
{
    EXPECT_EQ(show(m_pane, m_frame), 0);
    grab(m_pane);
    drainEvents();
    ASSERT_NE(labelWithText(&m_labelParent, "first"), nullptr);
    m_labelParent.m_pane = m_pane;
    Xelt_ClearDraw(m_pane);
    expectAsked();
    EXPECT_EQ(labelWithText(&m_labelParent, "first"), nullptr);
}

TEST_P(LabelsOnAnAskingWidget, AnswersWhileAResizeBringsText)
{
    EXPECT_EQ(show(m_pane, m_frame), 0);
    drainEvents();
    m_overlays.vecRecords = {textRecord("second")};
    m_labelParent.m_pane = m_pane;
    m_window.resize(300, 100);
    expectAsked();
}

XELT_FOR_BOTH_RENDERERS(LabelsOnAnAskingWidget);

} // namespace
