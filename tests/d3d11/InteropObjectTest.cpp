// CLS_D3D11EGL by itself: its operations one by one.
#include "InteropObject.h"
#include "ErrorRecord.h"
#include "QtMessages.h"
#include "SourceLine.h"

#include "d3d11/D3D11VP.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

using namespace xelttest;
using softegl::Call;
using softegl::CallCount;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

TEST_F(InteropObject, TheDeviceIsHeldAndReplaced)
{
    const ULONG nBefore = references(m_device);
    EXPECT_EQ(m_pEgl->Device(), nullptr);
    EXPECT_EQ(m_pEgl->SetDevice(nullptr), -1);
    EXPECT_THAT(CoreLog::instance().records(), IsEmpty());
    EXPECT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    EXPECT_EQ(m_pEgl->Device(), m_device.Get());
    EXPECT_EQ(references(m_device), nBefore + 1);
    char szExpected[200];
    std::snprintf(szExpected, sizeof szExpected, "CLS_D3D11EGL::SetDevice this = %p m_pD3DDevice = %p",
                  static_cast<void *>(m_pEgl.get()), static_cast<void *>(m_device.Get()));
    EXPECT_THAT(CoreLog::instance().messages(), ElementsAre(std::string(szExpected)));
    EXPECT_EQ(m_pEgl->SetDevice(m_device.Get()), 0); // again
    EXPECT_EQ(references(m_device), nBefore + 1);
    EXPECT_EQ(m_pEgl->SetDevice(nullptr), -1);
    EXPECT_EQ(m_pEgl->Device(), m_device.Get());
    const ComPtr<ID3D11Device> second = makeDevice();
    EXPECT_EQ(m_pEgl->SetDevice(second.Get()), 0);
    EXPECT_EQ(references(m_device), nBefore);
    EXPECT_EQ(references(second), 2U);
}

TEST_F(InteropObject, SetFrameAlwaysAnswersMinusOne)
{
    const VideoFrameDesc desc = m_textures->frame(0);
    EXPECT_EQ(m_pEgl->SetFrame(nullptr, 112), -1);
    EXPECT_EQ(m_pEgl->SetFrame(&desc, 0), -1);
    EXPECT_EQ(m_pEgl->SetFrame(&desc, -5), -1);
    EXPECT_EQ(references(m_textures->texture()), 1U);
    EXPECT_EQ(m_pEgl->SetFrame(&desc, sizeof desc), -1);
    EXPECT_EQ(references(m_textures->texture()), 2U);
    EXPECT_EQ(m_pEgl->SetFrame(&desc, sizeof desc), -1);
    EXPECT_EQ(references(m_textures->texture()), 2U);
}

TEST_F(InteropObject, ShortDescriptorsReadAsZeroBeyondTheirEnd)
{
    start();
    m_textures->fill(0, solidPlanes(64, 48, 16 + 219 / 2, 128, 128));
    m_textures->fill(7, solidPlanes(64, 48, 235, 128, 128));
    const VideoFrameDesc desc = m_textures->frame(7);
    // All but the slice.
    EXPECT_EQ(m_pEgl->SetFrame(&desc, offsetof(VideoFrameDesc, nTextureSlice)), -1);
    render();
    render();
    EXPECT_TRUE(isGrey(127));
    m_pEgl->SetFrame(&desc, sizeof desc);
    render();
    render();
    EXPECT_TRUE(isGrey(255));
    // No texture: the one of before stays, with its slice.
    EXPECT_EQ(m_pEgl->SetFrame(&desc, offsetof(VideoFrameDesc, pD3D11Texture)), -1);
    render();
    EXPECT_TRUE(isGrey(255));
    // More than a descriptor is not read: there is nothing behind this one.
    GuardedBytes guarded(sizeof desc);
    std::memcpy(guarded.data(), &desc, sizeof desc);
    EXPECT_EQ(m_pEgl->SetFrame(guarded.data(), 5000), -1);
}

TEST_F(InteropObject, NothingToRender)
{
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    EXPECT_EQ(render(), 0);
    for (unsigned n = 0; n < static_cast<unsigned>(Call::Count); ++n) {
        EXPECT_EQ(CallCount(static_cast<Call>(n)), 0U) << n;
    }
}

TEST_F(InteropObject, ARenderWithoutADevice)
{
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    setGrey(50);
    CoreLog::instance().clear();
    EXPECT_EQ(render(), -1);
    char szExpected[200];
    std::snprintf(szExpected, sizeof szExpected,
                  "[CLS_D3D11EGL::EnsureSurface] NULL == m_pD3DDevice,this = %p",
                  static_cast<void *>(m_pEgl.get()));
    const auto vecRecords = CoreLog::instance().records();
    ASSERT_EQ(vecRecords.size(), 8U);
    EXPECT_TRUE(
        isErrorRecord(vecRecords, 0, "CLS_D3D11EGL", "CLS_D3D11EGL::EnsureSurface", std::string(szExpected)));
    EXPECT_TRUE(isErrorRecord(vecRecords, 4, "CLS_D3D11EGL", "CLS_D3D11EGL::Map",
                              "[CLS_D3D11EGL::Map] EnsureSurface fail!"));
    for (const size_t nAt : {0U, 4U}) {
        EXPECT_TRUE(leadsToReport(vecRecords[nAt + 2].sText, vecRecords[nAt + 3].sText));
    }
    EXPECT_EQ(references(m_textures->texture()), 1U); // dropped
    EXPECT_EQ(render(), 0);
}

TEST_F(InteropObject, AForgottenFrameIsDrawnAndNotConverted)
{
    start();
    softd3d11::ResetCallCounts();
    m_pEgl->ClearFramePending();
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(100));
    EXPECT_EQ(softd3d11::CallCount(softd3d11::Method::VideoContextVideoProcessorBlt), 0U);
    // Another context gets the picture that showed, converted once.
    m_pEgl->ReleaseContextObjects();
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(render(), 0);
        EXPECT_TRUE(isGrey(i == 0 ? 0 : 100));
    }
    EXPECT_EQ(softd3d11::CallCount(softd3d11::Method::VideoContextVideoProcessorBlt), 1U);
}

TEST_F(InteropObject, AFrameForgottenBeforeItsConversionDoesNotShow)
{
    EXPECT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    setGrey(50);
    softd3d11::ResetCallCounts();
    m_pEgl->ClearFramePending();
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(0));
    EXPECT_EQ(softd3d11::CallCount(softd3d11::Method::VideoContextVideoProcessorBlt), 0U);
}

// A clear comes from a host's thread whenever it likes, between the steps of a paint too.
TEST_F(InteropObject, FramesAreForgottenOnAnotherThreadWhileOthersAreShown)
{
    start();
    std::atomic<bool> blEnough{false};
    std::atomic<int> nClears{0};
    std::thread clearing([&] {
        while (!blEnough) {
            m_pEgl->ClearFramePending();
            ++nClears;
        }
    });
    for (int n = 0; n < 20 || nClears < 20; ++n) {
        setGrey(100);
        EXPECT_EQ(render(), 0);
        EXPECT_TRUE(isGrey(100));
    }
    blEnough = true;
    clearing.join();
    setGrey(40);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(40));
}

TEST_F(InteropObject, SizeZeroBeforeTheFirstFrame)
{
    EXPECT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
    setGrey(180);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(180));
}

TEST_F(InteropObject, SizesThatNoTextureHas)
{
    start();
    for (const auto &[nWidth, nHeight] : {std::pair{0, 48}, std::pair{64, 0}, std::pair{-64, -48},
                                          std::pair{INT32_MIN, INT32_MAX}, std::pair{INT32_MAX, 2}}) {
        QtMessages messages;
        VideoFrameDesc desc = m_textures->frame(0);
        desc.iWidth = nWidth;
        desc.iHeight = nHeight;
        m_pEgl->SetFrame(&desc, sizeof desc);
        EXPECT_EQ(render(), -1) << nWidth << ' ' << nHeight;
        const auto vecMessages = messages.take();
        ASSERT_EQ(vecMessages.size(), 2U);
        EXPECT_EQ(vecMessages[0].sText.rfind("DirectX error@548. ", 0), 0U) << vecMessages[0].sText;
        setGrey(90);
        EXPECT_EQ(render(), 0);
        EXPECT_EQ(render(), 0);
        EXPECT_TRUE(isGrey(90));
    }
}

TEST_F(InteropObject, AnotherSizeWithoutATextureIsTheSizeOfTheNextSurface)
{
    start();
    VideoFrameDesc desc = m_textures->frame(0);
    desc.pD3D11Texture = nullptr;
    desc.iWidth = 32;
    desc.iHeight = 24;
    m_pEgl->SetFrame(&desc, sizeof desc);
    softegl::ResetCallCounts();
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(CallCount(Call::CreatePbufferFromClientBuffer), 1U);
    EXPECT_EQ(CallCount(Call::DestroySurface), 1U);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(100));
}

TEST_F(InteropObject, WhatBindsAndReleasesTheSurface)
{
    start();
    EXPECT_EQ(CallCount(Call::BindTexImage), 1U);
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 0U);
    setGrey(20);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(CallCount(Call::BindTexImage), 1U); // bound already
    softegl::ResetCallCounts();
    ASSERT_TRUE(softd3d11::FailCall(softd3d11::Method::VideoContextVideoProcessorBlt, E_FAIL));
    EXPECT_EQ(render(), -1);
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 1U);
    EXPECT_EQ(CallCount(Call::DestroySurface), 1U);
    EXPECT_EQ(CallCount(Call::BindTexImage), 0U);
    setGrey(30);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 2U); // a texture was bound before
    EXPECT_EQ(CallCount(Call::BindTexImage), 1U);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(30));
    m_pEgl->ReleaseEGL();
    m_pEgl->ReleaseEGL(); // nothing is left to release
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 3U);
    EXPECT_EQ(CallCount(Call::DestroySurface), 2U);
    EXPECT_EQ(softegl::LiveSurfaces(), 0U);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(30));
}

TEST_F(InteropObject, Adjustments)
{
    start();
    QtMessages messages;
    m_pEgl->SetBrightness(0.2);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(100 + 51));
    EXPECT_EQ(messages.take().size(), 1U); // the matrix, once
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(messages.take().size(), 0U);
    m_pEgl->SetBrightness(0);
    m_pEgl->SetContrast(1.0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isColour({73, 73, 73}, 4)); // 2 x - 0.5
    EXPECT_EQ(messages.take().size(), 1U);
    m_pEgl->SetContrast(0);
    // A reddish colour.
    setFrame(solidPlanes(64, 48, 120, 128, 170));
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    const auto plain = centre();
    EXPECT_GT(plain[0], plain[1] + 50);
    EXPECT_EQ(messages.take().size(), 1U);
    m_pEgl->SetSaturation(-1.0);
    EXPECT_EQ(render(), 0);
    const int nGrey = static_cast<int>(std::lround(0.3086 * plain[0] + 0.6094 * plain[1] + 0.082 * plain[2]));
    EXPECT_TRUE(isGrey(nGrey));
    m_pEgl->SetSaturation(0);
    m_pEgl->SetHue(1.0);
    EXPECT_EQ(render(), 0);
    const double dSum = plain[0] + plain[1] + plain[2];
    std::array<int, 3> turned{};
    for (size_t i = 0; i < 3; ++i) {
        turned[i] = static_cast<int>(std::clamp(2.0 / 3.0 * dSum - plain[i], 0.0, 255.0));
    }
    EXPECT_TRUE(isColour(turned, 3));
}

TEST_F(InteropObject, ColorSpaceAndRange)
{
    // Set before there is a processor, and while there is one.
    m_pEgl->SetColorRange(dx::kColorRangeFull);
    ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    setFrame(solidPlanes(64, 48, 100, 128, 128));
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    render();
    render();
    EXPECT_TRUE(isGrey(100));
    m_pEgl->SetColorRange(dx::kColorRangeLimited);
    render();
    render();
    EXPECT_TRUE(isGrey(98)); // (100 - 16) / 219
    setFrame(solidPlanes(64, 48, 126, 128, 180));
    render();
    render();
    EXPECT_TRUE(isColour({221, 100, 128}, 3)); // BT.709
    m_pEgl->SetColorSpace(dx::kColorSpaceBt601);
    render();
    render();
    EXPECT_TRUE(isColour({211, 86, 128}, 3));
    // It survives the processor.
    ASSERT_TRUE(softd3d11::FailCall(softd3d11::Method::VideoContextVideoProcessorBlt, E_FAIL));
    EXPECT_EQ(render(), -1);
    setFrame(solidPlanes(64, 48, 126, 128, 180));
    render();
    render();
    EXPECT_TRUE(isColour({211, 86, 128}, 3));
}

TEST_F(InteropObject, TheProgramForOverlays)
{
    EXPECT_FALSE(m_pEgl->BindProgram());
    EXPECT_EQ(m_pEgl->DrawFlagLocation(), -1);
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_GE(m_pEgl->DrawFlagLocation(), 0);
    EXPECT_GE(m_pEgl->DrawColorLocation(), 0);
    EXPECT_GE(m_pEgl->DrawAlphaLocation(), 0);
    EXPECT_TRUE(m_pEgl->BindProgram());
    // A second initialisation finds the program there.
    CoreLog::instance().clear();
    QtMessages messages;
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_THAT(messages.take(), IsEmpty());
}

TEST_F(InteropObject, TeardownKeepsQtsContextAndLetsGoOfEverything)
{
    start();
    const ULONG nDevice = references(m_device);
    EXPECT_GT(nDevice, 2U);
    m_pEgl->SetAreas({0.25, 0.25, 0.5, 0.5}, {0, 0, 1, 1});
    softegl::ResetCallCounts();
    m_pEgl->DestroyEglResource();
    EXPECT_EQ(CallCount(Call::MakeCurrent), 1U);
    EXPECT_EQ(CallCount(Call::ReleaseThread), 1U);
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 1U);
    EXPECT_EQ(CallCount(Call::DestroySurface), 1U);
    EXPECT_EQ(m_pEgl->Device(), nullptr);
    EXPECT_EQ(liveObjects(m_device.Get()), 1U); // the decoder's array
    EXPECT_EQ(references(m_textures->texture()), 1U);
    EXPECT_FALSE(m_pEgl->BindProgram());
    // The context that Qt holds for current is the one that GL talks to.
    EXPECT_EQ(QOpenGLContext::currentContext(), &m_pGl->context());
    EXPECT_NE(m_pGl->gl().glGetString(GL_VERSION), nullptr);
    EXPECT_EQ(m_pGl->gl().glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
    // Before the first surface there is no display to take the context from.
    m_pEgl = std::make_unique<CLS_D3D11EGL>();
    softegl::ResetCallCounts();
    m_pEgl->DestroyEglResource();
    EXPECT_EQ(CallCount(Call::MakeCurrent), 0U);
    EXPECT_EQ(CallCount(Call::ReleaseThread), 1U);
    EXPECT_NE(m_pGl->gl().glGetString(GL_VERSION), nullptr);
}

TEST_F(InteropObject, TeardownWithoutAnyContext)
{
    m_pGl->doneCurrent();
    m_pEgl->DestroyEglResource();
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
    m_pGl->makeCurrent();
}

TEST_F(InteropObject, UsedAgainAfterTeardownItDrawsWithoutAVertexArray)
{
    start();
    m_pEgl->SetAreas({0.25, 0.25, 0.5, 0.5}, {0, 0, 1, 1});
    m_pEgl->DestroyEglResource();
    QtMessages messages;
    ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    setGrey(200);
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    messages.take();
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(200)) << "the rectangles are those of the whole pane again";
    const auto vecMessages = messages.take();
    EXPECT_THAT(vecMessages, Contains(debugLine("creating VBO...")));
    EXPECT_THAT(vecMessages, Not(Contains(debugLine("creating VAO..."))));
    EXPECT_THAT(vecMessages, Not(Contains(debugLine("vao updated"))));
    setGrey(10);
    EXPECT_EQ(render(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(10));
}

TEST_F(InteropObject, ALostContextIsReplaced)
{
    start();
    m_pEgl->ReleaseContextObjects();
    EXPECT_EQ(softegl::LiveSurfaces(), 0U);
    EXPECT_EQ(m_pEgl->Device(), m_device.Get());
    EXPECT_FALSE(m_pEgl->BindProgram());
    EXPECT_FALSE(m_pEgl->HoldsContextObjects());
    m_pGl.reset();
    m_pGl = std::make_unique<OffscreenGl>(k_size);
    QtMessages messages;
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(0));
    EXPECT_EQ(render(), 0);
    EXPECT_TRUE(isGrey(100)) << "the last frame shows again";
    const auto vecMessages = messages.take();
    EXPECT_THAT(vecMessages, Contains(debugLine("creating VBO...")));
    EXPECT_THAT(vecMessages, Not(Contains(debugLine("creating VAO..."))));
    EXPECT_TRUE(m_pEgl->HoldsContextObjects());
    m_pEgl->DestroyEglResource();
    EXPECT_FALSE(m_pEgl->HoldsContextObjects());
}

TEST_F(InteropObject, ItsEndIsSaidToQt)
{
    QtMessages messages;
    m_pEgl.reset();
    EXPECT_THAT(messages.take(), ElementsAre(debugLine("[CLS_D3D11EGL::~CLS_D3D11EGL]Success!")));
}

TEST_F(InteropObject, AViewportOfTheRectangle)
{
    start();
    m_pGl->clear();
    EXPECT_EQ(m_pEgl->Render(QRect(5, 6, 32, 24)), 0); // the place is not looked at
    GLint anViewport[4];
    m_pGl->gl().glGetIntegerv(GL_VIEWPORT, anViewport);
    EXPECT_THAT(anViewport, ElementsAre(0, 0, 32, 24));
    EXPECT_FALSE(m_pGl->gl().glIsEnabled(GL_BLEND));
    GLint nProgram = -1;
    m_pGl->gl().glGetIntegerv(GL_CURRENT_PROGRAM, &nProgram);
    EXPECT_EQ(nProgram, 0);
    GLint nSource = 0;
    m_pGl->gl().glGetIntegerv(GL_BLEND_SRC_ALPHA, &nSource);
    EXPECT_EQ(nSource, GL_SRC_ALPHA);
    EXPECT_EQ(m_pGl->picture().pixelColor(40, 10).red(), 0); // outside: above and to the right
    EXPECT_NEAR(m_pGl->picture().pixelColor(10, 40).red(), 100, 2);
}

} // namespace
