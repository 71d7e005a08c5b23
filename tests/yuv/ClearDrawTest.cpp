// Xelt_ClearDraw: black at once, or the last picture until the next frame.
#include "PaneTest.h"

namespace xelttest {
namespace {

class ClearDrawTest : public PaneTest
{
protected:
    void SetUp() override
    {
        PaneTest::SetUp();
        open(QSize(161, 117));
    }

    HostFrame frame(uint32_t nSeed = 1) const { return yv12Frame(makePlanes(Pattern::Card, 96, 64, nSeed)); }
    int logged(const std::string &sText) const { return CoreLog::instance().count(sText); }
};

TEST_F(ClearDrawTest, ANewPaneIsBlack)
{
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_EQ(qAlpha(reinterpret_cast<const QRgb *>(picture().constBits())[0]), 255);
}

TEST_F(ClearDrawTest, TurnsThePaneBlackAndRepaints)
{
    submit(frame());
    EXPECT_FALSE(isBlack(picture()));
    drainEvents();
    const int nPaints = window().paints(handle());
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
    EXPECT_TRUE(isBlack(picture()));
    EXPECT_EQ(logged("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0"), 1);
}

TEST_F(ClearDrawTest, ForgetsPlacementAndZoom)
{
    submit(frame());
    dstRect(20, 20, 100, 80);
    zoom(0.25, 0.25, 0.75, 0.75);
    Xelt_ClearDraw(handle());
    m_model = {};
    m_view.area = {0, 0, 1, 1};
    m_view.zoom = {0, 0, 1, 1};
    submit(frame(2));
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(ClearDrawTest, KeepsTheLastPictureWhenAsked)
{
    submit(frame());
    ASSERT_EQ(setReserveLastFrame(handle(), 1), 0);
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(matches(k_scaled));
    EXPECT_EQ(logged("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=1"), 1);
}

TEST_F(ClearDrawTest, TheNextFrameMakesUpForADeferredClear)
{
    submit(frame());
    dstRect(20, 20, 100, 80);
    ASSERT_EQ(setReserveLastFrame(handle(), 5), 0);
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(matches(k_scaled)) << "still the old picture in its place";
    m_model = {};
    m_view.area = {0, 0, 1, 1};
    submit(frame(2));
    EXPECT_TRUE(matches(k_scaled)) << "the clear came first and forgot the placement";
    EXPECT_EQ(logged("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=5"), 1);
    EXPECT_EQ(logged("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0"), 1);
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(picture())) << "keeping the picture holds for one clear only";
}

TEST_F(ClearDrawTest, WithoutAFrameNothingHappens)
{
    Xelt_ClearDraw(handle());
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(picture()));
    submit(frame());
    EXPECT_TRUE(matches(k_scaled));
}

// A frame with null pointers repaints what the buffer holds; after a clear that is a zeroed buffer.
TEST_F(ClearDrawTest, TheOldPixelsAreGone)
{
    submit(frame());
    Xelt_ClearDraw(handle());
    m_model = {};
    HostFrame empty = frame();
    empty.desc.pFrameData = nullptr;
    submit(empty);
    EXPECT_TRUE(matches(k_scaled));
    const auto aRgb = rgbAt(picture(), 5, 5);
    EXPECT_EQ(aRgb[0], 0);
    EXPECT_GT(aRgb[1], 100) << "zeroed planes are green";
}

} // namespace
} // namespace xelttest
