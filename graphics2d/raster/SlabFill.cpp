// SPDX-License-Identifier: MIT
// A slab of a row: straight edges from its top to its bottom, perhaps crossing.
#include "graphics2d/raster/SlabFill.h"
#include "graphics2d/raster/NearlySorted.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Up to so many crossing edges are bisected further, for there it costs little.
constexpr uint32_t kFewEdges = 16;

bool isSortedByBottom(const SlabEdge* edges, uint32_t count)
{
    for (uint32_t i = 1; i < count; ++i)
        if (edges[i].bottomX < edges[i - 1].bottomX) return false;
    return true;
}

} // namespace

void sortMiddles(MiddleX* middles, uint32_t count)
{
    sortNearlySorted(middles, count);
}

void SlabFill::add(SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    if (isDeepInside(winding, count)) return;
    sortNearlySorted(edges, count);
    if (isSortedByBottom(edges, count))
        addOrdered(edges, count, winding, height);
    else
        addGroups(edges, count, winding, height);
}

void SlabFill::addOrdered(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    for (uint32_t i = 0; i < count; ++i) {
        const bool was = inside(winding);
        winding += edges[i].winding;
        if (inside(winding) != was)
            coverage_.addPiece(edges[i].topX, edges[i].bottomX, height, was ? -1 : 1);
    }
}

// Splits the edges into the smallest groups that no other edge crosses.
void SlabFill::addGroups(SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    Fixed least = edges[count - 1].bottomX;
    for (uint32_t i = count; i-- > 0;)
        edges[i].leastBottom = least = std::min(least, edges[i].bottomX);

    for (uint32_t first = 0; first < count;) {
        Fixed greatest = edges[first].bottomX;
        int32_t after = winding + edges[first].winding;
        uint32_t end = first + 1;
        for (; end < count && edges[end].leastBottom < greatest; ++end) {
            greatest = std::max(greatest, edges[end].bottomX);
            after += edges[end].winding;
        }
        if (end - first == 1)
            addOrdered(edges + first, 1, winding, height);
        else if (end - first == 2)
            addCrossedPair(edges + first, winding, height);
        else if (!isDeepInside(winding, end - first))
            bisect(edges + first, end - first, winding, height);
        winding = after;
        first = end;
    }
}

void SlabFill::addCrossedPair(const SlabEdge* edges, int32_t winding, uint32_t height)
{
    const SlabEdge& a = edges[0];
    const SlabEdge& b = edges[1];
    const uint32_t topGap = static_cast<uint32_t>(b.topX) - static_cast<uint32_t>(a.topX);
    const uint32_t bottomGap = static_cast<uint32_t>(a.bottomX) - static_cast<uint32_t>(b.bottomX);
    const uint64_t gaps = static_cast<uint64_t>(topGap) + bottomGap;
    const uint32_t upper = static_cast<uint32_t>(height * static_cast<uint64_t>(topGap) / gaps);
    const int64_t travel = static_cast<int64_t>(a.bottomX) - a.topX;
    const Fixed meeting = static_cast<Fixed>(a.topX + travel * upper / height);
    const SlabEdge above[] = {{a.topX, meeting, a.winding}, {b.topX, meeting, b.winding}};
    const SlabEdge below[] = {{meeting, b.bottomX, b.winding}, {meeting, a.bottomX, a.winding}};
    addOrdered(above, 2, winding, upper);
    addOrdered(below, 2, winding, height - upper);
}

void SlabFill::bisect(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    if (height <= (count <= kFewEdges ? kLeastSlab / 16 : kLeastSlab)) {
        addByMiddles(edges, count, winding, height);
        return;
    }
    ScratchArray<SlabEdge> half(context_.scratchStack, count);
    if (!half) {
        fail();
        return;
    }
    for (int part = 0; part < 2; ++part) {
        for (uint32_t i = 0; i < count; ++i) {
            const SlabEdge& edge = edges[i];
            const Fixed middle = middleOf(edge.topX, edge.bottomX);
            half[i] = part == 0 ? SlabEdge{edge.topX, middle, edge.winding}
                                : SlabEdge{middle, edge.bottomX, edge.winding};
        }
        add(half.data(), count, winding, part == 0 ? height / 2 : height - height / 2);
    }
}

// Takes crossing edges in the order of their middles.
void SlabFill::addByMiddles(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    ScratchArray<MiddleX> order(context_.scratchStack, count);
    if (!order) {
        fail();
        return;
    }
    for (uint32_t i = 0; i < count; ++i)
        order[i] = {middleOf(edges[i].topX, edges[i].bottomX), static_cast<int32_t>(i)};
    sortMiddles(order.data(), count);
    for (uint32_t i = 0; i < count; ++i) {
        const SlabEdge& edge = edges[order[i].index];
        addOrdered(&edge, 1, winding, height);
        winding += edge.winding;
    }
}

} // namespace Graphics2D
} // namespace KAVO
