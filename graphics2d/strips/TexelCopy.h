// SPDX-License-Identifier: MIT
// Rows of images at their own size. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/LevelTable.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_NARROW_LEVEL {

// Copies texels that follow each other, of a row or more, as they are or opaque.
void copyTexels(const Pixel* texels, Pixel* out, int32_t count, bool makeOpaque,
                TexelRows rows = {});

} // namespace MM2D_NARROW_LEVEL
} // namespace Graphics2D
} // namespace KAVO
