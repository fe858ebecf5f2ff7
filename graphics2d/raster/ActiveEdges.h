// SPDX-License-Identifier: MIT
// The chains of edges that cross the current row of a shape. Internal.
//
// Only the local minima are sorted; a chain moves on to its next edge in place.
#pragma once

#include "graphics2d/raster/Chain.h"
#include "memory/MMBucketContext.h"

namespace KAVO {
namespace Graphics2D {

// A chain's record, an item of a bucket pool. After a row in which the chain has vertices it stands
// at the row's lower end.
struct ActiveChain : Chain {
    Fixed startY;         // where the chain is first met in that row: at its top or below
    uint32_t startVertex; // lower end of the edge there
    bool ended;           // the chain ends in that row
};
constexpr uint32_t kActiveChainWords = 11;
static_assert(sizeof(ActiveChain) <= kActiveChainWords * 4, "the record must fit its slot");

// A chain's place in the left-to-right order of the current row. While the chain is straight, that
// is on one edge from row to row, all that changes is here and its record is left alone.
struct RowPlace {
    Fixed topX;    // at the row's upper end, or at the chain's first vertex when that lies lower
    Fixed bottomX; // at the row's lower end, or at the chain's last vertex when that lies higher
    Fixed minX;    // extent within the row
    Fixed maxX;
    Fixed slope;    // of a straight chain
    Fixed endY;     // where a straight chain's edge ends
    Fixed leastX;   // of this place and those behind it, where rows are split into clusters
    uint32_t chain; // the ActiveChain: its offset in the pool's slots, in words
    int32_t winding;
    bool straight;  // crosses the whole row on one edge
    bool partial;   // starts or ends inside the row
    bool separates; // straight, and no other chain crosses it in this row

    // x of a straight chain so far below the row's upper end.
    Fixed xAt(Fixed depth) const;
};

inline bool isBefore(const RowPlace& a, const RowPlace& b)
{
    return a.topX != b.topX ? a.topX < b.topX : a.bottomX < b.bottomX;
}

// All chains that cross the current row.
class ActiveEdges {
public:
    ActiveEdges(MMStackContext& stack, const VertexRings& rings);
    ~ActiveEdges();

    explicit operator bool() const { return order_ && block_; }

    const VertexRings& rings() const { return rings_; }
    RowPlace* begin() { return order_.data(); }
    RowPlace* end() { return order_.data() + size_; }
    uint32_t size() const { return size_; }

    ActiveChain& chainOf(const RowPlace& place)
    {
        return *reinterpret_cast<ActiveChain*>(pool_.slots + place.chain);
    }

    // The next local minimum whose chains have not been started, or kNoVertex.
    uint32_t nextMinimum() const { return minimum_; }

    // Starts the chains of all minima above the level.
    void startAbove(Fixed level);

    // Keeps the places before the new end. The records of the others stay in the pool, which has
    // one for every chain that ever starts.
    void setEnd(RowPlace* end) { size_ = static_cast<uint32_t>(end - order_.data()); }

    // Puts count places from first on in order.
    void sort(uint32_t first, uint32_t count);

private:
    void startChain(uint32_t minimum, int32_t winding);

    const VertexRings& rings_;
    ScratchArray<RowPlace> order_;
    ScratchArray<uint32_t> block_; // the pool's memory
    MMBucketContext pool_;
    uint32_t size_ = 0;
    uint32_t minimum_;
};

} // namespace Graphics2D
} // namespace KAVO
