// SPDX-License-Identifier: MIT
// The strip fillers of a paint that is a function.
#include "graphics2d/strips/SourceStrip.h"

#include "graphics2d/strips/PieceBlending.h"
#include "graphics2d/strips/Span.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Cuts channels down to their pixel's alpha.
void clampToAlpha(Pixel* pixels, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const Pixel pixel = pixels[i];
        const uint32_t alpha = pixel >> 24;
        const uint32_t red = std::min(pixel >> 16 & 0xFFu, alpha);
        const uint32_t green = std::min(pixel >> 8 & 0xFFu, alpha);
        const uint32_t blue = std::min(pixel & 0xFFu, alpha);
        pixels[i] = alpha << 24 | red << 16 | green << 8 | blue;
    }
}

// Blends count pixels from a device column on.
void blendSource(const MMContext2D& context, TranslucentRun<RefinedBlend>& run, int32_t column,
                 int32_t count)
{
    const MMPaint& paint = context.currentPaint;
    PaintPiece piece;
    for (int32_t length; count > 0; column += length, count -= length) {
        length = std::min(count, kPieceLength);
        readSource(paint, context.spanRow, column, length, piece.colours);
        for (int32_t i = length; i % 4 != 0; ++i)
            piece.colours[i] = 0;
        blendRefined(run, TexelAlpha::kPremultiplied, piece, length);
    }
}

} // namespace

void readSource(const MMPaint& paint, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    while (count > 0) {
        const int32_t length = std::min(count, kPieceLength);
        paint.sourceFunction(paint.sourceState, row, column, length, pixels);
        if (paint.sourceIsOpaque == 0) clampToAlpha(pixels, length);
        pixels += length;
        column += length;
        count -= length;
    }
}

void MMContext2D::drawSourceStrip()
{
    if (currentPaint.sourceFunction == nullptr) return;
    readSource(currentPaint, spanRow, fixFloor(spanStart), spanLength(*this),
               spanFirstPixel(*this));
}

void MMContext2D::drawSourceTStrip()
{
    if (currentPaint.sourceFunction == nullptr) return;
    TranslucentRun<RefinedBlend> run(*this);
    const int32_t first = fixFloor(spanStart);
    const int32_t count = spanLength(*this);
    blendSource(*this, run, first, count);
    if (run.takeTail()) blendSource(*this, run, first + count, 1);
}

} // namespace Graphics2D
} // namespace KAVO
