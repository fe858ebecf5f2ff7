// SPDX-License-Identifier: MIT
// The anti-aliased rows of any polygon.
//
// Most chains cross the row on one straight edge that no other chain crosses. Such an edge
// separates what lies left and right of it all the way down the row, so that the winding number
// along it is the one at the row's top, and the chains between two of them are settled on their
// own: crossing edges in one slab, chains with vertices in slabs cut at these vertices
// (ChainCluster.cpp).
//
// What to look for among the chains of a row is looked for with a budget of steps; in a row where
// it does not suffice no chain separates any others. So a row of n chains costs about n log n steps
// times the number of its slabs, and that is bounded.
#include "graphics2d/raster/SmoothRows.h"
#include "graphics2d/raster/ChainCluster.h"
#include "math/FixedInline.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

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

    void sortPlaces();
    void moveBirths();
    void moveBirth(RowPlace* place, Fixed level);
    void markStraight();
    void markSeparators();
    void markCrossed(RowPlace* bent);
    bool staysBeside(Chain chain, const RowPlace& straight, int32_t side);
    bool spend()
    {
        if (steps_ > 0) --steps_;
        return steps_ > 0;
    }

    void addApart();
    void addRow();
    void addBetween(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addSingle(const RowPlace& place, int32_t winding);
    void addStraight(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addClusters(const RowPlace* first, const RowPlace* end, int32_t winding);

    Chain chainInRow(const RowPlace& place);
    bool isBorn(const RowPlace& place);
    uint32_t imbalanceOf(const RowPlace& place);

    MMContext2D& context_;
    RowPainter& painter_;
    CoverageRow& coverage_;
    const VertexRing& ring_;
    ActiveEdges& active_;
    SlabFill slabs_;
    Fixed top_ = 0; // the current row
    Fixed bottom_ = 0;
    uint32_t oldCount_ = 0; // places before those of the chains that are new in the row
    uint32_t steps_ = 0;    // left of the row's budget
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
        painter_.expect(fixFloor(top_), place.minX);
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
    active_.sort(0, oldCount_);
    active_.sort(oldCount_, newCount);
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
        if (old != begin && isBefore(added[left - 1], old[-1]))
            *--to = *--old;
        else
            *--to = added[--left];
    }
}

// Orders chains that start inside the row by where they are at their start.
void SmoothFill::moveBirths()
{
    for (RowPlace* place = active_.begin(); place != active_.end() && spend(); ++place)
        if (isBorn(*place)) moveBirth(place, active_.chainOf(*place).startY);
}

void SmoothFill::moveBirth(RowPlace* place, Fixed level)
{
    const auto xOf = [this, level](const RowPlace& other) {
        return wrapAdd(other.top, fixMulInline(other.slope, level - top_));
    };
    const RowPlace moving = *place;
    RowPlace* to = place;
    for (; to != active_.begin() && to[-1].straight && xOf(to[-1]) > moving.top && spend(); --to)
        *to = to[-1];
    if (to == place)
        for (; to + 1 != active_.end() && to[1].straight && xOf(to[1]) < moving.top && spend();
             ++to)
            *to = to[1];
    *to = moving;
}

// Whether a chain stays on one side of a straight one throughout the row: right of it for side 1,
// left of it for -1.
bool SmoothFill::staysBeside(Chain chain, const RowPlace& straight, int32_t side)
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
        if (y == bottom_ || !spend() || !chain.step(ring_)) return true;
    }
}

// Takes from the straight chains that a bent one crosses their rank as separators. Those further
// off cannot be crossed once one is not.
void SmoothFill::markCrossed(RowPlace* bent)
{
    const Chain chain = chainInRow(*bent);
    for (RowPlace* place = bent; place != active_.begin() && spend();) {
        --place;
        if (!place->straight) continue;
        if (bent->minX >= place->maxX || staysBeside(chain, *place, 1)) break;
        place->separates = false;
    }
    for (RowPlace* place = bent + 1; place != active_.end() && spend(); ++place) {
        if (!place->straight) continue;
        if (bent->maxX <= place->minX || staysBeside(chain, *place, -1)) break;
        place->separates = false;
    }
}

// The places are in the order of their tops. A straight chain separates the others when all bottoms
// before it are left and all after it right of its own, and no bent chain crosses it.
void SmoothFill::markStraight()
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
}

void SmoothFill::markSeparators()
{
    markStraight();
    if (!hasBent_) return;
    // What starts or ends inside the row on one side of a chain and is made up for on the other
    // changes the winding number on both sides of it, so that they cannot be settled apart.
    uint32_t open = 0;
    for (RowPlace* place = active_.begin(); place != active_.end() && spend(); ++place) {
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
    // Far more than any drawing needs.
    constexpr uint32_t kStepsPerChain = 32;
    steps_ = kStepsPerChain * active_.size() + 1024;
    sortPlaces();
    if (hasBent_) moveBirths();
    markSeparators();
    const RowPlace* const end = active_.end();
    if (steps_ == 0) {
        addBetween(active_.begin(), end, 0);
        return;
    }
    int32_t winding = 0;
    for (const RowPlace* place = active_.begin(); place != end;) {
        if (place->straight && place->separates) {
            addSingle(*place, winding);
            winding += place->winding;
            ++place;
            continue;
        }
        const RowPlace* const first = place;
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

// Adds the chains between two separators.
void SmoothFill::addBetween(const RowPlace* first, const RowPlace* end, int32_t winding)
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
    const uint32_t count = static_cast<uint32_t>(end - first);
    ScratchArray<SlabEdge> extents(context_.scratchStack, count); // from, to and index
    ScratchArray<Chain> chains(context_.scratchStack, count);
    if (!extents || !chains) {
        slabs_.fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i)
        extents[i] = {first[i].minX, first[i].maxX, static_cast<int32_t>(i)};
    sortSlabEdges(extents.data(), count);
    for (uint32_t i = 0; i < count;) {
        Fixed reach = extents[i].bottom;
        uint32_t open = 0;
        int32_t after = winding;
        uint32_t size = 0;
        const RowPlace* place;
        do {
            reach = std::max(reach, extents[i].bottom);
            place = first + extents[i].winding;
            if (place->partial) open += imbalanceOf(*place);
            if (!isBorn(*place)) after += place->winding;
            chains[size++] = chainInRow(*place);
            ++i;
        } while (i < count && (open != 0 || extents[i].top < reach));
        if (size == 1)
            addSingle(*place, winding);
        else if (!slabs_.isDeepInside(winding, size))
            addChainCluster(slabs_, ring_, chains.data(), size, winding, top_, bottom_);
        winding = after;
    }
}

} // namespace

void drawSmoothRows(MMContext2D& context, RowPainter& painter, CoverageRow& coverage,
                    const VertexRing& ring, ActiveEdges& active, MMFillRule rule)
{
    SmoothFill(context, painter, coverage, ring, active, rule).draw();
}

} // namespace Graphics2D
} // namespace KAVO
