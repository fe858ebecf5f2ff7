// SPDX-License-Identifier: MIT
// Number formats of the whole library and the wrapping arithmetic they are computed with.
//
// There is no floating point anywhere: coordinates, lengths, matrix elements and trigonometric
// results are 16.16 fixed point, angles are 16.16 degrees. Results that do not fit are kept modulo
// 2^32. Signed overflow is undefined in C++, so everything that may wrap goes through unsigned
// arithmetic in the helpers below.
#pragma once

#include <cstdint>

namespace KAVO {

using Fixed = int32_t;    // 16.16, 1.0 = 0x10000
using Degrees = int32_t;  // 16.16 degrees, from +x toward +y (clockwise on a y-down target)
using Coverage = int32_t; // 16.16 on the 0..255 scale, 255.0 = 0x00FF0000 is fully covered
using Pixel = uint32_t;   // 0xAARRGGBB

constexpr Fixed kFixedOne = 0x10000;
constexpr Fixed kFixedHalf = 0x8000;
constexpr Degrees kDegrees90 = 0x5A0000;
constexpr Degrees kDegrees180 = 0xB40000;
constexpr Degrees kDegrees360 = 0x1680000;

// Sum, difference, product and negation modulo 2^32.
constexpr int32_t wrapAdd(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

constexpr int32_t wrapSub(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

constexpr int32_t wrapMul(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

constexpr int32_t wrapNeg(int32_t v)
{
    return static_cast<int32_t>(0u - static_cast<uint32_t>(v));
}

// v * 2^n modulo 2^32, n below 32; also for negative v.
constexpr int32_t wrapShl(int32_t v, uint32_t n)
{
    return static_cast<int32_t>(static_cast<uint32_t>(v) << n);
}

// |v| as an unsigned number; the magnitude of -2^31 is 2^31.
constexpr uint32_t magnitudeOf(int32_t v)
{
    return v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v);
}

// The same direction in [0, 360) degrees.
constexpr Degrees reducedAngle(Degrees angle)
{
    const Degrees rest = angle % kDegrees360;
    return rest < 0 ? rest + kDegrees360 : rest;
}

// Integer part, toward minus infinity: the pixel or row that a shifted coordinate selects.
constexpr int32_t fixFloor(Fixed v)
{
    return v >> 16;
}

// The 16.16 value of a whole number; only the low 16 bits of the number survive.
constexpr Fixed fixFromInt(int32_t v)
{
    return wrapShl(v, 16);
}

// The fraction bits alone, 0 to 0xFFFF.
constexpr uint32_t fixFraction(Fixed v)
{
    return static_cast<uint32_t>(v) & 0xFFFFu;
}

} // namespace KAVO
