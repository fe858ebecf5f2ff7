// The rasteriser for any polygon: self-crossing outlines, holes, bridged subpaths.
//
// A sweep from top to bottom keeps the edges that cross the current row in left-to-right order and
// fills where the winding number says inside. Only edges at which inside and outside meet are
// drawn, so outlines that overlap or run back on themselves leave no trace.
//
// Without anti-aliasing a row is decided on its lower boundary, which the half-pixel shift makes
// the centre line of the pixels. With it, the row is cut into slabs at the vertices inside it, and
// the slabs' trapezoids are summed up exactly in a CoverageRow. Where the order of edges at the top
// and at the bottom of a slab differs they cross: two edges are cut at their intersection, more are
// bisected down to 1/16 of a row. A row with vertices at more than 16 levels is cut into sixteen
// equal slabs instead, so that no input makes a row cost more than that.
//
// Cost: n log n for the local minima, and a pass over the active edges per slab. Memory: three
// words per vertex, twelve words per active edge and row of coverage, all bounded by the vertices.
#include "graphics2d/ActiveEdges.h"
#include "graphics2d/CoverageRow.h"
#include "graphics2d/Rasteriser.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kLeastSlab = kFixedOne / 16;
constexpr uint32_t kMostLevels = 16;

bool bottomsDescend(const SlabEdge& a, const SlabEdge& b)
{
    return a.bottom < b.bottom;
}

bool topsDescend(const SlabEdge& a, const SlabEdge& b)
{
    return a.top != b.top ? a.top < b.top : a.bottom < b.bottom;
}

// Sorts edges that are nearly in order: by insertion, unless that would take long.
template <class Less>
void sortEdges(SlabEdge* edges, uint32_t count, Less less)
{
    uint32_t budget = 8 * count + 64;
    for (uint32_t i = 1; i < count; ++i) {
        if (!less(edges[i], edges[i - 1])) continue;
        const SlabEdge moving = edges[i];
        uint32_t to = i;
        do {
            edges[to] = edges[to - 1];
            --to;
        } while (to > 0 && less(moving, edges[to - 1]));
        edges[to] = moving;
        if (i - to > budget) {
            std::sort(edges, edges + count, less);
            return;
        }
        budget -= i - to;
    }
}

bool isSortedByBottom(const SlabEdge* edges, uint32_t count)
{
    for (uint32_t i = 1; i < count; ++i)
        if (edges[i].bottom < edges[i - 1].bottom) return false;
    return true;
}

// The few levels at which a row's vertices lie.
class LevelSet {
public:
    // False when there are too many.
    bool insert(Fixed level)
    {
        if (std::find(levels_, levels_ + count_, level) != levels_ + count_) return true;
        if (count_ == kMostLevels) return false;
        levels_[count_++] = level;
        return true;
    }

private:
    Fixed levels_[kMostLevels];
    uint32_t count_ = 0;
};

class ComplexFill {
public:
    ComplexFill(MMContext2D& context, RowPainter& painter, const VertexRing& ring,
                ActiveEdges& active, MMFillRule rule)
        : context_(context), painter_(painter), ring_(ring), active_(active),
          insideMask_(rule == kFillEvenOdd ? 1 : -1)
    {
    }

    void drawSharp();
    void drawSmooth(CoverageRow& coverage);

private:
    bool inside(int32_t winding) const { return (winding & insideMask_) != 0; }
    void drawSharpRow(int32_t row, Fixed boundary);
    Fixed slabBottomFor(Fixed level, Fixed rowBottom, Fixed nearestEnd, bool fixedSlabs) const;
    bool hasManyLevels(Fixed level, Fixed rowBottom);
    void drawSlab(CoverageRow& coverage, Fixed level, Fixed slabBottom, bool fixedSlabs);
    int32_t addOrdered(CoverageRow& coverage, const SlabEdge* edges, uint32_t count,
                       int32_t winding, uint32_t height);
    void addCrossing(CoverageRow& coverage, const SlabEdge* edges, uint32_t count, int32_t winding,
                     uint32_t height);

    MMContext2D& context_;
    RowPainter& painter_;
    const VertexRing& ring_;
    ActiveEdges& active_;
    int32_t insideMask_; // winding numbers that share a bit with it are inside
};

void ComplexFill::drawSharp()
{
    const PixelBox& visible = painter_.visible();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const Fixed boundary = fixFromInt(row + 1);
        if (!active_.startChains(boundary, false)) return;
        active_.advance(boundary, true);
        for (SlabEdge *place = active_.begin(), *end = place + active_.size(); place != end;
             ++place) {
            EdgeLine& line = active_.edgeOf(*place).line;
            place->top = place->bottom = line.xAt(boundary);
            line.moveTo(boundary, place->bottom);
        }
        sortEdges(active_.begin(), active_.size(), bottomsDescend);
        drawSharpRow(row, boundary);
    }
}

void ComplexFill::drawSharpRow(int32_t row, Fixed)
{
    painter_.beginRow(row);
    int32_t winding = 0;
    Fixed left = 0;
    const SlabEdge* edges = active_.begin();
    for (uint32_t i = 0; i < active_.size(); ++i) {
        const bool was = inside(winding);
        winding += edges[i].winding;
        if (inside(winding) == was) continue;
        if (!was)
            left = edges[i].bottom;
        else
            painter_.add(std::max(fixFloor(left), painter_.visible().left),
                         std::min(fixFloor(edges[i].bottom), painter_.visible().right), kWholeArea);
    }
    painter_.flush();
}

void ComplexFill::drawSmooth(CoverageRow& coverage)
{
    const PixelBox& visible = painter_.visible();
    const Fixed bottom = fixFromInt(visible.bottom);
    Fixed level = fixFromInt(visible.top);
    for (;;) {
        if (active_.empty()) {
            Fixed next = 0;
            if (!active_.nextMinimumY(next)) return;
            level = std::max(level, next);
        }
        if (level >= bottom) return;
        const int32_t row = fixFloor(level);
        const Fixed rowBottom = fixFromInt(row + 1);
        painter_.beginRow(row);
        bool fixedSlabs = false;
        bool counted = false;
        while (level < rowBottom) {
            if (!active_.startChains(level, true)) return;
            const Fixed nearestEnd = active_.advance(level, false);
            if (!counted) {
                fixedSlabs = hasManyLevels(level, rowBottom);
                counted = true;
            }
            const Fixed slabBottom = slabBottomFor(level, rowBottom, nearestEnd, fixedSlabs);
            drawSlab(coverage, level, slabBottom, fixedSlabs);
            level = slabBottom;
        }
        coverage.sweep(painter_);
    }
}

Fixed ComplexFill::slabBottomFor(Fixed level, Fixed rowBottom, Fixed nearestEnd,
                                 bool fixedSlabs) const
{
    if (fixedSlabs) return std::min(rowBottom, (level | (kLeastSlab - 1)) + 1);
    Fixed bottom = std::min(rowBottom, nearestEnd);
    Fixed next = 0;
    if (active_.nextMinimumY(next) && next < bottom) bottom = next;
    return bottom;
}

// Whether the rest of the row holds vertices at too many levels. Local minima do not count: the
// chains that start there end at vertices too.
bool ComplexFill::hasManyLevels(Fixed level, Fixed rowBottom)
{
    LevelSet levels;
    for (uint32_t i = 0; i < active_.size(); ++i) {
        const ActiveEdge& edge = active_.edgeOf(active_.begin()[i]);
        uint32_t vertex = edge.vertex;
        for (Fixed y = edge.line.endY, above = level; y < rowBottom && y >= above;) {
            if (!levels.insert(y)) return true;
            above = y;
            vertex = ring_.next(vertex, edge.winding);
            y = ring_[vertex].y;
        }
    }
    return false;
}

void ComplexFill::drawSlab(CoverageRow& coverage, Fixed level, Fixed slabBottom, bool fixedSlabs)
{
    SlabEdge* edges = active_.begin();
    const uint32_t count = active_.size();
    if (fixedSlabs) active_.advance(slabBottom, true);
    for (uint32_t i = 0; i < active_.size(); ++i) {
        EdgeLine& line = active_.edgeOf(edges[i]).line;
        edges[i].top = edges[i].bottom;
        edges[i].bottom = line.xAt(slabBottom);
        if ((slabBottom & 0xFFFF) == 0) line.moveTo(slabBottom, edges[i].bottom);
    }
    (void)count;
    sortEdges(edges, active_.size(), topsDescend);
    const uint32_t height = static_cast<uint32_t>(slabBottom - level);
    if (isSortedByBottom(edges, active_.size())) {
        addOrdered(coverage, edges, active_.size(), 0, height);
        return;
    }
    addCrossing(coverage, edges, active_.size(), 0, height);
    sortEdges(edges, active_.size(), bottomsDescend);
}

// Adds the edges at which the polygon begins and ends; they do not cross. Returns the winding
// number right of them.
int32_t ComplexFill::addOrdered(CoverageRow& coverage, const SlabEdge* edges, uint32_t count,
                                int32_t winding, uint32_t height)
{
    for (uint32_t i = 0; i < count; ++i) {
        const bool was = inside(winding);
        winding += edges[i].winding;
        if (inside(winding) != was)
            coverage.addPiece(edges[i].top, edges[i].bottom, height, was ? -1 : 1);
    }
    return winding;
}

// Adds edges that cross, bisecting the slab.
void ComplexFill::addCrossing(CoverageRow& coverage, const SlabEdge* edges, uint32_t count,
                              int32_t winding, uint32_t height)
{
    ScratchArray<SlabEdge> half(context_.scratchStack, count);
    if (!half) {
        context_.outOfMemory |= kScratchExhausted;
        return;
    }
    const auto middle = [](const SlabEdge& e) { return (e.top >> 1) + (e.bottom >> 1); };
    for (uint32_t i = 0; i < count; ++i) {
        half[i] = edges[i];
        half[i].bottom = middle(edges[i]);
    }
    const bool smallest = height <= kLeastSlab;
    if (smallest) {
        std::copy_n(edges, count, half.data());
        std::sort(half.data(), half.data() + count,
                  [&](const SlabEdge& a, const SlabEdge& b) { return middle(a) < middle(b); });
        addOrdered(coverage, half.data(), count, winding, height);
        return;
    }
    const uint32_t upper = height / 2;
    if (isSortedByBottom(half.data(), count))
        addOrdered(coverage, half.data(), count, winding, upper);
    else
        addCrossing(coverage, half.data(), count, winding, upper);
    for (uint32_t i = 0; i < count; ++i) {
        half[i] = edges[i];
        half[i].top = middle(edges[i]);
    }
    sortEdges(half.data(), count, topsDescend);
    if (isSortedByBottom(half.data(), count))
        addOrdered(coverage, half.data(), count, winding, height - upper);
    else
        addCrossing(coverage, half.data(), count, winding, height - upper);
}

} // namespace

void fillComplexPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count,
                        MMFillRule rule)
{
    if (count < 3) return;
    const PixelBox visible = boundPolygon(context, points, count);
    if (visible.empty()) return;
    RowPainter painter(context, visible);
    if (!painter.draws()) return;

    VertexRing ring(context, points, count);
    if (!ring) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    if (ring.minimumCount() == 0) return;
    ActiveEdges active(context, ring);
    if (!active) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    ComplexFill fill(context, painter, ring, active, rule);
    if ((context.antiAlias & 1) == 0) {
        fill.drawSharp();
        return;
    }
    CoverageRow coverage(context.scratchStack, visible);
    if (!coverage) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    fill.drawSmooth(coverage);
}

} // namespace Graphics2D
} // namespace KAVO
