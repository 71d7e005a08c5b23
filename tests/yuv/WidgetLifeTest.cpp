// Panes that are moved, hidden, shrunk to nothing and released.
#include "PaneTest.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPointer>

#include <gmock/gmock.h>

namespace xelttest {
namespace {

class WidgetLifeTest : public PaneTest
{
protected:
    void SetUp() override
    {
        PaneTest::SetUp();
        open(QSize(161, 117));
        submit(yv12Frame(makePlanes(Pattern::Card, 96, 64)));
        ASSERT_TRUE(matches(k_scaled));
    }
};

TEST_F(WidgetLifeTest, APaneMovedToAnotherWindowAndBackShowsItsLastFrame)
{
    for (const bool blNv12 : {false, true}) {
        const Planes planes = makePlanes(Pattern::Card, 96, 64, 7);
        submit(blNv12 ? nv12Frame(planes) : yv12Frame(planes));
        EXPECT_TRUE(matches(k_scaled, "before"));
        const QPointer<QOpenGLContext> pBefore = paneWidget(handle())->context();
        void *const pane = handle();

        HostWindow other(nullptr);
        other.adopt(pane);
        ASSERT_TRUE(other.showAndWait());
        EXPECT_TRUE(pBefore.isNull()) << "the context was meant to be lost";
        EXPECT_TRUE(imageMatches(grab(pane), reference(), k_scaled, "other-window"));

        window().adopt(pane);
        ASSERT_TRUE(window().showAndWait());
        EXPECT_TRUE(matches(k_scaled, "back"));
    }
}

using NewPaneTest = PaneTest;

// What the pane's context says of itself, as the log has it.
std::vector<std::string> glLines(void *pane)
{
    const std::pair<const char *, GLenum> aStrings[] = {
        {"GL_VERSION", GL_VERSION},
        {"GL_VENDOR", GL_VENDOR},
        {"GL_RENDERER", GL_RENDERER},
        {"GL_SHADING_LANGUAGE_VERSION", GL_SHADING_LANGUAGE_VERSION}};
    paneWidget(pane)->makeCurrent();
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    std::vector<std::string> vecLines;
    for (const auto &[pName, nName] : aStrings) {
        const void *pText = gl.glGetString(nName);
        vecLines.push_back(std::string("[CLS_ShaderYuv]") + pName + ": " + static_cast<const char *>(pText));
    }
    paneWidget(pane)->doneCurrent();
    return vecLines;
}

TEST_F(NewPaneTest, SaysWhatItIsAndWhatItPaintsWith)
{
    open(QSize(161, 117));
    std::vector<std::string> vecLines = glLines(handle());
    vecLines.insert(vecLines.begin(), "CreateShader CLS_ShaderYuv.");
    EXPECT_EQ(CoreLog::instance().messages(), vecLines);
    EXPECT_THAT(CoreLog::instance().errors(), testing::IsEmpty());
}

TEST_F(NewPaneTest, SaysSoAgainOfEveryContext)
{
    open(QSize(161, 117));
    CoreLog::instance().clear();
    void *const pane = handle();
    HostWindow other(nullptr);
    other.adopt(pane);
    ASSERT_TRUE(other.showAndWait());
    EXPECT_EQ(CoreLog::instance().messages(), glLines(pane));
}

TEST_F(WidgetLifeTest, FramesArriveWhileThePaneIsBetweenWindows)
{
    void *const pane = handle();
    HostWindow other(nullptr);
    other.adopt(pane);
    const HostFrame frame = nv12Frame(makePlanes(Pattern::Card, 64, 32, 3));
    ASSERT_EQ(show(pane, frame), 0);
    m_model = bufferModel(frame.desc);
    ASSERT_TRUE(other.showAndWait());
    EXPECT_TRUE(imageMatches(grab(pane), reference(), k_scaled));
}

TEST_F(WidgetLifeTest, HidingAndShowingKeepsThePicture)
{
    QWidget *pWidget = paneWidget(handle());
    for (int nRound = 0; nRound < 3; ++nRound) {
        pWidget->hide();
        drainEvents();
        const int nPaints = window().paints(handle());
        pWidget->show();
        EXPECT_TRUE(window().waitForPaint(handle(), nPaints));
        EXPECT_TRUE(matches(k_scaled));
    }
    window().hide();
    drainEvents();
    submit(yv12Frame(makePlanes(Pattern::Card, 96, 64, 2)));
    ASSERT_TRUE(window().showAndWait());
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(WidgetLifeTest, ShrinksToAPixelAndBack)
{
    ASSERT_TRUE(window().resizePane(handle(), QSize(1, 1)));
    m_view.widgetSize = QSize(1, 1);
    EXPECT_TRUE(matches({4.0, 4.0, 0.0}, "one-pixel"));
    submit(nv12Frame(makePlanes(Pattern::Ramp, 64, 64)));
    EXPECT_TRUE(matches({4.0, 4.0, 0.0}, "one-pixel-nv12"));
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 117)));
    m_view.widgetSize = QSize(161, 117);
    EXPECT_TRUE(matches(k_scaled, "back"));
}

TEST_F(WidgetLifeTest, ShrinksToNoHeightAndBack)
{
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 0)));
    submit(nv12Frame(makePlanes(Pattern::Card, 64, 64)));
    drainEvents();
    ASSERT_TRUE(window().resizePane(handle(), QSize(0, 0)));
    submit(yv12Frame(makePlanes(Pattern::Card, 64, 64, 4)));
    drainEvents();
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 117)));
    EXPECT_TRUE(matches(k_scaled));
}

// Without a size there is nothing to place in: the placement stays what it was.
TEST_F(WidgetLifeTest, PlacingInAPaneWithoutHeightDoesNotDivideByZero)
{
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 0)));
    EXPECT_EQ(setRatioMode(handle(), 0), 0);
    EXPECT_EQ(setRatioMode(handle(), 1), 0);
    EXPECT_EQ(setDstRect(handle(), 0, 0, 50, 50), 0);
    ASSERT_TRUE(window().resizePane(handle(), QSize(161, 117)));
    ratioMode(0);
    EXPECT_TRUE(matches(k_scaled));
}

TEST_F(WidgetLifeTest, ResizesFollowTheWidget)
{
    for (const QSize &size : {QSize(300, 50), QSize(50, 300), QSize(97, 61), QSize(400, 300)}) {
        ASSERT_TRUE(window().resizePane(handle(), size));
        m_view.widgetSize = size;
        EXPECT_TRUE(matches(k_scaled, sizeName(size)));
    }
}

TEST_F(WidgetLifeTest, PanesOfOneWindowDoNotShareAnything)
{
    m_pWindow = std::make_unique<HostWindow>(QSize(120, 80), 4);
    std::vector<BufferModel> vecModels;
    for (uint32_t i = 0; i < 4; ++i) {
        const Planes planes = makePlanes(Pattern::Card, 96, 64, i + 1);
        const HostFrame frame = i % 2 == 0 ? yv12Frame(planes) : nv12Frame(planes);
        ASSERT_EQ(show(window().pane(int(i)), frame), 0);
        vecModels.push_back(bufferModel(frame.desc));
    }
    ASSERT_EQ(setRotation(window().pane(1), 90, 0, 1), 0);
    for (uint32_t i = 0; i < 4; ++i) {
        View view;
        view.widgetSize = QSize(120, 80);
        view.dPixelRatio = scaleFactor();
        view.nAngle = i == 1 ? 90 : 0;
        view.nMirror = i == 1 ? 1 : 0;
        EXPECT_TRUE(imageMatches(grab(window().pane(int(i))), renderPicture(vecModels[i], view), k_scaled,
                                 QString::number(i)));
    }
    Xelt_ClearDraw(window().pane(2));
    EXPECT_TRUE(isBlack(grab(window().pane(2))));
    EXPECT_FALSE(isBlack(grab(window().pane(3))));
}

TEST_F(WidgetLifeTest, PanesThatWereNeverShownAreReleasedQuietly)
{
    const int32_t nTypeCode = XELT_RENDERER_YUV;
    void *pane = Xelt_CreateEx(&nTypeCode, sizeof nTypeCode);
    ASSERT_NE(pane, nullptr);
    EXPECT_EQ(show(pane, yv12Frame(makePlanes(Pattern::Card, 96, 64))), 0);
    const QPointer<QWidget> pWidget = paneWidget(pane);
    EXPECT_EQ(Xelt_Release(pane), 0);
    EXPECT_TRUE(pump([&] { return pWidget.isNull(); }));
    EXPECT_TRUE(matches(k_scaled)) << "the other pane is as before";
}

} // namespace
} // namespace xelttest
