// SPDX-License-Identifier: MIT
// Rows of tiles with bilinear smoothing: between two columns first, then between two rows, rounded
// each time.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// The rows that a pixel lies between, and its weight of the lower one.
struct RowPair {
    const Pixel* upper;
    const Pixel* lower;
    uint32_t weight;

    RowPair(const MMTileSource& source, const TileWalk& v)
    {
        const int32_t y = v.texel();
        upper = tileRow(source, v.inImage(y));
        lower = tileRow(source, v.inImage(v.after(y)));
        weight = v.fraction() >> 8;
    }
};

// The channels of one pixel between two columns: in the upper row, then in the lower one.
inline U16x8 betweenColumns(const RowPair& rows, const TileWalk& u)
{
    const int32_t x = u.texel();
    const int32_t left = u.inImage(x);
    const int32_t right = u.inImage(u.after(x));
    const U32x4 texels = {rows.upper[left], rows.lower[left], rows.upper[right], rows.lower[right]};
    return moveRounded(widenLow(texels), widenHigh(texels), all8(u.fraction() >> 8)) >> 8;
}

// Two pixels between their rows, in the high bytes.
inline U16x8 betweenRows(U16x8 first, U16x8 second, U32x4 weights)
{
    const U16x8 upper = __builtin_shufflevector(first, second, 0, 1, 2, 3, 8, 9, 10, 11);
    const U16x8 lower = __builtin_shufflevector(first, second, 4, 5, 6, 7, 12, 13, 14, 15);
    return moveRounded(upper, lower, (U16x8)weights);
}

} // namespace

void writeBilinearTiles(const void* state, int32_t row, int32_t column, int32_t count,
                        Pixel* pixels)
{
    const MMTileSource source = *static_cast<const MMTileSource*>(state);
    TileWalk u(source.across, row, column);
    TileWalk v(source.down, row, column);
    RowPair rows(source, v);
    const bool isLevel = v.isFixed();
    for (int32_t i = 0; i < count; i += 4) {
        U16x8 pairs[4] = {};
        uint32_t weights[4] = {};
        const int32_t length = count - i < 4 ? count - i : 4;
        for (int32_t k = 0; k < length; ++k) {
            pairs[k] = betweenColumns(rows, u);
            weights[k] = rows.weight * 0x00010001u;
            u.advance();
            if (isLevel) continue;
            v.advance();
            rows = RowPair(source, v);
        }
        const U32x4 w = load4(weights);
        const U32x4 mixed =
            narrowHighBytes(
                betweenRows(pairs[0], pairs[1], __builtin_shufflevector(w, w, 0, 0, 1, 1)),
                betweenRows(pairs[2], pairs[3], __builtin_shufflevector(w, w, 2, 2, 3, 3))) |
            source.alphaBits;
        if (length < 4) return storeFew(pixels + i, mixed, length);
        store4(pixels + i, mixed);
    }
}

} // namespace Graphics2D
} // namespace KAVO
