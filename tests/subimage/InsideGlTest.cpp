// GL objects of the sub-image renderer: made once for a size, destroyed on the painting thread alone.
#include "InsidePane.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <thread>

namespace xelttest {
namespace {

class InsideGlTest : public InsideTest
{
protected:
    void SetUp() override
    {
        InsideTest::SetUp();
        openWindow();
    }

    // Shows and paints a frame; the names of its GL objects.
    GlNames painted(int nType, const QSize &size = QSize(96, 64))
    {
        EXPECT_EQ(pane().submit(frame(nType, size)), 0);
        EXPECT_TRUE(shows(frame(nType, size)));
        return glNames();
    }

    static void onHostThread(const std::function<void()> &action) { std::thread(action).join(); }
};

TEST_F(InsideGlTest, NothingIsMadeBeforeTheFirstPaint)
{
    EXPECT_EQ(pane().m_pProgram, nullptr);
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    EXPECT_EQ(pane().m_pProgram, nullptr);
    EXPECT_FALSE(pane().m_blGLReady);
    pane().picture();
    EXPECT_NE(pane().m_pProgram, nullptr);
    EXPECT_TRUE(pane().m_blGLReady);
}

TEST_F(InsideGlTest, EachFormatHasItsPlanes)
{
    EXPECT_EQ(painted(VIDEO_DISPLAY_YV12).vecTextures.size(), 3u);
    EXPECT_EQ(pane().m_pTexY->width(), 96);
    EXPECT_EQ(pane().m_pTexY->height(), 64);
    EXPECT_EQ(pane().m_pTexV->width(), 48);
    EXPECT_EQ(pane().m_pTexV->height(), 32);
    EXPECT_EQ(painted(VIDEO_DISPLAY_NV12, QSize(36, 18)).vecTextures.size(), 2u);
    EXPECT_EQ(pane().m_pTexY->width(), 36);
    EXPECT_EQ(pane().m_pTexU->width(), 18);
    EXPECT_EQ(pane().m_pTexU->height(), 9);
    EXPECT_EQ(pane().m_pTexV, nullptr);
}

TEST_F(InsideGlTest, TexturesStayFromFrameToFrame)
{
    const GlNames first = painted(VIDEO_DISPLAY_YV12);
    for (uint32_t nSeed = 2; nSeed < 6; ++nSeed) {
        ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12, QSize(96, 64), nSeed)), 0);
        EXPECT_TRUE(shows(frame(VIDEO_DISPLAY_YV12, QSize(96, 64), nSeed)));
        EXPECT_EQ(glNames().vecTextures, first.vecTextures);
        EXPECT_EQ(glNames().nProgram, first.nProgram);
    }
}

// What the driver holds does not grow with sizes that come and go, and the program stays.
TEST_F(InsideGlTest, AnotherSizeReplacesTheTextures)
{
    const GlNames first = painted(VIDEO_DISPLAY_YV12);
    const int nTextures = textures();
    GlNames before{first.vecTextures, 0};
    for (int i = 0; i < 20; ++i) {
        mark(before);
        pane().picture();
        ASSERT_EQ(marked(before), 3) << "the marks do not outlive a paint, and say nothing";
        const GlNames next = painted(VIDEO_DISPLAY_YV12, QSize(32 + i, 90 - i));
        EXPECT_EQ(next.nProgram, first.nProgram);
        EXPECT_EQ(marked(before), 0);
        before.vecTextures = next.vecTextures;
        EXPECT_EQ(existing(next), 4);
        EXPECT_EQ(pane().m_pTexY->width(), 32 + i);
    }
    EXPECT_EQ(textures(), nTextures) << "old textures are still there";
}

TEST_F(InsideGlTest, AClearOnAHostThreadLeavesGlToTheNextPaint)
{
    const GlNames names = painted(VIDEO_DISPLAY_YV12);
    ASSERT_EQ(existing(names), 4);
    onHostThread([&] { pane().ClearDraw(); });
    EXPECT_EQ(pane().m_pProgram, nullptr) << "what callers see changes at once";
    EXPECT_EQ(pane().m_pTexY, nullptr);
    EXPECT_EQ(existing(names), 4) << "nothing was destroyed on the host thread";
    EXPECT_TRUE(isBlack(pane().picture()));
    EXPECT_EQ(existing(names), 0);
}

TEST_F(InsideGlTest, ATypeChangeOnAHostThreadLeavesGlToTheNextPaint)
{
    const GlNames names = painted(VIDEO_DISPLAY_YV12);
    mark(names);
    onHostThread([&] { EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_NV12)), 0); });
    EXPECT_EQ(pane().m_pProgram, nullptr);
    EXPECT_EQ(existing(names), 4);
    EXPECT_EQ(marked(names), 4);
    onHostThread([&] { EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_DXGL)), 0); });
    pane().picture();
    EXPECT_EQ(marked(names), 0);
    EXPECT_EQ(pane().m_pProgram, nullptr) << "the hardware path has one of its own";
}

TEST_F(InsideGlTest, ManyReleasesBetweenPaintsAreAllMadeUpFor)
{
    std::vector<GlNames> vecNames;
    for (int i = 0; i < 5; ++i) {
        vecNames.push_back(painted(i % 2 == 0 ? VIDEO_DISPLAY_YV12 : VIDEO_DISPLAY_NV12));
        onHostThread([&] {
            pane().UnInit();
            pane().UnInit();
        });
    }
    pane().picture();
    EXPECT_EQ(existing(vecNames.back()), 0);
}

TEST_F(InsideGlTest, DestructionTakesWhatIsInUseAndWhatWaits)
{
    const GlNames waiting = painted(VIDEO_DISPLAY_YV12);
    onHostThread([&] { pane().ClearDraw(); });
    ASSERT_EQ(existing(waiting), 4);
    destroyPane();
    EXPECT_EQ(existing(waiting), 0);
}

TEST_F(InsideGlTest, DestructionTakesWhatIsInUse)
{
    const GlNames names = painted(VIDEO_DISPLAY_NV12);
    ASSERT_EQ(existing(names), 3);
    destroyPane();
    EXPECT_EQ(existing(names), 0);
}

TEST_F(InsideGlTest, LosingTheContextTakesWhatIsInUseAndWhatWaits)
{
    const GlNames waiting = painted(VIDEO_DISPLAY_YV12);
    onHostThread([&] { EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_NV12)), 0); });
    ASSERT_EQ(existing(waiting), 4);
    moveToAnotherWindow();
    EXPECT_EQ(existing(waiting), 0);
    EXPECT_EQ(pane().m_nDisplayType, -1);
    EXPECT_FALSE(pane().m_blGLReady);
}

} // namespace
} // namespace xelttest
