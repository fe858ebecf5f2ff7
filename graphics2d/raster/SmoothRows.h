// SPDX-License-Identifier: MIT
// The anti-aliased rows of any shape. Internal.
#pragma once

#include "graphics2d/raster/ActiveEdges.h"
#include "graphics2d/raster/SlabFill.h"

namespace KAVO {
namespace Graphics2D {

// Draws all rows. When scratch memory runs out it notes so in the context and stops.
void drawSmoothRows(MMContext2D& context, RowPainter& painter, CoverageRow& coverage,
                    ActiveEdges& active, MMFillRule rule);

} // namespace Graphics2D
} // namespace KAVO
