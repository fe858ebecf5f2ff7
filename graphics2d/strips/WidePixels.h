// SPDX-License-Identifier: MIT
// The operations of FourPixels.h on eight pixels, with AVX2, or on sixteen, with AVX-512. Low and
// high are the halves of each 128 bits of a register: of eight pixels 0, 1, 4 and 5 are the lower
// ones. Internal.
#pragma once

#include "graphics2d/strips/VectorTypes.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

#if defined(__AVX512BW__)
#define MM2D_WIDE(operation) _mm512_##operation
using WideRegister = __m512i;
using WideLanes = U16x32;
#else
#define MM2D_WIDE(operation) _mm256_##operation
using WideRegister = __m256i;
using WideLanes = U16x16;
#endif

inline PixelVector inBothHalves(PixelVector lanes)
{
    return lanes | lanes << 16;
}

inline WideLanes widenLow(PixelVector pixels)
{
    return (WideLanes)MM2D_WIDE(unpacklo_epi8)((WideRegister)pixels, WideRegister{});
}

inline WideLanes widenHigh(PixelVector pixels)
{
    return (WideLanes)MM2D_WIDE(unpackhi_epi8)((WideRegister)pixels, WideRegister{});
}

#if defined(__AVX512BW__) // GCC 12 warns of what its own header has for this
inline PixelVector twiceLow(PixelVector lanes)
{
    return __builtin_shufflevector(lanes, lanes, 0, 0, 1, 1, 4, 4, 5, 5, 8, 8, 9, 9, 12, 12, 13,
                                   13);
}

inline PixelVector twiceHigh(PixelVector lanes)
{
    return __builtin_shufflevector(lanes, lanes, 2, 2, 3, 3, 6, 6, 7, 7, 10, 10, 11, 11, 14, 14, 15,
                                   15);
}
#else
inline PixelVector twiceLow(PixelVector lanes)
{
    return (PixelVector)_mm256_unpacklo_epi32((__m256i)lanes, (__m256i)lanes);
}

inline PixelVector twiceHigh(PixelVector lanes)
{
    return (PixelVector)_mm256_unpackhi_epi32((__m256i)lanes, (__m256i)lanes);
}
#endif

inline WideLanes alphasOf(WideLanes channels)
{
    return (WideLanes)MM2D_WIDE(shufflehi_epi16)(
        MM2D_WIDE(shufflelo_epi16)((WideRegister)channels, 0xFF), 0xFF);
}

// The alpha of each pixel in both halves of its lane.
inline PixelVector alphasInBothHalves(PixelVector pixels)
{
    const PixelVector alphas = 0x80038003u + (kPlaces & 3) * 0x00040004u;
    return (PixelVector)MM2D_WIDE(shuffle_epi8)((WideRegister)pixels, (WideRegister)alphas);
}

// The signed products by 2^15, rounded.
inline WideLanes mulRounded(WideLanes a, WideLanes b)
{
    return (WideLanes)MM2D_WIDE(mulhrs_epi16)((WideRegister)a, (WideRegister)b);
}

inline WideLanes mulHigh(WideLanes a, WideLanes b)
{
    return (WideLanes)MM2D_WIDE(mulhi_epu16)((WideRegister)a, (WideRegister)b);
}

inline PixelVector lesserBytes(PixelVector a, PixelVector b)
{
    return (PixelVector)MM2D_WIDE(min_epu8)((WideRegister)a, (WideRegister)b);
}

inline PixelVector narrowHighBytes(WideLanes low, WideLanes high)
{
    return (PixelVector)MM2D_WIDE(packus_epi16)((WideRegister)(low >> 8),
                                                (WideRegister)(high >> 8));
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
