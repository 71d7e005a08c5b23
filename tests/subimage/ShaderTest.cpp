// The programs of the sub-image renderer have no matrix and no opacity.
#include "InsidePane.h"
#include "yuv/YuvShaderSources.h"

#include <QOpenGLShader>

#include <string>

namespace xelttest {
namespace {

std::string without(std::string sText, const std::string &sPart)
{
    const size_t nAt = sText.find(sPart);
    EXPECT_NE(nAt, std::string::npos) << sPart;
    return sText.erase(nAt, sPart.size());
}

TEST(PlainShaderTest, TheNv12VertexTextHasNoMatrix)
{
    EXPECT_STREQ(yuv::kNv12PlainVertexShader,
                 "attribute vec4 vertexIn;\nattribute vec4 textureIn;\nvarying vec4 textureOut;\n"
                 "void main(void) {\n   gl_Position = vertexIn;\n   textureOut = textureIn;\n}");
}

// Both are the texts with a matrix, less what is said about it.
TEST(PlainShaderTest, TheTextsAreTheOthersLessTheirMatrix)
{
    const std::string sBlanks(23, ' ');
    EXPECT_EQ(yuv::kYv12PlainVertexShader,
              without(without(yuv::kYv12VertexShader, "uniform mat4 u_Matrix;" + sBlanks), "u_Matrix * "));
    EXPECT_EQ(yuv::kNv12PlainVertexShader,
              without(without(yuv::kNv12VertexShader, "uniform mat4 u_Matrix;\n"), "u_Matrix * "));
}

class ProgramTest : public InsideTest
{
protected:
    // The sources that the program was built from.
    std::string source(QOpenGLShader::ShaderType type)
    {
        for (const QOpenGLShader *pShader : pane().m_pProgram->shaders()) {
            if (pShader->shaderType() == type) {
                return pShader->sourceCode().toStdString();
            }
        }
        return {};
    }
    bool has(const char *pUniform) { return pane().m_pProgram->uniformLocation(pUniform) >= 0; }
    void paint(int nType)
    {
        ASSERT_EQ(pane().submit(frame(nType)), 0);
        ASSERT_TRUE(shows(frame(nType)));
        pane().makeCurrent();
    }
};

TEST_F(ProgramTest, Yv12IsBuiltFromItsTexts)
{
    openWindow();
    paint(VIDEO_DISPLAY_YV12);
    ASSERT_TRUE(pane().m_pProgram->isLinked());
    EXPECT_NE(source(QOpenGLShader::Vertex).find(yuv::kYv12PlainVertexShader), std::string::npos);
    EXPECT_NE(source(QOpenGLShader::Fragment).find(yuv::kYv12FragmentShader), std::string::npos);
    EXPECT_FALSE(has("u_Matrix"));
    EXPECT_EQ(pane().m_pProgram->attributeLocation("vertexIn"), 0);
    EXPECT_EQ(pane().m_pProgram->attributeLocation("textureIn"), 1);
    EXPECT_EQ(pane().m_nLocTexY, pane().m_pProgram->uniformLocation("tex_y"));
    EXPECT_EQ(pane().m_nLocTexU, pane().m_pProgram->uniformLocation("tex_u"));
    EXPECT_EQ(pane().m_nLocTexV, pane().m_pProgram->uniformLocation("tex_v"));
    EXPECT_EQ(pane().m_nLocDrawFlag, pane().m_pProgram->uniformLocation("u_iDrawFlag"));
    EXPECT_EQ(pane().m_nLocDrawColor, pane().m_pProgram->uniformLocation("u_vDrawColor"));
}

TEST_F(ProgramTest, Nv12IsBuiltFromItsTexts)
{
    openWindow();
    paint(VIDEO_DISPLAY_NV12);
    ASSERT_TRUE(pane().m_pProgram->isLinked());
    EXPECT_NE(source(QOpenGLShader::Vertex).find(yuv::kNv12PlainVertexShader), std::string::npos);
    EXPECT_NE(source(QOpenGLShader::Fragment).find(yuv::kNv12FragmentShader), std::string::npos);
    EXPECT_FALSE(has("u_Matrix"));
    EXPECT_FALSE(has("tex_v"));
    EXPECT_EQ(pane().m_nLocTexY, pane().m_pProgram->uniformLocation("tex_y"));
    EXPECT_EQ(pane().m_nLocTexU, pane().m_pProgram->uniformLocation("tex_u"));
    EXPECT_EQ(pane().m_nLocDrawFlag, pane().m_pProgram->uniformLocation("u_iDrawFlag"));
    EXPECT_EQ(pane().m_nLocDrawColor, pane().m_pProgram->uniformLocation("u_vDrawColor"));
}

} // namespace
} // namespace xelttest
