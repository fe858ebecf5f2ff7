// SPDX-License-Identifier: MIT
// Pictures as the library sees them.
#pragma once

#include "graphics2d/MMPixmap.h"
#include "svg/images/Picture.h"

namespace KAVO {
namespace Svg {

// A target, or an image with or without alpha, whose pixels are then only read.
inline MMPixmap pixmapOf(const Picture& picture, bool hasAlpha)
{
    const auto width = static_cast<uint16_t>(picture.width);
    const auto height = static_cast<uint16_t>(picture.height);
    return {width, height, width * 4u, 0, const_cast<Pixel*>(picture.pixels.data()), hasAlpha};
}

} // namespace Svg
} // namespace KAVO
