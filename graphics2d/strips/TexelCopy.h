// SPDX-License-Identifier: MIT
// Rows of images at their own size. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "math/Fixed.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Copies texels that follow each other, as they are or opaque.
void copyTexels(const Pixel* texels, Pixel* out, int32_t count, bool makeOpaque);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
