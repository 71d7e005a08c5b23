// When a label parent is painted anew.
#include "LabelTest.h"

namespace {

using namespace xelttest;

// Paint events of the label parent caused by one submission on the GUI thread, before the event loop runs.
class LabelParentRepaint : public LabelTest
{
protected:
    void SetUp() override
    {
        LabelTest::SetUp();
        m_pParent = new QWidget(m_pWindow.get());
        m_pParent->setGeometry(0, 0, 300, 200);
        m_pParent->show();
        m_counter.watch(m_pParent);
        ASSERT_EQ(setLabelParent(handle(), m_pParent), 0);
    }

    int repaints(std::vector<XeltDrawInfo> vecRecords)
    {
        drainEvents();
        EXPECT_TRUE(comesToRest());
        m_host.vecRecords = std::move(vecRecords);
        m_counter.reset();
        submit();
        return m_counter.count();
    }

    QWidget *m_pParent = nullptr;
    EventCounter m_counter{{QEvent::Paint}};
};
INSTANTIATE_TEST_SUITE_P(, LabelParentRepaint, testing::Values(XELT_RENDERER_YUV), rendererName);

TEST_P(LabelParentRepaint, NotWithoutLabelsBeforeAndNow)
{
    EXPECT_EQ(repaints({}), 0);
    EXPECT_EQ(repaints({lineRecord()}), 0);
    EXPECT_EQ(repaints({lineRecord(), textRecord("")}), 0);
}

TEST_P(LabelParentRepaint, OnceForEachRebuildWithLabels)
{
    EXPECT_EQ(repaints({textRecord("a")}), 1);
    EXPECT_EQ(repaints({textRecord("b")}), 1);
    EXPECT_EQ(repaints({textRecord("b")}), 1);
    EXPECT_EQ(repaints(numberedRecords(50)), 1);
}

TEST_P(LabelParentRepaint, OnceWhenTheLastLabelGoes)
{
    EXPECT_EQ(repaints({textRecord("a")}), 1);
    EXPECT_EQ(repaints({lineRecord()}), 1);
    EXPECT_EQ(repaints({lineRecord()}), 0);
    EXPECT_EQ(repaints({textRecord("a")}), 1);
}

TEST_P(LabelParentRepaint, OnceInClearDraw)
{
    EXPECT_EQ(repaints({textRecord("a")}), 1);
    ASSERT_TRUE(comesToRest());
    m_counter.reset();
    Xelt_ClearDraw(handle());
    EXPECT_EQ(m_counter.count(), 1);
    EXPECT_EQ(repaints({}), 0);
    m_counter.reset();
    Xelt_ClearDraw(handle());
    EXPECT_EQ(m_counter.count(), 0);
}

TEST_P(LabelParentRepaint, AUsedUpSlotCounts)
{
    EXPECT_EQ(repaints({textRecordOfPoints("a", 1)}), 1);
    EXPECT_EQ(repaints({textRecordOfPoints("a", 1)}), 1);
    EXPECT_EQ(repaints({lineRecord()}), 1);
    EXPECT_EQ(repaints({lineRecord()}), 0);
}

// A renderer that rebuilds inside its paint must not paint a widget that may be painted just now.
class LabelParentUpdate : public LabelParentRepaint
{
};
INSTANTIATE_TEST_SUITE_P(, LabelParentUpdate, testing::Values(XELT_RENDERER_YUV_SUBIMAGE), rendererName);

TEST_P(LabelParentUpdate, OnlyAfterAChange)
{
    rebuild({textRecord("a")});
    ASSERT_TRUE(comesToRest());
    m_counter.reset();
    rebuild({textRecord("b")});
    ASSERT_TRUE(comesToRest());
    EXPECT_GT(m_counter.count(), 0);
    rebuild({lineRecord()});
    ASSERT_TRUE(comesToRest());
    m_counter.reset();
    grab(handle()); // paints the pane alone
    EXPECT_EQ(m_counter.count(), 0);
    ASSERT_TRUE(comesToRest());
    EXPECT_EQ(m_counter.count(), 0);
}

} // namespace
