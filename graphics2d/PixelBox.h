// SPDX-License-Identifier: MIT
// Rectangles of whole pixels, and the one in which a context draws. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

#include <cstddef>

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

// The part of the target inside the clip rectangle, and of its layer and masks if it has any;
// nothing without pixels.
PixelBox drawableBox(const MMContext2D& context);

// Column 0 of a row. By whole numbers, for where drawing goes into a layer or a mask that address
// need not lie in any memory.
inline Pixel* targetRow(const MMPixmap& target, int32_t row, size_t rowBytes)
{
    return reinterpret_cast<Pixel*>(reinterpret_cast<uintptr_t>(target.pixels) +
                                    static_cast<uintptr_t>(row) * rowBytes);
}

} // namespace Graphics2D
} // namespace KAVO
