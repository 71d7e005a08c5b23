// A host that calls every function from event filters, from a widget's painting and from Qt's message handler.
#include "Background.h"
#include "HostilePane.h"
#include "OverlayHost.h"
#include "Striker.h"

#include <gmock/gmock.h>

#include <QWindow>

namespace {

using namespace xelttest;
using testing::Each;

class HostileEvents : public HostilePane
{
protected:
    void SetUp() override
    {
        HostilePane::SetUp();
        auto *pLayout = new QHBoxLayout(&m_window);
        m_pane = addPane(pLayout);
        m_neighbour = addPane(pLayout);
        ASSERT_TRUE(showWindow(m_window, m_pane));
        m_apart.resize(200, 100);
        m_apart.show();
        ASSERT_TRUE(pump([this] { return m_apart.windowHandle()->isExposed(); }));
        drainEvents();
        m_overlays.vecRecords = {textRecord("text")};
    }
    void TearDown() override
    {
        m_striker.disarm();
        m_window.m_pStriker = nullptr;
        m_apart.m_pStriker = nullptr;
        HostilePane::TearDown();
    }

    void arm() { m_striker.arm(m_pane, m_neighbour, m_frame); }
    // The callback is forgotten by every clear.
    void renew()
    {
        EXPECT_EQ(setDrawInfoCallback(m_pane, &OverlayHost::callback, &m_overlays), 0);
        EXPECT_EQ(setLabelParent(m_pane, m_pLabelParent), 0);
    }
    void pushOnThread(const HostFrame &frame)
    {
        Background pushing([&] { return show(m_pane, frame); });
        EXPECT_TRUE(pump([&] { return pushing.isDone(); }));
    }
    // An ordinary host's day, with the labels on either window.
    void play()
    {
        for (QWidget *pLabelParent : {&m_apart, &m_window}) {
            m_pLabelParent = pLabelParent;
            playOnce();
        }
    }
    void playOnce()
    {
        for (const HostFrame *pFrame : {&m_frame, &m_texture, &m_frame}) {
            renew();
            show(m_pane, *pFrame);
            drainEvents();
            renew();
            pushOnThread(*pFrame);
            grab(m_pane);
        }
        renew();
        m_window.resize(m_window.width() + 20, m_window.height() + 10);
        drainEvents();
        paneWidget(m_pane)->hide();
        drainEvents();
        paneWidget(m_pane)->show();
        Xelt_ClearDraw(m_pane);
        drainEvents();
        grab(m_pane);
    }
    void expectWhole()
    {
        EXPECT_GT(m_striker.strikes(), 0);
        m_striker.disarm();
        EXPECT_TRUE(playsOn(m_pane));
        EXPECT_TRUE(playsOn(m_neighbour));
        for (const QWidget *pLabelParent : {&m_apart, &m_window}) {
            EXPECT_THAT(textsOn(pLabelParent), Each(QString())) << "a label that nobody takes away";
        }
    }

    static HostFrame textureFrame()
    {
        HostFrame frame;
        frame.desc.nDisplayType = VIDEO_DISPLAY_DXGL;
        frame.desc.iWidth = 32;
        frame.desc.iHeight = 24;
        return frame;
    }

    const HostFrame m_texture = textureFrame();
    Striker m_striker;
    OverlayHost m_overlays;
    StrikingWindow m_apart; // without OpenGL: a repaint is a paint at once
    StrikingWindow m_window;
    QWidget *m_pLabelParent = &m_apart;
    void *m_pane = nullptr;
    void *m_neighbour = nullptr;
};

TEST_P(HostileEvents, CallsFromAFilterOnThePane)
{
    StrikingFilter filter(m_striker, false);
    paneWidget(m_pane)->installEventFilter(&filter);
    arm();
    play();
    expectWhole();
}

TEST_P(HostileEvents, CallsFromAFilterOnTheLabel)
{
    StrikingFilter filter(m_striker, true);
    m_apart.installEventFilter(&filter);
    m_window.installEventFilter(&filter);
    arm();
    play();
    expectWhole();
}

TEST_P(HostileEvents, CallsFromAFilterOnTheLabelParent)
{
    StrikingFilter filter(m_striker, false);
    m_apart.installEventFilter(&filter);
    m_window.installEventFilter(&filter);
    arm();
    play();
    expectWhole();
}

TEST_P(HostileEvents, CallsFromThePaintingOfTheLabelParent)
{
    m_apart.m_pStriker = &m_striker;
    m_window.m_pStriker = &m_striker;
    arm();
    play();
    expectWhole();
}

TEST_P(HostileEvents, CallsFromTheMessageHandlerWhileALabelIsSet)
{
    m_overlays.vecRecords.front().nSize = 0; // is said
    const MessageStriker messages(m_striker);
    arm();
    renew();
    EXPECT_EQ(show(m_pane, m_frame), 0);
    grab(m_pane);
    drainEvents();
    expectWhole();
}

TEST_P(HostileEvents, CallsFromTheMessageHandlerWhileTexturesAreSetUp)
{
    const MessageStriker messages(m_striker);
    arm();
    EXPECT_EQ(show(m_pane, m_texture), 0);
    grab(m_pane); // builds the program, and tells about it
    drainEvents();
    expectWhole();
}

TEST_P(HostileEvents, CallsFromTheMessageHandlerAllDay)
{
    m_overlays.vecRecords.front().nSize = 0;
    const MessageStriker messages(m_striker);
    arm();
    play();
    expectWhole();
}

XELT_FOR_BOTH_RENDERERS(HostileEvents);

} // namespace
