// Rotation, direction and mirroring.
#include "PaneTest.h"

namespace xelttest {
namespace {

using TurnCase = std::tuple<int, int, int>; // angle, direction, mirror

class TurnTest : public PaneTest, public ::testing::WithParamInterface<TurnCase>
{
};

TEST_P(TurnTest, TurnsAndMirrorsThePicture)
{
    const auto [nAngle, nDirection, nMirror] = GetParam();
    open(QSize(161, 117));
    const Planes planes = makePlanes(Pattern::Bars, 96, 64);
    submit(yv12Frame(planes));
    turnPicture(nAngle, nDirection, nMirror);
    EXPECT_TRUE(matches(k_scaled, "yv12"));
    submit(nv12Frame(planes));
    EXPECT_TRUE(matches(k_scaled, "nv12"));
}

// The drawn rectangle turns about the middle of the widget with the picture; the mirror comes after the turn.
TEST_P(TurnTest, TurnsThePlacedPicture)
{
    const auto [nAngle, nDirection, nMirror] = GetParam();
    open(QSize(161, 117));
    submit(yv12Frame(makePlanes(Pattern::Bars, 96, 64)));
    dstRect(20, 11, 97, 71);
    turnPicture(nAngle, nDirection, nMirror);
    EXPECT_TRUE(matches(k_scaled));
}

INSTANTIATE_TEST_SUITE_P(All, TurnTest,
                         ::testing::Combine(::testing::Values(0, 45, 90, 180, 270, 360, -90),
                                            ::testing::Values(0, 1, -7), ::testing::Values(0, 1, 2, 3)),
                         [](const auto &test) {
                             const auto part = [](int n) {
                                 return (n < 0 ? "Minus" : "") + std::to_string(std::abs(n));
                             };
                             return "Angle" + part(std::get<0>(test.param)) + "Direction" +
                                    part(std::get<1>(test.param)) + "Mirror" + part(std::get<2>(test.param));
                         });

class TurnWordsTest : public PaneTest
{
protected:
    // White above, black below.
    HostFrame topWhite() const
    {
        Planes planes = solidPlanes(64, 64, 0, 128, 128);
        std::fill(planes.aY.begin(), planes.aY.begin() + 64 * 32, uint8_t(255));
        return yv12Frame(planes);
    }

    bool isWhite(int x, int y) const
    {
        return rgbAt(picture(), x * scaleFactor(), y * scaleFactor())[1] > 200;
    }
};

TEST_F(TurnWordsTest, AClockwiseQuarterTurnPutsTheTopOnTheRight)
{
    open(QSize(100, 100));
    submit(topWhite());
    turnPicture(90, 0, 0);
    EXPECT_TRUE(isWhite(80, 50));
    EXPECT_FALSE(isWhite(20, 50));
    turnPicture(90, 1, 0);
    EXPECT_TRUE(isWhite(20, 50));
    EXPECT_FALSE(isWhite(80, 50));
}

TEST_F(TurnWordsTest, AMirrorAfterAQuarterTurnFlipsLeftAndRightOfTheScreen)
{
    open(QSize(100, 100));
    submit(topWhite());
    turnPicture(90, 0, 1);
    EXPECT_TRUE(isWhite(20, 50));
    EXPECT_FALSE(isWhite(80, 50));
}

TEST_F(TurnWordsTest, AShortRecordKeepsTheRest)
{
    open(QSize(100, 100));
    submit(topWhite());
    turnPicture(0, 0, 2);
    const int32_t anPara[] = {1, 180, 99};
    ASSERT_EQ(Xelt_SetParam(handle(), XELTCMD_SET_ROTATE_PARA, anPara, 8), 0);
    // Half a turn and the upside-down mirror that was kept: the top is on top again.
    EXPECT_TRUE(isWhite(50, 20));
    EXPECT_FALSE(isWhite(50, 80));
}

TEST_F(TurnWordsTest, TheTurnOutlivesClearing)
{
    open(QSize(100, 100));
    submit(topWhite());
    turnPicture(90, 0, 0);
    Xelt_ClearDraw(handle());
    m_model = {};
    submit(topWhite());
    EXPECT_TRUE(matches(k_scaled));
    EXPECT_TRUE(isWhite(80, 50));
}

} // namespace
} // namespace xelttest
