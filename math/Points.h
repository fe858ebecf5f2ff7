// SPDX-License-Identifier: MIT
// The mapping of one point or of long runs of them, and middles of points. Internal.
#pragma once

#include "math/FixedMath.h"
#include "math/Matrix2D.h"
#include "math/WideMath.h"

namespace KAVO {

// The middle between two points, without wrapping on the way.
constexpr MMPoint2D midPoint(const MMPoint2D& a, const MMPoint2D& b)
{
    return {(a.x >> 1) + (b.x >> 1), (a.y >> 1) + (b.y >> 1)};
}

// As Matrix2D::transform, of one point.
inline MMPoint2D mapped(const Matrix2D& m, Fixed x, Fixed y)
{
    // Upright images are frequent, and this runs for each of their rows: products with 0 are 0.
    if ((m.b | m.c) == 0) return {wrapAdd(fixMul(m.a, x), m.e), wrapAdd(fixMul(m.d, y), m.f)};
    MMPoint2D point = {x, y};
    m.transform(&point, &point, 1);
    return point;
}

// As Matrix2D::transform, for more points than its 16-bit count can say.
inline void transformPoints(const Matrix2D& transform, MMPoint2D* dst, const MMPoint2D* src,
                            uint32_t count)
{
    constexpr uint16_t kPiece = 0x8000;
    for (; count > kPiece; count -= kPiece, dst += kPiece, src += kPiece)
        transform.transform(dst, src, kPiece);
    transform.transform(dst, src, static_cast<uint16_t>(count));
}

// The point mapped in 64 bits; one beyond the range stops at its end instead of wrapping.
constexpr MMPoint2D mappedSaturated(const Matrix2D& m, const MMPoint2D& p)
{
    const int64_t x = p.x;
    const int64_t y = p.y;
    return {saturated(((x * m.a) >> 16) + ((y * m.c) >> 16) + m.e),
            saturated(((x * m.b) >> 16) + ((y * m.d) >> 16) + m.f)};
}

} // namespace KAVO
