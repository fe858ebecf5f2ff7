// SPDX-License-Identifier: MIT
// What both rasterisers do before they walk a polygon: bounds and rejection. Internal.
#pragma once

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/PixelBox.h"

namespace KAVO {
namespace Graphics2D {

// True when differences of coordinates may not fit 32 bits. Edges are then cut into halves.
inline bool spansTooFar(const BoundsUnion& bounds)
{
    return wrapSub(bounds.maxX, bounds.minX) < 0 || wrapSub(bounds.maxY, bounds.minY) < 0;
}

BoundsUnion boundsOfPolygon(const MMPoint2D* points, uint32_t count);

// The pixels of the clip rectangle and the target that a polygon with these bounds can reach,
// without rows at its bottom that a mask hides; an empty box when drawing is suppressed.
PixelBox reachableBox(const MMContext2D& context, const BoundsUnion& bounds);

} // namespace Graphics2D
} // namespace KAVO
