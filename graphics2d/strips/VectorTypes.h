// SPDX-License-Identifier: MIT
// The compiler's vector types, and how they are loaded and stored at any width. Internal.
#pragma once

#include "graphics2d/Level.h"
#include "math/Fixed.h"

#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
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

// As many pixels as the level's registers hold, and not more than four of them, for what is left.
#if defined(__AVX512BW__)
typedef uint16_t U16x32 __attribute__((vector_size(64)));
typedef uint32_t U32x16 __attribute__((vector_size(64)));
using PixelVector = U32x16;
using FewPixels = U32x4;
#elif defined(__AVX2__)
typedef uint16_t U16x16 __attribute__((vector_size(32)));
typedef uint32_t U32x8 __attribute__((vector_size(32)));
using PixelVector = U32x8;
using FewPixels = U32x4;
#elif defined(__SSE2__) || defined(__ARM_NEON)
using PixelVector = U32x4;
using FewPixels = U32x4;
#else
using PixelVector = uint32_t;
using FewPixels = uint32_t;
#endif

// A pixel's place in its vector.
#if defined(__AVX512BW__)
constexpr PixelVector kPlaces = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
#elif defined(__AVX2__)
constexpr PixelVector kPlaces = {0, 1, 2, 3, 4, 5, 6, 7};
#elif defined(__SSE2__) || defined(__ARM_NEON)
constexpr PixelVector kPlaces = {0, 1, 2, 3};
#else
constexpr PixelVector kPlaces = 0;
#endif
constexpr int32_t kLanes = sizeof(PixelVector) / sizeof(uint32_t);
constexpr int32_t kFewLanes = sizeof(FewPixels) / sizeof(uint32_t);

template <class Lanes>
inline Lanes load(const uint32_t* from)
{
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

template <class Lanes>
inline void store(uint32_t* to, Lanes lanes)
{
    std::memcpy(to, &lanes, sizeof lanes);
}

// The same in all lanes.
template <class Lanes>
inline Lanes all(uint32_t v)
{
    return Lanes{} + v;
}

// Whether all bits are 0.
template <class Lanes>
inline bool isZero(Lanes lanes)
{
    if constexpr (sizeof(Lanes) < sizeof(uint64_t)) {
        return lanes == 0;
#if defined(__AVX512BW__)
    } else if constexpr (sizeof(Lanes) == sizeof(U32x16)) {
        return _mm512_test_epi32_mask((__m512i)lanes, (__m512i)lanes) == 0;
#elif defined(__AVX2__)
    } else if constexpr (sizeof(Lanes) == sizeof(U32x8)) {
        return _mm256_testz_si256((__m256i)lanes, (__m256i)lanes) != 0;
#endif
    } else {
        uint64_t words[sizeof lanes / sizeof(uint64_t)];
        std::memcpy(words, &lanes, sizeof lanes);
        uint64_t bits = 0;
        for (const uint64_t word : words)
            bits |= word;
        return bits == 0;
    }
}

// The first lanes of a longer vector.
template <class Lanes, class Longer>
inline Lanes firstOf(Longer lanes)
{
    Lanes first;
    std::memcpy(&first, &lanes, sizeof first);
    return first;
}

// The first few lanes.
template <class Lanes>
inline void storeFew(uint32_t* to, Lanes lanes, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        to[i] = lanes[i];
}

#if defined(__AVX512BW__)
inline void storeFew(uint32_t* to, U32x16 lanes, int32_t count)
{
    _mm512_mask_storeu_epi32(to, static_cast<__mmask16>((1u << count) - 1), (__m512i)lanes);
}
#endif

inline void storeFew(uint32_t* to, uint32_t lane, int32_t count)
{
    if (count > 0) *to = lane;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
