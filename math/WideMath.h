// SPDX-License-Identifier: MIT
// 64-bit intermediate results of shape arithmetic, which runs once for a shape or a vertex and not
// for a pixel. Internal.
#pragma once

#include "math/Fixed.h"

namespace KAVO {

// |v|, for any but -2^63.
constexpr int64_t absolute(int64_t v)
{
    return v < 0 ? -v : v;
}

// The nearest value that a coordinate can have.
constexpr Fixed saturated(int64_t v)
{
    return static_cast<Fixed>(v > 0x7FFFFFFF ? 0x7FFFFFFF : v < -0x7FFFFFFF ? -0x7FFFFFFF : v);
}

// v / 2^shift, or v * 2^-shift, rounded to nearest.
int64_t shiftDown(int64_t v, int32_t shift);

// v / divisor, rounded to nearest; the divisor is positive.
int64_t divideRounded(int64_t v, int64_t divisor);

// How far to shift a number left so that its magnitude has 29 bits; 0 for 0.
int32_t shiftTo29Bits(int64_t v);

// Whole part of the square root.
uint32_t integerRoot(uint64_t v);

} // namespace KAVO
