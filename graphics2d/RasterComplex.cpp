// The rasteriser for any polygon: self-crossing outlines, holes, bridged subpaths.
//
// A sweep from top to bottom keeps the chains of edges that cross the current row in left-to-right
// order and fills where the winding number says inside. Only where inside and outside meet is an
// edge drawn, so outlines that overlap or run back on themselves leave no trace.
//
// Without anti-aliasing a row is decided on its lower boundary, which the half-pixel shift makes
// the centre line of the pixels.
//
// With anti-aliasing the row falls into clusters: neighbouring chains whose extents in the row
// overlap. Between clusters the winding number is the same all the way down the row, so each is
// settled on its own. A single chain is added to the row's coverage along all its edges. Several
// are cut into slabs at the vertices inside the row and settled slab by slab; a cluster with
// vertices at more than 16 levels takes sixteen equal slabs instead, so that no input makes a row
// cost more than that. Rows without vertices are one slab.
//
// Cost: n log n for the local minima, and a pass over the chains per row. Memory: three words per
// vertex, sixteen per local minimum, and the row of coverage.
#include "graphics2d/ActiveEdges.h"
#include "graphics2d/NearlySorted.h"
#include "graphics2d/Rasteriser.h"
#include "graphics2d/SlabFill.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

bool isLeftOf(const RowPlace& a, const RowPlace& b)
{
    return a.minX != b.minX ? a.minX < b.minX : a.maxX < b.maxX;
}

// --- Without anti-aliasing
// ------------------------------------------------------------------------

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
            left = place->minX;
        else
            painter.add(std::max(fixFloor(left), painter.visible().left),
                        std::min(fixFloor(place->minX), painter.visible().right), kWholeArea);
    }
    painter.flush();
}

void drawSharp(RowPainter& painter, const VertexRing& ring, ActiveEdges& active, MMFillRule rule)
{
    const PixelBox& visible = painter.visible();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const Fixed boundary = fixFromInt(row + 1);
        active.startAbove(boundary);
        RowPlace* kept = active.begin();
        for (RowPlace place : active) {
            ActiveEdge& edge = active.edgeOf(place);
            bool alive = true;
            while (alive && edge.line.endY < boundary)
                alive = edge.step(ring);
            if (!alive) {
                active.drop(place);
                continue;
            }
            place.minX = place.maxX = edge.line.xAt(boundary);
            edge.line.moveTo(boundary, place.minX);
            *kept++ = place;
        }
        active.setEnd(kept);
        sortNearlySorted(active.begin(), active.size(), isLeftOf);
        painter.beginRow(row);
        drawSharpRow(painter, active.begin(), active.end(), rule == kFillEvenOdd ? 1 : -1);
    }
}

// --- With anti-aliasing
// ---------------------------------------------------------------------------

// The few levels inside a row at which a cluster's vertices lie.
class Levels {
public:
    static constexpr uint32_t kMost = 16;

    void insert(Fixed level)
    {
        if (count_ > kMost || std::find(levels_, levels_ + count_, level) != levels_ + count_)
            return;
        if (count_ < kMost) levels_[count_] = level;
        ++count_;
    }
    bool tooMany() const { return count_ > kMost; }
    uint32_t count() const { return count_; }
    Fixed operator[](uint32_t i) const { return levels_[i]; }
    void sort() { std::sort(levels_, levels_ + count_); }

private:
    Fixed levels_[kMost];
    uint32_t count_ = 0;
};

// Spreads a level over 64 bits, so that sums of such numbers vanish only when the levels cancel.
uint64_t mixed(Fixed level)
{
    uint64_t bits = static_cast<uint32_t>(level) + 0x9E3779B97F4A7C15u;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    return bits ^ (bits >> 31);
}

class SmoothFill {
public:
    SmoothFill(MMContext2D& context, RowPainter& painter, CoverageRow& coverage,
               const VertexRing& ring, ActiveEdges& active, MMFillRule rule)
        : context_(context), painter_(painter), coverage_(coverage), ring_(ring), active_(active),
          slabs_(context, coverage, rule)
    {
    }

    void draw()
    {
        const PixelBox& visible = painter_.visible();
        for (int32_t row = visible.top; row < visible.bottom; ++row) {
            top_ = fixFromInt(row);
            bottom_ = top_ + kFixedOne;
            active_.startAbove(bottom_);
            placeChains();
            if (active_.size() == 0) {
                if (active_.nextMinimum() == kNoVertex) return;
                continue;
            }
            sortNearlySorted(active_.begin(), active_.size(), isLeftOf);
            addClusters();
            painter_.beginRow(row);
            coverage_.sweep(painter_);
        }
    }

private:
    void placeChains();
    void measure(RowPlace& place, const Chain& chain) const;
    void addClusters();
    void addCluster(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addChain(Chain chain, int32_t sign);
    void addStraight(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addBent(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addLevels(Chain* chains, uint32_t count, SlabEdge* edges, Levels& levels, int32_t winding);
    void addFixedSlabs(Chain* chains, uint32_t count, SlabEdge* edges, int32_t winding);
    uint64_t imbalance(const RowPlace& place) const;

    MMContext2D& context_;
    RowPainter& painter_;
    CoverageRow& coverage_;
    const VertexRing& ring_;
    ActiveEdges& active_;
    SlabFill slabs_;
    Fixed top_ = 0; // the current row
    Fixed bottom_ = 0;
};

// Takes every chain from the last row to this one, drops those that ended, and measures the extents
// of the others.
void SmoothFill::placeChains()
{
    RowPlace* kept = active_.begin();
    for (RowPlace place : active_) {
        ActiveEdge& edge = active_.edgeOf(place);
        if (place.straight && edge.line.endY > top_) {
            edge.line.moveTo(top_, edge.bottom);
        } else if (!edge.descend(ring_, top_)) {
            active_.drop(place);
            continue;
        }
        const EdgeLine& line = edge.line;
        place.straight = line.y == top_ && line.endY >= bottom_;
        if (place.straight) {
            edge.bottom = line.endY == bottom_ ? line.endX : wrapAdd(line.x, line.slope);
            place.minX = std::min(line.x, edge.bottom);
            place.maxX = std::max(line.x, edge.bottom);
        } else {
            measure(place, edge);
        }
        *kept++ = place;
    }
    active_.setEnd(kept);
}

// The extent of a chain that has vertices in the row.
void SmoothFill::measure(RowPlace& place, const Chain& start) const
{
    Chain chain = start;
    place.minX = place.maxX = chain.line.x;
    for (;;) {
        const Fixed x = chain.line.xAt(bottom_);
        place.minX = std::min({place.minX, chain.line.x, x});
        place.maxX = std::max({place.maxX, chain.line.x, x});
        if (chain.line.endY >= bottom_ || !chain.step(ring_)) return;
    }
}

// What a chain that starts or ends inside the row does to the winding number right of it: zero in
// sum when everything that starts and ends left of a place cancels.
uint64_t SmoothFill::imbalance(const RowPlace& place) const
{
    Chain chain = const_cast<ActiveEdges&>(active_).edgeOf(place);
    uint64_t sum = chain.line.y > top_ ? mixed(chain.line.y) : 0;
    while (chain.line.endY < bottom_) {
        if (chain.step(ring_)) continue;
        sum -= mixed(chain.line.endY);
        break;
    }
    return chain.winding > 0 ? sum : 0 - sum;
}

void SmoothFill::addClusters()
{
    int32_t winding = 0; // at the row's top
    for (const RowPlace *first = active_.begin(), *end = active_.end(); first != end;) {
        Fixed reach = first->maxX;
        uint64_t open = 0;
        int32_t after = winding;
        const RowPlace* next = first;
        do {
            reach = std::max(reach, next->maxX);
            if (next->straight) {
                after += next->winding;
            } else {
                open += imbalance(*next);
                if (active_.edgeOf(*next).line.y == top_) after += next->winding;
            }
            ++next;
        } while (next != end && (next->minX < reach || open != 0));
        addCluster(first, next, winding);
        winding = after;
        first = next;
    }
}

void SmoothFill::addCluster(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    const uint32_t count = static_cast<uint32_t>(end - first);
    if (slabs_.isDeepInside(winding, count)) return;
    if (count == 1) {
        const bool was = slabs_.inside(winding);
        if (slabs_.inside(winding + first->winding) == was) return;
        const ActiveEdge& edge = active_.edgeOf(*first);
        if (first->straight)
            coverage_.addPiece(edge.line.x, edge.bottom, kFixedOne, was ? -1 : 1);
        else
            addChain(edge, was ? -1 : 1);
        return;
    }
    if (std::all_of(first, end, [](const RowPlace& place) { return place.straight; }))
        addStraight(first, end, winding);
    else
        addBent(first, end, winding);
}

// Adds all edges of a chain that meets no other.
void SmoothFill::addChain(Chain chain, int32_t sign)
{
    for (;;) {
        const Fixed y = std::min(chain.line.endY, bottom_);
        coverage_.addPiece(chain.line.x, chain.line.xAt(y), static_cast<uint32_t>(y - chain.line.y),
                           sign);
        if (y == bottom_ || !chain.step(ring_)) return;
    }
}

void SmoothFill::addStraight(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    const uint32_t count = static_cast<uint32_t>(end - first);
    ScratchArray<SlabEdge> edges(context_.scratchStack, count);
    if (!edges) {
        context_.outOfMemory |= kScratchExhausted;
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        const ActiveEdge& edge = active_.edgeOf(first[i]);
        edges[i] = {edge.line.x, edge.bottom, edge.winding};
    }
    slabs_.add(edges.data(), count, winding, kFixedOne);
}

void SmoothFill::addBent(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    const uint32_t count = static_cast<uint32_t>(end - first);
    ScratchArray<Chain> chains(context_.scratchStack, count);
    ScratchArray<SlabEdge> edges(context_.scratchStack, count);
    if (!chains || !edges) {
        context_.outOfMemory |= kScratchExhausted;
        return;
    }
    Levels levels;
    for (uint32_t i = 0; i < count; ++i) {
        Chain chain = chains[i] = active_.edgeOf(first[i]);
        if (chain.line.y > top_) levels.insert(chain.line.y);
        while (chain.line.endY < bottom_ && !levels.tooMany()) {
            levels.insert(chain.line.endY);
            if (!chain.step(ring_)) break;
        }
    }
    if (levels.tooMany())
        addFixedSlabs(chains.data(), count, edges.data(), winding);
    else
        addLevels(chains.data(), count, edges.data(), levels, winding);
}

// Cuts a cluster at all its vertices.
void SmoothFill::addLevels(Chain* chains, uint32_t count, SlabEdge* edges, Levels& levels,
                           int32_t winding)
{
    levels.sort();
    Fixed level = top_;
    for (uint32_t slab = 0; slab <= levels.count(); ++slab) {
        const Fixed next = slab < levels.count() ? levels[slab] : bottom_;
        uint32_t crossing = 0;
        for (uint32_t i = 0; i < count; ++i) {
            Chain& chain = chains[i];
            if (chain.line.y > level) continue;
            while (chain.line.endY <= level && chain.step(ring_)) {
            }
            if (chain.line.endY <= level) continue;
            edges[crossing++] = {chain.line.xAt(level), chain.line.xAt(next), chain.winding};
        }
        slabs_.add(edges, crossing, winding, static_cast<uint32_t>(next - level));
        level = next;
    }
}

// Cuts a cluster into equal slabs. A chain that starts, ends or bends inside a slab is replaced by
// the line between its first and its last point there and keeps its height.
void SmoothFill::addFixedSlabs(Chain* chains, uint32_t count, SlabEdge* edges, int32_t winding)
{
    (void)edges;
    struct Piece {
        Fixed top;
        Fixed bottom;
        int32_t winding;
        uint32_t height;
    };
    ScratchArray<Piece> pieces(context_.scratchStack, count);
    if (!pieces) {
        context_.outOfMemory |= kScratchExhausted;
        return;
    }
    constexpr Fixed kSlab = static_cast<Fixed>(SlabFill::kLeastSlab);
    for (Fixed level = top_; level != bottom_; level += kSlab) {
        const Fixed next = level + kSlab;
        uint32_t crossing = 0;
        for (uint32_t i = 0; i < count; ++i) {
            Chain& chain = chains[i];
            if (chain.line.y >= next || chain.line.endY <= level) continue;
            const Fixed from = std::max(chain.line.y, level);
            const Fixed x = chain.line.xAt(from);
            while (chain.line.endY < next && chain.step(ring_)) {
            }
            const Fixed to = std::min(chain.line.endY, next);
            pieces[crossing++] = {x, chain.line.xAt(to), chain.winding,
                                  static_cast<uint32_t>(to - from)};
            if (chain.line.endY == next) chain.step(ring_);
        }
        std::sort(pieces.data(), pieces.data() + crossing, [](const Piece& a, const Piece& b) {
            return static_cast<int64_t>(a.top) + a.bottom < static_cast<int64_t>(b.top) + b.bottom;
        });
        int32_t now = winding;
        for (uint32_t i = 0; i < crossing; ++i) {
            const bool was = slabs_.inside(now);
            now += pieces[i].winding;
            if (slabs_.inside(now) != was)
                coverage_.addPiece(pieces[i].top, pieces[i].bottom, pieces[i].height, was ? -1 : 1);
        }
    }
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
    if ((context.antiAlias & 1) == 0) {
        drawSharp(painter, ring, active, rule);
        return;
    }
    CoverageRow coverage(context.scratchStack, visible);
    if (!coverage) {
        context.outOfMemory |= kScratchExhausted;
        return;
    }
    SmoothFill(context, painter, coverage, ring, active, rule).draw();
}

} // namespace Graphics2D
} // namespace KAVO
