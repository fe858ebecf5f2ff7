// SPDX-License-Identifier: MIT
// The blend modes that divide, take roots or look at all three colours: a pixel at a time.
// Internal.
#pragma once

#include "graphics2d/layers/MMBlendMode.h"

namespace KAVO {
namespace Graphics2D {

// Mixes the colours of two premultiplied pixels: blue, green, red and alpha, none above its alpha.
// mixed becomes the product of both alphas times the mode's mix, on the scale to 255 * 255.
using PixelMixer = void (*)(const uint16_t layer[4], const uint16_t target[4], uint16_t mixed[4]);

// For colour dodge, colour burn, soft light, hue, saturation, colour and luminosity, and where no
// lanes are mixed (kMixesLanes) for all but normal; otherwise null.
PixelMixer pixelMixerOf(MMBlendMode mode);

} // namespace Graphics2D
} // namespace KAVO
