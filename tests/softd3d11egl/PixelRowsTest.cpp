#include "softd3d11/egl/PixelRows.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace softegl {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(PixelRowsTest, SwapsRedAndBlueAndDropsGaps)
{
    const Bytes rows = {1, 2, 3, 4, 5, 6, 7, 8, 99, 99, 99, 99, 11, 12, 13, 14, 15, 16, 17, 18};
    EXPECT_EQ((Bytes{3, 2, 1, 4, 7, 6, 5, 8, 13, 12, 11, 14, 17, 16, 15, 18}),
              ToTightRgba(rows.data(), 12, 2, 2, false));
}

TEST(PixelRowsTest, MakesOpaque)
{
    const Bytes rows = {1, 2, 3, 0, 5, 6, 7, 128};
    EXPECT_EQ((Bytes{3, 2, 1, 255, 7, 6, 5, 255}), ToTightRgba(rows.data(), 8, 2, 1, true));
}

TEST(PixelRowsTest, MakesNothingOfNothing)
{
    const Bytes rows(64 * 5);
    EXPECT_TRUE(ToTightRgba(rows.data(), 64, 0, 5, false).empty());
    EXPECT_TRUE(ToTightRgba(rows.data(), 64, 5, 0, false).empty());
}

} // namespace
} // namespace softegl
