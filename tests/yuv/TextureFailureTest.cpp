// Memory for a texture object is not to be had.
#include "TextureFailure.h"
#include "InsideYuv.h"

namespace xelttest {
namespace {

using TextureFailureTest = TextureFailureTestOf<InsideYuvTest>;

TEST_P(TextureFailureTest, IsLoggedAndLeavesThePaneBlackUntilTheTypeIsSetUpAgain)
{
    expectBlackUntilTheTypeIsSetUpAgain("CLS_ShaderYuv");
}

TEST_P(TextureFailureTest, IsMendedByAChangeOfType)
{
    expectATypeChangeToMendIt("CLS_ShaderYuv");
}

INSTANTIATE_TEST_SUITE_P(Planes, TextureFailureTest, ::testing::ValuesIn(k_aTextureFailures),
                         textureFailureName);

} // namespace
} // namespace xelttest
