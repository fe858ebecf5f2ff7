// SPDX-License-Identifier: MIT
// Four pixels at a time, in the compiler's vector types. Internal.
//
// One source for every CPU: the compiler turns these into SSE2, NEON or plain instructions. Each
// operation has a scalar counterpart in Blending.h or beside its use, with the same results.
#pragma once

#include "graphics2d/Level.h"
#include "math/Fixed.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "lanes are taken apart by byte order");

typedef uint8_t U8x16 __attribute__((vector_size(16)));
typedef uint16_t U16x8 __attribute__((vector_size(16)));
typedef int16_t I16x8 __attribute__((vector_size(16)));
typedef uint32_t U32x4 __attribute__((vector_size(16)));
typedef int32_t I32x4 __attribute__((vector_size(16)));
typedef uint64_t U64x2 __attribute__((vector_size(16)));

inline U32x4 load4(const uint32_t* from)
{
    U32x4 lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

// Two pixels from each of two places.
inline U32x4 load2And2(const uint32_t* first, const uint32_t* second)
{
    U64x2 pairs;
    uint64_t pair;
    std::memcpy(&pair, first, sizeof pair);
    pairs[0] = pair;
    std::memcpy(&pair, second, sizeof pair);
    pairs[1] = pair;
    return (U32x4)pairs;
}

inline void store4(uint32_t* to, U32x4 lanes)
{
    std::memcpy(to, &lanes, sizeof lanes);
}

// The first few lanes.
inline void storeFew(uint32_t* to, U32x4 lanes, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        to[i] = lanes[i];
}

inline U32x4 all4(uint32_t v)
{
    return U32x4{v, v, v, v};
}

inline U16x8 all8(uint32_t v)
{
    return (U16x8)all4((v & 0xFFFFu) * 0x00010001u);
}

// The bytes of the two lower or two upper pixels as 16-bit lanes.
inline U16x8 widenLow(U32x4 pixels)
{
    return (U16x8)__builtin_shufflevector((U8x16)pixels, U8x16{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20,
                                          5, 21, 6, 22, 7, 23);
}

inline U16x8 widenHigh(U32x4 pixels)
{
    return (U16x8)__builtin_shufflevector((U8x16)pixels, U8x16{}, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                          28, 13, 29, 14, 30, 15, 31);
}

// The bytes of two pixels of each operand in turn.
inline U32x4 zipLowBytes(U32x4 a, U32x4 b)
{
    return (U32x4)__builtin_shufflevector((U8x16)a, (U8x16)b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5,
                                          21, 6, 22, 7, 23);
}

inline U32x4 zipHighBytes(U32x4 a, U32x4 b)
{
    return (U32x4)__builtin_shufflevector((U8x16)a, (U8x16)b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28,
                                          13, 29, 14, 30, 15, 31);
}

// The lower or upper four lanes of each operand in turn.
inline U32x4 zipLow(U16x8 a, U16x8 b)
{
    return (U32x4)__builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
}

inline U32x4 zipHigh(U16x8 a, U16x8 b)
{
    return (U32x4)__builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}

// The upper halves of the products.
inline U16x8 mulHigh(U16x8 a, U16x8 b)
{
#if defined(__SSE2__)
    return (U16x8)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
#else
    // In whole words rather than a loop over the lanes: where there are no vector registers, GCC 12
    // packs such a loop into words and gets the upper halves wrong.
    const U32x4 even = (((U32x4)a & 0xFFFF) * ((U32x4)b & 0xFFFF)) >> 16;
    const U32x4 odd = (((U32x4)a >> 16) * ((U32x4)b >> 16)) & 0xFFFF0000u;
    return (U16x8)(even | odd);
#endif
}

// a[0] * b[0] + a[1] * b[1] and so on; all below 2^15.
inline U32x4 multiplyAddPairs(U16x8 a, U16x8 b)
{
#if defined(__SSE2__)
    return (U32x4)_mm_madd_epi16((__m128i)a, (__m128i)b);
#else
    const U32x4 even = ((U32x4)a & 0xFFFF) * ((U32x4)b & 0xFFFF);
    return even + ((U32x4)a >> 16) * ((U32x4)b >> 16);
#endif
}

// Bytes times bytes by 255, rounded.
inline U16x8 productBy255(U16x8 a, U16x8 b)
{
    const U16x8 product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

// The channels of two pixels multiplied with their alpha, which stays.
inline U16x8 premultiplied(U16x8 channels)
{
    constexpr U16x8 kWhole = {0, 0, 0, 255, 0, 0, 0, 255};
    const U16x8 alphas = __builtin_shufflevector(channels, channels, 3, 3, 3, 3, 7, 7, 7, 7);
    return productBy255(channels, alphas | kWhole);
}

// Four pixels from the high bytes of sixteen 16-bit lanes.
inline U32x4 narrowHighBytes(U16x8 low, U16x8 high)
{
#if defined(__SSE2__) // compilers shuffle this in more steps
    return (U32x4)_mm_packus_epi16((__m128i)(low >> 8), (__m128i)(high >> 8));
#else
    return (U32x4)__builtin_shufflevector((U8x16)low, (U8x16)high, 1, 3, 5, 7, 9, 11, 13, 15, 17,
                                          19, 21, 23, 25, 27, 29, 31);
#endif
}

// Four opaque pixels from bits 16 to 23 of the lanes of each of four vectors of channels: blue,
// green, red and one that is not used.
inline U32x4 packChannels(U32x4 a, U32x4 b, U32x4 c, U32x4 d)
{
#if defined(__SSE2__)
    const __m128i low = _mm_packs_epi32((__m128i)(a << 8 >> 24), (__m128i)(b << 8 >> 24));
    const __m128i high = _mm_packs_epi32((__m128i)(c << 8 >> 24), (__m128i)(d << 8 >> 24));
    const U32x4 pixels = (U32x4)_mm_packus_epi16(low, high);
#else
    const U8x16 low = __builtin_shufflevector((U8x16)a, (U8x16)b, 2, 6, 10, 14, 18, 22, 26, 30, 2,
                                              6, 10, 14, 18, 22, 26, 30);
    const U8x16 high = __builtin_shufflevector((U8x16)c, (U8x16)d, 2, 6, 10, 14, 18, 22, 26, 30, 2,
                                               6, 10, 14, 18, 22, 26, 30);
    const U32x4 pixels = (U32x4)__builtin_shufflevector((U32x4)low, (U32x4)high, 0, 1, 4, 5);
#endif
    return pixels | 0xFF000000u;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
