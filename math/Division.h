// SPDX-License-Identifier: MIT
// The bodies of fixDiv and fixMulDiv, each in two forms with the same results: by long division,
// for processors of 32 bits, and by one division of 64 bits, for those that have it. Internal.
#pragma once

#include "math/FixedInline.h"

namespace KAVO {

// One step of a long division: subtracts the divisor from a remainder that has reached it; 1 if so,
// otherwise 0. The bits of a quotient follow no pattern that a processor could guess, so none of
// them decides a jump.
constexpr uint32_t subtractIfReached(uint32_t& remainder, uint32_t divisor)
{
    const uint32_t reached = remainder >= divisor;
    remainder -= divisor & (0u - reached);
    return reached;
}

// fixMulDiv by long division.
inline int32_t fixMulDivLong(int32_t a, int32_t b, int32_t c)
{
    if (c == 0) return 0;
    const uint32_t magA = magnitudeOf(a);
    const uint32_t magB = magnitudeOf(b);
    const bool firstIsSmaller = static_cast<int32_t>(magA) <= static_cast<int32_t>(magB);
    const uint32_t divisor = magnitudeOf(c);
    const uint32_t small = firstIsSmaller ? magA : magB;
    uint32_t big = firstIsSmaller ? magB : magA;

    // The larger factor is multiplied bit by bit with the smaller one's exact quotient and
    // remainder.
    uint32_t quotient = small / divisor;
    uint32_t remainder = small - quotient * divisor;
    uint32_t sum = 0;
    uint32_t sumRemainder = 0;
    while (big != 0) {
        const uint32_t mask = 0u - (big & 1u);
        sumRemainder += remainder & mask;
        sum += (quotient & mask) + subtractIfReached(sumRemainder, divisor);
        remainder *= 2;
        quotient = 2 * quotient + subtractIfReached(remainder, divisor);
        big >>= 1;
    }
    if (sumRemainder >= divisor >> 1) ++sum;
    return applySign(sum, signMaskOf(a) ^ signMaskOf(b) ^ signMaskOf(c));
}

// fixMulDiv by one division of 64 bits. Of the quotient the low 32 bits count, as in the other
// form.
inline int32_t fixMulDivWide(int32_t a, int32_t b, int32_t c)
{
    if (c == 0) return 0;
    const uint64_t product = uint64_t{magnitudeOf(a)} * magnitudeOf(b);
    const uint32_t divisor = magnitudeOf(c);
    const uint32_t quotient = static_cast<uint32_t>(product / divisor);
    const uint32_t remainder = static_cast<uint32_t>(product % divisor);
    const uint32_t rounded = quotient + (remainder >= divisor >> 1 ? 1u : 0u);
    return applySign(rounded, signMaskOf(a) ^ signMaskOf(b) ^ signMaskOf(c));
}

// fixDiv by long division.
inline Fixed fixDivLong(Fixed a, Fixed b)
{
    const uint32_t magA = magnitudeOf(a);
    const uint32_t magB = magnitudeOf(b);
    uint32_t quotient = magB != 0 ? magA / magB : 0;
    uint32_t remainder = magA - quotient * magB;
    quotient += subtractIfReached(remainder, magB); // only for a divisor of 0
#pragma GCC unroll 16
    for (int i = 0; i < 16; ++i) {
        remainder *= 2;
        quotient = 2 * quotient + subtractIfReached(remainder, magB);
    }
    return applySign(quotient, signMaskOf(a) ^ signMaskOf(b));
}

// fixDiv by one division of 64 bits.
inline Fixed fixDivWide(Fixed a, Fixed b)
{
    constexpr uint32_t kQuotientByZero = 0x1FFFF; // 17 bits of 1: each step reaches a divisor of 0
    const uint32_t magB = magnitudeOf(b);
    const uint32_t quotient = magB != 0
                                  ? static_cast<uint32_t>((uint64_t{magnitudeOf(a)} << 16) / magB)
                                  : kQuotientByZero;
    return applySign(quotient, signMaskOf(a) ^ signMaskOf(b));
}

} // namespace KAVO
