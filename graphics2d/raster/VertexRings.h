// SPDX-License-Identifier: MIT
// The contours of a shape as rings of vertices, with the list of their local minima. Internal.
#pragma once

#include "graphics2d/raster/Contours.h"
#include "graphics2d/raster/LinkedSort.h"
#include "graphics2d/raster/PixelGrid.h"
#include "memory/ScratchArray.h"

namespace KAVO {
namespace Graphics2D {

constexpr uint32_t kNoVertex = kNoLink;

// All rings share one array, with a link before, between and behind them:
//
//     link | ring 0 ... | link | ring 1 ... | link
//
// A step that leaves a ring meets a link, which leads to the ring's other end. Links lie above all
// vertices, so that who walks downward looks for them only where an edge goes up.
class VertexRings {
public:
    // Takes room for the contours. Long edges are to be cut into halves if wanted.
    VertexRings(MMStackContext& stack, const PixelGrid& grid, bool cutLongEdges,
                const Contours& contours);

    explicit operator bool() const { return static_cast<bool>(vertices_); }

    // Takes a contour's points, on the pixel grid and without repetitions. A contour that lies on
    // one horizontal line is left out.
    void appendRing(const MMPoint2D* points, const MMPoint2D* end);
    void appendRings(const Contours& contours);

    // After the last one, with the stack as the constructor left it: gives back the room that is
    // left, and makes the list of minima.
    void close(MMStackContext& stack);

    const MMPoint2D& operator[](uint32_t i) const { return vertices_[i].point; }

    // The next vertex of the same ring, forward (winding 1) or backward (winding -1).
    uint32_t next(uint32_t i, int32_t winding) const
    {
        const uint32_t beside = i + static_cast<uint32_t>(winding);
        return isLink(beside) ? ringEnd(beside, winding) : beside;
    }

    // Steps down to the next vertex of the ring. False where the outline goes up.
    bool stepDown(uint32_t& i, int32_t winding) const
    {
        uint32_t beside = i + static_cast<uint32_t>(winding);
        const Fixed y = vertices_[i].point.y;
        if (vertices_[beside].point.y < y) {
            if (!isLink(beside)) return false;
            beside = ringEnd(beside, winding);
            if (vertices_[beside].point.y < y) return false;
        }
        i = beside;
        return true;
    }

    // Local minima of y, the topmost vertices of the shape's parts, in the order of y, then of x,
    // then of their indices; kNoVertex after the last.
    uint32_t firstMinimum() const { return firstMinimum_; }
    uint32_t nextMinimum(uint32_t i) const { return vertices_[i].nextMinimum; }
    uint32_t minimumCount() const { return minimumCount_; }

private:
    struct RingVertex {
        MMPoint2D point;
        uint32_t nextMinimum; // the local minimum that follows in the order of y
    };
    // A link has kLinkY, the first vertex of the ring before it in point.x, and the last one of the
    // ring behind it in nextMinimum. The pixel grid puts no vertex so high.
    static constexpr Fixed kLinkY = -0x7FFFFFFF - 1;

    bool isLink(uint32_t i) const { return vertices_[i].point.y == kLinkY; }
    uint32_t ringEnd(uint32_t link, int32_t winding) const
    {
        return winding > 0 ? static_cast<uint32_t>(vertices_[link].point.x)
                           : vertices_[link].nextMinimum;
    }

    void appendLink(uint32_t firstOfRing);
    void append(const MMPoint2D& vertex) { vertices_[size_++].point = vertex; }
    bool linkMinima(uint32_t first);
    void addMinimum(uint32_t i);
    static bool isAbove(const RingVertex& a, const RingVertex& b)
    {
        const MMPoint2D& p = a.point;
        const MMPoint2D& q = b.point;
        if (p.y != q.y) return p.y < q.y;
        return p.x != q.x ? p.x < q.x : &a < &b;
    }
    uint32_t sortedMinima(MMStackContext& stack);

    const PixelGrid grid_;
    bool cutLongEdges_;
    uint32_t size_ = 0; // with the links
    uint32_t firstMinimum_ = kNoVertex;
    uint32_t lastMinimum_ = kNoVertex; // while the minima are being collected
    uint32_t minimumCount_ = 0;
    ScratchArray<RingVertex> vertices_;
};

} // namespace Graphics2D
} // namespace KAVO
