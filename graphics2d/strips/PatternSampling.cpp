// SPDX-License-Identifier: MIT
// The walk of a span through the pattern image.
#include "graphics2d/strips/PatternSampling.h"

#include "graphics2d/strips/PieceBlending.h"
#include "graphics2d/strips/TexelCopy.h"
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

// By an opacity of 0 to 255 without a fraction.
void blendByAlpha(TranslucentRun<ClassicBlend>& run, const Pixel* colours, int32_t count)
{
    const uint32_t opacity = static_cast<uint32_t>(fixFloor(run.coverage.current()));
    run.blenders().byAlpha(run.take(count), colours, opacity);
    run.coverage.advance(count);
}

// The texels that the next count pixels are copies of, which are inside the image; or null. One
// texel per pixel, or so little less that the run stays on consecutive texels: an inverted identity
// comes out as 0xFFFF.
const Pixel* copiedTexels(const PatternWalk& walk, const PatternFilter& filter, int32_t count)
{
    if (walk.v.step() != 0 || walk.alpha == TexelAlpha::kPremultiplied) return nullptr;
    const Fixed step = walk.u.step();
    if (step != kFixedOne && step != kFixedOne - 1) return nullptr;
    const uint32_t shortfall =
        static_cast<uint32_t>(kFixedOne - step) * static_cast<uint32_t>(count - 1);
    const uint32_t bits = walk.u.fraction() | walk.v.fraction() | kAlwaysMixes;
    if (shortfall > walk.u.fraction() || (bits & filter.mixingBits) != 0) return nullptr;
    return walk.row(walk.v.position()) + fixFloor(walk.u.position());
}

// Samples count pixels: in long runs inside the image, in short ones where tap offsets are needed.
void sample(PatternWalk& walk, const PatternFilter& filter, Pixel* colours, uint32_t* alphas,
            int32_t count)
{
    const int32_t after = walk.isMagnified() ? filter.afterMagnified : filter.after;
    const SampleTexels sampleTexels = walk.isRefined ? filter.sampleRefined : filter.sample;
    while (count > 0) {
        int32_t length = walk.u.pixelsInside(filter.before, after, count);
        if (length > 0) length = walk.v.pixelsInside(filter.before, after, length);
        const bool inside = length > 0;
        if (!inside) length = count < kFewPixels ? count : kFewPixels;
        const Pixel* const texels = inside ? copiedTexels(walk, filter, length) : nullptr;
        if (texels != nullptr)
            copyTexels(texels, colours, length, walk.alpha == TexelAlpha::kMadeWhole);
        else
            sampleTexels(walk, inside, colours, alphas, length);
        walk.advance(length);
        colours += length;
        if (alphas != nullptr) alphas += length;
        count -= length;
    }
}

void drawByAlpha(TranslucentRun<ClassicBlend>& run, PaintPiece& piece, int32_t count)
{
    if (run.coverage.isFlatAndWhole()) return blendByAlpha(run, piece.colours, count);
    for (int32_t i = 0; i < count; ++i) {
        piece.weights[i] = patternWeight(run.coverage.current(), piece.colours[i] >> 24);
        run.coverage.advance(1);
    }
    run.drawPiece(piece, count);
}

// By the classic rules the filters that mix sample from the span's exact left end on the row's top
// edge, the nearest one at pixel centres. The refined ones sample at the centre of the span's first
// column, moved by an offset along both axes, which is the same for a pixel wherever its span
// begins.
TexelPoint startOf(const MMContext2D& context, const PatternFilter& filter)
{
    const Matrix2D& m = context.currentPaint.patternTransform;
    const int64_t column = fixFloor(context.spanStart);
    const int64_t row = context.spanRow;
    if (context.refined != 0)
        return {m.a * column + m.c * row + ((int64_t{m.a} + m.c) >> 1) + m.e + filter.refinedOffset,
                m.b * column + m.d * row + ((int64_t{m.b} + m.d) >> 1) + m.f +
                    filter.refinedOffset};
    Fixed x = context.spanStart;
    Fixed y = fixFromInt(context.spanRow);
    if (!filter.mixes()) {
        x = wrapAdd(x & ~0xFFFF, kFixedHalf);
        y = wrapAdd(y, kFixedHalf);
    }
    const MMPoint2D start = mapped(m, x, y);
    return {start.x, start.y};
}

void blendSampled(TranslucentRun<ClassicBlend>& run, const PatternFilter& filter,
                  const PatternWalk&, PaintPiece& piece, int32_t count)
{
    if (filter.weigh == nullptr) return drawByAlpha(run, piece, count);
    filter.weigh(piece, run.coverage, count);
    run.drawPiece(piece, count);
}

void blendSampled(TranslucentRun<RefinedBlend>& run, const PatternFilter&, const PatternWalk& walk,
                  PaintPiece& piece, int32_t count)
{
    blendRefined(run, walk.alpha, piece, count);
}

template <class Rule>
void drawTranslucent(MMContext2D& context, const PatternFilter& filter, PatternWalk& walk)
{
    TranslucentRun<Rule> run(context);
    PaintPiece piece;
    int32_t count = spanLength(context);
    do {
        while (count > 0) {
            const int32_t length = count < kPieceLength ? count : kPieceLength;
            sample(walk, filter, piece.colours, piece.weights, length);
            blendSampled(run, filter, walk, piece, length);
            count -= length;
        }
        count = 1;
    } while (run.takeTail());
}

// Whether all that texels are blended by is their alpha and one opacity.
bool isBlendedByAlpha(const MMContext2D& context)
{
    if (context.spanTailCoverage > 0) return false;
    const CoverageSequence coverage(context);
    return context.refined == 0 ? coverage.isFlatAndWhole()
                                : coverage.isFlat() && context.currentPaint.patternHasAlpha != 0;
}

template <class Rule>
void blendTexels(MMContext2D& context, const Pixel* texels, int32_t count)
{
    TranslucentRun<Rule> run(context);
    blendByAlpha(run, texels, count);
}

// Most images are upright and at their own size. The texels of a span that copies such a one, found
// without a walk; null where it does not in all of its rows. Under a scale of 1.0, or of one unit
// less, the centre of column i is mapped to where it is, or i + 1 units less, by either mode's
// arithmetic. Those that are blended are read to the end of the last few.
inline const Pixel* texelsOfSpan(const MMContext2D& context, const PatternFilter& filter,
                                 uint32_t count, bool translucent)
{
    const Matrix2D& m = context.currentPaint.patternTransform;
    const MMPixmap& image = context.currentPaint.patternImage;
    const uint32_t uShortfall = static_cast<uint32_t>(kFixedOne) - static_cast<uint32_t>(m.a);
    const uint32_t vShortfall = static_cast<uint32_t>(kFixedOne) - static_cast<uint32_t>(m.d);
    if ((uShortfall | vShortfall) > 1 || (m.b | m.c) != 0) return nullptr;
    const bool isRefined = context.refined != 0;
    if (filter.mixes() && (!isRefined || translucent)) return nullptr;
    if (translucent && !isBlendedByAlpha(context)) return nullptr;

    const auto column = static_cast<uint32_t>(fixFloor(context.spanStart));
    const auto row = static_cast<uint32_t>(context.spanRow);
    if ((column | row) >= 0x8000) return nullptr;
    const int64_t offset = isRefined ? filter.refinedOffset : 0;
    const int64_t u = (column << 16 | 0x8000) - uShortfall * (column + 1) + offset + m.e;
    const int64_t v = (row << 16 | 0x8000) - vShortfall * (row + 1) + offset + m.f;
    const auto bits = static_cast<uint64_t>(u | v);
    if (bits >= kAlwaysMixes || ((bits | kAlwaysMixes) & filter.mixingBits) != 0) return nullptr;
    const uint64_t texel = static_cast<uint64_t>(u) >> 16;
    const uint64_t texelRow = static_cast<uint64_t>(v) >> 16;
    if (texel + count > image.width) return nullptr;
    const uint32_t rows = context.spanRows;
    if (uShortfall * (count - 1) > (u & 0xFFFF) || vShortfall * (rows - 1) > (v & 0xFFFF))
        return nullptr;
    if (image.pixels == nullptr) return nullptr;
    const uint64_t first = texelRow * image.width + texel;
    const uint64_t read = translucent ? (count + kFewLanes - 1) & ~(kFewLanes - 1u) : count;
    if (first + (rows - 1) * image.width + read > uint64_t{image.width} * image.height)
        return nullptr;
    return image.pixels + first;
}

[[gnu::noinline]] void drawWalk(MMContext2D& context, const PatternFilter& filter, bool translucent)
{
    PatternWalk walk = walkOf(context, filter);
    if (walk.isEmpty()) return;
    if (!translucent)
        return sample(walk, filter, spanFirstPixel(context), nullptr, spanLength(context));
    if (!walk.isRefined) return drawTranslucent<ClassicBlend>(context, filter, walk);
    if (context.currentPaint.patternHasAlpha != 0)
        walk.alpha = filter.mixes() ? TexelAlpha::kPremultiplied : TexelAlpha::kKept;
    drawTranslucent<RefinedBlend>(context, filter, walk);
}

} // namespace

[[gnu::noinline]] PatternWalk walkOf(const MMContext2D& context, const PatternFilter& filter)
{
    return {context.currentPaint, startOf(context, filter), context.refined != 0};
}

void drawPattern(MMContext2D& context, const PatternFilter& filter, bool translucent)
{
    const int32_t count = spanLength(context);
    const Pixel* texels = texelsOfSpan(context, filter, static_cast<uint32_t>(count), translucent);
    const uint32_t width = context.currentPaint.patternImage.width;
    const uint32_t rowBytes = context.target.rowBytes;
    if (texels != nullptr && !translucent)
        return context.level->copyTexels(texels, spanFirstPixel(context), count,
                                         context.refined != 0, {context.spanRows, width, rowBytes});
    for (uint32_t rows = context.spanRows;;) {
        if (texels == nullptr) {
            drawWalk(context, filter, translucent);
        } else {
            context.refined == 0 ? blendTexels<ClassicBlend>(context, texels, count)
                                 : blendTexels<RefinedBlend>(context, texels, count);
            texels += width;
        }
        if (--rows == 0) return;
        ++context.spanRow;
        context.spanPixels = pixelBelow(context.spanPixels, rowBytes);
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
