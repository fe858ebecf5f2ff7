// SPDX-License-Identifier: MIT
// Rows of tiles with bicubic smoothing, by the weights of the core's filter.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/CubicWeights.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// The four texels of an axis around a pixel, within the image.
struct Taps {
    int32_t at[4];

    explicit Taps(const TileWalk& walk)
    {
        int32_t texel = walk.before(walk.texel());
        for (int32_t& tap : at) {
            tap = walk.inImage(texel);
            texel = walk.after(texel);
        }
    }
};

void gatherColumns(const MMTileSource& source, const TileWalk& u, const TileWalk& v,
                   Column* columns)
{
    const Taps x(u);
    const Taps y(v);
    Pixel texels[16];
    for (int32_t j = 0; j < 4; ++j) {
        const Pixel* const from = tileRow(source, y.at[j]);
        for (int32_t i = 0; i < 4; ++i)
            texels[4 * j + i] = from[x.at[i]];
    }
    loadColumns(texels, 4, columns);
}

// The fractions of the next pixels, up to eight.
U16x8 fractionsOf(TileWalk walk, int32_t count)
{
    U16x8 fractions = {};
    for (int32_t i = 0; i < count; ++i) {
        fractions[i] = static_cast<uint16_t>(walk.fraction());
        walk.advance();
    }
    return fractions;
}

} // namespace

void writeBicubicTiles(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMTileSource*>(state);
    TileWalk u(source.across, row, column);
    TileWalk v(source.down, row, column);
    for (int32_t i = 0; i < count; i += kWeightBatch) {
        const int32_t length = std::min(count - i, kWeightBatch);
        PixelWeights x;
        PixelWeights y;
        CubicWeights::alongRow(fractionsOf(u, length)).byPixel(x);
        CubicWeights::acrossRows(fractionsOf(v, length)).byPixel(y);
        Channels sums[kWeightBatch] = {};
        for (int32_t k = 0; k < length; ++k) {
            Column columns[4];
            gatherColumns(source, u, v, columns);
            sums[k] = weightedSum(columns, x[k], y[k]);
            u.advance();
            v.advance();
        }
        Pixel mixed[kWeightBatch];
        packOpaque(sums, mixed, kWeightBatch);
        for (int32_t k = 0; k < length; ++k) {
            const uint32_t alpha = (sums[k][kAlpha] + kChannelHalf) >> 16 << 24;
            pixels[i + k] = (mixed[k] & 0x00FFFFFF) | alpha | source.alphaBits;
        }
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
