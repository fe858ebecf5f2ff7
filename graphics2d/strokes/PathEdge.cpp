// SPDX-License-Identifier: MIT
#include "graphics2d/strokes/PathEdge.h"

#include "math/FixedMath.h"
#include "math/Points.h"
#include "math/Vector2D.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// The diagonal of a square with smaller sides still fits.
bool isFar(Fixed a, Fixed b)
{
    constexpr int64_t kFar = 0x40000000;
    const int64_t difference = int64_t{b} - a;
    return difference <= -kFar || difference >= kFar;
}

} // namespace

PathEdge PathEdge::toward(const MMPoint2D& from, const MMPoint2D& to)
{
    PathEdge edge = {from, to, 0};
    while (isFar(from.x, edge.end.x) || isFar(from.y, edge.end.y))
        edge.end = midPoint(from, edge.end);
    const MMPoint2D vector = edge.vector();
    edge.length = v2dNorm(&vector);
    return edge;
}

MMPoint2D PathEdge::direction() const
{
    if (length == 0) return {0, 0};
    return {fixDiv(end.x - start.x, length), fixDiv(end.y - start.y, length)};
}

} // namespace Graphics2D
} // namespace KAVO
