// What the programs make of u_iDrawFlag: 1 is the overlay colour, every other value the picture.
#include "InsideYuv.h"

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QVector3D>

namespace xelttest {
namespace {

class DrawFlagTest : public InsideYuvTest, public ::testing::WithParamInterface<int>
{
protected:
    void SetUp() override
    {
        InsideYuvTest::SetUp();
        openWindow();
        m_frame = frame(GetParam());
        ASSERT_EQ(pane().submit(m_frame), 0);
        ASSERT_TRUE(shows(m_frame));
    }

    // Draws once more with the program and the textures of the last paint, and with this flag.
    QImage drawn(int nFlag)
    {
        static const GLfloat s_afPositions[] = {-1, -1, 1, -1, -1, 1, 1, 1};
        static const GLfloat s_afCoordinates[] = {0, 1, 1, 1, 0, 0, 1, 0};
        pane().makeCurrent();
        QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
        const QSize size = pane().size() * scaleFactor();
        QOpenGLFramebufferObject target(size);
        target.bind();
        gl.glViewport(0, 0, size.width(), size.height());
        gl.glClearColor(0, 0, 0, 1);
        gl.glClear(GL_COLOR_BUFFER_BIT);
        const std::vector<GLuint> vecTextures = glNames().vecTextures;
        for (size_t i = 0; i < vecTextures.size(); ++i) {
            gl.glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(i));
            gl.glBindTexture(GL_TEXTURE_2D, vecTextures[i]);
        }
        QOpenGLShaderProgram &program = *pane().m_pProgram;
        program.bind();
        program.setUniformValue("u_iDrawFlag", nFlag);
        program.setUniformValue("u_vDrawColor", QVector3D(1, 0, 1));
        program.setUniformValue("u_fDrawAlpha", 1.0f);
        program.setAttributeArray("vertexIn", s_afPositions, 2);
        program.setAttributeArray("textureIn", s_afCoordinates, 2);
        program.enableAttributeArray("vertexIn");
        program.enableAttributeArray("textureIn");
        gl.glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
        EXPECT_EQ(gl.glGetError(), GLenum(GL_NO_ERROR));
        const QImage image = target.toImage().convertToFormat(QImage::Format_RGB32);
        pane().doneCurrent();
        return image;
    }

    HostFrame m_frame;
};

TEST_P(DrawFlagTest, OneIsTheColour)
{
    EXPECT_TRUE(isUniform(drawn(1), {255, 0, 255}));
}

TEST_P(DrawFlagTest, EveryOtherValueIsThePicture)
{
    for (const int nFlag : {0, 2, 3, -1}) {
        EXPECT_TRUE(showsFrame(drawn(nFlag), pane().size(), m_frame)) << nFlag;
    }
}

// The paint sets it for itself.
TEST_P(DrawFlagTest, WhatWasSetBeforeDoesNotCountInAPaint)
{
    drawn(1);
    EXPECT_TRUE(shows(m_frame));
}

INSTANTIATE_TEST_SUITE_P(Types, DrawFlagTest, ::testing::Values(VIDEO_DISPLAY_YV12, VIDEO_DISPLAY_NV12),
                         [](const auto &test) { return test.param == VIDEO_DISPLAY_NV12 ? "Nv12" : "Yv12"; });

} // namespace
} // namespace xelttest
