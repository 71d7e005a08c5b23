#include "GlBench.h"

#include "TestEnvironment.h"

#include <QFile>

#include <array>
#include <cmath>
#include <memory>
#include <vector>

#ifndef GL_RGBA32F
#define GL_RGBA32F 0x8814
#endif

namespace xelttest {

namespace {

constexpr char k_szValueVertex[] = "attribute vec2 aCorner;\n"
                                   "attribute vec4 aValue;\n"
                                   "varying vec4 value;\n"
                                   "void main()\n"
                                   "{\n"
                                   "    value = aValue;\n"
                                   "    gl_Position = vec4(aCorner, 0.0, 1.0);\n"
                                   "}\n";

// Half the distance of neighbouring half floats, of their value at most.
constexpr double k_dHalfRounding = 1.0 / 2048.0;

// OpenGL ES promises no more than medium precision for its output colour, however precise the sums are, and
// drivers make use of that now and then. A value that is no half float was not rounded to one.
bool isHalfFloat(double dValue)
{
    int nExponent = 0;
    const double dMantissa = std::frexp(dValue, &nExponent);
    const double dSteps = nExponent > -14 ? std::ldexp(dMantissa, 11) : std::ldexp(dValue, 24);
    return dSteps == std::floor(dSteps);
}

// Where the pixel begins, which is where the one before it ends.
float edge(int nPixel, int nPixels)
{
    return 2.0F * static_cast<float>(nPixel) / static_cast<float>(nPixels) - 1.0F;
}

// One pixel's square as two triangles, with the same value at every corner, so that nothing lies between them to
// round. No point: ANGLE draws these with a geometry shader, which not every Direct3D compiles.
void addPixel(std::vector<float> &aCorners, std::vector<float> &aValues, const std::array<float, 4> &aSquare,
              const Rgba &value)
{
    constexpr std::array<std::array<size_t, 2>, 6> k_aCorners = {
        {{0, 1}, {2, 1}, {0, 3}, {0, 3}, {2, 1}, {2, 3}}};
    for (const auto &aCorner : k_aCorners) {
        aCorners.push_back(aSquare[aCorner[0]]);
        aCorners.push_back(aSquare[aCorner[1]]);
        for (const double dValue : value) {
            aValues.push_back(static_cast<float>(dValue));
        }
    }
}

} // namespace

QByteArray shaderText(const char *pszPath)
{
    QFile file(pszPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << pszPath;
    return file.readAll();
}

QByteArray fragmentPrefix(const QList<QByteArray> &listDefines)
{
    QByteArray abPrefix;
    if (listDefines.contains("TEXTURE_RECTANGLE")) {
        abPrefix += "#extension GL_ARB_texture_rectangle : require\n";
    }
    for (const QByteArray &abDefine : listDefines) {
        abPrefix += "#define " + abDefine + '\n';
    }
    abPrefix += "#ifdef GL_ES\nprecision highp int;\nprecision highp float;\n"
                "precision highp sampler2D;\n#endif\n";
    return abPrefix + shaderText(":/shaderscommon/colorspace.glsl") + shaderText(":/shaderscommon/hsl.glsl");
}

QMatrix3x3 toQt(const Matrix &matrix)
{
    std::array<float, 9> aValues{};
    for (size_t i = 0; i < 9; ++i) {
        aValues[i] = static_cast<float>(matrix[i / 3][i % 3]);
    }
    return QMatrix3x3(aValues.data());
}

// A texture of 32-bit floats that is drawn into while this lives.
class GlBench::FloatTarget
{
public:
    FloatTarget(QOpenGLFunctions &gl, int nWidth, int nHeight)
        : m_gl(gl), m_nWidth(nWidth), m_nHeight(nHeight)
    {
        // A unit of its own: the tests' textures are bound already.
        m_gl.glActiveTexture(GL_TEXTURE7);
        m_gl.glGenTextures(1, &m_nTexture);
        m_gl.glBindTexture(GL_TEXTURE_2D, m_nTexture);
        m_gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, nWidth, nHeight, 0, GL_RGBA, GL_FLOAT, nullptr);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        m_gl.glBindTexture(GL_TEXTURE_2D, 0);
        m_gl.glGenFramebuffers(1, &m_nFramebuffer);
        m_gl.glBindFramebuffer(GL_FRAMEBUFFER, m_nFramebuffer);
        m_gl.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_nTexture, 0);
        EXPECT_EQ(m_gl.glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE))
            << "float targets are needed";
        m_gl.glViewport(0, 0, nWidth, nHeight);
        m_gl.glClearColor(0.25F, 0.25F, 0.25F, 0.25F);
        m_gl.glClear(GL_COLOR_BUFFER_BIT);
    }
    ~FloatTarget()
    {
        m_gl.glBindFramebuffer(GL_FRAMEBUFFER, 0);
        m_gl.glDeleteFramebuffers(1, &m_nFramebuffer);
        m_gl.glDeleteTextures(1, &m_nTexture);
    }
    FloatTarget(const FloatTarget &) = delete;
    FloatTarget &operator=(const FloatTarget &) = delete;

    // The first nCount pixels.
    std::vector<Rgba> read(size_t nCount)
    {
        std::vector<std::array<float, 4>> vecPixels(static_cast<size_t>(m_nWidth) *
                                                    static_cast<size_t>(m_nHeight));
        m_gl.glReadPixels(0, 0, m_nWidth, m_nHeight, GL_RGBA, GL_FLOAT, vecPixels.data());
        std::vector<Rgba> vecValues;
        for (size_t i = 0; i < nCount; ++i) {
            const auto &aPixel = vecPixels[i];
            vecValues.push_back({aPixel[0], aPixel[1], aPixel[2], aPixel[3]});
        }
        return vecValues;
    }

private:
    QOpenGLFunctions &m_gl;
    int m_nWidth;
    int m_nHeight;
    GLuint m_nTexture = 0;
    GLuint m_nFramebuffer = 0;
};

void GlBench::SetUp()
{
    ASSERT_TRUE(m_context.create());
    m_surface.setFormat(m_context.format());
    m_surface.create();
    ASSERT_TRUE(m_context.makeCurrent(&m_surface));
    initializeOpenGLFunctions();
}

void GlBench::TearDown()
{
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    m_context.doneCurrent();
}

std::unique_ptr<QOpenGLShaderProgram> GlBench::link(const QByteArray &abVertex, const QByteArray &abFragment)
{
    auto program = std::make_unique<QOpenGLShaderProgram>();
    EXPECT_TRUE(program->addShaderFromSourceCode(QOpenGLShader::Vertex, abVertex));
    EXPECT_EQ(program->log().toStdString(), "");
    EXPECT_TRUE(program->addShaderFromSourceCode(QOpenGLShader::Fragment, abFragment));
    EXPECT_EQ(program->log().toStdString(), "");
    EXPECT_TRUE(program->link());
    EXPECT_EQ(program->log().trimmed().toStdString(), "");
    return program;
}

std::vector<Rgba> GlBench::evaluate(const QByteArray &abDeclarations, const QByteArray &abStatements,
                                    const std::vector<Rgba> &vecInputs, const SetUniforms &setUniforms)
{
    const auto program = link(k_szValueVertex, fragmentPrefix() + "varying vec4 value;\n" + abDeclarations +
                                                   "\nvoid main()\n{\n    vec4 result;\n    " + abStatements +
                                                   "\n    gl_FragColor = result;\n}\n");
    if (!program->bind()) {
        return {};
    }
    if (setUniforms) {
        setUniforms(*program);
    }
    constexpr int k_nWidth = 256;
    const int nCount = static_cast<int>(vecInputs.size());
    const int nHeight = (nCount + k_nWidth - 1) / k_nWidth;
    std::vector<float> aCorners;
    std::vector<float> aValues;
    for (int i = 0; i < nCount; ++i) {
        const int x = i % k_nWidth;
        const int y = i / k_nWidth;
        addPixel(aCorners, aValues,
                 {edge(x, k_nWidth), edge(y, nHeight), edge(x + 1, k_nWidth), edge(y + 1, nHeight)},
                 vecInputs[static_cast<size_t>(i)]);
    }
    FloatTarget target(*this, k_nWidth, nHeight);
    program->enableAttributeArray("aCorner");
    program->enableAttributeArray("aValue");
    program->setAttributeArray("aCorner", aCorners.data(), 2);
    program->setAttributeArray("aValue", aValues.data(), 4);
    glDrawArrays(GL_TRIANGLES, 0, 6 * nCount);
    program->disableAttributeArray("aCorner");
    program->disableAttributeArray("aValue");
    return target.read(vecInputs.size());
}

std::vector<Rgba> GlBench::drawQuad(QOpenGLShaderProgram &program, int nWidth, int nHeight,
                                    const std::array<float, 4> &aClip)
{
    const std::array<float, 8> aPositions = {aClip[0], aClip[1], aClip[2], aClip[1],
                                             aClip[0], aClip[3], aClip[2], aClip[3]};
    const std::array<float, 8> aTexCoords = {0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 1.0F, 1.0F, 1.0F};
    FloatTarget target(*this, nWidth, nHeight);
    program.enableAttributeArray("aPosition");
    program.enableAttributeArray("aTexCoord");
    program.setAttributeArray("aPosition", aPositions.data(), 2);
    program.setAttributeArray("aTexCoord", aTexCoords.data(), 2);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    program.disableAttributeArray("aPosition");
    program.disableAttributeArray("aTexCoord");
    return target.read(static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight));
}

::testing::AssertionResult allNear(const std::vector<Rgba> &vecActual, const std::vector<Rgba> &vecExpected,
                                   double dTolerance)
{
    if (vecActual.size() != vecExpected.size() || vecActual.empty()) {
        return ::testing::AssertionFailure()
               << vecActual.size() << " values, expected " << vecExpected.size();
    }
    const bool blRounding = glFlavour() == GlFlavour::Es && dTolerance > 0.0;
    for (size_t i = 0; i < vecActual.size(); ++i) {
        for (size_t c = 0; c < 4; ++c) {
            const double dExpected = vecExpected[i][c];
            const double dDifference = std::abs(vecActual[i][c] - dExpected);
            const bool blRounded = blRounding && isHalfFloat(vecActual[i][c]);
            if (!(dDifference <= dTolerance + (blRounded ? k_dHalfRounding * std::abs(dExpected) : 0.0))) {
                return ::testing::AssertionFailure() << "value " << i << ", channel " << c << ": "
                                                     << vecActual[i][c] << ", expected " << dExpected;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace xelttest
