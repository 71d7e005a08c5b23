// The widget base: what it starts as, the order of its operations, sizes, events and layouts.
#include "HostWindow.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QMetaMethod>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPointer>
#include <QVBoxLayout>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

using namespace xelttest;

const geometry::NormRect k_rcWhole{0.0, 0.0, 1.0, 1.0};

TEST(WidgetBase, StartsWithInitialMembers)
{
    OpenBase base;
    EXPECT_TRUE(base.m_mutexFrame.try_lock());
    base.m_mutexFrame.unlock();
    EXPECT_TRUE(base.m_mutexDrawInfo.tryLock());
    base.m_mutexDrawInfo.unlock();
    EXPECT_EQ(base.m_nVideoWidth, 0);
    EXPECT_EQ(base.m_nVideoHeight, 0);
    EXPECT_EQ(base.m_pFrameBuffer, nullptr);
    EXPECT_EQ(base.m_pPlaneY, nullptr);
    EXPECT_EQ(base.m_pPlaneUV, nullptr);
    EXPECT_FALSE(base.m_bTypeChanged);
    EXPECT_EQ(base.m_nDisplayType, 0);
    EXPECT_FALSE(base.m_blGLReady);
    EXPECT_EQ(base.m_nFrameBufferSize, 0);
    EXPECT_EQ(base.m_hWinId, 0U);
    EXPECT_EQ(base.m_pD3D11Device, nullptr);
    EXPECT_EQ(base.m_pfnDrawInfo, nullptr);
    EXPECT_EQ(base.m_pDrawInfoUser, nullptr);
    EXPECT_EQ(base.m_rcEZoom, k_rcWhole);
    EXPECT_TRUE(base.m_vecDrawInfo.isEmpty());
    EXPECT_EQ(base.m_rcDraw, QRect());
    EXPECT_TRUE(base.m_rcDraw.isNull());
    EXPECT_EQ(base.m_rcDrawArea, k_rcWhole);
    EXPECT_EQ(base.m_pLabelParent, nullptr);
    EXPECT_EQ(std::size(base.m_pLabels), 48U);
    for (const auto &pLabel : base.m_pLabels) {
        EXPECT_TRUE(pLabel.isNull());
    }
    EXPECT_FALSE(base.m_blLabelsShown);
    EXPECT_EQ(base.blReserveLastFrm, 0);
    EXPECT_EQ(base.m_blUnInit, 0);
    EXPECT_EQ(base.m_nVideoRotateDirection, 0);
    EXPECT_EQ(base.m_nVideoRotateAngle, 0);
    EXPECT_EQ(base.mirrorType, 0);
    EXPECT_EQ(base.parentWidget(), nullptr);
    EXPECT_FALSE(base.isVisible());
}

TEST(WidgetBase, MainRendererStartsWithoutFrame)
{
    OpenYuv yuv;
    EXPECT_EQ(yuv.m_nDisplayType, -1);
    EXPECT_EQ(yuv.m_pFrameBuffer, nullptr);
    EXPECT_FALSE(yuv.m_blGLReady);
    EXPECT_FALSE(yuv.m_bClearPending);
    EXPECT_FALSE(yuv.m_bExplicitLength);
    EXPECT_EQ(yuv.m_nD3D11FailCount, 0U);
    EXPECT_EQ(yuv.m_nDrawInfoKind, 0);
    EXPECT_EQ(yuv.m_rcDrawArea, k_rcWhole);
    EXPECT_EQ(yuv.m_rcEZoom, k_rcWhole);
    EXPECT_TRUE(yuv.m_rcDraw.isNull());
}

TEST(WidgetBase, RotationMembersLieTogetherInPayloadOrder)
{
    OpenBase base;
    EXPECT_EQ(&base.m_nVideoRotateAngle, &base.m_nVideoRotateDirection + 1);
    EXPECT_EQ(&base.mirrorType, &base.m_nVideoRotateDirection + 2);
}

TEST(WidgetBase, HandleIsTheWidgetsAddress)
{
    OpenYuv yuv;
    const void *pWhole = &yuv;
    EXPECT_EQ(static_cast<QWidget *>(&yuv), pWhole);
    EXPECT_EQ(static_cast<QOpenGLWidget *>(&yuv), pWhole);
    EXPECT_EQ(static_cast<CLS_ShaderBase *>(&yuv), pWhole);
}

TEST(WidgetBase, MetaObjectDeclaresOneSignalAndOneSlot)
{
    const QMetaObject &meta = CLS_ShaderBase::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    EXPECT_EQ(signal.methodSignature(), QByteArray("signalDrawTextInfo()"));
    EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
    const QMetaMethod slot = meta.method(meta.methodOffset() + 1);
    EXPECT_EQ(slot.methodSignature(), QByteArray("DeleteLabels()"));
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
    EXPECT_STREQ(meta.superClass()->className(), "QOpenGLWidget");
}

// In the Itanium ABI a pointer to a virtual member function holds one more than its offset in the table.
template <class Function> ptrdiff_t slotOf(Function pfnMember)
{
    static_assert(sizeof(pfnMember) == 2 * sizeof(ptrdiff_t));
    ptrdiff_t nValue = 0;
    std::memcpy(&nValue, &pfnMember, sizeof nValue);
    EXPECT_EQ(nValue % 2, 1) << "not virtual";
    return (nValue - 1) / static_cast<ptrdiff_t>(sizeof(void *));
}

TEST(WidgetBase, OperationsStandInSlotOrderBehindQtsOwn)
{
    const ptrdiff_t nLast = slotOf(&OpenBase::paintGL); // the last that the Qt class adds
    const std::array<ptrdiff_t, 9> anSlots = {
        slotOf(&CLS_ShaderBase::SetParentLayout), slotOf(&CLS_ShaderBase::UnInit),
        slotOf(&CLS_ShaderBase::ShowYuvFrame),    slotOf(&CLS_ShaderBase::SetParam),
        slotOf(&CLS_ShaderBase::GetParam),        slotOf(&CLS_ShaderBase::ClearDraw),
        slotOf(&CLS_ShaderBase::InitFrameBuffer), slotOf(&CLS_ShaderBase::ReleaseGLResource),
        slotOf(&CLS_ShaderBase::ClearDrawInfo)};
    for (size_t i = 0; i < anSlots.size(); ++i) {
        EXPECT_EQ(anSlots[i], nLast + 1 + static_cast<ptrdiff_t>(i)) << "operation " << i + 1;
    }
}

TEST(WidgetBase, BaseOperationsDoNothing)
{
    OpenBase base;
    ASSERT_EQ(base.InitFrameBuffer(4, 4, 0), 0);
    base.m_vecDrawInfo.append(XeltDrawInfo());
    base.m_blGLReady = true;
    const uint8_t *pBuffer = base.m_pFrameBuffer;
    EXPECT_EQ(base.UnInit(), 0);
    base.ClearDraw();
    base.ReleaseGLResource();
    EXPECT_EQ(base.m_pFrameBuffer, pBuffer);
    EXPECT_EQ(base.m_vecDrawInfo.size(), 1);
    EXPECT_TRUE(base.m_blGLReady);
    EXPECT_EQ(base.m_blUnInit, 0);
    EXPECT_EQ(base.m_nVideoWidth, 4);
}

TEST(WidgetBase, ClearDrawInfoTakesTheRecordsMutex)
{
    OpenBase base;
    base.m_vecDrawInfo.append(XeltDrawInfo());
    base.m_mutexDrawInfo.lock();
    std::thread clearing([&base] { base.ClearDrawInfo(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(base.m_vecDrawInfo.size(), 1);
    base.m_mutexDrawInfo.unlock();
    clearing.join();
    EXPECT_TRUE(base.m_vecDrawInfo.isEmpty());
}

TEST(WidgetBase, SizeHints)
{
    const OpenBase base;
    EXPECT_EQ(base.sizeHint(), QSize(200, 200));
    EXPECT_EQ(base.minimumSizeHint(), QSize(50, 50));
}

TEST(WidgetBase, LayoutTakesTheWidget)
{
    QWidget host;
    auto *pLayout = new QVBoxLayout(&host);
    auto *pYuv = new OpenYuv;
    EXPECT_EQ(pYuv->SetParentLayout(nullptr), -1);
    EXPECT_EQ(pYuv->parentWidget(), nullptr);
    EXPECT_EQ(pYuv->SetParentLayout(pLayout), 0);
    ASSERT_EQ(pLayout->count(), 1);
    EXPECT_EQ(pLayout->itemAt(0)->widget(), pYuv);
    EXPECT_EQ(pYuv->parentWidget(), &host);
}

// Counts a widget's paint events.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QObject &watched) { watched.installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        m_nPaints += pEvent->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int paints() const { return m_nPaints; }

private:
    int m_nPaints = 0;
};

class VisiblePane : public testing::Test
{
protected:
    void SetUp() override
    {
        m_pYuv = new OpenYuv;
        m_pYuv->SetParentLayout(new QVBoxLayout(&m_window));
        m_window.resize(160, 120);
        m_window.show();
        ASSERT_TRUE(pump([this] { return m_pYuv->isValid(); }));
        drainEvents();
    }
    void settle() { drainEvents(); }

    QWidget m_window;
    OpenYuv *m_pYuv = nullptr;
};

TEST_F(VisiblePane, ShowEventAsksForOneRepaintMore)
{
    ASSERT_TRUE(m_pYuv->isVisible());
    const PaintCounter counter(*m_pYuv);
    QEvent other(QEvent::User);
    QCoreApplication::sendEvent(m_pYuv, &other);
    settle();
    ASSERT_EQ(counter.paints(), 0);
    QEvent shown(QEvent::Show);
    EXPECT_TRUE(QCoreApplication::sendEvent(m_pYuv, &shown));
    EXPECT_TRUE(pump([&] { return counter.paints() > 0; })); // Qt may put a paint off for a moment
    settle();
    EXPECT_EQ(counter.paints(), 1);
}

TEST_F(VisiblePane, ResizeSetsTheViewport)
{
    const auto viewportAfter = [this](int nWidth, int nHeight) {
        m_pYuv->makeCurrent();
        m_pYuv->resizeGL(nWidth, nHeight);
        std::array<GLint, 4> anViewport{};
        QOpenGLContext::currentContext()->functions()->glGetIntegerv(GL_VIEWPORT, anViewport.data());
        m_pYuv->doneCurrent();
        return anViewport;
    };
    EXPECT_EQ(viewportAfter(640, 480), (std::array<GLint, 4>{{0, 0, 640, 480}}));
    EXPECT_EQ(viewportAfter(640, 0), (std::array<GLint, 4>{{0, 0, 640, 1}}));
    EXPECT_EQ(viewportAfter(1, 1), (std::array<GLint, 4>{{0, 0, 1, 1}}));
}

TEST_F(VisiblePane, ResizeDropsOldRecordsAndKeepsThePlacement)
{
    m_pYuv->m_vecDrawInfo.append(XeltDrawInfo());
    m_pYuv->m_rcDraw = QRect(QPoint(1, 2), QPoint(30, 40));
    m_pYuv->m_rcDrawArea = {0.1, 0.2, 0.3, 0.4};
    m_window.resize(200, 140);
    ASSERT_TRUE(pump([this] { return m_pYuv->m_vecDrawInfo.isEmpty(); }));
    EXPECT_EQ(m_pYuv->m_rcDraw, QRect(QPoint(1, 2), QPoint(30, 40)));
    EXPECT_EQ(m_pYuv->m_rcDrawArea, (geometry::NormRect{0.1, 0.2, 0.3, 0.4}));
}

XeltDrawInfo textRecord(const char *pszText)
{
    XeltDrawInfo record{};
    record.nType = DRAWINFO_TEXT;
    record.nSize = 10;
    record.nPointNum = 2;
    record.aPoints[1] = {60, 20};
    std::snprintf(record.aText, sizeof record.aText, "%s", pszText);
    record.nTextEncoding = DRAWINFO_ENCODING_UTF8;
    return record;
}

TEST(WidgetBase, TextSignalOfAnotherThreadIsHandledOnTheWidgets)
{
    OpenBase base;
    base.m_vecDrawInfo.append(textRecord("text"));
    std::thread([&base] { Q_EMIT base.signalDrawTextInfo(); }).join();
    EXPECT_TRUE(base.m_pLabels[0].isNull());
    drainEvents();
    ASSERT_FALSE(base.m_pLabels[0].isNull());
    EXPECT_EQ(base.m_pLabels[0]->text(), QStringLiteral("text"));
    EXPECT_TRUE(base.m_blLabelsShown);
}

TEST(WidgetBase, LabelsAreClearedAndDeleted)
{
    OpenBase base;
    base.m_vecDrawInfo = {textRecord("one"), textRecord("two")};
    Q_EMIT base.signalDrawTextInfo();
    const QPointer<QLabel> pFirst = base.m_pLabels[0];
    const QPointer<QLabel> pSecond = base.m_pLabels[1];
    ASSERT_FALSE(pFirst.isNull());
    ASSERT_FALSE(pSecond.isNull());
    EXPECT_TRUE(base.m_pLabels[2].isNull());
    base.ClearLabels();
    EXPECT_FALSE(pFirst.isNull());
    EXPECT_TRUE(pFirst->text().isEmpty());
    EXPECT_TRUE(pSecond->text().isEmpty());
    base.DeleteLabels();
    EXPECT_TRUE(pFirst.isNull());
    EXPECT_TRUE(pSecond.isNull());
    for (const auto &pLabel : base.m_pLabels) {
        EXPECT_TRUE(pLabel.isNull());
    }
}

} // namespace
