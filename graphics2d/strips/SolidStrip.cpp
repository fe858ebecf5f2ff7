// SPDX-License-Identifier: MIT
// The translucent strip fillers of a solid colour, and runs of one in other paints.
//
// Both modes blend a colour over the pixel itself; what they differ in is the weight.
#include "graphics2d/strips/SolidStrip.h"

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/FlatBlending.h"
#include "graphics2d/strips/Span.h"
#include "graphics2d/strips/StripFillers.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Moves single pixels toward a colour, their channels at once where there are lanes for them and
// they get there and back as quickly as into other registers.
template <class Rule>
class PixelBlend {
public:
#if defined(__SSE2__)
    explicit PixelBlend(Pixel source) : source_(widenLow(all4(source))) {}

    Pixel operator()(Pixel destination, uint32_t weight) const
    {
        const U16x8 weights = U16x8{} + static_cast<uint16_t>(weight);
        const U16x8 moved = Rule::move(widenLow(U32x4{destination}), source_, weights);
        return narrowHighBytes(moved, moved)[0];
    }

private:
    U16x8 source_;
#else
    explicit PixelBlend(Pixel source) : source_(source) {}

    Pixel operator()(Pixel destination, uint32_t weight) const
    {
        return blendPixel<Rule>(destination, source_, weight);
    }

private:
    Pixel source_;
#endif
};

template <class Colour>
[[gnu::always_inline]] inline void blendRun(Pixel* pixels, int32_t count, Pixel colour,
                                            Coverage coverage, Coverage next, Coverage step)
{
    const Colour tint(colour);
    using Rule = typename Colour::Rule;
    constexpr int32_t kLongRun = 8;
    int32_t second = 1; // the pixel that is blended after the first
    if (step == 0 && count >= kLongRun)
        second = blendFlat<Rule, 0>(pixels, count, tint.source, tint.weightOf(next));
    const PixelBlend<Rule> blended(tint.source);
    for (int32_t i = 0; i < count;) {
        pixels[i] = blended(pixels[i], tint.weightOf(coverage));
        coverage = next;
        next = wrapAdd(next, step);
        i = i != 0 ? i + 1 : second;
    }
}

void drawTranslucentColour(MMContext2D& context, ColourRun blend)
{
    const Pixel colour = context.currentPaint.paintColour;
    const int32_t count = fixFloor(context.spanEnd) - fixFloor(context.spanStart);
    const Coverage next = context.spanCoverageNext;
    const Coverage step = context.spanCoverageStep;
    const Coverage tail = context.spanTailCoverage;
    Pixel* pixels = spanFirstPixel(context);
    for (uint32_t rows = context.spanRows; rows > 0;
         --rows, pixels = pixelBelow(pixels, context.target.rowBytes)) {
        blend(pixels, count, colour, context.spanCoverage, next, step);
        if (tail > 0) blend(pixels + count, 1, colour, tail, 0, 0);
    }
    if (count > 0) context.spanCoverageNext = wrapAdd(next, wrapMul(step, count - 1));
}

} // namespace

template <class Rule>
void blendColour(BlendedRun run, Pixel colour, uint32_t weight)
{
    Pixel* const pixels = run.pixels;
    for (int32_t i = 0; i < run.count;) {
        const int32_t background = i < run.pairs ? i + Rule::kBackground : i;
        pixels[i] = blendPixel<Rule>(pixels[background], colour, weight);
        i = i == 0 && run.pairs > kFewLanes
                ? blendFlat<Rule, Rule::kBackground>(pixels, run.pairs, colour, weight)
                : i + 1;
    }
}

template void blendColour<ClassicBlend>(BlendedRun, Pixel, uint32_t);
template void blendColour<RefinedBlend>(BlendedRun, Pixel, uint32_t);

void blendClassicRun(Pixel* pixels, int32_t count, Pixel colour, Coverage coverage, Coverage next,
                     Coverage step)
{
    blendRun<ClassicColour>(pixels, count, colour, coverage, next, step);
}

void blendRefinedRun(Pixel* pixels, int32_t count, Pixel colour, Coverage coverage, Coverage next,
                     Coverage step)
{
    blendRun<RefinedColour>(pixels, count, colour, coverage, next, step);
}

void drawTranslucentClassicColour(MMContext2D& context)
{
    drawTranslucentColour(context, blendClassicRun);
}

void drawTranslucentRefinedColour(MMContext2D& context)
{
    drawTranslucentColour(context, blendRefinedRun);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
