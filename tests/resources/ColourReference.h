// The colour functions in double precision, from their standards and not from the shaders' texts.
#pragma once

#include <array>

namespace xelttest {

using Rgb = std::array<double, 3>;
using Rgba = std::array<double, 4>;
using Matrix = std::array<Rgb, 3>; // rows

inline constexpr Matrix k_identity = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
// Linear BT.2020 to BT.709; its rows sum to 1 and it is not symmetric.
inline constexpr Matrix k_bt2020ToBt709 = {
    {{1.6605, -0.5876, -0.0728}, {-0.1246, 1.1329, -0.0083}, {-0.0182, -0.1006, 1.1187}}};

enum Transfer { k_nTrcBt709 = 1, k_nTrcPq = 16, k_nTrcHlg = 18 };

Rgb multiply(const Matrix &matrix, const Rgb &rgb);
Rgb clamped(const Rgb &rgb);

// ST 2084: signal to linear light, 1.0 is 10000 cd/m2.
double pqToLinear(double dSignal);
// ARIB STD-B67: signal to scene light, both 0..1.
double hlgToLinear(double dSignal);
// The filmic curve of one component.
double filmic(double dLinear);
// What the unscaled curve gives for 7.5, by which the scaled one is divided.
double filmicWhite();
// The curve on the greatest and the least component; the one between keeps its relative place.
Rgb toneMapped(const Rgb &rgb);

// The whole step for a transfer characteristic; others than the three leave the colour.
Rgb transferred(int nTransfer, const Rgb &rgb, const Matrix &matrix, double dMaxLuminance);

// Hue in 0..1, saturation, lightness, by the six sectors of the hexagon.
Rgb hslFromRgb(const Rgb &rgb);
Rgb rgbFromHsl(const Rgb &hsl);

} // namespace xelttest
