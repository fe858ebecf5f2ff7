// SPDX-License-Identifier: MIT
// The opaque strip fillers of a solid colour.
#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/Span.h"
#include "graphics2d/strips/StripFillers.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

void fillRow(Pixel* pixels, int32_t count, Pixel colour)
{
#if defined(__x86_64__) || defined(__i386__)
    // The processor's own loop fills lines of the cache without reading them, but starts slowly.
    constexpr int32_t kLongRow = 4096; // pixels
    if (count >= kLongRow) {
        auto left = static_cast<size_t>(count);
        __asm__ volatile("rep stosl" : "+D"(pixels), "+c"(left) : "a"(colour) : "memory");
        return;
    }
#endif
    fillPixels(pixels, count, colour);
}

// All rows of the span in one colour; those that follow each other without a gap as one.
[[gnu::noinline]] void fillRows(MMContext2D& context, Pixel colour)
{
    int32_t count = spanLength(context);
    const uint32_t rowBytes = context.target.rowBytes;
    Pixel* pixels = spanFirstPixel(context);
    uint32_t rows = context.spanRows;
    if (static_cast<uint32_t>(count) * sizeof(Pixel) == rowBytes) {
        count *= static_cast<int32_t>(rows);
        rows = 1;
    }
    for (; rows > 0; --rows, pixels = pixelBelow(pixels, rowBytes))
        fillRow(pixels, count, colour);
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
