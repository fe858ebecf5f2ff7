// SPDX-License-Identifier: MIT
// Rows of masks are mostly long runs of one level, so these are passed in the widest steps.
#include "graphics2d/masks/LevelRuns.h"

#include "graphics2d/strips/PixelLanes.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kLane = 8; // levels in a word

uint64_t eightLevels(const uint8_t* levels)
{
    uint64_t eight;
    std::memcpy(&eight, levels, sizeof eight);
    return eight;
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] inline __m256i equalLevels(const uint8_t* levels, __m256i all)
{
    const __m256i some = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(levels));
    return _mm256_cmpeq_epi8(some, all);
}

// Passes what it can of columns that all have the level.
[[gnu::target("avx2")]] int32_t passLevels(const uint8_t* levels, int32_t from, int32_t end,
                                           uint8_t level)
{
    const __m256i all = _mm256_set1_epi8(static_cast<char>(level));
    for (; end - from >= 128; from += 128) {
        const uint8_t* const at = levels + from;
        const __m256i first = _mm256_and_si256(equalLevels(at, all), equalLevels(at + 32, all));
        const __m256i last = _mm256_and_si256(equalLevels(at + 64, all), equalLevels(at + 96, all));
        if (_mm256_movemask_epi8(_mm256_and_si256(first, last)) != -1) break;
    }
    for (; end - from >= 32; from += 32) {
        const auto equal =
            static_cast<uint32_t>(_mm256_movemask_epi8(equalLevels(levels + from, all)));
        if (equal != ~0u) return from + __builtin_ctz(~equal);
    }
    return from;
}
#endif

} // namespace

int32_t endOfLevel(const uint8_t* levels, int32_t from, int32_t end, uint8_t level)
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) from = passLevels(levels, from, end, level);
#endif
    const uint64_t pattern = level * 0x0101010101010101u;
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

int32_t endOfMixture(const uint8_t* levels, int32_t from, int32_t end)
{
    from = endOfLevel(levels, from, end, levels[from]); // often all are alike
    for (; end - from >= kLane; from += kLane) {
        const uint64_t eight = eightLevels(levels + from);
        if (eight == 0 || eight == ~uint64_t{0}) return from;
    }
    return end;
}

} // namespace Graphics2D
} // namespace KAVO
