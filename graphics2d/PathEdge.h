// The straight edges of a path, for walking along them by distance. Internal.
#pragma once

#include "graphics2d/PolygonBounds.h"
#include "math/FixedMath.h"
#include "math/Vector2D.h"

namespace KAVO {
namespace Graphics2D {

// An edge whose length fits 16.16.
struct PathEdge {
    MMPoint2D start;
    MMPoint2D end;
    Fixed length;
    MMPoint2D direction; // unit vector; the zero vector for an edge without length

    // The edge from one point toward another, or the first part of it: only coordinates at opposite
    // ends of the number range are too far apart for one edge.
    static PathEdge toward(const MMPoint2D& from, const MMPoint2D& to)
    {
        PathEdge edge = {from, to, 0, {0, 0}};
        while (isFar(from.x, edge.end.x) || isFar(from.y, edge.end.y))
            edge.end = midPoint(from, edge.end);
        const MMPoint2D vector = {edge.end.x - from.x, edge.end.y - from.y};
        edge.length = v2dNorm(&vector);
        if (edge.length != 0)
            edge.direction = {fixDiv(vector.x, edge.length), fixDiv(vector.y, edge.length)};
        return edge;
    }

    // Points on the edge by distance from its start or its end.
    MMPoint2D afterStart(Fixed distance) const
    {
        if (distance == length) return end;
        return {wrapAdd(start.x, fixMul(direction.x, distance)),
                wrapAdd(start.y, fixMul(direction.y, distance))};
    }
    MMPoint2D beforeEnd(Fixed distance) const
    {
        return {wrapSub(end.x, fixMul(direction.x, distance)),
                wrapSub(end.y, fixMul(direction.y, distance))};
    }

private:
    // The diagonal of a square with smaller sides still fits.
    static constexpr bool isFar(Fixed a, Fixed b)
    {
        constexpr int64_t kFar = 0x40000000;
        const int64_t difference = int64_t{b} - a;
        return difference <= -kFar || difference >= kFar;
    }
};

} // namespace Graphics2D
} // namespace KAVO
