// SPDX-License-Identifier: MIT
// The opaque strip fillers of a solid colour.
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

} // namespace

void drawClassicColour(MMContext2D& context)
{
    fillRows(context, context.currentPaint.paintColour);
}

void drawRefinedColour(MMContext2D& context)
{
    fillRows(context, context.currentPaint.paintColour | kOpaque);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
