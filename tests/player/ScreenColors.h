#pragma once

#include "Clips.h"

#include <QImage>

// What is on the screen where planes hold one colour.
constexpr int kTolerance = 3; // of 255, for each component

// Clamped and rounded.
QRgb rgb(double red, double green, double blue);

// Limited-range planes as the renderer's two conversions show them, and as the video processor shows a texture,
// which it takes for BT.709.
QRgb yv12Color(const Clips::Yuv &yuv);
QRgb nv12Color(const Clips::Yuv &yuv);
QRgb textureColor(const Clips::Yuv &yuv);

bool isNear(QRgb one, QRgb other, int nTolerance = kTolerance);

// Notes a failure of the running test when the place shows another colour.
void expectColor(const QImage &image, int x, int y, QRgb expected);
