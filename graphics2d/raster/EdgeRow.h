// SPDX-License-Identifier: MIT
// One anti-aliased row between two edges. Internal.
#pragma once

#include "graphics2d/raster/EdgeRamp.h"

namespace KAVO {
namespace Graphics2D {

// Draws a row that two edges cross without touching each other, or a part of its height: the edge
// alphas, 255 for a whole row, say how much of it lies beside each edge. This is what smoothEdges
// does, from values that the caller holds.
void drawEdgeRow(RowPainter& painter, const EdgeRamp& left, const EdgeRamp& right,
                 uint8_t leftAlpha, uint8_t rightAlpha);

} // namespace Graphics2D
} // namespace KAVO
