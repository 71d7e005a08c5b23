// The clip of four colours on the screen.
#pragma once

#include "ScreenColors.h"

#include <QImage>
#include <QRect>

#include <array>
#include <functional>

// Which quarter of the clip shows at the top left, top right, bottom left and bottom right.
using QuarterOrder = std::array<int, 4>;
constexpr QuarterOrder kUpright{0, 1, 2, 3};

struct Turn
{
    const char *pOptions; // of the player
    QuarterOrder order;
};

constexpr Turn kTurns[] = {
    {"--fill --rotate 90", {2, 0, 3, 1}},
    {"--fill --rotate 90 --ccw", {1, 3, 0, 2}},
    {"--fill --rotate 180", {3, 2, 1, 0}},
    {"--fill --rotate 270", {1, 3, 0, 2}},
    {"--fill --mirror h", {1, 0, 3, 2}},
    {"--fill --mirror v", {2, 3, 0, 1}},
    {"--fill --rotate 90 --mirror h", {0, 2, 1, 3}},
};

// Looks in the middle of the quarters of `area`.
void expectQuarters(const QImage &image, const QRect &area, const QuarterOrder &order,
                    const std::function<QRgb(const Clips::Yuv &)> &color = yv12Color);
