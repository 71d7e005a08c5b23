// A host on desktop OpenGL that submits Direct3D 11 frames all the same: no picture, no harm.
#include "DecoderTextures.h"
#include "PaneTest.h"

#include <gmock/gmock.h>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::HasSubstr;

class DesktopHardware : public PaneTest
{
protected:
    void SetUp() override
    {
        PaneTest::SetUp();
        open(QSize(96, 64));
        m_device = makeDevice();
        m_textures.emplace(m_device, QSize(96, 64));
        ID3D11Device *pDevice = m_device.Get();
        ASSERT_EQ(Xelt_SetParam(handle(), XELTCMD_SET_D3D11_DEVICE, &pDevice, sizeof pDevice), 0);
    }
    void TearDown() override
    {
        PaneTest::TearDown();
        drainEvents();
        m_textures.reset();
        EXPECT_EQ(liveObjects(m_device.Get()), 0U);
        EXPECT_EQ((m_device->AddRef(), m_device->Release()), 1U);
    }
    int32_t submitHardware()
    {
        m_textures->fill(0, makePlanes(Pattern::Card, 96, 64));
        const VideoFrameDesc desc = m_textures->frame(0);
        return Xelt_ShowYuvFrame(handle(), &desc, sizeof desc);
    }

    ComPtr<ID3D11Device> m_device;
    std::optional<DecoderTextures> m_textures;
};

TEST_F(DesktopHardware, EveryFrameFailsAndNothingShows)
{
    EXPECT_EQ(submitHardware(), 0);
    for (int i = 0; i < 3; ++i) {
        CoreLog::instance().clear();
        EXPECT_TRUE(isBlack(picture()));
        EXPECT_THAT(CoreLog::instance().errors(),
                    testing::Contains(HasSubstr("[CLS_EGLBase::CreateEglResource]nullptr == m_eglDisplay!")));
        EXPECT_THAT(CoreLog::instance().errors(),
                    testing::Contains("[CLS_D3D11EGL::Map] EnsureSurface fail!"));
        EXPECT_EQ(submitHardware(), rendererType() == 7 ? 0 : -1);
    }
}

TEST_F(DesktopHardware, OtherTypesShowBeforeAndAfter)
{
    for (uint32_t nSeed = 0; nSeed < 3; ++nSeed) {
        m_model = {};
        submit(yv12Frame(makePlanes(Pattern::Ramp, 96, 64, nSeed)));
        EXPECT_TRUE(matches(k_scaled));
        submitHardware();
        EXPECT_TRUE(isBlack(picture()));
        submitHardware();
        EXPECT_TRUE(isBlack(picture()));
    }
    m_model = {};
    submit(nv12Frame(makePlanes(Pattern::Ramp, 96, 64, 9)));
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(DesktopHardware, ClearingAndMovingAreHarmless)
{
    submitHardware();
    EXPECT_TRUE(isBlack(picture()));
    Xelt_ClearDraw(handle());
    EXPECT_TRUE(isBlack(picture()));
    submitHardware();
    void *const pane = handle();
    HostWindow other(nullptr);
    other.adopt(pane);
    ASSERT_TRUE(other.showAndWait());
    EXPECT_TRUE(isBlack(grab(pane)));
    ASSERT_EQ(other.release(pane), 0);
}

} // namespace
