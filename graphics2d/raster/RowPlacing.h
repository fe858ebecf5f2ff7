// SPDX-License-Identifier: MIT
// Where the chains of one anti-aliased row are, and in which order. Internal.
#pragma once

#include "graphics2d/raster/ActiveEdges.h"
#include "graphics2d/raster/RowPainter.h"

namespace KAVO {
namespace Graphics2D {

// Steps that may be spent in one row to find out more about it than has to be known.
class StepBudget {
public:
    void refill(uint32_t chains)
    {
        constexpr uint32_t kStepsPerChain = 32; // far more than any drawing needs
        left_ = kStepsPerChain * chains + 1024;
    }
    bool spend()
    {
        if (left_ > 0) --left_;
        return left_ > 0;
    }
    bool isSpent() const { return left_ == 0; }

private:
    uint32_t left_ = 0;
};

// Some neighbours in the current row.
struct RowCluster {
    RowPlace* end;
    Fixed reach;     // right end of their extents
    int32_t winding; // what they add to the winding number at the row's top
    bool hasStraight;
};

// The places of the current row.
class RowPlacing {
public:
    explicit RowPlacing(ActiveEdges& active) : active_(active), rings_(active.rings()) {}

    // Goes on to a row, below the one before: starts the chains of minima above its end, takes all
    // to it and drops those that ended. Has the pixels fetched where they come in.
    void moveTo(int32_t row, const RowPainter& painter);

    Fixed top() const { return top_; }
    Fixed bottom() const { return bottom_; }
    RowPlace* begin() { return active_.begin(); }
    RowPlace* end() { return active_.end(); }
    uint32_t size() const { return active_.size(); }
    const VertexRings& rings() const { return rings_; }

    // Whether more chains are to start in later rows.
    bool hasMore() const { return active_.nextMinimum() != kNoVertex; }

    // Some chain has vertices in the row, or even a good part of them, so that it pays to look for
    // clusters before separators.
    bool hasBent() const { return bentCount_ != 0; }
    bool hasManyBent() const { return bentCount_ > size() / 4; }

    // All chains cross the whole row, in order, and their extents do not overlap.
    bool areApart() const { return areApart_; }

    // Puts the places in the order of their tops, those of chains that start inside the row by
    // where they are at their start. False when scratch memory ran out.
    bool sort(MMStackContext& stack, StepBudget& budget);

    // The chain's record, of a chain with vertices in the row.
    const ActiveChain& recordOf(const RowPlace& place) const { return active_.chainOf(place); }

    // The chain at the top of the row, or at its first vertex there.
    Chain chainOf(const RowPlace& place);

    // Whether the chain starts inside the row.
    bool isBorn(const RowPlace& place);

    // Has clusterAt find clusters among these places.
    static void prepareClusters(RowPlace* first, RowPlace* end);

    // The first places that can be settled apart from those behind them: their extents do not
    // overlap, and all that starts or ends among them cancels.
    RowCluster clusterAt(RowPlace* first, RowPlace* end);

    // What a chain that starts or ends inside the row does to the winding number right of it: zero
    // in sum where everything that starts and ends cancels.
    uint32_t imbalanceOf(const RowPlace& place);

private:
    bool place(RowPlace& place);
    bool mergeNew(MMStackContext& stack);
    void moveBirth(RowPlace* place, StepBudget& budget);

    ActiveEdges& active_;
    const VertexRings& rings_;
    Fixed top_ = 0;
    Fixed bottom_ = 0;
    uint32_t knownCount_ = 0; // places of chains that the row above had already
    uint32_t bentCount_ = 0;  // chains with vertices in the row
    bool areApart_ = false;
};

} // namespace Graphics2D
} // namespace KAVO
