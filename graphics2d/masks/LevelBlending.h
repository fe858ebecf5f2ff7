// SPDX-License-Identifier: MIT
// Pixels weighed by the levels of a mask. Internal.
#pragma once

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Blending.h"

#include <cstring>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

constexpr uint32_t kWholeLevel = 255;

// The current paint as a colour.
inline Tint tintOf(const MMContext2D& context)
{
    const Pixel colour = context.currentPaint.paintColour;
    const uint32_t opacity = context.currentPaint.paintOpacity;
    if (context.refined == 0) return {colour, static_cast<uint16_t>(opacity << 8)};
    return {colour | kOpaque, opacityWith(opacity, colour >> 24)};
}

// The levels of a vector of pixels, as words.
template <class Pixels>
Pixels levelsOf(const uint8_t* levels);

template <>
inline uint32_t levelsOf(const uint8_t* levels)
{
    return *levels;
}

template <>
inline U32x4 levelsOf(const uint8_t* levels)
{
    uint32_t four;
    std::memcpy(&four, levels, sizeof four);
    const U32x4 bytes = {four, 0, 0, 0};
    return zipLow(widenLow(bytes), U16x8{});
}

#if defined(__AVX2__)
template <>
inline PixelVector levelsOf(const uint8_t* levels)
{
    const auto* bytes = reinterpret_cast<const __m128i*>(levels);
#if defined(__AVX512BW__) // GCC 12 warns of what its own header has without a mask
    return (PixelVector)_mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_loadu_si128(bytes));
#else
    return (PixelVector)_mm256_cvtepu8_epi32(_mm_loadl_epi64(bytes));
#endif
}
#endif

// Blends a colour over count pixels by its opacity and the levels.
void tintByLevels(Pixel* pixels, Tint tint, const uint8_t* levels, int32_t count);

// Moves count pixels toward others by the levels / 255, rounded once.
void moveByLevels(Pixel* pixels, const Pixel* drawn, const uint8_t* levels, int32_t count);

// A share of an 8.8 coverage, or of a level, by a level, rounded.
inline uint32_t shareOfLevel(uint32_t coverage, uint32_t level)
{
    return (coverage * level + 127) / kWholeLevel;
}

// Draws an 8.8 coverage, up to 255.0, over a level: the one rounding of all that is in it.
inline void addLevel(uint8_t& level, uint32_t coverage)
{
    level = static_cast<uint8_t>(level + ((255u - level) * coverage + 0x7F80) / 0xFF00);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
