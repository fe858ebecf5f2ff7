// SPDX-License-Identifier: MIT
// The affine transform of the library.
#include "math/Matrix2D.h"

#include "math/FixedInline.h"
#include "math/FixedMath.h"

#include <initializer_list>

using namespace KAVO;

namespace {

constexpr Fixed kLargest = 0x7FFFFFFF;

// Brings an angle into (0, 360) degrees; false when it is a whole number of turns.
bool reduceTurn(Degrees& angle)
{
    angle = reducedAngle(angle);
    return angle != 0;
}

// 1 / v. The numerator is one short of 2^32, so powers of two come out one unit low; 0 gives 0.
Fixed reciprocal(Fixed v)
{
    if (v == 0) return 0;
    return applySign((0xFFFFFFFFu / magnitudeOf(v)) & 0x7FFFFFFFu, signMaskOf(v));
}

int32_t log2Of(Fixed v)
{
    return static_cast<int32_t>(MMLog2(magnitudeOf(v)));
}

// True within a degree of 90, where the tangent is out of range.
bool isNearRightAngle(Degrees angle)
{
    return angle >= kDegrees90 - kFixedOne && angle <= kDegrees90 + kFixedOne;
}

} // namespace

Matrix2D& Matrix2D::operator*=(const Matrix2D& t)
{
    const Matrix2D first = *this;
    mul(&first, &t);
    return *this;
}

void Matrix2D::mul(const Matrix2D* first, const Matrix2D* second)
{
    if (first == nullptr || second == nullptr) return;
    const Matrix2D p = *first;
    const Matrix2D q = *second;
    a = wrapAdd(fixMul(q.a, p.a), fixMul(q.c, p.b));
    b = wrapAdd(fixMul(q.b, p.a), fixMul(q.d, p.b));
    c = wrapAdd(fixMul(q.a, p.c), fixMul(q.c, p.d));
    d = wrapAdd(fixMul(q.b, p.c), fixMul(q.d, p.d));
    e = wrapAdd(wrapAdd(fixMul(q.a, p.e), fixMul(q.c, p.f)), q.e);
    f = wrapAdd(wrapAdd(fixMul(q.b, p.e), fixMul(q.d, p.f)), q.f);
}

void Matrix2D::translate(Fixed tx, Fixed ty)
{
    e = wrapAdd(e, tx);
    f = wrapAdd(f, ty);
}

void Matrix2D::scale(Fixed sx, Fixed sy)
{
    a = fixMul(sx, a);
    c = fixMul(sx, c);
    e = fixMul(sx, e);
    b = fixMul(sy, b);
    d = fixMul(sy, d);
    f = fixMul(sy, f);
}

void Matrix2D::rotate(Degrees angle)
{
    if (!reduceTurn(angle)) return;
    const Fixed cosine = fixCos(angle);
    const Fixed sine = fixSin(angle);
    const Matrix2D m = *this;
    a = wrapSub(fixMul(cosine, m.a), fixMul(sine, m.b));
    c = wrapSub(fixMul(cosine, m.c), fixMul(sine, m.d));
    e = wrapSub(fixMul(cosine, m.e), fixMul(sine, m.f));
    b = wrapAdd(fixMul(sine, m.a), fixMul(cosine, m.b));
    d = wrapAdd(fixMul(sine, m.c), fixMul(cosine, m.d));
    f = wrapAdd(fixMul(sine, m.e), fixMul(cosine, m.f));
}

void Matrix2D::rotateCenter(Degrees angle, Fixed cx, Fixed cy)
{
    if (!reduceTurn(angle)) return;
    const Fixed cosine = fixCos(angle);
    const Fixed sine = fixSin(angle);
    *this *= Matrix2D{cosine,
                      sine,
                      -sine,
                      cosine,
                      wrapAdd(wrapSub(cx, fixMul(cx, cosine)), fixMul(cy, sine)),
                      wrapSub(wrapSub(cy, fixMul(cx, sine)), fixMul(cy, cosine))};
}

void Matrix2D::skewX(Degrees angle)
{
    if (!reduceTurn(angle)) return;
    // Only the right angle at 90 degrees is guarded, and the skew goes on with the guarded values.
    if (isNearRightAngle(angle)) c = d = kLargest;
    const Fixed cosine = fixCos(angle);
    const Fixed sine = fixSin(angle);
    a = wrapAdd(a, fixMulDiv(b, sine, cosine));
    c = wrapAdd(c, fixMulDiv(d, sine, cosine));
    e = wrapAdd(e, fixMulDiv(f, sine, cosine));
}

void Matrix2D::skewY(Degrees angle)
{
    if (!reduceTurn(angle)) return;
    if (isNearRightAngle(angle)) a = b = kLargest;
    const Fixed cosine = fixCos(angle);
    const Fixed sine = fixSin(angle);
    b = wrapAdd(b, fixMulDiv(a, sine, cosine));
    d = wrapAdd(d, fixMulDiv(c, sine, cosine));
    f = wrapAdd(f, fixMulDiv(e, sine, cosine));
}

namespace {

template <class Map>
void mapEach(MMPoint2D* dst, const MMPoint2D* src, uint16_t count, Map map)
{
    for (uint32_t i = 0; i < count; ++i)
        dst[i] = map(src[i]);
}

} // namespace

void Matrix2D::transform(MMPoint2D* dst, const MMPoint2D* src, uint16_t count) const
{
    if (dst == nullptr || src == nullptr) return;
    const Matrix2D m = *this;
    // Products with 1 and 0 are exact, so most drawings need none.
    if (m.b == 0 && m.c == 0 && m.a == kFixedOne && m.d == kFixedOne)
        return mapEach(dst, src, count, [m](MMPoint2D p) {
            return MMPoint2D{wrapAdd(p.x, m.e), wrapAdd(p.y, m.f)};
        });
    mapEach(dst, src, count, [m](MMPoint2D p) {
        return MMPoint2D{wrapAdd(wrapAdd(fixMulInline(m.a, p.x), fixMulInline(m.c, p.y)), m.e),
                         wrapAdd(wrapAdd(fixMulInline(m.b, p.x), fixMulInline(m.d, p.y)), m.f)};
    });
}

void Matrix2D::invert()
{
    // Each element is the reciprocal of one expression, so that the determinant, which could
    // overflow, is never formed. The logarithms predict an intermediate product beyond 32 bits.
    const Matrix2D m = *this;
    const int32_t logA = log2Of(m.a);
    const int32_t logB = log2Of(m.b);
    const int32_t logC = log2Of(m.c);
    const int32_t logD = log2Of(m.d);
    a = b = c = d = 0;
    if (m.d != 0 && logB + logC - logD <= 31)
        a = reciprocal(wrapSub(m.a, fixMulDiv(m.b, m.c, m.d)));
    if (m.b != 0 && logA + logD - logB <= 31)
        b = reciprocal(wrapSub(m.c, fixMulDiv(m.a, m.d, m.b)));
    if (m.c != 0 && logA + logD - logC <= 31)
        c = reciprocal(wrapSub(m.b, fixMulDiv(m.a, m.d, m.c)));
    if (m.a != 0 && logB + logC - logA <= 31)
        d = reciprocal(wrapSub(m.d, fixMulDiv(m.b, m.c, m.a)));
    e = wrapAdd(fixMul(wrapNeg(m.f), c), fixMul(wrapNeg(m.e), a));
    f = wrapAdd(fixMul(wrapNeg(m.f), d), fixMul(wrapNeg(m.e), b));
}

Fixed Matrix2D::normalize()
{
    uint32_t smallest = static_cast<uint32_t>(kLargest);
    for (Fixed element : {a, b, c, d}) {
        const uint32_t magnitude = magnitudeOf(element);
        if (magnitude != 0 && magnitude < smallest) smallest = magnitude;
    }
    const Fixed factor = reciprocal(static_cast<Fixed>(smallest));
    for (Fixed* element : {&a, &b, &c, &d, &e, &f})
        *element = fixMul(*element, factor);
    return factor;
}

uint32_t Matrix2D::compose(TransformTypes type, Fixed* values, uint32_t count)
{
    if (values == nullptr || count == 0) return kBadTransform;
    switch (type) {
    case Translate:
        if (count > 2) return kBadTransform;
        if (count == 1) values[1] = 0;
        translate(values[0], values[1]);
        return 0;
    case Scale:
        if (count == 1) values[1] = values[0];
        if (count > 2 || values[0] == 0 || values[1] == 0) return kBadTransform;
        scale(values[0], values[1]);
        return 0;
    case Rotate:
        if (count == 2 || count > 3) return kBadTransform;
        if (count == 3)
            rotateCenter(values[0], values[1], values[2]);
        else
            rotate(values[0]);
        return 0;
    case SkewX:
        if (count > 1) return kBadTransform;
        skewX(values[0]);
        return 0;
    case SkewY:
        if (count > 1) return kBadTransform;
        skewY(values[0]);
        return 0;
    case Matrix:
        if (count != 6) return kBadTransform;
        *this *= Matrix2D{values[0], values[1], values[2], values[3], values[4], values[5]};
        return 0;
    }
    return 0; // an unknown type is ignored
}
