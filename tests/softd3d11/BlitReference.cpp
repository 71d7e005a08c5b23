#include "BlitReference.h"

#include <algorithm>
#include <cmath>

namespace reference {

namespace {

double Sample(const VideoFrame &frame, std::size_t nIndex)
{
    if (frame.nBits == 8)
        return frame.packed[nIndex];
    const int nWord = frame.packed[nIndex * 2] + frame.packed[nIndex * 2 + 1] * 256;
    return nWord >> 6;
}

double Level(double dValue)
{
    return std::clamp(dValue * 255, 0.0, 255.0);
}

} // namespace

Bgr PixelColor(const VideoFrame &frame, const ColorSpace &space, std::size_t x, std::size_t y)
{
    const double dUnit = frame.nBits == 8 ? 1 : 4;
    const double dMax = frame.nBits == 8 ? 255 : 1023;
    const std::size_t nChroma = frame.nWidth * (frame.nHeight + y / 2) + x / 2 * 2;
    const double dLuma = Sample(frame, y * frame.nWidth + x);
    const double dCb = Sample(frame, nChroma) - 128 * dUnit;
    const double dCr = Sample(frame, nChroma + 1) - 128 * dUnit;
    const double dY = space.blFullRange ? dLuma / dMax : (dLuma - 16 * dUnit) / (219 * dUnit);
    const double dPb = dCb / (space.blFullRange ? dMax : 224 * dUnit);
    const double dPr = dCr / (space.blFullRange ? dMax : 224 * dUnit);
    const double dKr = space.blBt709 ? 0.2126 : 0.299;
    const double dKb = space.blBt709 ? 0.0722 : 0.114;
    const double dRed = dY + 2 * (1 - dKr) * dPr;
    const double dBlue = dY + 2 * (1 - dKb) * dPb;
    const double dGreen = (dY - dKr * dRed - dKb * dBlue) / (1 - dKr - dKb);
    return {Level(dBlue), Level(dGreen), Level(dRed)};
}

std::vector<Bgr> Picture(const VideoFrame &frame, const ColorSpace &space, const Rect &rect,
                         std::size_t nWidth, std::size_t nHeight)
{
    const auto position = [](std::size_t nTarget, std::size_t nTargetSize, std::size_t nSourceSize) {
        const double dScale = static_cast<double>(nSourceSize) / static_cast<double>(nTargetSize);
        return std::clamp((static_cast<double>(nTarget) + 0.5) * dScale - 0.5, 0.0,
                          static_cast<double>(nSourceSize) - 1);
    };
    std::vector<Bgr> picture;
    for (std::size_t y = 0; y < nHeight; ++y) {
        for (std::size_t x = 0; x < nWidth; ++x) {
            const double dX = position(x, nWidth, rect.nWidth);
            const double dY = position(y, nHeight, rect.nHeight);
            Bgr sum = {};
            for (int nCorner = 0; nCorner < 4; ++nCorner) {
                const double dColumn = nCorner % 2 == 0 ? std::floor(dX) : std::ceil(dX);
                const double dRow = nCorner / 2 == 0 ? std::floor(dY) : std::ceil(dY);
                const double dFractionX = dX - std::floor(dX);
                const double dFractionY = dY - std::floor(dY);
                const double dWeight = (nCorner % 2 == 0 ? 1 - dFractionX : dFractionX) *
                                       (nCorner / 2 == 0 ? 1 - dFractionY : dFractionY);
                const Bgr color = PixelColor(frame, space, rect.nLeft + static_cast<std::size_t>(dColumn),
                                             rect.nTop + static_cast<std::size_t>(dRow));
                for (std::size_t c = 0; c < 3; ++c)
                    sum[c] += dWeight * color[c];
            }
            picture.push_back(sum);
        }
    }
    return picture;
}

} // namespace reference
