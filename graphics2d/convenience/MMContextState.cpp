// SPDX-License-Identifier: MIT
#include "graphics2d/convenience/MMContextState.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

void setTarget(MMContext2D& context, Pixel* pixels, int32_t width, int32_t height,
               uint32_t rowBytes)
{
    const int16_t columns = static_cast<int16_t>(std::clamp(width, 0, INT16_MAX));
    const int16_t rows = static_cast<int16_t>(std::clamp(height, 0, INT16_MAX));
    context.target.width = static_cast<uint16_t>(columns);
    context.target.height = static_cast<uint16_t>(rows);
    context.target.rowBytes = rowBytes != 0 ? rowBytes : static_cast<uint32_t>(width) * 4;
    context.target.pixels = pixels;
    context.clipLeft = 0;
    context.clipTop = 0;
    context.clipRight = columns;
    context.clipBottom = rows;
    context.refined = 1;
}

} // namespace Graphics2D
} // namespace KAVO
