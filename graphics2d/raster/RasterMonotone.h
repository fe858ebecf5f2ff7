// SPDX-License-Identifier: MIT
// The rasteriser for polygons that every horizontal line meets at most twice. Internal.
#pragma once

#include "graphics2d/PixelBox.h"
#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// Draws what is visible of a polygon of one point or more, which reaches down to y = lowest. Any
// other polygon than a monotone one is drawn wrongly, but safely. Long edges are to be cut where it
// spans too far (PolygonBounds.h). False when scratch memory ran out.
bool drawMonotone(MMContext2D& context, const PixelBox& visible, Fixed lowest, bool cutLongEdges,
                  const MMPoint2D* points, uint32_t count);

} // namespace Graphics2D
} // namespace KAVO
