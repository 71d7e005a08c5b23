// Changes between the display types, with and without clearing in between.
#include "HardwarePane.h"

namespace {

using namespace xelttest;

constexpr int32_t k_anTypes[] = {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12, VIDEO_DISPLAY_DXGL};

enum class Between { Nothing, Clear, ClearKeeping };

class InteropSwitch : public HardwarePane, public testing::WithParamInterface<Between>
{
protected:
    void SetUp() override
    {
        HardwarePane::SetUp();
        open(QSize(160, 120));
    }

    // Shows a frame of the type and looks at it.
    void showType(int32_t nType, const std::string &sName)
    {
        const Planes planes = makePlanes(Pattern::Ramp, 160, 120, ++m_nSeed);
        if (nType == VIDEO_DISPLAY_DXGL) {
            ASSERT_EQ(submitSlice(planes, m_nSeed % 16), 0) << sName;
            EXPECT_TRUE(shows(sName));
            return;
        }
        const HostFrame frame = nType == VIDEO_DISPLAY_YV12 ? yv12Frame(planes) : nv12Frame(planes);
        m_model = {};
        submit(frame);
        EXPECT_TRUE(matches(k_scaled, sName));
        EXPECT_TRUE(rendererType() == 7 || surfaces() == 0) << sName;
    }
    void clearBetween()
    {
        if (GetParam() == Between::Nothing) {
            return;
        }
        const bool blKeep = GetParam() == Between::ClearKeeping;
        ASSERT_EQ(setReserveLastFrame(handle(), blKeep ? 1 : 0), 0);
        Xelt_ClearDraw(handle());
        if (!blKeep) {
            EXPECT_TRUE(isBlack(paint()));
        } else if (m_model.nType == VIDEO_DISPLAY_DXGL) {
            EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted)) << "the last frame was kept";
        } else {
            EXPECT_TRUE(matches(k_scaled)) << "the last frame was kept";
        }
    }

    uint32_t m_nSeed = 0;
};

TEST_P(InteropSwitch, EveryOrder)
{
    for (const int32_t nFirst : k_anTypes) {
        for (const int32_t nSecond : k_anTypes) {
            for (const int32_t nThird : k_anTypes) {
                const std::string sName =
                    std::to_string(nFirst) + ' ' + std::to_string(nSecond) + ' ' + std::to_string(nThird);
                SCOPED_TRACE(sName);
                showType(nFirst, sName + " first");
                clearBetween();
                showType(nSecond, sName + " second");
                clearBetween();
                showType(nThird, sName + " third");
                clearBetween();
            }
        }
    }
}

TEST_P(InteropSwitch, AllIsGoneAfterTheHardwareTypeIsLeft)
{
    textures(QSize(160, 120));
    const size_t nDecoder = liveObjects(m_device.Get());
    showType(VIDEO_DISPLAY_DXGL, "hardware");
    EXPECT_GT(liveObjects(m_device.Get()), nDecoder);
    clearBetween();
    showType(VIDEO_DISPLAY_YV12, "software");
    EXPECT_EQ(surfaces(), 0U);
    EXPECT_EQ(softegl::BoundTextures(), 0U);
    // The sub-image renderer keeps its hardware path for the next time, unless it was cleared.
    if (rendererType() != 7 || GetParam() == Between::Clear) {
        EXPECT_EQ(liveObjects(m_device.Get()), nDecoder);
    }
}

std::string betweenName(const testing::TestParamInfo<Between> &between)
{
    switch (between.param) {
    case Between::Clear:
        return "Cleared";
    case Between::ClearKeeping:
        return "ClearedKeeping";
    default:
        return "Direct";
    }
}

INSTANTIATE_TEST_SUITE_P(All, InteropSwitch,
                         testing::Values(Between::Nothing, Between::Clear, Between::ClearKeeping),
                         betweenName);

class InteropClear : public HardwarePane
{
protected:
    void SetUp() override
    {
        HardwarePane::SetUp();
        open(QSize(96, 64));
        ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
        ASSERT_TRUE(shows());
    }
};

TEST_F(InteropClear, AKeptPictureStays)
{
    ASSERT_EQ(setReserveLastFrame(handle(), 1), 0);
    Xelt_ClearDraw(handle());
    softd3d11::ResetCallCounts();
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
    EXPECT_TRUE(imageMatches(paint(), hardwareReference(), k_converted));
    // Of the two renderers, the sub-image one goes on converting.
    EXPECT_EQ(softd3d11::CallCount(softd3d11::Method::VideoContextVideoProcessorBlt),
              rendererType() == 7 ? 2U : 0U);
    // The next frame shows; on the main renderer it clears first.
    CoreLog::instance().clear();
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Noise, 96, 64, 3)), 0);
    EXPECT_EQ(CoreLog::instance().count("CLS_ShaderYuv::ClearDraw, blReserveLastFrm=0"),
              rendererType() == 7 ? 0 : 1);
    EXPECT_TRUE(shows());
}

TEST_F(InteropClear, ClearedDropsEverythingWithTheNextPaint)
{
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(paint()));
    EXPECT_EQ(surfaces(), 0U);
    EXPECT_EQ(softegl::BoundTextures(), 0U);
    m_textures.reset();
    EXPECT_EQ(liveObjects(m_device.Get()), 0U);
    EXPECT_EQ((m_device->AddRef(), m_device->Release()), 1U);
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Ramp, 96, 64, 3)), 0);
    EXPECT_TRUE(shows());
}

TEST_F(InteropClear, ReleasedPaneLeavesNothing)
{
    ASSERT_EQ(window().release(handle()), 0);
    EXPECT_EQ(surfaces(), 0U);
    m_textures.reset();
    EXPECT_EQ(liveObjects(m_device.Get()), 0U);
    EXPECT_EQ((m_device->AddRef(), m_device->Release()), 1U);
}

} // namespace
