// SPDX-License-Identifier: MIT
// Rounded quotients and square roots of 64-bit numbers.
#include "math/WideMath.h"

namespace KAVO {

int64_t shiftDown(int64_t v, int32_t shift)
{
    if (shift <= 0) return v * (int64_t{1} << -shift);
    if (shift > 62) return 0;
    return (v >> shift) + ((v >> (shift - 1)) & 1);
}

int64_t divideRounded(int64_t v, int64_t divisor)
{
    const int64_t quotient = v / divisor;
    const int64_t rest = v - quotient * divisor;
    if (2 * absolute(rest) < divisor) return quotient;
    return v < 0 ? quotient - 1 : quotient + 1;
}

int32_t shiftTo29Bits(int64_t v)
{
    int32_t shift = 0;
    for (uint64_t m = static_cast<uint64_t>(absolute(v)); m != 0 && m >> 28 == 0; m <<= 1)
        ++shift;
    for (uint64_t m = static_cast<uint64_t>(absolute(v)); m >> 29 != 0; m >>= 1)
        --shift;
    return shift;
}

uint32_t integerRoot(uint64_t v)
{
    // Digit by digit, from the pair of bits of v that holds the highest one. The root so far stands
    // twice as high as the digits still to come.
    uint64_t root = 0;
    for (uint64_t bit = uint64_t{1} << ((63 - __builtin_clzll(v | 1)) & ~1); bit != 0; bit >>= 2) {
        const uint64_t trial = root + bit;
        root >>= 1;
        if (v >= trial) {
            v -= trial;
            root += bit;
        }
    }
    return static_cast<uint32_t>(root);
}

} // namespace KAVO
