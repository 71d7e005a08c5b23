// A player without a Direct3D 11 device says so.
#include "Clips.h"
#include "PlayerRun.h"

#include <gtest/gtest.h>

TEST(Textures, areNotInThisBuild)
{
    const PlayerResult result =
        runPlayer({Clips::quarters(), QStringLiteral("--format"), QStringLiteral("d3d11")});
    EXPECT_EQ(result.nStatus, 2);
    ASSERT_EQ(result.asErrors.size(), 1);
    EXPECT_TRUE(result.asErrors.first().contains(QStringLiteral("this build plays no Direct3D 11 textures")));
}
