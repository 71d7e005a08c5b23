// Every file of the set compiles and links with what a program puts before it.
#include "GlBench.h"

#include <QOpenGLShader>

#include <string>

namespace {

using namespace xelttest;

class CompileTest : public GlBench
{
protected:
    void expectLinks(const char *pszVertex, const char *pszFragment,
                     const QList<QByteArray> &listDefines = {})
    {
        SCOPED_TRACE(pszFragment + std::string(" ") + listDefines.join(' ').toStdString());
        const auto program =
            link(shaderText(pszVertex), fragmentPrefix(listDefines) + shaderText(pszFragment));
        EXPECT_TRUE(program->bind());
        EXPECT_GE(program->attributeLocation("aPosition"), 0);
        EXPECT_GE(program->attributeLocation("aTexCoord"), 0);
    }
};

TEST_F(CompileTest, OverlayPair)
{
    expectLinks(":/opengl/shaders/OSD.vert", ":/opengl/shaders/OSD.frag");
}

TEST_F(CompileTest, RgbShaderWithAndWithoutGl3)
{
    expectLinks(":/opengl/shaders/Video.vert", ":/opengl/shaders/VideoRGB.frag");
    expectLinks(":/opengl/shaders/Video.vert", ":/opengl/shaders/VideoRGB.frag", {"GL3"});
}

TEST_F(CompileTest, YCbCrShaderWithEveryDefine)
{
    for (const QList<QByteArray> &listDefines : {QList<QByteArray>{}, {"NV12"}, {"GL3"}, {"GL3", "NV12"}}) {
        expectLinks(":/opengl/shaders/Video.vert", ":/opengl/shaders/VideoYCbCr.frag", listDefines);
    }
}

TEST_F(CompileTest, ChromaSamplersFollowTheDefine)
{
    for (const bool blNv12 : {false, true}) {
        SCOPED_TRACE(blNv12);
        const auto program = link(shaderText(":/opengl/shaders/Video.vert"),
                                  fragmentPrefix(blNv12 ? QList<QByteArray>{"NV12"} : QList<QByteArray>{}) +
                                      shaderText(":/opengl/shaders/VideoYCbCr.frag"));
        EXPECT_EQ(program->uniformLocation("uCbCr") >= 0, blNv12);
        EXPECT_EQ(program->uniformLocation("uCb") >= 0, !blNv12);
        EXPECT_EQ(program->uniformLocation("uCr") >= 0, !blNv12);
    }
}

TEST_F(CompileTest, TransferFunctionsAreNotPartOfTheShaders)
{
    for (const char *pszFragment : {":/opengl/shaders/VideoRGB.frag", ":/opengl/shaders/VideoYCbCr.frag"}) {
        SCOPED_TRACE(pszFragment);
        const QByteArray abPrecision = "#ifdef GL_ES\nprecision highp float;\n#endif\n";
        QOpenGLShader plain(QOpenGLShader::Fragment);
        EXPECT_TRUE(plain.compileSourceCode(abPrecision + shaderText(pszFragment)));
        // Qt would print the compiler's complaint.
        const GLuint nShader = glCreateShader(GL_FRAGMENT_SHADER);
        const QByteArray abText = "#define GL3\n" + abPrecision + shaderText(pszFragment);
        const char *pszText = abText.constData();
        glShaderSource(nShader, 1, &pszText, nullptr);
        glCompileShader(nShader);
        GLint nCompiled = GL_TRUE;
        glGetShaderiv(nShader, GL_COMPILE_STATUS, &nCompiled);
        EXPECT_EQ(nCompiled, GL_FALSE) << "colorspace.glsl must come first";
        glDeleteShader(nShader);
    }
}

} // namespace
