// SPDX-License-Identifier: MIT
// Unit vectors and rotations in 2.30.
#include "math/UnitVector.h"

#include "math/FixedMath.h"
#include "math/WideMath.h"

#include <utility>

namespace KAVO {

namespace {

// Moves v up, or down for a negative shift.
constexpr int64_t shifted(int64_t v, int32_t shift)
{
    return shift >= 0 ? v * (int64_t{1} << shift) : v >> -shift;
}

uint32_t leadingZeros(uint64_t v)
{
    const uint32_t high = static_cast<uint32_t>(v >> 32);
    return high != 0 ? 31 - MMLog2(high) : 63 - MMLog2(static_cast<uint32_t>(v));
}

} // namespace

uint32_t reciprocalRoot(uint32_t x)
{
    // 1.16 - 0.18 x is off by at most 13 %; each step of Newton's squares the error and takes it
    // 1.5 times: 2.5 %, 0.1 %, 1.4e-6, below 2^-30.
    uint64_t root = 1245540517u - ((uint64_t{x} * 193273528u) >> 30);
    for (int i = 0; i < 4; ++i) {
        const uint64_t square = (root * root) >> 30;
        const uint64_t product = (square * x) >> 30;
        root = (root * (3 * uint64_t{kOne30} - product)) >> 31;
    }
    return static_cast<uint32_t>(root);
}

Polar polarOf(int64_t x, int64_t y)
{
    if (y == 0) return {{x < 0 ? -kOne30 : kOne30, 0}, absolute(x)};
    if (x == 0) return {{0, y < 0 ? -kOne30 : kOne30}, absolute(y)};

    // Bring the larger component to 2^30 and more, then the sum of squares to 2.30 of 1.0 to 4.0.
    const int32_t up =
        static_cast<int32_t>(leadingZeros(static_cast<uint64_t>(absolute(x) | absolute(y)))) - 33;
    const int64_t bigX = shifted(x, up);
    const int64_t bigY = shifted(y, up);
    const uint64_t squares =
        static_cast<uint64_t>(bigX * bigX) + static_cast<uint64_t>(bigY * bigY);
    const bool above = squares >= uint64_t{1} << 62; // the length is 2^31 or more, else 2^30
    const uint32_t sum = static_cast<uint32_t>(squares >> (above ? 32 : 30));
    const int64_t root = reciprocalRoot(sum);

    Polar polar;
    const int32_t down = above ? 31 : 30;
    polar.direction.x = static_cast<Fixed30>((bigX * root) >> down);
    polar.direction.y = static_cast<Fixed30>((bigY * root) >> down);
    const int64_t length =
        static_cast<int64_t>((uint64_t{sum} * static_cast<uint64_t>(root)) >> 30);
    polar.length = shifted(shifted(length, down - 30), -up);
    return polar;
}

Degrees angleBetween(Fixed30 dot, Fixed30 cross)
{
    // fixATan wants some room above its vectors.
    return fixATan(dot >> 2, static_cast<int32_t>(magnitudeOf(cross) >> 2));
}

UnitVector rotationBy(Degrees angle)
{
    // x - x^3/6 + x^5/120 - x^7/5040 and 1 - x^2/2 + x^4/24 - x^6/720, to 2^-21 at 45 degrees and
    // far better for the small angles of large circles. pi / 180 is 18740330 in 2.30.
    const int64_t x = (int64_t{angle} * 18740330) >> 16;
    const int64_t square = (x * x) >> 30;
    int64_t sine = kOne30 - square / 42;
    sine = kOne30 - ((square * sine) >> 30) / 20;
    sine = kOne30 - ((square * sine) >> 30) / 6;
    int64_t cosine = kOne30 - square / 30;
    cosine = kOne30 - ((square * cosine) >> 30) / 12;
    cosine = kOne30 - ((square * cosine) >> 30) / 2;
    return {static_cast<Fixed30>(cosine), static_cast<Fixed30>((x * sine) >> 30)};
}

UnitVector directionAt(Degrees angle)
{
    const Degrees turn = reducedAngle(angle);
    const Degrees rest = turn % kDegrees90;
    UnitVector direction = rotationBy(rest <= kDegrees90 / 2 ? rest : kDegrees90 - rest);
    if (rest > kDegrees90 / 2) std::swap(direction.x, direction.y);
    for (int32_t quadrant = turn / kDegrees90; quadrant > 0; --quadrant)
        direction = turnedRight(direction);
    return direction;
}

} // namespace KAVO
