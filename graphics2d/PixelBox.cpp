// SPDX-License-Identifier: MIT
#include "graphics2d/PixelBox.h"

#include "graphics2d/Redirection.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

PixelBox drawableBox(const MMContext2D& context)
{
    if constexpr (kHasLayers)
        if (isRedirected(context)) return redirectedBox(context);
    if (context.target.pixels == nullptr) return {0, 0, 0, 0};
    return {std::max<int32_t>(context.clipLeft, 0), std::max<int32_t>(context.clipTop, 0),
            std::min<int32_t>(context.clipRight, context.target.width),
            std::min<int32_t>(context.clipBottom, context.target.height)};
}

} // namespace Graphics2D
} // namespace KAVO
