// SPDX-License-Identifier: MIT
// Operations on four pixels, or on eight 16-bit numbers. Internal.
//
// One source for every CPU: the compiler turns these into SSE2, NEON or plain instructions.
#pragma once

#include "graphics2d/strips/VectorTypes.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

inline U32x4 load4(const uint32_t* from)
{
    return load<U32x4>(from);
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

// The same with the first of both places in the lower lanes.
inline U32x4 loadColumns(const uint32_t* first, const uint32_t* second)
{
#if defined(__ARM_NEON) && !defined(__aarch64__)
    const uint32x2x2_t columns = vtrn_u32(vld1_u32(first), vld1_u32(second));
    return (U32x4)vcombine_u32(columns.val[0], columns.val[1]);
#else
    const U32x4 rows = load2And2(first, second);
    return __builtin_shufflevector(rows, rows, 0, 2, 1, 3);
#endif
}

inline void store4(uint32_t* to, U32x4 lanes)
{
    std::memcpy(to, &lanes, sizeof lanes);
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
#if defined(__ARM_NEON)
    return (U16x8)vmovl_u8(vget_low_u8((uint8x16_t)pixels));
#else
    return (U16x8)__builtin_shufflevector((U8x16)pixels, U8x16{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20,
                                          5, 21, 6, 22, 7, 23);
#endif
}

inline U16x8 widenHigh(U32x4 pixels)
{
#if defined(__ARM_NEON)
    return (U16x8)vmovl_u8(vget_high_u8((uint8x16_t)pixels));
#else
    return (U16x8)__builtin_shufflevector((U8x16)pixels, U8x16{}, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                          28, 13, 29, 14, 30, 15, 31);
#endif
}

// The lower half of each lane in its upper half as well.
inline U32x4 inBothHalves(U32x4 lanes)
{
#if defined(__ARM_NEON)
    return (U32x4)vsliq_n_u32((uint32x4_t)lanes, (uint32x4_t)lanes, 16);
#else
    return lanes | lanes << 16;
#endif
}

// The upper halves of all lanes.
inline U16x8 upperHalvesOf(U32x4 a, U32x4 b)
{
#if defined(__SSE2__) // compilers shuffle this in more steps
    return (U16x8)_mm_packs_epi32((__m128i)((I32x4)a >> 16), (__m128i)((I32x4)b >> 16));
#else
    return __builtin_shufflevector((U16x8)a, (U16x8)b, 1, 3, 5, 7, 9, 11, 13, 15);
#endif
}

// The alpha of each pixel in both halves of its lane.
inline U32x4 alphasInBothHalves(U32x4 pixels)
{
    return inBothHalves(pixels >> 24);
}

// Each of the two lower or two upper lanes twice.
inline U32x4 twiceLow(U32x4 lanes)
{
    return __builtin_shufflevector(lanes, lanes, 0, 0, 1, 1);
}

inline U32x4 twiceHigh(U32x4 lanes)
{
    return __builtin_shufflevector(lanes, lanes, 2, 2, 3, 3);
}

// The lower or upper halves of both. GCC 12 looks them up in tables on 32-bit ARM unless it is
// told.
inline U16x8 lowerHalves(U16x8 a, U16x8 b)
{
#if defined(__ARM_NEON) && !defined(__aarch64__)
    return (U16x8)vcombine_u16(vget_low_u16((uint16x8_t)a), vget_low_u16((uint16x8_t)b));
#else
    return __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
#endif
}

inline U16x8 upperHalves(U16x8 a, U16x8 b)
{
#if defined(__ARM_NEON) && !defined(__aarch64__)
    return (U16x8)vcombine_u16(vget_high_u16((uint16x8_t)a), vget_high_u16((uint16x8_t)b));
#else
    return __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
#endif
}

// The alpha of each of two pixels in all its lanes.
inline U16x8 alphasOf(U16x8 channels)
{
    return __builtin_shufflevector(channels, channels, 3, 3, 3, 3, 7, 7, 7, 7);
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

#if defined(__ARM_NEON)
// The products of the lower or upper four lanes.
inline uint32x4_t productsLow(U16x8 a, U16x8 b)
{
    return vmull_u16(vget_low_u16((uint16x8_t)a), vget_low_u16((uint16x8_t)b));
}

inline uint32x4_t productsHigh(U16x8 a, U16x8 b)
{
#if defined(__aarch64__)
    return vmull_high_u16((uint16x8_t)a, (uint16x8_t)b);
#else
    return vmull_u16(vget_high_u16((uint16x8_t)a), vget_high_u16((uint16x8_t)b));
#endif
}
#endif

// The upper halves of the products.
inline U16x8 mulHigh(U16x8 a, U16x8 b)
{
#if defined(__SSE2__)
    return (U16x8)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
#elif defined(__ARM_NEON)
    return upperHalvesOf((U32x4)productsLow(a, b), (U32x4)productsHigh(a, b));
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
#elif defined(__aarch64__)
    return (U32x4)vpaddq_u32(productsLow(a, b), productsHigh(a, b));
#elif defined(__ARM_NEON)
    const uint32x4_t low = productsLow(a, b), high = productsHigh(a, b);
    return (U32x4)vcombine_u32(vpadd_u32(vget_low_u32(low), vget_high_u32(low)),
                               vpadd_u32(vget_low_u32(high), vget_high_u32(high)));
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
    return productBy255(channels, alphasOf(channels) | kWhole);
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

// The lesser of each byte.
inline U32x4 lesserBytes(U32x4 a, U32x4 b)
{
    return (U32x4)((U8x16)a < (U8x16)b ? (U8x16)a : (U8x16)b);
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
    const U16x8 low = upperHalvesOf(a, b);
    const U16x8 high = upperHalvesOf(c, d);
    const U32x4 pixels = (U32x4)__builtin_shufflevector((U8x16)low, (U8x16)high, 0, 2, 4, 6, 8, 10,
                                                        12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
#endif
    return pixels | 0xFF000000u;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
