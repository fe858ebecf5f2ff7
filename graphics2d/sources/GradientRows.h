// SPDX-License-Identifier: MIT
// The functions that gradient sources are drawn by, and what each needs in the record. Internal.
#pragma once

#include "graphics2d/sources/MMGradientSource.h"

namespace KAVO {
namespace Graphics2D {

// axes[0] is the parameter, 2^32 to 1.0, or 2^31 for a reflected ramp: there and for a repeated one
// modulo 2^32.
void writeLinearRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels);

// The high words of axes are numbers b, u and v of 2^(24 - shift) to 1.0, all below 2^29. The
// parameter is b plus or minus hypot(u, v).
void writeNestedRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels);

// The parameter is b + root(u * u - v * v), and nothing is drawn where u < |v|.
void writeConeRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels);

// Where one circle touches the other, or nearly so. The high words of axes[0] and axes[1] are x
// along the line of centres from the point where they touch, and y across, in units of the centres'
// distance: as above, and positive on the side of the greater circles. factors: kTouchBase is the
// parameter at the touching point, kTouchExcess the square of the distance less that of the
// radii's difference, 2^32 to 1.0 and at most 1/64 either way, kTouchInverse 2^12 by its magnitude.
void writeTouchingRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels);
constexpr int kTouchBase = 0;
constexpr int kTouchExcess = 1;
constexpr int kTouchInverse = 2;

// axes[0] and axes[1] are the way from the centre, in any unit. factors: kConicStart is the
// direction of offset 0 as 2^32 to a turn, and the parameter is the angle from there, times
// kConicScale, shifted down by kConicShift.
void writeConicRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels);
constexpr int kConicStart = 0;
constexpr int kConicScale = 1;
constexpr int kConicShift = 2;

} // namespace Graphics2D
} // namespace KAVO
