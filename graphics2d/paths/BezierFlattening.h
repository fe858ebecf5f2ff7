// SPDX-License-Identifier: MIT
// Cubic curves as runs of points. Internal.
#pragma once

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/raster/ClipWindow.h"
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

// How curves become points: fine enough for drawing through the transform, by the classic rule or
// the refined one.
struct CurveRule {
    const Matrix2D& transform;
    bool refined;
};

inline CurveRule curveRuleOf(const MMContext2D& context)
{
    return {context.transform, context.refined != 0};
}

// No curve is made of more points than this, and nearly all of fewer than the usual number.
constexpr uint32_t kMaxCurvePoints = 1024;
constexpr uint32_t kUsualCurvePoints = 250;

// Writes the points of a curve, its start left out and its end always the last, every step
// positions from out on. Returns how many they are, at
// most kMaxCurvePoints; those beyond capacity are counted and not written.
uint32_t flattenBezier(const CurveRule& rule, const BezierCurve& curve, MMPoint2D* out,
                       uint32_t capacity, int32_t step = 1);

// The points of curves that are to be filled, as far as they are needed for what can be seen: three
// in a row on one side of it are two.
class VisibleCurves {
public:
    VisibleCurves(const CurveRule& rule, const ClipWindow& window) : rule_(rule), window_(window) {}

    // As flattenBezier. The points that are not needed are left out of the count.
    uint32_t flatten(const BezierCurve& curve, MMPoint2D* out, uint32_t capacity);

    uint64_t leftOut() const { return leftOut_; }

    // Of all points of the curves that lost some, in device space.
    const BoundsUnion& bounds() const { return bounds_; }

private:
    bool needsAllOf(const BezierCurve& curve) const;

    const CurveRule rule_;
    const ClipWindow& window_;
    BoundsUnion bounds_;
    uint64_t leftOut_ = 0;
};

} // namespace Graphics2D
} // namespace KAVO
