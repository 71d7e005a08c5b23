// The set commands: what they store from payloads of every length, what they answer and what they log.
#include "CoreLog.h"
#include "ErrorRecord.h"
#include "GuardedBytes.h"
#include "OpenRenderer.h"
#include "SourceLine.h"

#include <gmock/gmock.h>

#include <QPointer>
#include <QWidget>

#include <array>
#include <cstring>
#include <memory>
#include <regex>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

class SetParam : public testing::Test
{
protected:
    void SetUp() override
    {
        CoreLog::instance().reset();
        QObject::connect(&m_yuv, &CLS_ShaderYuv::signalUpdate, [this] { ++m_nUpdates; });
    }

    template <class Record> int32_t set(uint32_t nCommand, const Record &record, int32_t nLength)
    {
        return m_yuv.SetParam(nCommand, &record, nLength);
    }

    int m_nUpdates = 0; // outlives the renderer, which emits to its end
    OpenYuv m_yuv;
};

int32_t noCallback(void *, const XeltDrawInfoRequest *, int32_t, void *)
{
    return 0;
}

TEST_F(SetParam, RefusesBadArguments)
{
    std::array<uint8_t, 64> aPayload{};
    aPayload.fill(0x11);
    for (uint32_t nCommand = 0; nCommand < 8; ++nCommand) {
        EXPECT_EQ(m_yuv.SetParam(nCommand, nullptr, 32), -1) << nCommand;
        EXPECT_EQ(m_yuv.SetParam(nCommand, aPayload.data(), 0), -1) << nCommand;
        EXPECT_EQ(m_yuv.SetParam(nCommand, aPayload.data(), -1), -1) << nCommand;
        EXPECT_EQ(m_yuv.SetParam(nCommand, aPayload.data(), INT32_MIN), -1) << nCommand;
    }
    for (const uint32_t nCommand : {8U, 9U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(m_yuv.SetParam(nCommand, aPayload.data(), 32), -1) << nCommand;
    }
    EXPECT_EQ(m_yuv.m_pfnDrawInfo, nullptr);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0, 0, 1, 1}));
    EXPECT_EQ(m_yuv.m_pLabelParent, nullptr);
    EXPECT_EQ(m_yuv.m_pD3D11Device, nullptr);
    EXPECT_EQ(m_yuv.blReserveLastFrm, 0);
    EXPECT_EQ(m_yuv.m_nVideoRotateDirection, 0);
    EXPECT_TRUE(m_yuv.m_rcDraw.isNull());
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(SetParam, CallbackAndItsContext)
{
    int nContext = 0;
    const XeltDrawInfoCallbackPara para{&noCallback, &nContext};
    EXPECT_EQ(set(XELTCMD_SET_DRAWINFO_CALLBACK, para, 16), 0);
    EXPECT_EQ(m_yuv.m_pfnDrawInfo, &noCallback);
    EXPECT_EQ(m_yuv.m_pDrawInfoUser, &nContext);
    // Eight bytes change the callback only.
    const XeltDrawInfoCallbackPara none{nullptr, nullptr};
    EXPECT_EQ(set(XELTCMD_SET_DRAWINFO_CALLBACK, none, 8), 0);
    EXPECT_EQ(m_yuv.m_pfnDrawInfo, nullptr);
    EXPECT_EQ(m_yuv.m_pDrawInfoUser, &nContext);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
    EXPECT_EQ(m_nUpdates, 0);
}

TEST_F(SetParam, ZoomIsStoredLoggedAndRepainted)
{
    const XeltEZoomArea area{0.25, 0.125, 0.75, 1.5};
    EXPECT_EQ(set(XELTCMD_SET_EZOOM_AREA, area, 32), 0);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0.25, 0.125, 0.75, 1.5}));
    EXPECT_EQ(m_nUpdates, 1);
    EXPECT_THAT(
        CoreLog::instance().records(),
        ElementsAre(CoreLogRecord{CORELOG_MSG,
                                  "[XeltRender::SetParam]XELTCMD_SET_EZOOM_AREA left = 0.250000 top = "
                                  "0.125000 right = 0.750000 bottom = 1.500000",
                                  0}));
}

TEST_F(SetParam, ZoomIsStoredUnchecked)
{
    const XeltEZoomArea inverted{2.0, -3.0, -1.0, -7.0};
    EXPECT_EQ(set(XELTCMD_SET_EZOOM_AREA, inverted, 32), 0);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{2.0, -3.0, -1.0, -7.0}));
}

TEST_F(SetParam, ShortZoomChangesTheLeadingEdges)
{
    const double aEdges[] = {0.5, 0.25};
    EXPECT_EQ(set(XELTCMD_SET_EZOOM_AREA, aEdges, 8), 0);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0.5, 0, 1, 1}));
    EXPECT_EQ(set(XELTCMD_SET_EZOOM_AREA, aEdges, 16), 0);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0.5, 0.25, 1, 1}));
    EXPECT_EQ(m_nUpdates, 2);
}

TEST_F(SetParam, LongZoomRunsIntoTheMembersBehind)
{
    // The bytes behind the window are the ones that are there already, so that nothing breaks.
    const auto *pMembers = reinterpret_cast<const uint8_t *>(&m_yuv.m_rcEZoom);
    std::array<uint8_t, 40> aPayload{};
    std::memcpy(aPayload.data(), pMembers, aPayload.size());
    const XeltEZoomArea area{0.1, 0.2, 0.8, 0.9};
    std::memcpy(aPayload.data(), &area, sizeof area);
    ASSERT_LE(pMembers + sizeof area, reinterpret_cast<const uint8_t *>(&m_yuv.m_vecDrawInfo));
    EXPECT_EQ(set(XELTCMD_SET_EZOOM_AREA, aPayload, 40), 0);
    EXPECT_EQ(std::memcmp(pMembers, aPayload.data(), aPayload.size()), 0);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0.1, 0.2, 0.8, 0.9}));
    EXPECT_TRUE(m_yuv.m_vecDrawInfo.isEmpty());
}

TEST_F(SetParam, OnlyZoomAsksForARepaint)
{
    QWidget parent;
    const std::array<int32_t, 8> anPayload{};
    for (const uint32_t nCommand : {0U, 3U, 4U, 5U, 6U, 7U}) {
        set(nCommand, anPayload, 4);
    }
    m_yuv.SetParam(XELTCMD_SET_LABEL_PARENT, &parent, 8);
    EXPECT_EQ(m_nUpdates, 0);
}

TEST_F(SetParam, LabelParentIsThePayloadPointerItself)
{
    auto pParent = std::make_unique<QWidget>();
    EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_LABEL_PARENT, pParent.get(), 1), 0);
    EXPECT_EQ(m_yuv.m_pLabelParent, pParent.get());
    QWidget other;
    EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_LABEL_PARENT, &other, 1000), 0);
    EXPECT_EQ(m_yuv.m_pLabelParent, &other);
    // One that is not used any more may go.
    pParent.reset();
    EXPECT_EQ(m_yuv.m_pLabelParent, &other);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(SetParam, DestroyedLabelParentIsForgotten)
{
    auto pParent = std::make_unique<QWidget>();
    EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_LABEL_PARENT, pParent.get(), 8), 0);
    pParent.reset();
    EXPECT_EQ(m_yuv.m_pLabelParent, nullptr);
}

TEST_F(SetParam, DeviceIsOnePointer)
{
    int nDevice = 0;
    void *pDevice = &nDevice;
    EXPECT_EQ(set(XELTCMD_SET_D3D11_DEVICE, pDevice, 8), 0);
    EXPECT_EQ(m_yuv.m_pD3D11Device, pDevice);
    // Four bytes change the low half.
    const uint32_t nLow = 0x12345678;
    EXPECT_EQ(set(XELTCMD_SET_D3D11_DEVICE, nLow, 4), 0);
    const uint64_t nHigh = reinterpret_cast<uint64_t>(pDevice) >> 32 << 32;
    EXPECT_EQ(reinterpret_cast<uint64_t>(m_yuv.m_pD3D11Device), nHigh | nLow);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(SetParam, StopDrawFlagIsStoredAndLogged)
{
    for (const int32_t nReserve : {1, 0, -5, INT32_MAX}) {
        CoreLog::instance().clear();
        EXPECT_EQ(set(XELTCMD_SET_STOPDRAW_PARA, nReserve, 4), 0);
        EXPECT_EQ(m_yuv.blReserveLastFrm, nReserve);
        EXPECT_THAT(CoreLog::instance().messages(),
                    ElementsAre("CLS_ShaderBase::SetParam-XELTCMD_SET_STOPDRAW_PARA blReserveLastFrm=" +
                                std::to_string(nReserve)));
    }
    const uint8_t nByte = 0x80;
    EXPECT_EQ(set(XELTCMD_SET_STOPDRAW_PARA, nByte, 1), 0);
    EXPECT_EQ(m_yuv.blReserveLastFrm, 0x7FFFFF80);
}

TEST_F(SetParam, RotationIsStoredAndLoggedAngleFirst)
{
    const XeltRotatePara para{1, 270, 2};
    EXPECT_EQ(set(XELTCMD_SET_ROTATE_PARA, para, 12), 0);
    EXPECT_EQ(m_yuv.m_nVideoRotateDirection, 1);
    EXPECT_EQ(m_yuv.m_nVideoRotateAngle, 270);
    EXPECT_EQ(m_yuv.mirrorType, 2);
    const auto vecMessages = CoreLog::instance().messages();
    ASSERT_EQ(vecMessages.size(), 1U);
    const std::regex line("CLS_ShaderBase::CLS_ShaderBase::OnSetVideoRotatePara\\(([1-9][0-9]*)\\) "
                          "OnSetVideoRotatePara m_nVideoRotateAngle:270, m_nVideoRotateDirection=1, "
                          "mirrorType: 2");
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(vecMessages[0], parts, line)) << vecMessages[0];
    EXPECT_THAT(statementAt("CLS_ShaderBase", std::stoi(parts[1])), testing::HasSubstr("XELT_LOG"));
}

TEST_F(SetParam, ShortRotationChangesTheLeadingMembers)
{
    const XeltRotatePara first{3, 90, 1};
    const XeltRotatePara second{-4, 45, 7};
    struct Case
    {
        int32_t nLength;
        std::array<int32_t, 3> anExpected;
    };
    for (const Case &testCase : {Case{4, {{-4, 90, 1}}}, Case{8, {{-4, 45, 1}}}, Case{12, {{-4, 45, 7}}},
                                 Case{6, {{-4, 45, 1}}}, Case{1, {{0xFC, 90, 1}}}}) {
        SCOPED_TRACE(testCase.nLength);
        EXPECT_EQ(set(XELTCMD_SET_ROTATE_PARA, first, 12), 0);
        EXPECT_EQ(set(XELTCMD_SET_ROTATE_PARA, second, testCase.nLength), 0);
        EXPECT_EQ((std::array<int32_t, 3>{
                      {m_yuv.m_nVideoRotateDirection, m_yuv.m_nVideoRotateAngle, m_yuv.mirrorType}}),
                  testCase.anExpected);
    }
}

TEST_F(SetParam, LongPayloadsAreReadUpToTheRecordOnly)
{
    // Each record ends at a page that must not be read.
    struct Case
    {
        uint32_t nCommand;
        size_t nBytes;
    };
    for (const Case &testCase : {Case{XELTCMD_SET_DRAWINFO_CALLBACK, 16}, Case{XELTCMD_SET_D3D11_DEVICE, 8},
                                 Case{XELTCMD_SET_STOPDRAW_PARA, 4}, Case{XELTCMD_SET_ROTATE_PARA, 12},
                                 Case{XELTCMD_SET_DRAW_RATIO_MODE, 4}, Case{XELTCMD_SET_DRAW_DST_RECT, 16}}) {
        const GuardedBytes record(testCase.nBytes);
        for (const int32_t nLength : {100, 100000, INT32_MAX}) {
            const int32_t nExpected = testCase.nCommand == XELTCMD_SET_DRAW_DST_RECT ? -1 : 0;
            EXPECT_EQ(m_yuv.SetParam(testCase.nCommand, record.data(), nLength), nExpected)
                << testCase.nCommand;
        }
    }
}

TEST_F(SetParam, ModeAndRectangleAreReadWholeWhateverTheLength)
{
    m_yuv.resize(100, 80);
    const XeltDrawDstRect rect{10, 20, 30, 40};
    EXPECT_EQ(set(XELTCMD_SET_DRAW_DST_RECT, rect, 1), 0);
    EXPECT_EQ(m_yuv.m_rcDraw, QRect(QPoint(10, 20), QPoint(30, 40)));
    m_yuv.m_nVideoWidth = 10;
    m_yuv.m_nVideoHeight = 10;
    const int32_t nFill = 256; // its first byte alone would be mode 0
    EXPECT_EQ(set(XELTCMD_SET_DRAW_RATIO_MODE, nFill, 1), 0);
    EXPECT_EQ(m_yuv.m_rcDraw, QRect(0, 0, 100, 80));
}

} // namespace
