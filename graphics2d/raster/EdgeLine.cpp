// SPDX-License-Identifier: MIT
// One edge of a polygon as both rasterisers walk it.
#include "graphics2d/raster/EdgeLine.h"
#include "math/FixedInline.h"

namespace KAVO {
namespace Graphics2D {

Fixed EdgeLine::xAt(Fixed level)
{
    if (level >= endY) return endX;
    if (level == y) return x;
    if (slope == kNoSlope) findSlope();
    if (slope == kTooFlat)
        return wrapAdd(x, fixMulDiv(wrapSub(endX, x), wrapSub(level, y), wrapSub(endY, y)));
    return wrapAdd(x, fixMulInline(slope, wrapSub(level, y)));
}

void EdgeLine::findSlope()
{
    const Fixed dx = endX - x;
    const Fixed dy = endY - y;
    const bool tooFlat = (magnitudeOf(dx) >> 15) >= static_cast<uint32_t>(dy);
    slope = tooFlat ? kTooFlat : fixDiv(dx, dy);
}

} // namespace Graphics2D
} // namespace KAVO
