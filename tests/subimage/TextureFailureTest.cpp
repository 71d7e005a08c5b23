// Memory for a texture object is not to be had.
#include "TextureFailure.h"
#include "InsidePane.h"

namespace xelttest {
namespace {

using TextureFailureTest = TextureFailureTestOf<InsideTest>;

TEST_P(TextureFailureTest, IsLoggedAndLeavesThePaneBlackUntilTheTypeIsSetUpAgain)
{
    expectBlackUntilTheTypeIsSetUpAgain("CLS_ShaderYuvSubImage");
}

TEST_P(TextureFailureTest, IsMendedByAChangeOfType)
{
    expectATypeChangeToMendIt("CLS_ShaderYuvSubImage");
}

INSTANTIATE_TEST_SUITE_P(Planes, TextureFailureTest, ::testing::ValuesIn(k_aTextureFailures),
                         textureFailureName);

} // namespace
} // namespace xelttest
