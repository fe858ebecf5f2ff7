// SPDX-License-Identifier: MIT
// The rasteriser for polygons that every horizontal line meets at most twice.
//
// From the topmost vertex two chains of edges run down to the lowest one: one forward through the
// vertex list, one backward. Each row lies between them. There is no edge table and no sorting; a
// row costs two additions and the strip calls, an edge one division (two with anti-aliasing). Which
// chain is on the left is looked up anew in every row, so crossed chains do no harm. Rows between
// upright edges are alike, and so is all of a rectangle, which needs no chains
// (RasterRectangle.cpp).
//
// Without anti-aliasing a row is the span between the chains' x at the row's lower boundary, which
// the pixel grid makes the centre line of the pixels. With it, rows that hold no vertex take
// the ramps of EdgeRow.cpp, and the others are cut into slabs at their vertices and summed up
// exactly in a CoverageRow.
//
// The list is the only memory taken: the vertices, and one row of coverage.
#include "graphics2d/raster/RasterMonotone.h"

#include "graphics2d/raster/EdgeLine.h"
#include "graphics2d/raster/EdgeRow.h"
#include "graphics2d/raster/PixelGrid.h"
#include "graphics2d/raster/SlabFill.h"
#include "graphics2d/raster/UprightRows.h"
#include "math/Points.h"
#include "memory/ScratchArray.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// The vertices on the pixel grid from the topmost on, without repetitions, closed by the topmost
// again.
class VertexList {
public:
    VertexList(MMStackContext& stack, const PixelGrid& grid, bool cutLongEdges,
               const MMPoint2D* points, uint32_t count)
        : grid_(grid), cutLongEdges_(cutLongEdges),
          vertices_(stack, cutLongEdges_ ? 2 * count + 2 : count + 1)
    {
        if (!vertices_) return;
        const uint32_t start = topmost(points, count);
        const MMPoint2D* point = points + start;
        uint32_t left = count + 1;
        do {
            append(*point);
            if (++point == points + count) point = points;
            // The last vertex is compared with the first point before its shift. Without one the
            // two may be the same, and the list would stay open.
        } while (--left > 1 ||
                 (left == 1 && !(grid_.shifts() && vertices_[size_ - 1] == points[0])));
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
        const MMPoint2D vertex = grid_.moved(point);
        if (size_ != 0) {
            const MMPoint2D& previous = vertices_[size_ - 1];
            if (vertex == previous) return;
            if (cutLongEdges_) vertices_[size_++] = midPoint(previous, vertex);
        }
        vertices_[size_++] = vertex;
    }

    const PixelGrid grid_;
    bool cutLongEdges_;
    uint32_t size_ = 0;
    ScratchArray<MMPoint2D> vertices_;
};

// One of the two chains: the edge it is on, and the vertices still to come.
class WalkedChain {
public:
    // Runs from one vertex toward another, step +1 or -1 at a time.
    WalkedChain(const MMPoint2D* from, const MMPoint2D* to, int32_t step)
        : vertex_(from), end_(to), step_(step), line_(EdgeLine::at(*from)), levelX_(from->x),
          level_(from->y)
    {
    }

    // Moves to the first edge that reaches below the level, or that ends on it when inclusive.
    // False when the chain has no such edge.
    bool advance(Fixed level, bool inclusive)
    {
        const Fixed least = inclusive ? level : level + 1; // of its end
        return line_.endY >= least || walkTo(least);
    }

    Fixed endX() const { return line_.endX; }
    Fixed endY() const { return line_.endY; }

    // Often asked for twice, where one slab ends and the next begins.
    [[gnu::noinline]] Fixed xAt(Fixed level)
    {
        if (level == level_) return levelX_;
        level_ = level;
        return levelX_ = line_.xAt(level);
    }

    void moveTo(Fixed level, Fixed x) { line_.moveTo(level, x); }
    bool isUpright() const { return line_.isUpright(); }
    Fixed slope() { return line_.slopePerRow(); }

    // Coverage per column of travel, for rows that the edge crosses wholly.
    Fixed coverageSlope()
    {
        if (coverageSlope_ == 0) coverageSlope_ = coverageSlopeOf(slope());
        return coverageSlope_;
    }

private:
    // As advance, from an edge that does not; least is how far down it has to end.
    [[gnu::noinline]] bool walkTo(Fixed least)
    {
        do {
            if (vertex_ == end_) return false;
            const MMPoint2D& from = *vertex_;
            vertex_ += step_;
            if (vertex_->y < from.y)
                line_ = EdgeLine::at(*vertex_); // upward: only skipped
            else
                line_ = EdgeLine::between(from, *vertex_);
        } while (line_.endY < least);
        coverageSlope_ = 0;
        level_ = line_.y;
        levelX_ = line_.x;
        return true;
    }

    static Fixed coverageSlopeOf(Fixed slope)
    {
        // Slopes below 3 / 65536 have no 16.16 reciprocal. They never leave a column far enough
        // to need it.
        if (magnitudeOf(slope) < 3) return kNoCoverageSlope;
        return fixDiv(kFixedOne, static_cast<Fixed>(magnitudeOf(slope)));
    }

    const MMPoint2D* vertex_;
    const MMPoint2D* end_;
    int32_t step_;
    EdgeLine line_;
    Fixed levelX_; // where the line is at level_
    Fixed level_;
    Fixed coverageSlope_ = 0; // 0: not computed yet
};

void drawSharp(RowPainter& painter, WalkedChain& forward, WalkedChain& backward, Fixed top,
               Fixed bottom)
{
    const PixelBox& visible = painter.visible();
    int32_t row = std::max(fixFloor(top), visible.top);
    while (row < visible.bottom) {
        Fixed boundary = fixFromInt(row + 1);
        if (boundary > bottom) return;
        if (!forward.advance(boundary, true) || !backward.advance(boundary, true)) return;
        Fixed forwardX = forward.xAt(boundary);
        Fixed backwardX = backward.xAt(boundary);
        const Fixed lowest =
            std::min({forward.endY(), backward.endY(), fixFromInt(visible.bottom)});
        // Rows to the end of the nearer edge; both edges continue straight.
        if (forward.isUpright() && backward.isUpright()) {
            const int32_t end = fixFloor(lowest);
            drawSharpUprightRows(
                painter, {std::min(forwardX, backwardX), std::max(forwardX, backwardX)}, row, end);
            row = end;
            boundary = fixFromInt(end);
        } else {
            for (;;) {
                painter.beginRow(row++);
                painter.drawSharp(std::min(forwardX, backwardX), std::max(forwardX, backwardX));
                if (boundary > lowest - kFixedOne) break;
                boundary += kFixedOne;
                forwardX = forward.endY() == boundary ? forward.xAt(boundary)
                                                      : wrapAdd(forwardX, forward.slope());
                backwardX = backward.endY() == boundary ? backward.xAt(boundary)
                                                        : wrapAdd(backwardX, backward.slope());
            }
        }
        forward.moveTo(boundary, forwardX);
        backward.moveTo(boundary, backwardX);
    }
}

// Adds what lies between two edges.
void addSlab(CoverageRow& coverage, SlabFill& slabs, const SlabEdge& a, const SlabEdge& b,
             uint32_t height)
{
    const bool aIsLeft = a.topX <= b.topX;
    if (a.topX != b.topX && a.bottomX != b.bottomX && aIsLeft != (a.bottomX < b.bottomX)) {
        const SlabEdge edges[] = {aIsLeft ? a : b, aIsLeft ? b : a};
        slabs.addCrossedPair(edges, 0, height);
        return;
    }
    const bool isLeft = a.topX != b.topX ? aIsLeft : a.bottomX < b.bottomX;
    coverage.addPiece(a.topX, a.bottomX, height, isLeft ? 1 : -1);
    coverage.addPiece(b.topX, b.bottomX, height, isLeft ? -1 : 1);
}

// Sums up the part of a row from level on, slab by slab, and draws it. Both chains reach below the
// level. Returns the level reached.
Fixed drawSlabs(RowPainter& painter, CoverageRow& coverage, SlabFill& slabs, WalkedChain& forward,
                WalkedChain& backward, Fixed level, Fixed bottom)
{
    const Fixed rowBottom = std::min(fixFromInt(fixFloor(level) + 1), bottom);
    painter.expect(fixFloor(level) + 2, forward.endX());
    painter.expect(fixFloor(level) + 2, backward.endX());
    SlabEdge a = {0, forward.xAt(level), 1};
    SlabEdge b = {0, backward.xAt(level), -1};
    for (;;) {
        const Fixed slabBottom = std::min(std::min(rowBottom, forward.endY()), backward.endY());
        a.topX = a.bottomX;
        b.topX = b.bottomX;
        a.bottomX = forward.endY() == slabBottom ? forward.endX() : forward.xAt(slabBottom);
        b.bottomX = backward.endY() == slabBottom ? backward.endX() : backward.xAt(slabBottom);
        addSlab(coverage, slabs, a, b, static_cast<uint32_t>(slabBottom - level));
        level = slabBottom;
        if (level == rowBottom) break;
        if (forward.endY() == level) {
            if (!forward.advance(level, false)) break;
            a.bottomX = forward.xAt(level);
        }
        if (backward.endY() == level) {
            if (!backward.advance(level, false)) break;
            b.bottomX = backward.xAt(level);
        }
    }
    coverage.sweep(painter);
    return rowBottom;
}

EdgeRamp rampOf(const RowEdge& edge)
{
    return EdgeRamp(edge.topX, edge.bottomX, edge.coverageSlope);
}

// Draws whole rows while no vertex lies in them. Returns the number of rows drawn; the context's
// edge state is that of the last.
int32_t drawWholeRows(MMContext2D& context, RowPainter& painter, WalkedChain& forward,
                      WalkedChain& backward, int32_t row, int32_t count)
{
    RowEdge a = {0, forward.xAt(fixFromInt(row)), forward.slope(), forward.coverageSlope()};
    RowEdge b = {0, backward.xAt(fixFromInt(row)), backward.slope(), backward.coverageSlope()};
    int32_t drawn = 0;
    bool exchanged = false;
    while (drawn < count) {
        const Fixed nextA = wrapAdd(a.bottomX, a.slope);
        const Fixed nextB = wrapAdd(b.bottomX, b.slope);
        if ((a.bottomX > b.bottomX) != (nextA > nextB) && a.bottomX != b.bottomX)
            break; // they cross
        a.topX = a.bottomX;
        b.topX = b.bottomX;
        a.bottomX = nextA;
        b.bottomX = nextB;
        exchanged = a.topX > b.topX || a.bottomX > b.bottomX;
        const RowEdge& left = exchanged ? b : a;
        const RowEdge& right = exchanged ? a : b;
        if (a.slope == 0 && b.slope == 0) {
            drawSmoothUprightRows(painter, {left.bottomX, right.bottomX}, row + drawn, row + count);
            drawn = count;
            break;
        }
        painter.beginRow(row + drawn);
        painter.expect(row + drawn + 2, left.bottomX);
        painter.expect(row + drawn + 2, right.bottomX);
        drawEdgeRow(painter, rampOf(left), rampOf(right));
        ++drawn;
    }
    if (drawn != 0) {
        painter.beginRow(row + drawn - 1);
        storeEdges(context, exchanged ? b : a, exchanged ? a : b);
    }
    forward.moveTo(fixFromInt(row + drawn), a.bottomX);
    backward.moveTo(fixFromInt(row + drawn), b.bottomX);
    return drawn;
}

void drawSmooth(MMContext2D& context, RowPainter& painter, CoverageRow& coverage, SlabFill& slabs,
                WalkedChain& forward, WalkedChain& backward, Fixed top, Fixed bottom)
{
    const PixelBox& visible = painter.visible();
    Fixed level = std::max(top, fixFromInt(visible.top));
    while (level < bottom && fixFloor(level) < visible.bottom) {
        if (!forward.advance(level, false) || !backward.advance(level, false)) return;
        const int32_t row = fixFloor(level);
        if (fixFraction(level) == 0) {
            const int32_t end =
                std::min(fixFloor(std::min(forward.endY(), backward.endY())), visible.bottom);
            if (end > row) {
                level = fixFromInt(
                    row + drawWholeRows(context, painter, forward, backward, row, end - row));
                if (fixFloor(level) == end) continue;
            }
        }
        painter.beginRow(fixFloor(level));
        level = drawSlabs(painter, coverage, slabs, forward, backward, level, bottom);
    }
}

} // namespace

bool drawMonotone(MMContext2D& context, const PixelBox& visible, Fixed lowest, bool cutLongEdges,
                  const MMPoint2D* points, uint32_t count)
{
    RowPainter painter(context, visible);
    if (!painter.draws()) return true;
    const PixelGrid grid(context);
    VertexList list(context.scratchStack, grid, cutLongEdges, points, count);
    if (!list) return false;
    WalkedChain forward(list.first(), list.last(), 1);
    WalkedChain backward(list.last(), list.first(), -1);
    const Fixed top = list.first()->y;
    const Fixed bottom = grid.moved(lowest);
    for (int32_t row = 0; row < 2; ++row)
        painter.expect(fixFloor(top) + row, list.first()->x);
    if ((context.antiAlias & 1) == 0) {
        drawSharp(painter, forward, backward, top, bottom);
        context.spanRows = 1;
        return true;
    }
    CoverageRow coverage(context.scratchStack, visible);
    if (!coverage) return false;
    // Between two edges is inside, whichever way round the polygon runs.
    SlabFill slabs(context, coverage, kFillNonZero);
    drawSmooth(context, painter, coverage, slabs, forward, backward, top, bottom);
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
