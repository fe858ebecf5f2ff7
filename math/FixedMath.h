// SPDX-License-Identifier: MIT
// 16.16 arithmetic and trigonometry, bit-exact on every host.
//
// Products and quotients are formed on the operands' magnitudes and get their sign at the end, so
// they are symmetric about zero; nothing saturates. The rounding of these functions decides the
// library's pixels, so each is exact in its quirks too, and none needs more than a product of 64
// bits (small devices have no hardware divider); 64-bit processors divide in one step, with the
// same results. -2^31 is outside the domain of all of them; it does no harm but the result means
// nothing.
#pragma once

#include "Fixed.h"

#pragma GCC visibility push(default)

// a * b, truncated toward zero and now and then one unit lower: the product of the two low halves
// drops the lowest bit of a's so that it never needs a 32nd bit. fixMul(a, b) and fixMul(b, a) may
// therefore differ in the last bit, and the order of the arguments matters to every caller.
KAVO::Fixed fixMul(KAVO::Fixed a, KAVO::Fixed b);

// a * b / 2^shift, truncated toward zero; exact for a shift of 0, while for 17 and more the carries
// out of the low product are dropped. Scales large products down before they overflow.
KAVO::Fixed fixMulSHR(KAVO::Fixed a, KAVO::Fixed b, uint8_t shift);

// a * b / c, rounded; an exact half goes away from zero, and for |c| = 1 the result is one more
// than the product in magnitude (the rounding threshold |c| / 2 is then 0). 0 when c is 0.
int32_t fixMulDiv(int32_t a, int32_t b, int32_t c);

// a / b, truncated toward zero; quotients of 32768.0 and more wrap. fixDiv(a, 0) is 0x1FFFF with
// the sign of a.
KAVO::Fixed fixDiv(KAVO::Fixed a, KAVO::Fixed b);

// Square root of x read as unsigned 16.16. All but the low eight bits are exact: the result >> 8 is
// the whole part of the square root of x as a 32-bit number. The low bits may come out slightly
// high; fixSqrt(0) is 0x80.
KAVO::Fixed fixSqrt(KAVO::Fixed x);

// Sine and cosine from a piecewise linear table (error below 0.0005, maximum 65566). Angles outside
// [0, 360] degrees are reduced into it. The cosine is never 0.
KAVO::Fixed fixSin(KAVO::Degrees angle);
KAVO::Fixed fixCos(KAVO::Degrees angle);

// Direction of the vector (x, y) in [0, 360) degrees; 0 for the zero vector. Vectors of only a few
// units lose precision.
KAVO::Degrees fixATan(int32_t x, int32_t y);

// Index of the highest set bit; 0 for 0.
uint32_t MMLog2(uint32_t v);

#pragma GCC visibility pop
