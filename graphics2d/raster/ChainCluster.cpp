// SPDX-License-Identifier: MIT
// Chains with vertices inside a row that may cross each other, settled together slab by slab.
#include "graphics2d/raster/ChainCluster.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// The few levels inside a row at which a cluster's vertices lie, from top to bottom.
class Levels {
public:
    static constexpr uint32_t kMost = 16;

    void insert(Fixed level)
    {
        uint32_t at = count_;
        while (at > 0 && levels_[at - 1] > level)
            --at;
        if (at > 0 && levels_[at - 1] == level) return;
        if (count_ == kMost) {
            tooMany_ = true;
            return;
        }
        for (uint32_t i = count_++; i > at; --i)
            levels_[i] = levels_[i - 1];
        levels_[at] = level;
    }
    bool tooMany() const { return tooMany_; }
    uint32_t count() const { return count_; }
    Fixed operator[](uint32_t i) const { return levels_[i]; }

private:
    Fixed levels_[kMost];
    uint32_t count_ = 0;
    bool tooMany_ = false;
};

// Steps to the edge that reaches below the level, if the chain has one.
void stepPast(Chain& chain, const VertexRing& ring, Fixed level)
{
    while (chain.line.endY <= level && chain.step(ring)) {
    }
}

Levels levelsBetween(const VertexRing& ring, const Chain* chains, uint32_t count, Fixed from,
                     Fixed to)
{
    Levels levels;
    for (uint32_t i = 0; i < count && !levels.tooMany(); ++i) {
        Chain chain = chains[i];
        if (chain.line.y > from && chain.line.y < to) levels.insert(chain.line.y);
        while (chain.line.endY > from && chain.line.endY < to && !levels.tooMany()) {
            levels.insert(chain.line.endY);
            if (!chain.step(ring)) break;
        }
    }
    return levels;
}

// Adds the slabs between the levels.
void addLevels(SlabFill& slabs, const VertexRing& ring, Chain* chains, uint32_t count,
               const Levels& levels, int32_t winding, Fixed from, Fixed to)
{
    ScratchArray<SlabEdge> edges(slabs.scratch(), count);
    if (!edges) {
        slabs.fail();
        return;
    }
    Fixed level = from;
    for (uint32_t slab = 0; slab <= levels.count(); ++slab) {
        const Fixed next = slab < levels.count() ? levels[slab] : to;
        uint32_t crossing = 0;
        for (uint32_t i = 0; i < count; ++i) {
            Chain& chain = chains[i];
            if (chain.line.y > level) continue;
            stepPast(chain, ring, level);
            if (chain.line.endY <= level) continue;
            edges[crossing++] = {chain.line.xAt(level), chain.line.xAt(next), chain.winding};
        }
        slabs.add(edges.data(), crossing, winding, static_cast<uint32_t>(next - level));
        level = next;
    }
}

// Adds all edges of a chain between two levels.
void addAlong(CoverageRow& coverage, const VertexRing& ring, Chain chain, Fixed from, Fixed to,
              int32_t sign)
{
    for (Fixed level = std::max(chain.line.y, from);;) {
        const Fixed next = std::min(chain.line.endY, to);
        coverage.addPiece(chain.line.xAt(level), chain.line.xAt(next),
                          static_cast<uint32_t>(next - level), sign);
        if (next == to || !chain.step(ring)) return;
        level = next;
    }
}

// Adds a low slab with too many vertices: decides by the middles of the chains which of them lie
// between inside and outside.
void addLowSlab(SlabFill& slabs, const VertexRing& ring, const Chain* chains, uint32_t count,
                int32_t winding, Fixed from, Fixed to)
{
    ScratchArray<SlabEdge> order(slabs.scratch(), count); // middle and index
    if (!order) {
        slabs.fail();
        return;
    }
    uint32_t size = 0;
    for (uint32_t i = 0; i < count; ++i) {
        Chain chain = chains[i];
        if (chain.line.y >= to || chain.line.endY <= from) continue;
        const Fixed top = chain.line.xAt(std::max(chain.line.y, from));
        while (chain.line.endY < to && chain.step(ring)) {
        }
        order[size++] = {middleOf(top, chain.line.xAt(to)), static_cast<Fixed>(i), 0};
    }
    sortSlabEdges(order.data(), size);
    for (uint32_t i = 0; i < size; ++i) {
        const Chain& chain = chains[order[i].bottom];
        const bool was = slabs.inside(winding);
        winding += chain.winding;
        if (slabs.inside(winding) != was)
            addAlong(slabs.coverage(), ring, chain, from, to, was ? -1 : 1);
    }
}

} // namespace

void addChainCluster(SlabFill& slabs, const VertexRing& ring, Chain* chains, uint32_t count,
                     int32_t winding, Fixed from, Fixed to)
{
    for (uint32_t i = 0; i < count; ++i)
        stepPast(chains[i], ring, from);
    const Levels levels = levelsBetween(ring, chains, count, from, to);
    constexpr Fixed kPart = static_cast<Fixed>(SlabFill::kLeastSlab);
    if (!levels.tooMany()) {
        addLevels(slabs, ring, chains, count, levels, winding, from, to);
    } else if (to - from > kPart) {
        for (Fixed level = from; level < to; level += kPart)
            addChainCluster(slabs, ring, chains, count, winding, level, level + kPart);
    } else {
        addLowSlab(slabs, ring, chains, count, winding, from, to);
    }
}

} // namespace Graphics2D
} // namespace KAVO
