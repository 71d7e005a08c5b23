// What the first frames say, line by line.
#include "HardwarePane.h"

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace {

using namespace xelttest;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

// GoogleTest's own knows little of regular expressions on some systems.
MATCHER_P(MatchesRegex, sPattern, "")
{
    return std::regex_match(arg, std::regex(sPattern));
}

// As printf writes it, which is the system's way.
const std::string k_sPointer = "(0x)?[0-9A-Fa-f]+";

class InteropLog : public HardwarePane
{
protected:
    void SetUp() override
    {
        HardwarePane::SetUp();
        open(QSize(96, 64));
        textures(QSize(96, 64));
        CoreLog::instance().clear();
        m_messages.take();
    }
    std::vector<std::string> takeLog()
    {
        std::vector<std::string> vecTexts;
        for (const CoreLogRecord &record : CoreLog::instance().records()) {
            vecTexts.push_back(record.sText);
        }
        CoreLog::instance().clear();
        return vecTexts;
    }
    std::vector<std::string> takeMessages()
    {
        std::vector<std::string> vecTexts;
        for (const QtMessage &message : m_messages.take()) {
            EXPECT_EQ(message.type, QtDebugMsg) << message;
            vecTexts.push_back(message.sText);
        }
        return vecTexts;
    }

    QtMessages m_messages;
};

TEST_F(InteropLog, FromTheFirstFrameToTheLast)
{
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
    EXPECT_THAT(takeLog(),
                ElementsAre("ShowYuvFrame Display type is VIDEO_DISPLAY_DXGL,The Player is D3D11Player",
                            MatchesRegex("CLS_D3D11EGL::SetDevice this = " + k_sPointer +
                                         " m_pD3DDevice = " + k_sPointer)));
    EXPECT_THAT(takeMessages(), IsEmpty());
    paint();
    EXPECT_THAT(
        takeLog(),
        ElementsAre("[CLS_EglOpenGlEs::BindGlApi]eglBindAPI:EGL_OPENGL_ES_API Success!",
                    StartsWith("CLS_D3D11EGL GL_VERSION: OpenGL ES "),
                    MatchesRegex("CLS_D3D11EGL GL_VENDOR: .+"), MatchesRegex("CLS_D3D11EGL GL_RENDERER: .+"),
                    StartsWith("CLS_D3D11EGL GL_SHADING_LANGUAGE_VERSION: OpenGL ES "),
                    MatchesRegex("\\[CLS_EGLBase::CreateEglResource\\]EGL eglVendor: .+"),
                    StartsWith("[CLS_EGLBase::CreateEglResource]EGL eglVersion: 1."),
                    MatchesRegex("\\[CLS_EGLBase::CreateEglResource\\]EGL eglClientApis: .*OpenGL_ES.*"),
                    MatchesRegex("pbuffer surface from client buffer: " + k_sPointer)));
    EXPECT_THAT(takeMessages(),
                ElementsAre("uniform locations:", MatchesRegex("u_Texture0: [0-9]+"),
                            MatchesRegex("u_Matrix: [0-9]+"), MatchesRegex("u_colorMatrix: [0-9]+"),
                            MatchesRegex("u_opacity: [0-9]+"), MatchesRegex("u_c: [0-9]+")));
    paint();
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_THAT(takeMessages(),
                ElementsAre(StartsWith("color mat: QMatrix4x4("), "creating VBO...", "creating VAO...",
                            "vao updated", "geometry attributes changed, rebind vao...", "geometry updated"));
    // From now on frames and paints are silent, another place of the picture too.
    zoom(0.25, 0.25, 0.75, 0.75);
    takeLog(); // the command's own line
    for (uint32_t nSeed = 1; nSeed < 4; ++nSeed) {
        ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64, nSeed), nSeed), 0);
        EXPECT_TRUE(shows());
    }
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_THAT(takeMessages(), IsEmpty());
    // Another size is another surface.
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 64, 48)), 0);
    EXPECT_TRUE(shows());
    EXPECT_THAT(takeLog(), ElementsAre(MatchesRegex("pbuffer surface from client buffer: " + k_sPointer)));
    EXPECT_THAT(takeMessages(), IsEmpty());
    Xelt_ClearDraw(handle());
    paint();
    EXPECT_THAT(takeMessages(), ElementsAre("[CLS_D3D11EGL::~CLS_D3D11EGL]Success!"));
}

// The main renderer has a hardware path from its beginning, and its end makes and ends another one.
TEST_F(InteropLog, APaneThatIsDestroyed)
{
    QWidget host;
    const int32_t nType = rendererType();
    void *const own = Xelt_CreateEx(&nType, sizeof nType);
    ASSERT_NE(own, nullptr);
    paneWidget(own)->setParent(&host);
    host.show();
    ASSERT_TRUE(pump([&] { return paneWidget(own)->isValid(); }));
    drainEvents();
    takeMessages();
    delete paneWidget(own);
    EXPECT_THAT(takeMessages(), testing::AllOf(SizeIs(nType == XELT_RENDERER_YUV ? 2 : 0),
                                               Each("[CLS_D3D11EGL::~CLS_D3D11EGL]Success!")));
}

TEST_F(InteropLog, TheCallsToEgl)
{
    using softegl::Call;
    using softegl::CallCount;
    softegl::ResetCallCounts();
    ASSERT_EQ(submitSlice(makePlanes(Pattern::Card, 96, 64)), 0);
    paint();
    EXPECT_EQ(CallCount(Call::BindApi), 1U);
    EXPECT_EQ(CallCount(Call::GetCurrentDisplay), 1U);
    EXPECT_EQ(CallCount(Call::QueryString), 4U);
    EXPECT_EQ(CallCount(Call::ChooseConfig), 1U);
    EXPECT_EQ(CallCount(Call::CreatePbufferFromClientBuffer), 1U);
    EXPECT_EQ(CallCount(Call::BindTexImage), 1U);
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 0U);
    EXPECT_EQ(CallCount(Call::DestroySurface), 0U);
    for (int i = 0; i < 3; ++i) {
        paint();
    }
    EXPECT_EQ(CallCount(Call::QueryString), 4U);
    EXPECT_EQ(CallCount(Call::CreatePbufferFromClientBuffer), 1U);
    EXPECT_EQ(CallCount(Call::BindTexImage), 1U);
    EXPECT_EQ(CallCount(Call::MakeCurrent), 0U);
    Xelt_ClearDraw(handle());
    paint();
    EXPECT_EQ(CallCount(Call::ReleaseTexImage), 1U);
    EXPECT_EQ(CallCount(Call::DestroySurface), 1U);
    EXPECT_EQ(CallCount(Call::MakeCurrent), 1U);
    EXPECT_EQ(CallCount(Call::ReleaseThread), 1U);
    EXPECT_EQ(CallCount(Call::BindApi), 1U);
}

} // namespace
