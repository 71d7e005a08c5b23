// Overlay shapes over Direct3D 11 pictures.
#include "HardwarePane.h"

namespace {

using namespace xelttest;

std::vector<XeltDrawInfo> shapes()
{
    const PointList line{{10, 10}, {80, 30}, {20, 90}};
    const PointList outline{{100, 20}, {150, 25}, {140, 80}, {105, 70}};
    const PointList area{{40, 40}, {120, 45}, {50, 100}, {130, 110}};
    return {overlayRecord(DRAWINFO_POLYLINE, line, overlayColour(252, 0, 0), 3),
            overlayRecord(DRAWINFO_OUTLINE, outline, overlayColour(0, 252, 0), 5),
            overlayRecord(DRAWINFO_FILLED_AREA, area, overlayColour(0, 0, 252), 1, 0.5f)};
}

class InteropOverlay : public HardwarePane
{
protected:
    void SetUp() override
    {
        HardwarePane::SetUp();
        open(QSize(160, 120));
    }
    int32_t submitWithShapes()
    {
        m_overlays.vecRecords = shapes();
        EXPECT_EQ(setDrawInfoCallback(handle(), &OverlayHost::callback, &m_overlays), 0);
        return submitSlice(makePlanes(Pattern::Ramp, 160, 120));
    }
};

// Lines and areas stand exactly; what the picture shows between them is filtered.
constexpr Tolerance k_overlaid{4.0, 0.75, 0.12};

TEST_F(InteropOverlay, StandOverThePicture)
{
    ASSERT_EQ(submitWithShapes(), 0);
    paint();
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_overlaid));
    m_overlays.vecRecords.clear();
    EXPECT_TRUE(imageDiffers(paint(), hardwareReference(), k_overlaid)) << "there is nothing to see of them";
}

TEST_F(InteropOverlay, StandThereBeforeThePictureDoes)
{
    ASSERT_EQ(submitWithShapes(), 0);
    EXPECT_TRUE(imageMatches(paint(), overlaysOnBlack(), k_overlaid));
}

TEST_F(InteropOverlay, TurnWithThePicture)
{
    ASSERT_EQ(submitWithShapes(), 0);
    paint();
    for (const auto &[nAngle, nDirection, nMirror] :
         {std::array{90, 0, 0}, std::array{90, 1, 1}, std::array{180, 0, 2}, std::array{270, 1, 0},
          std::array{270, 0, 1}}) {
        turnPicture(nAngle, nDirection, nMirror);
        const QString sName = QStringLiteral("%1 %2 %3").arg(nAngle).arg(nDirection).arg(nMirror);
        EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_overlaid, sName));
    }
}

TEST_F(InteropOverlay, TurnFromTheirFirstPaintOn)
{
    turnPicture(90, 1, 1);
    ASSERT_EQ(submitWithShapes(), 0);
    EXPECT_TRUE(imageMatches(paint(), overlaysOnBlack(), k_overlaid));
}

TEST_F(InteropOverlay, ZoomWithThePicture)
{
    zoom(0.03125, 0.0625, 0.96875, 0.9375);
    ASSERT_EQ(submitWithShapes(), 0);
    paint();
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_overlaid));
}

} // namespace
