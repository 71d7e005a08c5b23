// What a pane leaves of the host's objects: hidden, released on another thread, moved to another window.
#include "HardwarePane.h"

#include <gmock/gmock.h>

namespace {

using namespace xelttest;
using testing::Contains;
using testing::Not;

class InteropLife : public HardwarePane
{
protected:
    void SetUp() override
    {
        HardwarePane::SetUp();
        open(QSize(96, 64));
        ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
        ASSERT_TRUE(shows());
    }
    static ULONG references(IUnknown *pObject) { return pObject->AddRef(), pObject->Release(); }
    // The decoder's array is all that is left on the device but for the surface, which only the GUI thread can
    // destroy, and the decoder is the only one to hold it.
    void expectOnlyTheDecoders()
    {
        EXPECT_EQ(liveObjects(m_device.Get()), 1U + texturesHeldByEgl());
        EXPECT_EQ(references(m_textures->texture()), 1U);
    }
};

TEST_F(InteropLife, AHiddenPaneThatIsClearedHoldsNothingOfTheHosts)
{
    window().hide();
    drainEvents();
    const int nPaints = window().paints(handle());
    for (uint32_t n = 0; n < 50; ++n) {
        submitSlice(makePlanes(Pattern::Card, 96, 64, n), n % 16);
        EXPECT_EQ(references(m_textures->texture()), 2U);
        Xelt_ClearDraw(handle());
        expectOnlyTheDecoders();
    }
    EXPECT_EQ(window().paints(handle()), nPaints);
    EXPECT_LE(surfaces(), 1U);
    ASSERT_TRUE(window().showAndWait());
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Ramp, 96, 64, 3)), 0);
    EXPECT_TRUE(shows());
    EXPECT_EQ(surfaces(), 1U);
}

TEST_F(InteropLife, AFrameOfAnotherTypeLetsGoOfWhatIsTheHosts)
{
    submit(yv12Frame(makePlanes(Pattern::Ramp, 96, 64)));
    expectOnlyTheDecoders();
    drainEvents();
    EXPECT_EQ(surfaces(), 0U);
    expectOnlyTheDecoders();
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64, 5)), 0);
    EXPECT_TRUE(shows());
}

TEST_F(InteropLife, ReleasedOnAnotherThreadNothingIsLeft)
{
    ASSERT_EQ(window().releaseOnThread(handle()), 0);
    EXPECT_EQ(surfaces(), 0U);
    EXPECT_EQ(softegl::BoundTextures(), 0U);
    expectOnlyTheDecoders();
}

TEST_F(InteropLife, HiddenAndReleasedOnAnotherThreadNothingIsLeft)
{
    window().hide();
    drainEvents();
    ASSERT_EQ(window().releaseOnThread(handle()), 0);
    EXPECT_EQ(surfaces(), 0U);
    EXPECT_EQ(softegl::BoundTextures(), 0U);
    expectOnlyTheDecoders();
}

TEST_F(InteropLife, AKeptPictureMovesAlongToAnotherWindow)
{
    void *const pane = handle();
    ASSERT_EQ(setReserveLastFrame(pane, 1), 0);
    Xelt_ClearDraw(pane);
    HostWindow other(nullptr);
    for (HostWindow *pTarget : {&other, &window()}) {
        const int nBefore = pTarget->paints(pane);
        pTarget->adopt(pane);
        ASSERT_TRUE(pTarget->showAndWait());
        if (rendererType() == 7) { // whose frame counts as gone
            EXPECT_TRUE(isBlack(grab(pane)));
            continue;
        }
        ASSERT_TRUE(pump([&] { return pTarget->paints(pane) >= nBefore + 2; }));
        EXPECT_TRUE(imageMatches(grab(pane), hardwareReference(), k_converted));
    }
}

// The layout is known from the first window, so the buffer is filled anew and no vertex array object made.
TEST_F(InteropLife, InAnotherWindowThePictureIsDrawnWithoutAVertexArray)
{
    void *const pane = handle();
    HostWindow other(nullptr);
    for (HostWindow *pTarget : {&other, &window()}) {
        QtMessages messages;
        const int nBefore = pTarget->paints(pane);
        pTarget->adopt(pane);
        ASSERT_TRUE(pTarget->showAndWait());
        if (rendererType() == 7) { // whose frame counts as gone
            const VideoFrameDesc desc = m_textures->frame(0);
            ASSERT_EQ(Xelt_ShowYuvFrame(pane, &desc, sizeof desc), 0);
            grab(pane);
        } else {
            ASSERT_TRUE(pump([&] { return pTarget->paints(pane) >= nBefore + 2; }));
        }
        EXPECT_TRUE(imageMatches(grab(pane), hardwareReference(), k_converted));
        const auto vecMessages = messages.take();
        EXPECT_THAT(vecMessages, Contains(debugLine("creating VBO...")).Times(1));
        EXPECT_THAT(vecMessages, Not(Contains(debugLine("creating VAO..."))));
        EXPECT_THAT(vecMessages, Not(Contains(debugLine("vao updated"))));
    }
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Ramp, 96, 64, 5)), 0);
    EXPECT_TRUE(shows("a frame after the moves"));
}

} // namespace
