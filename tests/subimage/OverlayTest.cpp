// Overlay shapes: one pass before the picture, everything opaque.
#include "SubImageTest.h"

namespace xelttest {
namespace {

constexpr uint32_t k_nRed = overlayColour(252, 0, 0);
constexpr uint32_t k_nGreen = overlayColour(0, 252, 0);
constexpr uint32_t k_nBlue = overlayColour(0, 0, 252);
constexpr std::array<int, 3> k_aRed{255, 0, 0};
constexpr std::array<int, 3> k_aGreen{0, 255, 0};
constexpr std::array<int, 3> k_aBlue{0, 0, 255};

class SubImageOverlayTest : public SubImageTest
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(161, 117));
    }

    static PointList box(int left, int top, int right, int bottom)
    {
        return {{left, top}, {left, bottom}, {right, top}, {right, bottom}};
    }
    static XeltDrawInfo area(const PointList &points, uint32_t nColour, float fOpacity = 0.0f)
    {
        return overlayRecord(DRAWINFO_FILLED_AREA, points, nColour, 1, fOpacity);
    }
    static HostFrame bars() { return yv12Frame(makePlanes(Pattern::Bars, 64, 64)); }

    const Tolerance m_tolerance{4.0, 0.8, 0.25};
};

TEST_F(SubImageOverlayTest, ShapesStandOverThePicture)
{
    submitWithOverlays(bars(), {area(box(20, 20, 120, 90), k_nRed)});
    EXPECT_EQ(at(70, 50), k_aRed);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(SubImageOverlayTest, AreasAreOpaqueWhateverTheirOpacity)
{
    for (const float fOpacity : {0.01f, 0.25f, 0.5f, 0.99f, 1.0f, 7.5f, -3.0f}) {
        submitWithOverlays(bars(), {area(box(20, 20, 120, 90), k_nRed, fOpacity)});
        EXPECT_EQ(at(70, 50), k_aRed) << fOpacity;
        EXPECT_TRUE(matches(m_tolerance, "opacity" + std::to_string(fOpacity)));
    }
}

// With one pass an area's opacity does not lift it over later records either.
TEST_F(SubImageOverlayTest, TheLaterRecordStandsOverTheEarlier)
{
    submitWithOverlays(bars(),
                       {area(box(20, 20, 100, 90), k_nRed, 1.0f), area(box(60, 30, 150, 80), k_nGreen, 0.5f),
                        overlayRecord(DRAWINFO_POLYLINE, {{5, 58}, {155, 58}}, k_nBlue, 9)});
    EXPECT_EQ(at(80, 40), k_aGreen);
    EXPECT_EQ(at(40, 40), k_aRed);
    EXPECT_EQ(at(80, 58), k_aBlue);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(SubImageOverlayTest, EveryKindOfShapeIsDrawnOverNv12Too)
{
    submitWithOverlays(nv12Frame(makePlanes(Pattern::Bars, 64, 64)),
                       {overlayRecord(DRAWINFO_POLYLINE, {{10, 10}, {70, 40}, {20, 50}}, k_nRed, 5),
                        overlayRecord(DRAWINFO_OUTLINE, {{90, 10}, {140, 20}, {100, 50}}, k_nGreen, 4),
                        overlayRecord(DRAWINFO_OUTLINE_ALT, {{90, 70}, {140, 80}, {100, 110}}, k_nBlue, 3),
                        area(box(20, 70, 60, 100), k_nRed, 0.5f)});
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(SubImageOverlayTest, ShapesZoomWithTheWidget)
{
    submitWithOverlays(bars(), {overlayRecord(DRAWINFO_OUTLINE, {{60, 40}, {100, 45}, {80, 70}}, k_nRed, 4),
                                area(box(70, 75, 90, 90), k_nGreen, 0.5f)});
    for (const Area &window : {Area{0.25, 0.25, 0.75, 0.75}, Area{0.3, 0.2, 0.8, 0.9}, Area{1, 1, 0, 0}}) {
        zoom(window[0], window[1], window[2], window[3]);
        EXPECT_TRUE(matches({4.0, 0.8, 0.35}, "zoom" + std::to_string(window[0])));
    }
}

TEST_F(SubImageOverlayTest, TheDestinationRectangleDoesNotMoveShapes)
{
    submitWithOverlays(bars(), {area(box(20, 20, 120, 90), k_nRed)});
    ASSERT_EQ(setDstRect(handle(), 50, 50, 100, 90), 0);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(SubImageOverlayTest, EachFrameBringsItsOwnRecords)
{
    submitWithOverlays(bars(), {area(box(20, 20, 80, 90), k_nRed)});
    m_overlays.vecRecords = {area(box(60, 30, 150, 80), k_nGreen)};
    submit(bars());
    EXPECT_TRUE(matches(m_tolerance));
    EXPECT_EQ(m_overlays.nCalls, 2);
    m_overlays.vecRecords.clear();
    submit(bars());
    EXPECT_TRUE(matches());
}

TEST_F(SubImageOverlayTest, TypesWithoutAPictureShowTheirShapesAlone)
{
    for (const int nType : {7, 4, int(VIDEO_DISPLAY_VAGL)}) {
        HostFrame frame = bars();
        frame.desc.nDisplayType = nType;
        submitWithOverlays(frame, {area(box(20, 20, 80, 90), k_nRed, 0.5f)});
        EXPECT_EQ(at(40, 50), k_aRed) << nType;
        EXPECT_TRUE(matches(m_tolerance)) << nType;
    }
}

TEST_F(SubImageOverlayTest, AResizeShowsWhatTheHostAnswersToIt)
{
    submitWithOverlays(bars(), {area(box(20, 20, 80, 90), k_nRed)});
    drainEvents();
    m_overlays.vecRecords = {area(box(90, 30, 150, 80), k_nGreen)};
    ASSERT_TRUE(window().resizePane(handle(), QSize(200, 150)));
    drainEvents();
    m_view.widgetSize = QSize(200, 150);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(SubImageOverlayTest, ManyRecordsAreAllDrawn)
{
    std::vector<XeltDrawInfo> vecRecords;
    for (int i = 0; i < 60; ++i) {
        const int x = 10 * (i % 14) + 6;
        const int y = 20 * (i / 14) + 6;
        vecRecords.push_back(area(box(x, y, x + 6, y + 12), overlayColour(126u + unsigned(2 * i), 250, 130),
                                  i % 2 == 0 ? 0.0f : 0.6f));
    }
    submitWithOverlays(bars(), vecRecords);
    EXPECT_TRUE(matches({4.0, 0.8, 0.35}));
    EXPECT_TRUE(noGlError());
}

} // namespace
} // namespace xelttest
