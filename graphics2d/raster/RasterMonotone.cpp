// SPDX-License-Identifier: MIT
// The rasteriser for polygons that every horizontal line meets at most twice.
//
// From the topmost vertex two chains of edges run down to the lowest one: one forward through the
// vertex list, one backward. Each row lies between them. There is no edge table and no sorting; a
// row costs two additions and the strip calls, an edge one division (two with anti-aliasing). Which
// chain is on the left is looked up anew in every row, so crossed chains do no harm.
//
// Without anti-aliasing a row is the span between the chains' x at the row's lower boundary, which
// the half-pixel shift makes the centre line of the pixels. With it, rows that hold no vertex take
// the ramps of SmoothEdges.cpp, and the others are cut into slabs at their vertices and summed up
// exactly in a CoverageRow.
//
// The list is the only memory taken: the vertices, and one row of coverage.
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/EdgeLine.h"
#include "graphics2d/raster/EdgeRow.h"
#include "graphics2d/raster/Rasteriser.h"
#include "graphics2d/raster/SlabFill.h"
#include "graphics2d/raster/ThinPolygon.h"
#include "memory/ScratchArray.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// The shifted vertices from the topmost on, without repetitions, closed by the topmost again.
class VertexList {
public:
    VertexList(MMStackContext& stack, bool cutLongEdges, const MMPoint2D* points, uint32_t count)
        : cutLongEdges_(cutLongEdges), vertices_(stack, cutLongEdges_ ? 2 * count + 2 : count + 1)
    {
        if (!vertices_) return;
        const uint32_t start = topmost(points, count);
        for (uint32_t i = start; i < count; ++i)
            append(points[i]);
        for (uint32_t i = 0; i < start; ++i)
            append(points[i]);
        // The last vertex is compared with the first point before its shift.
        if (vertices_[size_ - 1] != points[0]) append(points[start]);
        vertices_.resize(size_);
    }

    explicit operator bool() const { return static_cast<bool>(vertices_); }
    const MMPoint2D* first() { return vertices_.data(); }
    const MMPoint2D* last() { return vertices_.data() + size_ - 1; }

private:
    static uint32_t topmost(const MMPoint2D* points, uint32_t count)
    {
        uint32_t best = 0;
        for (uint32_t i = 1; i < count; ++i) {
            const MMPoint2D& p = points[i];
            if (p.y < points[best].y || (p.y == points[best].y && p.x < points[best].x)) best = i;
        }
        return best;
    }

    void append(const MMPoint2D& point)
    {
        const MMPoint2D vertex{shiftedByHalf(point.x), shiftedByHalf(point.y)};
        if (size_ != 0) {
            const MMPoint2D& previous = vertices_[size_ - 1];
            if (vertex == previous) return;
            if (cutLongEdges_) vertices_[size_++] = midPoint(previous, vertex);
        }
        vertices_[size_++] = vertex;
    }

    bool cutLongEdges_;
    uint32_t size_ = 0;
    ScratchArray<MMPoint2D> vertices_;
};

// One of the two chains: the edge it is on, and the vertices still to come.
class SideChain {
public:
    // Runs from one vertex toward another, step +1 or -1 at a time.
    SideChain(const MMPoint2D* from, const MMPoint2D* to, int32_t step)
        : vertex_(from), end_(to), step_(step), line_(EdgeLine::at(*from))
    {
    }

    // Moves to the first edge that reaches below the level, or that ends on it when inclusive.
    // False when the chain has no such edge.
    [[gnu::noinline]] bool advance(Fixed level, bool inclusive)
    {
        bool moved = false;
        while (line_.endY < level || (!inclusive && line_.endY == level)) {
            if (vertex_ == end_) return false;
            const MMPoint2D& from = *vertex_;
            vertex_ += step_;
            if (vertex_->y < from.y)
                line_ = EdgeLine::at(*vertex_); // upward: only skipped
            else
                line_ = EdgeLine::between(from, *vertex_);
            moved = true;
        }
        if (moved) coverageSlope_ = 0;
        return true;
    }

    Fixed endX() const { return line_.endX; }
    Fixed endY() const { return line_.endY; }
    Fixed xAt(Fixed level) { return line_.xAt(level); }
    void moveTo(Fixed level, Fixed x) { line_.moveTo(level, x); }
    Fixed slope() { return line_.slopePerRow(); }

    // Coverage per column of travel, for rows that the edge crosses wholly.
    Fixed coverageSlope()
    {
        if (coverageSlope_ == 0) coverageSlope_ = coverageSlopeOf(slope());
        return coverageSlope_;
    }

private:
    static Fixed coverageSlopeOf(Fixed slope)
    {
        // Slopes below 3 / 65536 have no 16.16 reciprocal. They never leave a column far enough
        // to need it.
        if (magnitudeOf(slope) < 3) return 0x7FFFFFFF;
        return slopeOf(kFixedOne, static_cast<Fixed>(magnitudeOf(slope)));
    }

    const MMPoint2D* vertex_;
    const MMPoint2D* end_;
    int32_t step_;
    EdgeLine line_;
    Fixed coverageSlope_ = 0; // 0: not computed yet
};

void drawSharp(RowPainter& painter, SideChain& left, SideChain& right, Fixed top, Fixed bottom)
{
    const PixelBox& visible = painter.visible();
    int32_t row = std::max(fixFloor(top), visible.top);
    while (row < visible.bottom) {
        Fixed boundary = fixFromInt(row + 1);
        if (boundary > bottom) return;
        if (!left.advance(boundary, true) || !right.advance(boundary, true)) return;
        Fixed leftX = left.xAt(boundary);
        Fixed rightX = right.xAt(boundary);
        const Fixed lowest = std::min({left.endY(), right.endY(), fixFromInt(visible.bottom)});
        // Rows to the end of the nearer edge; both edges continue straight.
        for (;;) {
            painter.beginRow(row++);
            painter.drawSharp(std::min(leftX, rightX), std::max(leftX, rightX));
            if (boundary > lowest - kFixedOne) break;
            boundary += kFixedOne;
            leftX = left.endY() == boundary ? left.xAt(boundary) : wrapAdd(leftX, left.slope());
            rightX =
                right.endY() == boundary ? right.xAt(boundary) : wrapAdd(rightX, right.slope());
        }
        left.moveTo(boundary, leftX);
        right.moveTo(boundary, rightX);
    }
}

// Sums up the part of a row from level on, slab by slab, and draws it. Returns the level reached.
Fixed drawSlabs(RowPainter& painter, CoverageRow& coverage, SlabFill& slabs, SideChain& left,
                SideChain& right, Fixed level, Fixed bottom)
{
    const Fixed rowBottom = std::min(fixFromInt(fixFloor(level) + 1), bottom);
    painter.expect(fixFloor(level) + 2, left.endX());
    painter.expect(fixFloor(level) + 2, right.endX());
    while (level < rowBottom && left.advance(level, false) && right.advance(level, false)) {
        const Fixed slabBottom = std::min({rowBottom, left.endY(), right.endY()});
        SlabEdge edges[] = {{left.xAt(level), left.xAt(slabBottom), 1},
                            {right.xAt(level), right.xAt(slabBottom), -1}};
        const uint32_t height = static_cast<uint32_t>(slabBottom - level);
        if (edges[0].top <= edges[1].top && edges[0].bottom <= edges[1].bottom)
            slabs.addOrdered(edges, 2, 0, height);
        else
            slabs.add(edges, 2, 0, height);
        level = slabBottom;
    }
    coverage.sweep(painter);
    return rowBottom;
}

// Draws whole rows while no vertex lies in them. Returns the number of rows drawn.
int32_t drawWholeRows(RowPainter& painter, SideChain& left, SideChain& right, int32_t row,
                      int32_t count)
{
    Fixed leftX = left.xAt(fixFromInt(row));
    Fixed rightX = right.xAt(fixFromInt(row));
    const Fixed leftSlope = left.slope();
    const Fixed rightSlope = right.slope();
    const Fixed leftCoverage = left.coverageSlope();
    const Fixed rightCoverage = right.coverageSlope();
    int32_t drawn = 0;
    while (drawn < count) {
        const Fixed leftNext = wrapAdd(leftX, leftSlope);
        const Fixed rightNext = wrapAdd(rightX, rightSlope);
        if ((leftX > rightX) != (leftNext > rightNext) && leftX != rightX) break; // they cross
        const EdgeRamp a(leftX, leftNext, leftCoverage);
        const EdgeRamp b(rightX, rightNext, rightCoverage);
        const bool exchanged = leftX > rightX || leftNext > rightNext;
        // Between upright edges all rows are alike.
        const int32_t end = leftSlope == 0 && rightSlope == 0 ? count : drawn + 1;
        for (; drawn < end; ++drawn) {
            painter.beginRow(row + drawn);
            painter.expect(row + drawn + 2, leftNext);
            painter.expect(row + drawn + 2, rightNext);
            drawEdgeRow(painter, exchanged ? b : a, exchanged ? a : b);
        }
        leftX = leftNext;
        rightX = rightNext;
    }
    left.moveTo(fixFromInt(row + drawn), leftX);
    right.moveTo(fixFromInt(row + drawn), rightX);
    return drawn;
}

void drawSmooth(RowPainter& painter, CoverageRow& coverage, SlabFill& slabs, SideChain& left,
                SideChain& right, Fixed top, Fixed bottom)
{
    const PixelBox& visible = painter.visible();
    Fixed level = std::max(top, fixFromInt(visible.top));
    while (level < bottom && fixFloor(level) < visible.bottom) {
        if (!left.advance(level, false) || !right.advance(level, false)) return;
        const int32_t row = fixFloor(level);
        if (fixFraction(level) == 0) {
            const int32_t end =
                std::min(fixFloor(std::min(left.endY(), right.endY())), visible.bottom);
            if (end > row) {
                level = fixFromInt(row + drawWholeRows(painter, left, right, row, end - row));
                if (fixFloor(level) == end) continue;
            }
        }
        painter.beginRow(fixFloor(level));
        level = drawSlabs(painter, coverage, slabs, left, right, level, bottom);
    }
}

// False when scratch memory ran out.
bool drawChains(MMContext2D& context, const PixelBox& visible, const BoundsUnion& bounds,
                const MMPoint2D* points, uint32_t count)
{
    RowPainter painter(context, visible);
    if (!painter.draws()) return true;
    VertexList list(context.scratchStack, spansTooFar(bounds), points, count);
    if (!list) return false;
    SideChain left(list.first(), list.last(), 1);
    SideChain right(list.last(), list.first(), -1);
    const Fixed top = list.first()->y;
    const Fixed bottom = shiftedByHalf(bounds.maxY);
    if ((context.antiAlias & 1) == 0) {
        drawSharp(painter, left, right, top, bottom);
        return true;
    }
    CoverageRow coverage(context.scratchStack, visible);
    if (!coverage) return false;
    // Between two edges is inside, whichever way round the polygon runs.
    SlabFill slabs(context, coverage, kFillNonZero);
    drawSmooth(painter, coverage, slabs, left, right, top, bottom);
    return true;
}

} // namespace

BoundsUnion fillMonotonePolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                                ThinShapes thinShapes)
{
    if (count < 3) return {};
    const BoundsUnion bounds = boundsOfPolygon(points, count);
    const PixelBox visible = reachableBox(context, bounds);
    if (visible.empty()) return bounds;
    const bool smooth = (context.antiAlias & 1) != 0;
    if (smooth && thinShapes == ThinShapes::kOneSpan && isThinPolygon(bounds))
        drawThinPolygon(context, bounds, visible);
    else if (!drawChains(context, visible, bounds, points, count))
        noteOutOfMemory(context);
    return bounds;
}

} // namespace Graphics2D
} // namespace KAVO
