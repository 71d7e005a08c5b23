// Where the picture goes: plain arithmetic on rectangles. No thread, lock or context is needed.
#pragma once

#include <QRect>
#include <cstdint>

namespace geometry {

// Left, top, right, bottom in normalised widget units; the whole widget by default.
struct NormRect
{
    double left = 0.0;
    double top = 0.0;
    double right = 1.0;
    double bottom = 1.0;

    bool isEmpty() const { return !(right > left && bottom > top); }
};
static_assert(sizeof(NormRect) == 32, "the zoom command copies its record over this one");

// Four (x, y) corners in clip space: bottom-left, bottom-right, top-left, top-right.
using QuadVertices = float[8];

// Truncates towards zero; values beyond int32_t stick to its ends and not-a-number becomes 0.
int32_t TruncateToInt(double dValue);

// Pixels from left to right edge (top to bottom), both counted; wide enough for any pair of edges.
int64_t InclusiveLength(int32_t nFirst, int32_t nLast);

// Largest rectangle of the frame's aspect ratio inside rcWidget, with bars on two sides. A frame or widget
// without a size keeps rcWidget.
QRect FitFrame(const QRect &rcWidget, int32_t nVideoWidth, int32_t nVideoHeight);

// rcDraw in units of the widget's width and height, both of which are at least 1.
NormRect Normalise(const QRect &rcDraw, const QRect &rcWidget);

// Corners of rcArea when rcZoom fills the viewport. An empty zoom window gives the full quad.
void ComputeQuad(const NormRect &rcArea, const NormRect &rcZoom, QuadVertices &afOut);

// Maps widget pixels to clip space: (x / nHalfWidth + dX0, dY0 - y / nHalfHeight).
struct PointMapping
{
    int32_t nHalfWidth = 1;
    int32_t nHalfHeight = 1;
    double dX0 = -1.0;
    double dY0 = 1.0;

    float mapX(double x) const { return static_cast<float>(x / nHalfWidth + dX0); }
    float mapY(double y) const { return static_cast<float>(dY0 - y / nHalfHeight); }
};
PointMapping MapPoints(const QRect &rcWidget, const NormRect &rcZoom);

} // namespace geometry
