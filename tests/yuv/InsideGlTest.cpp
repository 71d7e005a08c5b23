// GL objects of the main renderer: built by the first paint of a type, rebuilt after each change of type,
// destroyed on the painting thread alone.
#include "InsideYuv.h"
#include "TextureTrap.h"

#include <QMutexLocker>
#include <QPointer>

#include <functional>
#include <thread>

namespace xelttest {
namespace {

class InsideGlTest : public InsideYuvTest
{
protected:
    void SetUp() override
    {
        InsideYuvTest::SetUp();
        openWindow();
        pane().picture();
        pane().takeReleases();
    }

    // What one paint does; names and addresses alone may come again.
    struct Paint
    {
        int nTextures;
        int nReleases;
        bool blSameProgram;
        GlNames names;
    };
    Paint paint()
    {
        const QPointer<QOpenGLShaderProgram> pBefore = pane().m_pProgram.get();
        const TextureTrap trap;
        pane().picture();
        return {trap.made(), pane().takeReleases(), !pBefore.isNull() && pBefore == pane().m_pProgram.get(),
                glNames()};
    }
    Paint painted(const HostFrame &frame)
    {
        EXPECT_EQ(pane().submit(frame), 0);
        const Paint result = paint();
        EXPECT_TRUE(shows(frame));
        return result;
    }

    static void onHostThread(const std::function<void()> &action) { std::thread(action).join(); }
};

TEST_F(InsideGlTest, NothingIsBuiltWithoutAFrame)
{
    EXPECT_EQ(paint().nTextures, 0);
    EXPECT_EQ(pane().m_pProgram, nullptr);
    EXPECT_FALSE(pane().m_blGLReady);
    ASSERT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    EXPECT_EQ(pane().m_pProgram, nullptr) << "that waits for the paint";
    EXPECT_EQ(paint().nTextures, 3);
    EXPECT_NE(pane().m_pProgram, nullptr);
    EXPECT_TRUE(pane().m_blGLReady);
}

TEST_F(InsideGlTest, EachTypeIsBuiltOnceWhateverTheSizes)
{
    for (const int nType : {VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12}) {
        const Paint first = painted(frame(nType));
        EXPECT_EQ(first.nTextures, nType == VIDEO_DISPLAY_YV12 ? 3 : 2);
        EXPECT_EQ(existing(first.names), first.nTextures + 1);
        for (int i = 0; i < 5; ++i) {
            const Paint next = painted(frame(nType, QSize(96 - 8 * i, 64 + 4 * i), uint32_t(i) + 2));
            EXPECT_EQ(next.nTextures, 0);
            EXPECT_EQ(next.nReleases, 0);
            EXPECT_TRUE(next.blSameProgram);
            EXPECT_EQ(next.names.nProgram, first.names.nProgram);
            EXPECT_EQ(next.names.vecTextures, first.names.vecTextures);
        }
    }
}

TEST_F(InsideGlTest, TheStoredNamesAreThoseOfTheTextures)
{
    painted(frame(VIDEO_DISPLAY_YV12));
    EXPECT_EQ((std::vector<GLuint>{pane().m_nTexIdY, pane().m_nTexIdU, pane().m_nTexIdV}),
              glNames().vecTextures);
    painted(frame(VIDEO_DISPLAY_NV12));
    EXPECT_EQ((std::vector<GLuint>{pane().m_nTexIdY, pane().m_nTexIdU}), glNames().vecTextures);
    EXPECT_EQ(pane().m_pTexV, nullptr);
}

TEST_F(InsideGlTest, AChangeOfTypeRebuildsInTheNextPaint)
{
    painted(frame(VIDEO_DISPLAY_YV12));
    const int nTextures = textures();
    for (const int nType : {VIDEO_DISPLAY_NV12, VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12, VIDEO_DISPLAY_YV12}) {
        const GlNames before = glNames();
        onHostThread([&] { EXPECT_EQ(pane().submit(frame(nType)), 0); });
        EXPECT_TRUE(pane().m_bTypeChanged);
        EXPECT_EQ(existing(before), static_cast<int>(before.vecTextures.size()) + 1)
            << "the host thread destroys nothing";
        const Paint rebuilt = paint();
        EXPECT_FALSE(pane().m_bTypeChanged);
        EXPECT_EQ(rebuilt.nReleases, 1);
        EXPECT_FALSE(rebuilt.blSameProgram);
        EXPECT_EQ(rebuilt.nTextures, nType == VIDEO_DISPLAY_YV12 ? 3 : 2);
        EXPECT_EQ(existing(rebuilt.names), rebuilt.nTextures + 1);
        EXPECT_TRUE(shows(frame(nType)));
    }
    EXPECT_EQ(textures(), nTextures) << "old textures are still there";
}

TEST_F(InsideGlTest, ThereAndBackWithoutAPaintBetweenIsAChange)
{
    painted(frame(VIDEO_DISPLAY_YV12));
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_NV12)), 0);
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_YV12)), 0);
    const Paint rebuilt = paint();
    EXPECT_EQ(rebuilt.nReleases, 1);
    EXPECT_EQ(rebuilt.nTextures, 3);
    EXPECT_FALSE(rebuilt.blSameProgram);
}

// 4 is stored as 5 and compared as 4.
TEST_F(InsideGlTest, EveryFrameOfTypeFourGivesUpAllAnew)
{
    const GlNames names = painted(frame(VIDEO_DISPLAY_YV12)).names;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(pane().submit(frame(4)), 0);
        EXPECT_TRUE(pane().m_bTypeChanged);
        EXPECT_EQ(paint().nReleases, 1) << i;
        EXPECT_EQ(existing(names), 0);
        EXPECT_EQ(paint().nReleases, 0) << "another paint of the same frame";
    }
    EXPECT_EQ(pane().submit(frame(VIDEO_DISPLAY_VAGL)), 0);
    EXPECT_EQ(paint().nReleases, 0) << "that is what is stored";
}

TEST_F(InsideGlTest, VaApiTypesHaveNoProgram)
{
    for (const int nType : {4, int(VIDEO_DISPLAY_VAGL), 8}) {
        EXPECT_EQ(pane().submit(frame(nType)), 0);
        EXPECT_EQ(paint().nTextures, 0) << nType;
        EXPECT_EQ(pane().m_pProgram, nullptr) << nType;
        EXPECT_TRUE(pane().m_blGLReady) << nType;
        EXPECT_TRUE(isBlack(pane().picture())) << nType;
    }
}

TEST_F(InsideGlTest, OtherTypesHaveAProgramForTheirShapes)
{
    for (const int nType : {7, 1, -2}) {
        EXPECT_EQ(pane().submit(frame(nType)), 0);
        EXPECT_EQ(paint().nReleases, 1) << nType;
        EXPECT_NE(pane().m_pProgram, nullptr) << nType;
        EXPECT_TRUE(isBlack(pane().picture())) << nType;
    }
}

TEST_F(InsideGlTest, AClearOnAHostThreadLeavesGlToTheNextPaint)
{
    const GlNames names = painted(frame(VIDEO_DISPLAY_YV12)).names;
    onHostThread([&] { pane().ClearDraw(); });
    EXPECT_EQ(existing(names), 4);
    const Paint cleared = paint();
    EXPECT_EQ(cleared.nReleases, 1);
    EXPECT_EQ(existing(names), 0);
    EXPECT_FALSE(pane().m_blGLReady);
    EXPECT_EQ(painted(frame(VIDEO_DISPLAY_YV12)).nTextures, 3);
}

TEST_F(InsideGlTest, LosingTheContextGivesUpAllOnceAndTheNextPaintRebuilds)
{
    const HostFrame shown = frame(VIDEO_DISPLAY_NV12);
    const GlNames names = painted(shown).names;
    moveToAnotherWindow();
    EXPECT_EQ(pane().takeReleases(), 1);
    EXPECT_EQ(existing(names), 0);
    EXPECT_FALSE(pane().m_blGLReady);
    m_pOtherWindow->show();
    ASSERT_TRUE(pump([this] { return pane().isValid(); }));
    EXPECT_TRUE(shows(shown)) << "from the frame buffer";
    EXPECT_EQ(glNames().vecTextures.size(), 2u);
    EXPECT_EQ(pane().takeReleases(), 0);
}

TEST_F(InsideGlTest, DestructionTakesWhatIsInUse)
{
    const GlNames names = painted(frame(VIDEO_DISPLAY_YV12)).names;
    ASSERT_EQ(existing(names), 4);
    destroyPane();
    EXPECT_EQ(existing(names), 0);
}

} // namespace
} // namespace xelttest
