// Handles: null, unknown, stale, and those of panes that the host destroyed itself.
#include "CoreLog.h"
#include "Frames.h"
#include "GuardedBytes.h"
#include "HostWindow.h"

#include <gmock/gmock.h>

#include <QGridLayout>
#include <QPointer>

#include <array>

namespace {

using namespace xelttest;
using testing::IsEmpty;

// Answers of the exports to a handle that is not registered.
void expectUnknown(void *handle)
{
    const HostFrame frame = yv12Frame(solidPlanes(8, 8, 90, 128, 128));
    std::array<int32_t, 4> anResult{{11, 12, 13, 14}};
    EXPECT_EQ(setRatioMode(handle, 1), -1);
    EXPECT_EQ(Xelt_GetParam(handle, XELTCMD_GET_WIDGET_RECT, anResult.data(), sizeof anResult), -1);
    EXPECT_EQ(anResult, (std::array<int32_t, 4>{{11, 12, 13, 14}}));
    EXPECT_EQ(show(handle, frame), -1);
    Xelt_ClearDraw(handle);
}

class Handle : public testing::Test
{
protected:
    void SetUp() override { CoreLog::instance().reset(); }
};

TEST_F(Handle, NullIsRefused)
{
    expectUnknown(nullptr);
    EXPECT_EQ(Xelt_Release(nullptr), -1);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(Handle, UnknownMemoryIsNeverTouched)
{
    const GuardedBytes none(0);
    expectUnknown(none.data());
    EXPECT_EQ(Xelt_Release(none.data()), 0);
}

TEST_F(Handle, OnlyTheExactAddressCounts)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    auto *pBytes = static_cast<char *>(handle);
    for (const ptrdiff_t nOffset : {-8, -1, 1, 8, 16}) {
        expectUnknown(pBytes + nOffset);
        EXPECT_EQ(Xelt_Release(pBytes + nOffset), 0);
    }
    EXPECT_EQ(setRatioMode(handle, 1), 0);
    EXPECT_EQ(Xelt_Release(handle), 0);
    drainEvents();
}

TEST_F(Handle, ValidHandleGetsTheRenderersOwnAnswers)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    paneWidget(handle)->resize(300, 200);
    XeltWidgetRect rect{};
    EXPECT_EQ(Xelt_GetParam(handle, XELTCMD_GET_WIDGET_RECT, &rect, sizeof rect), 0);
    EXPECT_EQ(rect.right, 299);
    EXPECT_EQ(rect.bottom, 199);
    EXPECT_EQ(setDstRect(handle, 10, 10, 10, 200), -1);
    EXPECT_EQ(setDstRect(handle, 10, 10, 20, 200), 0);
    EXPECT_EQ(show(handle, yv12Frame(solidPlanes(8, 8, 90, 128, 128))), 0);
    EXPECT_EQ(Xelt_ShowYuvFrame(handle, nullptr, 112), -1);
    EXPECT_EQ(Xelt_Release(handle), 0);
    drainEvents();
}

TEST_F(Handle, LengthsAboveTwoGigabytesAreNegativeToTheRenderer)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    const HostFrame frame = yv12Frame(solidPlanes(8, 8, 90, 128, 128));
    const XeltStopDrawPara para{1};
    uint32_t nValue = 0;
    EXPECT_EQ(Xelt_ShowYuvFrame(handle, &frame.desc, 0x80000000U), -1);
    EXPECT_EQ(Xelt_SetParam(handle, XELTCMD_SET_STOPDRAW_PARA, &para, 0xFFFFFFFFU), -1);
    EXPECT_EQ(Xelt_GetParam(handle, XELTCMD_GET_IS_OPENGLES, &nValue, 0xFFFFFFFFU), -1);
    EXPECT_EQ(Xelt_Release(handle), 0);
    drainEvents();
}

TEST_F(Handle, ReleasedHandleIsUnknownAtOnce)
{
    void *handle = Xelt_Create(nullptr);
    const QPointer<QWidget> pWidget = paneWidget(handle);
    ASSERT_EQ(Xelt_Release(handle), 0);
    ASSERT_FALSE(pWidget.isNull());
    expectUnknown(handle);
    EXPECT_EQ(Xelt_Release(handle), 0);
    drainEvents();
    EXPECT_TRUE(pWidget.isNull());
    expectUnknown(handle);
    EXPECT_EQ(Xelt_Release(handle), 0);
}

TEST_F(Handle, PaneDeletedByTheHostIsUnknown)
{
    void *handle = Xelt_Create(nullptr);
    ASSERT_NE(handle, nullptr);
    delete paneWidget(handle);
    expectUnknown(handle);
    EXPECT_EQ(Xelt_Release(handle), 0);
}

TEST_F(Handle, PanesThatDieWithTheirWindowAreUnknown)
{
    void *first = nullptr;
    void *second = nullptr;
    {
        QWidget window;
        auto *pLayout = new QGridLayout(&window);
        first = Xelt_Create(pLayout);
        second = Xelt_Create(pLayout);
        ASSERT_NE(first, nullptr);
        ASSERT_NE(second, nullptr);
        window.show();
        const HostFrame frame = yv12Frame(solidPlanes(32, 32, 90, 128, 128));
        EXPECT_EQ(show(first, frame), 0);
        EXPECT_EQ(show(second, frame), 0);
        drainEvents();
    }
    for (void *handle : {first, second}) {
        expectUnknown(handle);
        EXPECT_EQ(Xelt_Release(handle), 0);
    }
}

} // namespace
