// Labels on a widget that the host chose.
#include "LabelTest.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QPointer>

#include <thread>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

class LabelParent : public LabelTest
{
protected:
    void SetUp() override
    {
        LabelTest::SetUp();
        m_pParent = newParent();
    }

    // A widget over the pane, as a host would put one there for texts.
    QWidget *newParent()
    {
        auto *pWidget = new QWidget(m_pWindow.get());
        pWidget->setGeometry(pane()->geometry());
        pWidget->show();
        pWidget->raise();
        return pWidget;
    }

    bool isSubImage() const { return GetParam() == XELT_RENDERER_YUV_SUBIMAGE; }

    QPointer<QWidget> m_pParent;
};
XELT_FOR_BOTH_RENDERERS(LabelParent);

TEST_P(LabelParent, TakesTheLabels)
{
    EXPECT_EQ(setLabelParent(handle(), m_pParent), 0);
    rebuild({textRecord("a"), textRecord("b")});
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("b", "a"));
    EXPECT_THAT(labelsOn(pane()), IsEmpty());
    QLabel *pLabel = labelsOn(m_pParent)[0];
    EXPECT_EQ(pLabel->geometry(), QRect(10, 9, 200, 62));
    EXPECT_EQ(pLabel->windowType(), Qt::Widget);
    EXPECT_TRUE(pLabel->isVisible());
}

TEST_P(LabelParent, LabelsThatExistStayWhereTheyAre)
{
    rebuild({textRecord("a")});
    EXPECT_EQ(setLabelParent(handle(), m_pParent), 0);
    rebuild({textRecord("b"), textRecord("c")});
    EXPECT_THAT(textsOn(pane()), ElementsAre("c"));
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("b"));
    ASSERT_TRUE(QMetaObject::invokeMethod(pane(), "DeleteLabels"));
    EXPECT_THAT(labelsOn(m_pParent), IsEmpty());
    rebuild({textRecord("b"), textRecord("c")});
    EXPECT_THAT(labelsOn(pane()), IsEmpty());
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("c", "b"));
}

TEST_P(LabelParent, NullIsRefusedAndChangesNothing)
{
    EXPECT_EQ(setLabelParent(handle(), m_pParent), 0);
    EXPECT_EQ(setLabelParent(handle(), nullptr), -1);
    EXPECT_EQ(Xelt_SetParam(handle(), XELTCMD_SET_LABEL_PARENT, pane(), 0), -1);
    rebuild({textRecord("a")});
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("a"));
}

TEST_P(LabelParent, ThePaneItselfWillDo)
{
    EXPECT_EQ(setLabelParent(handle(), pane()), 0);
    rebuild({textRecord("a")});
    rebuild({textRecord("b")});
    EXPECT_THAT(textsOn(pane()), ElementsAre("b"));
    EXPECT_TRUE(comesToRest());
}

TEST_P(LabelParent, TheLengthOfTheCommandDoesNotMatter)
{
    EXPECT_EQ(Xelt_SetParam(handle(), XELTCMD_SET_LABEL_PARENT, m_pParent, 1), 0);
    rebuild({textRecord("a")});
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("a"));
}

TEST_P(LabelParent, DestroyedByTheHostBeforeARebuild)
{
    setLabelParent(handle(), m_pParent);
    rebuild({textRecord("a"), textRecord("b")});
    delete m_pParent;
    rebuild({textRecord("a"), textRecord("b")});
    EXPECT_THAT(textsOn(pane()), ElementsAre("b", "a"));
    rebuild({});
    EXPECT_THAT(textsOn(pane()), ElementsAre(QString(), QString()));
}

TEST_P(LabelParent, DestroyedWhileARebuildIsUnderWay)
{
    setLabelParent(handle(), m_pParent);
    m_host.vecRecords = {textRecord("a")};
    std::thread([&] { show(handle(), m_frame); }).join();
    delete m_pParent; // the rebuild waits in the event queue
    drainEvents();
    rebuild({textRecord("b")});
    EXPECT_THAT(textsOn(pane()), ElementsAre("b"));
}

TEST_P(LabelParent, AnotherOneReplacesIt)
{
    const QPointer<QWidget> pOther = newParent();
    setLabelParent(handle(), pOther);
    setLabelParent(handle(), m_pParent);
    delete pOther; // no longer of any account
    rebuild({textRecord("a")});
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("a"));

    // The same widget twice, then gone.
    setLabelParent(handle(), m_pParent);
    delete m_pParent;
    rebuild({textRecord("a")});
    EXPECT_THAT(textsOn(pane()), ElementsAre("a"));
}

TEST_P(LabelParent, LabelsGoWithThePane)
{
    setLabelParent(handle(), m_pParent);
    rebuild(numberedRecords(50));
    EXPECT_EQ(labelsOn(m_pParent).size(), size_t{k_nLabelLimit});
    EXPECT_EQ(m_pWindow->release(handle()), 0);
    EXPECT_THAT(labelsOn(m_pParent), IsEmpty());
}

TEST_P(LabelParent, DestroyedAfterThePane)
{
    setLabelParent(handle(), m_pParent);
    rebuild({textRecord("a")});
    m_pWindow->release(handle());
    delete m_pParent;
    drainEvents();
    EXPECT_TRUE(m_pParent.isNull());
}

TEST_P(LabelParent, TwoPanesShareIt)
{
    void *second = m_pWindow->addPane(QSize(100, 80), Creator::CreateEx, GetParam());
    ASSERT_TRUE(m_pWindow->showAndWait());
    OverlayHost host;
    host.vecRecords = {textRecord("of the second")};
    setDrawInfoCallback(second, &OverlayHost::callback, &host);
    setLabelParent(handle(), m_pParent);
    setLabelParent(second, m_pParent);
    const int nPaints = m_pWindow->paints(second);
    ASSERT_EQ(show(second, m_frame), 0);
    ASSERT_TRUE(m_pWindow->waitForPaint(second, nPaints));
    rebuild({textRecord("of the first")});
    EXPECT_NE(labelWithText(m_pParent, "of the first"), nullptr);
    EXPECT_NE(labelWithText(m_pParent, "of the second"), nullptr);
    m_pWindow->release(second);
    EXPECT_THAT(textsOn(m_pParent), ElementsAre("of the first"));
    EXPECT_TRUE(comesToRest());
}

// The host's own window is above the pane: painting it paints the pane.
TEST_P(LabelParent, TheWindowAboveThePane)
{
    setLabelParent(handle(), m_pWindow.get());
    for (int i = 0; i < 30; ++i) {
        const QByteArray abText = "frame " + QByteArray::number(i);
        m_host.vecRecords = {textRecord(abText)};
        submit(); // on the GUI thread
        if (i % 3 == 0) {
            m_pWindow->repaint();
        }
        if (isSubImage()) {
            drainEvents();
        }
        EXPECT_THAT(textsOn(m_pWindow.get()), ElementsAre(QString::fromLatin1(abText)));
    }
    EXPECT_TRUE(comesToRest());
    for (int i = 0; i < 30; ++i) {
        m_host.vecRecords = {textRecord(QByteArray::number(i))};
        std::thread([&] { show(handle(), m_frame); }).join();
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(comesToRest());
    EXPECT_THAT(textsOn(m_pWindow.get()), ElementsAre("29"));
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(comesToRest());
    EXPECT_THAT(textsOn(m_pWindow.get()), ElementsAre(QString()));
}

TEST_P(LabelParent, TheWindowAboveThePaneIsDestroyedWithIt)
{
    auto pHost = std::make_unique<QWidget>();
    const int32_t nType = GetParam();
    void *const own = Xelt_CreateEx(&nType, sizeof(nType));
    const QPointer<QWidget> pPane = paneWidget(own);
    pPane->setParent(pHost.get());
    pHost->resize(200, 150);
    pHost->show();
    setDrawInfoCallback(own, &OverlayHost::callback, &m_host);
    setLabelParent(own, pHost.get());
    m_host.vecRecords = {textRecord("a"), textRecord("b")};
    ASSERT_EQ(show(own, m_frame), 0);
    ASSERT_TRUE(pump([&] { return labelsOn(pHost.get()).size() == 2; }));
    const QPointer<QLabel> pLabel = labelsOn(pHost.get())[0];
    pHost.reset();
    EXPECT_TRUE(pPane.isNull());
    EXPECT_TRUE(pLabel.isNull());
    EXPECT_EQ(Xelt_Release(own), 0) << "an unknown handle by now";
}

} // namespace
