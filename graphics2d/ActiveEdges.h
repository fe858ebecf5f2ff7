// The edges that cross the current row of a polygon, and the vertices they come from. Internal.
//
// The vertices form a ring. From every local minimum of y (the topmost vertices of the shape's
// parts) two chains of edges run down, one each way round the ring, to the next local maximum. Only
// the minima are sorted; a chain moves on to its next edge in place. A forward chain counts +1 for
// the winding number of what lies right of it, a backward one -1.
#pragma once

#include "graphics2d/EdgeLine.h"
#include "graphics2d/MMContext2D.h"
#include "memory/MMBucketContext.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

struct RingVertex {
    MMPoint2D point;
    uint32_t nextMinimum; // index of the next local minimum downward, kNoVertex at the end
};

constexpr uint32_t kNoVertex = 0xFFFFFFFF;

// The shifted vertices of a polygon without repetitions, with the list of its local minima.
class VertexRing {
public:
    VertexRing(MMContext2D& context, const MMPoint2D* points, uint32_t count);

    explicit operator bool() const { return static_cast<bool>(vertices_); }
    uint32_t size() const { return size_; }
    const MMPoint2D& operator[](uint32_t i) const { return vertices_[i].point; }

    // The next vertex forward (winding 1) or backward (winding -1).
    uint32_t next(uint32_t i, int32_t winding) const
    {
        if (winding > 0) return i + 1 == size_ ? 0 : i + 1;
        return i == 0 ? size_ - 1 : i - 1;
    }

    // Local minima in the order of y, then of x.
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

// A chain on its current edge. Lives in a bucket pool of 11-word items.
struct ActiveEdge {
    EdgeLine line;
    uint32_t vertex; // ring index of the line's lower end
    int32_t winding; // also the direction round the ring
};
constexpr uint32_t kActiveEdgeWords = 11;
static_assert(sizeof(ActiveEdge) <= kActiveEdgeWords * 4, "the record must fit its slot");

// A chain's place in the left-to-right order of the current slab.
struct SlabEdge {
    Fixed top;       // x at the slab's upper end
    Fixed bottom;    // x at its lower end
    int32_t winding; // 1 or -1
    uint32_t edge;   // the ActiveEdge: its offset in the pool's slots, in words
};

// All chains that cross the current slab, from left to right.
class ActiveEdges {
public:
    ActiveEdges(MMContext2D& context, const VertexRing& ring);

    explicit operator bool() const { return ready_; }

    SlabEdge* begin() { return order_.data(); }
    uint32_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    ActiveEdge& edgeOf(const SlabEdge& place)
    {
        return *reinterpret_cast<ActiveEdge*>(pool_.slots + place.edge);
    }

    // Level of the next local minimum; false when none is left.
    bool nextMinimumY(Fixed& y) const
    {
        if (minimum_ == kNoVertex) return false;
        y = ring_[minimum_].y;
        return true;
    }

    // Starts the two chains of every minimum above the level (or on it, when inclusive), behind the
    // edges that are there. False when the pool is exhausted.
    bool startChains(Fixed level, bool inclusive);

    // Moves every chain to the edge that reaches below the level (or ends on it, when inclusive)
    // and drops the chains that end above. Returns the y at which the first of the edges ends.
    Fixed advance(Fixed level, bool inclusive);

private:
    bool startChain(uint32_t minimum, int32_t winding);

    const VertexRing& ring_;
    MMBucketContext pool_;
    ScratchArray<SlabEdge> order_;
    uint32_t size_ = 0;
    uint32_t minimum_;
    bool ready_;
};

} // namespace Graphics2D
} // namespace KAVO
