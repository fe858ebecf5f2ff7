// SPDX-License-Identifier: MIT
// The operations of FourPixels.h on eight pixels, with AVX2. Low and high are the halves of each
// half of a register: here pixels 0, 1, 4 and 5 are the lower ones. Internal.
#pragma once

#include "graphics2d/strips/VectorTypes.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

inline U32x8 inBothHalves(U32x8 lanes)
{
    return lanes | lanes << 16;
}

inline U16x16 widenLow(U32x8 pixels)
{
    return (U16x16)_mm256_unpacklo_epi8((__m256i)pixels, __m256i{});
}

inline U16x16 widenHigh(U32x8 pixels)
{
    return (U16x16)_mm256_unpackhi_epi8((__m256i)pixels, __m256i{});
}

inline U32x8 twiceLow(U32x8 lanes)
{
    return (U32x8)_mm256_unpacklo_epi32((__m256i)lanes, (__m256i)lanes);
}

inline U32x8 twiceHigh(U32x8 lanes)
{
    return (U32x8)_mm256_unpackhi_epi32((__m256i)lanes, (__m256i)lanes);
}

inline U16x16 alphasOf(U16x16 channels)
{
    return (U16x16)_mm256_shufflehi_epi16(_mm256_shufflelo_epi16((__m256i)channels, 0xFF), 0xFF);
}

// The alpha of each pixel in both halves of its lane.
inline U32x8 alphasInBothHalves(U32x8 pixels)
{
    constexpr U32x8 kAlphas = {0x80038003, 0x80078007, 0x800B800B, 0x800F800F,
                               0x80038003, 0x80078007, 0x800B800B, 0x800F800F};
    return (U32x8)_mm256_shuffle_epi8((__m256i)pixels, (__m256i)kAlphas);
}

// The signed products by 2^15, rounded.
inline U16x16 mulRounded(U16x16 a, U16x16 b)
{
    return (U16x16)_mm256_mulhrs_epi16((__m256i)a, (__m256i)b);
}

inline U16x16 mulHigh(U16x16 a, U16x16 b)
{
    return (U16x16)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
}

inline U32x8 lesserBytes(U32x8 a, U32x8 b)
{
    return (U32x8)_mm256_min_epu8((__m256i)a, (__m256i)b);
}

inline U32x8 narrowHighBytes(U16x16 low, U16x16 high)
{
    return (U32x8)_mm256_packus_epi16((__m256i)(low >> 8), (__m256i)(high >> 8));
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
