// Points and rectangles in 16.16 coordinates.
#pragma once

#include "math/Fixed.h"

// A point or a vector. Arrays of points are the polygon format of the rasterisers.
struct MMPoint2D {
    Fixed x;
    Fixed y;
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
    Fixed x0;
    Fixed y0;
    Fixed x1;
    Fixed y1;
};
