// SPDX-License-Identifier: MIT
// The walk of a span through the pattern image.
#include "graphics2d/strips/PatternSampling.h"

#include "graphics2d/strips/PieceBlending.h"

#include "math/Points.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// The weight of a colour by its own alpha, rounded to nearest before it is raised: unlike the
// gradients', which truncates.
uint32_t patternWeight(Coverage opacity, uint32_t alpha)
{
    const uint32_t product = (static_cast<uint32_t>(opacity) * alpha) >> 8;
    const uint32_t weight = (product + 0x8000) >> 16;
    return (product >= 0x007F8000u ? weight + 1 : weight) & 0xFFu;
}

// The same for a vector of colours and an opacity of 0 to 255 without a fraction. The products fit
// 16 bits; they are the exact weight times 256, and reach 0x7F80 just when the rounded weight
// reaches 128.
template <class Pixels>
inline Pixels patternWeights(Pixels colours, uint32_t opacity)
{
    Pixels products;
    if constexpr (sizeof(Pixels) > sizeof(Pixel)) {
        using Lanes = decltype(widenLow(colours));
        products = (Pixels)((Lanes)(colours >> 24) * (Lanes{} + static_cast<uint16_t>(opacity)));
    } else {
        products = (colours >> 24) * opacity;
    }
    const Pixels weights = (products + 0x80) >> 8;
    return weights + (weights >> 7);
}

// Samples count pixels: in long runs inside the image, in short ones where tap offsets are needed.
void sample(PatternWalk& walk, const PatternFilter& filter, SampleTexels sampleTexels,
            Pixel* colours, uint32_t* alphas, int32_t count)
{
    while (count > 0) {
        int32_t length = walk.u.pixelsInside(filter.before, filter.after, count);
        if (length > 0) length = walk.v.pixelsInside(filter.before, filter.after, length);
        const bool inside = length > 0;
        if (!inside) length = count < kFewPixels ? count : kFewPixels;
        sampleTexels(walk, inside, colours, alphas, length);
        walk.advance(length);
        colours += length;
        if (alphas != nullptr) alphas += length;
        count -= length;
    }
}

void drawByAlpha(TranslucentRun<ClassicBlend>& run, PaintPiece& piece, int32_t count)
{
    const Pixel* colours = piece.colours;
    if (run.coverage.isFlatAndWhole()) {
        const uint32_t opacity = static_cast<uint32_t>(fixFloor(run.coverage.current()));
        const uint32_t opaqueWeight = patternWeights(kOpaque, opacity);
        if (areOpaque(colours, count))
            run.blend(
                colours,
                [=](auto sources, int32_t) { return all<decltype(sources)>(opaqueWeight); }, count);
        else
            run.blend(
                colours, [=](auto sources, int32_t) { return patternWeights(sources, opacity); },
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

PatternWalk::PatternWalk(const MMPaint& paint, TexelAxis uAxis, TexelAxis vAxis)
    : u(uAxis), v(vAxis), pixels_(paint.patternImage.pixels)
{
}

PatternWalk PatternWalk::classic(const MMPaint& paint, Fixed x, Fixed y)
{
    const Matrix2D& m = paint.patternTransform;
    const MMPixmap& image = paint.patternImage;
    const MMPoint2D start = mapped(m, x, y);
    return {paint, {start.x, m.a, image.width}, {start.y, m.b, image.height}};
}

PatternWalk PatternWalk::refined(const MMContext2D& context, Fixed offset)
{
    const MMPaint& paint = context.currentPaint;
    const Matrix2D& m = paint.patternTransform;
    const MMPixmap& image = paint.patternImage;
    const int64_t column = fixFloor(context.spanStart);
    const int64_t row = context.spanRow;
    const int64_t u = m.a * column + m.c * row + ((int64_t{m.a} + m.c) >> 1) + m.e + offset;
    const int64_t v = m.b * column + m.d * row + ((int64_t{m.b} + m.d) >> 1) + m.f + offset;
    PatternWalk walk(paint, TexelAxis::refined(u, m.a, image.width),
                     TexelAxis::refined(v, m.b, image.height));
    walk.isRefined = true;
    return walk;
}

void drawPattern(const MMContext2D& context, PatternWalk& walk, const PatternFilter& filter)
{
    if (walk.isEmpty()) return;
    sample(walk, filter, filter.sample, spanFirstPixel(context), nullptr, spanLength(context));
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
            sample(walk, filter, filter.sample, piece.colours, piece.weights, length);
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

void drawRefinedPattern(MMContext2D& context, const PatternFilter& filter, bool translucent)
{
    PatternWalk walk = PatternWalk::refined(context, filter.refinedOffset);
    if (walk.isEmpty()) return;
    int32_t count = spanLength(context);
    walk.alpha = TexelAlpha::kMadeWhole;
    if (!translucent)
        return sample(walk, filter, filter.sampleRefined, spanFirstPixel(context), nullptr, count);

    if (context.currentPaint.patternHasAlpha != 0)
        walk.alpha = filter.mixes ? TexelAlpha::kPremultiplied : TexelAlpha::kKept;
    TranslucentRun<RefinedBlend> run(context);
    PaintPiece piece;
    do {
        while (count > 0) {
            const int32_t length = count < kPieceLength ? count : kPieceLength;
            sample(walk, filter, filter.sampleRefined, piece.colours, nullptr, length);
            blendRefined(run, walk.alpha, piece, length);
            count -= length;
        }
        count = 1;
    } while (run.takeTail());
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
