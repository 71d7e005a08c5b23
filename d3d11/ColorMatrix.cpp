#include "d3d11/ColorMatrix.h"

#include "log/QtMessages.h"

#include <QDebug>
#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

QMatrix4x4 brightnessMatrix(double dBrightness)
{
    const auto b = static_cast<float>(dBrightness);
    return {1, 0, 0, b, 0, 1, 0, b, 0, 0, 1, b, 0, 0, 0, 1};
}

QMatrix4x4 contrastMatrix(double dContrast)
{
    const auto c = static_cast<float>(dContrast + 1.0);
    const auto t = static_cast<float>((1.0 - static_cast<double>(c)) * 0.5);
    return {c, 0, 0, t, 0, c, 0, t, 0, 0, c, t, 0, 0, 0, 1};
}

QMatrix4x4 saturationMatrix(double dSaturation)
{
    const auto s = static_cast<float>(dSaturation + 1.0);
    // Deliberately neither the weights of BT.601 nor those of BT.709.
    const float rw = (1.0f - s) * 0.3086f;
    const float gw = (1.0f - s) * 0.6094f;
    const float bw = (1.0f - s) * 0.082f;
    return {rw + s, gw, bw, 0, rw, gw + s, bw, 0, rw, gw, bw + s, 0, 0, 0, 0, 1};
}

QMatrix4x4 hueMatrix(double dHue)
{
    const auto a = static_cast<float>(dHue * kPi);
    const float co = std::cos(a);
    const float si = std::sin(a);
    const float k = 1.0f / std::sqrt(3.0f);
    const float t = k * k * (1.0f - co);
    const float p = t + co;
    const float q = t + si * k;
    const float r = t - si * k;
    return {p, r, q, 0, q, p, r, 0, r, q, p, 0, 0, 0, 0, 1};
}

} // namespace

void ColorMatrix::setHue(double dHue)
{
    m_dHue = dHue;
    invalidate();
}

void ColorMatrix::setSaturation(double dSaturation)
{
    m_dSaturation = dSaturation;
    invalidate();
}

void ColorMatrix::setContrast(double dContrast)
{
    m_dContrast = dContrast;
    invalidate();
}

void ColorMatrix::setBrightness(double dBrightness)
{
    m_dBrightness = dBrightness;
    invalidate();
}

void ColorMatrix::updateColorMatrix()
{
    m_blValid = false;
    m_matrix = brightnessMatrix(m_dBrightness) * contrastMatrix(m_dContrast) *
               saturationMatrix(m_dSaturation) * hueMatrix(m_dHue);
    QString sMatrix;
    QDebug(&sMatrix).nospace() << m_matrix;
    qtlog::Debug("color mat: %s", qUtf8Printable(sMatrix));
    m_blValid = true;
}
