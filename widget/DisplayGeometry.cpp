#include "widget/DisplayGeometry.h"

#include <limits>

namespace geometry {

namespace {

struct Span
{
    int first;
    int last;
};

// Takes the bars off both ends of a span so that about nWanted remains. An odd difference leaves its extra
// pixel inside.
Span Narrow(Span span, int nWanted)
{
    const int nHalf = (span.last - nWanted - span.first) / 2;
    return {span.first + nHalf, span.last - nHalf};
}

// Edges divided in single precision, which is what hosts compare with.
double Fraction(int nEdge, int nLength)
{
    return static_cast<double>(static_cast<float>(nEdge) / static_cast<float>(nLength));
}

} // namespace

int32_t TruncateToInt(double dValue)
{
    constexpr double dMin = std::numeric_limits<int32_t>::min();
    constexpr double dMax = std::numeric_limits<int32_t>::max();
    if (dValue != dValue) {
        return 0;
    }
    return static_cast<int32_t>(dValue < dMin ? dMin : (dValue > dMax ? dMax : dValue));
}

int64_t InclusiveLength(int32_t nFirst, int32_t nLast)
{
    return int64_t{nLast} - nFirst + 1;
}

QRect FitFrame(const QRect &rcWidget, int32_t nVideoWidth, int32_t nVideoHeight)
{
    Span horizontal = {rcWidget.left(), rcWidget.right()};
    Span vertical = {rcWidget.top(), rcWidget.bottom()};
    // Differences of the edges, one less than the size in pixels; the fit works on these deliberately.
    const int nWidth = horizontal.last - horizontal.first;
    const int nHeight = vertical.last - vertical.first;
    if (nVideoWidth < 1 || nVideoHeight < 1 || nWidth < 0 || nHeight < 0 || (nWidth == 0 && nHeight == 0)) {
        return rcWidget;
    }
    const double dWindowRatio = static_cast<double>(nWidth) / nHeight;
    const double dVideoRatio = static_cast<double>(nVideoWidth) / nVideoHeight;
    if (dVideoRatio <= dWindowRatio) {
        horizontal = Narrow(horizontal, TruncateToInt(nHeight * dVideoRatio));
    } else if (nVideoHeight > nVideoWidth) {
        vertical = Narrow(vertical, TruncateToInt(nWidth / dVideoRatio));
    } else {
        const double dInverseRatio = static_cast<double>(nVideoHeight) / nVideoWidth;
        vertical = Narrow(vertical, TruncateToInt(dInverseRatio * nWidth));
    }
    return QRect(QPoint(horizontal.first, vertical.first), QPoint(horizontal.last, vertical.last));
}

NormRect Normalise(const QRect &rcDraw, const QRect &rcWidget)
{
    NormRect rcArea;
    rcArea.left = Fraction(rcDraw.left(), rcWidget.width());
    rcArea.top = Fraction(rcDraw.top(), rcWidget.height());
    rcArea.right = Fraction(rcDraw.right(), rcWidget.width());
    rcArea.bottom = Fraction(rcDraw.bottom(), rcWidget.height());
    return rcArea;
}

void ComputeQuad(const NormRect &rcArea, const NormRect &rcZoom, QuadVertices &afOut)
{
    double dLeft = -1.0;
    double dRight = 1.0;
    double dTop = 1.0;
    double dBottom = -1.0;
    if (!rcZoom.isEmpty()) {
        const double dWidth = rcZoom.right - rcZoom.left;
        const double dHeight = rcZoom.bottom - rcZoom.top;
        dLeft = 2 * (rcArea.left - rcZoom.left) / dWidth - 1;
        dRight = 2 * (rcArea.right - rcZoom.left) / dWidth - 1;
        dTop = 1 - 2 * (rcArea.top - rcZoom.top) / dHeight;
        dBottom = 1 - 2 * (rcArea.bottom - rcZoom.top) / dHeight;
    }
    const auto fLeft = static_cast<float>(dLeft);
    const auto fRight = static_cast<float>(dRight);
    const auto fTop = static_cast<float>(dTop);
    const auto fBottom = static_cast<float>(dBottom);
    const QuadVertices afQuad = {fLeft, fBottom, fRight, fBottom, fLeft, fTop, fRight, fTop};
    for (int i = 0; i < 8; ++i) {
        afOut[i] = afQuad[i];
    }
}

PointMapping MapPoints(const QRect &rcWidget, const NormRect &rcZoom)
{
    const int nWidth = rcWidget.right() - rcWidget.left();
    const int nHeight = rcWidget.bottom() - rcWidget.top();
    PointMapping mapping;
    mapping.nHalfWidth = nWidth / 2;
    mapping.nHalfHeight = nHeight / 2;
    if (!rcZoom.isEmpty()) {
        const double dZoomWidth = rcZoom.right - rcZoom.left;
        const double dZoomHeight = rcZoom.bottom - rcZoom.top;
        mapping.nHalfWidth = TruncateToInt(nWidth * dZoomWidth * 0.5);
        mapping.nHalfHeight = TruncateToInt(nHeight * dZoomHeight * 0.5);
        mapping.dX0 = (-rcZoom.left * 2) / dZoomWidth - 1;
        mapping.dY0 = 1 - (-rcZoom.top * 2) / dZoomHeight;
    }
    mapping.nHalfWidth = mapping.nHalfWidth != 0 ? mapping.nHalfWidth : 1;
    mapping.nHalfHeight = mapping.nHalfHeight != 0 ? mapping.nHalfHeight : 1;
    return mapping;
}

} // namespace geometry
