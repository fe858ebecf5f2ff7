// SPDX-License-Identifier: MIT
// Elliptical arcs as cubic curves.
//
// No angle of the arc is ever computed. In the space where the ellipse is the unit circle, the half
// chord u, its length and the length of what is left to the radius give the circle's centre, both
// ends and the arc's apex; halving between such points, by normalising their sum, gives all others.
// Directions and lengths there are 2.30 numbers in 64 bits. The one thing that does not fit is the
// chord itself, whose components may be as short as 1/65536 and as long as the whole range while
// the radii are the opposite: it goes through numbers with an exponent of their own.
//
// Runs once per arc, so it is compiled for size.
#include "graphics2d/convenience/EllipticalArc.h"

#include <algorithm>
#include <cstddef>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int64_t kOne = int64_t{1} << 30; // 1.0 in 2.30
constexpr int64_t kCosine45 = 759250125;   // 2.30
constexpr int64_t kRadian34 = 299845283;   // pi / 180 * 2^34

// v by a 2.30 number, rounded.
int64_t scaled(int64_t v, int64_t factor)
{
    return (v * factor + kOne / 2) >> 30;
}

// Quotient rounded to nearest; the divisor is positive.
int64_t quotient(int64_t v, int64_t divisor)
{
    const int64_t half = divisor / 2;
    return (v < 0 ? v - half : v + half) / divisor;
}

// Whole part of the square root.
uint64_t squareRoot(uint64_t v)
{
    uint64_t root = 0;
    for (uint64_t bit = uint64_t{1} << 31; bit != 0; bit >>= 1)
        if ((root + bit) * (root + bit) <= v) root += bit;
    return root;
}

// A vector of 2.30 numbers.
struct Vector {
    int64_t x;
    int64_t y;

    Vector turnedBack() const { return {y, -x}; } // by 90 degrees
    Vector turned() const { return {-y, x}; }
};

Vector operator+(Vector a, Vector b)
{
    return {a.x + b.x, a.y + b.y};
}

Vector operator-(Vector a)
{
    return {-a.x, -a.y};
}

Vector operator*(Vector v, int64_t factor)
{
    return {scaled(v.x, factor), scaled(v.y, factor)};
}

// Of length 1.0. The components are below 2.0, not both small.
Vector normalized(Vector v)
{
    const int64_t length =
        static_cast<int64_t>(squareRoot(static_cast<uint64_t>(v.x * v.x + v.y * v.y)));
    return {quotient(v.x * kOne, length), quotient(v.y * kOne, length)};
}

// Cosine and sine of an angle, by their series within 45 degrees of an axis.
Vector direction(Degrees angle)
{
    int64_t quarters = quotient(angle, kDegrees90);
    const int64_t x = ((angle - quarters * kDegrees90) * kRadian34) >> 20; // 2.30
    const int64_t square = scaled(x, x);
    int64_t cosine = kOne;
    int64_t sine = kOne;
    for (int64_t n = 10; n > 0; n -= 2) {
        cosine = kOne - scaled(square, cosine) / (n * (n - 1));
        sine = kOne - scaled(square, sine) / (n * (n + 1));
    }
    Vector result = {cosine, scaled(x, sine)};
    for (quarters &= 3; quarters > 0; --quarters)
        result = result.turned();
    return result;
}

// digits * 2^exponent; 62 digits unless it is 0.
struct Scaled {
    uint64_t digits;
    int32_t exponent;
};

Scaled normalizedProduct(uint64_t a, uint64_t b)
{
    if (a == 0 || b == 0) return {0, INT16_MIN};
    Scaled result = {a, 0};
    for (; result.digits >> 31 != 0; result.digits >>= 1)
        ++result.exponent;
    result.digits *= b;
    for (; result.digits >> 61 == 0; result.digits <<= 1)
        --result.exponent;
    return result;
}

// The upper half of the digits, for the given exponent of the whole.
int64_t upperDigits(Scaled v, int32_t exponent)
{
    const int32_t shift = 31 + exponent - v.exponent;
    return shift < 62 ? static_cast<int64_t>(v.digits >> shift) : 0;
}

uint64_t magnitudeOf64(int64_t v)
{
    return v < 0 ? 0u - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
}

// Half the chord, from its middle to the start, in the space of the unit circle.
struct HalfChord {
    Vector direction;
    int64_t length; // 2.30, at most 2^62
};

// dx and dy: the whole chord along the ellipse's axes, 16.16 by 2^30.
HalfChord halfChord(int64_t dx, int64_t dy, uint64_t rx, uint64_t ry)
{
    // dx / (2 rx) and dy / (2 ry) over the common denominator 2 rx ry; the 2 and the 2^30 of dx are
    // the exponent 31.
    const Scaled x = normalizedProduct(magnitudeOf64(dx), ry);
    const Scaled y = normalizedProduct(magnitudeOf64(dy), rx);
    const Scaled denominator = normalizedProduct(rx, ry);
    const int32_t exponent = std::max(x.exponent, y.exponent);
    Vector v = {upperDigits(x, exponent), upperDigits(y, exponent)};
    const uint64_t length = squareRoot(static_cast<uint64_t>(v.x * v.x + v.y * v.y));
    const uint64_t divisor = denominator.digits >> 31;
    const uint64_t ratio = ((length << 30) + divisor / 2) / divisor; // 29 to 32 bits
    const int32_t shift = exponent - (denominator.exponent + 31);
    HalfChord half;
    half.length = shift > 30    ? kOne << 32
                  : shift >= 0  ? static_cast<int64_t>(ratio << shift)
                  : shift > -33 ? static_cast<int64_t>(((ratio >> (-shift - 1)) + 1) >> 1)
                                : 0;
    if (dx < 0) v.x = -v.x;
    if (dy < 0) v.y = -v.y;
    const int64_t unit = static_cast<int64_t>(length);
    half.direction = {quotient(v.x * kOne, unit), quotient(v.y * kOne, unit)};
    return half;
}

// The ellipse as the image of the unit circle, and the curves that are laid along it.
class Tracer {
public:
    int64_t rx; // 16.16
    int64_t ry;
    Vector axis;         // of rx
    MMPoint2D anchor[2]; // the point halfway between these is where offset goes to 0
    Vector offset;       // of the unit circle's centre
    bool increasing;
    ArcCurves curves;

    // Along the unit circle by up to 90 degrees.
    void add(Vector from, Vector to)
    {
        if (from.x == to.x && from.y == to.y) return;
        if (scaled(from.x, to.x) + scaled(from.y, to.y) > kCosine45) return addPiece(from, to);
        const Vector middle = normalized(from + to);
        addPiece(from, middle);
        addPiece(middle, to);
    }

private:
    // The tangent of a quarter of the angle gives the length of the handles.
    void addPiece(Vector from, Vector to)
    {
        const int64_t cosine = scaled(from.x, to.x) + scaled(from.y, to.y);
        const int64_t sine = scaled(from.x, to.y) - scaled(from.y, to.x);
        const int64_t tangent2 = quotient((sine < 0 ? -sine : sine) * kOne, kOne + cosine);
        const int64_t root = static_cast<int64_t>(
            squareRoot(static_cast<uint64_t>(kOne * kOne + tangent2 * tangent2)));
        const int64_t tangent4 = quotient(tangent2 * kOne, kOne + root);
        const int64_t handle = quotient(increasing ? 4 * tangent4 : -4 * tangent4, 3);
        MMPoint2D* points = curves.points + size_t{3} * curves.count++;
        points[0] = mapped(from + from.turned() * handle);
        points[1] = mapped(to + to.turnedBack() * handle);
        points[2] = mapped(to);
    }

    MMPoint2D mapped(Vector unit) const
    {
        const int64_t x = scaled(rx, unit.x + offset.x);
        const int64_t y = scaled(ry, unit.y + offset.y);
        return {held(scaled(x, axis.x) - scaled(y, axis.y), anchor[0].x, anchor[1].x),
                held(scaled(x, axis.y) + scaled(y, axis.x), anchor[0].y, anchor[1].y)};
    }

    static Fixed held(int64_t distance, int64_t end1, int64_t end2)
    {
        const int64_t v = distance + ((end1 + end2) >> 1);
        return static_cast<Fixed>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX));
    }
};

// A radius enlarged by a factor of at least 1.0, up to what no arc between points in range needs.
int64_t enlarged(int64_t radius, int64_t factor)
{
    constexpr int64_t kLongest = int64_t{1} << 32;
    return factor < kLongest * kOne / radius ? scaled(radius, factor) : kLongest;
}

} // namespace

__attribute__((cold)) ArcCurves arcCurves(const EllipticalArc& arc)
{
    Tracer tracer;
    tracer.curves.count = 0;
    const Vector chord = {int64_t{arc.from.x} - arc.to.x, int64_t{arc.from.y} - arc.to.y};
    if (chord.x == 0 && chord.y == 0) return tracer.curves;
    tracer.rx = magnitudeOf(arc.rx);
    tracer.ry = magnitudeOf(arc.ry);
    tracer.axis = direction(arc.rotation);
    tracer.anchor[0] = arc.from;
    tracer.anchor[1] = arc.to;
    tracer.increasing = arc.increasing;

    const Vector axis = tracer.axis;
    HalfChord half =
        halfChord(chord.x * axis.x + chord.y * axis.y, chord.y * axis.x - chord.x * axis.y,
                  static_cast<uint64_t>(tracer.rx), static_cast<uint64_t>(tracer.ry));
    if (half.length > kOne) {
        tracer.rx = enlarged(tracer.rx, half.length);
        tracer.ry = enlarged(tracer.ry, half.length);
        half.length = kOne;
    }
    const Vector u = half.direction;
    const Vector apex = arc.increasing ? u.turned() : u.turnedBack();
    const int64_t height = static_cast<int64_t>(
        squareRoot(static_cast<uint64_t>(kOne * kOne - half.length * half.length)));
    const Vector middle = apex * (arc.large ? -height : height); // of the chord, from the centre
    tracer.offset = -middle;
    const Vector from = middle + u * half.length;
    const Vector to = middle + -u * half.length;
    if (arc.large) {
        tracer.add(from, u);
        tracer.add(u, apex);
        tracer.add(apex, -u);
        tracer.add(-u, to);
    } else {
        tracer.add(from, apex);
        tracer.add(apex, to);
    }
    tracer.curves.points[size_t{3} * tracer.curves.count - 1] = arc.to;
    return tracer.curves;
}

__attribute__((cold)) ArcCurves circleCurves(MMPoint2D centre, Fixed radius)
{
    Tracer tracer;
    tracer.curves.count = 0;
    tracer.rx = tracer.ry = radius;
    tracer.axis = {kOne, 0};
    tracer.anchor[0] = tracer.anchor[1] = centre;
    tracer.offset = {0, 0};
    tracer.increasing = true;
    Vector from = {kOne, 0};
    for (uint32_t quarter = 0; quarter < 4; ++quarter) {
        tracer.add(from, from.turned());
        from = from.turned();
    }
    return tracer.curves;
}

} // namespace Graphics2D
} // namespace KAVO
