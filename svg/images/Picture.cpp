// SPDX-License-Identifier: MIT
#include "svg/images/Picture.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

void separateAlpha(Picture& picture)
{
    picture.hasAlpha = false;
    for (uint32_t& pixel : picture.pixels) {
        const uint32_t alpha = pixel >> 24;
        if (alpha == 255) continue;
        picture.hasAlpha = true;
        if (alpha == 0) continue;
        uint32_t result = alpha << 24;
        for (int shift = 0; shift < 24; shift += 8)
            result |= std::min(255u, ((pixel >> shift & 0xFF) * 255 + alpha / 2) / alpha) << shift;
        pixel = result;
    }
}

} // namespace Svg
} // namespace KAVO
