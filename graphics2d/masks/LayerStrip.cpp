// SPDX-License-Identifier: MIT
// Spans drawn into a layer: what lies under them is cleared just before, while it is at hand.
#include "graphics2d/masks/MaskedStrip.h"

namespace KAVO {
namespace Graphics2D {

void drawSpanIntoLayer(MMContext2D& context)
{
    const SpanFiller& own = context.ownFillers->span;
    const int32_t first = fixFloor(context.spanStart);
    const int32_t end = fixFloor(context.spanEnd);
    if (first >= end) return;
    const bool hides = context.currentPaint.paintType == kPaintSolid && !own.flatCoverage;
    prepareColumns(*context.layer, context.spanRow, first, end, hides);
    drawSpan(context, own);
}

void drawRunIntoLayer(MMContext2D& context)
{
    const StripFiller own = context.ownFillers->edge;
    if (own == nullptr) return;
    const int32_t first = fixFloor(context.spanStart);
    const int32_t end = fixFloor(context.spanEnd) + (context.spanTailCoverage > 0 ? 1 : 0);
    if (first < end) prepareColumns(*context.layer, context.spanRow, first, end, false);
    own(context);
}

} // namespace Graphics2D
} // namespace KAVO
