// SPDX-License-Identifier: MIT
// 16.16 roots and trigonometry by shifts, additions and tables, and the choice of divisions.
#include "math/FixedMath.h"
#include "math/Division.h"
#include "math/FixedInline.h"

using namespace KAVO;

namespace {

// sin(x) = slope * x + offset over [5 i, 5 i + 5) degrees: the slope is the chord's in 2^-24 per
// degree, the offset in 2^-24 is raised a little so that the error lies on both sides of the curve.
struct SineChord {
    int32_t slope;
    int32_t offset;
};

constexpr SineChord kSineChords[18] = {
    {292446, 357},     {290220, 12174},   {285786, 57203},   {279176, 157017},  {270442, 332354},
    {259650, 602795},  {246881, 986452},  {232234, 1499681}, {215819, 2156808}, {197761, 2969881},
    {178199, 3948451}, {157280, 5099375}, {135165, 6426662}, {112020, 7931339}, {88024, 9611359},
    {63357, 11461549}, {38208, 13473588}, {12768, 15636030},
};

// atan(2^-i) in 16.16 degrees, rounded to nearest.
constexpr int32_t kArcTangents[22] = {
    2949120, 1740967, 919879, 466945, 234379, 117304, 58666, 29335, 14668, 7334, 3667,
    1833,    917,     458,    229,    115,    57,     29,    14,    7,     4,    2,
};

constexpr Fixed kOneFifth =
    0x3333; // a little below 0.2, so that 90 degrees falls into the last row

// Sine of an angle in [0, 90] degrees. The row lags one behind at and just above multiples of five
// degrees, where both rows agree closely.
Fixed sineOfFirstQuadrant(Degrees angle)
{
    const SineChord& chord = kSineChords[fixMul(angle, kOneFifth) >> 16];
    return wrapAdd(fixMul(chord.slope, angle), chord.offset) >> 8;
}

// Leaves [0, 360] degrees alone, both ends included, and brings every other angle into it.
Degrees tableAngle(Degrees angle)
{
    return angle >= 0 && angle <= kDegrees360 ? angle : reducedAngle(angle);
}

// Processors whose addresses have 64 bits divide numbers of 64 bits in hardware.
constexpr bool kDividesWide = UINTPTR_MAX > UINT32_MAX;

} // namespace

Fixed fixMul(Fixed a, Fixed b)
{
    return fixMulInline(a, b);
}

Fixed fixMulSHR(Fixed a, Fixed b, uint8_t shift)
{
    return fixMulSHRInline(a, b, shift);
}

int32_t fixMulDiv(int32_t a, int32_t b, int32_t c)
{
    return kDividesWide ? fixMulDivWide(a, b, c) : fixMulDivLong(a, b, c);
}

Fixed fixDiv(Fixed a, Fixed b)
{
    return kDividesWide ? fixDivWide(a, b) : fixDivLong(a, b);
}

Fixed fixSqrt(Fixed x)
{
    uint32_t remainder = static_cast<uint32_t>(x);
    uint32_t root = 0;
    for (uint32_t k = 16; k-- > 0;) {
        const uint32_t trial = (root << (k + 1)) + (1u << (2 * k));
        root |= subtractIfReached(remainder, trial) << k;
    }
    // The trial values of the fraction leave out the square of the new bit: it may come out high.
    root <<= 8;
    remainder <<= 8;
    for (uint32_t k = 1; k <= 7; ++k) {
        root |= subtractIfReached(remainder, root >> (k - 1)) << (8 - k);
    }
    if (root >> 7 <= remainder) root |= 1u;
    return static_cast<Fixed>(root);
}

Fixed fixSin(Degrees angle)
{
    const Degrees reduced = tableAngle(angle);
    const bool negative = reduced > kDegrees180;
    Degrees phi = negative ? reduced - kDegrees180 : reduced;
    if (phi > kDegrees90) phi = kDegrees180 - phi;
    const Fixed sine = sineOfFirstQuadrant(phi);
    return negative ? -sine : sine;
}

Fixed fixCos(Degrees angle)
{
    const Degrees reduced = tableAngle(angle);
    Degrees phi = reduced > kDegrees180 ? kDegrees360 - reduced : reduced;
    const bool negative = phi > kDegrees90;
    if (negative) phi = kDegrees180 - phi;
    const Fixed cosine = sineOfFirstQuadrant(kDegrees90 - phi);
    return negative ? -cosine : cosine;
}

Degrees fixATan(int32_t x, int32_t y)
{
    if (y == 0) return x < 0 ? kDegrees180 : 0;
    Degrees angle = 0;
    if (x < 0) { // a rotation by 180 degrees
        x = wrapNeg(x);
        y = wrapNeg(y);
        angle = kDegrees180;
    }
    if ((magnitudeOf(y) | static_cast<uint32_t>(x)) > 0x3FFFFFFFu) {
        x >>= 2;
        y >>= 2;
    }
    // Each round turns the vector toward the x axis by atan(2^-i) and counts the angle.
    for (int i = 0; i < 22; ++i) {
        const int32_t xShifted = x >> i;
        const int32_t yShifted = y >> i;
        if (y < 0) {
            y = wrapAdd(y, xShifted);
            x = wrapSub(x, yShifted);
            angle -= kArcTangents[i];
        } else {
            y = wrapSub(y, xShifted);
            x = wrapAdd(x, yShifted);
            angle += kArcTangents[i];
        }
    }
    return angle < 0 ? angle + kDegrees360 : angle;
}

uint32_t MMLog2(uint32_t v)
{
    uint32_t n = 0;
    if (v >= 0x10000u) {
        v >>= 16;
        n += 16;
    }
    if (v > 0xFFu) {
        v >>= 8;
        n += 8;
    }
    if (v > 0xFu) {
        v >>= 4;
        n += 4;
    }
    if (v > 3u) {
        v >>= 2;
        n += 2;
    }
    return n + (v >> 1);
}
