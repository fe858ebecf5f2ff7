// SPDX-License-Identifier: MIT
// Glyphs in gradients and patterns, whose pixels have been drawn into a buffer.
#include "graphics2d/text/GlyphBlending.h"
#include "graphics2d/text/GlyphColumns.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Channels times 0 to 255, where 255 stands for 256: the top bit of the channel counts twice.
template <class Lanes>
inline Lanes scaleChannels(Lanes channels, Lanes factor)
{
    return ((channels + (channels >> 7)) * factor) >> 8;
}

// The paint's pixel scaled by the coverage, over the background scaled by what its alpha leaves.
// Sums above 255 become 255.
template <class Lanes>
inline Lanes moveClassicPixels(Lanes from, Lanes colour, Lanes coverage)
{
    const Lanes rest = 255 - by255(alphasOf(colour) * coverage);
    const Lanes sum = scaleChannels(colour, coverage) + scaleChannels(from, rest);
    using Signed = decltype(from < colour);
    return (sum | (Lanes)((Signed)sum > 255)) << 8;
}

// The same of two channels, 16 bits apart.
inline uint32_t moveClassicPair(uint32_t from, uint32_t colour, uint32_t coverage, uint32_t rest)
{
    const auto scaled = [](uint32_t pair, uint32_t factor) {
        return (pair + (pair >> 7 & 0x00010001u)) * factor >> 8 & kEvenChannels;
    };
    const uint32_t sum = scaled(colour, coverage) + scaled(from, rest);
    return (sum | (sum >> 8 & 0x00010001u) * 255) & kEvenChannels;
}

// And of a pixel.
inline Pixel classicPixel(Pixel from, Pixel colour, uint32_t coverage)
{
    const uint32_t rest = 255 - by255((colour >> 24) * coverage);
    const auto pair = [=](uint32_t shift) {
        return moveClassicPair(from >> shift & kEvenChannels, colour >> shift & kEvenChannels,
                               coverage, rest);
    };
    return pair(0) | pair(8) << 8;
}

// The rules of both modes. One loop asks for the mode in each row: two would be as fast, and
// larger.
struct PixelRule {
    bool refined;

    int32_t background() const
    {
        return refined ? RefinedBlend::kBackground : ClassicBlend::kBackground;
    }

    template <class Lanes>
    Lanes coverage(Lanes levels, uint16_t opacity) const
    {
        return refined ? RefinedGlyphRule::coverage(levels, opacity)
                       : ClassicGlyphRule::coverage(levels, opacity);
    }

    template <class Lanes>
    Lanes move(Lanes from, Lanes colour, Lanes weight) const
    {
        return refined ? movePremultiplied(from, colour, weight)
                       : moveClassicPixels(from, colour, weight);
    }

    Pixel pixel(Pixel from, Pixel colour, uint32_t weight) const
    {
        return refined ? blendPremultiplied(from, colour, weight)
                       : classicPixel(from, colour, weight);
    }
};

[[gnu::noinline]] void blendPixels(const GlyphRows& glyph, bool refined)
{
    blendRows<PixelRule, false>(glyph, PixelRule{refined});
}

} // namespace

void blendClassicPixels(const GlyphRows& glyph)
{
    blendPixels(glyph, false);
}

void blendRefinedPixels(const GlyphRows& glyph)
{
    blendPixels(glyph, true);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
