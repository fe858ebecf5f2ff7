// SPDX-License-Identifier: MIT
// Unit vectors and rotations in 2.30. Internal.
//
// 16.16 directions and the sine table are too coarse for a round cap 500 pixels wide.
#pragma once

#include "math/Fixed.h"

namespace KAVO {

using Fixed30 = int32_t; // 2.30, 1.0 = 0x40000000

constexpr Fixed30 kOne30 = 0x40000000;

// A direction, or a rotation by the angle of that direction.
struct UnitVector {
    Fixed30 x;
    Fixed30 y;
};

constexpr UnitVector opposite(const UnitVector& v)
{
    return {-v.x, -v.y};
}

// v turned by 90 degrees from +x toward +y, and the other way.
constexpr UnitVector turnedRight(const UnitVector& v)
{
    return {-v.y, v.x};
}

constexpr UnitVector turnedLeft(const UnitVector& v)
{
    return {v.y, -v.x};
}

// v turned by the angle of r.
constexpr UnitVector rotated(const UnitVector& v, const UnitVector& r)
{
    constexpr int64_t kRound = int64_t{1} << 29;
    return {static_cast<Fixed30>((int64_t{v.x} * r.x - int64_t{v.y} * r.y + kRound) >> 30),
            static_cast<Fixed30>((int64_t{v.x} * r.y + int64_t{v.y} * r.x + kRound) >> 30)};
}

// Cosine and sine of the angle from a to b.
constexpr Fixed30 dotOf(const UnitVector& a, const UnitVector& b)
{
    return static_cast<Fixed30>((int64_t{a.x} * b.x + int64_t{a.y} * b.y) >> 30);
}

constexpr Fixed30 crossOf(const UnitVector& a, const UnitVector& b)
{
    return static_cast<Fixed30>((int64_t{a.x} * b.y - int64_t{a.y} * b.x) >> 30);
}

// 1 / sqrt(x) in 2.30, off by a few units, for x in 2.30, 1.0 to just below 4.0.
uint32_t reciprocalRoot(uint32_t x);

// A vector's direction and length. The zero vector has length 0 and points along +x.
struct Polar {
    UnitVector direction;
    int64_t length; // in the units of the vector, rounded down
};

// Components of at most 2^40.
Polar polarOf(int64_t x, int64_t y);

// The angle from a to b, 0 to 180 degrees either way, without its sign.
Degrees angleBetween(Fixed30 dot, Fixed30 cross);

// Cosine and sine of an angle of 0 to 45 degrees.
UnitVector rotationBy(Degrees angle);

// The direction at any angle, exact to 2^-20.
UnitVector directionAt(Degrees angle);

// v * length, in the units of length, rounded away from zero.
constexpr int64_t scaledAway(Fixed30 v, int64_t length)
{
    const int64_t product = v * length;
    return product >= 0 ? (product + kOne30 - 1) >> 30 : -((-product + kOne30 - 1) >> 30);
}

} // namespace KAVO
