// SPDX-License-Identifier: MIT
// Glyph images drawn into a mask. Internal.
#pragma once

#include "graphics2d/Redirection.h"

namespace KAVO {
namespace Graphics2D {

// A row of a glyph image: two levels of 0 to 15 in each byte, the left one in its upper half.
struct GlyphRow {
    const uint8_t* bytes; // the byte with the first pixel
    bool startsLow;       // that pixel is in the lower half
    int32_t column;       // of the first pixel, in the target
    int32_t row;
    int32_t count;
};

// Draws the row over the levels of the context's maskTarget, through its clipMask if it has one.
// opacity is 8.8.
void drawGlyphIntoMask(const MMContext2D& context, const GlyphRow& glyph, uint16_t opacity);

} // namespace Graphics2D
} // namespace KAVO
