// SPDX-License-Identifier: MIT
// A run of characters, drawn or measured: the one walk behind all text operations. Internal.
#pragma once

#include "graphics2d/BoundsUnion.h"
#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

class GlyphCompositor;

struct TextRun {
    const uint16_t* text;
    uint32_t length;     // at most; a 0 ends the run before
    uint32_t firstIndex; // of the first character in the lists of places and turns
    bool usesLists;      // whether these lists place and turn its characters
    bool isRaw;          // white space is still to be normalised, as ParseText does
};

// What a walk does beside moving the pen; null: nothing.
struct TextOutput {
    GlyphCompositor* compositor; // draws the glyphs
    BoundsUnion* bounds;         // grows by their boxes, in whole device pixels
};

// Walks along a run from the pen on, in the font of the context, and returns the pen behind it,
// both in the space that the transform starts from. Without an engine or metrics the pen stays.
//
// Classic: the pen goes through device space and back by the matrix's own steps, which lose a
// little, and glyphs stand at the pixel that the pen is in. Refined: the pen is kept exactly,
// glyphs stand at the nearest pixel, and soft hyphens are silent.
MMPoint2D walkText(MMContext2D& context, const Matrix2D& transform, const TextRun& run,
                   MMPoint2D pen, const TextOutput& output);

// The advance of a run from the context's pen on, which stays. One that reaches further in device
// space than coordinates do still has its width.
Fixed widthOf(MMContext2D& context, const TextRun& run);

} // namespace Graphics2D
} // namespace KAVO
