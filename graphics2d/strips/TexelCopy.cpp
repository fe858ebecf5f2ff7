// SPDX-License-Identifier: MIT
#include "graphics2d/strips/TexelCopy.h"

#include "graphics2d/strips/Blending.h"
#include "graphics2d/strips/Span.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

inline void copyRow(const Pixel* texels, Pixel* out, int32_t count, bool makeOpaque)
{
    // The C library's copy takes longer for the rows of images with AVX2, and more instructions on
    // 32-bit ARM with vector registers.
#if !defined(__AVX2__) && (!defined(__ARM_NEON) || defined(__aarch64__))
    if (!makeOpaque) {
        std::memcpy(out, texels, static_cast<size_t>(count) * sizeof(Pixel));
        return;
    }
#endif
    const Pixel alphaBits = makeOpaque ? kOpaque : 0;
#if defined(__ARM_NEON)
    for (; count >= 16; count -= 16) {
        U32x4 fours[4];
#pragma GCC unroll 4
        for (U32x4& four : fours) {
            four = load4(texels) | alphaBits;
            texels = behindFour(texels);
        }
#pragma GCC unroll 4
        for (const U32x4 four : fours)
            out = storedNext(out, four);
    }
#endif
    int32_t i = 0;
#if defined(__AVX2__)
    constexpr int32_t kBlock = 4 * kLanes;
    if (count >= kBlock) { // loads across the lines of the cache take longer
        store(out, load<PixelVector>(texels) | alphaBits);
        i = static_cast<int32_t>(-reinterpret_cast<uintptr_t>(texels) / sizeof(Pixel) % kLanes);
    }
    for (; i + kBlock <= count; i += kBlock)
#pragma GCC unroll 4
        for (int32_t k = i; k < i + kBlock; k += kLanes)
            store(out + k, load<PixelVector>(texels + k) | alphaBits);
#endif
    for (; i + kLanes <= count; i += kLanes)
        store(out + i, load<PixelVector>(texels + i) | alphaBits);
    if (i != count && count > kLanes) { // what is left, with some of those before it once more
        i = count - kLanes;
        store(out + i, load<PixelVector>(texels + i) | alphaBits);
        return;
    }
    for (; i < count; ++i)
        out[i] = texels[i] | alphaBits;
}

} // namespace

void copyTexels(const Pixel* texels, Pixel* out, int32_t count, bool makeOpaque, TexelRows rows)
{
    for (;;) {
        copyRow(texels, out, count, makeOpaque);
        if (--rows.count == 0) return;
        texels += rows.width;
        out = pixelBelow(out, rows.outBytes);
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
