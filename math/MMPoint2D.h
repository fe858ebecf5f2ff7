// SPDX-License-Identifier: MIT
// Points and rectangles in 16.16 coordinates.
#pragma once

#include "Fixed.h"

// A point or a vector. Arrays of points are the polygon format of the rasterisers.
struct MMPoint2D {
    KAVO::Fixed x;
    KAVO::Fixed y;
};

constexpr bool operator==(const MMPoint2D& a, const MMPoint2D& b)
{
    return a.x == b.x && a.y == b.y;
}

constexpr bool operator!=(const MMPoint2D& a, const MMPoint2D& b)
{
    return !(a == b);
}

// A rectangle; x1 and y1 are its right and bottom ends.
struct MMFixedRegion {
    KAVO::Fixed x0;
    KAVO::Fixed y0;
    KAVO::Fixed x1;
    KAVO::Fixed y1;
};
