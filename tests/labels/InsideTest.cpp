// What of the labels cannot be seen from outside.
#include "LabelTest.h"

#include "yuv/CLS_ShaderYuv.h"

#include <gmock/gmock.h>

#include <QMetaMethod>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

class Probe : public CLS_ShaderYuv
{
public:
    using CLS_ShaderBase::AddLabel;
    using CLS_ShaderBase::AddLabelWhilePainting;
    using CLS_ShaderBase::ClearLabels;
    using CLS_ShaderBase::m_blLabelsShown;
    using CLS_ShaderBase::m_mutexDrawInfo;
    using CLS_ShaderBase::m_pLabelParent;
    using CLS_ShaderBase::m_pLabels;
    using CLS_ShaderBase::m_vecDrawInfo;
};

class LabelsInside : public testing::Test
{
protected:
    void build(std::initializer_list<XeltDrawInfo> records)
    {
        m_probe.m_vecDrawInfo = records;
        m_probe.AddLabel();
    }

    Probe m_probe;
};

TEST_F(LabelsInside, StartEmpty)
{
    EXPECT_EQ(m_probe.m_pLabelParent, nullptr);
    EXPECT_FALSE(m_probe.m_blLabelsShown);
    for (const auto &pLabel : m_probe.m_pLabels) {
        EXPECT_TRUE(pLabel.isNull());
    }
    EXPECT_EQ(std::size(m_probe.m_pLabels), size_t{k_nLabelLimit});
}

TEST_F(LabelsInside, NegativeTopIsWrittenBackOnce)
{
    TextLook look;
    look.nTop = -5;
    look.nBottom = 30;
    build({textRecord("a", look)});
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[0].y, 0);
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[1].y, 35);
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[0].x, 10);
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[1].x, 210);
    const QRect rcFirst = m_probe.m_pLabels[0]->geometry();
    EXPECT_EQ(rcFirst, QRect(10, -11, 200, 57));
    m_probe.AddLabel();
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[1].y, 35);
    EXPECT_EQ(m_probe.m_pLabels[0]->geometry(), rcFirst);
}

TEST_F(LabelsInside, RecordsThatAreNotShownKeepTheirTop)
{
    TextLook look;
    look.nTop = -5;
    XeltDrawInfo noBox = textRecord("a", look);
    noBox.nPointNum = 1;
    XeltDrawInfo shape = textRecord("a", look);
    shape.nType = DRAWINFO_POLYLINE;
    build({noBox, shape, textRecord("", look)});
    for (const XeltDrawInfo &record : m_probe.m_vecDrawInfo) {
        EXPECT_EQ(record.aPoints[0].y, -5);
        EXPECT_EQ(record.aPoints[1].y, 60);
    }
}

TEST_F(LabelsInside, RecordsBeyondTheLastSlotKeepTheirTop)
{
    TextLook look;
    look.nTop = -5;
    const XeltDrawInfo record = textRecord("a", look);
    m_probe.m_vecDrawInfo = QVector<XeltDrawInfo>(k_nLabelLimit + 1, record);
    m_probe.AddLabel();
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[0].y, -5);
    EXPECT_EQ(m_probe.m_vecDrawInfo[1].aPoints[0].y, 0);
}

TEST_F(LabelsInside, TopAndBottomAtTheEndsOfTheirRange)
{
    TextLook look;
    look.nTop = INT32_MIN;
    look.nBottom = INT32_MAX;
    build({textRecord("a", look)});
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[0].y, 0);
    EXPECT_EQ(m_probe.m_vecDrawInfo[0].aPoints[1].y, INT32_MAX);
}

TEST_F(LabelsInside, SlotsInListOrderFromTheLast)
{
    build({textRecord("a"), textRecordOfPoints("no box", 1), lineRecord(), textRecord("c")});
    EXPECT_EQ(m_probe.m_pLabels[0]->text(), "c");
    EXPECT_TRUE(m_probe.m_pLabels[1].isNull());
    EXPECT_EQ(m_probe.m_pLabels[2]->text(), "a");
    EXPECT_TRUE(m_probe.m_pLabels[3].isNull());
}

TEST_F(LabelsInside, ShownMeansAnySlotWasUsed)
{
    build({lineRecord()});
    EXPECT_FALSE(m_probe.m_blLabelsShown);
    build({textRecordOfPoints("no box", 1)});
    EXPECT_TRUE(m_probe.m_blLabelsShown);
    build({textRecord("")});
    EXPECT_FALSE(m_probe.m_blLabelsShown);
    build({textRecord("a")});
    EXPECT_TRUE(m_probe.m_blLabelsShown);
    m_probe.m_vecDrawInfo.clear();
    m_probe.AddLabelWhilePainting();
    EXPECT_FALSE(m_probe.m_blLabelsShown);
}

TEST_F(LabelsInside, ClearLabelsBlanksAndTheNextRebuildShowsAgain)
{
    build({textRecord("a"), textRecord("<b>b</b>")});
    const QPointer<QLabel> pFirst = m_probe.m_pLabels[0];
    m_probe.ClearLabels();
    EXPECT_THAT(textsOn(&m_probe), ElementsAre(QString(), QString()));
    m_probe.AddLabel(); // the records are the same ones
    EXPECT_THAT(textsOn(&m_probe), ElementsAre("<b>b</b>", "a"));
    EXPECT_EQ(m_probe.m_pLabels[0], pFirst);
}

TEST_F(LabelsInside, ClearDrawInfoLeavesTheLabelsToTheNextRebuild)
{
    build({textRecord("a")});
    m_probe.ClearDrawInfo();
    EXPECT_THAT(m_probe.m_vecDrawInfo, IsEmpty());
    EXPECT_THAT(textsOn(&m_probe), ElementsAre("a"));
    Q_EMIT m_probe.signalDrawTextInfo();
    EXPECT_THAT(textsOn(&m_probe), ElementsAre(QString()));
}

TEST_F(LabelsInside, ADeletedLabelsSlotIsFilledAgain)
{
    build({textRecord("a"), textRecord("b")});
    m_probe.DeleteLabels();
    for (const auto &pLabel : m_probe.m_pLabels) {
        EXPECT_TRUE(pLabel.isNull());
    }
    m_probe.AddLabel();
    EXPECT_THAT(textsOn(&m_probe), ElementsAre("b", "a"));
}

// The host's widget sees its repaint when the records are free again: painting takes their mutex.
TEST_F(LabelsInside, TheRecordsAreFreeDuringTheRepaint)
{
    class Parent : public QWidget
    {
    public:
        explicit Parent(Probe &probe) : m_probe(probe) {}
        int m_nPaints = 0;
        bool m_blFree = false;

    protected:
        void paintEvent(QPaintEvent *) override
        {
            ++m_nPaints;
            m_blFree = m_probe.m_mutexDrawInfo.tryLock();
            if (m_blFree) {
                m_probe.m_mutexDrawInfo.unlock();
            }
        }

    private:
        Probe &m_probe;
    };
    Parent parent(m_probe);
    parent.resize(100, 100);
    parent.show();
    ASSERT_TRUE(pump([&] { return parent.m_nPaints > 0; }));
    drainEvents();
    parent.m_nPaints = 0;
    parent.m_blFree = false;
    m_probe.m_pLabelParent = &parent;
    build({textRecord("a")});
    EXPECT_EQ(parent.m_nPaints, 1);
    EXPECT_TRUE(parent.m_blFree);
    m_probe.DeleteLabels();
    m_probe.m_pLabelParent = nullptr;
}

TEST(LabelMetaObject, OneSignalAndOneSlot)
{
    const QMetaObject &meta = CLS_ShaderBase::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    EXPECT_EQ(signal.methodSignature(), "signalDrawTextInfo()");
    EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
    const QMetaMethod slot = meta.method(meta.methodOffset() + 1);
    EXPECT_EQ(slot.methodSignature(), "DeleteLabels()");
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
}

} // namespace
