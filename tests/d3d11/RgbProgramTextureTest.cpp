// The texture that receives the picture's surface.
#include "RgbProgramTest.h"

#include <algorithm>

#ifndef GL_BGRA_EXT
#define GL_BGRA_EXT 0x80E1
#endif

namespace xelttest {
namespace {

class RgbProgramTextureTest : public RgbProgramTest
{
protected:
    int parameter(GLuint nTexture, GLenum nName)
    {
        GLint nValue = 0;
        m_gl.gl().glBindTexture(GL_TEXTURE_2D, nTexture);
        m_gl.gl().glGetTexParameteriv(GL_TEXTURE_2D, nName, &nValue);
        m_gl.gl().glBindTexture(GL_TEXTURE_2D, 0);
        return nValue;
    }

    bool exists(GLuint nTexture) { return m_gl.gl().glIsTexture(nTexture) == GL_TRUE; }

    // How many errors a texture of blue, green and red costs: some desktop drivers refuse one, others let it pass.
    size_t errorsOfTheFormat()
    {
        QOpenGLFunctions &gl = m_gl.gl();
        GLuint nTexture = 0;
        gl.glGenTextures(1, &nTexture);
        gl.glBindTexture(GL_TEXTURE_2D, nTexture);
        gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_BGRA_EXT, 16, 8, 0, GL_BGRA_EXT, GL_UNSIGNED_BYTE, nullptr);
        gl.glBindTexture(GL_TEXTURE_2D, 0);
        gl.glDeleteTextures(1, &nTexture);
        return gl.glGetError() != GL_NO_ERROR ? 1 : 0;
    }
    // What the context says of itself, line by line.
    std::vector<std::string> contextLines()
    {
        std::vector<std::string> vecLines;
        for (const auto &[pszName, nName] : std::vector<std::pair<const char *, GLenum>>{
                 {"GL_VERSION", GL_VERSION},
                 {"GL_VENDOR", GL_VENDOR},
                 {"GL_RENDERER", GL_RENDERER},
                 {"GL_SHADING_LANGUAGE_VERSION", GL_SHADING_LANGUAGE_VERSION}}) {
            const auto *pszValue = reinterpret_cast<const char *>(m_gl.gl().glGetString(nName));
            vecLines.push_back(std::string("CLS_D3D11EGL ") + pszName + ": " + pszValue);
        }
        return vecLines;
    }
};

TEST_F(RgbProgramTextureTest, HasLinearFiltersAndClampedEdges)
{
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.BindEglTextures(k_texture, 16, 8), 0);
    const GLuint nTexture = program.Texture();
    ASSERT_NE(nTexture, 0u);
    EXPECT_TRUE(exists(nTexture));
    EXPECT_EQ(parameter(nTexture, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(nTexture, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(nTexture, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(nTexture, GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
}

TEST_F(RgbProgramTextureTest, IsLetGo)
{
    RgbProgram program(&m_nOwner);
    program.BindEglTextures(k_texture, 16, 8);
    GLint nBound = -1;
    m_gl.gl().glGetIntegerv(GL_TEXTURE_BINDING_2D, &nBound);
    EXPECT_EQ(nBound, 0);
}

// OpenGL ES stores blue, green and red in this order; desktop OpenGL has no such internal format, which is
// reported, where the driver minds, and otherwise left to the surface.
TEST_F(RgbProgramTextureTest, LogsWhatTheContextSays)
{
    const size_t nErrors = errorsOfTheFormat();
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.BindEglTextures(k_texture, 16, 8), 0);
    EXPECT_EQ(m_gl.gl().glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "the error was taken";
    EXPECT_EQ(CoreLog::instance().messages(), contextLines());
    EXPECT_EQ(CoreLog::instance().errors().size(), nErrors);
    EXPECT_EQ(m_messages.take(), Messages());
}

TEST_F(RgbProgramTextureTest, TakesAnEmptyFrame)
{
    const size_t nErrors = errorsOfTheFormat();
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.BindEglTextures(k_texture, 0, 0), 0);
    EXPECT_TRUE(exists(program.Texture()));
    EXPECT_EQ(CoreLog::instance().errors().size(), nErrors);
    EXPECT_EQ(CoreLog::instance().messages(), contextLines());
}

TEST_F(RgbProgramTextureTest, ReportsAGlError)
{
    if (isDesktop()) {
        m_gl.gl().glEnable(0xFFFF); // as the storage does: invalid enumerant or value
    } else {
        m_gl.gl().glBindTexture(0xFFFF, 0);
    }
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.BindEglTextures(k_texture, 16, 8), 0);
    const std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
    EXPECT_EQ(CoreLog::instance().errors().size(), 1u);
    EXPECT_TRUE(
        isErrorRecord(vecRecords, 0, "CLS_D3D11EGL", "CLS_D3D11EGL::BindEglTextures",
                      "glGetError() != GL_NO_ERROR glBindTexture err = " + std::to_string(GL_INVALID_ENUM)));
    EXPECT_EQ(vecRecords[2].sText, positionLine(k_texture));
    EXPECT_EQ(CoreLog::instance().messages(), contextLines()) << "and goes on";
}

// Sizes over which drivers end the process do not get there, and the report is the one of a refused size.
TEST_F(RgbProgramTextureTest, ASizeThatNoTextureHasStaysWithoutStorage)
{
    GLint nMax = 0;
    m_gl.gl().glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nMax);
    m_recorder.m_blSurroundings = true;
    for (const auto &[nWidth, nHeight] :
         {std::pair{134217728, 16}, std::pair{16, 134217728}, std::pair{nMax + 1, 1}, std::pair{1, nMax + 1},
          std::pair{INT32_MAX, INT32_MAX}, std::pair{-1, 16}, std::pair{16, INT32_MIN}}) {
        SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
        CoreLog::instance().clear();
        m_recorder.take();
        RgbProgram program(&m_nOwner);
        EXPECT_EQ(program.BindEglTextures(k_texture, nWidth, nHeight), 0);
        for (const std::string &sCall : m_recorder.take()) {
            EXPECT_NE(sCall.rfind("image ", 0), 0u) << sCall;
        }
        EXPECT_TRUE(exists(program.Texture()));
        EXPECT_EQ(m_gl.gl().glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        const std::vector<CoreLogRecord> vecRecords = CoreLog::instance().records();
        EXPECT_TRUE(isErrorRecord(vecRecords, 0, "CLS_D3D11EGL", "CLS_D3D11EGL::BindEglTextures",
                                  "glGetError() != GL_NO_ERROR glBindTexture err = 1281"));
        EXPECT_EQ(CoreLog::instance().errors().size(), 1u);
        EXPECT_EQ(CoreLog::instance().messages(), contextLines()) << "and goes on";
    }
}

TEST_F(RgbProgramTextureTest, TheLargestTextureHasStorage)
{
    const size_t nErrors = errorsOfTheFormat();
    GLint nMax = 0;
    m_gl.gl().glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nMax);
    m_recorder.m_blSurroundings = true;
    m_recorder.take();
    RgbProgram program(&m_nOwner);
    EXPECT_EQ(program.BindEglTextures(k_texture, nMax, 1), 0);
    const auto vecCalls = m_recorder.take();
    EXPECT_EQ(std::count_if(vecCalls.begin(), vecCalls.end(),
                            [](const std::string &sCall) { return sCall.rfind("image ", 0) == 0; }),
              1);
    EXPECT_EQ(CoreLog::instance().errors().size(), nErrors);
}

TEST_F(RgbProgramTextureTest, AnotherOneReplacesItUnderAnotherName)
{
    RgbProgram program(&m_nOwner);
    program.BindEglTextures(k_texture, 16, 8);
    const GLuint nFirst = program.Texture();
    program.BindEglTextures(k_texture, 32, 8);
    EXPECT_NE(program.Texture(), nFirst) << "the old name may still stand for a surface";
    EXPECT_TRUE(exists(program.Texture()));
    EXPECT_FALSE(exists(nFirst));
}

TEST_F(RgbProgramTextureTest, OutlivesTheProgram)
{
    RgbProgram program(&m_nOwner);
    ASSERT_EQ(program.CreateGlslResource(k_program), 0);
    program.BindEglTextures(k_texture, 16, 8);
    const GLuint nTexture = program.Texture();
    program.DestroyProgram();
    EXPECT_EQ(program.Texture(), nTexture);
    EXPECT_TRUE(exists(nTexture));
}

TEST_F(RgbProgramTextureTest, IsDeletedOnRequestAndAtTheEnd)
{
    GLuint nTexture = 0;
    {
        RgbProgram program(&m_nOwner);
        program.BindEglTextures(k_texture, 16, 8);
        nTexture = program.Texture();
        program.DestroyTextures();
        EXPECT_EQ(program.Texture(), 0u);
        EXPECT_FALSE(exists(nTexture));
        program.DestroyTextures();
        program.BindEglTextures(k_texture, 16, 8);
        nTexture = program.Texture();
        EXPECT_TRUE(exists(nTexture));
    }
    EXPECT_FALSE(exists(nTexture));
}

// Names count up from 1 in each context, so the name of one stands for something else in the other.
TEST_F(RgbProgramTextureTest, NeverDeletesATextureOfAnotherContext)
{
    RgbProgram program(&m_nOwner);
    GLuint nForeign = 0;
    {
        OffscreenGl other;
        program.BindEglTextures(k_texture, 16, 8);
        nForeign = program.Texture();
        m_gl.makeCurrent();
        std::vector<GLuint> vecOwn(8);
        m_gl.gl().glGenTextures(8, vecOwn.data());
        for (const GLuint nOwn : vecOwn) {
            m_gl.gl().glBindTexture(GL_TEXTURE_2D, nOwn);
        }
        ASSERT_TRUE(exists(nForeign)) << "the same name, another texture";
        program.BindEglTextures(k_texture, 16, 8);
        EXPECT_TRUE(exists(nForeign));
        program.DestroyTextures();
        EXPECT_TRUE(exists(nForeign));
        other.makeCurrent();
        program.BindEglTextures(k_texture, 16, 8);
    }
    m_gl.makeCurrent();
    program.DestroyTextures();
    EXPECT_TRUE(exists(nForeign)) << "its context is gone";
    EXPECT_EQ(program.Texture(), 0u);
}

} // namespace
} // namespace xelttest
