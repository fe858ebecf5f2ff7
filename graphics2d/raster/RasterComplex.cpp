// SPDX-License-Identifier: MIT
// The rasteriser for any shape: self-crossing outlines, holes, many contours.
//
// A sweep from top to bottom keeps the chains of edges that cross the current row in left-to-right
// order and fills where the winding number says inside. Only where inside and outside meet is an
// edge drawn, so outlines that overlap or run back on themselves leave no trace.
//
// Without anti-aliasing a row is decided on its lower boundary, which the pixel grid makes
// the centre line of the pixels. Rows with anti-aliasing are the topic of SmoothRows.cpp.
//
// Of many upright rectangles those that are alone need no sweep: LoneRectangles.cpp draws them
// first.
//
// Cost: n log n for the local minima, and for each row n log n for the chains in it, times the
// slabs that it is cut into: one for most rows, never more than a constant number. Memory, all of
// it from the scratch stack: three words per vertex, some forty per local minimum, and the row of
// coverage; before them the map of rectangles.
#include "graphics2d/raster/RasterComplex.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/ActiveEdges.h"
#include "graphics2d/raster/LoneRectangles.h"
#include "graphics2d/raster/SmoothRows.h"

namespace KAVO {
namespace Graphics2D {

namespace {

void drawInside(RowPainter& painter, const RowPlace* place, const RowPlace* end, int32_t insideMask)
{
    int32_t winding = 0;
    Fixed start = 0;
    for (; place != end; ++place) {
        const bool was = (winding & insideMask) != 0;
        winding += place->winding;
        if (((winding & insideMask) != 0) == was) continue;
        if (!was)
            start = place->bottomX;
        else
            painter.drawSharp(start, place->bottomX);
    }
}

void drawSharp(RowPainter& painter, ActiveEdges& active, MMFillRule rule)
{
    const VertexRings& rings = active.rings();
    const PixelBox& visible = painter.visible();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const Fixed boundary = fixFromInt(row + 1);
        active.startAbove(boundary);
        RowPlace* kept = active.begin();
        for (RowPlace place : active) {
            Chain& chain = active.chainOf(place);
            bool alive = true;
            while (alive && chain.line.endY < boundary)
                alive = chain.step(rings);
            if (!alive) continue;
            place.topX = place.bottomX = chain.line.xAt(boundary);
            chain.line.moveTo(boundary, place.bottomX);
            *kept++ = place;
        }
        active.setEnd(kept);
        active.sort(0, active.size());
        painter.beginRow(row);
        drawInside(painter, active.begin(), active.end(), rule == kFillEvenOdd ? 1 : -1);
    }
}

// Draws the rectangles that are alone, and gathers the others. False when scratch memory ran out.
bool gatherOthers(VertexRings& rings, MMStackContext& stack, RowPainter& painter,
                  const PixelGrid& grid, const Contours& contours, uint32_t mapSize)
{
    LoneRectangles rectangles(stack, painter, grid, contours, mapSize);
    if (!rectangles) return false;
    const MMPoint2D* points = contours.points;
    for (uint32_t i = 0; i < contours.count; ++i) {
        const MMPoint2D* const end = contours.end(i);
        if (!rectangles.draw(points)) rings.appendRing(points, end);
        points = end;
    }
    painter.beginRow(painter.visible().top); // again one at a time
    return true;
}

// False when scratch memory ran out.
bool draw(MMContext2D& context, const PixelBox& visible, const Contours& contours,
          bool cutLongEdges, MMFillRule rule)
{
    RowPainter painter(context, visible);
    if (!painter.draws()) return true;
    MMStackContext& stack = context.scratchStack;
    const PixelGrid grid(context);
    VertexRings rings(stack, grid, cutLongEdges, contours);
    if (!rings) return false;
    const bool isSmooth = (context.antiAlias & 1) != 0;
    const uint32_t mapSize = isSmooth && !cutLongEdges && painter.blendsColour()
                                 ? LoneRectangles::mapSize(contours, visible)
                                 : 0;
    if (mapSize == 0)
        rings.appendRings(contours);
    else if (!gatherOthers(rings, stack, painter, grid, contours, mapSize))
        return false;
    rings.close(stack);
    if (rings.minimumCount() == 0) return true;
    ActiveEdges active(stack, rings);
    if (!active) return false;
    if (!isSmooth) {
        drawSharp(painter, active, rule);
        return true;
    }
    CoverageRow coverage(stack, visible);
    if (!coverage) return false;
    drawSmoothRows(context, painter, coverage, active, rule);
    return true;
}

} // namespace

void drawContours(MMContext2D& context, const Contours& contours, const BoundsUnion& bounds,
                  MMFillRule rule)
{
    const PixelBox visible = reachableBox(context, bounds);
    if (!visible.empty() && !draw(context, visible, contours, spansTooFar(bounds), rule))
        noteOutOfMemory(context);
}

} // namespace Graphics2D
} // namespace KAVO
