// The rasteriser for any polygon: self-crossing outlines, holes, bridged subpaths.
//
// A sweep from top to bottom keeps the chains of edges that cross the current row in left-to-right
// order and fills where the winding number says inside. Only where inside and outside meet is an
// edge drawn, so outlines that overlap or run back on themselves leave no trace.
//
// Without anti-aliasing a row is decided on its lower boundary, which the half-pixel shift makes
// the centre line of the pixels.
//
// With anti-aliasing most chains cross the row on one straight edge that no other chain crosses.
// Such an edge separates what lies left and right of it all the way down the row, so that the
// winding number along it is the one at the row's top, and the chains between two of them are
// settled on their own: crossing edges in one slab, chains with vertices in slabs cut at these
// vertices. Vertices at more than 16 levels take sixteen equal parts of the row instead, each cut
// again, so that no input makes a row cost more than 256 slabs.
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
    return a.top != b.top ? a.top < b.top : a.bottom < b.bottom;
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
            left = place->bottom;
        else
            painter.addSpan(fixFloor(left), fixFloor(place->bottom));
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

// Spreads a level over 32 bits, so that sums of such numbers vanish only when the levels cancel.
uint32_t mixed(Fixed level)
{
    uint32_t bits = static_cast<uint32_t>(level) + 0x9E3779B9u;
    bits = (bits ^ (bits >> 16)) * 0x85EBCA6Bu;
    bits = (bits ^ (bits >> 13)) * 0xC2B2AE35u;
    return bits ^ (bits >> 16);
}

class SmoothFill {
public:
    SmoothFill(MMContext2D& context, RowPainter& painter, CoverageRow& coverage,
               const VertexRing& ring, ActiveEdges& active, MMFillRule rule)
        : context_(context), painter_(painter), coverage_(coverage), ring_(ring), active_(active),
          slabs_(context, coverage, rule)
    {
    }

    void draw();

private:
    void placeChains(uint32_t oldCount);
    bool placeBent(RowPlace& place);
    static void setStraightExtent(RowPlace& place)
    {
        place.minX = std::min(place.top, place.bottom);
        place.maxX = std::max(place.top, place.bottom);
    }
    void addApart();
    void markSeparators();
    void markCrossed(RowPlace* bent);
    bool staysBeside(Chain chain, const RowPlace& straight, int32_t side) const;
    void moveBirths();
    void addRow();
    void addBetween(RowPlace* first, RowPlace* end, int32_t winding);
    void addSingle(const RowPlace& place, int32_t winding);
    void addAlong(Chain chain, Fixed from, Fixed to, int32_t sign);
    void addStraight(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addClusters(const RowPlace* first, const RowPlace* end, int32_t winding);
    uint32_t imbalanceOf(const RowPlace& place);
    void addBent(Chain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to);
    void addLevels(Chain* chains, uint32_t count, Levels& levels, int32_t winding, Fixed from,
                   Fixed to);
    void addLowSlab(Chain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to);
    bool isBorn(const RowPlace& place);
    void sortPlaces();
    Chain chainInRow(const RowPlace& place);

    MMContext2D& context_;
    RowPainter& painter_;
    CoverageRow& coverage_;
    const VertexRing& ring_;
    ActiveEdges& active_;
    SlabFill slabs_;
    Fixed top_ = 0; // the current row
    Fixed bottom_ = 0;
    uint32_t oldCount_ = 0; // places before those of the chains that are new in the row
    bool hasBent_ = false;  // some chain has vertices in the row
    bool areApart_ = false; // all chains cross the whole row and their extents do not overlap
};

void SmoothFill::draw()
{
    const PixelBox& visible = painter_.visible();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        top_ = fixFromInt(row);
        bottom_ = top_ + kFixedOne;
        const uint32_t oldCount = active_.size();
        active_.startAbove(bottom_);
        placeChains(oldCount);
        if (active_.size() == 0) {
            if (active_.nextMinimum() == kNoVertex) return;
            continue;
        }
        if (areApart_)
            addApart();
        else
            addRow();
        if (slabs_.failed()) return;
        painter_.beginRow(row);
        coverage_.sweep(painter_);
    }
}

// Takes every chain from the last row to this one and drops those that ended. The first oldCount
// were there before.
void SmoothFill::placeChains(uint32_t oldCount)
{
    hasBent_ = false;
    areApart_ = true;
    Fixed reach = -0x7FFFFFFF - 1;
    RowPlace* kept = active_.begin();
    const RowPlace* const firstNew = kept + oldCount;
    oldCount_ = active_.size();
    for (RowPlace* old = kept; old != active_.end(); ++old) {
        RowPlace& place = *kept;
        if (old == firstNew) oldCount_ = static_cast<uint32_t>(kept - active_.begin());
        if (old != kept) place = *old;
        place.top = place.bottom;
        if (place.straight && place.endY > bottom_) {
            place.bottom = wrapAdd(place.top, place.slope);
            setStraightExtent(place);
        } else if (!placeBent(place)) {
            active_.drop(place);
            continue;
        }
        if (place.minX < reach) areApart_ = false;
        reach = place.maxX;
        ++kept;
    }
    active_.setEnd(kept);
    oldCount_ = std::min(oldCount_, active_.size());
}

// Places a chain that has, or had in the row before, a vertex. False when it ended there.
bool SmoothFill::placeBent(RowPlace& place)
{
    ActiveChain& chain = active_.chainOf(place);
    EdgeLine& line = chain.line;
    if (place.straight) line.moveTo(top_, place.top);
    if (chain.ended || !chain.descend(ring_, top_)) return false;
    place.top = line.x;
    place.straight = line.y == top_ && line.endY >= bottom_;
    place.partial = line.y > top_;
    if (place.straight) {
        place.bottom = line.xAt(bottom_);
        place.slope = line.slopePerRow();
        place.endY = line.endY;
        setStraightExtent(place);
        return true;
    }
    hasBent_ = true;
    chain.startY = line.y;
    chain.startVertex = chain.vertex;
    place.minX = place.maxX = line.x;
    while (line.endY < bottom_ && !chain.ended) {
        place.minX = std::min(place.minX, line.endX);
        place.maxX = std::max(place.maxX, line.endX);
        chain.ended = !chain.step(ring_);
    }
    place.bottom = line.xAt(bottom_);
    place.minX = std::min(place.minX, place.bottom);
    place.maxX = std::max(place.maxX, place.bottom);
    if (chain.ended)
        place.partial = true;
    else
        line.moveTo(bottom_, place.bottom);
    if (place.partial) areApart_ = false;
    return true;
}

// The chain at the top of the row, or at its first vertex.
Chain SmoothFill::chainInRow(const RowPlace& place)
{
    const ActiveChain& record = active_.chainOf(place);
    if (!place.straight) {
        const MMPoint2D start{place.top, record.startY};
        return {EdgeLine::between(start, ring_[record.startVertex]), record.startVertex,
                place.winding};
    }
    Chain chain = record;
    chain.line.moveTo(top_, place.top);
    return chain;
}

// Whether the chain starts inside the row.
bool SmoothFill::isBorn(const RowPlace& place)
{
    return place.partial && active_.chainOf(place).startY > top_;
}

// Puts the places in the order of their tops. Those of the last row are nearly in order, and so are
// the new ones among themselves.
void SmoothFill::sortPlaces()
{
    RowPlace* const begin = active_.begin();
    const uint32_t newCount = active_.size() - oldCount_;
    sortNearlySorted(begin, oldCount_, isLeftOf);
    sortNearlySorted(begin + oldCount_, newCount, isLeftOf);
    if (newCount == 0 || oldCount_ == 0) return;
    ScratchArray<RowPlace> added(context_.scratchStack, newCount);
    if (!added) {
        slabs_.fail();
        return;
    }
    std::copy_n(begin + oldCount_, newCount, added.data());
    RowPlace* old = begin + oldCount_;
    RowPlace* to = active_.end();
    for (uint32_t left = newCount; left > 0;) {
        if (old != begin && isLeftOf(added[left - 1], old[-1]))
            *--to = *--old;
        else
            *--to = added[--left];
    }
}

// Orders chains that start inside the row by where they are at their start.
void SmoothFill::moveBirths()
{
    RowPlace* const begin = active_.begin();
    RowPlace* const end = active_.end();
    for (RowPlace* place = begin; place != end; ++place) {
        if (!isBorn(*place)) continue;
        const Fixed level = active_.chainOf(*place).startY;
        const auto xOf = [this, level](const RowPlace& other) {
            return wrapAdd(other.top, fixMulInline(other.slope, level - top_));
        };
        RowPlace* to = place;
        while (to != begin && to[-1].straight && xOf(to[-1]) > place->top)
            --to;
        if (to != place) {
            std::rotate(to, place, place + 1);
            continue;
        }
        while (to + 1 != end && to[1].straight && xOf(to[1]) < place->top)
            ++to;
        std::rotate(place, place + 1, to + 1);
    }
}

// Whether a chain stays on one side of a straight one throughout the row: right of it for side 1,
// left of it for -1.
bool SmoothFill::staysBeside(Chain chain, const RowPlace& straight, int32_t side) const
{
    const auto isBeside = [&](Fixed x, Fixed y) {
        const Fixed at = y == bottom_
                             ? straight.bottom
                             : wrapAdd(straight.top, fixMulInline(straight.slope, y - top_));
        return side > 0 ? x >= at : x <= at;
    };
    for (;;) {
        if (!isBeside(chain.line.x, chain.line.y)) return false;
        const Fixed y = std::min(chain.line.endY, bottom_);
        if (!isBeside(chain.line.xAt(y), y)) return false;
        if (y == bottom_ || !chain.step(ring_)) return true;
    }
}

// Takes from the straight chains that a bent one crosses their rank as separators. Those further
// off cannot be crossed once one is not.
void SmoothFill::markCrossed(RowPlace* bent)
{
    const Chain chain = chainInRow(*bent);
    for (RowPlace* place = bent; place != active_.begin();) {
        --place;
        if (!place->straight) continue;
        if (bent->minX >= place->maxX || staysBeside(chain, *place, 1)) break;
        place->separates = false;
    }
    for (RowPlace* place = bent + 1; place != active_.end(); ++place) {
        if (!place->straight) continue;
        if (bent->maxX <= place->minX || staysBeside(chain, *place, -1)) break;
        place->separates = false;
    }
}

// The places are in the order of their tops. A straight chain separates the others when all bottoms
// before it are left and all after it right of its own, and no bent chain crosses it.
void SmoothFill::markSeparators()
{
    Fixed reach = -0x7FFFFFFF - 1;
    for (RowPlace& place : active_) {
        if (!place.straight) continue;
        place.separates = place.bottom >= reach;
        reach = std::max(reach, place.bottom);
    }
    reach = 0x7FFFFFFF;
    for (RowPlace* place = active_.end(); place != active_.begin();) {
        --place;
        if (!place->straight) continue;
        if (place->bottom > reach) place->separates = false;
        reach = std::min(reach, place->bottom);
    }
    if (!hasBent_) return;
    // What starts or ends inside the row on one side of a chain and is made up for on the other
    // changes the winding number on both sides of it, so that they cannot be settled apart.
    uint32_t open = 0;
    for (RowPlace* place = active_.begin(); place != active_.end(); ++place) {
        if (place->straight) {
            if (open != 0) place->separates = false;
            continue;
        }
        if (place->partial) open += imbalanceOf(*place);
        markCrossed(place);
    }
}

// Adds the usual row.
void SmoothFill::addApart()
{
    int32_t winding = 0;
    for (const RowPlace& place : active_) {
        addSingle(place, winding);
        winding += place.winding;
    }
}

void SmoothFill::addRow()
{
    sortPlaces();
    if (hasBent_) moveBirths();
    markSeparators();
    int32_t winding = 0;
    RowPlace* const end = active_.end();
    for (RowPlace* place = active_.begin(); place != end;) {
        if (place->straight && place->separates) {
            addSingle(*place, winding);
            winding += place->winding;
            ++place;
            continue;
        }
        RowPlace* const first = place;
        int32_t after = winding;
        do {
            if (!isBorn(*place)) after += place->winding;
            ++place;
        } while (place != end && !(place->straight && place->separates));
        addBetween(first, place, winding);
        winding = after;
    }
}

// Adds a chain that meets no other.
void SmoothFill::addSingle(const RowPlace& place, int32_t winding)
{
    const bool was = slabs_.inside(winding);
    if (slabs_.inside(winding + place.winding) == was) return;
    const int32_t sign = was ? -1 : 1;
    if (place.straight) {
        coverage_.addPiece(place.top, place.bottom, kFixedOne, sign);
        return;
    }
    const ActiveChain& chain = active_.chainOf(place);
    Fixed x = place.top;
    Fixed y = chain.startY;
    for (uint32_t i = chain.startVertex; i != chain.vertex; i = ring_.next(i, chain.winding)) {
        const MMPoint2D& p = ring_[i];
        coverage_.addPiece(x, p.x, static_cast<uint32_t>(p.y - y), sign);
        x = p.x;
        y = p.y;
    }
    const Fixed end = std::min(chain.line.endY, bottom_);
    coverage_.addPiece(x, place.bottom, static_cast<uint32_t>(end - y), sign);
}

// Adds all edges of a chain between two levels.
void SmoothFill::addAlong(Chain chain, Fixed from, Fixed to, int32_t sign)
{
    for (Fixed level = std::max(chain.line.y, from);;) {
        const Fixed next = std::min(chain.line.endY, to);
        coverage_.addPiece(chain.line.xAt(level), chain.line.xAt(next),
                           static_cast<uint32_t>(next - level), sign);
        if (next == to || !chain.step(ring_)) return;
        level = next;
    }
}

// Adds the chains between two separators.
void SmoothFill::addBetween(RowPlace* first, RowPlace* end, int32_t winding)
{
    const uint32_t count = static_cast<uint32_t>(end - first);
    if (slabs_.isDeepInside(winding, count)) return;
    if (count == 1)
        addSingle(*first, winding);
    else if (std::all_of(first, end, [](const RowPlace& place) { return place.straight; }))
        addStraight(first, end, winding);
    else
        addClusters(first, end, winding);
}

void SmoothFill::addStraight(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    const uint32_t count = static_cast<uint32_t>(end - first);
    ScratchArray<SlabEdge> edges(context_.scratchStack, count);
    if (!edges) {
        slabs_.fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i)
        edges[i] = {first[i].top, first[i].bottom, first[i].winding};
    slabs_.add(edges.data(), count, winding, kFixedOne);
}

// What a chain that starts or ends inside the row does to the winding number right of it: zero in
// sum where everything that starts and ends cancels.
uint32_t SmoothFill::imbalanceOf(const RowPlace& place)
{
    const ActiveChain& chain = active_.chainOf(place);
    const uint32_t start = chain.startY > top_ ? mixed(chain.startY) : 0;
    const uint32_t end = chain.ended ? mixed(chain.line.endY) : 0;
    return place.winding > 0 ? start - end : end - start;
}

// Adds chains with vertices. Where their extents do not overlap and everything that starts or ends
// left of the gap cancels, the chains on either side are settled apart.
void SmoothFill::addClusters(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    struct Extent {
        Fixed minX;
        Fixed maxX;
        const RowPlace* place;
        uint32_t imbalance;
    };
    const uint32_t count = static_cast<uint32_t>(end - first);
    ScratchArray<Extent> extents(context_.scratchStack, count);
    ScratchArray<Chain> chains(context_.scratchStack, count);
    if (!extents || !chains) {
        slabs_.fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        Extent extent{first[i].minX, first[i].maxX, first + i, 0};
        if (first[i].partial) extent.imbalance = imbalanceOf(first[i]);
        extents[i] = extent;
    }
    sortNearlySorted(extents.data(), count, [](const Extent& a, const Extent& b) {
        return a.minX != b.minX ? a.minX < b.minX : a.maxX < b.maxX;
    });
    for (uint32_t i = 0; i < count;) {
        Fixed reach = extents[i].maxX;
        uint32_t open = 0;
        int32_t after = winding;
        uint32_t size = 0;
        do {
            const Extent& extent = extents[i];
            reach = std::max(reach, extent.maxX);
            open += extent.imbalance;
            if (!isBorn(*extent.place)) after += extent.place->winding;
            chains[size++] = chainInRow(*extent.place);
            ++i;
        } while (i < count && (open != 0 || extents[i].minX < reach));
        if (size == 1)
            addSingle(*extents[i - 1].place, winding);
        else if (!slabs_.isDeepInside(winding, size))
            addBent(chains.data(), size, winding, top_, bottom_);
        winding = after;
    }
}

// Adds a cluster of chains between two levels, cut at their vertices there. Takes the chains down
// past the upper level.
void SmoothFill::addBent(Chain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to)
{
    Levels levels;
    for (uint32_t i = 0; i < count; ++i) {
        Chain& chain = chains[i];
        while (chain.line.endY <= from && chain.step(ring_)) {
        }
        Chain rest = chain;
        if (rest.line.y > from && rest.line.y < to) levels.insert(rest.line.y);
        while (rest.line.endY > from && rest.line.endY < to && !levels.tooMany()) {
            levels.insert(rest.line.endY);
            if (!rest.step(ring_)) break;
        }
    }
    constexpr Fixed kPart = static_cast<Fixed>(SlabFill::kLeastSlab);
    if (!levels.tooMany()) {
        addLevels(chains, count, levels, winding, from, to);
    } else if (to - from > kPart) {
        for (Fixed level = from; level < to; level += kPart)
            addBent(chains, count, winding, level, level + kPart);
    } else {
        addLowSlab(chains, count, winding, from, to);
    }
}

// Adds the slabs between the levels.
void SmoothFill::addLevels(Chain* chains, uint32_t count, Levels& levels, int32_t winding,
                           Fixed from, Fixed to)
{
    ScratchArray<SlabEdge> edges(context_.scratchStack, count);
    if (!edges) {
        slabs_.fail();
        return;
    }
    levels.sort();
    Fixed level = from;
    for (uint32_t slab = 0; slab <= levels.count(); ++slab) {
        const Fixed next = slab < levels.count() ? levels[slab] : to;
        uint32_t crossing = 0;
        for (uint32_t i = 0; i < count; ++i) {
            Chain& chain = chains[i];
            if (chain.line.y > level) continue;
            while (chain.line.endY <= level && chain.step(ring_)) {
            }
            if (chain.line.endY <= level) continue;
            edges[crossing++] = {chain.line.xAt(level), chain.line.xAt(next), chain.winding};
        }
        slabs_.add(edges.data(), crossing, winding, static_cast<uint32_t>(next - level));
        level = next;
    }
}

// Adds a low slab with too many vertices: decides by the middles of the chains which of them lie
// between inside and outside.
void SmoothFill::addLowSlab(Chain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to)
{
    struct Part {
        Fixed middle;
        uint32_t chain;
    };
    ScratchArray<Part> parts(context_.scratchStack, count);
    if (!parts) {
        slabs_.fail();
        return;
    }
    uint32_t size = 0;
    for (uint32_t i = 0; i < count; ++i) {
        Chain chain = chains[i];
        if (chain.line.y >= to || chain.line.endY <= from) continue;
        const Fixed top = chain.line.xAt(std::max(chain.line.y, from));
        while (chain.line.endY < to && chain.step(ring_)) {
        }
        parts[size++] = {(top >> 1) + (chain.line.xAt(to) >> 1), i};
    }
    std::sort(parts.data(), parts.data() + size, [](const Part& a, const Part& b) {
        return a.middle != b.middle ? a.middle < b.middle : a.chain < b.chain;
    });
    for (uint32_t i = 0; i < size; ++i) {
        const Chain& chain = chains[parts[i].chain];
        const bool was = slabs_.inside(winding);
        winding += chain.winding;
        if (slabs_.inside(winding) != was) addAlong(chain, from, to, was ? -1 : 1);
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
