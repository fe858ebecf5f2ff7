// SPDX-License-Identifier: MIT
// The anti-aliased rows of any shape.
//
// A row is placed (RowPlacing.cpp), separated (RowSeparators.cpp) and added to the coverage:
//
//      s1     s2      b1     s3    b2     s4      s: straight, crosses the row on one edge
//     --+------+------+------+-----+------+--     b: bent, has a vertex in the row
//        \     |       \    /     /       |
//         \    |        >  /     <        |
//          \   |       /   \      \       |
//     ------+--+------+-----+------+------+--
//          (1) (2)  (  cluster 3   ) (4)  (5)     s4 separates, s3 is crossed by b1 or b2
//
// Most chains are straight and no other chain crosses them. Such a chain separates what lies left
// and right of it all the way down the row, so that the winding number along it is the one at the
// row's top, and the chains between two of them are settled on their own: crossing edges in one
// slab (SlabFill.cpp), chains with vertices cluster by cluster (ChainClusters.cpp). A row of many
// bent chains, as many small shapes make it, is parted into clusters first, and separators are
// looked for only in those that need them.
//
// What to look for among the chains of a row is looked for with a budget of steps; from where it
// does not suffice no chain separates any others. So a row of n chains costs about n log n steps
// times the number of its slabs, and that is bounded.
#include "graphics2d/raster/SmoothRows.h"

#include "graphics2d/raster/ChainClusters.h"
#include "graphics2d/raster/RowSeparators.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Whether the two chains of a cluster lie beside each other, as the sides of a small shape do at
// its top or bottom. Unless they wind the same way one does not start or end without the other.
bool isPair(const RowPlace& left, const RowPlace& right)
{
    return left.maxX <= right.minX && left.winding != right.winding;
}

bool areStraight(const RowPlace* first, const RowPlace* end)
{
    while (first != end && first->straight)
        ++first;
    return first == end;
}

class SmoothFill {
public:
    SmoothFill(MMContext2D& context, RowPainter& painter, CoverageRow& coverage,
               ActiveEdges& active, MMFillRule rule)
        : stack_(context.scratchStack), painter_(painter), coverage_(coverage), row_(active),
          slabs_(context, coverage, rule)
    {
    }

    void draw();

private:
    void addApart(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addRow();
    void addClusters(RowPlace* first, RowPlace* end, int32_t winding, bool areBetween);
    void addCrowd(RowPlace* first, RowPlace* end, int32_t winding);
    void addBetween(RowPlace* first, RowPlace* end, int32_t winding);
    void addStraight(const RowPlace* first, const RowPlace* end, int32_t winding);
    void addPassed(const RowPlace* first, const RowPlace* end, int32_t winding);

    MMStackContext& stack_;
    RowPainter& painter_;
    CoverageRow& coverage_;
    RowPlacing row_;
    SlabFill slabs_;
    StepBudget budget_;
};

void SmoothFill::draw()
{
    const PixelBox& visible = painter_.visible();
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        row_.moveTo(row, painter_);
        if (row_.size() == 0) {
            if (!row_.hasMore()) return;
            continue;
        }
        if (row_.areApart())
            addApart(row_.begin(), row_.end(), 0);
        else
            addRow();
        if (slabs_.failed()) return;
        painter_.beginRow(row);
        coverage_.sweep(painter_);
    }
}

// Adds neighbours whose extents do not overlap, as in the usual row.
void SmoothFill::addApart(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    for (const RowPlace* place = first; place != end; ++place) {
        addChain(slabs_, row_, *place, winding);
        winding += place->winding;
    }
}

void SmoothFill::addRow()
{
    budget_.refill(row_.size());
    if (!row_.sort(stack_, budget_)) {
        slabs_.fail();
        return;
    }
    if (row_.hasManyBent())
        addClusters(row_.begin(), row_.end(), 0, false);
    else
        addCrowd(row_.begin(), row_.end(), 0);
}

// Adds neighbours cluster by cluster. areBetween says that no chain among them separates others.
void SmoothFill::addClusters(RowPlace* first, RowPlace* end, int32_t winding, bool areBetween)
{
    RowPlacing::prepareClusters(first, end);
    while (first != end && first->leastX < coverage_.endX()) {
        const RowCluster cluster = row_.clusterAt(first, end);
        const uint32_t count = static_cast<uint32_t>(cluster.end - first);
        if (count == 1 || (count == 2 && isPair(*first, first[1])))
            addApart(first, cluster.end, winding);
        else if (cluster.hasStraight && !areBetween)
            addCrowd(first, cluster.end, winding);
        else if (!slabs_.isDeepInside(winding, count) &&
                 (count != 2 || !addFlatEnd(slabs_, row_, first, winding)))
            addChains(slabs_, row_, first, count, winding, cluster.reach <= coverage_.startX());
        winding += cluster.winding;
        first = cluster.end;
    }
}

// Adds neighbours of which some may separate others.
void SmoothFill::addCrowd(RowPlace* first, RowPlace* end, int32_t winding)
{
    if (!markSeparators(row_, first, end, stack_, budget_)) {
        slabs_.fail();
        return;
    }
    if (budget_.isSpent()) {
        addBetween(first, end, winding);
        return;
    }
    for (RowPlace* place = first; place != end;) {
        if (place->straight && place->separates) {
            addChain(slabs_, row_, *place, winding);
            winding += place->winding;
            ++place;
            continue;
        }
        RowPlace* const gap = place;
        int32_t after = winding;
        do {
            if (!row_.isBorn(*place)) after += place->winding;
            ++place;
        } while (place != end && !(place->straight && place->separates));
        addBetween(gap, place, winding);
        winding = after;
    }
}

// Adds the chains between two separators.
void SmoothFill::addBetween(RowPlace* first, RowPlace* end, int32_t winding)
{
    const uint32_t count = static_cast<uint32_t>(end - first);
    if (slabs_.isDeepInside(winding, count)) return;
    if (count == 1)
        addChain(slabs_, row_, *first, winding);
    else if (areStraight(first, end))
        addStraight(first, end, winding);
    else
        addClusters(first, end, winding, true);
}

void SmoothFill::addStraight(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    const RowPlace* visible = first; // the first of them that is
    while (visible != end && visible->maxX <= coverage_.startX())
        ++visible;
    if (visible == end) {
        addPassed(first, end, winding);
        return;
    }
    const uint32_t count = static_cast<uint32_t>(end - first);
    ScratchArray<SlabEdge> edges(stack_, count);
    if (!edges) {
        slabs_.fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i)
        edges[i] = {first[i].topX, first[i].bottomX, first[i].winding};
    slabs_.add(edges.data(), count, winding, kFixedOne);
}

// Of straight chains left of all that is visible only the winding number that they leave matters.
void SmoothFill::addPassed(const RowPlace* first, const RowPlace* end, int32_t winding)
{
    const bool was = slabs_.inside(winding);
    for (const RowPlace* place = first; place != end; ++place)
        winding += place->winding;
    const Fixed x = coverage_.startX();
    if (slabs_.inside(winding) != was) coverage_.addPiece(x, x, kFixedOne, was ? -1 : 1);
}

} // namespace

void drawSmoothRows(MMContext2D& context, RowPainter& painter, CoverageRow& coverage,
                    ActiveEdges& active, MMFillRule rule)
{
    SmoothFill(context, painter, coverage, active, rule).draw();
}

} // namespace Graphics2D
} // namespace KAVO
