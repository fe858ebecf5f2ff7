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
    uint64_t root = 0;
    const int highest = 63 - __builtin_clzll(v | 1); // its bit in v; in the root half of that
    for (uint64_t bit = uint64_t{1} << highest / 2; bit != 0; bit >>= 1) {
        const uint64_t trial = root | bit;
        if (trial * trial <= v) root = trial;
    }
    return static_cast<uint32_t>(root);
}

} // namespace KAVO
