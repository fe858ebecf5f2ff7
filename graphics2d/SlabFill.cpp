// A slab of a row: straight edges from its top to its bottom, perhaps crossing.
#include "graphics2d/SlabFill.h"
#include "graphics2d/NearlySorted.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Up to so many crossing edges are bisected further, for there it costs little.
constexpr uint32_t kFewEdges = 16;

bool isLeftOf(const SlabEdge& a, const SlabEdge& b)
{
    return a.top != b.top ? a.top < b.top : a.bottom < b.bottom;
}

bool isSortedByBottom(const SlabEdge* edges, uint32_t count)
{
    for (uint32_t i = 1; i < count; ++i)
        if (edges[i].bottom < edges[i - 1].bottom) return false;
    return true;
}

Fixed middleOf(const SlabEdge& edge)
{
    return static_cast<Fixed>((static_cast<int64_t>(edge.top) + edge.bottom) >> 1);
}

} // namespace

void SlabFill::add(SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    if (isDeepInside(winding, count)) return;
    sortNearlySorted(edges, count, isLeftOf);
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
            coverage_.addPiece(edges[i].top, edges[i].bottom, height, was ? -1 : 1);
    }
}

// Splits the edges into the smallest groups that no other edge crosses.
void SlabFill::addGroups(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    ScratchArray<Fixed> leastBottom(context_.scratchStack, count); // from each edge on
    if (!leastBottom) {
        fail();
        return;
    }
    leastBottom[count - 1] = edges[count - 1].bottom;
    for (uint32_t i = count - 1; i-- > 0;)
        leastBottom[i] = std::min(edges[i].bottom, leastBottom[i + 1]);

    for (uint32_t first = 0; first < count;) {
        Fixed greatest = edges[first].bottom;
        int32_t after = winding + edges[first].winding;
        uint32_t end = first + 1;
        for (; end < count && leastBottom[end] < greatest; ++end) {
            greatest = std::max(greatest, edges[end].bottom);
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
    const uint32_t topGap = static_cast<uint32_t>(b.top) - static_cast<uint32_t>(a.top);
    const uint32_t bottomGap = static_cast<uint32_t>(a.bottom) - static_cast<uint32_t>(b.bottom);
    const uint64_t gaps = static_cast<uint64_t>(topGap) + bottomGap;
    const uint32_t upper = static_cast<uint32_t>(height * static_cast<uint64_t>(topGap) / gaps);
    const int64_t travel = static_cast<int64_t>(a.bottom) - a.top;
    const Fixed meeting = static_cast<Fixed>(a.top + travel * upper / height);
    const SlabEdge above[] = {{a.top, meeting, a.winding}, {b.top, meeting, b.winding}};
    const SlabEdge below[] = {{meeting, b.bottom, b.winding}, {meeting, a.bottom, a.winding}};
    addOrdered(above, 2, winding, upper);
    addOrdered(below, 2, winding, height - upper);
}

void SlabFill::bisect(const SlabEdge* edges, uint32_t count, int32_t winding, uint32_t height)
{
    ScratchArray<SlabEdge> half(context_.scratchStack, count);
    if (!half) {
        fail();
        return;
    }
    if (height <= (count <= kFewEdges ? kLeastSlab / 16 : kLeastSlab)) {
        std::copy_n(edges, count, half.data());
        sortNearlySorted(half.data(), count, [](const SlabEdge& a, const SlabEdge& b) {
            return middleOf(a) < middleOf(b);
        });
        addOrdered(half.data(), count, winding, height);
        return;
    }
    for (uint32_t i = 0; i < count; ++i)
        half[i] = {edges[i].top, middleOf(edges[i]), edges[i].winding};
    add(half.data(), count, winding, height / 2);
    for (uint32_t i = 0; i < count; ++i)
        half[i] = {middleOf(edges[i]), edges[i].bottom, edges[i].winding};
    add(half.data(), count, winding, height - height / 2);
}

} // namespace Graphics2D
} // namespace KAVO
