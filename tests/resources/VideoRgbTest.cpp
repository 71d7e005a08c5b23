// VideoRGB.frag: adjustments, sharpness, transfer step and negative, on a picture of noise.
#include "GlBench.h"

#include <QMatrix4x4>
#include <QVector2D>
#include <QVector3D>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace xelttest;

struct Settings
{
    double dBrightness = 0.0;
    double dContrast = 1.0;
    double dSharpness = 0.0;
    int nTransfer = 0;
    double dMaxLuminance = 1000.0;
    int nNegative = 0;
    bool blGl3 = true;
};

double blurred(const Plane &plane, int x, int y, size_t nChannel)
{
    double dSum = 0.0;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            dSum += (2 - std::abs(dx)) * (2 - std::abs(dy)) *
                    plane.at(x + dx, y + dy, static_cast<int>(nChannel));
        }
    }
    return dSum / 16.0;
}

Rgba expectedPixel(const Plane &plane, const Settings &settings, int x, int y)
{
    Rgba value{};
    for (size_t c = 0; c < 4; ++c) {
        value[c] = plane.at(x, y, static_cast<int>(c));
        if (settings.blGl3) {
            value[c] += (value[c] - blurred(plane, x, y, c)) * settings.dSharpness;
            value[c] = std::clamp(value[c], 0.0, 1.0);
        }
    }
    // HLG is left out on purpose: this shader leaves it untouched.
    if (settings.blGl3 && settings.nTransfer != k_nTrcHlg) {
        const Rgb rgb = transferred(settings.nTransfer, {value[0], value[1], value[2]}, k_bt2020ToBt709,
                                    settings.dMaxLuminance);
        std::copy(rgb.begin(), rgb.end(), value.begin());
    }
    for (double &dChannel : value) {
        if (settings.blGl3 && settings.nNegative != 0) {
            dChannel = 1.0 - dChannel;
        }
        dChannel = std::clamp((dChannel - 0.5) * settings.dContrast + 0.5, 0.0, 1.0) + settings.dBrightness;
    }
    return value;
}

class VideoRgbTest : public GlBench
{
protected:
    std::vector<Rgba> draw(const Settings &settings)
    {
        PlaneTexture picture(*this, m_plane);
        const auto program =
            link(shaderText(":/opengl/shaders/Video.vert"),
                 fragmentPrefix(settings.blGl3 ? QList<QByteArray>{"GL3"} : QList<QByteArray>{}) +
                     shaderText(":/opengl/shaders/VideoRGB.frag"));
        EXPECT_TRUE(program->bind());
        picture.bind(1);
        program->setUniformValue("uMatrix", QMatrix4x4());
        program->setUniformValue("uRGB", 1);
        program->setUniformValue("uVideoAdj", QVector3D(static_cast<float>(settings.dBrightness),
                                                        static_cast<float>(settings.dContrast),
                                                        static_cast<float>(settings.dSharpness)));
        program->setUniformValue("uTextureSize", QVector2D(static_cast<float>(m_plane.nWidth),
                                                           static_cast<float>(m_plane.nHeight)));
        program->setUniformValue("uTrc", settings.nTransfer);
        program->setUniformValue("uColorPrimariesMatrix", toQt(k_bt2020ToBt709));
        program->setUniformValue("uMaxLuminance", static_cast<float>(settings.dMaxLuminance));
        program->setUniformValue("uNegative", settings.nNegative);
        return drawQuad(*program, k_nScale * m_plane.nWidth, k_nScale * m_plane.nHeight);
    }

    std::vector<Rgba> expected(const Settings &settings) const
    {
        std::vector<Rgba> vecValues;
        for (int y = 0; y < k_nScale * m_plane.nHeight; ++y) {
            for (int x = 0; x < k_nScale * m_plane.nWidth; ++x) {
                vecValues.push_back(expectedPixel(m_plane, settings, x / k_nScale, y / k_nScale));
            }
        }
        return vecValues;
    }

    void expectPicture(const Settings &settings, double dTolerance = 1e-5)
    {
        EXPECT_TRUE(allNear(draw(settings), expected(settings), dTolerance));
    }

    const Plane m_plane = noise(16, 6, 4, 21);
};

TEST_F(VideoRgbTest, NeutralSettingsShowThePicture)
{
    for (const bool blGl3 : {false, true}) {
        SCOPED_TRACE(blGl3);
        Settings settings;
        settings.blGl3 = blGl3;
        expectPicture(settings);
    }
}

TEST_F(VideoRgbTest, BrightnessComesAfterTheClamp)
{
    for (const bool blGl3 : {false, true}) {
        for (const double dBrightness : {-0.4, 0.3}) {
            for (const double dContrast : {0.0, 0.5, 3.0}) {
                SCOPED_TRACE(testing::Message() << blGl3 << ' ' << dBrightness << ' ' << dContrast);
                Settings settings;
                settings.blGl3 = blGl3;
                settings.dBrightness = dBrightness;
                settings.dContrast = dContrast;
                expectPicture(settings);
            }
        }
    }
}

TEST_F(VideoRgbTest, SharpnessTakesTheKernelOfThreeByThree)
{
    for (const double dSharpness : {-1.0, 0.5, 2.0}) {
        SCOPED_TRACE(dSharpness);
        Settings settings;
        settings.dSharpness = dSharpness;
        expectPicture(settings);
    }
}

TEST_F(VideoRgbTest, TransferStepFollowsTheCode)
{
    for (const int nTransfer : {0, k_nTrcBt709 + 0, 2, k_nTrcPq + 0, 17}) {
        SCOPED_TRACE(nTransfer);
        Settings settings;
        settings.nTransfer = nTransfer;
        expectPicture(settings, k_dHalfLevel);
    }
}

TEST_F(VideoRgbTest, HlgIsLeftUntouched)
{
    Settings settings;
    settings.nTransfer = k_nTrcHlg;
    Settings none;
    EXPECT_TRUE(allNear(draw(settings), draw(none), 0.0));
    expectPicture(settings);
}

TEST_F(VideoRgbTest, LuminanceScalesPq)
{
    Settings settings;
    settings.nTransfer = k_nTrcPq;
    settings.dMaxLuminance = 300.0;
    expectPicture(settings, k_dHalfLevel);
}

TEST_F(VideoRgbTest, NegativeTurnsEveryComponent)
{
    Settings settings;
    for (const int nNegative : {1, -1}) {
        SCOPED_TRACE(nNegative);
        settings.nNegative = nNegative;
        expectPicture(settings);
    }
    settings.nTransfer = k_nTrcBt709;
    settings.dSharpness = 0.7;
    settings.dContrast = 1.3;
    settings.dBrightness = 0.1;
    expectPicture(settings, k_dHalfLevel);
}

TEST_F(VideoRgbTest, WithoutGl3OnlyContrastAndBrightnessCount)
{
    Settings settings;
    settings.blGl3 = false;
    settings.dContrast = 1.2;
    settings.dSharpness = 1.0;
    settings.nTransfer = k_nTrcPq;
    settings.nNegative = 1;
    expectPicture(settings);
}

} // namespace
