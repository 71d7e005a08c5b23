// Release: what it logs, detachment, and destruction by the event loop only.
#include "AllocationTrap.h"
#include "Background.h"
#include "CoreLog.h"
#include "Frames.h"
#include "HostWindow.h"

#include <gmock/gmock.h>

#include <QEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace xelttest;
using testing::ElementsAre;

std::string releaseLine(const void *handle)
{
    char aText[64];
    std::snprintf(aText, sizeof aText, "[Xelt_Release] pcls = %p", handle);
    return aText;
}

// Notes on which thread a widget is destroyed, and whether it was detached by then.
struct Destruction
{
    explicit Destruction(void *handle) : pWidget(paneWidget(handle))
    {
        QObject::connect(pWidget, &QObject::destroyed, [this] {
            ++nCount;
            pThread = QThread::currentThread();
        });
    }
    QPointer<QWidget> pWidget;
    int nCount = 0;
    QThread *pThread = nullptr;
};

class Release : public testing::Test
{
protected:
    void SetUp() override { CoreLog::instance().reset(); }
};

TEST_F(Release, OnTheWidgetsThreadDetachesAtOnceAndDeletesLater)
{
    QWidget window;
    auto *pLayout = new QGridLayout(&window);
    void *handle = Xelt_Create(pLayout);
    ASSERT_NE(handle, nullptr);
    window.show();
    EXPECT_EQ(show(handle, yv12Frame(solidPlanes(32, 32, 90, 128, 128))), 0);
    drainEvents();
    const Destruction destruction(handle);
    CoreLog::instance().clear();

    EXPECT_EQ(Xelt_Release(handle), 0);
    ASSERT_FALSE(destruction.pWidget.isNull());
    EXPECT_EQ(destruction.pWidget->parentWidget(), nullptr);
    EXPECT_EQ(pLayout->count(), 0);
    EXPECT_EQ(destruction.nCount, 0);
    EXPECT_THAT(CoreLog::instance().messages(), ElementsAre(releaseLine(handle)));

    EXPECT_TRUE(pump([&] { return destruction.nCount > 0; }));
    EXPECT_EQ(destruction.nCount, 1);
    EXPECT_EQ(destruction.pThread, QThread::currentThread());
    EXPECT_TRUE(destruction.pWidget.isNull());
}

TEST_F(Release, FromAnotherThreadLeavesTheWidgetToItsOwn)
{
    QWidget window;
    auto *pLayout = new QGridLayout(&window);
    void *handle = Xelt_Create(pLayout);
    ASSERT_NE(handle, nullptr);
    window.show();
    drainEvents();
    const Destruction destruction(handle);

    EXPECT_EQ(Background([handle] { return Xelt_Release(handle); }).join().nResult, 0);
    // Nothing has touched the widget yet: its thread has been busy here.
    ASSERT_FALSE(destruction.pWidget.isNull());
    EXPECT_EQ(destruction.pWidget->parentWidget(), &window);
    EXPECT_EQ(destruction.nCount, 0);

    EXPECT_TRUE(pump([&] { return destruction.nCount > 0; }));
    EXPECT_EQ(destruction.nCount, 1);
    EXPECT_EQ(destruction.pThread, QThread::currentThread());
    EXPECT_EQ(pLayout->count(), 0);
}

TEST_F(Release, FromAnotherThreadDetachesBeforeItDeletes)
{
    struct Watcher : QObject
    {
        bool eventFilter(QObject *, QEvent *pEvent) override
        {
            if (pEvent->type() == QEvent::ParentChange || pEvent->type() == QEvent::DeferredDelete) {
                vecTypes.push_back(pEvent->type());
            }
            return false;
        }
        std::vector<QEvent::Type> vecTypes;
    } watcher;
    QWidget window;
    void *handle = Xelt_Create(new QGridLayout(&window));
    ASSERT_NE(handle, nullptr);
    const QPointer<QWidget> pWidget = paneWidget(handle);
    pWidget->installEventFilter(&watcher);
    EXPECT_EQ(Background([handle] { return Xelt_Release(handle); }).join().nResult, 0);
    // An ordinary event loop, which keeps the order of what was posted.
    QEventLoop loop;
    QObject::connect(pWidget, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer::singleShot(k_nPumpTimeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_TRUE(pWidget.isNull());
    EXPECT_THAT(watcher.vecTypes, ElementsAre(QEvent::ParentChange, QEvent::DeferredDelete));
}

TEST_F(Release, UnknownHandlesLogOnlyTheInformationalLine)
{
    int nForeign = 0;
    EXPECT_EQ(Xelt_Release(&nForeign), 0);
    EXPECT_THAT(CoreLog::instance().records(),
                ElementsAre(CoreLogRecord{CORELOG_MSG, releaseLine(&nForeign), 0}));
}

TEST_F(Release, TheLineIsSubjectToTheLevel)
{
    int nForeign = 0;
    CoreLog::instance().setLevels(199, 199);
    EXPECT_EQ(Xelt_Release(&nForeign), 0);
    EXPECT_TRUE(CoreLog::instance().records().empty());
    EXPECT_EQ(CoreLog::instance().calls(CORELOG_GET_LEVEL), 1U);
}

// Counts the overlay requests that it gets.
int32_t countRequests(void *, const XeltDrawInfoRequest *, int32_t, void *pUser)
{
    ++*static_cast<int *>(pUser);
    return 0;
}

class ReleaseOfType : public Release, public testing::WithParamInterface<int32_t>
{
};

// The widget lives on until the event loop destroys it; the host's context need not.
TEST_P(ReleaseOfType, ForgetsTheCallbackAtOnce)
{
    QWidget window;
    const int32_t nType = GetParam();
    void *handle = Xelt_CreateEx(&nType, sizeof nType);
    ASSERT_NE(handle, nullptr);
    QOpenGLWidget *pPane = paneWidget(handle);
    pPane->setParent(&window);
    pPane->resize(120, 90);
    window.resize(320, 240);
    window.show();
    ASSERT_TRUE(pump([=] { return pPane->isValid(); }));
    drainEvents();
    auto pRequests = std::make_unique<int>(0);
    ASSERT_EQ(setDrawInfoCallback(handle, &countRequests, pRequests.get()), 0);
    EXPECT_EQ(show(handle, yv12Frame(solidPlanes(32, 32, 90, 128, 128))), 0);
    EXPECT_EQ(*pRequests, 1);
    pPane->resize(140, 100);
    ASSERT_EQ(*pRequests, 2) << "a resize asks at once";

    const Destruction destruction(handle);
    EXPECT_EQ(Background([handle] { return Xelt_Release(handle); }).join().nResult, 0);
    ASSERT_FALSE(destruction.pWidget.isNull());
    pPane->resize(160, 110);
    EXPECT_EQ(*pRequests, 2);
    pRequests.reset(); // whoever asks now reads what is gone
    pPane->resize(180, 120);
    EXPECT_TRUE(pump([&] { return destruction.nCount > 0; }));
}

// Fails one of the library's allocations on this thread, by its number among them.
class FailingAllocation
{
public:
    explicit FailingAllocation(int nNumber)
    {
        m_vecTraps.reserve(static_cast<size_t>(nNumber) + 1);
        set(nNumber);
    }
    bool hasFailed() const { return m_blFailed; }

private:
    void set(int nLeft)
    {
        const auto action = [this, nLeft] {
            m_blFailed = nLeft == 0;
            if (!m_blFailed) {
                set(nLeft - 1);
            }
            return !m_blFailed;
        };
        auto pTrap = std::make_unique<AllocationTrap>(AllocationTrap::Form::Throwing, 0, SIZE_MAX, action);
        m_vecTraps.push_back(std::move(pTrap));
    }

    std::vector<std::unique_ptr<AllocationTrap>> m_vecTraps;
    bool m_blFailed = false;
};

TEST_P(ReleaseOfType, DisposesOfTheWidgetWithoutMemory)
{
    CoreLog::instance().setLevels(0, 0); // the recorder allocates too
    const HostFrame frame = yv12Frame(solidPlanes(32, 32, 90, 128, 128));
    for (const bool blHere : {true, false}) {
        bool blFailed = true;
        int nPoints = 0;
        for (; blFailed; ++nPoints) {
            ASSERT_LT(nPoints, 100);
            QWidget window;
            const int32_t nType = GetParam();
            void *handle = Xelt_CreateEx(&nType, sizeof nType);
            ASSERT_NE(handle, nullptr);
            paneWidget(handle)->setParent(&window);
            window.show();
            ASSERT_EQ(show(handle, frame), 0);
            drainEvents();
            const Destruction destruction(handle);
            int32_t nResult = -7;
            const auto release = [&] {
                const FailingAllocation failing(nPoints);
                nResult = Xelt_Release(handle);
                blFailed = failing.hasFailed();
                return 0;
            };
            if (blHere) {
                release();
            } else {
                Background(release).join();
            }
            EXPECT_EQ(nResult, 0) << "allocation " << nPoints;
            EXPECT_TRUE(pump([&] { return destruction.nCount > 0; })) << "allocation " << nPoints;
        }
        EXPECT_GT(nPoints, 1) << "nothing was allocated";
    }
}

INSTANTIATE_TEST_SUITE_P(Types, ReleaseOfType,
                         testing::Values(int32_t{XELT_RENDERER_YUV}, int32_t{XELT_RENDERER_YUV_SUBIMAGE}),
                         [](const auto &type) { return "Type" + std::to_string(type.param); });

TEST_F(Release, TwoRacingReleasesDisposeOnce)
{
    for (int nRound = 0; nRound < 50; ++nRound) {
        void *handle = Xelt_Create(nullptr);
        ASSERT_NE(handle, nullptr);
        CoreLog::instance().clear();
        const Destruction destruction(handle);
        Background first([handle] { return Xelt_Release(handle); });
        Background second([handle] { return Xelt_Release(handle); });
        EXPECT_EQ(first.join().nResult, 0);
        EXPECT_EQ(second.join().nResult, 0);
        EXPECT_THAT(CoreLog::instance().messages(), ElementsAre(releaseLine(handle), releaseLine(handle)));
        EXPECT_EQ(destruction.nCount, 0);
        ASSERT_TRUE(pump([&] { return destruction.nCount > 0; }));
        drainEvents();
        EXPECT_EQ(destruction.nCount, 1);
    }
}

} // namespace
