// SPDX-License-Identifier: MIT
// Turns by equal steps: what round joins, caps and arcs are made of. Internal.
//
// A step is a rotation by one precomputed matrix, exact to a few 2^-30.
#pragma once

#include "math/UnitVector.h"

namespace KAVO {
namespace Graphics2D {

// The greatest turn between neighbouring points of a circle of the given radius in device pixels
// that keeps its chords within sagitta (also device pixels) of it; 0.1 to 45 degrees.
Degrees stepWithin(Fixed sagitta, int64_t radius);

// A turn cut into equal steps.
struct CircleSteps {
    uint32_t count;
    UnitVector rotation; // of one step, clockwise on a y-down target

    // The angle is not negative; greatestStep as stepWithin answers it.
    CircleSteps(Degrees angle, Degrees greatestStep);
};

} // namespace Graphics2D
} // namespace KAVO
