// Frame sizes that no texture has, from the first paint of a pane on.
#include "InteropFailure.h"

#include <gmock/gmock.h>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::StartsWith;

class InteropSize : public InteropFailure, public testing::WithParamInterface<std::pair<int32_t, int32_t>>
{
};

TEST_P(InteropSize, IsReportedAndTheNextFrameShows)
{
    DecoderTextures &array = m_vecArrays[0];
    array.fill(0, makePlanes(Pattern::Card, 96, 64));
    setDevice(array.device());
    VideoFrameDesc desc = array.frame(0);
    std::tie(desc.iWidth, desc.iHeight) = GetParam();
    CoreLog::instance().clear();
    m_messages.take();
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), &desc, sizeof desc), 0);
    EXPECT_TRUE(isBlack(paint()));
    EXPECT_TRUE(reportsAre(
        {reportOf("BindEglTextures", "glGetError() != GL_NO_ERROR glBindTexture err = 1281"), k_noSurface}));
    EXPECT_THAT(warnings(), ElementsAre(StartsWith("DirectX error@548. ")));
    frame(2);
    EXPECT_TRUE(shows("recovered"));
    frame(3);
    EXPECT_TRUE(shows("recovered, another size"));
}

INSTANTIATE_TEST_SUITE_P(All, InteropSize,
                         testing::Values(std::pair{134217728, 16}, std::pair{16, 134217728},
                                         std::pair{INT32_MAX, INT32_MAX}, std::pair{INT32_MIN, 16},
                                         std::pair{64, -1}));

} // namespace
