// SPDX-License-Identifier: MIT
// Rows between two upright edges, which are all alike: fillers that know how to draw several of
// them at once. Internal.
#pragma once

#include "graphics2d/raster/RowPainter.h"

namespace KAVO {
namespace Graphics2D {

// The coverage slope of edges that never leave their column far enough to need one.
constexpr Fixed kNoCoverageSlope = 0x7FFFFFFF;

// Two edges, x on the pixel grid.
struct UprightEdges {
    Fixed left;
    Fixed right;
};

// Draws rows from row on and before end, without anti-aliasing.
void drawSharpUprightRows(RowPainter& painter, const UprightEdges& edges, int32_t row, int32_t end);

// The same with it.
void drawSmoothUprightRows(RowPainter& painter, const UprightEdges& edges, int32_t row,
                           int32_t end);

} // namespace Graphics2D
} // namespace KAVO
