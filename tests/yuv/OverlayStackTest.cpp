// What stands over what, and how the host's records reach the screen.
#include "PaneTest.h"

namespace xelttest {
namespace {

constexpr uint32_t k_nRed = overlayColour(252, 0, 0);
constexpr uint32_t k_nGreen = overlayColour(0, 252, 0);
constexpr uint32_t k_nBlue = overlayColour(0, 0, 252);

class OverlayStackTest : public PaneTest
{
protected:
    void SetUp() override
    {
        PaneTest::SetUp();
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

    HostFrame picture1() const { return yv12Frame(makePlanes(Pattern::Bars, 64, 64)); }
    std::array<int, 3> at(int x, int y) const
    {
        return rgbAt(picture(), x * scaleFactor(), y * scaleFactor());
    }

    const Tolerance m_tolerance{4.0, 0.55, 0.15};
    const std::array<int, 3> m_aRed{255, 0, 0};
    const std::array<int, 3> m_aGreen{0, 255, 0};
};

// The first pass is drawn before the picture, but its depth keeps the picture out.
TEST_F(OverlayStackTest, ShapesOfTheFirstPassStandOverThePicture)
{
    submitWithOverlays(picture1(), {area(box(20, 20, 120, 90), k_nRed)});
    EXPECT_EQ(at(70, 50), m_aRed);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, ALaterOpaqueRecordStandsOverAnEarlierOne)
{
    submitWithOverlays(picture1(),
                       {area(box(20, 20, 100, 90), k_nRed), area(box(60, 30, 150, 80), k_nGreen)});
    EXPECT_EQ(at(80, 50), m_aGreen);
    EXPECT_EQ(at(40, 50), m_aRed);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, BlendedAreasStandOverEverythingTheEarlierOnTop)
{
    submitWithOverlays(picture1(),
                       {area(box(20, 20, 100, 90), k_nRed, 1.0f), area(box(60, 30, 150, 80), k_nGreen, 1.0f),
                        area(box(10, 40, 155, 60), k_nBlue)});
    EXPECT_EQ(at(80, 50), m_aRed);
    EXPECT_EQ(at(130, 50), m_aGreen);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, BlendsByOpacity)
{
    for (const float fOpacity : {0.01f, 0.1f, 0.25f, 0.5f, 0.75f, 0.99f, 1.0f}) {
        submitWithOverlays(picture1(), {area(box(20, 20, 120, 90), k_nRed, fOpacity)});
        EXPECT_TRUE(matches(m_tolerance, "opacity" + std::to_string(fOpacity)));
    }
}

TEST_F(OverlayStackTest, BlendsSeveralAreasInOrder)
{
    submitWithOverlays(picture1(),
                       {area(box(20, 20, 120, 90), k_nRed, 0.5f), area(box(60, 10, 150, 70), k_nGreen, 0.5f),
                        area(box(70, 40, 90, 110), k_nBlue, 0.25f),
                        overlayRecord(DRAWINFO_POLYLINE, {{5, 5}, {150, 110}}, k_nBlue, 9)});
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, OpacitiesOutOfRangeAreClamped)
{
    submitWithOverlays(picture1(), {area(box(20, 20, 120, 90), k_nRed, 7.5f)});
    EXPECT_TRUE(matches(m_tolerance, "above"));
    submitWithOverlays(picture1(), {area(box(20, 20, 120, 90), k_nRed, -3.0f)});
    EXPECT_TRUE(matches(m_tolerance, "below"));
}

TEST_F(OverlayStackTest, OpacityMattersForAreasOnly)
{
    submitWithOverlays(picture1(),
                       {overlayRecord(DRAWINFO_POLYLINE, {{10, 58}, {150, 58}}, k_nRed, 9, 0.5f)});
    EXPECT_EQ(at(80, 58), m_aRed);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, OverlaysComeWithNv12PicturesToo)
{
    submitWithOverlays(nv12Frame(makePlanes(Pattern::Bars, 64, 64)),
                       {area(box(20, 20, 80, 90), k_nRed), area(box(60, 30, 150, 80), k_nGreen, 0.5f)});
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, EachFrameBringsItsOwnRecords)
{
    submitWithOverlays(picture1(), {area(box(20, 20, 80, 90), k_nRed)});
    m_overlays.vecRecords = {area(box(60, 30, 150, 80), k_nGreen)};
    submit(picture1());
    EXPECT_TRUE(matches(m_tolerance));
    EXPECT_EQ(m_overlays.nCalls, 2);
    m_overlays.vecRecords.clear();
    submit(picture1());
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(OverlayStackTest, AResizeAsksAgain)
{
    submitWithOverlays(picture1(), {area(box(20, 20, 80, 90), k_nRed)});
    const int nCalls = m_overlays.nCalls;
    ASSERT_TRUE(window().resizePane(handle(), QSize(200, 150)));
    ASSERT_TRUE(pump([&] { return m_overlays.nCalls > nCalls; }));
    m_view.widgetSize = QSize(200, 150);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, AShortRecordIsReadAsFarAsItGoes)
{
    const XeltDrawInfo record = overlayRecord(DRAWINFO_POLYLINE, {{20, 20}, {140, 90}, {150, 10}}, k_nRed, 9);
    m_overlays.nRecordBytes =
        16 + 2 * int(sizeof(XeltPoint)); // the third point is missing and reads as (0, 0)
    submitWithOverlays(picture1(), {record});
    XeltDrawInfo stored = record;
    stored.aPoints[2] = {0, 0};
    m_overlays.vecRecords = {stored};
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, ManyRecordsAreAllDrawn)
{
    std::vector<XeltDrawInfo> vecRecords;
    for (int i = 0; i < 60; ++i) {
        const int x = 10 * (i % 14) + 6;
        const int y = 20 * (i / 14) + 6;
        vecRecords.push_back(area(box(x, y, x + 6, y + 12), overlayColour(126u + unsigned(2 * i), 250, 130),
                                  i % 2 == 0 ? 0.0f : 0.6f));
    }
    submitWithOverlays(picture1(), vecRecords);
    EXPECT_TRUE(matches({4.0, 0.55, 0.2}));
}

TEST_F(OverlayStackTest, UnknownTypesShowTheirOverlaysAlone)
{
    HostFrame frame = picture1();
    frame.desc.nDisplayType = 7;
    submitWithOverlays(frame,
                       {area(box(20, 20, 80, 90), k_nRed), area(box(60, 30, 150, 80), k_nGreen, 0.5f)});
    EXPECT_EQ(at(40, 50), m_aRed);
    EXPECT_TRUE(matches(m_tolerance));
}

TEST_F(OverlayStackTest, VaApiTypesShowNoOverlaysEither)
{
    const std::vector<XeltDrawInfo> vecRecords = {area(box(20, 20, 80, 90), k_nRed),
                                                  area(box(60, 30, 150, 80), k_nGreen, 0.5f)};
    for (const int nType : {4, int(VIDEO_DISPLAY_VAGL), 8}) {
        submitWithOverlays(picture1(), vecRecords);
        EXPECT_EQ(at(40, 50), m_aRed);
        HostFrame frame = picture1();
        frame.desc.nDisplayType = nType;
        submitWithOverlays(frame, vecRecords);
        EXPECT_TRUE(isBlack(picture())) << nType;
    }
}

TEST_F(OverlayStackTest, ClearingDropsTheRecordsAndTheCallback)
{
    submitWithOverlays(picture1(), {area(box(20, 20, 80, 90), k_nRed)});
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(picture()));
    const int nCalls = m_overlays.nCalls;
    m_overlays.vecRecords.clear();
    m_model = {};
    submit(picture1());
    EXPECT_EQ(m_overlays.nCalls, nCalls);
    EXPECT_TRUE(matches(k_scaled));
}

} // namespace
} // namespace xelttest
