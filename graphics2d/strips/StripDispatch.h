// SPDX-License-Identifier: MIT
// From the current paint to the strip filler that draws its spans. Internal.
//
// Both rasterisers choose once per polygon and then draw many spans.
#pragma once

#include "graphics2d/LevelTable.h"

namespace KAVO {
namespace Graphics2D {

// How a paint draws whole spans. A null filler draws nothing.
struct SpanFiller {
    StripFiller filler;
    bool flatCoverage;      // the filler is translucent: its coverage is paintOpacity throughout
    uint8_t moreSharp = 0;  // rows after the first that it may be given at once
    uint8_t moreSmooth = 0; // the same of rows with partial pixels, and of the edge filler
};

// What a polygon is drawn by, where MMContext2D::ownFillers keeps it.
struct OwnFillers {
    SpanFiller span;
    StripFiller edge;
};

// For the interior of shapes: the opaque filler where paint and opacity allow it.
SpanFiller chooseSpanFiller(const MMContext2D& context);

// For anti-aliased edge pixels: always a filler that honours the coverage fields (exclusive-or and
// picking have none and ignore them). Null draws nothing.
StripFiller chooseEdgeFiller(const MMContext2D& context);

// Draws the current span, its coverage fields set to the paint's flat opacity when it needs them.
inline void drawSpan(MMContext2D& context, const SpanFiller& choice)
{
    if (choice.filler == nullptr) return;
    if (choice.flatCoverage) {
        context.spanCoverage = context.currentPaint.paintOpacity << 16;
        context.spanCoverageNext = context.spanCoverage;
        context.spanCoverageStep = 0;
        context.spanTailCoverage = 0;
    }
    choice.filler(context);
}

} // namespace Graphics2D
} // namespace KAVO
