// Xelt_ClearDraw and Xelt_Release of the sub-image renderer.
#include "SubImageTest.h"

#include <QPointer>

#include <thread>

namespace xelttest {
namespace {

class SubImageClearTest : public SubImageTest
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(161, 117));
    }
};

TEST_F(SubImageClearTest, ANewPaneIsBlackAndSaysWhatItIs)
{
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_EQ(qAlpha(reinterpret_cast<const QRgb *>(picture().constBits())[0]), 255);
    const std::vector<std::string> vecMessages = CoreLog::instance().messages();
    ASSERT_EQ(vecMessages.size(), 5u);
    EXPECT_EQ(vecMessages[0], "CreateShader CLS_ShaderYuvSubImage.");
    const char *const aHeads[] = {"GL_VERSION", "GL_VENDOR", "GL_RENDERER", "GL_SHADING_LANGUAGE_VERSION"};
    for (size_t i = 0; i < 4; ++i) {
        const std::string sHead = std::string("[CLS_ShaderYuvSubImage]") + aHeads[i] + ": ";
        EXPECT_EQ(vecMessages[i + 1].substr(0, sHead.size()), sHead);
        EXPECT_GT(vecMessages[i + 1].size(), sHead.size());
    }
}

TEST_F(SubImageClearTest, TurnsThePaneBlackAndRepaints)
{
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        submit(ofType(nType));
        EXPECT_TRUE(matches());
        drainEvents();
        const int nPaints = window().paints(handle());
        CoreLog::instance().clear();
        Xelt_ClearDraw(handle());
        EXPECT_EQ(CoreLog::instance().messages(),
                  std::vector<std::string>{"CLS_ShaderYuvSubImage::ClearDraw, blReserveLastFrm=0"});
        EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
        EXPECT_TRUE(isBlack(picture()));
        forgetFrame();
    }
}

TEST_F(SubImageClearTest, ForgetsTheZoomWindow)
{
    submit(ofType(VIDEO_DISPLAY_YV12));
    zoom(0.25, 0.25, 0.75, 0.75);
    Xelt_ClearDraw(handle());
    forgetFrame();
    m_view.zoom = {0, 0, 1, 1};
    submit(ofType(VIDEO_DISPLAY_YV12, 2));
    EXPECT_TRUE(matches());
}

TEST_F(SubImageClearTest, KeepsTheDestinationRectangleForRequests)
{
    submit(ofType(VIDEO_DISPLAY_YV12));
    ASSERT_EQ(setDstRect(handle(), 20, 30, 100, 80), 0);
    Xelt_ClearDraw(handle());
    forgetFrame();
    submitWithOverlays(ofType(VIDEO_DISPLAY_YV12), {});
    EXPECT_NEAR(m_overlays.lastRequest.nLeft, 20, 1);
    EXPECT_NEAR(m_overlays.lastRequest.nBottom, 80, 1);
}

TEST_F(SubImageClearTest, KeepsTheLastPictureWhenAskedAndMakesUpForNothing)
{
    submit(ofType(VIDEO_DISPLAY_YV12));
    zoom(0.1, 0.1, 0.8, 0.8);
    ASSERT_EQ(setReserveLastFrame(handle(), 5), 0);
    for (int nTime = 1; nTime <= 2; ++nTime) {
        Xelt_ClearDraw(handle());
        EXPECT_EQ(logged("CLS_ShaderYuvSubImage::ClearDraw, blReserveLastFrm=5"), nTime);
        EXPECT_TRUE(matches(k_scaled, "kept"));
    }
    // No clear is deferred: the next frame finds the type, the zoom and the mode as they were.
    CoreLog::instance().clear();
    submit(ofType(VIDEO_DISPLAY_YV12, 2));
    EXPECT_TRUE(CoreLog::instance().messages().empty());
    EXPECT_TRUE(matches(k_scaled, "next"));
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(matches(k_scaled, "kept-again"));
    ASSERT_EQ(setReserveLastFrame(handle(), 0), 0);
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(picture()));
}

TEST_F(SubImageClearTest, DropsTheShapesAndTheCallback)
{
    const XeltDrawInfo area = overlayRecord(DRAWINFO_FILLED_AREA, {{20, 20}, {20, 90}, {80, 20}, {80, 90}},
                                            overlayColour(252, 0, 0));
    for (const int nReserve : {0, 1}) {
        ASSERT_EQ(setReserveLastFrame(handle(), nReserve), 0);
        submitWithOverlays(ofType(VIDEO_DISPLAY_YV12), {area});
        EXPECT_TRUE(matches({4.0, 0.8, 0.25}));
        Xelt_ClearDraw(handle());
        const int nCalls = m_overlays.nCalls;
        m_overlays.vecRecords.clear();
        if (nReserve == 0) {
            forgetFrame();
        }
        EXPECT_TRUE(matches(k_scaled, "cleared" + std::to_string(nReserve)));
        submit(ofType(VIDEO_DISPLAY_YV12));
        EXPECT_EQ(m_overlays.nCalls, nCalls);
        EXPECT_TRUE(matches(k_scaled, "next"));
    }
}

// With an explicit length the type is kept, so the frame after a clear is none of a new type.
TEST_F(SubImageClearTest, AfterAnExplicitLengthTheTypeOutlivesTheClear)
{
    submit(withLength(ofType(VIDEO_DISPLAY_YV12)));
    EXPECT_TRUE(matches());
    Xelt_ClearDraw(handle());
    drainEvents();
    forgetFrame();
    CoreLog::instance().clear();
    submit(withLength(ofType(VIDEO_DISPLAY_YV12, 2)));
    EXPECT_TRUE(CoreLog::instance().messages().empty());
    EXPECT_TRUE(matches());

    submit(ofType(VIDEO_DISPLAY_YV12, 3)); // without a length
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(picture()));
    forgetFrame();
    CoreLog::instance().clear();
    submit(ofType(VIDEO_DISPLAY_YV12, 4));
    EXPECT_EQ(CoreLog::instance().messages(), std::vector<std::string>{k_pYv12Text});
    EXPECT_TRUE(matches());
}

TEST_F(SubImageClearTest, WorksFromAHostThreadAndWithoutAFrame)
{
    std::thread([&] { Xelt_ClearDraw(handle()); }).join();
    EXPECT_TRUE(isBlack(picture()));
    submit(ofType(VIDEO_DISPLAY_YV12));
    EXPECT_TRUE(matches());
    std::thread([&] { Xelt_ClearDraw(handle()); }).join();
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_TRUE(noGlError());
    forgetFrame();
    submit(ofType(VIDEO_DISPLAY_NV12));
    EXPECT_TRUE(matches());
}

TEST_F(SubImageClearTest, TheOldPixelsAreGone)
{
    submit(ofType(VIDEO_DISPLAY_YV12));
    Xelt_ClearDraw(handle());
    forgetFrame();
    HostFrame empty = ofType(VIDEO_DISPLAY_YV12);
    empty.desc.pFrameData = nullptr;
    submit(empty);
    EXPECT_TRUE(matches());
    EXPECT_GT(at(5, 5)[1], 100) << "zeroed planes are green";
}

TEST_F(SubImageClearTest, PanesAreReleasedWithAndWithoutPictures)
{
    const int32_t nTypeCode = XELT_RENDERER_YUV_SUBIMAGE;
    void *hidden = Xelt_CreateEx(&nTypeCode, sizeof nTypeCode);
    ASSERT_NE(hidden, nullptr);
    EXPECT_EQ(show(hidden, withLength(ofType(VIDEO_DISPLAY_YV12))), 0);
    const QPointer<QWidget> pHidden = paneWidget(hidden);
    EXPECT_EQ(Xelt_Release(hidden), 0);
    EXPECT_TRUE(pump([&] { return pHidden.isNull(); }));

    submit(ofType(VIDEO_DISPLAY_NV12));
    EXPECT_TRUE(matches());
    void *shown = handle();
    EXPECT_EQ(window().release(shown), 0);
    EXPECT_EQ(show(shown, ofType(VIDEO_DISPLAY_NV12)), -1) << "the handle is unknown";
}

} // namespace
} // namespace xelttest
