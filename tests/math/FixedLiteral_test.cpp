// SPDX-License-Identifier: MIT
#include "math/FixedLiteral.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace KAVO;

// Evaluated by the compiler; each value is what the decimal number times 65,536 rounds to.
static_assert(0_fx == 0 && 1_fx == 0x10000 && 12.5_fx == 0xC8000 && -12.5_fx == -0xC8000);
static_assert(.25_fx == 0x4000 && 3._fx == 0x30000 && 1'000.5_fx == 0x3E88000);
static_assert(0.1_fx == 6554 && 0.3_fx == 19661 && 0.999'99_fx == 65535 && 0.999'999_fx == 65536);
static_assert(32767.999'984'741'210'937'5_fx == INT32_MAX); // 2^15 - 2^-16
// Halves of 1/65536 go up, a digit in the thirtieth place decides just below them.
static_assert(0.000'007'629'394'531'25_fx == 1 &&
              0.000'007'629'394'531'249'999'999'999'999_fx == 0);
static_assert(0.000'022'888'183'593'75_fx == 2);
// What does not compile is refused by the reader.
static_assert(!detail::readFixed<'1', 'e', '3'>().valid &&
              !detail::readFixed<'0', 'x', '1'>().valid);
static_assert(!detail::readFixed<'0', '1', '2'>().valid &&
              detail::readFixed<'0', '1', '.', '5'>().valid);
static_assert(detail::readFixed<'3', '2', '7', '6', '8'>().value > INT32_MAX);
static_assert(detail::readFixed<'9', '9', '9', '9', '9', '9', '9', '9'>().value > INT32_MAX);

TEST(FixedRatio, EndsAndHalves)
{
    static_assert(fixFromRatio(1, 3) == 21845 && fixFromRatio(2, 3) == 43691);
    static_assert(fixFromRatio(1, 1 << 17) == 1 && fixFromRatio(-1, 1 << 17) == -1);
    static_assert(fixFromRatio(1, (1 << 17) + 1) == 0);
    static_assert(fixFromRatio(40000, 1) == INT32_MAX && fixFromRatio(40000, -1) == INT32_MIN);
    static_assert(fixFromRatio(-32768, 1) == INT32_MIN && fixFromRatio(32768, -1) == INT32_MIN);
    static_assert(fixFromRatio(INT32_MIN, INT32_MIN) == kFixedOne);
    static_assert(fixFromRatio(5, 0) == INT32_MAX && fixFromRatio(-5, 0) == INT32_MIN);
    static_assert(fixFromRatio(0, 0) == 0 && fixFromRatio(0, -7) == 0);
    std::mt19937 engine(1);
    for (int i = 0; i < 100000; ++i) {
        const int32_t n = static_cast<int32_t>(engine()) >> engine() % 32;
        const int32_t d = static_cast<int32_t>(engine()) >> engine() % 32;
        if (d == 0) continue;
        // Exact but for the last rounding, which never meets a half that is not one.
        const double ratio = std::round(static_cast<double>(n) / d * 65536);
        const double held = std::fmin(std::fmax(ratio, INT32_MIN), INT32_MAX);
        ASSERT_EQ(fixFromRatio(n, d), static_cast<int32_t>(held)) << n << " / " << d;
    }
}
