// The overlay request record and the receiver that takes the host's records.
#include "GuardedBytes.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

namespace {

using namespace xelttest;

// A host that keeps the raw request and runs a body in the callback.
struct Host
{
    std::array<uint8_t, 88> aRequest{};
    void *pReserved = nullptr;
    int32_t nLength = 0;
    int nCalls = 0;
    std::function<void(const XeltDrawInfoRequest &)> body;

    static int32_t callback(void *pReserved, const XeltDrawInfoRequest *pRequest, int32_t nLength,
                            void *pUser)
    {
        auto *pHost = static_cast<Host *>(pUser);
        pHost->pReserved = pReserved;
        pHost->nLength = nLength;
        ++pHost->nCalls;
        std::memcpy(pHost->aRequest.data(), pRequest, pHost->aRequest.size());
        if (pHost->body) {
            pHost->body(*pRequest);
        }
        return 12345;
    }

    template <class Value> Value at(size_t nOffset) const
    {
        Value value;
        std::memcpy(&value, aRequest.data() + nOffset, sizeof value);
        return value;
    }
};

class DrawInfo : public testing::Test
{
protected:
    void SetUp() override
    {
        m_yuv.resize(320, 240);
        const XeltDrawInfoCallbackPara para{&Host::callback, &m_host};
        ASSERT_EQ(m_yuv.SetParam(XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para), 0);
    }

    int32_t showKind(int32_t nKind)
    {
        VideoFrameDesc desc{};
        desc.iWidth = 4;
        desc.iHeight = 4;
        desc.nDrawInfoKind = nKind;
        return m_yuv.ShowYuvFrame(&desc, sizeof desc);
    }

    Host m_host;
    OpenYuv m_yuv;
};

TEST_F(DrawInfo, RequestIsWholeAndReservedFieldsAreZero)
{
    EXPECT_EQ(showKind(-77), 0);
    EXPECT_EQ(m_host.nCalls, 1);
    EXPECT_EQ(m_host.pReserved, nullptr);
    EXPECT_EQ(m_host.nLength, 88);
    EXPECT_EQ(m_host.at<uint64_t>(0), 0U);
    EXPECT_EQ(m_host.at<int32_t>(8), -77);
    for (size_t i = 36; i < 72; ++i) {
        EXPECT_EQ(m_host.aRequest[i], 0) << "byte " << i;
    }
    EXPECT_NE(m_host.at<void *>(72), nullptr);
    EXPECT_EQ(m_host.at<void *>(80), &m_yuv);
    EXPECT_EQ(m_yuv.m_nDrawInfoKind, -77);
}

struct Area
{
    int nWidth;
    int nHeight;
    geometry::NormRect rcArea;
    std::array<int32_t, 6> anExpected; // width, height, left, top, right, bottom
};

TEST_F(DrawInfo, RequestHasTheDrawnAreaInPixels)
{
    const Area aAreas[] = {
        {320, 240, {0, 0, 1, 1}, {{320, 240, 0, 0, 320, 240}}},
        {320, 240, {0.25, 0.5, 0.75, 0.625}, {{160, 30, 80, 120, 240, 150}}},
        {333, 77, {0.1, 0.1, 0.9, 0.9}, {{266, 62, 33, 7, 299, 69}}},
        {320, 240, {-0.15625, -0.25, 1.25, 1.25}, {{450, 360, -50, -60, 400, 300}}},
        {320, 240, {0.9, 0.8, 0.1, 0.2}, {{256, 144, 288, 192, 32, 48}}},
        {1, 1, {0.5, 0.5, 1, 1}, {{1, 1, 0, 0, 1, 1}}},
        {320, 240, {-0.001, -0.001, 0.001, 0.001}, {{0, 0, 0, 0, 0, 0}}},
    };
    for (const Area &area : aAreas) {
        SCOPED_TRACE(testing::PrintToString(area.anExpected));
        m_yuv.resize(area.nWidth, area.nHeight);
        m_yuv.m_rcDrawArea = area.rcArea;
        EXPECT_EQ(showKind(1), 0);
        EXPECT_EQ((m_host.at<std::array<int32_t, 6>>(12)), area.anExpected);
    }
}

TEST_F(DrawInfo, RequestFollowsTheSinglePrecisionOfTheArea)
{
    struct Case
    {
        int nWidth;
        int nHeight;
        XeltDrawDstRect rect;
        std::array<int32_t, 6> anExpected;
    };
    // Edges whose quotients are not exact come back one pixel short.
    for (const Case &testCase : {Case{320, 240, {10, 20, 109, 139}, {{98, 118, 10, 20, 108, 138}}},
                                 Case{320, 240, {-50, -60, 400, 300}, {{450, 360, -50, -60, 400, 300}}},
                                 Case{200, 150, {1, 1, 199, 149}, {{199, 148, 0, 1, 199, 149}}},
                                 Case{333, 77, {7, 5, 100, 50}, {{92, 44, 7, 5, 99, 49}}}}) {
        SCOPED_TRACE(testing::PrintToString(testCase.anExpected));
        m_yuv.resize(testCase.nWidth, testCase.nHeight);
        EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_DRAW_DST_RECT, &testCase.rect, sizeof testCase.rect), 0);
        EXPECT_EQ(showKind(1), 0);
        EXPECT_EQ((m_host.at<std::array<int32_t, 6>>(12)), testCase.anExpected);
    }
}

TEST_F(DrawInfo, RequestDoesNotDependOnTheWidgetsPlace)
{
    QWidget parent;
    OpenYuv *pChild = new OpenYuv;
    pChild->setParent(&parent);
    pChild->setGeometry(40, 30, 100, 80);
    const XeltDrawInfoCallbackPara para{&Host::callback, &m_host};
    pChild->SetParam(XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para);
    VideoFrameDesc desc{};
    desc.iWidth = 4;
    desc.iHeight = 4;
    EXPECT_EQ(pChild->ShowYuvFrame(&desc, sizeof desc), 0);
    EXPECT_EQ((m_host.at<std::array<int32_t, 6>>(12)), (std::array<int32_t, 6>{{100, 80, 0, 0, 100, 80}}));
}

TEST_F(DrawInfo, RequestOfExtremeAreasDoesNotOverflow)
{
    m_yuv.m_rcDrawArea = {-1e300, -1e300, 1e300, 1e300};
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ((m_host.at<std::array<int32_t, 6>>(12)),
              (std::array<int32_t, 6>{{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}}));
}

TEST_F(DrawInfo, ReceiverChecksItsArguments)
{
    std::vector<int32_t> vecResults;
    m_host.body = [&](const XeltDrawInfoRequest &request) {
        const XeltDrawInfo record{};
        vecResults = {request.pfnReceiver(nullptr, 416, request.pObject),
                      request.pfnReceiver(&record, 416, nullptr),
                      request.pfnReceiver(&record, 0, request.pObject),
                      request.pfnReceiver(&record, -1, request.pObject),
                      request.pfnReceiver(&record, INT32_MIN, request.pObject)};
    };
    EXPECT_EQ(showKind(1), 0);
    EXPECT_THAT(vecResults, testing::ElementsAre(-1, -1, -1, -1, -1));
    EXPECT_TRUE(m_yuv.m_vecDrawInfo.isEmpty());
}

TEST_F(DrawInfo, RecordsAreCutOrFilledWithZero)
{
    const GuardedBytes record(416); // nothing behind it may be read
    std::memset(record.data(), 0xC3, record.size());
    const std::vector<int32_t> vecLengths = {1, 4, 17, 415, 416, 417, 5000, INT32_MAX};
    std::vector<int32_t> vecResults;
    m_host.body = [&](const XeltDrawInfoRequest &request) {
        for (const int32_t nLength : vecLengths) {
            vecResults.push_back(request.pfnReceiver(record.data(), nLength, request.pObject));
        }
    };
    EXPECT_EQ(showKind(1), 0);
    EXPECT_THAT(vecResults, testing::Each(0));
    ASSERT_EQ(static_cast<size_t>(m_yuv.m_vecDrawInfo.size()), vecLengths.size());
    for (size_t i = 0; i < vecLengths.size(); ++i) {
        const auto nCopied = static_cast<size_t>(std::min(vecLengths[i], 416));
        std::array<uint8_t, 416> aExpected{};
        std::memset(aExpected.data(), 0xC3, nCopied);
        EXPECT_EQ(std::memcmp(&m_yuv.m_vecDrawInfo[static_cast<int>(i)], aExpected.data(), aExpected.size()),
                  0)
            << vecLengths[i];
    }
}

TEST_F(DrawInfo, ShortRecordsAreReadUpToTheirLengthOnly)
{
    const GuardedBytes record(20);
    std::memset(record.data(), 0x5A, record.size());
    m_host.body = [&](const XeltDrawInfoRequest &request) {
        EXPECT_EQ(request.pfnReceiver(record.data(), 20, request.pObject), 0);
    };
    EXPECT_EQ(showKind(1), 0);
    ASSERT_EQ(m_yuv.m_vecDrawInfo.size(), 1);
    EXPECT_EQ(m_yuv.m_vecDrawInfo[0].aPoints[0].x, 0x5A5A5A5A);
    EXPECT_EQ(m_yuv.m_vecDrawInfo[0].aPoints[0].y, 0);
}

TEST_F(DrawInfo, ManyRecordsKeepTheirOrder)
{
    constexpr int k_nRecords = 5000;
    m_host.body = [&](const XeltDrawInfoRequest &request) {
        for (int i = 0; i < k_nRecords; ++i) {
            XeltDrawInfo record{};
            record.nType = 100 + i;
            EXPECT_EQ(request.pfnReceiver(&record, sizeof record, request.pObject), 0);
        }
    };
    EXPECT_EQ(showKind(1), 0);
    ASSERT_EQ(m_yuv.m_vecDrawInfo.size(), k_nRecords);
    for (int i = 0; i < k_nRecords; ++i) {
        ASSERT_EQ(m_yuv.m_vecDrawInfo[i].nType, 100 + i);
    }
}

TEST_F(DrawInfo, EachFrameStartsAfresh)
{
    int nRecords = 3;
    m_host.body = [&](const XeltDrawInfoRequest &request) {
        for (int i = 0; i < nRecords; ++i) {
            const XeltDrawInfo record{};
            request.pfnReceiver(&record, sizeof record, request.pObject);
        }
    };
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(m_yuv.m_vecDrawInfo.size(), 3);
    nRecords = 1;
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(m_yuv.m_vecDrawInfo.size(), 1);
    nRecords = 0;
    EXPECT_EQ(showKind(1), 0);
    EXPECT_TRUE(m_yuv.m_vecDrawInfo.isEmpty());
}

TEST_F(DrawInfo, CallbackRunsOnTheSubmittingThreadUnderTheFrameMutex)
{
    std::thread::id callbackThread;
    bool blFrameMutexFree = true;
    m_host.body = [&](const XeltDrawInfoRequest &) {
        callbackThread = std::this_thread::get_id();
        std::thread([&] { blFrameMutexFree = m_yuv.m_mutexFrame.try_lock(); }).join();
    };
    std::thread submitting([&] { EXPECT_EQ(showKind(1), 0); });
    const std::thread::id submittingThread = submitting.get_id();
    submitting.join();
    EXPECT_EQ(callbackThread, submittingThread);
    EXPECT_FALSE(blFrameMutexFree);
}

TEST_F(DrawInfo, LabelSignalTellsOfRecordsBeforeAndAfter)
{
    int nSignals = 0;
    const QObject context; // ends the connection with this test
    QObject::connect(&m_yuv, &CLS_ShaderBase::signalDrawTextInfo, &context, [&nSignals] { ++nSignals; });
    int nRecords = 0;
    m_host.body = [&](const XeltDrawInfoRequest &request) {
        for (int i = 0; i < nRecords; ++i) {
            const XeltDrawInfo record{};
            request.pfnReceiver(&record, sizeof record, request.pObject);
        }
    };
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(nSignals, 0); // none before, none now
    nRecords = 1;
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(nSignals, 1);
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(nSignals, 2);
    nRecords = 0;
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(nSignals, 3); // the last ones went away
    EXPECT_EQ(showKind(1), 0);
    EXPECT_EQ(nSignals, 3);
    m_yuv.ClearDraw();
    EXPECT_EQ(nSignals, 4); // always
}

TEST_F(DrawInfo, KindIsKeptOnlyWithACallback)
{
    EXPECT_EQ(showKind(5), 0);
    EXPECT_EQ(m_yuv.m_nDrawInfoKind, 5);
    m_yuv.m_pfnDrawInfo = nullptr;
    EXPECT_EQ(showKind(6), 0);
    EXPECT_EQ(m_yuv.m_nDrawInfoKind, 5);
    EXPECT_EQ(m_host.nCalls, 1);
}

TEST_F(DrawInfo, ClearDrawDropsRecordsAndCallback)
{
    m_yuv.m_vecDrawInfo.append(XeltDrawInfo());
    m_yuv.ClearDraw();
    EXPECT_TRUE(m_yuv.m_vecDrawInfo.isEmpty());
    EXPECT_EQ(m_yuv.m_pfnDrawInfo, nullptr);
    EXPECT_EQ(m_yuv.m_pDrawInfoUser, &m_host);
}

} // namespace
