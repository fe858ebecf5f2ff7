// SPDX-License-Identifier: MIT
// Flattening of cubic Bezier curves.
//
// A curve is halved at its parameter's middle until each piece is flat, first halves first, with
// the second halves waiting on a short stack. A piece is flat when its two triangles, start -
// middle - end and start - control - middle, together cover at most about one square pixel on the
// device; points stay in user space, only the tolerance follows the transform.
//
// What cannot be seen is flattened like the rest, for the bounds, but leaves no points behind.
#include "graphics2d/paths/BezierFlattening.h"

#include "graphics2d/MMContext2D.h"
#include "math/FixedMath.h"
#include "math/Points.h"

#include <cstddef>
#include <initializer_list>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kMaxPending = 10;

// Halving this often everywhere makes kMaxCurvePoints pieces.
constexpr uint32_t kEvenLevels = 10;
static_assert(1u << kEvenLevels == kMaxCurvePoints, "a point per piece");

struct Piece {
    BezierCurve curve;
    uint32_t level; // how often the whole curve was halved to make it
};

// 2 / |determinant| in 16.16 square user units; everything is flat under a singular transform.
int64_t areaTolerance(const Matrix2D& transform)
{
    const Fixed determinant =
        wrapSub(fixMul(transform.a, transform.d), fixMul(transform.b, transform.c));
    const uint32_t half = magnitudeOf(determinant) >> 1;
    if (half == 0) return INT64_MAX;
    return (0xFFFFFFFFu / half) & 0x7FFFFFFFu;
}

// Magnitude of cross(b - a, c - b) in 16.16 square units, the differences cut to 24.8 first.
int64_t turnArea(const MMPoint2D& a, const MMPoint2D& b, const MMPoint2D& c)
{
    const int64_t ux = (int64_t{b.x} - a.x) >> 8;
    const int64_t uy = (int64_t{b.y} - a.y) >> 8;
    const int64_t vx = (int64_t{c.x} - b.x) >> 8;
    const int64_t vy = (int64_t{c.y} - b.y) >> 8;
    return absolute(ux * vy - uy * vx);
}

// Halves a curve and hands its points to take. Returns how many they are, or kMaxCurvePoints + 1 as
// soon as there are more than that.
template <class Take>
uint32_t subdivide(const BezierCurve& curve, int64_t tolerance, uint32_t maxLevel, Take take)
{
    Piece pending[kMaxPending];
    uint32_t pendingCount = 0;
    Piece piece = {curve, 0};
    uint32_t count = 0;
    for (;;) {
        const BezierCurve& c = piece.curve;
        const MMPoint2D left1 = curveMiddle(c.start, c.control1);
        const MMPoint2D ridge = curveMiddle(c.control1, c.control2);
        const MMPoint2D right2 = curveMiddle(c.control2, c.end);
        const MMPoint2D left2 = curveMiddle(left1, ridge);
        const MMPoint2D right1 = curveMiddle(ridge, right2);
        const MMPoint2D split = curveMiddle(left2, right1);

        const int64_t area = turnArea(c.start, split, c.end) + turnArea(c.start, split, c.control1);
        if (area > tolerance && pendingCount < kMaxPending && piece.level < maxLevel) {
            const uint32_t level = piece.level + 1;
            pending[pendingCount++] = {{split, right1, right2, c.end}, level};
            piece = {{c.start, left1, left2, split}, level};
            continue;
        }
        if (++count > kMaxCurvePoints) return count;
        take(c.end);
        if (pendingCount == 0) return count;
        piece = pending[--pendingCount];
    }
}

// The stack of second halves bounds the first halves only: halving that goes on toward the end of a
// curve can still make too many points of a vast one. It then gets even pieces instead. Sinks are
// made anew for these.
template <class MakeTake>
uint32_t subdivideBounded(const BezierCurve& curve, int64_t tolerance, MakeTake makeTake)
{
    const uint32_t count = subdivide(curve, tolerance, UINT32_MAX, makeTake());
    if (count <= kMaxCurvePoints) return count;
    return subdivide(curve, tolerance, kEvenLevels, makeTake());
}

} // namespace

uint32_t flattenBezier(const Matrix2D& transform, const BezierCurve& curve, MMPoint2D* out,
                       uint32_t capacity, int32_t step)
{
    const auto write = [=] {
        return [=, written = uint32_t{0}](const MMPoint2D& point) mutable {
            if (written < capacity) out[static_cast<ptrdiff_t>(written) * step] = point;
            ++written;
        };
    };
    return subdivideBounded(curve, areaTolerance(transform), write);
}

// True when the whole curve may be seen, and where the mapping of points could wrap. A curve within
// a row is kept too: the shape may be one that counts as thin.
bool VisibleCurves::needsAllOf(const BezierCurve& curve) const
{
    BoundsUnion box;
    for (const MMPoint2D& p : {curve.start, curve.control1, curve.control2, curve.end})
        box.addPoint(mappedSaturated(transform_, p));
    constexpr Fixed kFar = 0x7FFF0000;
    if (box.minX < -kFar || box.minY < -kFar || box.maxX > kFar || box.maxY > kFar) return true;
    if (int64_t{box.maxY} - box.minY < 2 * kFixedOne) return true;
    return window_.contains(box.minX, box.minY, box.maxX, box.maxY);
}

uint32_t VisibleCurves::flatten(const BezierCurve& curve, MMPoint2D* out, uint32_t capacity)
{
    if (needsAllOf(curve)) return flattenBezier(transform_, curve, out, capacity);
    uint32_t kept = 0;
    const auto mapCurvePoint = [this](MMPoint2D p) {
        transform_.transform(&p, &p, 1);
        return p;
    };
    const auto keep = [&] {
        kept = 0;
        ClipWindow::Sides last = window_.sidesOf(mapCurvePoint(curve.start));
        ClipWindow::Sides before = 0;
        return [&, last, before](const MMPoint2D& point) mutable {
            const MMPoint2D device = mapCurvePoint(point);
            bounds_.addPoint(device);
            const ClipWindow::Sides sides = window_.sidesOf(device);
            if (kept == 0 || (sides & last & before) == 0) {
                ++kept;
                before = last;
            }
            last = sides;
            if (kept <= capacity) out[kept - 1] = point;
        };
    };
    const uint32_t count = subdivideBounded(curve, areaTolerance(transform_), keep);
    if (kept <= capacity) leftOut_ += count - kept; // else the caller comes again
    return kept;
}

int32_t MMContext2D::getBezierPts(MMPoint2D* out, MMPoint2D start, MMPoint2D control1,
                                  MMPoint2D control2, MMPoint2D end)
{
    if (out == nullptr) return 0;
    const BezierCurve curve = {start, control1, control2, end};
    const uint32_t count = flattenBezier(transform, curve, out, kMaxCurvePoints, pointStep);
    return wrapMul(static_cast<int32_t>(count), pointStep);
}

} // namespace Graphics2D
} // namespace KAVO
