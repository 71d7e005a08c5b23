#include "ColourReference.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace xelttest {

namespace {

constexpr double k_dM1 = 0.1593017578125;
constexpr double k_dM2 = 78.84375;
constexpr double k_dC1 = 0.8359375;
constexpr double k_dC2 = 18.8515625;
constexpr double k_dC3 = 18.6875;

Rgb mapped(const Rgb &rgb, double (*pfnMap)(double))
{
    return {pfnMap(rgb[0]), pfnMap(rgb[1]), pfnMap(rgb[2])};
}

Rgb raised(const Rgb &rgb, double dExponent)
{
    return {std::pow(rgb[0], dExponent), std::pow(rgb[1], dExponent), std::pow(rgb[2], dExponent)};
}

// Shoulder strength, linear strength and angle, toe strength, numerator and denominator: 0.15, 0.5, 0.1, 0.2,
// 0.02, 0.3, with the products worked out.
double filmicPartial(double x)
{
    return (0.15 * x * x + 0.05 * x + 0.004) / (0.15 * x * x + 0.5 * x + 0.06) - 0.02 / 0.3;
}

} // namespace

Rgb multiply(const Matrix &matrix, const Rgb &rgb)
{
    Rgb result{};
    for (size_t i = 0; i < 3; ++i) {
        result[i] = std::inner_product(matrix[i].begin(), matrix[i].end(), rgb.begin(), 0.0);
    }
    return result;
}

Rgb clamped(const Rgb &rgb)
{
    return mapped(rgb, [](double dValue) { return std::clamp(dValue, 0.0, 1.0); });
}

double pqToLinear(double dSignal)
{
    const double dRoot = std::pow(dSignal, 1.0 / k_dM2);
    return std::pow(std::max(dRoot - k_dC1, 0.0) / (k_dC2 - k_dC3 * dRoot), 1.0 / k_dM1);
}

double hlgToLinear(double dSignal)
{
    const double dA = 0.17883277;
    const double dB = 1.0 - 4.0 * dA;
    const double dC = 0.5 - dA * std::log(4.0 * dA);
    return dSignal <= 0.5 ? dSignal * dSignal / 3.0 : (std::exp((dSignal - dC) / dA) + dB) / 12.0;
}

double filmic(double dLinear)
{
    return filmicPartial(10.0 * dLinear) / filmicWhite();
}

double filmicWhite()
{
    return filmicPartial(7.5);
}

Rgb toneMapped(const Rgb &rgb)
{
    const auto [itLeast, itGreatest] = std::minmax_element(rgb.begin(), rgb.end());
    const double dLeast = *itLeast;
    const double dGreatest = *itGreatest;
    Rgb result{};
    for (size_t i = 0; i < 3; ++i) {
        const double dPlace = dGreatest > dLeast ? (rgb[i] - dLeast) / (dGreatest - dLeast) : 0.0;
        result[i] = filmic(dLeast) + dPlace * (filmic(dGreatest) - filmic(dLeast));
    }
    return result;
}

Rgb transferred(int nTransfer, const Rgb &rgb, const Matrix &matrix, double dMaxLuminance)
{
    if (nTransfer == k_nTrcBt709) {
        return raised(clamped(multiply(matrix, raised(rgb, 2.4))), 1.0 / 2.4);
    }
    if (nTransfer == k_nTrcPq) {
        Rgb linear = mapped(rgb, pqToLinear);
        for (double &dChannel : linear) {
            dChannel *= 10000.0 / dMaxLuminance;
        }
        return raised(clamped(multiply(matrix, toneMapped(clamped(linear)))), 1.0 / 2.4);
    }
    if (nTransfer == k_nTrcHlg) {
        return raised(clamped(multiply(matrix, toneMapped(clamped(mapped(rgb, hlgToLinear))))), 1.0 / 1.8);
    }
    return rgb;
}

Rgb hslFromRgb(const Rgb &rgb)
{
    const auto [itLeast, itGreatest] = std::minmax_element(rgb.begin(), rgb.end());
    const double dLightness = (*itGreatest + *itLeast) / 2.0;
    const double dSpan = *itGreatest - *itLeast;
    if (dSpan == 0.0) {
        return {0.0, 0.0, dLightness};
    }
    const double dSaturation = dSpan / (1.0 - std::abs(2.0 * dLightness - 1.0));
    // minmax_element gives the last of several maxima, and any gives the same angle.
    const auto nChannel = static_cast<size_t>(itGreatest - rgb.begin());
    const double dSector =
        2.0 * static_cast<double>(nChannel) + (rgb[(nChannel + 1) % 3] - rgb[(nChannel + 2) % 3]) / dSpan;
    return {(dSector < 0.0 ? dSector + 6.0 : dSector) / 6.0, dSaturation, dLightness};
}

Rgb rgbFromHsl(const Rgb &hsl)
{
    const double dChroma = (1.0 - std::abs(2.0 * hsl[2] - 1.0)) * hsl[1];
    const double dSector = hsl[0] * 6.0;
    const double dSecond = dChroma * (1.0 - std::abs(std::fmod(dSector, 2.0) - 1.0));
    const std::array<Rgb, 6> aSectors = {{{dChroma, dSecond, 0.0},
                                          {dSecond, dChroma, 0.0},
                                          {0.0, dChroma, dSecond},
                                          {0.0, dSecond, dChroma},
                                          {dSecond, 0.0, dChroma},
                                          {dChroma, 0.0, dSecond}}};
    Rgb rgb = aSectors[static_cast<size_t>(dSector) % 6];
    for (double &dChannel : rgb) {
        dChannel += hsl[2] - dChroma / 2.0;
    }
    return rgb;
}

} // namespace xelttest
