// Pixels through the RGB program and the textured quad.
#include "RgbProgramTest.h"
#include "d3d11/GeometryRenderer.h"
#include "d3d11/TexturedGeometry.h"

#include <array>
#include <cmath>

namespace xelttest {
namespace {

using Color = std::array<int, 4>;

// Two by two texels, top row first.
constexpr std::array<Color, 4> k_aTexels{
    {{{200, 40, 10, 255}}, {{20, 180, 90, 255}}, {{60, 70, 220, 128}}, {{250, 240, 5, 0}}}};

class RgbProgramPictureTest : public RgbProgramTest
{
protected:
    void SetUp() override
    {
        RgbProgramTest::SetUp();
        ASSERT_EQ(m_program.CreateGlslResource(k_program), 0);
        makeTexture();
        auto pGeometry = std::make_unique<TexturedGeometry>();
        pGeometry->setTextureRect(QRectF(0, 0, 1, 1), 0);
        pGeometry->create();
        m_renderer.updateGeometry(std::move(pGeometry));
        m_program.LoadColorUniforms(m_colors);
        m_program.SetMatrix(QMatrix4x4());
        m_program.SetDrawFlag(0);
    }

    void TearDown() override
    {
        m_gl.gl().glDeleteTextures(1, &m_nTexture);
        RgbProgramTest::TearDown();
    }

    void makeTexture()
    {
        std::array<uint8_t, 16> aBytes{};
        for (size_t i = 0; i < 16; ++i) {
            aBytes[i] = static_cast<uint8_t>(k_aTexels[i / 4][i % 4]);
        }
        QOpenGLFunctions &gl = m_gl.gl();
        gl.glGenTextures(1, &m_nTexture);
        gl.glActiveTexture(GL_TEXTURE0);
        gl.glBindTexture(GL_TEXTURE_2D, m_nTexture);
        gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, aBytes.data());
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }

    // The picture's four quarters, top row first.
    std::array<Color, 4> draw()
    {
        m_gl.clear();
        m_renderer.render();
        EXPECT_EQ(m_gl.gl().glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        const QImage picture = m_gl.picture();
        std::array<Color, 4> aColors{};
        for (size_t i = 0; i < 4; ++i) {
            const uchar *pPixel =
                picture.constScanLine(i < 2 ? 1 : 6) + (i % 2 == 0 ? 1 : 6) * 4; // inside each quarter
            aColors[i] = {pPixel[0], pPixel[1], pPixel[2], pPixel[3]};
        }
        return aColors;
    }

    using Conversion = std::array<double, 4> (*)(const std::array<double, 4> &);

    // Whether each quarter shows its texel after the conversion (of values 0..1), clamped.
    ::testing::AssertionResult shows(Conversion convert)
    {
        const std::array<Color, 4> aColors = draw();
        for (size_t i = 0; i < 4; ++i) {
            std::array<double, 4> aExpected{};
            for (size_t j = 0; j < 4; ++j) {
                aExpected[j] = k_aTexels[i][j] / 255.0;
            }
            aExpected = convert(aExpected);
            for (size_t j = 0; j < 4; ++j) {
                const double dExpected = std::min(std::max(aExpected[j], 0.0), 1.0) * 255;
                if (std::abs(aColors[i][j] - dExpected) > 1.0) {
                    return ::testing::AssertionFailure() << "quarter " << i << ", channel " << j << " is "
                                                         << aColors[i][j] << " and not " << dExpected;
                }
            }
        }
        return ::testing::AssertionSuccess();
    }

    RgbProgram m_program{&m_nOwner};
    GeometryRenderer m_renderer;
    ColorMatrix m_colors;
    GLuint m_nTexture = 0;
};

TEST_F(RgbProgramPictureTest, NeutralShowsTheTextureAsItIs)
{
    EXPECT_EQ(draw(), k_aTexels);
}

TEST_F(RgbProgramPictureTest, TheColorUniformsAreLoadedOnce)
{
    QOpenGLShaderProgram &program = *m_program.Program();
    GLint nUnit = -1;
    m_gl.context().extraFunctions()->glGetUniformiv(program.programId(), m_program.SamplerLocations().first(),
                                                    &nUnit);
    EXPECT_EQ(nUnit, 0);
    GLfloat fOpacity = 0;
    m_gl.gl().glGetUniformfv(program.programId(), m_program.Locations().nOpacity, &fOpacity);
    EXPECT_EQ(fOpacity, 1.0f);
    for (const int nLocation : {m_program.Locations().nChannels, m_program.Locations().nColorMatrix}) {
        std::array<GLfloat, 16> afMatrix{};
        m_gl.gl().glGetUniformfv(program.programId(), nLocation, afMatrix.data());
        EXPECT_EQ(QMatrix4x4(afMatrix.data()).transposed(), QMatrix4x4());
    }
    EXPECT_TRUE(m_colors.isValid());
}

TEST_F(RgbProgramPictureTest, TheColorMatrixIsApplied)
{
    m_colors.setBrightness(0.1);
    m_colors.setContrast(0.5);
    m_colors.setSaturation(-1.0);
    m_program.LoadColorUniforms(m_colors);
    EXPECT_TRUE(shows([](const std::array<double, 4> &c) {
        const double dGrey = 0.3086 * c[0] + 0.6094 * c[1] + 0.082 * c[2];
        // The offsets are scaled by alpha, the fourth component.
        const double dResult = 1.5 * dGrey + (-0.25 + 0.1) * c[3];
        return std::array<double, 4>{dResult, dResult, dResult, c[3]};
    }));
}

TEST_F(RgbProgramPictureTest, HueTurnsTheChannels)
{
    m_colors.setHue(2.0 / 3);
    m_program.LoadColorUniforms(m_colors);
    EXPECT_TRUE(shows([](const std::array<double, 4> &c) {
        return std::array<double, 4>{c[2], c[0], c[1], c[3]};
    }));
}

TEST_F(RgbProgramPictureTest, TheChannelMatrixComesBeforeTheColorMatrix)
{
    m_colors.setBrightness(0.2);
    m_program.LoadColorUniforms(m_colors);
    // Blue first and an opaque alpha out of nothing; the brightness is added to that.
    m_program.Program()->setUniformValue(m_program.Locations().nChannels,
                                         QMatrix4x4(0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0.5f));
    EXPECT_TRUE(shows([](const std::array<double, 4> &c) {
        const double dAlpha = c[3] * 0.5;
        return std::array<double, 4>{c[2] + 0.2 * dAlpha, c[1] + 0.2 * dAlpha, c[0] + 0.2 * dAlpha, dAlpha};
    }));
}

TEST_F(RgbProgramPictureTest, OpacityComesAfterTheClamp)
{
    m_colors.setContrast(1.0);
    m_program.LoadColorUniforms(m_colors);
    m_program.Program()->setUniformValue(m_program.Locations().nOpacity, 0.5f);
    EXPECT_TRUE(shows([](const std::array<double, 4> &c) {
        std::array<double, 4> aResult{};
        for (size_t i = 0; i < 4; ++i) {
            const double dValue = i < 3 ? 2 * c[i] - 0.5 * c[3] : c[i];
            aResult[i] = std::min(std::max(dValue, 0.0), 1.0) * 0.5;
        }
        return aResult;
    }));
}

TEST_F(RgbProgramPictureTest, TheDrawFlagPaintsOneColor)
{
    m_program.SetDrawFlag(1);
    m_program.Program()->setUniformValue(m_program.Locations().nDrawColor, QVector3D(0.2f, 0.4f, 0.6f));
    m_program.Program()->setUniformValue(m_program.Locations().nDrawAlpha, 0.8f);
    EXPECT_TRUE(shows([](const std::array<double, 4> &) {
        return std::array<double, 4>{0.2, 0.4, 0.6, 0.8};
    }));
    m_program.SetDrawFlag(2);
    EXPECT_EQ(draw(), k_aTexels) << "1 alone is the flag";
    m_program.SetDrawFlag(0);
    EXPECT_EQ(draw(), k_aTexels);
}

TEST_F(RgbProgramPictureTest, TheMatrixMovesThePositions)
{
    QMatrix4x4 matrix;
    matrix.rotate(180, 0, 0, 1);
    m_program.SetMatrix(matrix);
    EXPECT_EQ(draw(), (std::array<Color, 4>{k_aTexels[3], k_aTexels[2], k_aTexels[1], k_aTexels[0]}));
    matrix.setToIdentity();
    matrix.rotate(90, 0, 0, 1);
    m_program.SetMatrix(matrix);
    EXPECT_EQ(draw(), (std::array<Color, 4>{k_aTexels[1], k_aTexels[3], k_aTexels[0], k_aTexels[2]}))
        << "a quarter turn to the left";
}

TEST_F(RgbProgramPictureTest, TextureRectanglesCutThePicture)
{
    auto pGeometry = std::make_unique<TexturedGeometry>();
    pGeometry->setTextureRect(QRectF(0.5, 0, 0.5, 0.5), 0);
    pGeometry->create();
    m_renderer.updateGeometry(std::move(pGeometry));
    EXPECT_EQ(draw(), (std::array<Color, 4>{k_aTexels[1], k_aTexels[1], k_aTexels[1], k_aTexels[1]}));
}

} // namespace
} // namespace xelttest
