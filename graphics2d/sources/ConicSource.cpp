// SPDX-License-Identifier: MIT
// Rows of conic gradients.
//
// The angle of a pixel is that of the ratio of its shorter to its longer coordinate, from a table
// of arc tangents, mirrored into its octant: to 2^-17, a quarter of a pixel at the far end of a
// target of 32,767.
#include "graphics2d/sources/GradientRows.h"
#include "graphics2d/sources/RampColours.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kTangentSteps = 256;
constexpr uint32_t kQuarterTurn = uint32_t{1} << 30;

// The arc tangents of k / 256 for k from 0 to 256, 2^32 to a turn.
struct AngleTable {
    uint32_t angles[kTangentSteps + 1];
};

// From one angle to the next by the tangent of their difference, 256 / (256^2 + k^2 + k), whose arc
// tangent is t - t^3 / 3 to 2^-42.
constexpr AngleTable makeAngleTable()
{
    constexpr uint64_t kPerRadian = 683565276; // 2^32 / (2 pi)
    AngleTable table = {};
    uint64_t sum = 0; // radians with 48 fraction bits
    for (uint32_t k = 0; k < kTangentSteps; ++k) {
        const uint64_t tangent = (uint64_t{1} << 56) / (65536 + k * k + k);
        const uint64_t square = (tangent >> 8) * (tangent >> 8) >> 32;
        sum += tangent - ((tangent >> 12) * (square >> 12) >> 24) / 3;
        table.angles[k + 1] = static_cast<uint32_t>((sum >> 16) * kPerRadian >> 32);
    }
    return table;
}

constexpr AngleTable kAngles = makeAngleTable();

uint64_t magnitude(int64_t v)
{
    return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
}

// From +x toward +y, 2^32 to a turn.
uint32_t angleOf(int64_t x, int64_t y)
{
    const uint64_t width = magnitude(x);
    const uint64_t height = magnitude(y);
    const bool isSteep = height > width;
    const uint64_t longer = isSteep ? height : width;
    const uint64_t shorter = isSteep ? width : height;
    // Shifted up to 32 bits, and the longer one rounded to 16 of them.
    const int32_t shift = __builtin_clzll(longer | 1);
    const uint32_t divisor = static_cast<uint32_t>(((longer << shift >> 47) + 1) >> 1);
    const uint32_t dividend = static_cast<uint32_t>(shorter << shift >> 32);
    const uint32_t ratio = divisor == 0 ? 0 : std::min(dividend / divisor, 0xFFFFu);
    const uint32_t* const entry = kAngles.angles + (ratio >> 8);
    uint32_t angle = entry[0] + ((entry[1] - entry[0]) * (ratio & 0xFF) >> 8);
    if (isSteep) angle = kQuarterTurn - angle;
    if (x < 0) angle = 2 * kQuarterTurn - angle;
    return y < 0 ? 0 - angle : angle;
}

} // namespace

void writeConicRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMGradientSource*>(state);
    auto x = static_cast<uint64_t>(source.axes[0].at(row, column));
    auto y = static_cast<uint64_t>(source.axes[1].at(row, column));
    const auto xStep = static_cast<uint64_t>(source.axes[0].perColumn);
    const auto yStep = static_cast<uint64_t>(source.axes[1].perColumn);
    const auto start = static_cast<uint32_t>(source.factors[kConicStart]);
    const auto scale = static_cast<uint64_t>(source.factors[kConicScale]);
    const auto shift = static_cast<uint32_t>(source.factors[kConicShift]);
    const bool isBackward = source.isNegative != 0;
    const uint64_t greatest = source.spread == kSpreadPad ? 1 << kPlaceBits : UINT64_MAX;
    int32_t places[kMostPixels];
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t turn = angleOf(static_cast<int64_t>(x), static_cast<int64_t>(y)) - start;
        const uint64_t place = (isBackward ? 0 - turn : turn) * scale >> shift;
        places[i] =
            static_cast<int32_t>(static_cast<uint32_t>(std::min(place, greatest)) & source.mask);
        x += xStep;
        y += yStep;
    }
    writePlaces(source, pixels, count, places);
}

} // namespace Graphics2D
} // namespace KAVO
