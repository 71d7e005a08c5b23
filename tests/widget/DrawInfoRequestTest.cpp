// Overlay requests that overlap: only the records of the one that began last are kept.
#include "HostWindow.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <QVBoxLayout>

#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <vector>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

// Runs a body for each request, by its number from 1 on.
struct Host
{
    std::function<void(int nRequest, const XeltDrawInfoRequest &)> body;
    std::atomic<int> nRequests{0};

    static int32_t callback(void *, const XeltDrawInfoRequest *pRequest, int32_t, void *pUser)
    {
        auto *pHost = static_cast<Host *>(pUser);
        pHost->body(++pHost->nRequests, *pRequest);
        return 0;
    }
};

// Runs a body when the records of before are dropped, just before the host is asked for new ones.
class PausingYuv : public OpenYuv
{
public:
    void ClearDrawInfo() override
    {
        OpenYuv::ClearDrawInfo();
        if (afterClear) {
            afterClear();
        }
    }
    std::function<void()> afterClear;
};

// The receiver's answer.
int32_t deliver(const XeltDrawInfoRequest &request, int nType)
{
    XeltDrawInfo record{};
    record.nType = nType;
    return request.pfnReceiver(&record, sizeof record, request.pObject);
}

class DrawInfoRequest : public testing::Test
{
protected:
    void SetUp() override
    {
        m_pYuv = new PausingYuv;
        m_pYuv->SetParentLayout(new QVBoxLayout(&m_window));
        m_window.resize(160, 120);
        m_window.show();
        ASSERT_TRUE(pump([this] { return m_pYuv->isValid(); }));
        drainEvents();
        const XeltDrawInfoCallbackPara para{&Host::callback, &m_host};
        ASSERT_EQ(m_pYuv->SetParam(XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para), 0);
    }

    int32_t submit()
    {
        VideoFrameDesc desc{};
        desc.iWidth = 4;
        desc.iHeight = 4;
        return m_pYuv->ShowYuvFrame(&desc, sizeof desc);
    }
    // What a resize does on the GUI thread.
    void resize()
    {
        m_pYuv->makeCurrent();
        m_pYuv->resizeGL(160, 120);
        m_pYuv->doneCurrent();
    }
    std::vector<int> types() const
    {
        std::vector<int> vecTypes;
        for (const XeltDrawInfo &record : m_pYuv->m_vecDrawInfo) {
            vecTypes.push_back(record.nType);
        }
        return vecTypes;
    }

    Host m_host;
    QWidget m_window;
    PausingYuv *m_pYuv = nullptr; // owned by m_window
};

TEST_F(DrawInfoRequest, AResizeDuringASubmissionIsTheNewerOne)
{
    std::promise<void> firstDelivered;
    std::promise<void> resized;
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        if (nRequest == 1) {
            deliver(request, 101);
            firstDelivered.set_value();
            resized.get_future().wait();
            EXPECT_EQ(deliver(request, 102), 0) << "the host is not told";
            EXPECT_EQ(deliver(request, 103), 0);
        } else {
            deliver(request, 201);
            deliver(request, 202);
        }
    };
    std::thread submitting([this] { EXPECT_EQ(submit(), 0); });
    firstDelivered.get_future().wait();
    EXPECT_THAT(types(), ElementsAre(101));
    resize();
    EXPECT_THAT(types(), ElementsAre(201, 202)) << "the older one's first record has gone";
    resized.set_value();
    submitting.join();
    EXPECT_EQ(m_host.nRequests, 2);
    EXPECT_THAT(types(), ElementsAre(201, 202));
}

TEST_F(DrawInfoRequest, ASubmissionDuringAResizeIsTheNewerOne)
{
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        if (nRequest == 1) {
            deliver(request, 101);
            std::thread([this] { EXPECT_EQ(submit(), 0); }).join();
            EXPECT_THAT(types(), ElementsAre(201));
            deliver(request, 102);
        } else {
            deliver(request, 201);
        }
    };
    resize();
    EXPECT_EQ(m_host.nRequests, 2);
    EXPECT_THAT(types(), ElementsAre(201));
}

// The newer one delivers while the older one does.
TEST_F(DrawInfoRequest, RecordsThatComeByTurnsAreToldApart)
{
    std::promise<void> firstDelivered;
    std::promise<void> newerBegun;
    std::promise<void> olderOn;
    std::promise<void> newerOn;
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        if (nRequest == 1) {
            firstDelivered.set_value();
            newerBegun.get_future().wait();
            deliver(request, 101);
            olderOn.set_value();
            newerOn.get_future().wait();
            deliver(request, 102);
        } else {
            deliver(request, 201);
            newerBegun.set_value();
            olderOn.get_future().wait();
            deliver(request, 202);
            newerOn.set_value();
        }
    };
    std::thread submitting([this] { EXPECT_EQ(submit(), 0); });
    firstDelivered.get_future().wait();
    resize();
    submitting.join();
    EXPECT_THAT(types(), ElementsAre(201, 202));
}

// The older one delivers when the newer one has dropped the old records and has not begun yet.
TEST_F(DrawInfoRequest, ARecordThatComesJustBeforeTheNewerOneIsDropped)
{
    std::promise<void> begun;
    std::promise<void> goOn;
    std::promise<void> delivered;
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        if (nRequest == 1) {
            begun.set_value();
            goOn.get_future().wait();
            deliver(request, 101);
            delivered.set_value();
        } else {
            deliver(request, 201);
        }
    };
    std::thread submitting([this] { EXPECT_EQ(submit(), 0); });
    begun.get_future().wait();
    m_pYuv->afterClear = [&] {
        goOn.set_value();
        delivered.get_future().wait();
        EXPECT_THAT(types(), ElementsAre(101));
    };
    resize();
    m_pYuv->afterClear = nullptr;
    submitting.join();
    EXPECT_THAT(types(), ElementsAre(201));
}

// A callback that makes the pane resize, on the GUI thread itself.
TEST_F(DrawInfoRequest, ARequestFromInsideACallbackIsTheNewerOne)
{
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        deliver(request, 100 * nRequest + 1);
        if (nRequest < 3) {
            resize();
            deliver(request, 100 * nRequest + 2);
        }
    };
    EXPECT_EQ(submit(), 0);
    EXPECT_EQ(m_host.nRequests, 3);
    EXPECT_THAT(types(), ElementsAre(301));
}

TEST_F(DrawInfoRequest, OneAfterAnotherEachCounts)
{
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) { deliver(request, nRequest); };
    EXPECT_EQ(submit(), 0);
    EXPECT_THAT(types(), ElementsAre(1));
    resize();
    EXPECT_THAT(types(), ElementsAre(2));
    std::thread([this] { EXPECT_EQ(submit(), 0); }).join();
    EXPECT_THAT(types(), ElementsAre(3));
}

// A host may keep the receiver and deliver later, from anywhere.
TEST_F(DrawInfoRequest, RecordsOutsideACallbackAreAppended)
{
    XeltDrawInfoRequest kept{};
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        kept = request;
        deliver(request, nRequest);
    };
    EXPECT_EQ(submit(), 0);
    deliver(kept, 51);
    std::thread([&] { deliver(kept, 52); }).join();
    EXPECT_THAT(types(), ElementsAre(1, 51, 52));
    EXPECT_EQ(submit(), 0);
    deliver(kept, 53);
    EXPECT_THAT(types(), ElementsAre(2, 53));
}

// A request of one pane says nothing about the records of another.
TEST_F(DrawInfoRequest, RecordsForAnotherPaneAreAppended)
{
    OpenYuv other;
    XeltDrawInfoRequest others{};
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        if (nRequest == 1) {
            others = request;
        } else {
            deliver(others, 61);
        }
        deliver(request, nRequest);
    };
    const XeltDrawInfoCallbackPara para{&Host::callback, &m_host};
    ASSERT_EQ(other.SetParam(XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para), 0);
    VideoFrameDesc desc{};
    desc.iWidth = 4;
    desc.iHeight = 4;
    EXPECT_EQ(other.ShowYuvFrame(&desc, sizeof desc), 0);
    EXPECT_EQ(submit(), 0);
    EXPECT_THAT(types(), ElementsAre(2));
    ASSERT_EQ(other.m_vecDrawInfo.size(), 2);
    EXPECT_EQ(other.m_vecDrawInfo[1].nType, 61);
}

// What an interrupted request has not delivered is not made up for by what it does afterwards.
TEST_F(DrawInfoRequest, ANewerRequestWithoutRecordsLeavesNone)
{
    m_host.body = [&](int nRequest, const XeltDrawInfoRequest &request) {
        if (nRequest == 1) {
            deliver(request, 101);
            resize();
            deliver(request, 102);
        }
    };
    EXPECT_EQ(submit(), 0);
    EXPECT_THAT(types(), IsEmpty());
}

} // namespace
