// SPDX-License-Identifier: MIT
// A slab of a row: straight edges from its top to its bottom, perhaps crossing. Internal.
#pragma once

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/raster/CoverageRow.h"

namespace KAVO {
namespace Graphics2D {

// An edge through a slab.
struct SlabEdge {
    Fixed topX;            // at the slab's upper end
    Fixed bottomX;         // at its lower end
    int32_t winding;       // what it adds to the winding number right of it
    Fixed leastBottom = 0; // of it and the edges right of it, where they are parted into groups
};

inline bool isBefore(const SlabEdge& a, const SlabEdge& b)
{
    return a.topX != b.topX ? a.topX < b.topX : a.bottomX < b.bottomX;
}

// Where an edge or a chain is half way down, for those that are taken in this order.
struct MiddleX {
    Fixed x;
    int32_t index; // of the edge or the chain in its list
};

inline bool isBefore(const MiddleX& a, const MiddleX& b)
{
    return a.x != b.x ? a.x < b.x : a.index < b.index;
}

void sortMiddles(MiddleX* middles, uint32_t count);

// The middle of two places, without wrapping on the way.
inline Fixed middleOf(Fixed a, Fixed b)
{
    return static_cast<Fixed>((static_cast<int64_t>(a) + b) >> 1);
}

// Adds the inside of slabs to a row of coverage.
//
// Only the edges at which inside and outside meet are added. Where the order of the edges at the
// bottom differs from that at the top they cross: two edges are cut at their intersection, groups
// of more are bisected down to 1/16 of a row (1/256 when they are few) and then taken in the order
// of their middles. No slab therefore costs more than a constant number of sorts, however many of
// its edges cross.
class SlabFill {
public:
    static constexpr uint32_t kLeastSlab = 0x1000;

    SlabFill(MMContext2D& context, CoverageRow& coverage, MMFillRule rule)
        : context_(context), coverage_(coverage), insideMask_(rule == kFillEvenOdd ? 1 : -1)
    {
    }

    // Scratch memory for slabs, and the row it is for.
    MMStackContext& scratch() { return context_.scratchStack; }
    CoverageRow& coverage() { return coverage_; }

    // Scratch memory ran out: edges are missing from the row.
    bool failed() const { return failed_; }

    // Notes that it did, here or in the caller.
    void fail()
    {
        failed_ = true;
        noteOutOfMemory(context_);
    }

    bool inside(int32_t winding) const { return (winding & insideMask_) != 0; }

    // Whether no edge of so few can lie between inside and outside.
    bool isDeepInside(int32_t winding, uint32_t count) const
    {
        return insideMask_ < 0 && magnitudeOf(winding) > count;
    }

    // Adds a slab with the given winding number left of it. Sorts the edges.
    void add(SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height);

    // Adds edges that do not cross, from left to right.
    void addOrdered(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height);

    // Adds two edges that cross, the one first whose top is left.
    void addCrossedPair(const SlabEdge* edges, int32_t winding, uint32_t height);

private:
    void addGroups(SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height);
    void bisect(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height);
    void addByMiddles(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height);

    MMContext2D& context_;
    CoverageRow& coverage_;
    bool failed_ = false;
    int32_t insideMask_; // winding numbers that share a bit with it are inside
};

} // namespace Graphics2D
} // namespace KAVO
