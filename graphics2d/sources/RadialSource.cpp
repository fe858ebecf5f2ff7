// SPDX-License-Identifier: MIT
// Rows of gradients between two circles.
//
// The point p lies on the circle of parameter t where |p - t * d| = r + t * s: d is the way from
// the first centre to the second one, r the first radius, s the difference of the radii. With
// A = d * d - s * s this is A t^2 - 2 B t + C = 0, and so t = b +- root(u * u - sign(A) * v * v)
// with three numbers that are linear along a row,
//
//   b = (x |d| + r s) / A,  u = (x s + r |d|) / A,  v = y / root |A|,
//
// x being p along d and y across. Where A is negative one circle contains the other; both roots
// exist, and the sign of s picks the one whose radius is not negative. Where it is positive the
// circles lie in a cone u >= |v|, and the upper root is the greater t. Near A = 0, where one circle
// touches the other from inside, b and the root would all but cancel: there t is the quotient C by
// the other root.
#include "graphics2d/sources/GradientRows.h"
#include "graphics2d/sources/RampColours.h"
#include "graphics2d/strips/QuickRoot.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kHole = INT32_MIN;  // no parameter
constexpr int32_t kFarAway = 1 << 29; // 32 periods

// The high words of an axis along a row.
class AxisWalk {
public:
    AxisWalk(const MMSourceAxis& axis, int32_t row, int32_t column)
        : value_(static_cast<uint64_t>(axis.at(row, column))),
          step_(static_cast<uint64_t>(axis.perColumn))
    {
    }
    int32_t next()
    {
        const auto now = static_cast<int32_t>(static_cast<uint32_t>(value_ >> 32));
        value_ += step_;
        return now;
    }

private:
    uint64_t value_;
    uint64_t step_;
};

uint64_t squareOf(int32_t v)
{
    return static_cast<uint64_t>(int64_t{v} * v);
}

void clearHoles(const int32_t* parameters, Pixel* pixels, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        if (parameters[i] == kHole) pixels[i] = 0;
}

// The parameter from a point where the circles touch, or a hole. See GradientRows.h.
class TouchingCircles {
public:
    explicit TouchingCircles(const MMGradientSource& source)
        : base_(source.factors[kTouchBase]), excess_(source.factors[kTouchExcess]),
          inverse_(source.factors[kTouchInverse]), isNegative_(source.isNegative != 0),
          isPadded_(source.spread == kSpreadPad)
    {
    }

    int32_t at(int32_t x, int32_t y) const
    {
        const uint64_t square = squareOf(x) + squareOf(y);
        const int64_t part = static_cast<int64_t>(square >> 32) * excess_ +
                             (static_cast<int64_t>(square & 0xFFFFFFFFu) * excess_ >> 32);
        const int64_t rest = static_cast<int64_t>(squareOf(x)) - part;
        if (excess_ >= 0 && (x <= 0 || rest < 0)) return kHole;
        const int64_t root = rootOf(static_cast<uint64_t>(std::max<int64_t>(rest, 0)));
        const bool isGreater = excess_ < 0 ? x < 0 : excess_ > 0 && !isNegative_;
        const int64_t way =
            isGreater ? (root + absoluteOf(x)) * inverse_ >> 12
                      : static_cast<int64_t>(square /
                                             static_cast<uint64_t>(std::max<int64_t>(root + x, 1)));
        // Beyond are whole periods.
        const int64_t limited = isPadded_ ? std::min<int64_t>(way, kFarAway) : way % kFarAway;
        return static_cast<int32_t>(base_ + (isNegative_ ? -limited : limited));
    }

private:
    static int64_t absoluteOf(int32_t v) { return v < 0 ? -int64_t{v} : v; }

    int64_t base_;
    int64_t excess_;
    int64_t inverse_;
    bool isNegative_;
    bool isPadded_;
};

} // namespace

void writeNestedRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMGradientSource*>(state);
    AxisWalk b(source.axes[0], row, column);
    AxisWalk u(source.axes[1], row, column);
    AxisWalk v(source.axes[2], row, column);
    const uint32_t negation = source.isNegative != 0 ? UINT32_MAX : 0;
    int32_t parameters[kMostPixels];
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t root = rootOf(squareOf(u.next()) + squareOf(v.next()));
        const uint32_t start = static_cast<uint32_t>(b.next());
        parameters[i] = static_cast<int32_t>(start + ((root ^ negation) - negation));
    }
    writeParameters(source, pixels, count, parameters);
}

void writeConeRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMGradientSource*>(state);
    AxisWalk b(source.axes[0], row, column);
    AxisWalk u(source.axes[1], row, column);
    AxisWalk v(source.axes[2], row, column);
    int32_t parameters[kMostPixels];
    for (int32_t i = 0; i < count; ++i) {
        const int32_t along = u.next();
        const uint64_t square = squareOf(along) - squareOf(v.next());
        const uint32_t start = static_cast<uint32_t>(b.next());
        const bool isHole = along < 0 || static_cast<int64_t>(square) < 0;
        parameters[i] = isHole ? kHole : static_cast<int32_t>(start + rootOf(square));
    }
    writeParameters(source, pixels, count, parameters);
    clearHoles(parameters, pixels, count);
}

void writeTouchingRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMGradientSource*>(state);
    const TouchingCircles circles(source);
    AxisWalk x(source.axes[0], row, column);
    AxisWalk y(source.axes[1], row, column);
    int32_t parameters[kMostPixels];
    for (int32_t i = 0; i < count; ++i) {
        const int32_t along = x.next();
        parameters[i] = circles.at(along, y.next());
    }
    writeParameters(source, pixels, count, parameters);
    clearHoles(parameters, pixels, count);
}

} // namespace Graphics2D
} // namespace KAVO
