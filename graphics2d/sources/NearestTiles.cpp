// SPDX-License-Identifier: MIT
// Rows of tiles without smoothing. Those of upright tiles fall into runs inside the image or its
// mirror image, in which nothing is asked for a single pixel.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/PixelLanes.h"

#include <algorithm>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int64_t kTexel = int64_t{1} << kTexelBits;

// Pixels in one row of texels: the coordinate of the first, and from one to the next.
struct Run {
    const Pixel* texels;
    int32_t size; // of the row
    int64_t position;
    int64_t step;
    int32_t count;

    Pixel at(int32_t i) const { return texels[(position + i * step) >> kTexelBits]; }
};

#if defined(__x86_64__)
// Eight pixels at a time, which lie within eight texels of at least so many; returns how many.
[[gnu::target("avx2")]] int32_t sampleEights(const Run& run, Pixel alphaBits, Pixel* pixels)
{
    const __m256i alpha = _mm256_set1_epi32(static_cast<int32_t>(alphaBits));
    const auto step = static_cast<int32_t>(run.step);
    const __m256i ways =
        _mm256_mullo_epi32(_mm256_set1_epi32(step), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    const int64_t back = std::min<int64_t>(7 * run.step, 0); // to the leftmost
    int32_t i = 0;
    for (int64_t at = run.position; i + 8 <= run.count; i += 8, at += 8 * run.step) {
        const int64_t first = std::min<int64_t>((at + back) >> kTexelBits, run.size - 8);
        const __m256i from = _mm256_set1_epi32(static_cast<int32_t>(at - (first << kTexelBits)));
        const __m256i places = _mm256_srli_epi32(_mm256_add_epi32(from, ways), kTexelBits);
        const __m256i eight =
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(run.texels + first));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels + i),
                            _mm256_or_si256(_mm256_permutevar8x32_epi32(eight, places), alpha));
    }
    return i;
}

// At least eight pixels that are texels. The last eight may be copied in part twice.
[[gnu::target("avx2")]] void copyTexelsWide(const Pixel* texels, Pixel alphaBits, Pixel* pixels,
                                            int32_t count)
{
    const __m256i alpha = _mm256_set1_epi32(static_cast<int32_t>(alphaBits));
    const auto copyFrom = [=](int32_t i) __attribute__((target("avx2")))
    {
        const __m256i eight = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(texels + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(pixels + i), _mm256_or_si256(eight, alpha));
    };
    for (int32_t i = 0; i < count - 8; i += 8)
        copyFrom(i);
    copyFrom(count - 8);
}
#endif

void copyTexels(const Pixel* texels, Pixel alphaBits, Pixel* pixels, int32_t count)
{
#if defined(__x86_64__)
    if (count >= 8 && __builtin_cpu_supports("avx2"))
        return copyTexelsWide(texels, alphaBits, pixels, count);
#endif
    int32_t i = 0;
    for (; i + 4 <= count; i += 4)
        store4(pixels + i, load4(texels + i) | alphaBits);
    for (; i < count; ++i)
        pixels[i] = texels[i] | alphaBits;
}

// One texel per pixel, of an image that is not mirrored.
void copyRow(const Pixel* texels, const TileWalk& u, Pixel alphaBits, Pixel* pixels, int32_t count)
{
    int32_t texel = u.texel();
    for (int32_t length; count > 0; pixels += length, count -= length, texel = 0) {
        length = std::min(u.size() - texel, count);
        copyTexels(texels + texel, alphaBits, pixels, length);
    }
}

void sampleRun(const Run& run, Pixel alphaBits, Pixel* pixels)
{
    int32_t i = 0;
#if defined(__x86_64__)
    if (-kTexel <= run.step && run.step <= kTexel && run.size >= 8 &&
        __builtin_cpu_supports("avx2"))
        i = sampleEights(run, alphaBits, pixels);
#endif
    for (; i + 4 <= run.count; i += 4) {
        const U32x4 four = {run.at(i), run.at(i + 1), run.at(i + 2), run.at(i + 3)};
        store4(pixels + i, four | alphaBits);
    }
    for (; i < run.count; ++i)
        pixels[i] = run.at(i) | alphaBits;
}

// One row of texels, from run to run.
void sampleRow(const Pixel* texels, TileWalk u, Pixel alphaBits, Pixel* pixels, int32_t count)
{
    for (int32_t length; count > 0; pixels += length, count -= length) {
        length = u.lengthOfRun(count);
        const int64_t step = u.isInMirror() ? -u.step() : u.step();
        sampleRun({texels, u.size(), u.positionInImage(), step, length}, alphaBits, pixels);
        u.moveBy(length * u.step());
    }
}

void sampleAcross(const MMTileSource& source, TileWalk u, TileWalk v, Pixel* pixels, int32_t count)
{
    const Pixel* const first = source.pixels;
    const auto length = static_cast<ptrdiff_t>(source.rowLength);
    const Pixel alphaBits = source.alphaBits;
    const bool isMirrored = u.isMirrored() || v.isMirrored();
    for (int32_t i = 0; i < count;) {
        if (i + 4 > count || isMirrored || !u.staysWithin(4) || !v.staysWithin(4)) {
            pixels[i++] = first[length * v.inImage(v.texel()) + u.inImage(u.texel())] | alphaBits;
            u.advance();
            v.advance();
            continue;
        }
        const auto texelAt = [&](int64_t k) {
            const int64_t y = (v.position() + k * v.step()) >> kTexelBits;
            const int64_t x = (u.position() + k * u.step()) >> kTexelBits;
            return first[length * static_cast<ptrdiff_t>(y) + static_cast<ptrdiff_t>(x)];
        };
        const U32x4 four = {texelAt(0), texelAt(1), texelAt(2), texelAt(3)};
        store4(pixels + i, four | alphaBits);
        u.skip(4);
        v.skip(4);
        i += 4;
    }
}

} // namespace

void writeNearestTiles(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMTileSource*>(state);
    const TileWalk u(source.across, row, column);
    const TileWalk v(source.down, row, column);
    if (!v.isFixed()) return sampleAcross(source, u, v, pixels, count);
    const Pixel* const texels = tileRow(source, v.inImage(v.texel()));
    if (u.step() == kTexel && !u.isMirrored())
        return copyRow(texels, u, source.alphaBits, pixels, count);
    sampleRow(texels, u, source.alphaBits, pixels, count);
}

} // namespace Graphics2D
} // namespace KAVO
