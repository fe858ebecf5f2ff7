// SPDX-License-Identifier: MIT
// One anti-aliased row between two edges. Internal.
#pragma once

#include "graphics2d/raster/EdgeRamp.h"

namespace KAVO {
namespace Graphics2D {

// An edge in a row that it crosses wholly, 16.16 on the pixel grid.
struct RowEdge {
    Fixed topX;
    Fixed bottomX;
    Fixed slope;         // x per row
    Fixed coverageSlope; // coverage per column of travel
};

// Leaves in the context what smoothEdges would draw the row between both from.
void storeEdges(MMContext2D& context, const RowEdge& left, const RowEdge& right);

// Draws a whole row that two edges cross without touching each other, as smoothEdges does, from
// values that the caller holds.
void drawEdgeRow(RowPainter& painter, const EdgeRamp& left, const EdgeRamp& right);

} // namespace Graphics2D
} // namespace KAVO
