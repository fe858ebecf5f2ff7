// SPDX-License-Identifier: MIT
// The strip fillers of a paint that is a function.
#include "graphics2d/strips/SourceStrip.h"

#include "graphics2d/strips/PieceBlending.h"
#include "graphics2d/strips/Span.h"
#include "graphics2d/strips/StripFillers.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Cuts channels down to their pixel's alpha.
void clampToAlpha(Pixel* pixels, int32_t count)
{
    const auto clamped = [](U32x4 four) {
        const U32x4 twice = four >> 24 | four >> 24 << 8;
        const U8x16 alphas = (U8x16)(twice | twice << 16);
        const U8x16 isBelow = (U8x16)((U8x16)four < alphas);
        return (U32x4)(((U8x16)four & isBelow) | (alphas & ~isBelow));
    };
    int32_t i = 0;
    for (; i + 4 <= count; i += 4)
        store4(pixels + i, clamped(load4(pixels + i)));
    for (; i < count; ++i)
        pixels[i] = clamped(all4(pixels[i]))[0];
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

void drawSource(MMContext2D& context)
{
    if (context.currentPaint.sourceFunction == nullptr) return;
    readSource(context.currentPaint, context.spanRow, fixFloor(context.spanStart),
               spanLength(context), spanFirstPixel(context));
}

void drawTranslucentSource(MMContext2D& context)
{
    if (context.currentPaint.sourceFunction == nullptr) return;
    TranslucentRun<RefinedBlend> run(context);
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    blendSource(context, run, first, count);
    if (run.takeTail()) blendSource(context, run, first + count, 1);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
