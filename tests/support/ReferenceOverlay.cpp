#include "ReferenceOverlay.h"

#include <algorithm>
#include <cmath>

namespace xelttest {

namespace {

// Widget pixels -> clip space -> turned and mirrored -> device pixels from the top left.
class Mapping
{
public:
    explicit Mapping(const View &view) : m_view(view)
    {
        const int nWidth = view.widgetSize.width() - 1;
        const int nHeight = view.widgetSize.height() - 1;
        const Area &zoom = view.zoom;
        m_nHalfWidth = nWidth / 2;
        m_nHalfHeight = nHeight / 2;
        if (zoom[2] > zoom[0] && zoom[3] > zoom[1]) {
            m_nHalfWidth = static_cast<int>(nWidth * (zoom[2] - zoom[0]) * 0.5);
            m_nHalfHeight = static_cast<int>(nHeight * (zoom[3] - zoom[1]) * 0.5);
            m_dX0 = (-zoom[0] * 2) / (zoom[2] - zoom[0]) - 1;
            m_dY0 = 1 - (-zoom[1] * 2) / (zoom[3] - zoom[1]);
        }
        m_nHalfWidth = std::max(m_nHalfWidth, 1);
        m_nHalfHeight = std::max(m_nHalfHeight, 1);
    }

    Vec2 fromWidget(const Vec2 &point) const
    {
        return fromClip({point.x / m_nHalfWidth + m_dX0, m_dY0 - point.y / m_nHalfHeight});
    }

    Vec2 fromClip(Vec2 point) const
    {
        turnAndMirror(m_view, point.x, point.y);
        const QSize size = m_view.deviceSize();
        return {(point.x + 1) / 2 * size.width(), (1 - point.y) / 2 * size.height()};
    }

private:
    View m_view;
    int m_nHalfWidth = 1;
    int m_nHalfHeight = 1;
    double m_dX0 = -1.0;
    double m_dY0 = 1.0;
};

bool isClosed(const XeltDrawInfo &record)
{
    return record.nType == DRAWINFO_OUTLINE || record.nType == DRAWINFO_OUTLINE_ALT;
}

bool isBlended(const XeltDrawInfo &record)
{
    return record.nType == DRAWINFO_FILLED_AREA && record.fOpacity != 0.0f;
}

int readPoints(const XeltDrawInfo &record)
{
    return std::clamp(record.nPointNum, 0, static_cast<int>(XELT_DRAWINFO_MAX_POINTS));
}

Vec2 pointOf(const XeltDrawInfo &record, int i)
{
    return {static_cast<double>(record.aPoints[i].x), static_cast<double>(record.aPoints[i].y)};
}

std::vector<Polygon> trianglesOfStrip(const std::vector<Vec2> &vecPoints)
{
    std::vector<Polygon> vecTriangles;
    for (size_t i = 2; i < vecPoints.size(); ++i) {
        vecTriangles.push_back({vecPoints[i - 2], vecPoints[i - 1], vecPoints[i]});
    }
    return vecTriangles;
}

// Device positions of the vertices that desktop GL draws; those that a record cannot hold lie in the middle.
std::vector<Vec2> vertices(const XeltDrawInfo &record, const Mapping &mapping, GlFlavour flavour)
{
    std::vector<Vec2> vecPoints;
    for (int i = 0; i < readPoints(record); ++i) {
        vecPoints.push_back(mapping.fromWidget(pointOf(record, i)));
    }
    if (flavour == GlFlavour::Desktop) {
        constexpr int k_nMaxVertices = 192;
        const int nExtra = std::min(record.nPointNum, k_nMaxVertices) - static_cast<int>(vecPoints.size());
        vecPoints.insert(vecPoints.end(), static_cast<size_t>(std::max(nExtra, 0)),
                         mapping.fromClip({0.0, 0.0}));
    }
    return vecPoints;
}

// A wide line of desktop GL: columns (or rows, where it is steep) of the line's width, between its ends.
Polygon wideLine(const Vec2 &from, const Vec2 &to, double dWidth)
{
    const bool blSteep = std::abs(to.y - from.y) > std::abs(to.x - from.x);
    const Vec2 half{blSteep ? dWidth / 2 : 0.0, blSteep ? 0.0 : dWidth / 2};
    return {{from.x + half.x, from.y + half.y},
            {to.x + half.x, to.y + half.y},
            {to.x - half.x, to.y - half.y},
            {from.x - half.x, from.y - half.y}};
}

std::vector<Polygon> desktopLines(const XeltDrawInfo &record, const Mapping &mapping)
{
    std::vector<Vec2> vecPoints = vertices(record, mapping, GlFlavour::Desktop);
    if (isClosed(record) && vecPoints.size() > 1) {
        vecPoints.push_back(vecPoints.front());
    }
    std::vector<Polygon> vecPolygons;
    for (size_t i = 1; i < vecPoints.size(); ++i) {
        if (vecPoints[i - 1].x != vecPoints[i].x || vecPoints[i - 1].y != vecPoints[i].y) {
            vecPolygons.push_back(wideLine(vecPoints[i - 1], vecPoints[i], std::max(record.nSize, 1)));
        }
    }
    return vecPolygons;
}

// OpenGL ES: rectangles in widget pixels; where two follow each other two triangles fill the bend.
std::vector<Polygon> widenedLines(const XeltDrawInfo &record, const Mapping &mapping)
{
    std::vector<Vec2> vecPath;
    for (int i = 0; i < readPoints(record); ++i) {
        vecPath.push_back(pointOf(record, i));
    }
    if (isClosed(record) && vecPath.size() > 1) {
        vecPath.push_back(vecPath.front());
    }
    const double dHalf = std::max(record.nSize, 1) / 2.0;
    std::vector<std::array<Vec2, 4>> vecQuads;
    for (size_t i = 1; i < vecPath.size(); ++i) {
        const Vec2 a = vecPath[i - 1];
        const Vec2 b = vecPath[i];
        const double dLength = std::hypot(b.x - a.x, b.y - a.y);
        if (dLength > 0) {
            const Vec2 n{(a.y - b.y) / dLength * dHalf, (b.x - a.x) / dLength * dHalf};
            vecQuads.push_back(
                {mapping.fromWidget({a.x + n.x, a.y + n.y}), mapping.fromWidget({a.x - n.x, a.y - n.y}),
                 mapping.fromWidget({b.x + n.x, b.y + n.y}), mapping.fromWidget({b.x - n.x, b.y - n.y})});
        }
    }
    std::vector<Polygon> vecPolygons;
    for (size_t i = 0; i < vecQuads.size(); ++i) {
        const auto &quad = vecQuads[i];
        vecPolygons.push_back({quad[0], quad[1], quad[3], quad[2]});
        if (i + 1 < vecQuads.size() || isClosed(record)) {
            const auto &next = vecQuads[(i + 1) % vecQuads.size()];
            vecPolygons.push_back({quad[2], quad[3], next[0]});
            vecPolygons.push_back({quad[3], next[0], next[1]});
        }
    }
    return vecPolygons;
}

std::array<double, 3> colourOf(const XeltDrawInfo &record)
{
    std::array<double, 3> aRgb{};
    for (unsigned i = 0; i < 3; ++i) {
        const unsigned nByte = (record.nColor >> (8 * i)) & 0xFF;
        aRgb[i] = 255.0 * std::clamp(nByte / 126.0 - 1.0, 0.0, 1.0);
    }
    return aRgb;
}

struct Coverage
{
    int nInside = 0;
    bool blEdge = false;
};

Coverage coverage(const std::vector<Polygon> &vecPolygons, const Vec2 &centre, double dBand)
{
    Coverage result;
    for (const Polygon &polygon : vecPolygons) {
        const Cover cover = coverOf(polygon, centre, dBand);
        result.nInside += cover == Cover::Inside ? 1 : 0;
        result.blEdge = result.blEdge || cover == Cover::Edge;
    }
    return result;
}

struct Shape
{
    const XeltDrawInfo *pRecord;
    std::vector<Polygon> vecPolygons;
    double dBand;
};

// One pixel through both passes, the last record first as they are drawn.
void composePixel(ReferenceImage &image, int x, int y, const std::vector<Shape> &vecLastFirst)
{
    const Vec2 centre{x + 0.5, y + 0.5};
    double *pRgb = image.pixel(x, y);
    bool blUnsure = false;
    for (const Shape &shape : vecLastFirst) {
        if (isBlended(*shape.pRecord)) {
            continue;
        }
        const Coverage cover = coverage(shape.vecPolygons, centre, shape.dBand);
        if (cover.nInside > 0) {
            const auto aColour = colourOf(*shape.pRecord);
            std::copy(aColour.begin(), aColour.end(), pRgb);
            image.aIgnored[image.index(x, y)] = 0; // the first fragment keeps all later ones out
            break;
        }
        blUnsure = blUnsure || cover.blEdge;
    }
    for (const Shape &shape : vecLastFirst) {
        if (!isBlended(*shape.pRecord)) {
            continue;
        }
        const Coverage cover = coverage(shape.vecPolygons, centre, shape.dBand);
        blUnsure = blUnsure || cover.blEdge;
        const auto aColour = colourOf(*shape.pRecord);
        const double dAlpha = std::clamp(static_cast<double>(shape.pRecord->fOpacity), 0.0, 1.0);
        for (int nTimes = 0; nTimes < cover.nInside; ++nTimes) {
            for (size_t i = 0; i < 3; ++i) {
                pRgb[i] = aColour[i] * dAlpha + pRgb[i] * (1 - dAlpha);
            }
        }
    }
    if (blUnsure) {
        image.aIgnored[image.index(x, y)] = 1;
    }
}

} // namespace

Cover coverOf(const Polygon &polygon, const Vec2 &point, double dBand)
{
    double dArea = 0;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const Vec2 &a = polygon[i];
        const Vec2 &b = polygon[(i + 1) % polygon.size()];
        dArea += a.x * b.y - b.x * a.y;
    }
    bool blInside = std::abs(dArea) > 1e-9;
    double dNearest = 1e30;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const Vec2 &a = polygon[i];
        const Vec2 &b = polygon[(i + 1) % polygon.size()];
        const Vec2 ab{b.x - a.x, b.y - a.y};
        const Vec2 ap{point.x - a.x, point.y - a.y};
        const double dLength2 = ab.x * ab.x + ab.y * ab.y;
        const double dAlong =
            dLength2 > 0 ? std::clamp((ap.x * ab.x + ap.y * ab.y) / dLength2, 0.0, 1.0) : 0.0;
        dNearest = std::min(dNearest, std::hypot(ap.x - dAlong * ab.x, ap.y - dAlong * ab.y));
        blInside = blInside && (ab.x * ap.y - ab.y * ap.x) * dArea >= 0;
    }
    if (dNearest < dBand) {
        return std::abs(dArea) > 1e-9 ? Cover::Edge : Cover::Outside;
    }
    return blInside ? Cover::Inside : Cover::Outside;
}

double edgeBand(const XeltDrawInfo &record, GlFlavour flavour)
{
    // How a wide line of desktop GL ends and rounds is the driver's; polygons are exact up to vertex
    // snapping.
    const bool blLine = record.nType != DRAWINFO_FILLED_AREA;
    return blLine && flavour == GlFlavour::Desktop ? 1.0 : 1.0 / 32;
}

std::vector<Polygon> overlayPolygons(const XeltDrawInfo &record, const View &view, GlFlavour flavour)
{
    const Mapping mapping(view);
    switch (record.nType) {
    case DRAWINFO_FILLED_AREA:
        return trianglesOfStrip(vertices(record, mapping, flavour));
    case DRAWINFO_POLYLINE:
    case DRAWINFO_OUTLINE:
    case DRAWINFO_OUTLINE_ALT:
        return flavour == GlFlavour::Desktop ? desktopLines(record, mapping) : widenedLines(record, mapping);
    default:
        return {};
    }
}

void renderOverlays(ReferenceImage &image, const View &view, const std::vector<XeltDrawInfo> &vecRecords,
                    GlFlavour flavour)
{
    std::vector<Shape> vecLastFirst;
    for (auto it = vecRecords.rbegin(); it != vecRecords.rend(); ++it) {
        vecLastFirst.push_back({&*it, overlayPolygons(*it, view, flavour), edgeBand(*it, flavour)});
    }
    for (int y = 0; y < image.nHeight; ++y) {
        for (int x = 0; x < image.nWidth; ++x) {
            composePixel(image, x, y, vecLastFirst);
        }
    }
}

} // namespace xelttest
