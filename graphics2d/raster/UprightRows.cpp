// SPDX-License-Identifier: MIT
#include "graphics2d/raster/UprightRows.h"

#include "graphics2d/Redirection.h"
#include "graphics2d/raster/EdgeRow.h"

namespace KAVO {
namespace Graphics2D {

void drawSharpUprightRows(RowPainter& painter, const UprightEdges& edges, int32_t row, int32_t end)
{
    const int32_t atOnce = painter.rowsAtOnce(true);
    for (; row < end; row += atOnce) {
        painter.beginRow(row, std::min(atOnce, end - row));
        painter.drawSharp(edges.left, edges.right);
    }
}

void drawSmoothUprightRows(RowPainter& painter, const UprightEdges& edges, int32_t row, int32_t end)
{
    const EdgeRamp left(edges.left, edges.left, kNoCoverageSlope);
    const EdgeRamp right(edges.right, edges.right, kNoCoverageSlope);
    if constexpr (kHasLayers) row += painter.hiddenRows(row, end - row);
    const int32_t atOnce = painter.rowsAtOnce(left.columns() == 0 && right.columns() == 0);
    for (; row < end; row += atOnce) {
        painter.beginRow(row, std::min(atOnce, end - row));
        painter.expect(row + 2, edges.left);
        painter.expect(row + 2, edges.right);
        drawEdgeRow(painter, left, right);
    }
}

} // namespace Graphics2D
} // namespace KAVO
