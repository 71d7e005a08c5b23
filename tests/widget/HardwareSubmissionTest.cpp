// What a submission hands to the hardware path, and how it ends.
#include "CoreLog.h"
#include "HardwareRecorder.h"
#include "HostWindow.h"
#include "OpenRenderer.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

int32_t noRecords(void *, const XeltDrawInfoRequest *, int32_t, void *pUser)
{
    ++*static_cast<int *>(pUser);
    return 0;
}

class HardwareSubmission : public testing::Test
{
protected:
    void SetUp() override
    {
        CoreLog::instance().reset();
        m_yuv.m_pD3D11EGL = std::make_unique<HardwareRecorder>(m_notes);
    }
    int32_t show(int32_t nType, int32_t nLength = sizeof(VideoFrameDesc))
    {
        m_desc.nDisplayType = nType;
        m_desc.iWidth = 64;
        m_desc.iHeight = 48;
        m_desc.nTextureSlice = 5;
        return m_yuv.ShowYuvFrame(&m_desc, nLength);
    }
    void setDevice(void *pDevice)
    {
        EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_D3D11_DEVICE, &pDevice, sizeof pDevice), 0);
    }

    HardwareNotes m_notes;
    OpenYuv m_yuv;
    VideoFrameDesc m_desc{};
};

TEST_F(HardwareSubmission, HandsOverTheDescriptorAsItCame)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 112"));
    EXPECT_EQ(m_notes.pFrame, &m_desc);
    EXPECT_EQ(std::memcmp(m_notes.aFrame.data(), &m_desc, sizeof m_desc), 0);
    EXPECT_EQ(m_yuv.m_nVideoWidth, 64);
    EXPECT_EQ(m_yuv.m_nVideoHeight, 48);
    EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
    // The length is the host's, even where less or more than the record.
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL, 60), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 60"));
    struct
    {
        VideoFrameDesc desc;
        uint8_t aMore[88];
    } longer{m_desc, {1}};
    EXPECT_EQ(m_yuv.ShowYuvFrame(&longer, sizeof longer), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 200"));
    EXPECT_EQ(m_notes.pFrame, &longer);
}

TEST_F(HardwareSubmission, SetsTheDeviceWhereItIsAnotherOne)
{
    int aDevices[2] = {};
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 112")); // none set, none held
    setDevice(&aDevices[0]);
    EXPECT_THAT(m_notes.take(), IsEmpty()); // not before a frame comes
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetDevice", "SetFrame 112"));
    EXPECT_EQ(m_yuv.m_pD3D11EGL->Device(), &aDevices[0]);
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 112"));
    setDevice(&aDevices[1]);
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetDevice", "SetFrame 112"));
    EXPECT_EQ(m_yuv.m_pD3D11EGL->Device(), &aDevices[1]);
}

TEST_F(HardwareSubmission, OtherTypesDoNotTouchIt)
{
    for (const int32_t nType : {0, 3, 4, 5, 7, 8}) {
        EXPECT_EQ(show(nType), 0);
    }
    EXPECT_THAT(m_notes.take(), IsEmpty());
}

TEST_F(HardwareSubmission, LeavingTheTypeClearsFirstWithReserveForcedOff)
{
    int nCalls = 0;
    const XeltDrawInfoCallbackPara para{&noRecords, &nCalls};
    EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_DRAWINFO_CALLBACK, &para, sizeof para), 0);
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_EQ(nCalls, 1);
    m_yuv.blReserveLastFrm = 1;
    m_yuv.m_rcEZoom = {0.1, 0.1, 0.9, 0.9};
    CLS_D3D11EGL *pBefore = m_yuv.m_pD3D11EGL.get();
    m_notes.take();
    CoreLog::instance().clear();

    EXPECT_EQ(show(VIDEO_DISPLAY_YV12), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("ClearFramePending", "ReleaseHostObjects"));
    EXPECT_EQ(m_yuv.blReserveLastFrm, 0);
    EXPECT_FALSE(m_yuv.m_bClearPending);
    EXPECT_NE(m_yuv.m_pD3D11EGL.get(), pBefore); // replaced, not reused
    EXPECT_FALSE(m_notes.blDestroyed);           // but a host thread does not destroy it
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0, 0, 1, 1}));
    EXPECT_EQ(m_yuv.m_pfnDrawInfo, nullptr);
    EXPECT_EQ(nCalls, 1);
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_YV12);
    EXPECT_THAT(CoreLog::instance().messages(),
                ElementsAre("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0",
                            "ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player"));
}

TEST_F(HardwareSubmission, StayingInTheTypeClearsNothing)
{
    m_yuv.blReserveLastFrm = 1;
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 112", "SetFrame 112"));
    EXPECT_EQ(m_yuv.blReserveLastFrm, 1);
}

TEST_F(HardwareSubmission, AnswersFailureWhileTheLastDrawFailed)
{
    m_yuv.m_nD3D11FailCount = 3;
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), -1);
    EXPECT_THAT(m_notes.take(), ElementsAre("SetFrame 112")); // accepted all the same
    m_yuv.m_nD3D11FailCount = 0;
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_yuv.m_nD3D11FailCount = 1;
    EXPECT_EQ(show(VIDEO_DISPLAY_YV12), 0); // counts for its own type only
}

TEST_F(HardwareSubmission, ClearDrawWithReserveKeepsIt)
{
    EXPECT_EQ(show(VIDEO_DISPLAY_DXGL), 0);
    m_yuv.blReserveLastFrm = 1;
    CLS_D3D11EGL *pBefore = m_yuv.m_pD3D11EGL.get();
    m_notes.take();
    m_yuv.ClearDraw();
    EXPECT_THAT(m_notes.take(), ElementsAre("ClearFramePending"));
    EXPECT_EQ(m_yuv.m_pD3D11EGL.get(), pBefore);
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_DXGL);
    EXPECT_TRUE(m_yuv.m_bClearPending);
}

} // namespace
