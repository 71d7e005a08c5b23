// The draw of the geometry renderer: its calls for every set of objects, and pixels.
#include "GeometryRendererTest.h"

#include <QOpenGLShaderProgram>

namespace xelttest {
namespace {

class GeometryDrawTest : public GeometryRendererTest
{
protected:
    // Attribute 1 becomes red and green.
    void useProgram()
    {
        m_program.addShaderFromSourceCode(
            QOpenGLShader::Vertex,
            "attribute vec4 a; attribute vec2 b; varying vec2 v; void main() { gl_Position = a; v = b; }");
        m_program.addShaderFromSourceCode(
            QOpenGLShader::Fragment, "#ifdef GL_ES\nprecision mediump float;\n#endif\n"
                                     "varying vec2 v; void main() { gl_FragColor = vec4(v, 0.0, 1.0); }");
        m_program.bindAttributeLocation("a", 0);
        m_program.bindAttributeLocation("b", 1);
        ASSERT_TRUE(m_program.link());
        ASSERT_TRUE(m_program.bind());
    }

    // Whether the 8 x 8 picture is the ramp of the texture coordinates, row 0 at the top.
    ::testing::AssertionResult showsRamp()
    {
        const QImage picture = m_gl.picture();
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 8; ++x) {
                const QColor color = picture.pixelColor(x, y);
                const double dRed = (x + 0.5) / 8 * 255;
                const double dGreen = (y + 0.5) / 8 * 255;
                if (std::abs(color.red() - dRed) > 1.5 || std::abs(color.green() - dGreen) > 1.5 ||
                    color.blue() != 0 || color.alpha() != 255) {
                    return ::testing::AssertionFailure()
                           << "(" << x << ", " << y << ") is " << qPrintable(color.name(QColor::HexArgb));
                }
            }
        }
        return ::testing::AssertionSuccess();
    }

    uintptr_t vertexAddress() const
    {
        return reinterpret_cast<uintptr_t>(m_renderer.geometry()->vertexData.constData());
    }

    std::string clientElements() const
    {
        return "elements 5 4 5123 at " +
               std::to_string(reinterpret_cast<uintptr_t>(m_renderer.geometry()->indexData.constData()));
    }

    QOpenGLShaderProgram m_program;
};

constexpr uint32_t k_nVbo = GeometryRenderer::UseVertexBuffer;
constexpr uint32_t k_nIbo = GeometryRenderer::UseIndexBuffer;
constexpr uint32_t k_nVao = GeometryRenderer::UseVertexArray;

const Calls k_vecDisable{"disable 0", "disable 1"};

TEST_F(GeometryDrawTest, WithoutAGeometryNothingHappens)
{
    EXPECT_EQ(render(), Calls());
}

TEST_F(GeometryDrawTest, AVertexArrayObjectWithBufferIsAllThatIsBound)
{
    useProgram();
    update(quad());
    EXPECT_EQ(render(), (Calls{"bind vao", "arrays 5 0 4", "unbind vao"}));
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, BuffersAlone)
{
    useProgram();
    m_renderer.setFeatures(k_nVbo | k_nIbo);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(render(), (Calls{"bind element", "bind array"} + pointerCalls() +
                         Calls{"elements 5 4 5123 at 0", "unbind element", "unbind array"} + k_vecDisable));
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, ClientMemoryAlone)
{
    useProgram();
    m_renderer.setFeatures(0);
    update(quad());
    EXPECT_EQ(render(), pointerCalls(vertexAddress()) + Calls{"arrays 5 0 4"} + k_vecDisable);
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, ClientVerticesAndIndices)
{
    useProgram();
    m_renderer.setFeatures(0);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(render(), pointerCalls(vertexAddress()) + Calls{clientElements()} + k_vecDisable);
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, ClientVerticesWithAnIndexBuffer)
{
    useProgram();
    m_renderer.setFeatures(k_nIbo);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(render(), (Calls{"bind element"} + pointerCalls(vertexAddress()) +
                         Calls{"elements 5 4 5123 at 0", "unbind element"} + k_vecDisable));
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, AVertexBufferWithClientIndices)
{
    useProgram();
    m_renderer.setFeatures(k_nVbo);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(render(), (Calls{"bind array"} + pointerCalls() + Calls{clientElements(), "unbind array"} +
                         k_vecDisable));
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, AVertexArrayObjectWithBothBuffers)
{
    useProgram();
    m_renderer.setFeatures(k_nVbo | k_nIbo | k_nVao);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(render(), (Calls{"bind vao", "elements 5 4 5123 at 0", "unbind vao"}));
    EXPECT_TRUE(showsRamp());
}

// The vertex array object is let go before the attributes are switched off.
TEST_F(GeometryDrawTest, AVertexArrayObjectWithoutVertexBuffer)
{
    m_renderer.setFeatures(k_nVao | k_nIbo);
    update(indexedQuad({0, 1, 2, 3}));
    EXPECT_EQ(render(), (Calls{"bind vao"} + pointerCalls(vertexAddress()) +
                         Calls{"elements 5 4 5123 at 0", "unbind vao", "unbind element"} + k_vecDisable));
}

TEST_F(GeometryDrawTest, PrimitiveAndCountsComeFromTheGeometry)
{
    m_renderer.setFeatures(k_nVbo);
    auto pGeometry = quad();
    pGeometry->primitive = GL_TRIANGLE_FAN;
    pGeometry->vertexCount = 3;
    update(std::move(pGeometry));
    const Calls vecCalls = render();
    EXPECT_EQ(std::count(vecCalls.begin(), vecCalls.end(), "arrays 6 0 3"), 1);
}

TEST_F(GeometryDrawTest, NegativeIndexCountsDrawArrays)
{
    m_renderer.setFeatures(0);
    auto pGeometry = quad();
    pGeometry->indexCount = -1;
    update(std::move(pGeometry));
    const Calls vecCalls = render();
    EXPECT_EQ(std::count(vecCalls.begin(), vecCalls.end(), "arrays 5 0 4"), 1);
}

TEST_F(GeometryDrawTest, AFanShowsTheSamePicture)
{
    useProgram();
    auto pGeometry = std::make_unique<TexturedGeometry>();
    pGeometry->primitive = GL_TRIANGLE_FAN;
    pGeometry->setTextureRect(QRectF(0, 0, 1, 1), 0);
    pGeometry->create();
    update(std::move(pGeometry));
    render();
    EXPECT_TRUE(showsRamp());
}

TEST_F(GeometryDrawTest, DrawsAgainAfterDestroy)
{
    useProgram();
    update(quad());
    render();
    m_renderer.destroy();
    m_gl.clear();
    update(quad());
    render();
    EXPECT_TRUE(showsRamp());
    m_gl.clear();
    render();
    EXPECT_TRUE(showsRamp()) << "the pointers are set on every draw";
    EXPECT_EQ(m_gl.gl().glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(GeometryDrawTest, NewVerticesShowAtOnce)
{
    useProgram();
    auto pGeometry = quad();
    pGeometry->setRect(QRectF(-1, 1, 1, -2));
    pGeometry->create();
    update(std::move(pGeometry));
    m_gl.clear();
    render();
    EXPECT_EQ(m_gl.picture().pixelColor(6, 4).alpha(), 0);
    update(quad());
    render();
    EXPECT_TRUE(showsRamp());
}

} // namespace
} // namespace xelttest
