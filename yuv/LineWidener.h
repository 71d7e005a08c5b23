// Wide lines for OpenGL ES, which has none: each segment becomes a quad.
#pragma once

#include "interface/XeltRender.h"
#include "widget/DisplayGeometry.h"

#include <array>
#include <cstddef>
#include <vector>

namespace yuv {

// A segment's corners in widget pixels: start, start, end, end, on alternating sides of the line.
struct SegmentQuad
{
    struct Corner
    {
        double x;
        double y;
    };
    std::array<Corner, 4> aCorners;
};

constexpr size_t kMaxStripVertices = 192;
using StripVertices = std::array<float, 2 * kMaxStripVertices>;

// Replaces vecQuads by one quad for each segment between consecutive points, from the last point back to the
// first one too when blClosed. Segments of zero length have no direction and are left out. nCount is at
// most 32.
void WidenLine(const XeltPoint *pPoints, int nCount, bool blClosed, double dWidth,
               std::vector<SegmentQuad> &vecQuads);

// Writes the quads as one triangle strip in clip space. Between two quads stand the next one's first corners
// once more: the triangles they make fill the wedge that two rectangles leave open at a bend. Returns the
// number of vertices, at most kMaxStripVertices.
size_t AssembleStrip(const std::vector<SegmentQuad> &vecQuads, bool blClosed,
                     const geometry::PointMapping &mapping, StripVertices &afOut);

} // namespace yuv
