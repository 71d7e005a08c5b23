// State of the sub-image renderer: what frames and releases leave in its members.
#include "ErrorRecord.h"
#include "HardwareRecorder.h"
#include "InsidePane.h"
#include "SourceLine.h"

#include <QMetaMethod>

#include <gmock/gmock.h>

#include <cstring>
#include <mutex>

namespace xelttest {
namespace {

bool isWhole(const geometry::NormRect &rect)
{
    return rect.left == 0.0 && rect.top == 0.0 && rect.right == 1.0 && rect.bottom == 1.0;
}

class InsideStateTest : public InsideTest
{
protected:
    // What the exports do around the release of GL objects.
    void releaseGl()
    {
        const std::lock_guard<FrameMutex> lock(pane().m_mutexFrame);
        pane().ReleaseGLResource();
    }
};

TEST_F(InsideStateTest, ANewPaneHasNothing)
{
    EXPECT_EQ(CoreLog::instance().messages(),
              std::vector<std::string>{"CreateShader CLS_ShaderYuvSubImage."});
    EXPECT_EQ(pane().parentWidget(), nullptr);
    EXPECT_EQ(pane().m_nDisplayType, -1);
    EXPECT_EQ(pane().m_pTexY, nullptr);
    EXPECT_EQ(pane().m_pTexU, nullptr);
    EXPECT_EQ(pane().m_pTexV, nullptr);
    EXPECT_EQ(pane().m_pProgram, nullptr);
    EXPECT_EQ(pane().m_pD3D11EGL, nullptr);
    EXPECT_EQ(pane().m_pPlaneY, nullptr);
    EXPECT_EQ(pane().m_pPlaneUV, nullptr);
    EXPECT_EQ(pane().m_pFrameBuffer, nullptr);
    EXPECT_FALSE(pane().m_bDestroyed);
    EXPECT_FALSE(pane().m_bExplicitLength);
    EXPECT_EQ(pane().m_nDrawInfoKind, 0);
    for (const int nLocation : {pane().m_nLocTexY, pane().m_nLocTexU, pane().m_nLocTexV,
                                pane().m_nLocDrawFlag, pane().m_nLocDrawColor}) {
        EXPECT_EQ(nLocation, 0);
    }
}

TEST_F(InsideStateTest, TheMetaObjectHasOneSignalAndOneSlot)
{
    const QMetaObject &meta = CLS_ShaderYuvSubImage::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "signalUpdate()");
    EXPECT_EQ(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).methodSignature(), "onDestroyed(QObject*)");
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
}

TEST_F(InsideStateTest, ReleasingGlObjectsForgetsTheTypeAndAsksForARepaint)
{
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        ASSERT_EQ(pane().submit(frame(nType)), 0);
        pane().m_blGLReady = true;
        pane().takeUpdates();
        releaseGl();
        EXPECT_EQ(pane().m_nDisplayType, -1);
        EXPECT_FALSE(pane().m_blGLReady);
        EXPECT_EQ(pane().takeUpdates(), 1);
        EXPECT_NE(pane().m_pFrameBuffer, nullptr);
        EXPECT_EQ(pane().m_nVideoWidth, 96);
    }
}

TEST_F(InsideStateTest, ReleasingGlObjectsAfterAnExplicitLengthKeepsTheType)
{
    ASSERT_EQ(pane().submit(withLength(frame(VIDEO_DISPLAY_YV12))), 0);
    pane().m_blGLReady = true;
    pane().takeUpdates();
    releaseGl();
    EXPECT_EQ(pane().m_nDisplayType, VIDEO_DISPLAY_YV12);
    EXPECT_FALSE(pane().m_blGLReady);
    EXPECT_EQ(pane().takeUpdates(), 0);
}

TEST_F(InsideStateTest, UnInitEmptiesTheFrameStateAndNoMore)
{
    for (const bool blLength : {false, true}) {
        ASSERT_EQ(pane().submit(blLength ? withLength(frame(VIDEO_DISPLAY_YV12)) : frame(VIDEO_DISPLAY_YV12)),
                  0);
        pane().m_rcDrawArea = {0.1, 0.2, 0.7, 0.8};
        pane().m_rcEZoom = {0.3, 0.3, 0.6, 0.6};
        pane().takeUpdates();
        EXPECT_EQ(pane().UnInit(), 0);
        EXPECT_EQ(pane().m_pFrameBuffer, nullptr);
        EXPECT_EQ(pane().m_nVideoWidth, 0);
        EXPECT_EQ(pane().m_nVideoHeight, 0);
        EXPECT_TRUE(isWhole(pane().m_rcEZoom));
        EXPECT_EQ(pane().m_rcDrawArea.left, 0.1);
        EXPECT_EQ(pane().m_rcDrawArea.bottom, 0.8);
        EXPECT_EQ(pane().m_blUnInit, 0);
        EXPECT_EQ(pane().m_nDisplayType, blLength ? int(VIDEO_DISPLAY_YV12) : -1);
        // The one that the release of GL objects asks for, and none of its own.
        EXPECT_EQ(pane().takeUpdates(), blLength ? 0 : 1);
        EXPECT_TRUE(pane().m_mutexFrame.try_lock());
        pane().m_mutexFrame.unlock();
    }
}

TEST_F(InsideStateTest, ClearingForgetsTheCallbackInBothModes)
{
    for (const int nReserve : {0, 1}) {
        pane().m_pfnDrawInfo = [](void *, const XeltDrawInfoRequest *, int32_t, void *) { return 0; };
        pane().blReserveLastFrm = nReserve;
        ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
        pane().ClearDraw();
        EXPECT_EQ(pane().m_pfnDrawInfo, nullptr);
        EXPECT_EQ(pane().m_pFrameBuffer != nullptr, nReserve != 0);
        EXPECT_EQ(pane().m_nDisplayType, nReserve != 0 ? int(VIDEO_DISPLAY_YV12) : -1);
        EXPECT_EQ(pane().blReserveLastFrm, nReserve);
    }
}

TEST_F(InsideStateTest, TheLengthDecidesWhatIsRemembered)
{
    ASSERT_EQ(pane().submit(withLength(frame(VIDEO_DISPLAY_YV12))), 0);
    EXPECT_TRUE(pane().m_bExplicitLength);
    EXPECT_EQ(pane().m_nFrameBufferSize, 96 * 64 * 3 / 2);
    HostFrame empty = frame(VIDEO_DISPLAY_YV12);
    empty.desc.pFrameData = nullptr;
    ASSERT_EQ(pane().submit(empty), 0);
    EXPECT_TRUE(pane().m_bExplicitLength) << "a frame without pixels says nothing";
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    EXPECT_FALSE(pane().m_bExplicitLength);
    EXPECT_EQ(pane().m_nFrameBufferSize, 96 * 64 * 3 / 2) << "the buffer is the same";
    ASSERT_EQ(pane().submit(withLength(frame(VIDEO_DISPLAY_YV12))), 0);
    HostFrame nv12 = frame(VIDEO_DISPLAY_NV12);
    nv12.desc.nDataLen = 96 * 64 * 2;
    ASSERT_EQ(pane().submit(nv12), 0);
    EXPECT_FALSE(pane().m_bExplicitLength);
    EXPECT_EQ(pane().m_nFrameBufferSize, 96 * 64 * 2) << "but it sizes the buffer";
}

TEST_F(InsideStateTest, TheBufferIsReusedWhileTheSizeHolds)
{
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    const uint8_t *pBuffer = pane().m_pFrameBuffer;
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_NV12)), 0);
    EXPECT_EQ(pane().m_pFrameBuffer, pBuffer);
    EXPECT_EQ(pane().m_pPlaneY, pBuffer);
    EXPECT_EQ(pane().m_pPlaneUV, pBuffer + 96 * 64);
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_DXGL, QSize(10, 10))), 0);
    EXPECT_EQ(pane().m_pFrameBuffer, pBuffer);
    EXPECT_EQ(pane().m_nVideoWidth, 96) << "a Direct3D 11 frame's size is not taken";
}

TEST_F(InsideStateTest, WithoutABufferTheSameSizeIsRefused)
{
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    pane().FreeFrameBuffer(); // as when its allocation failed
    pane().takeUpdates();
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), -1);
    EXPECT_EQ(pane().takeUpdates(), 0);
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12, QSize(64, 64))), 0);
}

TEST_F(InsideStateTest, RefusedFramesAskForNoRepaint)
{
    const HostFrame good = frame(VIDEO_DISPLAY_YV12);
    pane().takeUpdates();
    EXPECT_EQ(pane().ShowYuvFrame(nullptr, 112), -1);
    EXPECT_EQ(pane().ShowYuvFrame(&good.desc, 0), -1);
    EXPECT_EQ(pane().ShowYuvFrame(&good.desc, -5), -1);
    EXPECT_EQ(pane().takeUpdates(), 0);
    EXPECT_EQ(pane().m_nDisplayType, -1);
}

TEST_F(InsideStateTest, AnErrorRecordNamesTheClass)
{
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    CoreLog::instance().clear();
    HostFrame bad = frame(VIDEO_DISPLAY_YV12);
    bad.desc.iWidth = -7;
    EXPECT_EQ(pane().submit(bad), -1);
    EXPECT_TRUE(isErrorRecord(CoreLog::instance().records(), 0, "CLS_ShaderYuvSubImage",
                              "CLS_ShaderYuvSubImage::ShowYuvFrame",
                              "ShowYuvFrame iWidth = -7 iHeight = 64 is invalid param"));
    const std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
    EXPECT_TRUE(leadsToReport(vecRecords.at(2).sText, vecRecords.at(3).sText));
}

TEST_F(InsideStateTest, TheKindIsKeptForAHostWithACallback)
{
    HostFrame shown = frame(VIDEO_DISPLAY_YV12);
    shown.desc.nDrawInfoKind = 5;
    ASSERT_EQ(pane().submit(shown), 0);
    EXPECT_EQ(pane().m_nDrawInfoKind, 0);
    pane().m_pfnDrawInfo = [](void *, const XeltDrawInfoRequest *, int32_t, void *) { return -1; };
    ASSERT_EQ(pane().submit(shown), 0);
    EXPECT_EQ(pane().m_nDrawInfoKind, 5);
}

TEST_F(InsideStateTest, ADestroyedPaneRefusesFrames)
{
    QObject other;
    pane().onDestroyed(&other);
    EXPECT_FALSE(pane().m_bDestroyed);
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    pane().onDestroyed(&pane());
    EXPECT_TRUE(pane().m_bDestroyed);
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), -1);
}

TEST_F(InsideStateTest, OnlyTheZoomCommandAsksForARepaint)
{
    const double adZoom[] = {0.1, 0.1, 0.9, 0.9};
    const int32_t anPara[8] = {0, 0, 10, 10};
    pane().takeUpdates();
    for (const uint32_t nCommand : {XELTCMD_SET_STOPDRAW_PARA, XELTCMD_SET_ROTATE_PARA,
                                    XELTCMD_SET_DRAW_RATIO_MODE, XELTCMD_SET_DRAW_DST_RECT}) {
        EXPECT_EQ(pane().SetParam(nCommand, anPara, 12), 0);
    }
    EXPECT_EQ(pane().takeUpdates(), 0);
    EXPECT_EQ(pane().SetParam(XELTCMD_SET_EZOOM_AREA, adZoom, sizeof adZoom), 0);
    EXPECT_EQ(pane().takeUpdates(), 1);
}

struct CopyCase
{
    QSize size;
    int nPitch;
    bool blPlanes;
};

class InsideCopyTest : public InsideTest, public ::testing::WithParamInterface<CopyCase>
{
};

// Every byte of the buffer, and no byte read that the source does not have.
TEST_P(InsideCopyTest, TheBufferHoldsThePackedPicture)
{
    const CopyCase &copy = GetParam();
    const Planes planes = makePlanes(Pattern::Noise, copy.size.width(), copy.size.height());
    const HostFrame shown = nv12Frame(planes, {copy.nPitch, copy.blPlanes});
    ASSERT_EQ(pane().submit(shown), 0);
    const BufferModel model = bufferModel(shown.desc);
    ASSERT_EQ(pane().FrameBufferBytes(), model.aBytes.size());
    EXPECT_EQ(std::memcmp(pane().m_pFrameBuffer, model.aBytes.data(), model.aBytes.size()), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Pitches, InsideCopyTest,
    ::testing::Values(CopyCase{{1920, 1080}, 2048, false}, CopyCase{{1920, 1080}, 2048, true},
                      CopyCase{{1920, 1080}, 1920, false}, CopyCase{{1920, 1080}, 1920, true},
                      CopyCase{{1920, 1088}, 1920, false}, CopyCase{{1920, 1088}, 1984, false},
                      CopyCase{{1920, 1080}, 0, false}, CopyCase{{1920, 1080}, 0, true},
                      CopyCase{{5, 7}, 8, false}, CopyCase{{5, 7}, 5, false}, CopyCase{{1, 1}, 4, true},
                      CopyCase{{3, 16}, 3, false}),
    [](const auto &test) {
        const CopyCase &copy = test.param;
        return std::to_string(copy.size.width()) + "x" + std::to_string(copy.size.height()) + "Pitch" +
               std::to_string(copy.nPitch) + (copy.blPlanes ? "Planes" : "OneBlock");
    });

// The hardware path with a recorder in its place.
class InsideHardwareTest : public InsideStateTest
{
protected:
    void SetUp() override
    {
        InsideStateTest::SetUp();
        openWindow();
        pane().m_pD3D11EGL = std::make_unique<HardwareRecorder>(m_notes);
        m_texture.desc.nDisplayType = VIDEO_DISPLAY_DXGL;
        m_texture.desc.iWidth = 96;
        m_texture.desc.iHeight = 64;
    }

    HardwareNotes m_notes;
    HostFrame m_texture;
};

// A converted picture shows one paint later. The declared length makes the frame outlive its context.
TEST_F(InsideHardwareTest, ANewContextPaintsATextureTwice)
{
    ASSERT_EQ(pane().submit(withLength(frame(VIDEO_DISPLAY_YV12))), 0);
    ASSERT_EQ(pane().submit(m_texture), 0);
    pane().picture();
    drainEvents();
    pane().takeUpdates();
    moveToAnotherWindow();
    m_pOtherWindow->show();
    ASSERT_TRUE(pump([&] { return pane().isValid(); }));
    EXPECT_EQ(pane().m_nDisplayType, VIDEO_DISPLAY_DXGL);
    drainEvents();
    EXPECT_EQ(pane().takeUpdates(), 1);
    pane().picture();
    EXPECT_EQ(pane().takeUpdates(), 0) << "once";
}

TEST_F(InsideHardwareTest, LeavingTheTypeLetsGoOfWhatIsTheHosts)
{
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        ASSERT_EQ(pane().submit(m_texture), 0);
        m_notes.take();
        ASSERT_EQ(pane().submit(frame(nType)), 0);
        EXPECT_THAT(m_notes.take(), testing::ElementsAre("ReleaseHostObjects"));
        pane().picture();
        EXPECT_THAT(m_notes.take(), testing::ElementsAre("ReleaseEGL"));
        EXPECT_FALSE(m_notes.blDestroyed) << "the next texture finds it";
    }
}

} // namespace
} // namespace xelttest
