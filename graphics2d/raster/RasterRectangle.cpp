// SPDX-License-Identifier: MIT
// Rectangles are what is drawn most, and need no chains of edges: the rows between their upright
// sides are alike, but for the first and the last one where these are partial.
#include "graphics2d/raster/RasterRectangle.h"

#include "graphics2d/raster/CoverageRow.h"
#include "graphics2d/raster/EdgeLine.h"
#include "graphics2d/raster/EdgeRow.h"
#include "graphics2d/raster/PixelGrid.h"
#include "graphics2d/raster/UprightRows.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Draws the part of a row between two levels. False when scratch memory ran out.
[[gnu::noinline]] bool drawPartOfRow(MMContext2D& context, RowPainter& painter,
                                     const UprightEdges& edges, Fixed top, Fixed bottom)
{
    CoverageRow coverage(context.scratchStack, painter.visible());
    if (!coverage) return false;
    const auto height = static_cast<uint32_t>(bottom - top);
    painter.beginRow(fixFloor(top));
    coverage.addPiece(edges.left, edges.left, height, 1);
    coverage.addPiece(edges.right, edges.right, height, -1);
    coverage.sweep(painter);
    return true;
}

bool drawSmooth(MMContext2D& context, RowPainter& painter, const UprightEdges& edges, Fixed top,
                Fixed bottom)
{
    const PixelBox& visible = painter.visible();
    top = std::max(top, fixFromInt(visible.top));
    int32_t row = fixFloor(top);
    if (top >= bottom || row >= visible.bottom) return true;
    if (fixFraction(top) != 0) {
        ++row;
        if (!drawPartOfRow(context, painter, edges, top, std::min(fixFromInt(row), bottom)))
            return false;
    }
    const int32_t end = std::min(fixFloor(bottom), visible.bottom);
    if (row < end) {
        drawSmoothUprightRows(painter, edges, row, end);
        painter.beginRow(end - 1);
        storeEdges(context, {edges.left, edges.left, 0, kNoCoverageSlope},
                   {edges.right, edges.right, 0, kNoCoverageSlope});
        row = end;
    }
    const Fixed level = fixFromInt(row);
    return level >= bottom || row >= visible.bottom ||
           drawPartOfRow(context, painter, edges, level, bottom);
}

} // namespace

bool isUprightRectangle(const MMPoint2D* points, uint32_t count)
{
    if (count != 4 && (count != 5 || points[4] != points[0])) return false;
    const MMPoint2D beside = {points[2].x, points[0].y};
    const MMPoint2D below = {points[0].x, points[2].y};
    return (points[1] == beside && points[3] == below) ||
           (points[1] == below && points[3] == beside);
}

bool isPlainRectangle(const MMPoint2D* points, uint32_t count)
{
    if (!isUprightRectangle(points, count)) return false;
    const MMPoint2D &a = points[0], &b = points[2];
    // Edges of less height are steps. Where the pixel grid ends, drawMonotone may leave a side out.
    constexpr Fixed kFar = 0x7FFF0000;
    return a.x != b.x && magnitudeOf(wrapSub(a.y, b.y)) > kStepHeight && a.x < kFar && a.y < kFar &&
           b.x < kFar && b.y < kFar;
}

bool drawRectangle(MMContext2D& context, const PixelBox& visible, const MMPoint2D& corner,
                   const MMPoint2D& opposite)
{
    RowPainter painter(context, visible);
    if (!painter.draws()) return true;
    const PixelGrid grid(context);
    const MMPoint2D a = grid.moved(corner), b = grid.moved(opposite);
    const UprightEdges edges = {std::min(a.x, b.x), std::max(a.x, b.x)};
    const Fixed top = std::min(a.y, b.y), bottom = std::max(a.y, b.y);
    if ((context.antiAlias & 1) != 0) return drawSmooth(context, painter, edges, top, bottom);
    drawSharpUprightRows(painter, edges, std::max(fixFloor(top), visible.top),
                         std::min(fixFloor(bottom), visible.bottom));
    context.spanRows = 1;
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
