#include "yuv/LineWidener.h"

#include <cmath>

namespace yuv {

namespace {

void AppendSegment(const XeltPoint &from, const XeltPoint &to, double dHalfWidth,
                   std::vector<SegmentQuad> &vecQuads)
{
    const double dX = static_cast<double>(to.x) - from.x;
    const double dY = static_cast<double>(to.y) - from.y;
    const double dLength = std::hypot(dX, dY);
    if (dLength == 0.0) {
        return;
    }
    const double dNormalX = -dY / dLength * dHalfWidth;
    const double dNormalY = dX / dLength * dHalfWidth;
    vecQuads.push_back({{{{from.x + dNormalX, from.y + dNormalY},
                          {from.x - dNormalX, from.y - dNormalY},
                          {to.x + dNormalX, to.y + dNormalY},
                          {to.x - dNormalX, to.y - dNormalY}}}});
}

} // namespace

void WidenLine(const XeltPoint *pPoints, int nCount, bool blClosed, double dWidth,
               std::vector<SegmentQuad> &vecQuads)
{
    vecQuads.clear();
    for (int i = 1; i < nCount; ++i) {
        AppendSegment(pPoints[i - 1], pPoints[i], dWidth / 2, vecQuads);
    }
    if (blClosed && nCount > 1) {
        AppendSegment(pPoints[nCount - 1], pPoints[0], dWidth / 2, vecQuads);
    }
}

size_t AssembleStrip(const std::vector<SegmentQuad> &vecQuads, bool blClosed,
                     const geometry::PointMapping &mapping, StripVertices &afOut)
{
    size_t nVertices = 0;
    const auto append = [&](const SegmentQuad::Corner &corner) {
        if (nVertices < kMaxStripVertices) {
            afOut[2 * nVertices] = mapping.mapX(corner.x);
            afOut[2 * nVertices + 1] = mapping.mapY(corner.y);
            ++nVertices;
        }
    };
    for (size_t i = 0; i < vecQuads.size(); ++i) {
        if (i > 0) {
            append(vecQuads[i].aCorners[0]);
            append(vecQuads[i].aCorners[1]);
        }
        for (const SegmentQuad::Corner &corner : vecQuads[i].aCorners) {
            append(corner);
        }
    }
    if (blClosed && !vecQuads.empty()) {
        append(vecQuads.front().aCorners[0]);
        append(vecQuads.front().aCorners[1]);
    }
    return nVertices;
}

} // namespace yuv
