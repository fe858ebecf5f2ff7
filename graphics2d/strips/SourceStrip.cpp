// SPDX-License-Identifier: MIT
// The strip fillers of a paint that is a function.
#include "graphics2d/strips/SourceStrip.h"

#include "graphics2d/LevelTable.h"
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
    const auto clamped = [](auto vector) {
        const auto twice = vector >> 24 | vector >> 24 << 8;
        return lesserBytes(vector, twice | twice << 16);
    };
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        store(pixels + i, clamped(load<PixelVector>(pixels + i)));
    for (; i < count; ++i)
        pixels[i] = firstOf<Pixel>(clamped(all<FewPixels>(pixels[i])));
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
    const MMPaint& paint = context.currentPaint;
    if (paint.sourceFunction == nullptr) return;
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    Pixel* const pixels = spanFirstPixel(context);
#if !defined(MM2D_WITHOUT_LAYERS)
    // The library's own take any count, and begin anew with each call.
    if (paint.sourceFunction == context.level->uprightTiles && paint.sourceIsOpaque != 0)
        return paint.sourceFunction(paint.sourceState, context.spanRow, first, count, pixels);
#endif
    readSource(paint, context.spanRow, first, count, pixels);
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
