// SPDX-License-Identifier: MIT
// Several pixels at a time. Internal.
//
// Loops over many pixels work on PixelVector, which is what the level's registers hold: sixteen
// with AVX-512, eight with AVX2, four, or a single pixel where there are no vector registers. What
// they call is a template of it or has an overload for each; all have the same results.
#pragma once

#include "graphics2d/strips/FourPixels.h"

#if defined(__AVX2__)
#include "graphics2d/strips/WidePixels.h"
#endif

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// The lesser of each byte, of one pixel.
inline uint32_t lesserBytes(uint32_t a, uint32_t b)
{
    uint32_t lesser = 0;
    for (uint32_t mask = 0xFF; mask != 0; mask <<= 8)
        lesser |= (a & mask) < (b & mask) ? a & mask : b & mask;
    return lesser;
}

// Opaque pixels from bits 16 to 23 of the channels.
template <class Pixels>
inline Pixels opaquePixels(Pixels red, Pixels green, Pixels blue)
{
#if defined(__ARM_NEON)
    if constexpr (sizeof(Pixels) == sizeof(U32x4)) {
        const uint32x4_t redAndGreen = vsriq_n_u32((uint32x4_t)red, (uint32x4_t)(green << 8), 16);
        return (U32x4)vsriq_n_u32(redAndGreen, (uint32x4_t)(blue << 8), 24) | 0xFF000000u;
    }
#endif
    return 0xFF000000u | (red & 0x00FF0000u) | (green >> 8 & 0x0000FF00u) | (blue >> 16 & 0xFFu);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
