// SPDX-License-Identifier: MIT
// Rectangles of whole pixels, and the one in which a context draws. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

// Whole pixels; left and top inclusive, right and bottom exclusive.
struct PixelBox {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;

    bool empty() const { return left >= right || top >= bottom; }
};

// The part of the target inside the clip rectangle; nothing without pixels.
PixelBox drawableBox(const MMContext2D& context);

} // namespace Graphics2D
} // namespace KAVO
