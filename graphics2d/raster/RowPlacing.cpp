// SPDX-License-Identifier: MIT
#include "graphics2d/raster/RowPlacing.h"

#include "graphics2d/raster/ChainClusters.h"

#include <algorithm>
#include <utility>

namespace KAVO {
namespace Graphics2D {

namespace {

void setStraightExtent(RowPlace& place)
{
    place.minX = std::min(place.topX, place.bottomX);
    place.maxX = std::max(place.topX, place.bottomX);
}

// Out of line: large, and seldom needed.
[[gnu::noinline]] void exchange(RowPlace& a, RowPlace& b)
{
    std::swap(a, b);
}

} // namespace

void RowPlacing::moveTo(int32_t row, const RowPainter& painter)
{
    top_ = fixFromInt(row);
    bottom_ = top_ + kFixedOne;
    const uint32_t above = active_.size();
    active_.startAbove(bottom_);

    bentCount_ = 0;
    areApart_ = true;
    Fixed reach = -0x7FFFFFFF - 1;
    RowPlace* kept = active_.begin();
    const RowPlace* const firstNew = kept + above;
    knownCount_ = active_.size();
    for (const RowPlace* from = kept; from != active_.end(); ++from) {
        RowPlace& current = *kept;
        if (from == firstNew) knownCount_ = static_cast<uint32_t>(kept - active_.begin());
        if (from != kept) current = *from;
        current.topX = current.bottomX;
        if (current.straight && current.endY > bottom_) {
            current.bottomX = wrapAdd(current.topX, current.slope);
            setStraightExtent(current);
        } else if (!place(current)) {
            continue;
        }
        if (current.minX < reach) areApart_ = false;
        reach = current.maxX;
        painter.expect(row, current.minX);
        ++kept;
    }
    active_.setEnd(kept);
    knownCount_ = std::min(knownCount_, active_.size());
}

// Places a chain that has, or had in the row before, a vertex. False when it ended there.
bool RowPlacing::place(RowPlace& place)
{
    ActiveChain& chain = active_.chainOf(place);
    EdgeLine& line = chain.line;
    if (place.straight) line.moveTo(top_, place.topX);
    const bool isThere = line.y >= top_ && line.endY > top_; // the row above has left it there
    if (chain.ended || (!isThere && !chain.descend(rings_, top_))) return false;
    place.topX = line.x;
    place.straight = line.y == top_ && line.endY >= bottom_;
    place.partial = line.y > top_;
    if (place.straight) {
        place.bottomX = line.xAt(bottom_);
        place.slope = line.slopePerRow();
        place.endY = line.endY;
        setStraightExtent(place);
        return true;
    }
    ++bentCount_;
    chain.startY = line.y;
    chain.startVertex = chain.vertex;
    place.minX = place.maxX = line.x;
    while (line.endY < bottom_ && !chain.ended) {
        place.minX = std::min(place.minX, line.endX);
        place.maxX = std::max(place.maxX, line.endX);
        chain.ended = !chain.step(rings_);
    }
    place.bottomX = line.xAt(bottom_);
    place.minX = std::min(place.minX, place.bottomX);
    place.maxX = std::max(place.maxX, place.bottomX);
    if (chain.ended)
        place.partial = true;
    else
        line.moveTo(bottom_, place.bottomX);
    if (place.partial) areApart_ = false;
    return true;
}

Chain RowPlacing::chainOf(const RowPlace& place)
{
    const ActiveChain& record = active_.chainOf(place);
    if (!place.straight) {
        const MMPoint2D start{place.topX, record.startY};
        return {EdgeLine::between(start, rings_[record.startVertex]), record.startVertex,
                place.winding};
    }
    Chain chain = record;
    chain.line.moveTo(top_, place.topX);
    return chain;
}

bool RowPlacing::isBorn(const RowPlace& place)
{
    return place.partial && active_.chainOf(place).startY > top_;
}

uint32_t RowPlacing::imbalanceOf(const RowPlace& place)
{
    const ActiveChain& chain = active_.chainOf(place);
    const uint32_t start = chain.startY > top_ ? mixed(chain.startY) : 0;
    const uint32_t end = chain.ended ? mixed(chain.line.endY) : 0;
    return place.winding > 0 ? start - end : end - start;
}

void RowPlacing::prepareClusters(RowPlace* first, RowPlace* end)
{
    Fixed least = 0x7FFFFFFF;
    while (end != first) {
        --end;
        end->leastX = least = std::min(least, end->minX);
    }
}

RowCluster RowPlacing::clusterAt(RowPlace* first, RowPlace* end)
{
    RowCluster cluster = {first, first->maxX, 0, false};
    uint32_t open = 0;
    do {
        const RowPlace& place = *cluster.end;
        cluster.reach = std::max(cluster.reach, place.maxX);
        cluster.hasStraight |= place.straight;
        if (place.partial) open += imbalanceOf(place);
        if (!isBorn(place)) cluster.winding += place.winding;
        ++cluster.end;
    } while (cluster.end != end && (open != 0 || cluster.end->leastX < cluster.reach));
    return cluster;
}

bool RowPlacing::sort(MMStackContext& stack, StepBudget& budget)
{
    active_.sort(0, knownCount_);
    active_.sort(knownCount_, size() - knownCount_);
    if (!mergeNew(stack)) return false;
    if (!hasBent()) return true;
    for (RowPlace* place = begin(); place != end() && budget.spend(); ++place)
        if (isBorn(*place)) moveBirth(place, budget);
    return true;
}

// The places that the row above had are in order, and so are the new ones behind them.
bool RowPlacing::mergeNew(MMStackContext& stack)
{
    const uint32_t newCount = size() - knownCount_;
    if (newCount == 0 || knownCount_ == 0) return true;
    ScratchArray<RowPlace> added(stack, newCount);
    if (!added) return false;
    std::copy_n(begin() + knownCount_, newCount, added.data());
    RowPlace* known = begin() + knownCount_;
    RowPlace* to = end();
    for (uint32_t left = newCount; left > 0;) {
        if (known != begin() && isBefore(added[left - 1], known[-1]))
            *--to = *--known;
        else
            *--to = added[--left];
    }
    return true;
}

// Moves a chain that starts inside the row past straight ones beside it.
void RowPlacing::moveBirth(RowPlace* place, StepBudget& budget)
{
    const Fixed depth = active_.chainOf(*place).startY - top_;
    const Fixed x = place->topX;
    RowPlace* to = place;
    for (; to != begin() && to[-1].straight && to[-1].xAt(depth) > x && budget.spend(); --to)
        exchange(to[-1], *to);
    if (to != place) return;
    for (; to + 1 != end() && to[1].straight && to[1].xAt(depth) < x && budget.spend(); ++to)
        exchange(*to, to[1]);
}

} // namespace Graphics2D
} // namespace KAVO
