// SPDX-License-Identifier: MIT
// 16.16 numbers as people write them: literals, and ratios of whole numbers.
#pragma once

#include "Fixed.h"

#include <cstddef>
#include <cstdint>

namespace KAVO {

namespace detail {

struct FixedDigits {
    bool valid; // decimal digits with at most one point, and ' between them
    int64_t value;
};

// The fraction is doubled in place, one binary digit at a time, so any number of digits is rounded
// exactly; an exact half goes up.
template <char... kText>
constexpr FixedDigits readFixed()
{
    constexpr char text[] = {kText..., '\0'};
    uint8_t fraction[sizeof text] = {};
    size_t places = 0;
    int64_t value = 0;
    bool point = false;
    for (const char c : text) {
        if (c == '\'' || c == '\0') continue;
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9') return {false, 0};
        if (point)
            fraction[places++] = static_cast<uint8_t>(c - '0');
        else if (value <= 0x8000)
            value = 10 * value + (c - '0');
    }
    if (text[0] == '0' && sizeof text > 2 && !point) return {false, 0};
    for (uint32_t bit = 0; bit <= 16; ++bit) {
        uint8_t carry = 0;
        for (size_t i = places; i-- > 0;) {
            const uint32_t doubled = 2u * fraction[i] + carry;
            carry = doubled >= 10;
            fraction[i] = static_cast<uint8_t>(doubled % 10);
        }
        value = 2 * value + carry;
    }
    return {true, (value + 1) / 2};
}

} // namespace detail

// 12.5_fx is 0xC8000, and -12.5_fx its negative: the 16.16 number nearest to a decimal one, made by
// the compiler. What is not decimal (exponents, 0x, a leading 0) or 32768 and above does not
// compile. Degrees are written the same way.
template <char... kText>
constexpr Fixed operator""_fx()
{
    constexpr detail::FixedDigits digits = detail::readFixed<kText...>();
    static_assert(digits.valid, "decimal digits with one point at most");
    static_assert(!digits.valid || digits.value <= INT32_MAX, "16.16 ends below 32768");
    return static_cast<Fixed>(digits.value);
}

// n / d, rounded to nearest (an exact half away from 0) and held at the ends of the range; by 0
// that is the end of n's sign, and 0 / 0 is 0.
constexpr Fixed fixFromRatio(int32_t n, int32_t d)
{
    const bool negative = (n < 0) != (d < 0);
    if (n == 0) return 0;
    const uint64_t divisor = magnitudeOf(d);
    const uint64_t most = negative ? 0x80000000u : 0x7FFFFFFFu;
    const uint64_t dividend = uint64_t{magnitudeOf(n)} << 16;
    const uint64_t rounded = divisor != 0 ? (dividend + divisor / 2) / divisor : most;
    const uint64_t held = rounded < most ? rounded : most;
    return static_cast<Fixed>(negative ? 0u - static_cast<uint32_t>(held)
                                       : static_cast<uint32_t>(held));
}

} // namespace KAVO
