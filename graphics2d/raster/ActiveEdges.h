// SPDX-License-Identifier: MIT
// The vertices of a polygon as a ring, and the chains of edges that cross the current row.
// Internal.
//
// From every local minimum of y (the topmost vertices of the shape's parts) two chains of edges run
// down, one each way round the ring, to the next local maximum. Only the minima are sorted; a chain
// moves on to its next edge in place. A forward chain adds 1 to the winding number of what lies
// right of it, a backward one takes 1 away.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "graphics2d/raster/EdgeLine.h"
#include "memory/MMBucketContext.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

struct RingVertex {
    MMPoint2D point;
    uint32_t nextMinimum; // the local minimum that follows in the order of y
};

constexpr uint32_t kNoVertex = 0xFFFFFFFF;

// The shifted vertices of a polygon without repetitions, with the list of its local minima.
class VertexRing {
public:
    VertexRing(MMStackContext& stack, bool cutLongEdges, const MMPoint2D* points, uint32_t count);

    explicit operator bool() const { return static_cast<bool>(vertices_); }
    uint32_t size() const { return size_; }
    const MMPoint2D& operator[](uint32_t i) const { return vertices_[i].point; }

    // The next vertex forward (winding 1) or backward (winding -1).
    uint32_t next(uint32_t i, int32_t winding) const
    {
        if (winding > 0) return i + 1 == size_ ? 0 : i + 1;
        return i == 0 ? size_ - 1 : i - 1;
    }

    // Local minima in the order of y, then of x; kNoVertex after the last.
    uint32_t firstMinimum() const { return firstMinimum_; }
    uint32_t nextMinimum(uint32_t i) const { return vertices_[i].nextMinimum; }
    uint32_t minimumCount() const { return minimumCount_; }

private:
    void append(const MMPoint2D& point);
    void linkMinima();
    uint32_t sortedByY(uint32_t first, uint32_t count);
    bool isAbove(uint32_t a, uint32_t b) const;

    bool cutLongEdges_;
    uint32_t size_ = 0;
    uint32_t firstMinimum_ = kNoVertex;
    uint32_t minimumCount_ = 0;
    ScratchArray<RingVertex> vertices_;
};

// A chain on one of its edges.
struct Chain {
    EdgeLine line;
    uint32_t vertex; // ring index of the line's lower end
    int32_t winding; // 1 or -1, also the direction round the ring

    // Moves to the next edge down. False at the end of the chain.
    bool step(const VertexRing& ring);

    // Moves to the first edge that reaches below the level, and down to the level. False when the
    // chain ends before.
    bool descend(const VertexRing& ring, Fixed level);
};

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
    Fixed top;    // x at the row's upper end, or at the chain's first vertex when that lies lower
    Fixed bottom; // x at the row's lower end, or at the chain's last vertex when that lies higher
    Fixed minX;   // extent within the row
    Fixed maxX;
    Fixed slope; // of a straight chain
    Fixed endY;  // where a straight chain's edge ends
    int32_t winding;
    uint32_t chain; // the ActiveChain: its offset in the pool's slots, in words
    bool straight;  // crosses the whole row on one edge
    bool partial;   // starts or ends inside the row
    bool separates; // straight, and no other chain crosses it in this row
};

inline bool isBefore(const RowPlace& a, const RowPlace& b)
{
    return a.top != b.top ? a.top < b.top : a.bottom < b.bottom;
}

// All chains that cross the current row.
class ActiveEdges {
public:
    ActiveEdges(MMContext2D& context, const VertexRing& ring);

    explicit operator bool() const { return ready_; }

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

    // Drops a chain. Its place must not be used again.
    void drop(const RowPlace& place) { pool_.DeAlloc(&chainOf(place)); }
    void setEnd(RowPlace* end) { size_ = static_cast<uint32_t>(end - order_.data()); }

    // Puts count places from first on in order.
    void sort(uint32_t first, uint32_t count);

private:
    void startChain(uint32_t minimum, int32_t winding);

    const VertexRing& ring_;
    MMBucketContext pool_;
    ScratchArray<RowPlace> order_;
    uint32_t size_ = 0;
    uint32_t minimum_;
    bool ready_;
};

} // namespace Graphics2D
} // namespace KAVO
