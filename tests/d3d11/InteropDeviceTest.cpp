// Several panes on one device, several devices on one pane.
#include "HardwarePane.h"

namespace {

using namespace xelttest;
using softd3d11::Method;

class InteropDevice : public HardwarePane
{
protected:
    // Objects of one device that were used with another make the call a refused one.
    static uint64_t refusedCalls()
    {
        uint64_t nCalls = 0;
        for (unsigned n = 0; n < static_cast<unsigned>(Method::Count); ++n) {
            nCalls += softd3d11::RefusedCallCount(static_cast<Method>(n));
        }
        return nCalls;
    }
    // Shows the planes on a pane of its own and compares.
    void showOn(void *pane, DecoderTextures &textures, const Planes &planes, UINT nSlice)
    {
        textures.fill(nSlice, planes);
        ID3D11Device *pDevice = textures.device();
        ASSERT_EQ(Xelt_SetParam(pane, XELTCMD_SET_D3D11_DEVICE, &pDevice, sizeof pDevice), 0);
        const VideoFrameDesc desc = textures.frame(nSlice);
        ASSERT_EQ(Xelt_ShowYuvFrame(pane, &desc, sizeof desc), 0);
    }
    testing::AssertionResult showsOn(void *pane, const Planes &planes)
    {
        expectSlice(planes);
        grab(pane);
        return imageMatches(grab(pane), hardwareReference(), k_converted);
    }
};

TEST_F(InteropDevice, TwoPanesOnOneDevice)
{
    open(QSize(96, 64));
    HostWindow other(QSize(96, 64));
    void *const aPanes[] = {handle(), other.pane()};
    DecoderTextures &array = textures(QSize(96, 64));
    for (UINT nRound = 0; nRound < 4; ++nRound) {
        const Planes aPlanes[] = {makePlanes(Pattern::Card, 96, 64, 2 * nRound),
                                  makePlanes(Pattern::Ramp, 96, 64, 2 * nRound + 1)};
        showOn(aPanes[0], array, aPlanes[0], 2 * nRound);
        showOn(aPanes[1], array, aPlanes[1], 2 * nRound + 1);
        EXPECT_TRUE(showsOn(aPanes[0], aPlanes[0]));
        EXPECT_TRUE(showsOn(aPanes[1], aPlanes[1]));
        EXPECT_TRUE(showsOn(aPanes[0], aPlanes[0])) << "after the other one";
    }
    EXPECT_EQ(surfaces(), 2U);
    // What ends in one pane leaves the other alone.
    const Planes planes = makePlanes(Pattern::Bars, 96, 64, 77);
    showOn(aPanes[1], array, planes, 9);
    ASSERT_TRUE(showsOn(aPanes[1], planes));
    Xelt_ClearDraw(aPanes[0]);
    EXPECT_TRUE(isBlack(grab(aPanes[0])));
    EXPECT_EQ(surfaces(), 1U);
    EXPECT_TRUE(showsOn(aPanes[1], planes));
    ASSERT_EQ(window().release(aPanes[0]), 0);
    EXPECT_TRUE(showsOn(aPanes[1], planes));
    EXPECT_EQ(refusedCalls(), 0U);
}

TEST_F(InteropDevice, OnePaneOnTwoDevicesInTurn)
{
    open(QSize(96, 64));
    std::optional<DecoderTextures> aArrays[2];
    for (auto &array : aArrays) {
        array.emplace(makeDevice(), QSize(96, 64));
    }
    uint32_t nSeed = 0;
    for (int nRound = 0; nRound < 6; ++nRound) {
        DecoderTextures &now = *aArrays[nRound % 2];
        DecoderTextures &before = *aArrays[1 - nRound % 2];
        const ReferenceImage last = hardwareReference();
        const Planes planes = makePlanes(Pattern::Card, 96, 64, ++nSeed);
        const UINT nSlice = nSeed % 16;
        ASSERT_EQ(submitSlice(now, planes, nSlice), 0);
        if (nRound > 0) {
            EXPECT_TRUE(imageMatches(paint(), last, k_converted)) << "the old picture stays for one paint";
        }
        EXPECT_TRUE(shows());
        // Nothing but the decoder's own texture is left of the other device.
        EXPECT_EQ(liveObjects(before.device()), 1U);
        EXPECT_EQ(surfaces(), 1U);
        // More frames on the same device reuse what is there.
        softegl::ResetCallCounts();
        ASSERT_EQ(submitSlice(now, makePlanes(Pattern::Noise, 96, 64, ++nSeed), nSlice), 0);
        EXPECT_TRUE(shows());
        EXPECT_EQ(softegl::CallCount(softegl::Call::CreatePbufferFromClientBuffer), 0U);
    }
    EXPECT_EQ(refusedCalls(), 0U);
}

TEST_F(InteropDevice, TheOldDeviceMayGoAtOnce)
{
    open(QSize(96, 64));
    {
        DecoderTextures first(makeDevice(), QSize(96, 64));
        ASSERT_EQ(submitSlice(first, makePlanes(Pattern::Card, 96, 64)), 0);
        ASSERT_TRUE(shows());
    }
    // The pane holds the last one's texture and device until the next frame's are there.
    EXPECT_GT(liveObjects(), 0U);
    DecoderTextures second(makeDevice(), QSize(64, 48));
    const size_t nObjects = liveObjects();
    ASSERT_EQ(submitSlice(second, makePlanes(Pattern::Card, 64, 48)), 0);
    EXPECT_TRUE(shows());
    EXPECT_LE(liveObjects(), nObjects);
    EXPECT_EQ(refusedCalls(), 0U);
}

TEST_F(InteropDevice, AChangeWithoutATextureUsesNothingOfTheOldDevice)
{
    open(QSize(96, 64));
    DecoderTextures first(makeDevice(), QSize(96, 64));
    ASSERT_EQ(submitSlice(first, makePlanes(Pattern::Card, 96, 64)), 0);
    ASSERT_TRUE(shows());
    DecoderTextures second(makeDevice(), QSize(96, 64));
    setDevice(second.device());
    VideoFrameDesc desc = second.frame(0);
    desc.pD3D11Texture = nullptr;
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), &desc, sizeof desc), 0);
    paint();
    paint();
    EXPECT_EQ(refusedCalls(), 0U);
    ASSERT_EQ(submitSlice(second, makePlanes(Pattern::Ramp, 96, 64)), 0);
    EXPECT_TRUE(shows());
    EXPECT_EQ(liveObjects(first.device()), 1U);
}

TEST_F(InteropDevice, NoDeviceShowsNothingUntilThereIsOne)
{
    open(QSize(96, 64));
    DecoderTextures &array = textures(QSize(96, 64));
    array.fill(0, makePlanes(Pattern::Card, 96, 64));
    const VideoFrameDesc desc = array.frame(0);
    EXPECT_EQ(Xelt_ShowYuvFrame(handle(), &desc, sizeof desc), 0);
    EXPECT_TRUE(isBlack(paint()));
    EXPECT_EQ(CoreLog::instance().count("[CLS_D3D11EGL::EnsureSurface] NULL == m_pD3DDevice,this = "), 1);
    EXPECT_TRUE(isBlack(paint()));
    EXPECT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
    EXPECT_TRUE(shows());
}

TEST_F(InteropDevice, MovedToAnotherWindowThePictureComesBack)
{
    open(QSize(96, 64));
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
    ASSERT_TRUE(shows());
    void *const pane = handle();
    HostWindow other(nullptr);
    for (HostWindow *pTarget : {&other, &window(), &other}) {
        const int nBefore = pTarget->paints(pane);
        pTarget->adopt(pane);
        ASSERT_TRUE(pTarget->showAndWait());
        if (rendererType() == 7) { // whose frame counts as gone
            EXPECT_TRUE(isBlack(grab(pane)));
            const VideoFrameDesc desc = m_textures->frame(0);
            EXPECT_EQ(Xelt_ShowYuvFrame(pane, &desc, sizeof desc), 0);
            grab(pane);
        } else {
            // Without a new frame, and without asking for paints: the first converts, the second shows.
            ASSERT_TRUE(pump([&] { return pTarget->paints(pane) >= nBefore + 2; }));
        }
        EXPECT_TRUE(imageMatches(grab(pane), hardwareReference(), k_converted));
        EXPECT_EQ(surfaces(), 1U);
        EXPECT_EQ(softegl::BoundTextures(), 1U);
    }
    EXPECT_EQ(refusedCalls(), 0U);
}

} // namespace
