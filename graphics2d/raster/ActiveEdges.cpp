// SPDX-License-Identifier: MIT
// The edges that cross the current row of a polygon, and the vertices they come from.
#include "graphics2d/raster/ActiveEdges.h"
#include "graphics2d/raster/NearlySorted.h"
#include "graphics2d/raster/PolygonBounds.h"

namespace KAVO {
namespace Graphics2D {

VertexRing::VertexRing(MMStackContext& stack, bool cutLongEdges, const MMPoint2D* points,
                       uint32_t count)
    : cutLongEdges_(cutLongEdges), vertices_(stack, cutLongEdges_ ? 2 * count + 2 : count + 1)
{
    if (!vertices_) return;
    for (uint32_t i = 0; i < count; ++i)
        append(points[i]);
    append(points[0]);
    if (size_ > 1) --size_; // the closing copy of the first vertex
    vertices_.resize(size_);
    linkMinima();
}

void VertexRing::append(const MMPoint2D& point)
{
    const MMPoint2D vertex{shiftedByHalf(point.x), shiftedByHalf(point.y)};
    if (size_ != 0) {
        const MMPoint2D& previous = vertices_[size_ - 1].point;
        if (vertex == previous) return;
        if (cutLongEdges_) vertices_[size_++].point = midPoint(previous, vertex);
    }
    vertices_[size_++].point = vertex;
}

// A minimum is the last vertex before the outline goes down again after it went up.
void VertexRing::linkMinima()
{
    uint32_t last = size_; // the last vertex from which an edge is not horizontal
    do {
        if (last == 0) return; // all on one line
        --last;
    } while (vertices_[last].point.y == vertices_[next(last, 1)].point.y);

    bool rose = vertices_[next(last, 1)].point.y < vertices_[last].point.y;
    uint32_t tail = kNoVertex;
    for (uint32_t n = 0, i = next(last, 1); n < size_; ++n, i = next(i, 1)) {
        const Fixed y = vertices_[i].point.y;
        const Fixed nextY = vertices_[next(i, 1)].point.y;
        if (nextY == y) continue;
        if (rose && nextY > y) {
            if (tail == kNoVertex)
                firstMinimum_ = i;
            else
                vertices_[tail].nextMinimum = i;
            tail = i;
            ++minimumCount_;
        }
        rose = nextY < y;
    }
    vertices_[tail].nextMinimum = kNoVertex;
    firstMinimum_ = sortedByY(firstMinimum_, minimumCount_);
}

bool VertexRing::isAbove(uint32_t a, uint32_t b) const
{
    const MMPoint2D& p = vertices_[a].point;
    const MMPoint2D& q = vertices_[b].point;
    return p.y < q.y || (p.y == q.y && p.x < q.x);
}

// Merge sort of count linked minima; returns the new first one. The recursion is as deep as the
// binary logarithm of the count.
uint32_t VertexRing::sortedByY(uint32_t first, uint32_t count)
{
    if (count < 2) return first;
    uint32_t middle = first;
    for (uint32_t i = 1; i < count / 2; ++i)
        middle = vertices_[middle].nextMinimum;
    uint32_t b = vertices_[middle].nextMinimum;
    vertices_[middle].nextMinimum = kNoVertex;
    uint32_t a = sortedByY(first, count / 2);
    b = sortedByY(b, count - count / 2);

    uint32_t head = kNoVertex;
    uint32_t* link = &head;
    while (a != kNoVertex && b != kNoVertex) {
        uint32_t& lesser = isAbove(b, a) ? b : a;
        *link = lesser;
        link = &vertices_[lesser].nextMinimum;
        lesser = *link;
    }
    *link = a != kNoVertex ? a : b;
    return head;
}

bool Chain::step(const VertexRing& ring)
{
    const uint32_t next = ring.next(vertex, winding);
    const MMPoint2D& from = ring[vertex];
    if (ring[next].y < from.y) return false;
    line = EdgeLine::between(from, ring[next]);
    vertex = next;
    return true;
}

bool Chain::descend(const VertexRing& ring, Fixed level)
{
    while (line.endY <= level)
        if (!step(ring)) return false;
    if (line.y < level) line.moveTo(level, line.xAt(level));
    return true;
}

ActiveEdges::ActiveEdges(MMContext2D& context, const VertexRing& ring)
    : ring_(ring), pool_(kActiveChainWords), order_(context.scratchStack, 2 * ring.minimumCount()),
      minimum_(ring.firstMinimum()), ready_(order_ && pool_.Resize(2 * ring.size()) == 0)
{
}

void ActiveEdges::sort(uint32_t first, uint32_t count)
{
    sortNearlySorted(begin() + first, count);
}

void ActiveEdges::startAbove(Fixed level)
{
    while (minimum_ != kNoVertex && ring_[minimum_].y < level) {
        startChain(minimum_, -1);
        startChain(minimum_, 1);
        minimum_ = ring_.nextMinimum(minimum_);
    }
}

void ActiveEdges::startChain(uint32_t minimum, int32_t winding)
{
    void* item = pool_.Alloc(); // two slots per edge: never null
    if (item == nullptr) return;
    const uint32_t offset = static_cast<uint32_t>(static_cast<uint32_t*>(item) - pool_.slots);
    // The next search goes on from here: most slots before are taken, and a search over all of them
    // for every chain would cost their product.
    pool_.searchStart = offset / (kActiveChainWords + 1) / 32;
    const MMPoint2D& p = ring_[minimum];
    ActiveChain& chain = *static_cast<ActiveChain*>(item);
    chain.line = EdgeLine::at(p);
    chain.vertex = minimum;
    chain.winding = winding;
    chain.ended = false;
    if (!chain.descend(ring_, p.y)) {
        pool_.DeAlloc(item);
        return;
    }
    order_[size_++] = {p.x, p.x, p.x, p.x, 0, 0, winding, offset, false, false, false};
}

} // namespace Graphics2D
} // namespace KAVO
