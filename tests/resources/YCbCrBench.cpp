#include "YCbCrBench.h"

#include <QMatrix4x4>
#include <QVector2D>
#include <QVector3D>
#include <QVector4D>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace xelttest {

namespace {

QList<QByteArray> defines(const YCbCrSettings &settings)
{
    QList<QByteArray> listDefines;
    if (settings.blNv12) {
        listDefines << "NV12";
    }
    if (settings.blGl3) {
        listDefines << "GL3";
    }
    if (settings.blRectangle) {
        listDefines << "TEXTURE_RECTANGLE";
    }
    return listDefines;
}

float toFloat(double dValue)
{
    return static_cast<float>(dValue);
}

} // namespace

Plane YCbCrBench::chroma() const
{
    Plane plane{m_cb.nWidth, m_cb.nHeight, 2, {}};
    for (size_t i = 0; i < m_cb.aBytes.size(); ++i) {
        plane.aBytes.push_back(m_cb.aBytes[i]);
        plane.aBytes.push_back(m_cr.aBytes[i]);
    }
    return plane;
}

void YCbCrBench::setUniforms(QOpenGLShaderProgram &program, const YCbCrSettings &settings) const
{
    program.setUniformValue("uMatrix", QMatrix4x4());
    program.setUniformValue("uYUVtRGB", toQt(settings.yuvToRgb));
    program.setUniformValue("uRangeMultiplier",
                            QVector2D(toFloat(settings.dLumaRange), toFloat(settings.dChromaRange)));
    program.setUniformValue("uBL", toFloat(settings.dBlackLevel));
    program.setUniformValue("uVideoEq", QVector4D(toFloat(settings.dBrightness), toFloat(settings.dContrast),
                                                  toFloat(settings.dSaturation), toFloat(settings.dHue)));
    program.setUniformValue("uSharpness", toFloat(settings.dSharpness));
    program.setUniformValue("uTextureSize", QVector2D(toFloat(m_luma.nWidth), toFloat(m_luma.nHeight)));
    program.setUniformValue("uBitsMultiplier", toFloat(settings.dBits));
    program.setUniformValue("uTrc", settings.nTransfer);
    program.setUniformValue("uColorPrimariesMatrix", toQt(k_bt2020ToBt709));
    program.setUniformValue("uMaxLuminance", toFloat(settings.dMaxLuminance));
    program.setUniformValue("uNegative", settings.nNegative);
    program.setUniformValue("u_iDrawFlag", settings.nDrawFlag);
    program.setUniformValue("u_fDrawAlpha", toFloat(k_drawColour[3]));
    program.setUniformValue("u_vDrawColor", QVector3D(toFloat(k_drawColour[0]), toFloat(k_drawColour[1]),
                                                      toFloat(k_drawColour[2])));
    program.setUniformValue("uY", 0);
    program.setUniformValue("uCbCr", 1);
    program.setUniformValue("uCb", 1);
    program.setUniformValue("uCr", 2);
}

std::vector<Rgba> YCbCrBench::draw(const YCbCrSettings &settings)
{
    const auto program =
        link(shaderText(":/opengl/shaders/Video.vert"),
             fragmentPrefix(defines(settings)) + shaderText(":/opengl/shaders/VideoYCbCr.frag"));
    EXPECT_TRUE(program->bind());
    setUniforms(*program, settings);
    const TextureKind kind = settings.blRectangle ? TextureKind::Rectangle : TextureKind::Ordinary;
    PlaneTexture luma(*this, m_luma, kind);
    PlaneTexture second(*this, settings.blNv12 ? chroma() : m_cb, kind);
    PlaneTexture third(*this, m_cr, kind);
    luma.bind(0);
    second.bind(1);
    third.bind(2);
    return drawQuad(*program, k_nScale * m_luma.nWidth, k_nScale * m_luma.nHeight);
}

double YCbCrBench::lumaAt(const YCbCrSettings &settings, int x, int y) const
{
    return m_luma.at(x, y) - settings.dBlackLevel;
}

Rgba YCbCrBench::expectedPixel(const YCbCrSettings &settings, int x, int y) const
{
    if (settings.nDrawFlag == 1) {
        return k_drawColour;
    }
    double dLuma = m_luma.at(x, y) * settings.dBits - settings.dBlackLevel;
    double dCb = m_cb.at(x / 2, y / 2) * settings.dBits - 128.0 / 255.0;
    double dCr = m_cr.at(x / 2, y / 2) * settings.dBits - 128.0 / 255.0;
    if (settings.blGl3 && settings.dSharpness != 0.0) {
        // The neighbours are taken without the multiplier, on purpose as in the shader.
        double dBlur = 4.0 * dLuma;
        for (const auto &[dx, dy, nWeight] : {std::array<int, 3>{-1, -1, 1},
                                              {0, -1, 2},
                                              {1, -1, 1},
                                              {-1, 0, 2},
                                              {1, 0, 2},
                                              {-1, 1, 1},
                                              {0, 1, 2},
                                              {1, 1, 1}}) {
            dBlur += nWeight * lumaAt(settings, x + dx, y + dy);
        }
        dLuma = std::clamp(dLuma + (dLuma - dBlur / 16.0) * settings.dSharpness, 0.0, 1.0);
    }
    if (settings.blGl3) {
        // Chroma turned by the hue's angle.
        const double dTurned = dCb * std::cos(settings.dHue) - dCr * std::sin(settings.dHue);
        dCr = dCb * std::sin(settings.dHue) + dCr * std::cos(settings.dHue);
        dCb = dTurned;
    }
    const double dChromaScale = settings.dChromaRange * settings.dContrast * settings.dSaturation;
    Rgb rgb =
        clamped(multiply(settings.yuvToRgb, {(dLuma * settings.dLumaRange - 0.5) * settings.dContrast + 0.5,
                                             dCb * dChromaScale, dCr * dChromaScale}));
    if (settings.blGl3) {
        rgb = transferred(settings.nTransfer, rgb, k_bt2020ToBt709, settings.dMaxLuminance);
    }
    for (double &dChannel : rgb) {
        dChannel =
            (settings.blGl3 && settings.nNegative != 0 ? 1.0 - dChannel : dChannel) + settings.dBrightness;
    }
    return {rgb[0], rgb[1], rgb[2], 1.0};
}

std::vector<Rgba> YCbCrBench::expected(const YCbCrSettings &settings) const
{
    std::vector<Rgba> vecValues;
    for (int y = 0; y < k_nScale * m_luma.nHeight; ++y) {
        for (int x = 0; x < k_nScale * m_luma.nWidth; ++x) {
            vecValues.push_back(expectedPixel(settings, x / k_nScale, y / k_nScale));
        }
    }
    return vecValues;
}

void YCbCrBench::expectPicture(const YCbCrSettings &settings, double dTolerance)
{
    EXPECT_TRUE(allNear(draw(settings), expected(settings), dTolerance));
}

} // namespace xelttest
