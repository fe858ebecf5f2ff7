// SPDX-License-Identifier: MIT
// The rasteriser for polygons that every horizontal line meets at most twice. Internal.
#pragma once

#include "graphics2d/PixelBox.h"
#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// Draws a polygon of one point or more, whose lowest one is given. Any other polygon than a
// monotone one is drawn wrongly, but safely. False when scratch memory ran out.
bool drawMonotone(MMContext2D& context, const PixelBox& visible, Fixed lowest, bool cutLongEdges,
                  const MMPoint2D* points, uint32_t count);

} // namespace Graphics2D
} // namespace KAVO
