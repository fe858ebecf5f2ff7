// SPDX-License-Identifier: MIT
// The bodies of fixMul and fixMulSHR, for inner loops, and what they are made of. Internal.
#pragma once

#include "math/Fixed.h"

namespace KAVO {

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
constexpr uint32_t shiftRight(uint32_t v, uint32_t n)
{
    return n < 32 ? v >> n : 0;
}

// fixMul inside the caller, for inner loops; elsewhere a call is smaller and as good.
constexpr Fixed fixMulInline(Fixed a, Fixed b)
{
    const uint32_t magA = magnitudeOf(a);
    const uint32_t magB = magnitudeOf(b);
    // Of the product of the two low halves the lowest bit of a does not count. A magnitude of 2^31
    // is taken for negative.
    const int64_t product = int64_t{static_cast<int32_t>(magA)} * static_cast<int32_t>(magB) -
                            (magB & 0xFFFFu & (0u - (magA & 1u)));
    return applySign(static_cast<uint32_t>(product >> 16), signMaskOf(a) ^ signMaskOf(b));
}

// fixMulSHR inside the caller, for inner loops.
constexpr Fixed fixMulSHRInline(Fixed a, Fixed b, uint8_t shift)
{
    const uint32_t magA = magnitudeOf(a);
    const uint32_t magB = magnitudeOf(b);
    const uint32_t signMask = signMaskOf(a) ^ signMaskOf(b);
    if (shift <= 16)
        return applySign(static_cast<uint32_t>(uint64_t{magA} * magB >> (16 + shift)), signMask);
    // From there on a carry out of the low product is lost.
    const uint32_t highA = magA >> 16;
    const uint32_t lowA = magA & 0xFFFFu;
    const uint32_t highB = magB >> 16;
    const uint32_t lowB = magB & 0xFFFFu;
    const uint32_t middle = highB * lowA + ((lowB * lowA) >> 16);
    const uint32_t high = highB * highA + (middle >> 16);
    const uint32_t low = highA * lowB + (middle & 0xFFFFu);
    return applySign(shiftRight(high, shift - 16u) + shiftRight(low, shift), signMask);
}

} // namespace KAVO
