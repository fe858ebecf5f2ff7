// SPDX-License-Identifier: MIT
// Numbers of any magnitude, in 64-bit steps that every host has.
#include "graphics2d/sources/ScaledNumber.h"

#include "math/WideMath.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kMantissaBits = 62;

uint64_t sizeOf(int64_t mantissa)
{
    return static_cast<uint64_t>(absolute(mantissa));
}

int64_t withSign(uint64_t size, bool negative)
{
    const auto v = static_cast<int64_t>(size);
    return negative ? -v : v;
}

} // namespace

ScaledNumber::ScaledNumber(int64_t v, int32_t exponent)
{
    if (v == 0) return;
    const uint64_t size = v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
    const int32_t shift = __builtin_clzll(size) - (64 - kMantissaBits);
    mantissa_ = withSign(shift < 0 ? size >> -shift : size << shift, v < 0);
    exponent_ = exponent - shift;
}

ScaledNumber ScaledNumber::operator-() const
{
    ScaledNumber result = *this;
    result.mantissa_ = -mantissa_;
    return result;
}

ScaledNumber operator+(const ScaledNumber& a, const ScaledNumber& b)
{
    if (a.isZero()) return b;
    if (b.isZero()) return a;
    const bool aIsLarger = a.exponent_ >= b.exponent_;
    const ScaledNumber& larger = aIsLarger ? a : b;
    const ScaledNumber& smaller = aIsLarger ? b : a;
    const int32_t distance = larger.exponent_ - smaller.exponent_;
    return {larger.mantissa_ + shiftDown(smaller.mantissa_, distance), larger.exponent_};
}

// In halves of 31 bits: the product without its lowest 61 bits.
ScaledNumber operator*(const ScaledNumber& a, const ScaledNumber& b)
{
    constexpr uint64_t kLow = (uint64_t{1} << 31) - 1;
    const uint64_t x = sizeOf(a.mantissa_);
    const uint64_t y = sizeOf(b.mantissa_);
    const uint64_t middle = (x >> 31) * (y & kLow) + (x & kLow) * (y >> 31);
    const uint64_t low = (x & kLow) * (y & kLow);
    const uint64_t product = (x >> 31) * (y >> 31) * 2 + ((middle + (low >> 31)) >> 30);
    return {withSign(product, a.isNegative() != b.isNegative()), a.exponent_ + b.exponent_ + 61};
}

ScaledNumber operator/(const ScaledNumber& a, const ScaledNumber& b)
{
    if (b.isZero()) return {};
    const uint64_t divisor = sizeOf(b.mantissa_);
    uint64_t rest = sizeOf(a.mantissa_);
    uint64_t quotient = 0;
    for (int32_t i = 0; i < kMantissaBits; ++i) {
        quotient <<= 1;
        if (rest >= divisor) {
            rest -= divisor;
            quotient |= 1;
        }
        rest <<= 1;
    }
    return {withSign(quotient, a.isNegative() != b.isNegative()), a.exponent_ - b.exponent_ - 61};
}

// By the root of the mantissa in 31 bits and one step of Newton's.
ScaledNumber ScaledNumber::root() const
{
    if (mantissa_ <= 0) return {};
    const int32_t odd = exponent_ & 1;
    const ScaledNumber near(integerRoot(static_cast<uint64_t>(mantissa_) << odd),
                            (exponent_ - odd) / 2);
    return (near + *this / near).shifted(-1);
}

int64_t ScaledNumber::fixed(int32_t fractionBits) const
{
    const int32_t shift = exponent_ + fractionBits;
    if (shift > 0) return withSign(isZero() ? 0 : uint64_t{1} << 62, isNegative());
    return shiftDown(mantissa_, -shift);
}

} // namespace Graphics2D
} // namespace KAVO
