// SPDX-License-Identifier: MIT
// The pen of a text between user and device space, in 64-bit steps that every host has.
#include "graphics2d/text/TextPen.h"

#include "math/WideMath.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Elements from here on are halved, so that the sum of two products fits.
constexpr int64_t kLargeElement = int64_t{1} << 30;

bool isLarge(const Matrix2D& m)
{
    return absolute(m.a) >= kLargeElement || absolute(m.b) >= kLargeElement ||
           absolute(m.c) >= kLargeElement || absolute(m.d) >= kLargeElement;
}

uint64_t magnitude(int64_t v)
{
    return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
}

// numerator * 65536 / denominator, rounded to nearest, halves away from 0. The whole part is
// divided at once, and then the remainder bit by bit.
Fixed quotient(int64_t numerator, int64_t denominator)
{
    const uint64_t divisor = magnitude(denominator);
    uint64_t rest = magnitude(numerator) % divisor;
    uint64_t result = magnitude(numerator) / divisor;
    for (int bit = 0; bit < 16; ++bit) {
        rest <<= 1;
        const bool one = rest >= divisor;
        result = result << 1 | (one ? 1 : 0);
        if (one) rest -= divisor;
    }
    if (rest >= divisor - rest) ++result;
    const uint32_t low = static_cast<uint32_t>(result);
    return static_cast<Fixed>((numerator < 0) != (denominator < 0) ? 0 - low : low);
}

// Bits by which the vector is too long for a coordinate.
int32_t surplusBits(int64_t x, int64_t y)
{
    int32_t bits = 0;
    while (absolute(x) >> bits > 0x7FFFFFFF || absolute(y) >> bits > 0x7FFFFFFF)
        ++bits;
    return bits;
}

} // namespace

bool TextPen::fits() const
{
    return surplusBits(x, y) == 0;
}

TextPen mappedExactly(const Matrix2D& m, const MMPoint2D& p)
{
    // Halved first: the sum of two full products would not fit.
    const int64_t x = (int64_t{m.a} * p.x >> 1) + (int64_t{m.c} * p.y >> 1);
    const int64_t y = (int64_t{m.b} * p.x >> 1) + (int64_t{m.d} * p.y >> 1);
    return {((x + 0x4000) >> 15) + m.e, ((y + 0x4000) >> 15) + m.f};
}

bool unmappedExactly(const Matrix2D& m, const TextPen& pen, MMPoint2D& p)
{
    const int32_t halving = isLarge(m) ? 1 : 0;
    const int64_t area = (int64_t{m.a} * m.d >> halving) - (int64_t{m.b} * m.c >> halving);
    if (area == 0) return false;
    const int32_t surplus = surplusBits(pen.x - m.e, pen.y - m.f);
    const int64_t x = (pen.x - m.e) >> surplus;
    const int64_t y = (pen.y - m.f) >> surplus;
    const Fixed userX = quotient((m.d * x >> halving) - (m.c * y >> halving), area);
    const Fixed userY = quotient((m.a * y >> halving) - (m.b * x >> halving), area);
    p = {wrapMul(userX, 1 << surplus), wrapMul(userY, 1 << surplus)};
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
