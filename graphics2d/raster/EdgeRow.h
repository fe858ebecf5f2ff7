// SPDX-License-Identifier: MIT
// One anti-aliased row between two edges. Internal.
#pragma once

#include "graphics2d/raster/EdgeRamp.h"

namespace KAVO {
namespace Graphics2D {

// Draws a whole row that two edges cross without touching each other, as smoothEdges does, from
// values that the caller holds.
void drawEdgeRow(RowPainter& painter, const EdgeRamp& left, const EdgeRamp& right);

} // namespace Graphics2D
} // namespace KAVO
