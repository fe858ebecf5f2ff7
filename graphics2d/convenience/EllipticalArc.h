// SPDX-License-Identifier: MIT
// Elliptical arcs as cubic curves. Internal.
#pragma once

#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// Curves one after the other, of at most 45 degrees each: two control points and the end of each.
// They leave the true arc by at most 1/200,000 of its radius.
struct ArcCurves {
    static constexpr uint32_t kMost = 8;

    MMPoint2D points[3 * kMost];
    uint32_t count;
};

// An arc as paths of documents give it: the radii (signs ignored, not 0) along axes turned by
// rotation, and which of the four arcs between the ends is meant. Radii that are too short to reach
// are enlarged together. No curves when the ends coincide. Points beyond the range of 16.16 are
// held at its ends.
struct EllipticalArc {
    MMPoint2D from;
    MMPoint2D to;
    Fixed rx;
    Fixed ry;
    Degrees rotation;
    bool large;
    bool increasing; // in the direction of increasing angles
};
ArcCurves arcCurves(const EllipticalArc& arc);

// The whole circle from its rightmost point on, with increasing angles.
ArcCurves circleCurves(MMPoint2D centre, Fixed radius);

} // namespace Graphics2D
} // namespace KAVO
