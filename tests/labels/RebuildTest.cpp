// Rebuilds over and over: what they cost and what they leave behind; panes that hide, move and go.
#include "LabelTest.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QPointer>

#include <thread>

namespace {

using namespace xelttest;
using testing::ElementsAre;

// Everything that setting a label up sends, besides painting.
const std::vector<QEvent::Type> k_vecLayoutEvents{
    QEvent::LayoutRequest, QEvent::Resize,        QEvent::Move,        QEvent::FontChange,
    QEvent::StyleChange,   QEvent::PaletteChange, QEvent::Polish,      QEvent::ChildAdded,
    QEvent::ChildRemoved,  QEvent::Show,          QEvent::ZOrderChange};

class LabelRebuild : public LabelTest
{
protected:
    int layoutEvents(const std::vector<XeltDrawInfo> &vecRecords)
    {
        rebuild(vecRecords);
        EXPECT_TRUE(comesToRest());
        EventCounter counter(k_vecLayoutEvents);
        counter.watch(pane());
        for (QLabel *pLabel : labelsOn(pane())) {
            counter.watch(pLabel);
        }
        for (int i = 0; i < 10; ++i) {
            rebuild(vecRecords);
        }
        EXPECT_TRUE(comesToRest());
        return counter.count();
    }
};
XELT_FOR_BOTH_RENDERERS(LabelRebuild);

TEST_P(LabelRebuild, NothingNewCostsNoLayout)
{
    EXPECT_EQ(layoutEvents({textRecord("a"), textRecord("b"), textRecord("<b>c</b>")}), 0);
    EXPECT_EQ(layoutEvents(numberedRecords(50)), 0);
}

TEST_P(LabelRebuild, BlankLabelsCostNoLayout)
{
    rebuild(numberedRecords(10));
    EXPECT_EQ(layoutEvents({textRecord("a")}), 0);
    EXPECT_EQ(layoutEvents({lineRecord()}), 0);
    EXPECT_EQ(layoutEvents({textRecordOfPoints("a", 1)}), 0);
}

TEST_P(LabelRebuild, TheCountSeesAChange)
{
    rebuild({textRecord("a")});
    EventCounter counter(k_vecLayoutEvents);
    counter.watch(pane());
    counter.watch(labelsOn(pane())[0]);
    rebuild({textRecord("ab")});
    EXPECT_GT(counter.count(), 0);
}

TEST_P(LabelRebuild, PaintingComesToRestWithLabelsOnTheScreen)
{
    rebuild(numberedRecords(5));
    EXPECT_TRUE(comesToRest());
    rebuild(numberedRecords(2));
    EXPECT_TRUE(comesToRest()) << "labels that were blanked";
    rebuild({lineRecord()});
    EXPECT_TRUE(comesToRest());
    setLabelParent(handle(), m_pWindow.get());
    rebuild(numberedRecords(8));
    EXPECT_TRUE(comesToRest());
    rebuild(numberedRecords(2));
    EXPECT_TRUE(comesToRest());
}

TEST_P(LabelRebuild, TenThousandTimesWithoutAWidgetMore)
{
    m_pWindow->resizePane(handle(), QSize(64, 48));
    rebuild(numberedRecords(50));
    const auto nWidgets = QApplication::allWidgets().size();
    const std::vector<QLabel *> labels = labelsOn(pane());
    ASSERT_EQ(labels.size(), size_t{k_nLabelLimit});
    const std::vector<std::vector<XeltDrawInfo>> lists{
        numberedRecords(1), {textRecord("other")}, {},
        numberedRecords(3), {lineRecord()},        {textRecord("<i>i</i>"), textRecordOfPoints("x", 1)}};
    for (size_t i = 0; i < 10000; ++i) {
        if (i % 500 == 0) {
            m_host.vecRecords = numberedRecords(i % 1000 == 0 ? 50 : 500);
        } else {
            m_host.vecRecords = lists[i % lists.size()];
        }
        ASSERT_EQ(show(handle(), m_frame), 0);
        if (GetParam() == XELT_RENDERER_YUV_SUBIMAGE) {
            grab(handle()); // this one rebuilds when it paints
        }
        if (i % 100 == 0) {
            drainEvents();
        }
    }
    drainEvents();
    EXPECT_EQ(labelsOn(pane()), labels);
    EXPECT_EQ(QApplication::allWidgets().size(), nWidgets);
}

TEST_P(LabelRebuild, WhileThePaneIsHidden)
{
    pane()->hide();
    rebuild({textRecord("a")});
    if (GetParam() == XELT_RENDERER_YUV) {
        EXPECT_THAT(textsOn(pane()), ElementsAre("a"));
        EXPECT_FALSE(labelsOn(pane())[0]->isVisible());
        EXPECT_TRUE(labelsOn(pane())[0]->isVisibleTo(pane()));
    }
    pane()->show();
    ASSERT_TRUE(pump([this] { return labelWithText(pane(), "a") != nullptr; }));
    EXPECT_TRUE(labelsOn(pane())[0]->isVisible());
    pane()->hide();
    EXPECT_FALSE(labelsOn(pane())[0]->isVisible());
}

TEST_P(LabelRebuild, WhileTheWindowIsHidden)
{
    rebuild({textRecord("a")});
    m_pWindow->hide();
    rebuild({textRecord("b")});
    m_pWindow->show();
    ASSERT_TRUE(pump([this] { return labelWithText(pane(), "b") != nullptr; }));
    EXPECT_EQ(labelsOn(pane()).size(), 1U);
    EXPECT_TRUE(labelsOn(pane())[0]->isVisible());
}

TEST_P(LabelRebuild, AfterAMoveToAnotherWindow)
{
    rebuild({textRecord("a"), textRecord("b")});
    const std::vector<QLabel *> before = labelsOn(pane());
    HostWindow other(nullptr);
    QWidget *pPane = pane();
    void *const moved = handle();
    other.adopt(moved);
    ASSERT_TRUE(other.showAndWait());
    EXPECT_EQ(labelsOn(pPane), before);
    EXPECT_TRUE(before[0]->isVisible());
    EXPECT_EQ(before[0]->window(), &other);
    m_host.vecRecords = {textRecord("c")};
    const int nPaints = other.paints(moved);
    ASSERT_EQ(show(moved, m_frame), 0);
    ASSERT_TRUE(other.waitForPaint(moved, nPaints));
    drainEvents();
    EXPECT_THAT(textsOn(pPane), ElementsAre("c", QString()));
    EXPECT_EQ(labelsOn(pPane), before);
}

TEST_P(LabelRebuild, ReleaseTakesTheLabelsWithIt)
{
    const auto nWidgets = QApplication::allWidgets().size();
    rebuild(numberedRecords(50));
    const QPointer<QLabel> pLabel = labelsOn(pane())[0];
    m_host.vecRecords = {textRecord("too late")};
    std::thread([&] { show(handle(), m_frame); }).join(); // a rebuild waits in the event queue
    EXPECT_EQ(m_pWindow->release(handle()), 0);
    drainEvents();
    EXPECT_TRUE(pLabel.isNull());
    EXPECT_EQ(QApplication::allWidgets().size(), nWidgets - 1);
}

TEST_P(LabelRebuild, ManyThreadsPushTexts)
{
    std::vector<std::thread> threads;
    threads.reserve(4);
    m_host.vecRecords = numberedRecords(20);
    std::atomic<int> nRunning{4};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i) {
                show(handle(), m_frame);
            }
            --nRunning;
        });
    }
    EXPECT_TRUE(pump([&] { return nRunning == 0; }));
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(comesToRest());
    EXPECT_THAT(labelsOn(pane()), testing::SizeIs(20));
    EXPECT_THAT(textsOn(pane()), testing::Contains("t0"));
    EXPECT_THAT(textsOn(pane()), testing::Contains("t19"));
}

} // namespace
