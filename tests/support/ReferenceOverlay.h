// How an overlay record covers the device pixels, worked out from geometry alone.
#pragma once

#include "Reference.h"

#include <array>
#include <vector>

namespace xelttest {

struct Vec2
{
    double x;
    double y;
};
using Polygon = std::vector<Vec2>; // convex, device pixels from the top left

// The convex pieces that a record is drawn as, in device pixels. Empty when nothing is to be drawn.
std::vector<Polygon> overlayPolygons(const XeltDrawInfo &record, const View &view, GlFlavour flavour);

enum class Cover { Outside, Edge, Inside };

// Where a pixel centre lies: within dBand of the polygon's border counts as Edge.
Cover coverOf(const Polygon &polygon, const Vec2 &point, double dBand);

// Half the width, in device pixels, of the band around a shape's edge that is not compared.
double edgeBand(const XeltDrawInfo &record, GlFlavour flavour);

} // namespace xelttest
