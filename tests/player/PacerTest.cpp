#include "Pacer.h"

#include <gtest/gtest.h>

using std::chrono::milliseconds;

namespace {

const Pacer::Clock::time_point kBegin{std::chrono::hours(1)};

} // namespace

TEST(Pacer, firstPictureIsDueAtOnceAndTheRestInTime)
{
    Pacer pacer;
    EXPECT_EQ(pacer.due(7.0, kBegin), kBegin);
    EXPECT_EQ(pacer.due(7.04, kBegin + milliseconds(3)), kBegin + milliseconds(40));
    EXPECT_EQ(pacer.due(8.0, kBegin + milliseconds(3)), kBegin + milliseconds(1000));
}

TEST(Pacer, shortDelayIsCaughtUpWith)
{
    Pacer pacer;
    pacer.due(0.0, kBegin);
    EXPECT_EQ(pacer.due(0.04, kBegin + milliseconds(400)), kBegin + milliseconds(40));
}

TEST(Pacer, longDelayMovesTheRest)
{
    Pacer pacer;
    pacer.due(0.0, kBegin);
    const auto late = kBegin + milliseconds(900);
    EXPECT_EQ(pacer.due(0.04, late), late);
    EXPECT_EQ(pacer.due(0.08, late), late + milliseconds(40));
}

TEST(Pacer, restart)
{
    Pacer pacer;
    pacer.due(0.0, kBegin);
    pacer.restart();
    EXPECT_EQ(pacer.due(5.0, kBegin + milliseconds(10)), kBegin + milliseconds(10));
}
