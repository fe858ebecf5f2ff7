// SPDX-License-Identifier: MIT
// One anti-aliased row between two edges. Internal.
#pragma once

#include "graphics2d/raster/EdgeRamp.h"

namespace KAVO {
namespace Graphics2D {

// Draws a row whose edges cross it from top to bottom without touching each other.
void drawEdgeRow(RowPainter& painter, const EdgeRamp& left, const EdgeRamp& right);

} // namespace Graphics2D
} // namespace KAVO
