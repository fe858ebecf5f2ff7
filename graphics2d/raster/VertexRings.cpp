// SPDX-License-Identifier: MIT
#include "graphics2d/raster/VertexRings.h"

#include "math/Points.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Room for the points, twice as many where edges are cut, and the links.
uint32_t roomFor(const Contours& contours, bool cutLongEdges)
{
    const uint64_t points = uint64_t{contours.pointCount()} * (cutLongEdges ? 2 : 1);
    return static_cast<uint32_t>(std::min<uint64_t>(points + contours.count + 1, UINT32_MAX));
}

} // namespace

VertexRings::VertexRings(MMStackContext& stack, const PixelGrid& grid, bool cutLongEdges,
                         const Contours& contours)
    : grid_(grid), cutLongEdges_(cutLongEdges), vertices_(stack, roomFor(contours, cutLongEdges))
{
    if (vertices_) appendLink(0);
}

void VertexRings::appendRings(const Contours& contours)
{
    for (uint32_t i = 0; i < contours.count; ++i)
        appendRing(contours.begin(i), contours.end(i));
}

void VertexRings::close(MMStackContext& stack)
{
    vertices_.resize(size_);
    firstMinimum_ = sortedMinima(stack);
}

void VertexRings::appendLink(uint32_t firstOfRing)
{
    vertices_[size_++] = {{static_cast<Fixed>(firstOfRing), kLinkY}, kNoVertex};
}

void VertexRings::appendRing(const MMPoint2D* points, const MMPoint2D* end)
{
    if (points == end) return;
    const uint32_t first = size_;
    MMPoint2D previous = {};
    for (const MMPoint2D* point = points; point <= end; ++point) { // in the end the first one again
        const MMPoint2D vertex = grid_.moved(point != end ? *point : *points);
        if (point != points) {
            if (vertex == previous) continue;
            if (cutLongEdges_) append(midPoint(previous, vertex));
        }
        append(vertex);
        previous = vertex;
    }
    if (size_ > first + 1) --size_; // the closing copy of the first vertex
    vertices_[first - 1].nextMinimum = size_ - 1;
    appendLink(first);
    if (!linkMinima(first)) size_ = first;
}

// A minimum is the last vertex before the outline goes down again after it went up. False when the
// ring that was appended last has none, for it lies on one horizontal line.
bool VertexRings::linkMinima(uint32_t first)
{
    uint32_t start = size_ - 1; // the last vertex from which an edge is not horizontal
    do {
        if (start == first) return false;
        --start;
    } while (vertices_[start].point.y == vertices_[next(start, 1)].point.y);

    const uint32_t count = size_ - 1 - first;
    bool rose = vertices_[next(start, 1)].point.y < vertices_[start].point.y;
    for (uint32_t n = 0, i = next(start, 1); n < count; ++n) {
        const uint32_t following = next(i, 1);
        const Fixed y = vertices_[i].point.y;
        const Fixed followingY = vertices_[following].point.y;
        if (followingY != y) {
            if (rose && followingY > y) addMinimum(i);
            rose = followingY < y;
        }
        i = following;
    }
    return true;
}

void VertexRings::addMinimum(uint32_t i)
{
    if (lastMinimum_ == kNoVertex)
        firstMinimum_ = i;
    else
        vertices_[lastMinimum_].nextMinimum = i;
    vertices_[i].nextMinimum = kNoVertex;
    lastMinimum_ = i;
    ++minimumCount_;
}

// Parts many minima into bands of equal height, no more of them than minima, and sorts each band:
// where minima are spread evenly this takes but a few steps for each.
uint32_t VertexRings::sortedMinima(MMStackContext& stack)
{
    struct Band {
        uint32_t first;
        uint32_t count;
    };
    constexpr uint32_t kMany = 32;
    const auto sorted = [this](uint32_t first, uint32_t count) {
        return sortLinked<&RingVertex::nextMinimum>(vertices_.data(), first, count, isAbove);
    };
    if (minimumCount_ < kMany) return sorted(firstMinimum_, minimumCount_);
    Fixed highest = vertices_[firstMinimum_].point.y;
    Fixed lowest = highest;
    for (uint32_t i = firstMinimum_; i != kNoVertex; i = vertices_[i].nextMinimum) {
        highest = std::min(highest, vertices_[i].point.y);
        lowest = std::max(lowest, vertices_[i].point.y);
    }
    const uint32_t range = static_cast<uint32_t>(wrapSub(lowest, highest));
    uint32_t shift = 0; // from a distance in y to a band
    while (range >> shift >= minimumCount_)
        ++shift;
    const uint32_t bandCount = (range >> shift) + 1;
    ScratchArray<Band> bands(stack, bandCount);
    if (!bands) return sorted(firstMinimum_, minimumCount_);
    std::fill_n(bands.data(), bandCount, Band{kNoVertex, 0});
    for (uint32_t i = firstMinimum_; i != kNoVertex;) {
        RingVertex& vertex = vertices_[i];
        Band& band = bands[static_cast<uint32_t>(wrapSub(vertex.point.y, highest)) >> shift];
        const uint32_t following = vertex.nextMinimum;
        vertex.nextMinimum = band.first;
        band.first = i;
        ++band.count;
        i = following;
    }
    uint32_t head = kNoVertex;
    uint32_t* link = &head;
    for (uint32_t i = 0; i < bandCount; ++i) {
        *link = sorted(bands[i].first, bands[i].count);
        while (*link != kNoVertex)
            link = &vertices_[*link].nextMinimum;
    }
    return head;
}

} // namespace Graphics2D
} // namespace KAVO
