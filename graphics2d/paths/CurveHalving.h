// SPDX-License-Identifier: MIT
// How a piece of a cubic Bezier curve is halved, and when it is flat. Internal.
//
// By the classic rule a piece is flat when its two triangles, start - middle - end and start -
// control - middle, together cover at most about one square pixel on the device; points stay in
// user space, only the tolerance follows the transform.
//
// By the refined rule a piece is flat when it turns by at most 15 degrees and lies within 1/32 of a
// pixel of its chord. It is halved on the device, too, to know that.
#pragma once

#include "graphics2d/paths/BezierFlattening.h"
#include "graphics2d/strips/PixelLanes.h"
#include "math/FixedMath.h"
#include "math/Points.h"

#include <algorithm>
#include <initializer_list>

namespace KAVO {
namespace Graphics2D {

// Halves of sums, truncated toward zero; none wraps on the way.
inline U32x4 middles(U32x4 a, U32x4 b)
{
    const U32x4 odd = a ^ b;
    const U32x4 floor = (a & b) + (U32x4)((I32x4)odd >> 1);
    return floor + (odd & (floor >> 31)); // the lowest bit of odd: a half, to be dropped upward
}

// The same for sums that fit 32 bits.
inline U32x4 middlesOfSmall(U32x4 a, U32x4 b)
{
    const U32x4 sum = a + b;
    return (U32x4)((I32x4)(sum + (sum >> 31)) >> 1);
}

// Makes second, which is the whole curve, its second half, and first the other one. A vector holds
// two points.
template <U32x4 halves(U32x4, U32x4)>
inline void halveCurve(BezierCurve& first, BezierCurve& second)
{
    uint32_t* const words = reinterpret_cast<uint32_t*>(&second);
    const U32x4 startControl1 = load4(words);
    const U32x4 controls = load4(words + 2);
    const U32x4 control2End = load4(words + 4);
    const U32x4 outer = halves(startControl1, controls); // left 1, ridge
    const U32x4 ends = halves(controls, control2End);    // ridge, right 2
    const U32x4 inner = halves(outer, ends);             // left 2, right 1
    const U32x4 split = halves(inner, __builtin_shufflevector(inner, inner, 2, 3, 0, 1)); // twice
    uint32_t* const to = reinterpret_cast<uint32_t*>(&first);
    store4(to, __builtin_shufflevector(startControl1, outer, 0, 1, 4, 5));
    store4(to + 4, __builtin_shufflevector(inner, split, 0, 1, 4, 5));
    store4(words, __builtin_shufflevector(split, inner, 0, 1, 6, 7));
    store4(words + 4, __builtin_shufflevector(ends, control2End, 2, 3, 6, 7));
}

// 2 / |determinant| in 16.16 square user units; everything is flat under a singular transform.
inline int64_t areaTolerance(const Matrix2D& transform)
{
    const Fixed determinant =
        wrapSub(fixMul(transform.a, transform.d), fixMul(transform.b, transform.c));
    const uint32_t half = magnitudeOf(determinant) >> 1;
    if (half == 0) return INT64_MAX;
    return (0xFFFFFFFFu / half) & 0x7FFFFFFFu;
}

// Magnitude of cross(b - a, c - b) in 16.16 square units, the differences cut to 24.8 first.
inline int64_t turnArea(const MMPoint2D& a, const MMPoint2D& b, const MMPoint2D& c)
{
    const int64_t ux = (int64_t{b.x} - a.x) >> 8;
    const int64_t uy = (int64_t{b.y} - a.y) >> 8;
    const int64_t vx = (int64_t{c.x} - b.x) >> 8;
    const int64_t vy = (int64_t{c.y} - b.y) >> 8;
    return absolute(ux * vy - uy * vx);
}

class ClassicRule {
public:
    static constexpr uint32_t kMaxPending = 10;

    struct Piece {
        BezierCurve curve;
        uint32_t level; // how often the whole curve was halved to make it
    };

    explicit ClassicRule(const Matrix2D& transform) : tolerance_(areaTolerance(transform)) {}

    Piece whole(const BezierCurve& curve) const { return {curve, 0}; }

    // Returns whether the piece is flat. Makes it its second half and sets the first one where it
    // is not; its end stays in any case.
    bool halve(Piece& piece, Piece& first) const
    {
        const MMPoint2D control1 = piece.curve.control1;
        halveCurve<middles>(first.curve, piece.curve);
        first.level = ++piece.level;
        const MMPoint2D& start = first.curve.start;
        const MMPoint2D& split = first.curve.end;
        return turnArea(start, split, piece.curve.end) + turnArea(start, split, control1) <=
               tolerance_;
    }

private:
    int64_t tolerance_;
};

class RefinedRule {
public:
    static constexpr uint32_t kMaxPending = 16;

    // The curve is halved together with its image on the device, which is relative to the start of
    // the whole curve and has kFractionBits, or as many as fit.
    struct Piece {
        BezierCurve curve;
        BezierCurve device;
        uint32_t level;
    };

    explicit RefinedRule(const Matrix2D& transform) : transform_(transform) {}

    Piece whole(const BezierCurve& c)
    {
        const Wide points[] = {{0, 0},
                               mapped(c.start, c.control1),
                               mapped(c.start, c.control2),
                               mapped(c.start, c.end)};
        int64_t greatest = 0;
        for (const Wide& p : points)
            greatest = std::max({greatest, absolute(p.x), absolute(p.y)});
        int32_t shift = 0;
        while (greatest >> shift > kGreatest)
            ++shift;
        const int32_t fractionBits = kFractionBits - shift;
        up_ = std::max(fractionBits, 0);
        down_ = std::max(-fractionBits, 0);
        tiny_ = (int64_t{1} << up_) >> 6;
        const auto fitted = [shift](const Wide& p) {
            return MMPoint2D{static_cast<Fixed>(p.x >> shift), static_cast<Fixed>(p.y >> shift)};
        };
        return {c, {fitted(points[0]), fitted(points[1]), fitted(points[2]), fitted(points[3])}, 0};
    }

    bool halve(Piece& piece, Piece& first) const
    {
        if (isFlat(piece.device)) return true;
        halveCurve<middles>(first.curve, piece.curve);
        halveCurve<middlesOfSmall>(first.device, piece.device);
        first.level = ++piece.level;
        return false;
    }

private:
    static constexpr int32_t kFractionBits = 20;
    static constexpr int64_t kGreatest = 1 << 26; // so that 239 cross products fit 64 bits

    struct Wide {
        int64_t x;
        int64_t y;
    };

    static Wide between(const MMPoint2D& a, const MMPoint2D& b)
    {
        return {int64_t{b.x} - a.x, int64_t{b.y} - a.y};
    }
    static int64_t dot(const Wide& a, const Wide& b) { return a.x * b.x + a.y * b.y; }
    static int64_t cross(const Wide& a, const Wide& b) { return a.x * b.y - a.y * b.x; }

    // The vector on the device with kFractionBits.
    Wide mapped(const MMPoint2D& from, const MMPoint2D& to) const
    {
        const int64_t x = (int64_t{to.x} - from.x) >> 1;
        const int64_t y = (int64_t{to.y} - from.y) >> 1;
        constexpr int32_t kDown = 31 - kFractionBits;
        const Matrix2D& m = transform_;
        return {((m.a * x) >> kDown) + ((m.c * y) >> kDown),
                ((m.b * x) >> kDown) + ((m.d * y) >> kDown)};
    }

    // 64 / 239 is the tangent of 15 degrees.
    static bool turnsLittle(const Wide& a, const Wide& b)
    {
        return absolute(cross(a, b)) * 239 <= dot(a, b) * 64;
    }

    // 1/64 of a pixel at most.
    bool isTiny(const Wide& leg) const
    {
        return absolute(leg.x) <= tiny_ && absolute(leg.y) <= tiny_;
    }

    // Whether all legs lie within 7 degrees of the chord, as nearly all do beside it; they turn by
    // less than twice that. What the first and the last leave of the chord is the middle one.
    static bool staysBeside(const Wide& chord, const Wide& first, const Wide& last,
                            int64_t firstCross, int64_t lastCross)
    {
        const int64_t firstDot = dot(chord, first);
        const int64_t lastDot = dot(chord, last);
        const int64_t middleDot = dot(chord, chord) - firstDot - lastDot;
        return 8 * absolute(firstCross) <= firstDot && 8 * absolute(lastCross) <= lastDot &&
               8 * absolute(firstCross + lastCross) <= middleDot;
    }

    // A cubic curve strays from its chord by at most 3/4 of what its controls do. What cannot be
    // seen is flat too.
    [[gnu::always_inline]] bool isFlat(const BezierCurve& c) const
    {
        const Wide first = between(c.start, c.control1);
        const Wide last = between(c.control2, c.end);
        const Wide chord = between(c.start, c.end);
        const int64_t larger = std::max(absolute(chord.x), absolute(chord.y));
        const int64_t smaller = std::min(absolute(chord.x), absolute(chord.y));
        const int64_t length = larger - (larger >> 3) + (smaller >> 1); // or up to an eighth less
        const int64_t pixel = (length << up_) >> down_;
        const int64_t firstCross = cross(chord, first);
        const int64_t lastCross = cross(chord, last);
        if (24 * absolute(firstCross) <= pixel && 24 * absolute(lastCross) <= pixel) {
            if (larger > 0 && staysBeside(chord, first, last, firstCross, lastCross)) return true;
            const Wide middle = between(c.control1, c.control2);
            if (dot(first, chord) >= 0 && dot(middle, chord) >= 0 && dot(last, chord) >= 0 &&
                turnsLittle(first, last) && turnsLittle(first, middle) && turnsLittle(middle, last))
                return true;
        }
        return isTiny(first) && isTiny(between(c.control1, c.control2)) && isTiny(last);
    }

    const Matrix2D& transform_;
    // A pixel is 2^(up_ - down_) units of the image on the device; one of the two is 0.
    int32_t up_ = kFractionBits;
    int32_t down_ = 0;
    int64_t tiny_ = 0;
};

} // namespace Graphics2D
} // namespace KAVO
