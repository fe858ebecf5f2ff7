// SPDX-License-Identifier: MIT
// The pixels of a paint that is a function. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/MMPaint.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Writes count premultiplied pixels of a row from a device column on, in calls of at most 128.
void readSource(const MMPaint& paint, int32_t row, int32_t column, int32_t count, Pixel* pixels);

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
