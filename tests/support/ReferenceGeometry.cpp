// Placement: drawn areas, turn and mirror.
#include "Reference.h"

#include <cmath>
#include <utility>

namespace xelttest {

namespace {

Area normalised(const QSize &size, int left, int top, int right, int bottom)
{
    const auto share = [](int nEdge, int nLength) {
        return static_cast<double>(static_cast<float>(nEdge) / static_cast<float>(nLength));
    };
    return {share(left, size.width()), share(top, size.height()), share(right, size.width()),
            share(bottom, size.height())};
}

// Quarter turns counter-clockwise, 0..3; clip space has y upwards.
int quarterTurns(const View &view)
{
    int nQuarters = 0;
    switch (view.nAngle) {
    case 90:
        nQuarters = 1;
        break;
    case 180:
        nQuarters = 2;
        break;
    case 270:
        nQuarters = 3;
        break;
    default:
        return 0;
    }
    const bool blClockwise = (view.nDirection == 0) != view.faults.blTurnOtherWay;
    return blClockwise ? (4 - nQuarters) % 4 : nQuarters;
}

void turn(int nQuarters, double &x, double &y)
{
    for (int i = 0; i < nQuarters; ++i) {
        const double dOldX = x;
        x = -y;
        y = dOldX;
    }
}

void mirror(int nMirror, double &x, double &y)
{
    x = nMirror == 1 ? -x : x;
    y = nMirror == 2 ? -y : y;
}

} // namespace

QSize View::deviceSize() const
{
    return {static_cast<int>(std::lround(widgetSize.width() * dPixelRatio)),
            static_cast<int>(std::lround(widgetSize.height() * dPixelRatio))};
}

void turnAndMirror(const View &view, double &x, double &y)
{
    if (view.faults.blMirrorBeforeTurn) {
        mirror(view.nMirror, x, y);
        turn(quarterTurns(view), x, y);
        return;
    }
    turn(quarterTurns(view), x, y);
    mirror(view.nMirror, x, y);
}

void undoTurnAndMirror(const View &view, double &x, double &y)
{
    const int nBack = (4 - quarterTurns(view)) % 4;
    if (view.faults.blMirrorBeforeTurn) {
        turn(nBack, x, y);
        mirror(view.nMirror, x, y);
        return;
    }
    mirror(view.nMirror, x, y);
    turn(nBack, x, y);
}

Area dstArea(const QSize &widgetSize, int left, int top, int right, int bottom)
{
    return normalised(widgetSize, left, top, right, bottom);
}

Area ratioArea(const QSize &widgetSize, int nVideoWidth, int nVideoHeight, int nMode)
{
    int nLeft = 0;
    int nTop = 0;
    int nRight = widgetSize.width() - 1;
    int nBottom = widgetSize.height() - 1;
    if (nMode != 0 || nVideoWidth < 1 || nVideoHeight < 1) {
        return normalised(widgetSize, nLeft, nTop, nRight, nBottom);
    }
    const double dWindow = static_cast<double>(nRight) / nBottom;
    const double dVideo = static_cast<double>(nVideoWidth) / nVideoHeight;
    if (dVideo > dWindow) {
        const double dHeight = nVideoHeight > nVideoWidth
                                   ? nRight / dVideo
                                   : static_cast<double>(nVideoHeight) / nVideoWidth * nRight;
        const int nHalf = (nBottom - static_cast<int>(dHeight)) / 2;
        nTop += nHalf;
        nBottom -= nHalf;
    } else {
        const int nHalf = (nRight - static_cast<int>(nBottom * dVideo)) / 2;
        nLeft += nHalf;
        nRight -= nHalf;
    }
    return normalised(widgetSize, nLeft, nTop, nRight, nBottom);
}

} // namespace xelttest
