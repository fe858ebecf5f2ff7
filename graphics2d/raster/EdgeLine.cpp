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
    if (slope == kNoSlope || slope == kTooFlat) return xWithoutSlope(level);
    return wrapAdd(x, fixMulInline(slope, wrapSub(level, y)));
}

[[gnu::noinline]] Fixed EdgeLine::xWithoutSlope(Fixed level)
{
    if (slope == kNoSlope) {
        findSlope();
        return xAt(level);
    }
    return wrapAdd(x, fixMulDiv(wrapSub(endX, x), wrapSub(level, y), wrapSub(endY, y)));
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
