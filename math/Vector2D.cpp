// SPDX-License-Identifier: MIT
// Operations on 16.16 vectors.
#include "math/Vector2D.h"

#include "math/FixedMath.h"
#include "math/UnitVector.h"

using namespace KAVO;

namespace {

// floor(sqrt(s * 2^32)): the root of a 2.30 number of 1.0 to 2.0 in 1.31. What is off by a few
// units is put right.
uint32_t rootTo31Bits(uint32_t s)
{
    const uint64_t square = uint64_t{s} << 32;
    uint64_t root = uint64_t{s} * reciprocalRoot(s) >> 29;
    while (root * root > square)
        --root;
    while ((root + 1) * (root + 1) <= square)
        ++root;
    return static_cast<uint32_t>(root);
}

} // namespace

Fixed v2dDot(const MMPoint2D* a, const MMPoint2D* b)
{
    if (a == nullptr || b == nullptr) return 0;
    return wrapAdd(fixMul(a->x, b->x), fixMul(a->y, b->y));
}

Fixed v2dCross(const MMPoint2D* a, const MMPoint2D* b)
{
    if (a == nullptr || b == nullptr) return 0;
    return wrapSub(fixMul(a->x, b->y), fixMul(a->y, b->x));
}

Fixed v2dQDNorm(MMPoint2D v)
{
    const int32_t absX = static_cast<int32_t>(magnitudeOf(v.x));
    const int32_t absY = static_cast<int32_t>(magnitudeOf(v.y));
    const int32_t xMinusY = wrapSub(absX, absY);
    const int32_t yMinusX = wrapSub(absY, absX);
    const int32_t difference = xMinusY > yMinusX ? xMinusY : yMinusX;
    const int32_t sum = wrapAdd(absX, absY);
    const int32_t larger = wrapAdd(sum, difference) >> 1;
    const int32_t smaller = wrapSub(sum, difference) >> 1;
    // 0.98340 * larger + 0.43066 * smaller, less 0.03906 * larger away from the axes.
    Fixed length = wrapAdd(fixMul(larger, 64448), fixMul(smaller, 28224));
    if (static_cast<uint32_t>(larger) < static_cast<uint32_t>(smaller) * 16u)
        length = wrapSub(length, fixMul(larger, 2560));
    return length;
}

Fixed v2dNorm(const MMPoint2D* v)
{
    if (v == nullptr) return 0;
    const uint32_t absX = magnitudeOf(v->x);
    const uint32_t absY = magnitudeOf(v->y);
    if (absX == 0 && absY == 0) return 0;
    const int32_t smaller = static_cast<int32_t>(absX > absY ? absY : absX);
    const int32_t larger = static_cast<int32_t>(absX > absY ? absX : absY);
    // larger * sqrt(1 + (smaller / larger)^2) needs no square of a coordinate.
    const int32_t ratio = fixMulDiv(kOne30, smaller, larger);
    const uint32_t squared = static_cast<uint32_t>(fixMulSHR(ratio, ratio, 14)) + uint32_t{kOne30};
    const uint32_t root = rootTo31Bits(squared);
    const uint32_t rounded = (root >> 1) + (root & 1u);
    return fixMulSHR(larger, static_cast<int32_t>(rounded), 14);
}

void v2dNormalize(MMPoint2D& v)
{
    const Fixed length = v2dNorm(&v);
    if (length == 0) {
        v = {0, 0};
        return;
    }
    v.x = fixDiv(v.x, length);
    v.y = fixDiv(v.y, length);
}

int32_t v2dGetIntercept(MMIntersect& lines)
{
    if (lines.result == nullptr) return 0;
    constexpr Fixed kParallel = 512; // 1/128
    const Fixed det = wrapNeg(lines.cross);
    if (det > -kParallel && det < kParallel) return 0;
    const Fixed dx = wrapSub(lines.point1.x, lines.point2.x);
    const Fixed dy = wrapSub(lines.point2.y, lines.point1.y);
    const Fixed t = wrapAdd(fixMulDiv(lines.dir2.y, dx, det), fixMulDiv(lines.dir2.x, dy, det));
    const Fixed u = wrapAdd(fixMulDiv(lines.dir1.y, dx, det), fixMulDiv(lines.dir1.x, dy, det));
    lines.distance1 = wrapNeg(t);
    lines.result->x = wrapAdd(lines.point1.x, fixMul(lines.dir1.x, t));
    lines.result->y = wrapAdd(lines.point1.y, fixMul(lines.dir1.y, t));
    return t <= 0 && u >= 0 && t >= wrapNeg(lines.length1) && u <= lines.length2 ? 1 : 0;
}
