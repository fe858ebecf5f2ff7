// SPDX-License-Identifier: MIT
// Weighted sums of 4 by 4 texels, for the bicubic filter. Internal.
//
// The weights are those of the uniform cubic B-spline: they are all positive and smooth, so that
// nothing overshoots, and even texels that pixels hit exactly are mixed with their neighbours. They
// are 16.16 and computed for eight pixels at a time. None reaches 1.0, so 16 bits hold them, and
// what lies above on the way is added where it is missing.
#pragma once

#include "graphics2d/strips/Channels.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

constexpr uint16_t kOneSixth = 0x2AAA;
constexpr uint16_t kTwoThirds = 0xAAAA;
constexpr uint16_t kFourThirds = 0x5555; // without its 1.0
constexpr int32_t kWeightBatch = 8;      // pixels whose weights are computed together

// fixMul of numbers below 1.0, the first of which loses its lowest bit.
inline U16x8 weightProduct(U16x8 a, U16x8 b)
{
    return mulHigh(a & 0xFFFE, b);
}

// The spline's outer piece, distance 1.0 + e from the tap, as a polynomial. Factors that would be
// negative are turned around: products round toward zero either way.
inline U16x8 outerWeight(U16x8 e)
{
    const U16x8 cubic = -(mulHigh(U16x8{} + kOneSixth, e) + kOneSixth); // 1.0 - ...
    const U16x8 quadratic = -(cubic + weightProduct(cubic, e));         // 2.0 - ...
    const U16x8 wholePart = e & (U16x8)((I16x8)quadratic >= 0);         // 1.0 and more
    return kFourThirds - (quadratic + weightProduct(quadratic, e) + wholePart);
}

// The same as the cube of what is left to the spline's end.
inline U16x8 cubeWeight(U16x8 rest)
{
    return mulHigh(U16x8{} + kOneSixth, weightProduct(weightProduct(rest, rest), rest));
}

// The inner piece, distance up to 1.0 from the tap.
inline U16x8 innerWeight(U16x8 distance)
{
    const U16x8 linear = -(distance >> 1); // 1.0 - ..., and 1.0 times a distance of 0 or 1 is 0
    return kTwoThirds - weightProduct(weightProduct(linear, distance), distance);
}

using PixelWeights = uint64_t[kWeightBatch]; // of four taps, 16 bits each

// The weights of four taps for the fractions of eight pixels.
struct CubicWeights {
    U16x8 tap[4];

    // The axes compute their end weights in mirrored ways, which round differently. Where the
    // fraction is 0, the distance 1.0 to the next tap does not fit: the last terms make up for it.
    static CubicWeights alongRow(U16x8 f)
    {
        const U16x8 rest = -f;
        const U16x8 whole = (U16x8)(f == 0);
        return {{cubeWeight(rest) + (whole & kOneSixth), innerWeight(f),
                 innerWeight(rest) - (whole & 0x8000), outerWeight(rest) - (whole & 0x2AA6)}};
    }
    static CubicWeights acrossRows(U16x8 g)
    {
        const U16x8 rest = -g;
        return {{outerWeight(g), innerWeight(g), innerWeight(rest) - ((U16x8)(g == 0) & 0x8000),
                 cubeWeight(g)}};
    }

    // The four taps of each pixel side by side.
    void byPixel(PixelWeights& weights) const
    {
        const U32x4 low[2] = {zipLow(tap[0], tap[1]), zipLow(tap[2], tap[3])};
        const U32x4 high[2] = {zipHigh(tap[0], tap[1]), zipHigh(tap[2], tap[3])};
        const U32x4 pairs[4] = {__builtin_shufflevector(low[0], low[1], 0, 4, 1, 5),
                                __builtin_shufflevector(low[0], low[1], 2, 6, 3, 7),
                                __builtin_shufflevector(high[0], high[1], 0, 4, 1, 5),
                                __builtin_shufflevector(high[0], high[1], 2, 6, 3, 7)};
        std::memcpy(weights, pairs, sizeof pairs);
    }
};

// Four texels of a column: the channels of the upper two and of the lower two in turn.
struct Column {
    U16x8 upper;
    U16x8 lower;
};

// The columns of 4 by 4 texels, their first at the given address.
inline void loadColumns(const Pixel* texels, int32_t width, Column* columns)
{
    const U32x4 first = load4(texels);
    const U32x4 second = load4(texels + width);
    const U32x4 third = load4(texels + 2 * width);
    const U32x4 fourth = load4(texels + 3 * width);
    const U32x4 upperLeft = zipLowBytes(first, second);
    const U32x4 upperRight = zipHighBytes(first, second);
    const U32x4 lowerLeft = zipLowBytes(third, fourth);
    const U32x4 lowerRight = zipHighBytes(third, fourth);
    columns[0] = {widenLow(upperLeft), widenLow(lowerLeft)};
    columns[1] = {widenHigh(upperLeft), widenHigh(lowerLeft)};
    columns[2] = {widenLow(upperRight), widenLow(lowerRight)};
    columns[3] = {widenHigh(upperRight), widenHigh(lowerRight)};
}

// The 8.16 sums of the channels over four columns.
inline Channels weightedSum(const Column* columns, uint64_t x, uint64_t y)
{
    const U16x8 both = (U16x8)U64x2{x, y};
    const U16x8 xPairs = __builtin_shufflevector(both, both, 0, 0, 1, 1, 2, 2, 3, 3);
    const U16x8 yUpper = __builtin_shufflevector(both, both, 4, 5, 4, 5, 4, 5, 4, 5);
    const U16x8 yLower = __builtin_shufflevector(both, both, 6, 7, 6, 7, 6, 7, 6, 7);
    const U32x4 upper = (U32x4)weightProduct(xPairs, yUpper);
    const U32x4 lower = (U32x4)weightProduct(xPairs, yLower);
    // One pair of tap weights for all channels of a column.
    const auto column = [&](const Column& texels, U32x4 upperTaps, U32x4 lowerTaps) {
        return multiplyAddPairs(texels.upper, (U16x8)upperTaps) +
               multiplyAddPairs(texels.lower, (U16x8)lowerTaps);
    };
    return column(columns[0], __builtin_shufflevector(upper, upper, 0, 0, 0, 0),
                  __builtin_shufflevector(lower, lower, 0, 0, 0, 0)) +
           column(columns[1], __builtin_shufflevector(upper, upper, 1, 1, 1, 1),
                  __builtin_shufflevector(lower, lower, 1, 1, 1, 1)) +
           column(columns[2], __builtin_shufflevector(upper, upper, 2, 2, 2, 2),
                  __builtin_shufflevector(lower, lower, 2, 2, 2, 2)) +
           column(columns[3], __builtin_shufflevector(upper, upper, 3, 3, 3, 3),
                  __builtin_shufflevector(lower, lower, 3, 3, 3, 3));
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
