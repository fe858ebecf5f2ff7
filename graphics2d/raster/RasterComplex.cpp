// SPDX-License-Identifier: MIT
// The rasteriser for any polygon: self-crossing outlines, holes, bridged subpaths.
//
// A sweep from top to bottom keeps the chains of edges that cross the current row in left-to-right
// order and fills where the winding number says inside. Only where inside and outside meet is an
// edge drawn, so outlines that overlap or run back on themselves leave no trace.
//
// Without anti-aliasing a row is decided on its lower boundary, which the half-pixel shift makes
// the centre line of the pixels. Rows with anti-aliasing are the topic of SmoothRows.cpp.
//
// Cost: n log n for the local minima, and for each row n log n for the chains in it, times the
// slabs that it is cut into: one for most rows, never more than a constant number. Memory: three
// words per vertex and eighteen per local minimum of the scratch stack, the row of coverage, and
// from the heap a pool of 24 words per vertex.
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/ActiveEdges.h"
#include "graphics2d/raster/Rasteriser.h"
#include "graphics2d/raster/SmoothRows.h"

namespace KAVO {
namespace Graphics2D {

namespace {

void drawSharpRow(RowPainter& painter, const RowPlace* place, const RowPlace* end,
                  int32_t insideMask)
{
    int32_t winding = 0;
    Fixed left = 0;
    for (; place != end; ++place) {
        const bool was = (winding & insideMask) != 0;
        winding += place->winding;
        if (((winding & insideMask) != 0) == was) continue;
        if (!was)
            left = place->bottom;
        else
            painter.drawSharp(left, place->bottom);
    }
}

void drawSharp(RowPainter& painter, const VertexRing& ring, ActiveEdges& active, MMFillRule rule)
{
    const PixelBox& visible = painter.visible();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const Fixed boundary = fixFromInt(row + 1);
        active.startAbove(boundary);
        RowPlace* kept = active.begin();
        for (RowPlace place : active) {
            Chain& chain = active.chainOf(place);
            bool alive = true;
            while (alive && chain.line.endY < boundary)
                alive = chain.step(ring);
            if (!alive) {
                active.drop(place);
                continue;
            }
            place.top = place.bottom = chain.line.xAt(boundary);
            chain.line.moveTo(boundary, place.bottom);
            *kept++ = place;
        }
        active.setEnd(kept);
        active.sort(0, active.size());
        painter.beginRow(row);
        drawSharpRow(painter, active.begin(), active.end(), rule == kFillEvenOdd ? 1 : -1);
    }
}

// False when scratch memory ran out.
bool drawPolygon(MMContext2D& context, const PixelBox& visible, const BoundsUnion& bounds,
                 const MMPoint2D* points, uint32_t count, MMFillRule rule)
{
    RowPainter painter(context, visible);
    if (!painter.draws()) return true;
    VertexRing ring(context.scratchStack, spansTooFar(bounds), points, count);
    if (!ring) return false;
    if (ring.minimumCount() == 0) return true;
    ActiveEdges active(context, ring);
    if (!active) return false;
    if ((context.antiAlias & 1) == 0) {
        drawSharp(painter, ring, active, rule);
        return true;
    }
    CoverageRow coverage(context.scratchStack, visible);
    if (!coverage) return false;
    drawSmoothRows(context, painter, coverage, ring, active, rule);
    return true;
}

} // namespace

BoundsUnion fillComplexPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                               MMFillRule rule)
{
    if (count < 3) return {};
    const BoundsUnion bounds = boundsOfPolygon(points, count);
    const PixelBox visible = reachableBox(context, bounds);
    if (!visible.empty() && !drawPolygon(context, visible, bounds, points, count, rule))
        noteOutOfMemory(context);
    return bounds;
}

} // namespace Graphics2D
} // namespace KAVO
