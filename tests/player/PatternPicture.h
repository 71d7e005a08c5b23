// The built-in test pattern on the screen.
#pragma once

#include "ScreenColors.h"

#include <QImage>
#include <QStringList>

#include <functional>

// What makes the player end after so many pictures of the pattern, one pixel of it being one of the screen.
QStringList patternArguments(int nFrames);

// One of its colour bars.
Clips::Yuv patternBar(int nBar);

// All parts of the picture that comes last then.
void expectPattern(const QImage &image, int nFrames, const std::function<QRgb(const Clips::Yuv &)> &color);
