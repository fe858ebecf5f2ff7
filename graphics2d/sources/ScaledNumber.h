// SPDX-License-Identifier: MIT
// Numbers of any magnitude in integer arithmetic, for setting gradients and tiles up. Internal.
//
// The quotients of a set-up span hundreds of powers of two, from circles of 1/65536 of a pixel to
// transforms that magnify 32,767 times, and differences of nearly equal squares decide its cases.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

class ScaledNumber {
public:
    ScaledNumber() = default;

    // v * 2^exponent, exact for |v| < 2^62.
    ScaledNumber(int64_t v, int32_t exponent);

    // To about 2^-60 of the result or of the larger operand; sums of integers below 2^62 are exact.
    // A quotient by 0 is 0.
    friend ScaledNumber operator+(const ScaledNumber& a, const ScaledNumber& b);
    friend ScaledNumber operator*(const ScaledNumber& a, const ScaledNumber& b);
    friend ScaledNumber operator/(const ScaledNumber& a, const ScaledNumber& b);
    friend ScaledNumber operator-(const ScaledNumber& a, const ScaledNumber& b) { return a + -b; }
    ScaledNumber operator-() const;

    bool isZero() const { return mantissa_ == 0; }
    bool isNegative() const { return mantissa_ < 0; }
    ScaledNumber magnitude() const { return isNegative() ? -*this : *this; }

    // Of a number that is not negative.
    ScaledNumber root() const;

    // The number times 2^count.
    ScaledNumber shifted(int32_t count) const { return {mantissa_, exponent_ + count}; }

    // The least count of bits of an integer part that holds the magnitude: it lies below 2^bits().
    int32_t bits() const { return isZero() ? INT16_MIN : exponent_ + 62; }

    // The number times 2^fractionBits, rounded; what is too large ends at 2^62 either way.
    int64_t fixed(int32_t fractionBits) const;

private:
    int64_t mantissa_ = 0; // from 2^61 to 2^62 - 1 either way, or 0
    int32_t exponent_ = 0;
};

} // namespace Graphics2D
} // namespace KAVO
