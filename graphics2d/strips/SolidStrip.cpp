// SPDX-License-Identifier: MIT
// The basic strip fillers: solid colour, exclusive-or, picking and the two translucent solids.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/strips/StripMachinery.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {

namespace {

// The eight-bit weight of a coverage, rounded; 256.0 wraps to 0.
inline uint32_t roundedWeight(Coverage coverage)
{
    return static_cast<uint32_t>(wrapAdd(coverage, 0x8000) >> 16) & 0xFFu;
}

#if defined(__x86_64__)
// FlatBlend's arithmetic on eights of pixels from the index on; returns the index of the rest.
[[gnu::target("avx2")]] int32_t blendEights(Pixel* pixels, int32_t i, int32_t end, Pixel colour,
                                            uint32_t weight)
{
    const __m256i zero = _mm256_setzero_si256();
    const __m256i source =
        _mm256_unpacklo_epi8(_mm256_set1_epi32(static_cast<int32_t>(colour)), zero);
    const __m256i raiseBelow = _mm256_sub_epi16(source, _mm256_set1_epi16(128));
    const __m256i weights = _mm256_set1_epi16(static_cast<int16_t>(weight));
    const __m256i rest = _mm256_set1_epi16(static_cast<int16_t>(256 - weight));
    const __m256i share = _mm256_mullo_epi16(source, weights);
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

// Blends eights or fours of pixels from the index on with one coverage; returns the index of the
// rest.
int32_t blendFlat(Pixel* pixels, int32_t i, int32_t end, Pixel colour, Coverage coverage)
{
    const uint32_t weight = roundedWeight(coverage);
#if defined(__x86_64__)
    if (end - i >= 16 && __builtin_cpu_supports("avx2"))
        i = blendEights(pixels, i, end, colour, weight);
#endif
    const FlatBlend blend(colour, weight);
    for (; i + 4 <= end; i += 4)
        store4(pixels + i, blend(load4(pixels + i)));
    return i;
}

// Two of a pixel's four bytes, 16 bits apart, each of 128 or more counted one higher so that 255
// acts as 256.
inline uint32_t biasedPair(uint32_t pair)
{
    return pair + ((pair >> 7) & 0x00010001u);
}

} // namespace

void MMContext2D::drawSolidStrip()
{
    fillPixels(spanFirstPixel(*this), spanLength(*this), currentPaint.paintColour);
}

void MMContext2D::drawSolidXORStrip()
{
    const int32_t first = fixFloor(spanStart);
    const int32_t count = fixFloor(spanEnd) - first;
    const Pixel colour = currentPaint.paintColour;
    Pixel* pixels = spanPixels + first;
    for (int32_t i = 0; i < count; ++i)
        pixels[i] ^= colour;
}

void MMContext2D::drawPickingStrip()
{
    // Rows are compared exactly: a picking point between rows never hits.
    if (spanStart <= pickX && pickX <= spanEnd && pickY == fixFromInt(spanRow)) pickHit = 1;
}

void MMContext2D::drawSolidTStrip()
{
    constexpr int32_t kLongSpan = 8;
    const int32_t count = spanLength(*this);
    const Pixel colour = currentPaint.paintColour;
    Pixel* pixels = spanFirstPixel(*this);
    if (count > 0) {
        const Coverage step = spanCoverageStep;
        const int32_t flatFrom = step == 0 && count >= kLongSpan ? 1 : count;
        Coverage coverage = spanCoverage;
        Coverage next = wrapSub(spanCoverageNext, step); // of the pixel before
        for (int32_t i = 0; i < count; ++i) {
            if (i == flatFrom) i = blendFlat(pixels, i, count, colour, coverage);
            if (i == count) break;
            pixels[i] = blendPixel(pixels[i], colour, roundedWeight(coverage));
            coverage = next = wrapAdd(next, step);
        }
        spanCoverageNext = next;
    }
    if (spanTailCoverage > 0) {
        Pixel& tail = spanPixels[fixFloor(spanEnd)];
        tail = blendPixel(tail, colour, roundedWeight(spanTailCoverage));
    }
}

void MMContext2D::drawTransStrip()
{
    const int32_t first = fixFloor(spanStart);
    const int32_t count = fixFloor(spanEnd) - first;
    const uint32_t weight = currentPaint.paintOpacity;
    const Pixel colour = currentPaint.paintColour;
    const uint32_t source02 = biasedPair(colour & 0x00FF00FFu) * weight;
    const uint32_t source13 = biasedPair((colour >> 8) & 0x00FF00FFu) * weight;
    const Pixel source = ((source02 >> 8) & 0xFFFF00FFu) | (source13 & 0xFF00FF00u);
    Pixel* pixels = spanPixels + first;
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t rest02 = biasedPair(pixels[i] & 0x00FF00FFu) * (255 - weight);
        const uint32_t rest13 = biasedPair((pixels[i] >> 8) & 0x00FF00FFu) * (255 - weight);
        pixels[i] = (((rest02 >> 8) & 0xFFFF00FFu) | (rest13 & 0xFF00FF00u)) + source;
    }
}

} // namespace Graphics2D
} // namespace KAVO
