// A pane that moves to another window loses its GL context.
#include "SubImageTest.h"

#include <QOpenGLContext>
#include <QPointer>

namespace xelttest {
namespace {

class ContextLossTest : public SubImageTest, public ::testing::WithParamInterface<int>
{
protected:
    void SetUp() override
    {
        SubImageTest::SetUp();
        open(QSize(161, 117));
    }

    // Moves the pane and checks that it has another context afterwards.
    void move(HostWindow &target, void *pane)
    {
        const QPointer<QOpenGLContext> pBefore = paneWidget(pane)->context();
        target.adopt(pane);
        ASSERT_TRUE(target.showAndWait());
        EXPECT_TRUE(pBefore.isNull()) << "the context was meant to be lost";
        ASSERT_NE(paneWidget(pane)->context(), nullptr);
    }

    ::testing::AssertionResult shows(void *pane, const QString &sName)
    {
        return imageMatches(grab(pane), renderPicture(m_model, m_view), k_scaled, sName);
    }
};

TEST_P(ContextLossTest, ThePaneIsBlackUntilTheNextFrame)
{
    void *const pane = handle();
    HostWindow other(nullptr);
    HostWindow *aWindows[] = {&other, &window(), &other, &window()};
    uint32_t nSeed = 1;
    for (HostWindow *pTarget : aWindows) {
        ASSERT_EQ(show(pane, ofType(GetParam(), nSeed)), 0);
        m_model = bufferModel(ofType(GetParam(), nSeed).desc);
        ASSERT_TRUE(shows(pane, "before"));
        move(*pTarget, pane);
        EXPECT_TRUE(isBlack(grab(pane)));

        CoreLog::instance().clear();
        ASSERT_EQ(show(pane, ofType(GetParam(), ++nSeed)), 0);
        m_model = bufferModel(ofType(GetParam(), nSeed).desc);
        EXPECT_EQ(CoreLog::instance().messages().size(), 1u) << "it counts as a frame of a new type";
        EXPECT_TRUE(shows(pane, "next"));
    }
}

TEST_P(ContextLossTest, AFrameOnTheWayShowsInTheNewWindow)
{
    void *const pane = handle();
    submit(ofType(GetParam()));
    EXPECT_TRUE(matches());
    HostWindow other(nullptr);
    other.adopt(pane); // the context is gone from here
    const HostFrame frame = ofType(GetParam(), 2);
    ASSERT_EQ(show(pane, frame), 0);
    m_model = bufferModel(frame.desc);
    ASSERT_TRUE(other.showAndWait());
    EXPECT_TRUE(shows(pane, "on-the-way"));
}

INSTANTIATE_TEST_SUITE_P(Types, ContextLossTest, ::testing::Values(VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12),
                         [](const auto &test) { return test.param == 0 ? "Yv12" : "Nv12"; });

using ContextLossWithLengthTest = ContextLossTest;

// A frame of explicit length stays the pane's frame.
TEST_F(ContextLossWithLengthTest, TheLastPictureIsDrawnFromTheOldBuffer)
{
    void *const pane = handle();
    submit(withLength(ofType(VIDEO_DISPLAY_YV12)));
    EXPECT_TRUE(matches());
    HostWindow other(nullptr);
    move(other, pane);
    EXPECT_TRUE(shows(pane, "other"));
    move(window(), pane);
    EXPECT_TRUE(matches(k_scaled, "back"));
    // A frame without a length ends that.
    submit(ofType(VIDEO_DISPLAY_YV12, 2));
    EXPECT_TRUE(matches(k_scaled, "plain"));
    move(other, pane);
    EXPECT_TRUE(isBlack(grab(pane)));
}

// NV12 copies by the picture's size, whatever length is given.
TEST_F(ContextLossWithLengthTest, ALengthOfNv12DoesNotCount)
{
    void *const pane = handle();
    HostFrame frame = ofType(VIDEO_DISPLAY_NV12);
    frame.desc.nDataLen = 96 * 64 * 3 / 2;
    submit(frame);
    EXPECT_TRUE(matches());
    HostWindow other(nullptr);
    move(other, pane);
    EXPECT_TRUE(isBlack(grab(pane)));
}

// A frame without pixels leaves what was said about the length.
TEST_F(ContextLossWithLengthTest, AFrameWithoutPixelsKeepsTheLength)
{
    void *const pane = handle();
    submit(withLength(ofType(VIDEO_DISPLAY_YV12)));
    HostFrame empty = ofType(VIDEO_DISPLAY_YV12);
    empty.desc.pFrameData = nullptr;
    submit(empty);
    EXPECT_TRUE(matches());
    HostWindow other(nullptr);
    move(other, pane);
    EXPECT_TRUE(shows(pane, "other"));
}

TEST_F(ContextLossWithLengthTest, PanesOfOneWindowDoNotShareAnything)
{
    m_pWindow = std::make_unique<HostWindow>(QSize(120, 80), 4);
    m_view.widgetSize = QSize(120, 80);
    std::vector<BufferModel> vecModels;
    for (uint32_t i = 0; i < 4; ++i) {
        const HostFrame frame = ofType(i % 2 == 0 ? VIDEO_DISPLAY_YV12 : VIDEO_DISPLAY_NV12, i + 1);
        ASSERT_EQ(show(window().pane(int(i)), frame), 0);
        vecModels.push_back(bufferModel(frame.desc));
    }
    for (uint32_t i = 0; i < 4; ++i) {
        m_model = vecModels[i];
        EXPECT_TRUE(shows(window().pane(int(i)), QString::number(i)));
    }
    Xelt_ClearDraw(window().pane(2));
    EXPECT_TRUE(isBlack(grab(window().pane(2))));
    m_model = vecModels[3];
    EXPECT_TRUE(shows(window().pane(3), "untouched"));
}

} // namespace
} // namespace xelttest
