// SPDX-License-Identifier: MIT
// Cubic curves as runs of points. Internal.
#pragma once

#include "math/Matrix2D.h"

namespace KAVO {
namespace Graphics2D {

// A cubic Bezier curve in user space.
struct BezierCurve {
    MMPoint2D start;
    MMPoint2D control1;
    MMPoint2D control2;
    MMPoint2D end;
};

// No curve is made of more points than this, and nearly all of fewer than the usual number.
constexpr uint32_t kMaxCurvePoints = 1024;
constexpr uint32_t kUsualCurvePoints = 250;

// Writes the points of a curve, its start left out and its end always the last, every step
// positions from out on; fine enough for drawing through transform. Returns how many they are, or 0
// when there are more than capacity (what has been written is then of no use). A capacity of
// kMaxCurvePoints always suffices.
uint32_t flattenBezier(const Matrix2D& transform, const BezierCurve& curve, MMPoint2D* out,
                       uint32_t capacity, int32_t step = 1);

} // namespace Graphics2D
} // namespace KAVO
