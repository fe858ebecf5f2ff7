// SPDX-License-Identifier: MIT
#include "graphics2d/raster/ChainClusters.h"

#include "graphics2d/raster/NearlySorted.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Clusters are halved down to this height, 1/16 of a row.
constexpr Fixed kLeastHeight = static_cast<Fixed>(SlabFill::kLeastSlab);

// Up to so many edges in all slabs it is not worth while to halve a cluster.
constexpr uint32_t kFewEdges = 48;

// The few levels inside a row at which a cluster's vertices lie, from top to bottom.
class Levels {
public:
    static constexpr uint32_t kMost = 16;

    explicit Levels(uint32_t limit) : limit_(limit) {} // kMost at most

    void insert(Fixed level)
    {
        uint32_t at = count_;
        while (at > 0 && levels_[at - 1] > level)
            --at;
        if (at > 0 && levels_[at - 1] == level) return;
        if (count_ == limit_) {
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
    uint32_t limit_;
    uint32_t count_ = 0;
    bool tooMany_ = false;
};

// A chain on its way down through slabs.
struct SlabChain : Chain {
    Fixed bottomX; // at the lower end of the slab above
};

// What a chain takes up between two levels.
struct ChainExtent {
    Fixed minX;
    Fixed maxX;
    uint32_t chain;     // its index
    uint32_t imbalance; // what it does to the winding number by starting or ending between
    int32_t passed;     // its winding if it comes from above
};

inline bool isBefore(const ChainExtent& a, const ChainExtent& b)
{
    return a.minX != b.minX ? a.minX < b.minX : a.maxX < b.maxX;
}

// A level at which the winding number changes.
struct WindingStep {
    Fixed level;
    int32_t winding;
};

class ChainClusters {
public:
    ChainClusters(SlabFill& slabs, const VertexRings& rings) : slabs_(slabs), rings_(rings) {}

    // Adds a cluster between two levels of its row.
    void addCluster(SlabChain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to,
                    bool isHidden);

private:
    // Takes the chains down past the upper level.
    void add(SlabChain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to);
    bool measure(Chain& chain, Fixed from, Fixed to, ChainExtent& extent) const;
    void addAlong(Chain chain, Fixed from, Fixed to, int32_t sign);
    void findLevels(Levels& levels, const SlabChain* chains, uint32_t count, Fixed from,
                    Fixed to) const;
    void addSlabs(SlabChain* chains, uint32_t count, const Levels& levels, int32_t winding,
                  Fixed from, Fixed to);
    void addByMiddles(const SlabChain* chains, uint32_t count, int32_t winding, Fixed from,
                      Fixed to);
    void addHidden(const SlabChain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to);

    SlabFill& slabs_;
    const VertexRings& rings_;
};

// False when the chain does not reach into the height. Where it does, its line knows its slope
// afterwards if that was needed.
bool ChainClusters::measure(Chain& chain, Fixed from, Fixed to, ChainExtent& extent) const
{
    const EdgeLine& line = chain.line;
    const Fixed start = std::max(line.y, from);
    if (start >= to || line.endY <= from) return false;
    const bool isBorn = line.y > from;
    extent.passed = isBorn ? 0 : chain.winding;
    extent.imbalance = isBorn ? mixed(line.y) : 0;
    extent.minX = extent.maxX = chain.line.xAt(start);
    const auto include = [&](Fixed x) {
        extent.minX = std::min(extent.minX, x);
        extent.maxX = std::max(extent.maxX, x);
    };
    if (line.endY >= to) {
        include(chain.line.xAt(to));
    } else {
        uint32_t i = chain.vertex;
        for (;;) {
            const MMPoint2D& vertex = rings_[i];
            include(vertex.x);
            if (!rings_.stepDown(i, chain.winding)) {
                extent.imbalance -= mixed(vertex.y);
                break;
            }
            if (rings_[i].y < to) continue;
            include(EdgeLine::between(vertex, rings_[i]).xAt(to));
            break;
        }
    }
    if (chain.winding < 0) extent.imbalance = 0u - extent.imbalance;
    return true;
}

void ChainClusters::add(SlabChain* chains, uint32_t count, int32_t winding, Fixed from, Fixed to)
{
    ScratchArray<ChainExtent> extents(slabs_.scratch(), count);
    if (!extents) {
        slabs_.fail();
        return;
    }
    uint32_t crossing = 0;
    for (uint32_t i = 0; i < count; ++i) {
        chains[i].stepPast(rings_, from);
        extents[crossing].chain = i;
        if (measure(chains[i], from, to, extents[crossing])) ++crossing;
    }
    sortNearlySorted(extents.data(), crossing);
    ScratchArray<SlabChain> cluster(slabs_.scratch(), crossing);
    if (!cluster) {
        slabs_.fail();
        return;
    }
    for (uint32_t i = 0; i < crossing;) {
        if (extents[i].minX >= slabs_.coverage().endX()) return;
        Fixed reach = extents[i].maxX;
        uint32_t open = 0;
        uint32_t size = 0;
        int32_t after = winding;
        do {
            reach = std::max(reach, extents[i].maxX);
            open += extents[i].imbalance;
            after += extents[i].passed;
            cluster[size++] = chains[extents[i].chain];
            ++i;
        } while (i < crossing && (open != 0 || extents[i].minX < reach));
        const bool isHidden = reach <= slabs_.coverage().startX();
        if (isHidden || !slabs_.isDeepInside(winding, size))
            addCluster(cluster.data(), size, winding, from, to, isHidden);
        winding = after;
    }
}

void ChainClusters::addCluster(SlabChain* chains, uint32_t count, int32_t winding, Fixed from,
                               Fixed to, bool isHidden)
{
    if (isHidden) return addHidden(chains, count, winding, from, to);
    if (count == 1) {
        const bool was = slabs_.inside(winding);
        if (slabs_.inside(winding + chains->winding) != was)
            addAlong(*chains, from, to, was ? -1 : 1);
        return;
    }
    const bool isTall = to - from > kLeastHeight;
    Levels levels(isTall ? std::min(kFewEdges / count, Levels::kMost) : Levels::kMost);
    findLevels(levels, chains, count, from, to);
    if (!levels.tooMany()) {
        addSlabs(chains, count, levels, winding, from, to);
    } else if (isTall) {
        const Fixed middle = from + (to - from) / 2;
        add(chains, count, winding, from, middle);
        add(chains, count, winding, middle, to);
    } else {
        addByMiddles(chains, count, winding, from, to);
    }
}

void ChainClusters::findLevels(Levels& levels, const SlabChain* chains, uint32_t count, Fixed from,
                               Fixed to) const
{
    for (uint32_t k = 0; k < count; ++k) {
        const Chain& chain = chains[k];
        if (chain.line.y > from && chain.line.y < to) levels.insert(chain.line.y);
        uint32_t i = chain.vertex;
        Fixed y = chain.line.endY;
        while (y > from && y < to) {
            levels.insert(y);
            if (levels.tooMany()) return;
            if (!rings_.stepDown(i, chain.winding)) break;
            y = rings_[i].y;
        }
    }
}

// Adds the slabs between the levels.
void ChainClusters::addSlabs(SlabChain* chains, uint32_t count, const Levels& levels,
                             int32_t winding, Fixed from, Fixed to)
{
    ScratchArray<SlabEdge> edges(slabs_.scratch(), count);
    if (!edges) {
        slabs_.fail();
        return;
    }
    Fixed level = from;
    for (uint32_t slab = 0; slab <= levels.count(); ++slab) {
        const Fixed next = slab < levels.count() ? levels[slab] : to;
        uint32_t crossing = 0;
        for (uint32_t i = 0; i < count; ++i) {
            SlabChain& chain = chains[i];
            if (chain.line.y > level || !chain.stepPast(rings_, level)) continue;
            // A chain above the level has come down through the slab above on the same edge.
            const bool comesDown = slab != 0 && chain.line.y < level;
            const Fixed topX = comesDown ? chain.bottomX : chain.line.xAt(level);
            chain.bottomX = chain.line.xAt(next);
            edges[crossing++] = {topX, chain.bottomX, chain.winding};
        }
        slabs_.add(edges.data(), crossing, winding, static_cast<uint32_t>(next - level));
        level = next;
    }
}

// Decides by the middles of the chains which of them lie between inside and outside.
void ChainClusters::addByMiddles(const SlabChain* chains, uint32_t count, int32_t winding,
                                 Fixed from, Fixed to)
{
    ScratchArray<MiddleX> order(slabs_.scratch(), count);
    if (!order) {
        slabs_.fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        Chain chain = chains[i];
        const Fixed topX = chain.line.xAt(std::max(chain.line.y, from));
        while (chain.line.endY < to && chain.step(rings_)) {
        }
        order[i] = {middleOf(topX, chain.line.xAt(to)), static_cast<int32_t>(i)};
    }
    sortMiddles(order.data(), count);
    for (uint32_t i = 0; i < count; ++i) {
        const Chain& chain = chains[order[i].index];
        const bool was = slabs_.inside(winding);
        winding += chain.winding;
        if (slabs_.inside(winding) != was) addAlong(chain, from, to, was ? -1 : 1);
    }
}

// Of chains left of all that is visible only the winding number that they leave matters, level by
// level.
void ChainClusters::addHidden(const SlabChain* chains, uint32_t count, int32_t winding, Fixed from,
                              Fixed to)
{
    ScratchArray<WindingStep> steps(slabs_.scratch(), 2 * count);
    if (!steps) {
        slabs_.fail();
        return;
    }
    uint32_t size = 0;
    const bool was = slabs_.inside(winding);
    for (uint32_t i = 0; i < count; ++i) {
        Chain chain = chains[i];
        steps[size++] = {std::max(chain.line.y, from), chain.winding};
        while (chain.line.endY < to && chain.step(rings_)) {
        }
        if (chain.line.endY < to) steps[size++] = {chain.line.endY, -chain.winding};
    }
    sortByHeap(steps.data(), sizeof(WindingStep) / sizeof(uint32_t), size);
    int32_t gain = 0; // height that is inside and was outside left of them, or the other way round
    for (uint32_t i = 0; i < size; ++i) {
        winding += steps[i].winding;
        const Fixed end = i + 1 < size ? steps[i + 1].level : to;
        if (slabs_.inside(winding) != was) gain += end - steps[i].level;
    }
    const Fixed x = slabs_.coverage().startX();
    slabs_.coverage().addPiece(x, x, static_cast<uint32_t>(gain), was ? -1 : 1);
}

// Adds a chain between two levels, as a left (sign 1) or a right (-1) edge of what is inside.
void ChainClusters::addAlong(Chain chain, Fixed from, Fixed to, int32_t sign)
{
    for (Fixed level = std::max(chain.line.y, from);;) {
        const Fixed next = std::min(chain.line.endY, to);
        slabs_.coverage().addPiece(chain.line.xAt(level), chain.line.xAt(next),
                                   static_cast<uint32_t>(next - level), sign);
        if (next == to || !chain.step(rings_)) return;
        level = next;
    }
}

} // namespace

void addChains(SlabFill& slabs, RowPlacing& row, const RowPlace* places, uint32_t count,
               int32_t winding, bool isHidden)
{
    ScratchArray<SlabChain> chains(slabs.scratch(), count);
    if (!chains) {
        slabs.fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i)
        chains[i] = {row.chainOf(places[i]), 0};
    ChainClusters(slabs, row.rings())
        .addCluster(chains.data(), count, winding, row.top(), row.bottom(), isHidden);
}

void addChain(SlabFill& slabs, RowPlacing& row, const RowPlace& place, int32_t winding)
{
    const bool was = slabs.inside(winding);
    if (slabs.inside(winding + place.winding) == was) return;
    CoverageRow& coverage = slabs.coverage();
    const int32_t sign = was ? -1 : 1;
    if (place.straight) {
        coverage.addPiece(place.topX, place.bottomX, kFixedOne, sign);
        return;
    }
    const ActiveChain& chain = row.recordOf(place);
    const VertexRings& rings = row.rings();
    Fixed x = place.topX;
    Fixed y = chain.startY;
    for (uint32_t i = chain.startVertex; i != chain.vertex; i = rings.next(i, chain.winding)) {
        const MMPoint2D& p = rings[i];
        coverage.addPiece(x, p.x, static_cast<uint32_t>(p.y - y), sign);
        x = p.x;
        y = p.y;
    }
    const Fixed end = std::min(chain.line.endY, row.bottom());
    coverage.addPiece(x, place.bottomX, static_cast<uint32_t>(end - y), sign);
}

bool addFlatEnd(SlabFill& slabs, RowPlacing& row, const RowPlace* places, int32_t winding)
{
    if (!places[0].partial || !places[1].partial) return false;
    const VertexRings& rings = row.rings();
    const ActiveChain& first = row.recordOf(places[0]);
    const Fixed y = first.startY;
    const Fixed end = first.line.endY;
    SlabEdge edges[2];
    for (uint32_t i = 0; i < 2; ++i) {
        const ActiveChain& chain = row.recordOf(places[i]);
        const MMPoint2D& vertex = rings[chain.startVertex];
        if (!chain.ended || chain.startY != y || chain.line.endY != end || vertex.y != end)
            return false;
        edges[i] = {places[i].topX, vertex.x, places[i].winding};
    }
    if (end - y <= kStepHeight || edges[0].topX > edges[1].topX ||
        edges[0].bottomX > edges[1].bottomX)
        return false;
    slabs.addOrdered(edges, 2, winding, static_cast<uint32_t>(end - y));
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
