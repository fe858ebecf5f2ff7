// SPDX-License-Identifier: MIT
// What both rasterisers do before they walk a polygon: bounds, rejection, the half-pixel shift.
// Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// Whole pixels; left and top inclusive, right and bottom exclusive.
struct PixelBox {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;

    bool empty() const { return left >= right || top >= bottom; }
};

// Adds the half pixel that lets integer parts select pixels by their centres. Stops at the end of
// the range, which lies beyond every clip rectangle.
constexpr Fixed shiftedByHalf(Fixed v)
{
    return v > 0x7FFFFFFF - kFixedHalf ? 0x7FFFFFFF : v + kFixedHalf;
}

// True when differences of coordinates may not fit 32 bits. Its edges are then cut into halves.
inline bool spansTooFar(const MMContext2D& context)
{
    return wrapSub(context.boundsMaxX, context.boundsMinX) < 0 ||
           wrapSub(context.boundsMaxY, context.boundsMinY) < 0;
}

// The middle of the edge from a to b.
inline MMPoint2D midPoint(const MMPoint2D& a, const MMPoint2D& b)
{
    return {(a.x >> 1) + (b.x >> 1), (a.y >> 1) + (b.y >> 1)};
}

// The part of the target inside the clip rectangle.
PixelBox drawableBox(const MMContext2D& context);

// Stores the polygon's bounds in the context. Returns the pixels of the clip rectangle and the
// target that the polygon can reach; an empty box when drawing is suppressed. count is at least 1.
PixelBox boundPolygon(MMContext2D& context, const MMPoint2D* points, uint32_t count);

} // namespace Graphics2D
} // namespace KAVO
