// SPDX-License-Identifier: MIT
// A row of a layer put over a row of pixels. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "math/Fixed.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// blendRow by kBlendNormal.
void blendNormal(Pixel* target, const Pixel* layer, const uint8_t* levels, uint32_t opacity,
                 int32_t count);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
