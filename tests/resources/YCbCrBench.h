// VideoYCbCr.frag with its uniforms, and the same picture in double precision.
#pragma once

#include "GlBench.h"

#include <vector>

namespace xelttest {

struct YCbCrSettings
{
    bool blNv12 = false;
    bool blGl3 = true;
    bool blRectangle = false; // rectangle textures: desktop OpenGL alone
    Matrix yuvToRgb{{{1.0, 0.0, 1.5748}, {1.0, -0.1873, -0.4681}, {1.0, 1.8556, 0.0}}};
    double dLumaRange = 255.0 / 219.0;
    double dChromaRange = 255.0 / 224.0;
    double dBlackLevel = 16.0 / 255.0;
    double dBrightness = 0.0;
    double dContrast = 1.0;
    double dSaturation = 1.0;
    double dHue = 0.0;
    double dSharpness = 0.0;
    double dBits = 1.0;
    int nTransfer = 0;
    double dMaxLuminance = 1000.0;
    int nNegative = 0;
    int nDrawFlag = 0;
};

inline constexpr Rgba k_drawColour = {0.9, 0.6, 0.1, 0.35}; // with its opacity

class YCbCrBench : public GlBench
{
protected:
    std::vector<Rgba> draw(const YCbCrSettings &settings);
    std::vector<Rgba> expected(const YCbCrSettings &settings) const;
    void expectPicture(const YCbCrSettings &settings, double dTolerance = 1e-5);

    const Plane m_luma = noise(16, 6, 1, 31);
    const Plane m_cb = noise(8, 3, 1, 32);
    const Plane m_cr = noise(8, 3, 1, 33);

private:
    void setUniforms(QOpenGLShaderProgram &program, const YCbCrSettings &settings) const;
    Rgba expectedPixel(const YCbCrSettings &settings, int x, int y) const;
    double lumaAt(const YCbCrSettings &settings, int x, int y) const;
    // Both chroma planes in one.
    Plane chroma() const;
};

} // namespace xelttest
