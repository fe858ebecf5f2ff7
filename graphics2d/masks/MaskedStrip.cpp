// SPDX-License-Identifier: MIT
// A row seen through a mask is cut into stretches: hidden ones are skipped, those of full levels
// are drawn by the paint's own filler, and only what lies between is weighed pixel by pixel. There
// a colour is blended with coverage, opacity and level in one weight; any other paint is drawn over
// a copy of up to 127 pixels of the target, which the target is then moved to by the levels. So
// every paint keeps the rules of its mode, and a mask that hides nothing changes nothing.
#include "graphics2d/masks/MaskedStrip.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/SolidStrip.h"
#include "graphics2d/strips/Span.h"

#include "memory/ScratchArray.h"

#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {

namespace {

// --- Levels -------------------------------------------------------------------------------------

constexpr int32_t kLane = 8; // levels at a time
constexpr uint32_t kWholeLevel = 255;
constexpr uint32_t kHalfLevel = 128; // from which on a pixel that cannot be weighed is taken

uint64_t eightLevels(const uint8_t* levels)
{
    uint64_t eight;
    std::memcpy(&eight, levels, sizeof eight);
    return eight;
}

// The end of the columns from `from` on that all have the level.
int32_t endOfLevel(const uint8_t* levels, int32_t from, int32_t end, uint8_t level)
{
    const uint64_t pattern = level * 0x0101010101010101u;
    // Long stretches first, sixty-four at a time.
    for (const U64x2 patterns = {pattern, pattern}; end - from >= 64; from += 64) {
        U64x2 others = {};
        for (int32_t i = 0; i < 64; i += 16) {
            U64x2 sixteen;
            std::memcpy(&sixteen, levels + from + i, sizeof sixteen);
            others |= sixteen ^ patterns;
        }
        if ((others[0] | others[1]) != 0) break;
    }
    for (; end - from >= kLane; from += kLane)
        if (const uint64_t others = eightLevels(levels + from) ^ pattern)
            return from + __builtin_ctzll(others) / 8;
    while (from < end && levels[from] == level)
        ++from;
    return from;
}

// The end of the columns from `from` on before eight that are all hidden or all visible.
int32_t endOfMixture(const uint8_t* levels, int32_t from, int32_t end)
{
    for (; end - from >= kLane; from += kLane) {
        const uint64_t eight = eightLevels(levels + from);
        if (eight == 0 || eight == ~uint64_t{0}) return from;
    }
    return end;
}

// Eight levels as 16-bit lanes.
U16x8 widenLevels(const uint8_t* levels)
{
    return widenLow((U32x4)U64x2{eightLevels(levels), 0});
}

// a * b / 255 of a coverage, rounded.
Coverage coverageThrough(Coverage coverage, uint32_t level)
{
    const uint32_t clamped = static_cast<uint32_t>(std::clamp(coverage, 0, 0x00FF0000));
    return static_cast<Coverage>((clamped * level + 127) / kWholeLevel);
}

// --- Into the target ----------------------------------------------------------------------------

const uint8_t* clipLevels(const MMContext2D& context)
{
    return maskRow(*context.clipMask, context.spanRow);
}

// Points the context at columns of its span, or at a copy of them, until the scope ends.
class PartOfSpan {
public:
    explicit PartOfSpan(MMContext2D& context)
        : context_(context), pixels_(context.spanPixels), start_(context.spanStart),
          end_(context.spanEnd)
    {
    }
    ~PartOfSpan()
    {
        context_.spanPixels = pixels_;
        context_.spanStart = start_;
        context_.spanEnd = end_;
    }
    PartOfSpan(const PartOfSpan&) = delete;
    PartOfSpan& operator=(const PartOfSpan&) = delete;

    int32_t first() const { return fixFloor(start_); }
    int32_t end() const { return fixFloor(end_); }
    Pixel* at(int32_t column) const { return pixels_ + column; }

    // The part keeps the fraction of the span's start, from which some images are sampled.
    void select(int32_t first, int32_t end)
    {
        const int32_t fraction = static_cast<int32_t>(fixFraction(start_));
        context_.spanStart = fixFromInt(first) + fraction;
        context_.spanEnd = fixFromInt(end) + fraction;
    }

    // Lets the columns from first on be drawn into a copy.
    void drawInto(Pixel* copy, int32_t first)
    {
        context_.spanPixels = reinterpret_cast<Pixel*>(reinterpret_cast<uintptr_t>(copy) -
                                                       static_cast<uintptr_t>(int64_t{first} * 4));
    }
    void drawIntoTarget() { context_.spanPixels = pixels_; }

private:
    MMContext2D& context_;
    Pixel* const pixels_;
    const Fixed start_;
    const Fixed end_;
};

constexpr int32_t kCopyLength = 127; // pixels; one more is the right-hand neighbour of the last

// Draws the columns from first to end - 1, which are selected, by draw() into a copy, which has
// room for one more, and moves the target to it by the levels.
template <class Draw>
void drawThroughCopy(MMContext2D& context, PartOfSpan& part, int32_t first, int32_t end,
                     const uint8_t* levels, Pixel* copy, Draw draw)
{
    Pixel* const pixels = part.at(first);
    const int32_t count = end - first;
    std::memcpy(copy, pixels, static_cast<size_t>(count) * sizeof(Pixel));
    copy[count] = pixels[end < context.target.width ? count : count - 1];
    part.drawInto(copy, first);
    draw();
    part.drawIntoTarget();
    moveByLevels(pixels, copy, levels + first, count);
}

// A colour's source pixel and its opacity, 8.8.
struct Tint {
    explicit Tint(const MMContext2D& context)
        : source(context.currentPaint.paintColour),
          opacity(static_cast<uint16_t>(context.currentPaint.paintOpacity << 8))
    {
        if (context.refined == 0) return;
        opacity = opacityWith(context.currentPaint.paintOpacity, source >> 24);
        source |= kOpaque;
    }

    Pixel source;
    uint16_t opacity;
};

// Eight pixels, or the first of them.
void tintEight(Pixel* pixels, U16x8 weights, U16x8 source)
{
    const U32x4 low = zipLow(weights, weights);
    const U32x4 high = zipHigh(weights, weights);
    const auto four = [&](Pixel* at, U32x4 pairs) {
        const U32x4 from = load4(at);
        store4(at, narrowHighBytes(
                       moveRounded(widenLow(from), source,
                                   (U16x8)__builtin_shufflevector(pairs, pairs, 0, 0, 1, 1)),
                       moveRounded(widenHigh(from), source,
                                   (U16x8)__builtin_shufflevector(pairs, pairs, 2, 2, 3, 3))));
    };
    four(pixels, low);
    four(pixels + 4, high);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] inline __m256i moveByWeight(__m256i from, __m256i to, __m256i weight)
{
    const __m256i start = _mm256_or_si256(_mm256_slli_epi16(from, 8), _mm256_set1_epi16(128));
    const __m256i way = _mm256_mullo_epi16(_mm256_sub_epi16(to, from), weight);
    return _mm256_srli_epi16(_mm256_add_epi16(start, way), 8);
}

[[gnu::target("avx2")]] inline __m256i moveByLevel(__m256i from, __m256i to, __m256i level)
{
    const __m256i rest = _mm256_mullo_epi16(from, _mm256_sub_epi16(_mm256_set1_epi16(255), level));
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(rest, _mm256_mullo_epi16(to, level)),
                                         _mm256_set1_epi16(128));
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_srli_epi16(sum, 8)), 8);
}

// tintEight for as many eights as there are; returns the index of the rest.
[[gnu::target("avx2")]] int32_t tintEights(Pixel* pixels, const Tint& tint, const uint8_t* levels,
                                           int32_t count)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i colour =
        _mm256_unpacklo_epi8(_mm256_set1_epi32(static_cast<int32_t>(tint.source)), zero);
    const __m128i opacity = _mm_set1_epi16(static_cast<int16_t>(tint.opacity));
    // The weights of pixels 0, 1, 4 and 5, and of 2, 3, 6 and 7, for all their channels.
    const __m256i first = _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3, 8, 9, 8,
                                           9, 8, 9, 8, 9, 10, 11, 10, 11, 10, 11, 10, 11);
    const __m256i last = _mm256_add_epi8(first, _mm256_set1_epi8(4));
    int32_t i = 0;
    for (; i + kLane <= count; i += kLane) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(levels + i));
        const __m128i coverage = _mm_slli_epi16(_mm_cvtepu8_epi16(bytes), 8);
        const __m128i product =
            _mm_add_epi16(_mm_mulhi_epu16(coverage, opacity), _mm_set1_epi16(127));
        const __m256i weights =
            _mm256_broadcastsi128_si256(_mm_mulhi_epu16(product, _mm_set1_epi16(258)));
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        const __m256i from = _mm256_loadu_si256(at);
        _mm256_storeu_si256(
            at, _mm256_packus_epi16(moveByWeight(_mm256_unpacklo_epi8(from, zero), colour,
                                                 _mm256_shuffle_epi8(weights, first)),
                                    moveByWeight(_mm256_unpackhi_epi8(from, zero), colour,
                                                 _mm256_shuffle_epi8(weights, last))));
    }
    return i;
}

// moveByLevels likewise.
[[gnu::target("avx2")]] int32_t moveEights(Pixel* pixels, const Pixel* drawn, const uint8_t* levels,
                                           int32_t count)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i spread = _mm256_setr_epi8(0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4,
                                            4, 5, 5, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7);
    int32_t i = 0;
    for (; i + kLane <= count; i += kLane) {
        int64_t eight;
        std::memcpy(&eight, levels + i, sizeof eight);
        const __m256i level = _mm256_shuffle_epi8(_mm256_set1_epi64x(eight), spread);
        __m256i* const at = reinterpret_cast<__m256i*>(pixels + i);
        const __m256i from = _mm256_loadu_si256(at);
        const __m256i to = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(drawn + i));
        _mm256_storeu_si256(
            at, _mm256_packus_epi16(
                    moveByLevel(_mm256_unpacklo_epi8(from, zero), _mm256_unpacklo_epi8(to, zero),
                                _mm256_unpacklo_epi8(level, zero)),
                    moveByLevel(_mm256_unpackhi_epi8(from, zero), _mm256_unpackhi_epi8(to, zero),
                                _mm256_unpackhi_epi8(level, zero))));
    }
    return i;
}
#endif

void tintByLevels(Pixel* pixels, const Tint& tint, const uint8_t* levels, int32_t count)
{
    const U16x8 source = widenLow(all4(tint.source));
    const U16x8 opacity = all8(tint.opacity);
    const auto weightsOf = [&](const uint8_t* eight) {
        return refinedWeights(widenLevels(eight) << 8, opacity);
    };
    int32_t i = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) i = tintEights(pixels, tint, levels, count);
#endif
    for (; i + kLane <= count; i += kLane)
        tintEight(pixels + i, weightsOf(levels + i), source);
    if (i == count) return;
    Pixel lastPixels[kLane] = {};
    uint8_t lastLevels[kLane] = {};
    const size_t rest = static_cast<size_t>(count - i);
    std::copy_n(pixels + i, rest, lastPixels);
    std::copy_n(levels + i, rest, lastLevels);
    tintEight(lastPixels, weightsOf(lastLevels), source);
    std::copy_n(lastPixels, rest, pixels + i);
}

void invertByLevels(Pixel* pixels, Pixel colour, const uint8_t* levels, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        if (levels[i] >= kHalfLevel) pixels[i] ^= colour;
}

// A stretch of a span with mixed levels.
void drawMixture(MMContext2D& context, const SpanFiller& paint, PartOfSpan& part, int32_t first,
                 int32_t end, const uint8_t* levels)
{
    switch (context.currentPaint.paintType) {
    case kPaintSolid:
        return tintByLevels(part.at(first), Tint(context), levels + first, end - first);
    case kPaintXOR:
        return invertByLevels(part.at(first), context.currentPaint.paintColour, levels + first,
                              end - first);
    default:
        Pixel copy[kCopyLength + 1];
        for (int32_t next; first < end; first = next) {
            next = std::min(end, first + kCopyLength);
            part.select(first, next);
            drawThroughCopy(context, part, first, next, levels, copy,
                            [&] { drawSpan(context, paint); });
        }
    }
}

// A span in one piece, for paints whose pixels depend on where their span starts.
void drawUncut(MMContext2D& context, const SpanFiller& paint, PartOfSpan& part,
               const uint8_t* levels)
{
    ScratchArray<Pixel> copy(context.scratchStack,
                             static_cast<uint32_t>(part.end() - part.first()) + 1);
    if (!copy) return noteOutOfMemory(context);
    drawThroughCopy(context, part, part.first(), part.end(), levels, copy.data(),
                    [&] { drawSpan(context, paint); });
}

bool dependsOnStart(const MMContext2D& context)
{
    return context.refined == 0 && context.currentPaint.paintType != kPaintSolid &&
           context.currentPaint.paintType != kPaintXOR;
}

void drawSpanThroughMask(MMContext2D& context)
{
    const SpanFiller paint = chooseSpanFiller(context);
    const uint8_t* levels = clipLevels(context);
    PartOfSpan part(context);
    const int32_t end = part.end();
    if (part.first() < end && dependsOnStart(context)) {
        if (endOfLevel(levels, part.first(), end, 0) == end) return;
        if (endOfLevel(levels, part.first(), end, kWholeLevel) == end)
            return drawSpan(context, paint);
        return drawUncut(context, paint, part, levels);
    }
    for (int32_t first = part.first(), next; first < end; first = next) {
        if (levels[first] == 0) {
            next = endOfLevel(levels, first, end, 0);
        } else if (levels[first] == kWholeLevel) {
            next = endOfLevel(levels, first, end, kWholeLevel);
            part.select(first, next);
            drawSpan(context, paint);
        } else {
            next = endOfMixture(levels, first, end);
            // A few pixels before a whole word of hidden or visible ones belong to the mixture.
            if (next == first) next = std::min(end, first + kLane);
            drawMixture(context, paint, part, first, next, levels);
        }
    }
}

template <class Colour>
void drawColourRun(MMContext2D& context, const uint8_t* levels)
{
    using Rule = typename Colour::Rule;
    const Colour colour(context.currentPaint.paintColour);
    const auto blend = [&](int32_t column, Coverage coverage) {
        Pixel& pixel = context.spanPixels[column];
        const uint32_t weight = colour.weightOf(coverageThrough(coverage, levels[column]));
        pixel = blendPixel<Rule>(pixel, colour.source, weight);
    };
    CoverageSequence coverage(context);
    const int32_t end = fixFloor(context.spanEnd);
    for (int32_t column = fixFloor(context.spanStart); column < end; ++column) {
        blend(column, coverage.current());
        coverage.advance(1);
    }
    if (context.spanTailCoverage > 0) blend(end, context.spanTailCoverage);
}

void drawPaintRun(MMContext2D& context, const uint8_t* levels)
{
    const StripFiller paint = chooseEdgeFiller(context);
    CoverageSequence coverage(context);
    const Coverage tail = context.spanTailCoverage;
    PartOfSpan part(context);
    const int32_t end = part.end();
    Pixel copy[kCopyLength + 1];
    for (int32_t first = part.first(), next; first < end; first = next) {
        next = std::min(end, first + kCopyLength - 1);
        const bool takesTail = next == end && tail > 0;
        part.select(first, next);
        context.spanCoverage = coverage.current();
        context.spanCoverageNext = coverage.next();
        context.spanCoverageStep = coverage.step();
        context.spanTailCoverage = takesTail ? tail : 0;
        coverage.advance(next - first);
        drawThroughCopy(context, part, first, next + (takesTail ? 1 : 0), levels, copy,
                        [&] { paint(context); });
    }
}

void drawRunThroughMask(MMContext2D& context)
{
    const uint8_t* levels = clipLevels(context);
    switch (context.currentPaint.paintType) {
    case kPaintSolid:
        context.refined != 0 ? drawColourRun<RefinedColour>(context, levels)
                             : drawColourRun<ClassicColour>(context, levels);
        return;
    case kPaintXOR:
        invertByLevels(spanFirstPixel(context), context.currentPaint.paintColour,
                       levels + fixFloor(context.spanStart), spanLength(context));
        return;
    default:
        drawPaintRun(context, levels);
    }
}

// --- Into a mask --------------------------------------------------------------------------------

// By the refined rules the alpha of a colour is an opacity.
uint32_t maskAlpha(const MMContext2D& context)
{
    const MMPaint& paint = context.currentPaint;
    const bool counts = context.refined != 0 && paint.paintType == kPaintSolid;
    return counts ? paint.paintColour >> 24 : kWholeLevel;
}

// The opacity that the current paint has in a mask, 8.8.
uint32_t maskOpacity(const MMContext2D& context)
{
    return opacityWith(context.currentPaint.paintOpacity, maskAlpha(context));
}

void drawSpanIntoMask(MMContext2D& context)
{
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    uint8_t* levels = maskRow(*context.maskTarget, context.spanRow) + first;
    const uint8_t* clip = context.clipMask != nullptr ? clipLevels(context) + first : nullptr;
    const uint32_t opacity = maskOpacity(context);
    if (clip == nullptr && opacity == kWholeAlpha) {
        std::memset(levels, kWholeLevel, static_cast<size_t>(count));
        return;
    }
    for (int32_t i = 0; i < count; ++i)
        addLevel(levels[i], clip != nullptr ? shareOfLevel(opacity, clip[i]) : opacity);
}

void drawRunIntoMask(MMContext2D& context)
{
    uint8_t* levels = maskRow(*context.maskTarget, context.spanRow);
    const uint8_t* clip = context.clipMask != nullptr ? clipLevels(context) : nullptr;
    const uint32_t alpha = maskAlpha(context);
    const auto add = [&](int32_t column, Coverage areaAndOpacity) {
        uint32_t coverage = shareOfLevel(coarseCoverage(areaAndOpacity), alpha);
        if (clip != nullptr) coverage = shareOfLevel(coverage, clip[column]);
        addLevel(levels[column], coverage);
    };
    CoverageSequence coverage(context);
    const int32_t end = fixFloor(context.spanEnd);
    for (int32_t column = fixFloor(context.spanStart); column < end; ++column) {
        add(column, coverage.current());
        coverage.advance(1);
    }
    if (context.spanTailCoverage > 0) add(end, context.spanTailCoverage);
}

// --- Picking ------------------------------------------------------------------------------------

bool shows(const MMMask* mask, int32_t column, int32_t row)
{
    if (mask == nullptr) return true;
    const PixelBox box = boxOf(*mask);
    return column >= box.left && column < box.right && row >= box.top && row < box.bottom &&
           maskRow(*mask, row)[column] >= kHalfLevel;
}

void pickThroughMasks(MMContext2D& context)
{
    const int32_t column = fixFloor(context.pickX);
    const int32_t row = context.spanRow;
    if (!shows(context.clipMask, column, row)) return;
    for (const MMLayerSurface* layer = context.layer; layer != nullptr; layer = layer->outer)
        if (!shows(layer->outerMask, column, row)) return;
    context.drawPickingStrip();
}

} // namespace

StripFiller maskedSpanFiller(const MMContext2D& context)
{
    if (context.currentPaint.paintType == kPaintPicking) return pickThroughMasks;
    return context.maskTarget != nullptr ? drawSpanIntoMask : drawSpanThroughMask;
}

StripFiller maskedEdgeFiller(const MMContext2D& context)
{
    if (context.currentPaint.paintType == kPaintPicking) return pickThroughMasks;
    return context.maskTarget != nullptr ? drawRunIntoMask : drawRunThroughMask;
}

void moveByLevels(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count)
{
    const auto moved = [](U16x8 from, U16x8 to, U16x8 level) {
        const U16x8 sum = from * (255 - level) + to * level + 128;
        return sum + (sum >> 8); // / 255, in the high bytes
    };
    const auto moveFour = [&](Pixel* at, const Pixel* to, const uint8_t* level) {
        uint32_t four;
        std::memcpy(&four, level, sizeof four);
        U32x4 spread = {four, 0, 0, 0};
        spread = zipLowBytes(spread, spread);
        spread = zipLowBytes(spread, spread); // each level four times
        const U32x4 old = load4(at);
        const U32x4 drawn4 = load4(to);
        store4(at, narrowHighBytes(moved(widenLow(old), widenLow(drawn4), widenLow(spread)),
                                   moved(widenHigh(old), widenHigh(drawn4), widenHigh(spread))));
    };
    int32_t i = 0;
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) i = moveEights(pixels, drawn, levels, count);
#endif
    for (; i + 4 <= count; i += 4)
        moveFour(pixels + i, drawn + i, levels + i);
    if (i == count) return;
    Pixel lastPixels[4] = {}, lastDrawn[4] = {};
    uint8_t lastLevels[4] = {};
    const size_t rest = static_cast<size_t>(count - i);
    std::copy_n(pixels + i, rest, lastPixels);
    std::copy_n(drawn + i, rest, lastDrawn);
    std::copy_n(levels + i, rest, lastLevels);
    moveFour(lastPixels, lastDrawn, lastLevels);
    std::copy_n(lastPixels, rest, pixels + i);
}

} // namespace Graphics2D
} // namespace KAVO
