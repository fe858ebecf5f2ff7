// SPDX-License-Identifier: MIT
// From interpolated channels to pixels.
#include "graphics2d/strips/Channels.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void packOpaque(const Channels* channels, Pixel* pixels, int32_t count)
{
    const U32x4 half = all4(kChannelHalf);
    for (int32_t i = 0; i < count; i += 4) {
        const U32x4 packed = packChannels(channels[i] + half, channels[i + 1] + half,
                                          channels[i + 2] + half, channels[i + 3] + half);
        if (i + 4 > count) return storeFew(pixels + i, packed, count - i);
        store4(pixels + i, packed);
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
