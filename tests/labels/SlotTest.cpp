// Which text record comes into which label.
#include "LabelTest.h"

#include <gmock/gmock.h>

#include <QPointer>

#include <thread>

namespace {

using namespace xelttest;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class LabelSlots : public LabelTest
{
protected:
    std::vector<QString> texts() const { return textsOn(pane()); }
    std::vector<QLabel *> labels() const { return labelsOn(pane()); }
};
XELT_FOR_BOTH_RENDERERS(LabelSlots);

TEST_P(LabelSlots, NoRecordsMakeNoLabels)
{
    rebuild({});
    EXPECT_THAT(labels(), IsEmpty());
}

TEST_P(LabelSlots, LastRecordTakesTheFirstSlot)
{
    rebuild({textRecord("a"), textRecord("b"), textRecord("c")});
    EXPECT_THAT(texts(), ElementsAre("c", "b", "a"));
}

TEST_P(LabelSlots, LabelsAreUsedAgainInTheSameOrder)
{
    rebuild({textRecord("a"), textRecord("b"), textRecord("c")});
    const std::vector<QLabel *> before = labels();
    rebuild({textRecord("d"), textRecord("e")});
    EXPECT_EQ(labels(), before);
    EXPECT_THAT(texts(), ElementsAre("e", "d", QString()));
}

TEST_P(LabelSlots, UnusedLabelsStayBlank)
{
    rebuild({textRecord("a"), textRecord("b")});
    rebuild({});
    EXPECT_THAT(texts(), ElementsAre(QString(), QString()));
    rebuild({lineRecord()});
    EXPECT_THAT(texts(), ElementsAre(QString(), QString()));
    rebuild({textRecord("c")});
    EXPECT_THAT(texts(), ElementsAre("c", QString()));
}

TEST_P(LabelSlots, ShapesAndEmptyTextsTakeNoSlot)
{
    XeltDrawInfo otherType = textRecord("no text type");
    otherType.nType = 4;
    XeltDrawInfo negativeType = textRecord("no text type either");
    negativeType.nType = -3;
    rebuild({textRecord("a"), lineRecord(), textRecord(""), otherType, textRecordOfPoints("", 0),
             negativeType, textRecord("b"), lineRecord()});
    EXPECT_THAT(texts(), ElementsAre("b", "a"));
}

TEST_P(LabelSlots, TooFewPointsUseUpASlotWithoutALabel)
{
    rebuild({textRecord("a"), textRecordOfPoints("one", 1), textRecord("c"), textRecordOfPoints("none", 0),
             textRecordOfPoints("negative", INT32_MIN)});
    EXPECT_THAT(texts(), ElementsAre("c", "a"));
    QLabel *pSlot2 = labelWithText(pane(), "c");
    QLabel *pSlot4 = labelWithText(pane(), "a");

    rebuild(numberedRecords(5));
    EXPECT_THAT(labels(), SizeIs(5));
    EXPECT_EQ(pSlot2->text(), "t2");
    EXPECT_EQ(pSlot4->text(), "t0");
}

TEST_P(LabelSlots, TooFewPointsBlankALabelThatIsThere)
{
    rebuild({textRecord("a"), textRecord("b")});
    const QRect rcBefore = labelWithText(pane(), "b")->geometry();
    TextLook elsewhere;
    elsewhere.nLeft = 50;
    XeltDrawInfo onePoint = textRecord("b", elsewhere);
    onePoint.nPointNum = 1;
    rebuild({textRecord("a"), onePoint});
    EXPECT_THAT(texts(), ElementsAre(QString(), "a"));
    EXPECT_EQ(labels()[0]->geometry(), rcBefore);
}

TEST_P(LabelSlots, MorePointsThanTwoChangeNothing)
{
    for (const int nPoints : {3, 32, 33, INT32_MAX}) {
        rebuild({textRecordOfPoints("a", nPoints)});
        EXPECT_THAT(texts(), ElementsAre("a")) << nPoints;
        EXPECT_EQ(labels()[0]->geometry(), QRect(10, 9, 200, 62)) << nPoints;
    }
}

TEST_P(LabelSlots, OnlyTheLastFortyEightAreShown)
{
    for (const int nRecords : {48, 50, 500}) {
        rebuild(numberedRecords(nRecords));
        const std::vector<QString> shown = texts();
        ASSERT_THAT(shown, SizeIs(k_nLabelLimit)) << nRecords;
        for (int i = 0; i < k_nLabelLimit; ++i) {
            EXPECT_EQ(shown[static_cast<size_t>(i)], QStringLiteral("t%1").arg(nRecords - 1 - i));
        }
    }
}

TEST_P(LabelSlots, UsedUpSlotsCountTowardsTheLimit)
{
    std::vector<XeltDrawInfo> vecRecords{textRecord("beyond"), textRecord("last slot")};
    vecRecords.insert(vecRecords.end(), k_nLabelLimit - 1, textRecordOfPoints("no box", 1));
    rebuild(vecRecords);
    EXPECT_THAT(texts(), ElementsAre("last slot"));
    vecRecords.push_back(textRecordOfPoints("no box", 1));
    rebuild(vecRecords);
    EXPECT_THAT(texts(), ElementsAre(QString()));
}

TEST_P(LabelSlots, RecordsFromADecodingThread)
{
    m_host.vecRecords = {textRecord("a"), textRecord("b")};
    const int nPaints = m_pWindow->paints(handle());
    int32_t nResult = -1;
    std::thread([&] { nResult = show(handle(), m_frame); }).join();
    EXPECT_EQ(nResult, 0);
    EXPECT_THAT(labels(), IsEmpty()) << "labels belong to the GUI thread";
    ASSERT_TRUE(m_pWindow->waitForPaint(handle(), nPaints));
    drainEvents();
    EXPECT_THAT(texts(), ElementsAre("b", "a"));
}

TEST_P(LabelSlots, ClearDrawBlanksThem)
{
    rebuild({textRecord("a"), textRecord("b")});
    std::thread([&] { Xelt_ClearDraw(handle()); }).join();
    drainEvents();
    EXPECT_THAT(texts(), ElementsAre(QString(), QString()));
    EXPECT_TRUE(comesToRest());

    const int nCalls = m_host.nCalls;
    rebuild({textRecord("c")});
    EXPECT_THAT(texts(), Each(QString())) << "the callback is gone";
    EXPECT_EQ(m_host.nCalls, nCalls);
    ASSERT_EQ(setDrawInfoCallback(handle(), &OverlayHost::callback, &m_host), 0);
    rebuild({textRecord("c")});
    EXPECT_THAT(texts(), ElementsAre("c", QString()));
}

TEST_P(LabelSlots, DeleteLabelsSlotEmptiesAllSlots)
{
    rebuild(numberedRecords(k_nLabelLimit));
    const QPointer<QLabel> pLabel = labels()[0];
    ASSERT_TRUE(QMetaObject::invokeMethod(pane(), "DeleteLabels"));
    EXPECT_TRUE(pLabel.isNull());
    EXPECT_THAT(labels(), IsEmpty());
    ASSERT_TRUE(QMetaObject::invokeMethod(pane(), "DeleteLabels")); // nothing left
    rebuild({textRecord("a"), textRecord("b")});
    EXPECT_THAT(texts(), ElementsAre("b", "a"));
}

TEST_P(LabelSlots, LabelThatTheHostDeletedIsMadeAgain)
{
    rebuild({textRecord("a")});
    delete labels()[0];
    rebuild({textRecord("a")});
    EXPECT_THAT(texts(), ElementsAre("a"));
}

TEST_P(LabelSlots, ResizeAsksTheHostAgain)
{
    rebuild({textRecord("a")});
    m_host.vecRecords = {textRecord("after the resize")};
    ASSERT_TRUE(m_pWindow->resizePane(handle(), QSize(330, 250)));
    EXPECT_TRUE(pump([this] { return labelWithText(pane(), "after the resize") != nullptr; }));
    EXPECT_THAT(labels(), SizeIs(1));
}

} // namespace
