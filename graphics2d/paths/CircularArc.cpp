// SPDX-License-Identifier: MIT
// Circular arcs as runs of points, filled and stroked.
#include "graphics2d/OutOfMemory.h"
#include "graphics2d/paths/ShapePainting.h"
#include "graphics2d/strokes/CircleSteps.h"
#include "math/FixedMath.h"
#include "math/LinearPart.h"
#include "math/WideMath.h"
#include "memory/ScratchArray.h"

#include <algorithm>
#include <cstddef>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kMaxArcPoints = 360;

// How far chords may stray from the circle, in device pixels.
constexpr Fixed kSagitta = kFixedOne / 32;

// Neighbouring chords turn by less than what the stroker joins smoothly.
constexpr Degrees kCoarsestStep = kDegrees90 / 8;
constexpr Degrees kFinestStep = kFixedOne;
static_assert(kDegrees360 / kFinestStep == kMaxArcPoints, "a whole circle of the finest steps");

// The turn between points of an arc that is fine enough out to the given radius in user units.
Degrees greatestStep(const Matrix2D& m, int64_t radius)
{
    const int64_t stretch = stretchOf(linearPartOf(m)).greatest;
    return std::clamp(stepWithin(kSagitta, (radius * (stretch >> 1)) >> 15), kFinestStep,
                      kCoarsestStep);
}

struct Circle {
    MMPoint2D centre;
    Fixed radius;

    MMPoint2D at(const UnitVector& direction) const
    {
        return {saturated(centre.x + ((int64_t{direction.x} * radius + kOne30 / 2) >> 30)),
                saturated(centre.y + ((int64_t{direction.y} * radius + kOne30 / 2) >> 30))};
    }
};

// The points of an arc between its ends, every stride positions. Returns how many they are.
uint32_t writeBetween(const Circle& circle, UnitVector direction, CircleSteps steps,
                      bool increasing, MMPoint2D* out, ptrdiff_t stride)
{
    if (!increasing) steps.rotation.y = -steps.rotation.y;
    for (uint32_t i = 1; i < steps.count; ++i) {
        direction = rotated(direction, steps.rotation);
        out[static_cast<ptrdiff_t>(i - 1) * stride] = circle.at(direction);
    }
    return steps.count - 1;
}

UnitVector directionTo(const MMPoint2D& centre, const MMPoint2D& p)
{
    return polarOf(int64_t{p.x} - centre.x, int64_t{p.y} - centre.y).direction;
}

// From one direction to another by increasing angles, 0 to just below 360 degrees.
Degrees turnFrom(const UnitVector& a, const UnitVector& b)
{
    // fixATan wants some room above its vectors.
    const int64_t dot = int64_t{a.x} * b.x + int64_t{a.y} * b.y;
    const int64_t cross = int64_t{a.x} * b.y - int64_t{a.y} * b.x;
    return fixATan(static_cast<int32_t>(dot >> 32), static_cast<int32_t>(cross >> 32));
}

} // namespace

int32_t MMContext2D::getCircularArcPts(MMPoint2D* out, MMPoint2D& centre, MMPoint2D& from,
                                       MMPoint2D& to, Fixed radius, uint8_t increasing)
{
    if (out == nullptr) return 0;
    const UnitVector first = directionTo(centre, from);
    const UnitVector last = directionTo(centre, to);
    const Degrees angle = increasing != 0 ? turnFrom(first, last) : turnFrom(last, first);
    const CircleSteps steps(angle, greatestStep(transform, magnitudeOf(radius)));
    const uint32_t written =
        writeBetween({centre, radius}, first, steps, increasing != 0, out, pointStep);
    out[static_cast<ptrdiff_t>(written) * pointStep] = to;
    return wrapMul(static_cast<int32_t>(written + 1), pointStep);
}

void MMContext2D::drawCircularArc(MMPoint2D* centre, Fixed radius, Degrees start, Degrees sweep,
                                  uint8_t pie, uint8_t outline)
{
    BoundsUnion bounds;
    bounds.storeTo(*this);
    if (centre == nullptr || radius <= 0) return;
    ScratchArray<MMPoint2D> points(scratchStack, kMaxArcPoints + 2); // both ends, or the centre
    if (!points) {
        noteOutOfMemory(*this);
        return;
    }

    const bool fills = outline == 0 && fillPaint.paintType != kPaintNone;
    const bool strokes = strokePaint.paintType != kPaintNone && strokeHalfWidth > 0;
    const bool whole = magnitudeOf(sweep) >= magnitudeOf(kDegrees360);
    const Degrees angle = whole ? kDegrees360 : static_cast<Degrees>(magnitudeOf(sweep));
    const int64_t reach = int64_t{radius} + (strokes ? strokeHalfWidth : 0);
    const CircleSteps steps(angle, greatestStep(transform, reach));
    const Circle circle = {*centre, radius};

    uint32_t count = 0;
    points[count++] = circle.at(directionAt(start));
    count += writeBetween(circle, directionAt(start), steps, sweep >= 0, &points[1], 1);
    if (!whole) {
        points[count++] = circle.at(directionAt(wrapAdd(start % kDegrees360, sweep)));
        if (pie != 0 && outline == 0) points[count++] = *centre;
    }

    if (fills) {
        if (!fillShape(*this, points.data(), count, kFillNonZero, bounds)) {
            noteOutOfMemory(*this);
            return;
        }
    }
    if (strokes) {
        bounds.add(strokeShape(*this, points.data(), count, whole || outline == 0, joinStyle));
    }
    bounds.storeTo(*this);
}

} // namespace Graphics2D
} // namespace KAVO
