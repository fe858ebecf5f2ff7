// SPDX-License-Identifier: MIT
// Rows of tiles with bilinear smoothing: between two rows first, then between two columns, rounded
// each time.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/Blending.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

constexpr int32_t kMixed = 129; // columns that 128 pixels may lie between
constexpr uint32_t kWeightShift = kTexelBits - 8;

// The rows that a pixel lies between, and the weight of the lower one.
struct RowPair {
    const Pixel* upper;
    const Pixel* lower;
    uint32_t weight;

    RowPair(const MMTileSource& source, const TileWalk& v)
        : upper(tileRow(source, v.inImage(v.texel()))),
          lower(tileRow(source, v.inImage(v.after(v.texel())))), weight(v.fraction() >> 8)
    {
    }
    // The channels of two texels.
    U16x8 mixed(U16x8 above, U16x8 below) const
    {
        return moveRounded(above, below, all8(weight)) >> 8;
    }
    // A texel of the image, or as many as a vector holds.
    template <class Pixels>
    Pixels mixedAt(int32_t texel) const
    {
        return blendPixels<RefinedBlend>(load<Pixels>(upper + texel), load<Pixels>(lower + texel),
                                         all<Pixels>(weight));
    }
};

// What lies between a column of texels and the next one: the first one's channels times 256, half
// a unit added, and their change.
using ColumnStep = U16x8;

inline ColumnStep stepBetween(U16x8 columns)
{
    const U16x8 left = columns << 8 | 128;
    const U16x8 change =
        __builtin_shufflevector(columns, columns, 4, 5, 6, 7, 4, 5, 6, 7) - columns;
    return __builtin_shufflevector(left, change, 0, 1, 2, 3, 8, 9, 10, 11);
}

// Four pixels by the weights of their right-hand columns.
template <class StepAt>
inline U32x4 fourBetween(StepAt stepAt, U32x4 weights)
{
    const U32x4 pairs = weights | weights << 16;
    const auto two = [](ColumnStep a, ColumnStep b, U32x4 w) {
        const U16x8 left = __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
        const U16x8 change = __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
        return left + change * (U16x8)w;
    };
    return narrowHighBytes(
        two(stepAt(0), stepAt(1), __builtin_shufflevector(pairs, pairs, 0, 0, 1, 1)),
        two(stepAt(2), stepAt(3), __builtin_shufflevector(pairs, pairs, 2, 2, 3, 3)));
}

// Between two texels of the upper row, and those of the lower row.
inline ColumnStep stepOf(const RowPair& rows, U32x4 texels)
{
    return stepBetween(rows.mixed(widenLow(texels), widenHigh(texels)));
}

// From a texel of the period to the next one.
inline ColumnStep stepFrom(const RowPair& rows, const TileWalk& u, int32_t texel)
{
    const int32_t left = u.inImage(texel);
    const int32_t right = u.inImage(u.after(texel));
    return stepOf(rows,
                  U32x4{rows.upper[left], rows.upper[right], rows.lower[left], rows.lower[right]});
}

// Mixes both rows at count texels of the period.
void mixColumns(const RowPair& rows, const TileWalk& u, int32_t texel, Pixel* mixed, int32_t count)
{
    for (int32_t i = 0; i < count; texel = u.after(texel)) {
        if (std::min(u.size() - texel, count - i) >= kFewLanes) {
            store(mixed + i, rows.mixedAt<FewPixels>(texel));
            i += kFewLanes;
            texel += kFewLanes - 1;
        } else {
            mixed[i++] = rows.mixedAt<Pixel>(u.inImage(texel));
        }
    }
}

// Pixels that all lie between the same rows, no further apart than texels: each column is mixed
// once.
void magnifyRow(const RowPair& rows, const TileWalk& u, Pixel alphaBits, Pixel* pixels,
                int32_t count)
{
    // From the leftmost texel on, which for a negative step is the last pixel's.
    const int64_t step = u.step();
    const int64_t way = step * (count - 1);
    int64_t at = u.position() & ((int64_t{1} << kTexelBits) - 1);
    const int64_t least = way < 0 ? (at + way) >> kTexelBits : 0;
    const int64_t most = ((way < 0 ? at : at + way) >> kTexelBits) - least;
    int32_t texel = u.texel();
    for (int64_t i = least; i < 0; ++i)
        texel = u.before(texel);
    at -= least * (int64_t{1} << kTexelBits);
    Pixel mixed[kMixed];
    mixColumns(rows, u, texel, mixed, static_cast<int32_t>(most) + 2);

    // The column left of the pixel k further on.
    const auto columnAt = [&](int k) { return mixed + ((at + k * step) >> kTexelBits); };
    int32_t i = 0;
    if constexpr (kFewLanes == 4) {
        const auto lowStep = static_cast<uint32_t>(step);
        U32x4 fractions = all4(static_cast<uint32_t>(at)) + U32x4{0, 1, 2, 3} * lowStep;
        for (; i + 4 <= count; i += 4, at += 4 * step, fractions += 4 * lowStep) {
            const U32x4 a = load2And2(columnAt(0), columnAt(1));
            const U32x4 b = load2And2(columnAt(2), columnAt(3));
            const U32x4 left = __builtin_shufflevector(a, b, 0, 2, 4, 6);
            const U32x4 right = __builtin_shufflevector(a, b, 1, 3, 5, 7);
            const U32x4 weights = fractions >> kWeightShift & 0xFF;
            store4(pixels + i, blendPixels<RefinedBlend>(left, right, weights) | alphaBits);
        }
    }
    for (; i < count; ++i, at += step) {
        const Pixel* const column = columnAt(0);
        const auto weight = static_cast<uint32_t>(at >> kWeightShift) & 0xFF;
        pixels[i] = blendPixel<RefinedBlend>(column[0], column[1], weight) | alphaBits;
    }
}

} // namespace

void writeBilinearTiles(const void* state, int32_t row, int32_t column, int32_t count,
                        Pixel* pixels)
{
    const MMTileSource source = *static_cast<const MMTileSource*>(state); // pixels may alias it
    TileWalk u(source.across, row, column);
    TileWalk v(source.down, row, column);
    const int64_t texel = int64_t{1} << kTexelBits;
    if (v.isFixed() && -texel <= u.step() && u.step() <= texel)
        return magnifyRow(RowPair(source, v), u, source.alphaBits, pixels, count);
    for (int32_t i = 0; i < count; i += 4) {
        const int32_t length = count - i < 4 ? count - i : 4;
        ColumnStep steps[4] = {};
        U32x4 weights = {};
        for (int32_t k = 0; k < length; ++k) {
            steps[k] = stepFrom(RowPair(source, v), u, u.texel());
            weights[k] = u.fraction() >> 8;
            u.advance();
            v.advance();
        }
        const U32x4 mixed =
            fourBetween([&](int k) { return steps[k]; }, weights) | source.alphaBits;
        if (length < 4) return storeFew(pixels + i, mixed, length);
        store4(pixels + i, mixed);
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
