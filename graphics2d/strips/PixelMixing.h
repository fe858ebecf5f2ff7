// SPDX-License-Identifier: MIT
// Rows of pixels mixed with each other. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "math/Fixed.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// The weight of a 16-bit fraction, its top eight bits, in both halves of a word.
inline uint32_t weightsOf(uint32_t fraction)
{
    return (fraction >> 8 & 0xFF) * 0x10001u;
}

// Moves count pixels toward others by such weights and sets alphaBits in the results. The weights
// of a vector of pixels lie `step` words behind those of the one before: kLanes, or 0 for the same
// throughout. Reads whole vectors; the output may be one of the inputs.
using MixPixels = void (*)(const Pixel* from, const Pixel* to, const uint32_t* weights,
                           ptrdiff_t step, Pixel alphaBits, Pixel* out, int32_t count);

// By either mode's rule.
MixPixels mixerOf(bool refined);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
