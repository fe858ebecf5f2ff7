// SPDX-License-Identifier: MIT
// The rasteriser for any shape. Internal.
#pragma once

#include "graphics2d/raster/Contours.h"
#include "graphics2d/raster/PolygonBounds.h"

namespace KAVO {
namespace Graphics2D {

// Draws contours with the given bounds. Notes in the context when scratch memory runs out.
void drawContours(MMContext2D& context, const Contours& contours, const BoundsUnion& bounds,
                  MMFillRule rule);

} // namespace Graphics2D
} // namespace KAVO
