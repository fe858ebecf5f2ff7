// SPDX-License-Identifier: MIT
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
    Fixed slope; // x per row, or one of the marks below
    Fixed endX;
    Fixed endY;

    // Not computed yet: many edges end in the row in which they start and never need a slope.
    static constexpr Fixed kNoSlope = -0x7FFFFFFF - 1;
    // Too flat for a 16.16 slope; the line is lower than one row and x is interpolated.
    static constexpr Fixed kTooFlat = 0x7FFFFFFF;

    // The edge goes down: from.y <= to.y. Its extent must fit 31 bits.
    static EdgeLine between(const MMPoint2D& from, const MMPoint2D& to)
    {
        if (to.y - from.y <= kStepHeight) return {to.x, from.y, 0, to.x, to.y};
        return {from.x, from.y, kNoSlope, to.x, to.y};
    }

    // A line of no height at a point.
    static EdgeLine at(const MMPoint2D& point) { return {point.x, point.y, 0, point.x, point.y}; }

    // x at a level not above y; the end's x from the end on.
    Fixed xAt(Fixed level);

    // x is the same everywhere.
    bool isUpright() const { return x == endX && (slope == 0 || slope == kNoSlope); }

    // x per row, of a line at least one row high.
    Fixed slopePerRow()
    {
        if (slope == kNoSlope) findSlope();
        return slope;
    }

    // Continues from the given level, at which the line has been evaluated.
    void moveTo(Fixed level, Fixed levelX)
    {
        x = levelX;
        y = level;
    }

private:
    Fixed xWithoutSlope(Fixed level);
    void findSlope();
};

} // namespace Graphics2D
} // namespace KAVO
