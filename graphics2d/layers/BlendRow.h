// SPDX-License-Identifier: MIT
// A row of a layer put on a row of pixels. Internal.
#pragma once

#include "graphics2d/layers/MMBlendMode.h"
#include "math/Fixed.h"

namespace KAVO {
namespace Graphics2D {

// Whether a mode changes the target where the layer is transparent.
constexpr bool actsOutside(MMBlendMode mode)
{
    switch (mode) {
    case kBlendClear:
    case kBlendCopy:
    case kBlendSourceIn:
    case kBlendDestinationIn:
    case kBlendSourceOut:
    case kBlendDestinationAtop:
        return true;
    default:
        return false;
    }
}

// Blends count premultiplied pixels of a layer into the target, rounded once. What the mode makes
// of a pixel takes the share opacity / 255 * levels[i] / 255 of it, the target the rest; levels may
// be null: all 255. A layer's channels are cut down to their alpha. Modes that are not in the list
// count as normal.
void blendRow(MMBlendMode mode, Pixel* target, const Pixel* layer, const uint8_t* levels,
              uint32_t opacity, int32_t count);

} // namespace Graphics2D
} // namespace KAVO
