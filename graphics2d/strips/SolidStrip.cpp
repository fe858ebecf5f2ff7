// SPDX-License-Identifier: MIT
// The strip fillers of a solid colour.
//
// Both modes blend a colour over the pixel itself; what they differ in is the weight.
#include "graphics2d/strips/SolidStrip.h"

#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/Span.h"
#include "graphics2d/strips/StripFillers.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

template <class Colour>
[[gnu::always_inline]] inline void drawTranslucentColour(MMContext2D& context)
{
    const Colour colour(context.currentPaint.paintColour);
    using Rule = typename Colour::Rule;
    constexpr int32_t kLongSpan = 8;
    const int32_t count = spanLength(context);
    Pixel* pixels = spanFirstPixel(context);
    if (count > 0) {
        const Coverage step = context.spanCoverageStep;
        const int32_t flatFrom = step == 0 && count >= kLongSpan ? 1 : count;
        Coverage coverage = context.spanCoverage;
        Coverage next = wrapSub(context.spanCoverageNext, step); // of the pixel before
        for (int32_t i = 0; i < count; ++i) {
            const uint32_t weight = colour.weightOf(coverage);
            if (i == flatFrom) i = blendFlat<Rule, 0>(pixels, i, count, colour.source, weight);
            if (i == count) break;
            pixels[i] = blendPixel<Rule>(pixels[i], colour.source, weight);
            coverage = next = wrapAdd(next, step);
        }
        context.spanCoverageNext = next;
    }
    if (context.spanTailCoverage > 0) {
        Pixel& tail = context.spanPixels[fixFloor(context.spanEnd)];
        tail = blendPixel<Rule>(tail, colour.source, colour.weightOf(context.spanTailCoverage));
    }
}

} // namespace

void drawClassicColour(MMContext2D& context)
{
    fillPixels(spanFirstPixel(context), spanLength(context), context.currentPaint.paintColour);
}

void drawRefinedColour(MMContext2D& context)
{
    fillPixels(spanFirstPixel(context), spanLength(context),
               context.currentPaint.paintColour | kOpaque);
}

void drawTranslucentClassicColour(MMContext2D& context)
{
    drawTranslucentColour<ClassicColour>(context);
}

void drawTranslucentRefinedColour(MMContext2D& context)
{
    drawTranslucentColour<RefinedColour>(context);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
