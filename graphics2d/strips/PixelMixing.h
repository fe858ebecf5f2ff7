// SPDX-License-Identifier: MIT
// Rows of pixels mixed with each other. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/MMPixmap.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Moves count pixels toward others by weights of 0 to 255 in both halves of their words, which the
// next vector has behind a step, and sets alphaBits in the results. Reads whole vectors; the output
// may be one of the inputs.
using MixPixels = void (*)(const Pixel* from, const Pixel* to, const uint32_t* weights,
                           ptrdiff_t step, Pixel alphaBits, Pixel* out, int32_t count);

// By either mode's rule.
MixPixels mixerOf(bool refined);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
