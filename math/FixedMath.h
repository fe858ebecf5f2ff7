// 16.16 arithmetic and trigonometry, bit-exact on every host.
//
// Products and quotients are formed on the operands' magnitudes in unsigned 32-bit arithmetic and
// get their sign at the end, so they are symmetric about zero; nothing saturates. The rounding of
// these functions decides the library's pixels, so each is exact in its quirks too, and none uses
// 64-bit arithmetic (the devices we serve have no 64-bit multiplier and no hardware divider).
// -2^31 is outside the domain of all of them; it does no harm but the result means nothing.
#pragma once

#include "math/Fixed.h"

#pragma GCC visibility push(default)

// Gives the magnitude the sign held in a mask: 0 for plus, all ones for minus.
constexpr int32_t applySign(uint32_t magnitude, uint32_t signMask)
{
    return static_cast<int32_t>((magnitude ^ signMask) + (signMask & 1u));
}

// All ones for a negative number, otherwise 0.
constexpr uint32_t signMaskOf(int32_t v)
{
    return v < 0 ? 0xFFFFFFFFu : 0u;
}

// Shifts by 32 or more give 0.
constexpr uint32_t shiftLeft(uint32_t v, uint32_t n)
{
    return n < 32 ? v << n : 0;
}

constexpr uint32_t shiftRight(uint32_t v, uint32_t n)
{
    return n < 32 ? v >> n : 0;
}

// a * b, truncated toward zero and now and then one unit lower: the product of the two low halves
// drops the lowest bit of a's so that it never needs a 32nd bit. fixMul(a, b) and fixMul(b, a) may
// therefore differ in the last bit, and the order of the arguments matters to every caller.
Fixed fixMul(Fixed a, Fixed b);

// The same inside the caller, for inner loops; elsewhere a call is smaller and as good.
constexpr Fixed fixMulInline(Fixed a, Fixed b)
{
    const uint32_t magA = magnitudeOf(a);
    const uint32_t magB = magnitudeOf(b);
    // The high halves are taken with an arithmetic shift, which only shows for -2^31.
    const uint32_t highA = static_cast<uint32_t>(static_cast<int32_t>(magA) >> 16);
    const uint32_t lowA = magA & 0xFFFFu;
    const uint32_t highB = static_cast<uint32_t>(static_cast<int32_t>(magB) >> 16);
    const uint32_t lowB = magB & 0xFFFFu;
    const uint32_t product = highB * magA + lowB * highA + ((lowB * (lowA >> 1)) >> 15);
    return applySign(product, signMaskOf(a) ^ signMaskOf(b));
}

// a * b / 2^shift, truncated toward zero; exact for a shift of 0, while for 17 and more the carries
// out of the low product are dropped. Scales large products down before they overflow.
Fixed fixMulSHR(Fixed a, Fixed b, uint8_t shift);

// The same inside the caller, for inner loops.
constexpr Fixed fixMulSHRInline(Fixed a, Fixed b, uint8_t shift)
{
    const uint32_t magA = magnitudeOf(a);
    const uint32_t magB = magnitudeOf(b);
    const uint32_t highA = magA >> 16;
    const uint32_t lowA = magA & 0xFFFFu;
    const uint32_t highB = magB >> 16;
    const uint32_t lowB = magB & 0xFFFFu;
    const uint32_t middle = highB * lowA + ((lowB * lowA) >> 16);
    const uint32_t high = highB * highA + (middle >> 16);
    const uint32_t low = highA * lowB + (middle & 0xFFFFu);
    const uint32_t shiftedHigh =
        shift < 16 ? shiftLeft(high, 16u - shift) : shiftRight(high, shift - 16u);
    return applySign(shiftedHigh + shiftRight(low, shift), signMaskOf(a) ^ signMaskOf(b));
}

// a * b / c, rounded; an exact half goes away from zero, and for |c| = 1 the result is one more
// than the product in magnitude (the rounding threshold |c| / 2 is then 0). 0 when c is 0.
int32_t fixMulDiv(int32_t a, int32_t b, int32_t c);

// a / b, truncated toward zero; quotients of 32768.0 and more wrap. fixDiv(a, 0) is 0x1FFFF with
// the sign of a.
Fixed fixDiv(Fixed a, Fixed b);

// Square root of x read as unsigned 16.16; the integer part of 256 * sqrt(x) / 256 is exact, the
// fraction may come out slightly high. fixSqrt(0) is 0x80.
Fixed fixSqrt(Fixed x);

// Sine and cosine from a piecewise linear table (error below 0.0005, maximum 65566). Angles outside
// [0, 360] degrees are reduced into it. The cosine is never 0.
Fixed fixSin(Degrees angle);
Fixed fixCos(Degrees angle);

// Direction of the vector (x, y) in [0, 360) degrees; 0 for the zero vector. Vectors of only a few
// units lose precision.
Degrees fixATan(int32_t x, int32_t y);

// Index of the highest set bit; 0 for 0.
uint32_t MMLog2(uint32_t v);

#pragma GCC visibility pop
