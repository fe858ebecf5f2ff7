// SPDX-License-Identifier: MIT
// Rows of tiles without smoothing, under any transform.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/PixelLanes.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void writeNearestTiles(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMTileSource*>(state);
    TileWalk u(source.across, row, column);
    TileWalk v(source.down, row, column);
    const Pixel* const first = source.pixels;
    const auto length = static_cast<ptrdiff_t>(source.rowLength);
    const Pixel alphaBits = source.alphaBits;
    const bool isMirrored = u.isMirrored() || v.isMirrored();
    for (int32_t i = 0; i < count;) {
        if (i + 4 > count || isMirrored || !u.staysWithin(4) || !v.staysWithin(4)) {
            pixels[i++] = first[length * v.inImage(v.texel()) + u.inImage(u.texel())] | alphaBits;
            u.advance();
            v.advance();
            continue;
        }
        const auto texelAt = [&](int64_t k) {
            const int64_t y = (v.position() + k * v.step()) >> kTexelBits;
            const int64_t x = (u.position() + k * u.step()) >> kTexelBits;
            return first[length * static_cast<ptrdiff_t>(y) + static_cast<ptrdiff_t>(x)];
        };
        const U32x4 four = {texelAt(0), texelAt(1), texelAt(2), texelAt(3)};
        store4(pixels + i, four | alphaBits);
        u.skip(4);
        v.skip(4);
        i += 4;
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
