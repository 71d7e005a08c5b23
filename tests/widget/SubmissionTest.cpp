// Submission of frames: descriptors of every length, display types and their log, refusals.
#include "CoreLog.h"
#include "ErrorRecord.h"
#include "FailingCalloc.h"
#include "Frames.h"
#include "HostWindow.h"
#include "OpenRenderer.h"
#include "SourceLine.h"
#include "d3d11/CLS_D3D11EGL.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char k_szYv12[] = "ShowYuvFrame Display type is VIDEO_DISPLAY_YV12,The Player is SoftWare Player";
constexpr char k_szNv12[] = "ShowYuvFrame Display type is VIDEO_DISPLAY_NV12,The Player is DxvaPlayer";
constexpr char k_szVagl[] = "ShowYuvFrame Display type is VIDEO_DISPLAY_VAGL,The Player is HWVaapiPlayer";
constexpr char k_szDxgl[] = "ShowYuvFrame Display type is VIDEO_DISPLAY_DXGL,The Player is D3D11Player";

class Submission : public testing::Test
{
protected:
    void SetUp() override
    {
        CoreLog::instance().reset();
        QObject::connect(&m_yuv, &CLS_ShaderYuv::signalUpdate, [this] { ++m_nUpdates; });
    }

    int32_t show(const VideoFrameDesc &desc) { return m_yuv.ShowYuvFrame(&desc, sizeof desc); }
    static VideoFrameDesc frameOf(int32_t nType, int32_t nWidth = 8, int32_t nHeight = 6)
    {
        VideoFrameDesc desc{};
        desc.nDisplayType = nType;
        desc.iWidth = nWidth;
        desc.iHeight = nHeight;
        return desc;
    }

    int m_nUpdates = 0; // outlives the renderer, which emits to its end
    OpenYuv m_yuv;
};

TEST_F(Submission, RefusesWhatIsNoDescriptor)
{
    const VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_YV12);
    EXPECT_EQ(m_yuv.ShowYuvFrame(nullptr, 112), -1);
    EXPECT_EQ(m_yuv.ShowYuvFrame(&desc, 0), -1);
    EXPECT_EQ(m_yuv.ShowYuvFrame(&desc, -1), -1);
    EXPECT_EQ(m_yuv.ShowYuvFrame(&desc, INT32_MIN), -1);
    EXPECT_EQ(m_yuv.m_nDisplayType, -1);
    EXPECT_FALSE(m_yuv.m_bTypeChanged);
    EXPECT_EQ(m_nUpdates, 0);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(Submission, RefusesFramesOfADestroyedWidget)
{
    Q_EMIT m_yuv.destroyed(&m_yuv);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), -1);
    EXPECT_EQ(m_yuv.m_nDisplayType, -1);
    EXPECT_EQ(m_nUpdates, 0);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
}

TEST_F(Submission, AnotherObjectsEndDoesNotCount)
{
    QObject other;
    Q_EMIT m_yuv.destroyed(&other);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
}

TEST_F(Submission, LongDescriptorIsReadUpTo112Bytes)
{
    const GuardedBytes memory(112);
    const VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, 16, 4);
    std::memcpy(memory.data(), &desc, sizeof desc);
    for (const int32_t nLength : {112, 113, 200, INT32_MAX}) {
        EXPECT_EQ(m_yuv.ShowYuvFrame(memory.data(), nLength), 0) << nLength;
    }
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_NV12);
    EXPECT_EQ(m_yuv.m_nVideoWidth, 16);
    EXPECT_EQ(m_yuv.m_nVideoHeight, 4);
}

TEST_F(Submission, MissingBytesOfADescriptorAreZero)
{
    VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12, 16, 4);
    const std::vector<uint8_t> aPicture(96, 0x55);
    desc.pFrameData = aPicture.data();
    desc.nDataLen = 96;
    // Forty bytes end before the type, which then is 0; the length behind it is 0 too.
    const GuardedBytes memory(40);
    std::memcpy(memory.data(), &desc, memory.size());
    EXPECT_EQ(m_yuv.ShowYuvFrame(memory.data(), 40), 0);
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_YV12);
    EXPECT_EQ(m_yuv.m_nFrameBufferSize, 0);
    EXPECT_FALSE(m_yuv.m_bExplicitLength);
    EXPECT_EQ(m_yuv.m_pFrameBuffer[95], 0x55);
    // Twenty end before the height: no size, no frame.
    const GuardedBytes small(20);
    std::memcpy(small.data(), &desc, small.size());
    EXPECT_EQ(m_yuv.ShowYuvFrame(small.data(), 20), -1);
    EXPECT_EQ(m_yuv.m_nVideoHeight, 4);
    const uint8_t nOne = 0;
    EXPECT_EQ(m_yuv.ShowYuvFrame(&nOne, 1), -1);
}

TEST_F(Submission, BytesBeyondThoseGivenAreNotRead)
{
    VideoFrameDesc desc = frameOf(VIDEO_DISPLAY_NV12);
    for (size_t nLength = 1; nLength <= sizeof desc; ++nLength) {
        const GuardedBytes memory(nLength);
        std::memcpy(memory.data(), &desc, nLength);
        // The width stands in bytes 16 to 19 and the height in 20 to 23; one byte of each is enough here.
        EXPECT_EQ(m_yuv.ShowYuvFrame(memory.data(), static_cast<int32_t>(nLength)), nLength > 20 ? 0 : -1)
            << nLength;
    }
}

struct TypeCase
{
    int32_t nType;
    int32_t nStored;
    const char *pszText;
};

TEST_F(Submission, EachTypeIsLoggedWhenItChanges)
{
    const TypeCase aCases[] = {
        {0, 0, k_szYv12},
        {3, 3, k_szNv12},
        {5, 5, k_szVagl},
        {8, 8, k_szVagl},
        {6, 6, k_szDxgl},
        {1, 1, k_szYv12},
        {2, 2, k_szYv12},
        {7, 7, k_szYv12},
        {9, 9, k_szYv12},
        {-2, -2, k_szYv12},
        {INT32_MAX, INT32_MAX, k_szYv12},
        {INT32_MIN, INT32_MIN, k_szYv12},
        {4, 5, k_szYv12},
    };
    for (const TypeCase &testCase : aCases) {
        SCOPED_TRACE(testCase.nType);
        OpenYuv yuv;
        CoreLog::instance().clear();
        const VideoFrameDesc desc = frameOf(testCase.nType);
        EXPECT_EQ(yuv.ShowYuvFrame(&desc, sizeof desc), 0);
        EXPECT_EQ(yuv.m_nDisplayType, testCase.nStored);
        EXPECT_TRUE(yuv.m_bTypeChanged);
        EXPECT_THAT(CoreLog::instance().records(),
                    ElementsAre(CoreLogRecord{CORELOG_MSG, testCase.pszText, 0}));
        if (testCase.nType == testCase.nStored) {
            // The same type again is no change.
            yuv.m_bTypeChanged = false;
            CoreLog::instance().clear();
            EXPECT_EQ(yuv.ShowYuvFrame(&desc, sizeof desc), 0);
            EXPECT_FALSE(yuv.m_bTypeChanged);
            EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
        }
    }
}

TEST_F(Submission, EveryFrameOfTypeFourIsAChange)
{
    for (int i = 0; i < 3; ++i) {
        CoreLog::instance().clear();
        m_yuv.m_bTypeChanged = false;
        EXPECT_EQ(show(frameOf(4)), 0);
        EXPECT_TRUE(m_yuv.m_bTypeChanged);
        EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_VAGL);
        EXPECT_THAT(CoreLog::instance().messages(), ElementsAre(k_szYv12));
    }
    // A 5 then is none.
    CoreLog::instance().clear();
    EXPECT_EQ(show(frameOf(5)), 0);
    EXPECT_THAT(CoreLog::instance().messages(), IsEmpty());
}

TEST_F(Submission, TypesAreLoggedInTheOrderOfTheFrames)
{
    for (const int32_t nType : {0, 3, 3, 0, 8, 5}) {
        EXPECT_EQ(show(frameOf(nType)), 0);
    }
    EXPECT_THAT(CoreLog::instance().messages(),
                ElementsAre(k_szYv12, k_szNv12, k_szYv12, k_szVagl, k_szVagl));
    EXPECT_EQ(m_nUpdates, 6);
}

TEST_F(Submission, SizeBelowOneIsReportedWhenThereIsABuffer)
{
    ASSERT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    const uint8_t *pBuffer = m_yuv.m_pFrameBuffer;
    struct Case
    {
        int32_t nWidth;
        int32_t nHeight;
        const char *pszText;
    };
    for (const Case &testCase :
         {Case{0, 6, "ShowYuvFrame iWidth = 0 iHeight = 6 is invalid param"},
          Case{8, 0, "ShowYuvFrame iWidth = 8 iHeight = 0 is invalid param"},
          Case{-1, INT32_MIN, "ShowYuvFrame iWidth = -1 iHeight = -2147483648 is invalid param"}}) {
        CoreLog::instance().clear();
        m_nUpdates = 0;
        EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, testCase.nWidth, testCase.nHeight)), -1);
        EXPECT_EQ(CoreLog::instance().records().size(), 4U);
        EXPECT_TRUE(isErrorRecord(CoreLog::instance().records(), 0, "CLS_ShaderYuv",
                                  "CLS_ShaderYuv::ShowYuvFrame", testCase.pszText));
        EXPECT_TRUE(leadsToReport(CoreLog::instance().records().at(2).sText, testCase.pszText));
        EXPECT_EQ(m_nUpdates, 0);
        // The picture before it stays.
        EXPECT_EQ(m_yuv.m_pFrameBuffer, pBuffer);
        EXPECT_EQ(m_yuv.m_nVideoWidth, 8);
        EXPECT_EQ(m_yuv.m_nVideoHeight, 6);
    }
    EXPECT_TRUE(m_yuv.m_mutexFrame.try_lock());
    m_yuv.m_mutexFrame.unlock();
}

TEST_F(Submission, SizeBelowOneWithoutABufferIsRefusedSilently)
{
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, 0, 6)), -1);
    EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_nUpdates, 0);
    EXPECT_THAT(CoreLog::instance().records(), ElementsAre(CoreLogRecord{CORELOG_MSG, k_szYv12, 0}));
}

TEST_F(Submission, FailedAllocationIsAnsweredAndRecoveredFrom)
{
    ASSERT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    m_nUpdates = 0;
    {
        const FailingCalloc failing;
        EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, 64, 48)), -1);
        EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, 64, 48)), -1); // tried again, though the size is stored
        EXPECT_EQ(failing.failures(), 2);
    }
    EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_nUpdates, 0);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, 64, 48)), 0);
    EXPECT_NE(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_nUpdates, 1);
}

TEST_F(Submission, PictureTooLargeForAnyBufferIsRefused)
{
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_NV12, 65536, 65536)), -1);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, INT32_MAX, INT32_MAX)), -1);
    EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
}

TEST_F(Submission, BufferIsKeptWhileTheSizeHolds)
{
    ASSERT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    uint8_t *pBuffer = m_yuv.m_pFrameBuffer;
    pBuffer[0] = 77;
    for (const int32_t nType : {0, 3, 5, 7}) {
        EXPECT_EQ(show(frameOf(nType)), 0); // without planes: nothing is copied
        EXPECT_EQ(m_yuv.m_pFrameBuffer, pBuffer);
        EXPECT_EQ(pBuffer[0], 77);
    }
    // Another size or another declared length makes a new one, zeroed.
    EXPECT_EQ(show(frameOf(0, 6, 8)), 0);
    EXPECT_EQ(m_yuv.m_nVideoWidth, 6);
    EXPECT_EQ(m_yuv.m_pFrameBuffer[0], 0);
    m_yuv.m_pFrameBuffer[0] = 77;
    VideoFrameDesc longer = frameOf(0, 6, 8);
    longer.nDataLen = 100;
    EXPECT_EQ(show(longer), 0);
    EXPECT_EQ(m_yuv.m_pFrameBuffer[0], 0);
    EXPECT_EQ(m_yuv.FrameBufferBytes(), 100U);
    EXPECT_EQ(m_yuv.m_nFrameBufferSize, 100);
    // A frame that declares no length takes the buffer that is there.
    m_yuv.m_pFrameBuffer[0] = 77;
    EXPECT_EQ(show(frameOf(0, 6, 8)), 0);
    EXPECT_EQ(m_yuv.m_pFrameBuffer[0], 77);
    EXPECT_EQ(m_yuv.FrameBufferBytes(), 100U);
}

TEST_F(Submission, HoldsTheFrameMutexAndWaitsForIt)
{
    m_yuv.m_mutexFrame.lock();
    std::atomic<bool> blDone{false};
    int32_t nResult = -7;
    std::thread submitting([&] {
        nResult = show(frameOf(VIDEO_DISPLAY_YV12));
        blDone = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    EXPECT_FALSE(blDone);
    EXPECT_EQ(m_yuv.m_nDisplayType, -1);
    m_yuv.m_mutexFrame.unlock();
    submitting.join();
    EXPECT_EQ(nResult, 0);
    EXPECT_EQ(m_yuv.m_nDisplayType, 0);
}

TEST_F(Submission, HardwareTypeWithoutAHardwarePathShowsNothingAndStores)
{
    m_yuv.m_pD3D11EGL.reset();
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_DXGL, 100, 50)), 0);
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_DXGL);
    EXPECT_EQ(m_yuv.m_nVideoWidth, 100);
    EXPECT_EQ(m_yuv.m_nVideoHeight, 50);
    EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_nUpdates, 1);
}

TEST_F(Submission, ClearWithReserveIsDoneByTheNextFrame)
{
    ASSERT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    m_yuv.blReserveLastFrm = 1;
    m_yuv.m_rcEZoom = {0.1, 0.1, 0.9, 0.9};
    m_yuv.ClearDraw();
    EXPECT_TRUE(m_yuv.m_bClearPending);
    EXPECT_EQ(m_yuv.m_nDisplayType, VIDEO_DISPLAY_YV12);
    EXPECT_NE(m_yuv.m_pFrameBuffer, nullptr);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0.1, 0.1, 0.9, 0.9}));
    CoreLog::instance().clear();
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    EXPECT_FALSE(m_yuv.m_bClearPending);
    EXPECT_EQ(m_yuv.blReserveLastFrm, 0);
    EXPECT_EQ(m_yuv.m_rcEZoom, (geometry::NormRect{0, 0, 1, 1}));
    EXPECT_TRUE(m_yuv.m_bTypeChanged);
    EXPECT_THAT(CoreLog::instance().messages(),
                ElementsAre("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0", k_szYv12));
}

TEST_F(Submission, ARefusedFrameStillPerformsTheDeferredClear)
{
    ASSERT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    m_yuv.blReserveLastFrm = 1;
    m_yuv.ClearDraw();
    // What is no descriptor at all is refused before.
    EXPECT_EQ(m_yuv.ShowYuvFrame(nullptr, 112), -1);
    EXPECT_TRUE(m_yuv.m_bClearPending);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12, 0, 0)), -1);
    EXPECT_FALSE(m_yuv.m_bClearPending);
    EXPECT_EQ(m_yuv.m_pFrameBuffer, nullptr);
}

TEST_F(Submission, RotationSurvivesClearAndSizeChange)
{
    const XeltRotatePara para{1, 90, 2};
    EXPECT_EQ(m_yuv.SetParam(XELTCMD_SET_ROTATE_PARA, &para, sizeof para), 0);
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_YV12)), 0);
    m_yuv.ClearDraw();
    EXPECT_EQ(show(frameOf(VIDEO_DISPLAY_NV12, 20, 20)), 0);
    EXPECT_EQ(m_yuv.m_nVideoRotateDirection, 1);
    EXPECT_EQ(m_yuv.m_nVideoRotateAngle, 90);
    EXPECT_EQ(m_yuv.mirrorType, 2);
}

} // namespace
