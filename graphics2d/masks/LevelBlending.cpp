// SPDX-License-Identifier: MIT
// With AVX2 eight pixels at a time go through registers of twice the width, with the same results.
#include "graphics2d/masks/LevelBlending.h"

#include <algorithm>
#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

constexpr int32_t kLane = 8; // pixels at a time

// Eight levels as 16-bit lanes.
U16x8 widenLevels(const uint8_t* levels)
{
    uint64_t eight;
    std::memcpy(&eight, levels, sizeof eight);
    return widenLow((U32x4)U64x2{eight, 0});
}

// Eight pixels.
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

#if defined(__AVX2__)
inline __m256i moveByWeight(__m256i from, __m256i to, __m256i weight)
{
    const __m256i start = _mm256_or_si256(_mm256_slli_epi16(from, 8), _mm256_set1_epi16(128));
    const __m256i way = _mm256_mullo_epi16(_mm256_sub_epi16(to, from), weight);
    return _mm256_srli_epi16(_mm256_add_epi16(start, way), 8);
}

inline __m256i moveByLevel(__m256i from, __m256i to, __m256i level)
{
    const __m256i rest = _mm256_mullo_epi16(from, _mm256_sub_epi16(_mm256_set1_epi16(255), level));
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(rest, _mm256_mullo_epi16(to, level)),
                                         _mm256_set1_epi16(128));
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_srli_epi16(sum, 8)), 8);
}

// tintEight for as many eights as there are; returns the index of the rest.
int32_t tintEights(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count)
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
int32_t moveEights(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count)
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

} // namespace

void tintByLevels(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count)
{
    const U16x8 source = widenLow(all4(tint.source));
    const U16x8 opacity = all8(tint.opacity);
    const auto weightsOf = [&](const uint8_t* eight) {
        return refinedWeights(widenLevels(eight) << 8, opacity);
    };
    int32_t i = 0;
#if defined(__AVX2__)
    i = tintEights(pixels, tint, levels, count);
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
#if defined(__AVX2__)
    i = moveEights(pixels, drawn, levels, count);
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

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
