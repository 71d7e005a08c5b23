// The GL calls of CLS_D3D11EGL::Render, and those that make its texture.
#include "GlRecorder.h"
#include "InteropObject.h"
#include "QtMessages.h"

#include "d3d11/D3D11VP.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace xelttest;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;
using Calls = std::vector<std::string>;

const std::string k_sIdentity = "1.000000 0.000000 0.000000 0.000000 0.000000 1.000000 0.000000 0.000000 "
                                "0.000000 0.000000 1.000000 0.000000 0.000000 0.000000 0.000000 1.000000";

Calls operator+(Calls a, const Calls &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class InteropRender : public InteropObject
{
protected:
    // Converted once, not drawn yet.
    void convert()
    {
        ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
        setGrey(100);
        m_recorder.m_blSurroundings = true;
        ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
        m_initCalls = m_recorder.take();
        ASSERT_EQ(render(), 0);
        GLint nProgram = 0;
        ASSERT_TRUE(m_pEgl->BindProgram());
        m_pGl->gl().glGetIntegerv(GL_CURRENT_PROGRAM, &nProgram);
        m_nProgram = static_cast<GLuint>(nProgram);
        m_recorder.take();
        m_messages.take();
    }
    std::string uniform(const char *pszName)
    {
        const GLint nLocation = m_pGl->gl().glGetUniformLocation(m_nProgram, pszName);
        EXPECT_GE(nLocation, 0) << pszName;
        return std::to_string(nLocation);
    }
    // The calls of one paint. That which turns the picture is kept apart; "turn" stands in its place.
    Calls paint()
    {
        m_pGl->clear();
        m_recorder.take();
        EXPECT_EQ(m_pEgl->Render(QRect(QPoint(0, 0), k_size)), 0);
        Calls vecCalls = m_recorder.take();
        const std::string sHead = "matrix " + uniform("u_Matrix") + " is ";
        const auto isTurn = [&](const std::string &sCall) { return sCall.rfind(sHead, 0) == 0; };
        const auto turn = std::find_if(vecCalls.begin(), vecCalls.end(), isTurn);
        if (turn == vecCalls.end()) {
            ADD_FAILURE() << testing::PrintToString(vecCalls);
            return {};
        }
        m_sTurn = turn->substr(sHead.size());
        *turn = "turn";
        return vecCalls;
    }
    // The same numbers, within what the sine of a half turn is off.
    void expectTurn(const std::array<double, 16> &expected)
    {
        std::istringstream stream(m_sTurn);
        for (const double dExpected : expected) {
            double dActual = 99;
            stream >> dActual;
            EXPECT_NEAR(dActual, dExpected, 1e-6) << m_sTurn;
        }
    }
    Calls matrixDebugLines()
    {
        Calls vecTexts;
        for (const QtMessage &message : m_messages.take()) {
            vecTexts.push_back(message.sText);
        }
        return vecTexts;
    }

    std::string programCall() const { return "program " + std::to_string(m_nProgram); }
    // "texture 3553 5", as it was first bound.
    std::string textureCall() const
    {
        const auto isTexture = [](const std::string &sCall) { return sCall.rfind("texture 3553 ", 0) == 0; };
        const auto found = std::find_if(m_initCalls.begin(), m_initCalls.end(), isTexture);
        return found != m_initCalls.end() ? *found : "none";
    }
    Calls beginning() const { return {"viewport 0 0 64 48", "unit 0", textureCall(), programCall()}; }
    Calls colours()
    {
        return {"uniform " + uniform("u_Texture0") + " is 0",
                "matrix " + uniform("u_colorMatrix") + " is " + k_sIdentity,
                "uniform " + uniform("u_opacity") + " is 1.000000",
                "matrix " + uniform("u_c") + " is " + k_sIdentity};
    }
    Calls drawing()
    {
        return {"switch on 3042",
                "blend 770 771 770 771",
                "uniform " + uniform("u_iDrawFlag") + " is 0",
                "bind vao",
                "arrays 5 0 4",
                "unbind vao",
                "switch off 3042",
                "finish",
                "program 0"};
    }

    GlRecorder m_recorder;
    QtMessages m_messages;
    Calls m_initCalls;
    GLuint m_nProgram = 0;
    std::string m_sTurn;
};

const Calls k_vecTurn{"turn"};
const Calls k_vecUpload{"bind array", "data array 64", "unbind array"};

TEST_F(InteropRender, TheTextureIsMadeWithTheFramesSize)
{
    convert();
    const auto begin = std::find(m_initCalls.begin(), m_initCalls.end(), textureCall());
    EXPECT_NE(textureCall(), "texture 3553 0");
    EXPECT_THAT(Calls(begin, m_initCalls.end()),
                ElementsAre(textureCall(), "parameter 3553 10241 9729", "parameter 3553 10240 9729",
                            "parameter 3553 10242 33071", "parameter 3553 10243 33071",
                            "image 3553 0 32993 64 48 0 32993 5121 at 0", "texture 3553 0"));
}

TEST_F(InteropRender, TheTextureIsMadeEmptyBeforeTheFirstFrame)
{
    m_recorder.m_blSurroundings = true;
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    EXPECT_THAT(m_recorder.take(), testing::Contains("image 3553 0 32993 0 0 0 32993 5121 at 0"));
}

TEST_F(InteropRender, TheFirstPaintOnlyBindsTheTexture)
{
    ASSERT_EQ(m_pEgl->SetDevice(m_device.Get()), 0);
    setGrey(100);
    m_recorder.m_blSurroundings = true;
    ASSERT_EQ(m_pEgl->InitD3D11EGL(), 0);
    m_initCalls = m_recorder.take();
    EXPECT_EQ(render(), 0);
    const std::string sMaxTextureSize = "query 3379";
    EXPECT_THAT(m_recorder.take(), ElementsAre(sMaxTextureSize, textureCall(), "texture 3553 0"));
}

TEST_F(InteropRender, TheSecondPaintLoadsEverything)
{
    convert();
    const Calls vecLayout{"create vao", "bind vao",
                          "bind array", "pointer 0 size 2 type 5126 norm 0 stride 16 at 0",
                          "enable 0",   "pointer 1 size 2 type 5126 norm 0 stride 16 at 8",
                          "enable 1",   "unbind array",
                          "unbind vao"};
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + colours() + k_vecTurn + Calls{"create buffer"} +
                                          k_vecUpload + vecLayout + drawing()));
    EXPECT_EQ(m_sTurn, k_sIdentity);
    EXPECT_TRUE(isGrey(100));
}

TEST_F(InteropRender, LaterPaintsLoadNothing)
{
    convert();
    paint();
    for (int i = 0; i < 3; ++i) {
        setGrey(20 * i);
        m_pEgl->SetAreas({0, 0, 1, 1}, {0, 0, 1, 1}); // as before every paint
        EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + drawing()));
    }
    EXPECT_TRUE(isGrey(20));
}

TEST_F(InteropRender, AnotherRectangleIsUploadedOnce)
{
    convert();
    paint();
    for (const auto &[drawn, zoomed] :
         {std::pair{geometry::NormRect{0.25, 0, 1, 1}, geometry::NormRect{0, 0, 1, 1}},
          std::pair{geometry::NormRect{0.25, 0, 1, 1}, geometry::NormRect{0, 0, 1, 0.5}},
          std::pair{geometry::NormRect{0, 0, 1, 1}, geometry::NormRect{0, 0, 1, 1}}}) {
        m_pEgl->SetAreas(drawn, zoomed);
        EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + k_vecUpload + drawing()));
        m_pEgl->SetAreas(drawn, zoomed);
        EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + drawing()));
    }
}

TEST_F(InteropRender, TheTurnIsLoadedWithEachPaint)
{
    convert();
    paint();
    m_pEgl->SetRotation(1, 90, 1);
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + drawing()));
    expectTurn({0, 1, 0, 0, /**/ 1, 0, 0, 0, /**/ 0, 0, -1, 0, /**/ 0, 0, 0, 1});
    m_pEgl->SetRotation(0, 270, 0); // by -270 degrees
    paint();
    expectTurn({0, 1, 0, 0, /**/ -1, 0, 0, 0, /**/ 0, 0, 1, 0, /**/ 0, 0, 0, 1});
    m_pEgl->SetRotation(1, 270, 2); // by +270 degrees, then upside down
    paint();
    expectTurn({0, 1, 0, 0, /**/ 1, 0, 0, 0, /**/ 0, 0, -1, 0, /**/ 0, 0, 0, 1});
    m_pEgl->SetRotation(0, 180, 1);
    paint();
    expectTurn({1, 0, 0, 0, /**/ 0, -1, 0, 0, /**/ 0, 0, -1, 0, /**/ 0, 0, 0, 1});
}

TEST_F(InteropRender, TheViewportIsTheRectanglesSize)
{
    convert();
    paint();
    m_recorder.take();
    EXPECT_EQ(m_pEgl->Render(QRect(3, 4, 40, 20)), 0);
    EXPECT_EQ(m_recorder.take().front(), "viewport 0 0 40 20");
}

TEST_F(InteropRender, ColorSpaceAndRangeLoadTheColoursAgain)
{
    convert();
    paint();
    m_messages.take();
    m_pEgl->SetColorSpace(dx::kColorSpaceBt601);
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + colours() + k_vecTurn + drawing()));
    EXPECT_THAT(matrixDebugLines(), ElementsAre(StartsWith("color mat: ")));
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + drawing()));
    EXPECT_THAT(matrixDebugLines(), IsEmpty());
    m_pEgl->SetColorRange(dx::kColorRangeFull);
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + colours() + k_vecTurn + drawing()));
    EXPECT_THAT(matrixDebugLines(), ElementsAre(StartsWith("color mat: ")));
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + drawing()));
    EXPECT_THAT(matrixDebugLines(), IsEmpty());
}

// A desktop context on EGL, made current while the other one's objects are there.
class DesktopOnEgl
{
public:
    DesktopOnEgl()
    {
        const QSurfaceFormat before = QSurfaceFormat::defaultFormat();
        QSurfaceFormat format;
        format.setRenderableType(QSurfaceFormat::OpenGL);
        QSurfaceFormat::setDefaultFormat(format);
        m_pGl = std::make_unique<OffscreenGl>(k_size);
        QSurfaceFormat::setDefaultFormat(before);
    }
    OffscreenGl &operator*() const { return *m_pGl; }

private:
    std::unique_ptr<OffscreenGl> m_pGl;
};

TEST_F(InteropRender, DesktopGlIsRefusedAfterTheViewport)
{
    convert();
    paint();
    {
        const DesktopOnEgl desktop;
        ASSERT_FALSE((*desktop).context().isOpenGLES());
        ASSERT_EQ(QOpenGLContext::currentContext(), &(*desktop).context());
        (*desktop).clear();
        m_recorder.take();
        softd3d11::ResetCallCounts();
        softegl::ResetCallCounts();
        EXPECT_EQ(m_pEgl->Render(QRect(0, 0, 30, 20)), -1);
        EXPECT_THAT(m_recorder.take(), ElementsAre("viewport 0 0 30 20"));
        EXPECT_EQ(softd3d11::CallCount(softd3d11::Method::VideoContextVideoProcessorBlt), 0U);
        EXPECT_EQ(softegl::CallsInOrder(nullptr, 0), 0U);
        EXPECT_EQ((*desktop).picture().pixel(5, 40), qRgba(0, 0, 0, 0));
    }
    EXPECT_THAT(CoreLog::instance().errors(), IsEmpty());
    // It costs neither the frame nor the surface.
    m_pGl->makeCurrent();
    EXPECT_THAT(paint(), ElementsAreArray(beginning() + k_vecTurn + drawing()));
    EXPECT_TRUE(isGrey(100));
}

} // namespace
