// SPDX-License-Identifier: MIT
// The outlines of a shape. Internal.
#pragma once

#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// Closed outlines, one after the other in one array of points.
struct Contours {
    const MMPoint2D* points;
    const uint32_t* ends; // of each contour: the index behind its last point
    uint32_t count;

    uint32_t pointCount() const { return count != 0 ? ends[count - 1] : 0; }
    const MMPoint2D* begin(uint32_t i) const { return points + (i != 0 ? ends[i - 1] : 0); }
    const MMPoint2D* end(uint32_t i) const { return points + ends[i]; }
};

} // namespace Graphics2D
} // namespace KAVO
