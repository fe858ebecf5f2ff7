// SPDX-License-Identifier: MIT
// The rasteriser for polygons that every horizontal line meets at most twice. Internal.
#pragma once

#include "graphics2d/raster/PolygonBounds.h"
#include "graphics2d/raster/Rasteriser.h"

namespace KAVO {
namespace Graphics2D {

// Draws a polygon of one point or more with the given bounds. Any other polygon than a monotone one
// is drawn wrongly, but safely. Notes in the context when scratch memory runs out.
void drawMonotone(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                  const BoundsUnion& bounds, bool cutLongEdges, ThinShapes thinShapes);

} // namespace Graphics2D
} // namespace KAVO
