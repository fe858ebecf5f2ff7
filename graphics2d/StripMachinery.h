// What the strip fillers share: blending. Internal.
#pragma once

#include "math/Fixed.h"

namespace KAVO {
namespace Graphics2D {

// Moves one channel from the destination's value toward the source's by weight / 256, rounding
// toward minus infinity. Differences above 128 get one extra weight, so that a weight of 255
// reaches the source exactly for large rises; falls reach it because the shift floors.
inline uint32_t blendChannel(uint32_t destination, uint32_t source, uint32_t weight)
{
    const int32_t w = static_cast<int32_t>(weight);
    const int32_t difference = static_cast<int32_t>(source) - static_cast<int32_t>(destination);
    const int32_t product = difference * w + (difference > 128 ? w : 0);
    return static_cast<uint32_t>(static_cast<int32_t>(destination) + (product >> 8));
}

// The same for all four channels alike, alpha included. The results cannot leave 0 to 255.
inline Pixel blendPixel(Pixel destination, Pixel source, uint32_t weight)
{
    const uint32_t blue = blendChannel(destination & 0xFF, source & 0xFF, weight);
    const uint32_t green = blendChannel((destination >> 8) & 0xFF, (source >> 8) & 0xFF, weight);
    const uint32_t red = blendChannel((destination >> 16) & 0xFF, (source >> 16) & 0xFF, weight);
    const uint32_t alpha = blendChannel(destination >> 24, source >> 24, weight);
    return blue | green << 8 | red << 16 | alpha << 24;
}

} // namespace Graphics2D
} // namespace KAVO
