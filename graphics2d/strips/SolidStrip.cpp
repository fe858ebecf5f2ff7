// SPDX-License-Identifier: MIT
// The strip fillers of a solid colour.
//
// Both modes blend a colour over the pixel itself; what they differ in is the weight.
#include "graphics2d/strips/SolidStrip.h"

#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/Span.h"
#include "graphics2d/strips/StripFillers.h"

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

#if defined(__AVX2__)
// FlatBlend's arithmetic on eights of pixels from the index on; returns the index of the rest.
int32_t blendEights(Pixel* pixels, int32_t i, int32_t end, const FlatBlend& blend)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i raiseBelow = _mm256_broadcastsi128_si256((__m128i)blend.raiseBelow());
    const __m256i weights = _mm256_broadcastsi128_si256((__m128i)blend.weight());
    const __m256i rest = _mm256_broadcastsi128_si256((__m128i)blend.rest());
    const __m256i share = _mm256_broadcastsi128_si256((__m128i)blend.share());
    for (; i + 8 <= end; i += 8) {
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        const __m256i eight = _mm256_loadu_si256(at);
        __m256i halves[] = {_mm256_unpacklo_epi8(eight, zero), _mm256_unpackhi_epi8(eight, zero)};
        for (__m256i& from : halves) {
            const __m256i raised = _mm256_and_si256(_mm256_cmpgt_epi16(raiseBelow, from), weights);
            const __m256i moved = _mm256_add_epi16(_mm256_mullo_epi16(from, rest), share);
            from = _mm256_srli_epi16(_mm256_add_epi16(moved, raised), 8);
        }
        _mm256_storeu_si256(at, _mm256_packus_epi16(halves[0], halves[1]));
    }
    return i;
}
#endif

// Blends eights or fours of pixels from the index on; returns the index of the rest. A call, so
// that short spans need none of it.
template <class Rule>
[[gnu::noinline]] int32_t blendFlat(Pixel* pixels, int32_t i, int32_t end, Pixel colour,
                                    uint32_t weight)
{
    const FlatBlend blend = Rule::flat(colour, weight);
#if defined(__AVX2__)
    if (end - i >= 16) i = blendEights(pixels, i, end, blend);
#endif
    for (; i + 4 <= end; i += 4)
        store4(pixels + i, blend(load4(pixels + i)));
    return i;
}

template <class Colour>
[[gnu::always_inline]] inline void drawTranslucentColour(MMContext2D& context)
{
    const Colour colour(context.currentPaint.paintColour);
    using Rule = typename Colour::Rule;
    constexpr int32_t kLongSpan = 8;
    const int32_t count = spanLength(context);
    Pixel* pixels = spanFirstPixel(context);
    if (count > 0) {
        const Coverage step = context.spanCoverageStep;
        const int32_t flatFrom = step == 0 && count >= kLongSpan ? 1 : count;
        Coverage coverage = context.spanCoverage;
        Coverage next = wrapSub(context.spanCoverageNext, step); // of the pixel before
        for (int32_t i = 0; i < count; ++i) {
            const uint32_t weight = colour.weightOf(coverage);
            if (i == flatFrom) i = blendFlat<Rule>(pixels, i, count, colour.source, weight);
            if (i == count) break;
            pixels[i] = blendPixel<Rule>(pixels[i], colour.source, weight);
            coverage = next = wrapAdd(next, step);
        }
        context.spanCoverageNext = next;
    }
    if (context.spanTailCoverage > 0) {
        Pixel& tail = context.spanPixels[fixFloor(context.spanEnd)];
        tail = blendPixel<Rule>(tail, colour.source, colour.weightOf(context.spanTailCoverage));
    }
}

} // namespace

void drawClassicColour(MMContext2D& context)
{
    fillPixels(spanFirstPixel(context), spanLength(context), context.currentPaint.paintColour);
}

void drawRefinedColour(MMContext2D& context)
{
    fillPixels(spanFirstPixel(context), spanLength(context),
               context.currentPaint.paintColour | kOpaque);
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
