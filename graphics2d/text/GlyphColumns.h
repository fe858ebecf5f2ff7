// SPDX-License-Identifier: MIT
// Blending a glyph image's rows into the target, as many columns at a time as the level has lanes.
// Internal.
#pragma once

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Blending.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// A product of at most 255 * 255 by 255, rounded.
template <class Lanes>
inline Lanes by255(Lanes product)
{
    product += 0x81;
    return (product + (product >> 8)) >> 8;
}

// The rules of Blending.h, by which colours go over their background through a glyph, with what its
// levels, 0 to 15, and the opacity make of a weight.

struct ClassicGlyphRule : ClassicBlend {
    static constexpr int32_t background() { return kBackground; } // pixels to the right

    // 0 to 255; the opacity is too.
    template <class Lanes>
    static Lanes coverage(Lanes levels, uint16_t opacity)
    {
        return by255(levels * (Lanes{} + static_cast<uint16_t>(17 * opacity)));
    }

    static Pixel pixel(Pixel background, Pixel colour, uint32_t weight)
    {
        return blendPixel<ClassicBlend>(background, colour, weight);
    }
};

struct RefinedGlyphRule : RefinedBlend {
    static constexpr int32_t background() { return kBackground; }

    // 0 to 256; the opacity is 8.8.
    template <class Lanes>
    static Lanes coverage(Lanes levels, uint16_t opacity)
    {
        if constexpr (sizeof(Lanes) == sizeof(Pixel))
            return refinedWeight(levels * (17 << 8), opacity);
        else
            return refinedWeights(levels * (17 << 8), Lanes{} + opacity);
    }

    static Pixel pixel(Pixel background, Pixel colour, uint32_t weight)
    {
        return blendPixel<RefinedBlend>(background, colour, weight);
    }
};

// count: 1 to 3.
inline void storeFirst(Pixel* to, U32x4 pixels, int32_t count)
{
    if ((count & 2) != 0) {
        std::memcpy(to, &pixels, 2 * sizeof *to);
        to += 2;
        pixels = __builtin_shufflevector(pixels, pixels, 2, 3, 2, 3);
    }
    if ((count & 1) != 0) *to = pixels[0];
}

#if defined(__AVX2__) && !defined(__AVX512BW__)

using GlyphPixels = U32x8;

// Up to eight columns, as two fours: the second one ends where the columns end.
class Columns {
public:
    // The levels begin at so many nibbles behind the address, which are moved to the word that ends
    // with the last of them.
    Columns(int32_t width, int32_t firstLevel, const uint8_t*& levels)
        : width_(width), second_(width > 4 ? width - 4 : 0)
    {
        const int32_t bytes = (firstLevel + width + 1) / 2;
        levels += bytes - 8;
        const uint32_t first = static_cast<uint32_t>(firstLevel + 2 * (8 - bytes));
        const uint32_t second = first + static_cast<uint32_t>(second_);
        const U32x8 places = U32x8{first, first, first, first, second, second, second, second} +
                             U32x8{0, 1, 2, 3, 0, 1, 2, 3};
        bytes_ = inBothHalves(places >> 1) | 0x80008000u;
        shifts_ = (~places & 1) << 2;
    }

    // In both halves of each pixel's lane.
    U16x16 levels(const uint8_t* from) const
    {
        uint64_t word;
        std::memcpy(&word, from, sizeof word);
        const __m256i words = _mm256_set1_epi64x(static_cast<long long>(word));
        const __m256i bytes = _mm256_shuffle_epi8(words, (__m256i)bytes_);
        return (U16x16)_mm256_srlv_epi32(bytes, (__m256i)shifts_) & 15;
    }

    U32x8 load(const Pixel* from) const
    {
        return __builtin_shufflevector(load4(from), load4(from + second_), 0, 1, 2, 3, 4, 5, 6, 7);
    }

    void store(Pixel* to, U32x8 pixels) const
    {
        const U32x4 first = firstOf<U32x4>(pixels);
        if (width_ < 4) return storeFirst(to, first, width_);
        store4(to, first);
        store4(to + second_, __builtin_shufflevector(pixels, pixels, 4, 5, 6, 7));
    }

private:
    int32_t width_;
    int32_t second_;
    U32x8 bytes_;  // where each pixel's byte is in the word
    U32x8 shifts_; // and its level in there
};

#elif defined(__SSE2__) || defined(__ARM_NEON)

using GlyphPixels = U32x4;

// Up to four columns.
class Columns {
public:
    Columns(int32_t width, int32_t firstLevel, const uint8_t*& levels) : width_(width)
    {
        const int32_t bytes = (firstLevel + width + 1) / 2;
        levels += bytes - 4;
        shift_ = 4 * (firstLevel + 2 * (4 - bytes));
    }

    U16x8 levels(const uint8_t* from) const
    {
        constexpr U16x8 kToTop = {1, 1, 1 << 4, 1 << 4, 1 << 8, 1 << 8, 1 << 12, 1 << 12};
        uint32_t word;
        std::memcpy(&word, from, sizeof word);
        const uint32_t four = __builtin_bswap32(word) << shift_ >> 16;
        return (U16x8)all4(four << 16 | four) * kToTop >> 12;
    }

    U32x4 load(const Pixel* from) const { return load4(from); }

    void store(Pixel* to, U32x4 pixels) const
    {
        if (width_ < 4) return storeFirst(to, pixels, width_);
        store4(to, pixels);
    }

private:
    int32_t width_;
    int32_t shift_; // brings the first level to the top
};

#else

using GlyphPixels = Pixel;

// One column.
class Columns {
public:
    Columns(int32_t, int32_t level, const uint8_t*& levels) : shift_(level % 2 == 0 ? 4 : 0)
    {
        levels += level / 2;
    }

    uint32_t levels(const uint8_t* from) const { return *from >> shift_ & 15; }
    Pixel load(const Pixel* from) const { return *from; }
    void store(Pixel* to, Pixel pixel) const { *to = pixel; }

private:
    int32_t shift_; // brings the level to the bottom
};

#endif

// Paint over a background by weights for whole pixels.
template <class Rule, class Pixels>
inline Pixels blended(Rule rule, Pixels background, Pixels paint, Pixels weights)
{
    if constexpr (sizeof(Pixels) > sizeof(Pixel))
        return blendByPairs(background, paint, weights,
                            [=](auto from, auto to, auto by) { return rule.move(from, to, by); });
    else
        return rule.pixel(background, paint, weights);
}

// Blends up to as many columns as there are lanes, row after row. The paint is one colour, or rows
// of pixels.
template <class Rule, bool kIsFlat>
inline void blendColumns(const GlyphRows& glyph, Rule rule, int32_t column, int32_t width)
{
    const ptrdiff_t rowPixels = glyph.rowPixels, stride = glyph.stride, paintRow = glyph.paintRow;
    const uint16_t opacity = glyph.opacity;
    const uint8_t* levels = glyph.levels;
    const Columns columns(width, column + (glyph.startsLow ? 1 : 0), levels);
    Pixel* pixels = glyph.pixels + column;
    const Pixel* paint = kIsFlat ? glyph.paint : glyph.paint + column;
    const GlyphPixels colour = all<GlyphPixels>(*paint);
    for (int32_t y = glyph.height; y > 0; --y) {
        const auto weights = (GlyphPixels)rule.coverage(columns.levels(levels), opacity);
        const GlyphPixels background = columns.load(pixels + rule.background());
        const GlyphPixels over = kIsFlat ? colour : columns.load(paint);
        columns.store(pixels, blended(rule, background, over, weights));
        levels += stride;
        pixels += rowPixels;
        paint += paintRow;
    }
}

// Columns left of others are blended before, so that these still see them as they were.
template <class Rule, bool kIsFlat>
void blendRows(const GlyphRows& glyph, Rule rule)
{
    constexpr int32_t kColumns = sizeof(GlyphPixels) / sizeof(Pixel);
    int32_t column = 0;
    for (int32_t rest; (rest = glyph.width - column) > 0;) {
        int32_t width = std::min(rest, kColumns);
        if (kColumns == 8 && rest > 8 && rest < 12) width = rest - 4;
        blendColumns<Rule, kIsFlat>(glyph, rule, column, width);
        column += width;
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
