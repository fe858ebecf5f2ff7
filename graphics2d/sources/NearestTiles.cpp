// SPDX-License-Identifier: MIT
// Rows of tiles without smoothing.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/PixelLanes.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

void copyTexels(const Pixel* texels, Pixel alphaBits, Pixel* pixels, int32_t count)
{
    int32_t i = 0;
    for (; i + 4 <= count; i += 4)
        store4(pixels + i, load4(texels + i) | alphaBits);
    for (; i < count; ++i)
        pixels[i] = texels[i] | alphaBits;
}

// One texel per pixel, in runs up to the image's edge.
void copyRuns(const Pixel* texels, TileWalk u, int32_t size, Pixel alphaBits, Pixel* pixels,
              int32_t count)
{
    while (count > 0) {
        const int32_t length = std::min(size - u.texel(), count);
        copyTexels(texels + u.texel(), alphaBits, pixels, length);
        u.advance(length);
        pixels += length;
        count -= length;
    }
}

} // namespace

void writeNearestTiles(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMTileSource*>(state);
    TileWalk u(source.across, row, column);
    TileWalk v(source.down, row, column);
    const Pixel alphaBits = source.alphaBits;
    const Pixel* texels = tileRow(source, v.inImage(v.texel()));
    if (!v.isFixed()) {
        const MMTileSource image = source; // a store of pixels may alias it
        for (int32_t i = 0; i < count; ++i) {
            texels = tileRow(image, v.inImage(v.texel()));
            pixels[i] = texels[u.inImage(u.texel())] | alphaBits;
            u.advance();
            v.advance();
        }
        return;
    }
    if (u.isCopied()) return copyRuns(texels, u, source.across.size, alphaBits, pixels, count);
    for (int32_t i = 0; i < count; ++i) {
        pixels[i] = texels[u.inImage(u.texel())] | alphaBits;
        u.advance();
    }
}

} // namespace Graphics2D
} // namespace KAVO
