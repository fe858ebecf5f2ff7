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
    for (; i + 16 <= count; i += 16)
        for (int32_t k = 0; k < 16; k += 4)
            store4(pixels + i + k, load4(texels + i + k) | alphaBits);
    for (; i + 4 <= count; i += 4)
        store4(pixels + i, load4(texels + i) | alphaBits);
    for (; i < count; ++i)
        pixels[i] = texels[i] | alphaBits;
}

// One texel per pixel, in runs up to the image's edge.
void copyRuns(const Pixel* texels, TileWalk u, Pixel alphaBits, Pixel* pixels, int32_t count)
{
    while (count > 0) {
        const int32_t length = std::min(u.size() - u.texel(), count);
        copyTexels(texels + u.texel(), alphaBits, pixels, length);
        u.moveBy(int64_t{length} << kTexelBits);
        pixels += length;
        count -= length;
    }
}

// rowAt(y) gives a row of texels.
template <class RowAt>
inline void sample(TileWalk u, TileWalk v, Pixel alphaBits, Pixel* pixels, int32_t count,
                   RowAt rowAt)
{
    const bool isMirrored = u.isMirrored() || v.isMirrored();
    for (int32_t i = 0; i < count;) {
        if (i + 4 > count || isMirrored || !u.staysWithin(4) || !v.staysWithin(4)) {
            pixels[i++] = rowAt(v.inImage(v.texel()))[u.inImage(u.texel())] | alphaBits;
            u.advance();
            v.advance();
            continue;
        }
        const auto texelAt = [&](int64_t k) {
            const int64_t y = (v.position() + k * v.step()) >> kTexelBits;
            return rowAt(y)[(u.position() + k * u.step()) >> kTexelBits];
        };
        const U32x4 four = {texelAt(0), texelAt(1), texelAt(2), texelAt(3)};
        store4(pixels + i, four | alphaBits);
        u.skip(4);
        v.skip(4);
        i += 4;
    }
}

} // namespace

void writeNearestTiles(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMTileSource*>(state);
    const TileWalk u(source.across, row, column);
    const TileWalk v(source.down, row, column);
    if (!v.isFixed()) {
        const Pixel* const first = source.pixels;
        const auto length = static_cast<ptrdiff_t>(source.rowLength);
        return sample(u, v, source.alphaBits, pixels, count,
                      [=](int64_t y) { return first + length * static_cast<ptrdiff_t>(y); });
    }
    const Pixel* const texels = tileRow(source, v.inImage(v.texel()));
    if (u.step() == int64_t{1} << kTexelBits && !u.isMirrored())
        return copyRuns(texels, u, source.alphaBits, pixels, count);
    sample(u, v, source.alphaBits, pixels, count, [=](int64_t) { return texels; });
}

} // namespace Graphics2D
} // namespace KAVO
