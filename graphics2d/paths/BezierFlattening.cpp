// SPDX-License-Identifier: MIT
// Flattening of cubic Bezier curves.
//
// A curve is halved at its parameter's middle until each piece is flat, first halves first, with
// the second halves waiting on a short stack. A piece is flat when its two triangles, start -
// middle - end and start - control - middle, together cover at most about one square pixel on the
// device; points stay in user space, only the tolerance follows the transform.
#include "graphics2d/paths/BezierFlattening.h"

#include "graphics2d/MMContext2D.h"
#include "math/FixedMath.h"
#include "math/Points.h"

#include <cstddef>

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

// The public contract with a cap on the halvings; 0 when the points are more than capacity.
uint32_t subdivide(const BezierCurve& curve, int64_t tolerance, uint32_t maxLevel, MMPoint2D* out,
                   uint32_t capacity, int32_t step)
{
    Piece pending[kMaxPending];
    uint32_t pendingCount = 0;
    Piece piece = {curve, 0};
    uint32_t written = 0;
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
        if (written == capacity) return 0;
        MMPoint2D& position = out[static_cast<ptrdiff_t>(written++) * step];
        if (pendingCount == 0) {
            position = c.end;
            return written;
        }
        piece = pending[--pendingCount];
        position = piece.curve.start;
    }
}

} // namespace

uint32_t flattenBezier(const Matrix2D& transform, const BezierCurve& curve, MMPoint2D* out,
                       uint32_t capacity, int32_t step)
{
    // The stack of second halves bounds the first halves only: halving that goes on toward the end
    // of a curve can still make too many points of a vast one. It then gets even pieces instead.
    const int64_t tolerance = areaTolerance(transform);
    if (capacity < kMaxCurvePoints)
        return subdivide(curve, tolerance, UINT32_MAX, out, capacity, step);
    const uint32_t count = subdivide(curve, tolerance, UINT32_MAX, out, kMaxCurvePoints, step);
    if (count != 0) return count;
    return subdivide(curve, tolerance, kEvenLevels, out, kMaxCurvePoints, step);
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
