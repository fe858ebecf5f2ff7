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

// All rows of the span in one colour.
[[gnu::noinline]] void fillRows(MMContext2D& context, Pixel colour)
{
    const int32_t count = spanLength(context);
    Pixel* pixels = spanFirstPixel(context);
    for (uint32_t rows = context.spanRows; rows > 0;
         --rows, pixels = pixelBelow(pixels, context.target.rowBytes))
        fillPixels(pixels, count, colour);
}

template <class Colour>
[[gnu::always_inline]] inline void drawTranslucentColour(MMContext2D& context)
{
    const Colour colour(context.currentPaint.paintColour);
    using Rule = typename Colour::Rule;
    constexpr int32_t kLongSpan = 8;
    const int32_t count = fixFloor(context.spanEnd) - fixFloor(context.spanStart);
    const Coverage step = context.spanCoverageStep;
    const int32_t flatFrom = step == 0 && count >= kLongSpan ? 1 : count;
    Coverage next = context.spanCoverageNext;
    Pixel* pixels = spanFirstPixel(context);
    for (uint32_t rows = context.spanRows; rows > 0;
         --rows, pixels = pixelBelow(pixels, context.target.rowBytes)) {
        Coverage coverage = context.spanCoverage;
        next = wrapSub(context.spanCoverageNext, step); // of the pixel before
        for (int32_t i = 0; i < count; ++i) {
            const uint32_t weight = colour.weightOf(coverage);
            if (i == flatFrom) i = blendFlat<Rule, 0>(pixels, i, count, colour.source, weight);
            if (i == count) break;
            pixels[i] = blendPixel<Rule>(pixels[i], colour.source, weight);
            coverage = next = wrapAdd(next, step);
        }
        if (context.spanTailCoverage > 0)
            pixels[count] = blendPixel<Rule>(pixels[count], colour.source,
                                             colour.weightOf(context.spanTailCoverage));
    }
    if (count > 0) context.spanCoverageNext = next;
}

} // namespace

void drawClassicColour(MMContext2D& context)
{
    fillRows(context, context.currentPaint.paintColour);
}

void drawRefinedColour(MMContext2D& context)
{
    fillRows(context, context.currentPaint.paintColour | kOpaque);
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
