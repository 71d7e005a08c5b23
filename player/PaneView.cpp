#include "PaneView.h"

#include <algorithm>
#include <cmath>

namespace {

// Where a point of the screen lay before the picture was turned and mirrored, both in parts of the pane.
QPointF beforeTurn(const ViewSettings &view, const QPointF &point)
{
    double x = point.x() - 0.5;
    double y = point.y() - 0.5;
    x = view.nMirror == 1 ? -x : x;
    y = view.nMirror == 2 ? -y : y;
    const int nAngle = view.blCounterClockwise ? (360 - view.nAngle) % 360 : view.nAngle;
    switch (nAngle) {
    case 90:
        return {0.5 + y, 0.5 - x};
    case 180:
        return {0.5 - x, 0.5 - y};
    case 270:
        return {0.5 - y, 0.5 + x};
    default:
        return {0.5 + x, 0.5 + y};
    }
}

// The same centre, but square in parts of the pane and inside it.
QRectF inPaneProportions(const QRectF &selection)
{
    constexpr double kSmallest = 0.02; // a slip of the mouse magnifies no further
    const double side = std::clamp(std::max(selection.width(), selection.height()), kSmallest, 1.0);
    const double left = std::clamp(selection.center().x() - side / 2.0, 0.0, 1.0 - side);
    const double top = std::clamp(selection.center().y() - side / 2.0, 0.0, 1.0 - side);
    return {left, top, side, side};
}

} // namespace

XeltRotatePara rotatePara(const ViewSettings &view)
{
    return {view.blCounterClockwise ? 1 : 0, view.nAngle, view.nMirror};
}

bool isQuarterTurn(const ViewSettings &view)
{
    return view.nAngle == 90 || view.nAngle == 270;
}

XeltDrawDstRect turnedRect(const QSize &widget, const QSize &picture)
{
    const double paneWidth = widget.width();
    const double paneHeight = widget.height();
    // On screen the picture's height lies along the pane's width.
    const double scale = std::min(paneWidth / picture.height(), paneHeight / picture.width());
    const double shownWidth = picture.height() * scale;
    const double shownHeight = picture.width() * scale;
    const int nWidth = std::max(2, static_cast<int>(std::lround(paneWidth * shownHeight / paneHeight)));
    const int nHeight = std::max(2, static_cast<int>(std::lround(paneHeight * shownWidth / paneWidth)));
    const int nLeft = (widget.width() - nWidth) / 2;
    const int nTop = (widget.height() - nHeight) / 2;
    return {nLeft, nTop, nLeft + nWidth - 1, nTop + nHeight - 1};
}

XeltEZoomArea zoomedTo(const ViewSettings &view, const QRectF &selection)
{
    const QRectF square = inPaneProportions(selection);
    const QRectF part =
        QRectF(beforeTurn(view, square.topLeft()), beforeTurn(view, square.bottomRight())).normalized();
    const XeltEZoomArea whole{0.0, 0.0, 1.0, 1.0};
    const bool blEmpty = !(view.rcZoom.right > view.rcZoom.left) || !(view.rcZoom.bottom > view.rcZoom.top);
    const XeltEZoomArea &old = blEmpty ? whole : view.rcZoom; // an empty window shows the whole pane
    const double width = old.right - old.left;
    const double height = old.bottom - old.top;
    return {old.left + width * part.left(), old.top + height * part.top(), old.left + width * part.right(),
            old.top + height * part.bottom()};
}
