// One edge of a polygon as both rasterisers walk it, from its upper to its lower end. Internal.
#pragma once

#include "math/FixedMath.h"
#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// Edges of at most this height (1/4096 of a row) are horizontal steps: x jumps to their lower end.
constexpr Fixed kStepHeight = 16;

// Where the line is (x at y), how it goes on, and where it ends. Always evaluated downward, so that
// two polygons that share an edge agree on it whichever way round they list it.
struct EdgeLine {
    Fixed x;
    Fixed y;
    Fixed slope; // x per row
    Fixed endX;
    Fixed endY;

    // Marks a line too flat for a 16.16 slope; it is lower than one row and x is interpolated.
    static constexpr Fixed kTooFlat = -0x7FFFFFFF - 1;

    // The edge goes down: from.y <= to.y. Its extent must fit 31 bits.
    static EdgeLine between(const MMPoint2D& from, const MMPoint2D& to)
    {
        const Fixed dx = to.x - from.x;
        const Fixed dy = to.y - from.y;
        EdgeLine line{from.x, from.y, 0, to.x, to.y};
        if (dy <= kStepHeight)
            line.x = to.x;
        else if ((magnitudeOf(dx) >> 15) >= static_cast<uint32_t>(dy))
            line.slope = kTooFlat;
        else if (dx != 0)
            line.slope = fixDiv(dx, dy);
        return line;
    }

    // x at a level not above y; the end's x from the end on.
    Fixed xAt(Fixed level) const
    {
        if (level >= endY) return endX;
        if (slope == kTooFlat)
            return wrapAdd(x, fixMulDiv(wrapSub(endX, x), wrapSub(level, y), wrapSub(endY, y)));
        return wrapAdd(x, fixMul(slope, wrapSub(level, y)));
    }

    // Continues from the given level, where the line is at levelX.
    void moveTo(Fixed level, Fixed levelX)
    {
        x = levelX;
        y = level;
    }
};

} // namespace Graphics2D
} // namespace KAVO
