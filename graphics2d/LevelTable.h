// SPDX-License-Identifier: MIT
// The drawing code of the levels of the processor. Internal.
#pragma once

#include "graphics2d/MMContext2D.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {

// Draws the context's current span.
using StripFiller = void (*)(MMContext2D&);

// The fillers of a paint: for what it hides, and by the coverage fields.
struct PaintFillers {
    StripFiller opaque;
    StripFiller translucent;
};

// The rows that a span is drawn in: the current one and those below.
struct SpanRows {
    int32_t count;    // 1 at least
    ptrdiff_t pixels; // from spanPixels to those of the next row
};

// Blends pixels of a solid colour by the coverage of the first, the second, and a step from there
// on. The translucent filler without the context, for spans of a pixel or two.
using ColourRun = void (*)(Pixel* pixels, int32_t count, Pixel colour, Coverage coverage,
                           Coverage next, Coverage step);

struct ColourFillers : PaintFillers {
    ColourRun run;
};

// Pixels of the target on their way to being blended by a rule of strips/Blending.h.
struct BlendedRun {
    Pixel* pixels;
    int32_t count;
    int32_t pairs; // so many have the background that the rule gives them, the others themselves
};

// The loops of strips/RunBlending.h for one rule.
struct RunBlenders {
    // By one colour and one weight.
    void (*flat)(BlendedRun run, Pixel colour, uint32_t weight);
    // By a colour and a weight each.
    void (*byWeights)(BlendedRun run, const Pixel* colours, const uint32_t* weights);
    // By a colour each, its alpha, and one opacity: 0 to 255, by the refined rule 8.8.
    void (*byAlpha)(BlendedRun run, const Pixel* colours, uint32_t opacity);
};

// A colour that changes by a constant per pixel: its channels, in the order and the format of
// strips/Channels.h, and their steps.
struct RampStart {
    uint32_t channels[4];
    uint32_t steps[4];
};

// Rows of an image.
struct TexelRows {
    uint32_t count = 1;
    uint32_t width = 0;    // from one to the next, texels
    uint32_t outBytes = 0; // from one to the next where they are copied to
};

// A box of a glyph image, on its way into the target.
struct GlyphRows {
    Pixel* pixels;         // the target's, where the box begins
    ptrdiff_t rowPixels;   // from one row to the next
    const uint8_t* levels; // the byte with the first pixel's level; 7 bytes before can be read
    ptrdiff_t stride;      // bytes per row
    bool startsLow;        // that level is in the low half of its byte
    int32_t width;         // pixels and paint can be read up to the next multiple of 4
    int32_t height;
    const Pixel* paint; // the colour, or the first row of pixels
    ptrdiff_t paintRow; // pixels per row
    uint16_t opacity;   // 0 to 255; by the refined rules 8.8
};

// Blends a paint into the target through a glyph.
using GlyphBlender = void (*)(const GlyphRows&);

struct GlyphBlenders {
    GlyphBlender colour;
    GlyphBlender pixels;
};

#if !defined(MM2D_WITHOUT_LAYERS)
// A colour as masks blend it: its source pixel and its opacity, 8.8.
struct Tint {
    Pixel source;
    uint16_t opacity;
};
#endif

// The same pixels at every level. Apart from the colours' fillers all ask for the mode themselves.
struct LevelTable {
    const char* name;
    ColourFillers classicColour;
    ColourFillers refinedColour;
    RunBlenders classicRuns;
    RunBlenders refinedRuns;
    // Of strips/RunBlending.h too, by the refined rule.
    void (*blendPremultiplied)(BlendedRun run, const Pixel* colours, const uint32_t* weights);
    void (*weighAlphas)(uint32_t* alphas, uint32_t opacity, int32_t count);
    bool (*haveAlpha)(const Pixel* colours, int32_t count, uint32_t alpha);
    // Of strips/ColourRamp.h.
    void (*writeRamp)(const RampStart& ramp, Pixel* out, uint32_t* alphas, int32_t count);
    PaintFillers linearGradient;
    void (*linearGradientRows)(MMContext2D&, const SpanRows&); // opaque
    PaintFillers radialGradient;
    PaintFillers patterns[3]; // by MMPatternFilter
    // Of strips/TexelCopy.h. Patterns of the base that stand in another level's table copy by that
    // level's.
    void (*copyTexels)(const Pixel* texels, Pixel* out, int32_t count, bool makeOpaque,
                       TexelRows rows);
    PaintFillers source;
    GlyphBlenders classicGlyphs; // of text/GlyphBlending.h
    GlyphBlenders refinedGlyphs;
#if !defined(MM2D_WITHOUT_LAYERS)
    // Of masks/LevelBlending.h.
    void (*tintByLevels)(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count);
    void (*moveByLevels)(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count);
    // Of masks/LevelRuns.h and layers/NormalRow.h.
    int32_t (*endOfLevel)(const uint8_t* levels, int32_t from, int32_t end, uint8_t level);
    void (*blendNormal)(Pixel* target, const Pixel* layer, const uint8_t* levels, uint32_t opacity,
                        int32_t count);
    MMPaintFunction uprightTiles; // of sources/TileRows.h
#endif
};

// The solid colours' by the context's mode.
inline const ColourFillers& coloursOf(const MMContext2D& context)
{
    return context.refined != 0 ? context.level->refinedColour : context.level->classicColour;
}

// The widest level that the processor has, or the one that the environment variable MM2D_LEVEL
// names, if there is one of that name and the processor has it: "base", "avx2", "avx512" or "neon".
const LevelTable* chooseLevel();

} // namespace Graphics2D
} // namespace KAVO
