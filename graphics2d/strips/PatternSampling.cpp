// SPDX-License-Identifier: MIT
// The walk of a span through the pattern image.
#include "graphics2d/strips/PatternSampling.h"

#include "math/Points.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// The weight of a colour by its own alpha, rounded to nearest before it is raised: unlike the
// gradients', which truncates.
uint32_t patternWeight(Coverage opacity, uint32_t alpha)
{
    const uint32_t product = (static_cast<uint32_t>(opacity) * alpha) >> 8;
    const uint32_t weight = (product + 0x8000) >> 16;
    return (product >= 0x007F8000u ? weight + 1 : weight) & 0xFFu;
}

// The same for four colours and an opacity of 0 to 255 without a fraction. The products fit 16
// bits; they are the exact weight times 256, and reach 0x7F80 just when the rounded weight reaches
// 128.
inline U32x4 patternWeights(U32x4 colours, U16x8 opacity)
{
    const U32x4 weights = ((U32x4)((U16x8)(colours >> 24) * opacity) + 0x80) >> 8;
    return weights + (weights >> 7);
}

// Samples count pixels: in long runs inside the image, in short ones where tap offsets are needed.
void sample(PatternWalk& walk, const PatternFilter& filter, Pixel* colours, uint32_t* alphas,
            int32_t count)
{
    while (count > 0) {
        int32_t length = walk.u.pixelsInside(filter.before, filter.after, count);
        if (length > 0) length = walk.v.pixelsInside(filter.before, filter.after, length);
        const bool inside = length > 0;
        if (!inside) length = count < kFewPixels ? count : kFewPixels;
        filter.sample(walk, inside, colours, alphas, length);
        walk.advance(length);
        colours += length;
        if (alphas != nullptr) alphas += length;
        count -= length;
    }
}

// At least one colour.
bool areOpaque(const Pixel* colours, int32_t count)
{
    if (colours[0] >> 24 != 0xFF) return false;
    U32x4 common = all4(colours[0]);
    int32_t i = 0;
    for (; i + 4 <= count; i += 4)
        common &= load4(colours + i);
    Pixel all = common[0] & common[1] & common[2] & common[3];
    for (; i < count; ++i)
        all &= colours[i];
    return all >> 24 == 0xFF;
}

void drawByAlpha(TranslucentRun<ClassicBlend>& run, PaintPiece& piece, int32_t count)
{
    const Pixel* colours = piece.colours;
    if (run.coverage.isFlatAndWhole()) {
        const U16x8 opacity = all8(static_cast<uint32_t>(fixFloor(run.coverage.current())));
        const U32x4 opaqueWeights = patternWeights(all4(0xFF000000u), opacity);
        if (areOpaque(colours, count))
            run.blend(
                colours, [=](int32_t) { return opaqueWeights; }, count);
        else
            run.blend(
                colours, [=](int32_t i) { return patternWeights(load4(colours + i), opacity); },
                count);
        run.coverage.advance(count);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        piece.weights[i] = patternWeight(run.coverage.current(), colours[i] >> 24);
        run.coverage.advance(1);
    }
    run.drawPiece(piece, count);
}

} // namespace

PatternWalk::PatternWalk(const MMPaint& paint, Fixed x, Fixed y)
    : PatternWalk(paint, mapped(paint.patternTransform, x, y))
{
}

PatternWalk::PatternWalk(const MMPaint& paint, MMPoint2D start)
    : u(start.x, paint.patternTransform.a, paint.patternImage.width),
      v(start.y, paint.patternTransform.b, paint.patternImage.height),
      pixels_(paint.patternImage.pixels)
{
}

void drawPattern(const MMContext2D& context, PatternWalk& walk, const PatternFilter& filter)
{
    if (walk.isEmpty()) return;
    sample(walk, filter, spanFirstPixel(context), nullptr, spanLength(context));
}

void drawTranslucentPattern(MMContext2D& context, PatternWalk& walk, const PatternFilter& filter)
{
    if (walk.isEmpty()) return;
    TranslucentRun<ClassicBlend> run(context);
    PaintPiece piece;
    int32_t count = spanLength(context);
    do {
        while (count > 0) {
            const int32_t length = count < kPieceLength ? count : kPieceLength;
            sample(walk, filter, piece.colours, piece.weights, length);
            if (filter.weigh != nullptr) {
                filter.weigh(piece, run.coverage, length);
                run.drawPiece(piece, length);
            } else {
                drawByAlpha(run, piece, length);
            }
            count -= length;
        }
        count = 1;
    } while (run.takeTail());
}

} // namespace Graphics2D
} // namespace KAVO
