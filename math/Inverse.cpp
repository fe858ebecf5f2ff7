// SPDX-License-Identifier: MIT
// Inverses rounded to nearest, in 64-bit steps that every host has.
#include "math/Inverse.h"

#include "math/WideMath.h"

#include <algorithm>

namespace KAVO {

namespace {

constexpr int64_t kGreatest = 0x40000000; // of an element, either way

// a x + c y, 16.16, within the range. Each product is halved, so that the sum fits.
Fixed mappedWithin(int64_t a, int64_t x, int64_t c, int64_t y)
{
    return static_cast<Fixed>(
        std::clamp(((a * x >> 1) + (c * y >> 1)) >> 15, -kGreatest, kGreatest));
}

} // namespace

bool invertRounded(const Matrix2D& m, Matrix2D& inverse)
{
    // Halved too, so that 1.0 is 2^31.
    const int64_t determinant = (int64_t{m.a} * m.d >> 1) - (int64_t{m.b} * m.c >> 1);
    if (determinant == 0) return false;
    const int64_t one = determinant < 0 ? -(int64_t{1} << 31) : int64_t{1} << 31;
    const int64_t size = absolute(determinant);
    const int64_t a = divideRounded(m.d * one, size);
    const int64_t b = divideRounded(-int64_t{m.b} * one, size);
    const int64_t c = divideRounded(-int64_t{m.c} * one, size);
    const int64_t d = divideRounded(m.a * one, size);
    for (int64_t element : {a, b, c, d})
        if (absolute(element) > kGreatest) return false;
    const int64_t x = -int64_t{m.e};
    const int64_t y = -int64_t{m.f};
    inverse = {static_cast<Fixed>(a), static_cast<Fixed>(b),    static_cast<Fixed>(c),
               static_cast<Fixed>(d), mappedWithin(a, x, c, y), mappedWithin(b, x, d, y)};
    return true;
}

} // namespace KAVO
