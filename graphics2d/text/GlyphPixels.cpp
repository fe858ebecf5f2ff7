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
struct ClassicPixels : ClassicGlyphRule {
    template <class Lanes>
    static Lanes move(Lanes from, Lanes colour, Lanes coverage)
    {
        const Lanes rest = 255 - by255(alphasOf(colour) * coverage);
        const Lanes sum = scaleChannels(colour, coverage) + scaleChannels(from, rest);
        using Signed = decltype(from < colour);
        return (sum | (Lanes)((Signed)sum > 255)) << 8;
    }
};

// Of premultiplied pixels.
struct RefinedPixels : RefinedGlyphRule {
    template <class Lanes>
    static Lanes move(Lanes from, Lanes colour, Lanes weight)
    {
        return movePremultiplied(from, colour, weight);
    }
};

} // namespace

void blendClassicPixels(const GlyphRows& glyph)
{
    blendRows<ClassicPixels, false>(glyph);
}

void blendRefinedPixels(const GlyphRows& glyph)
{
    blendRows<RefinedPixels, false>(glyph);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
