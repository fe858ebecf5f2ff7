// SPDX-License-Identifier: MIT
// Rows of upright tiles without smoothing. They fall into runs inside the image or its mirror
// image, in which nothing is asked for a single pixel.
#include "graphics2d/sources/TileRows.h"
#include "graphics2d/strips/PixelLanes.h"
#include "graphics2d/strips/TexelCopy.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

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

#if defined(__AVX2__)
// Eight pixels at a time, which lie within eight texels of at least so many; returns how many.
int32_t sampleEights(const Run& run, Pixel alphaBits, Pixel* pixels)
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
#endif

// One texel per pixel, of an image that is not mirrored.
void copyRow(const Pixel* texels, const TileWalk& u, Pixel alphaBits, Pixel* pixels, int32_t count)
{
    int32_t texel = u.texel();
    for (int32_t length; count > 0; pixels += length, count -= length, texel = 0) {
        length = std::min(u.size() - texel, count);
        copyTexels(texels + texel, pixels, length, alphaBits != 0);
    }
}

void sampleRun(const Run& run, Pixel alphaBits, Pixel* pixels)
{
    int32_t i = 0;
#if defined(__AVX2__)
    if (-kTexel <= run.step && run.step <= kTexel && run.size >= 8)
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

} // namespace

// Aligned, as a fifth of its time depends on where in the lines of the cache its loop lies.
[[gnu::aligned(64)]] void writeUprightTiles(const void* state, int32_t row, int32_t column,
                                            int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMTileSource*>(state);
    const TileWalk u(source.across, row, column);
    const TileWalk v(source.down, row, column);
    const Pixel* const texels = tileRow(source, v.inImage(v.texel()));
    if (u.step() == kTexel && !u.isMirrored())
        return copyRow(texels, u, source.alphaBits, pixels, count);
    sampleRow(texels, u, source.alphaBits, pixels, count);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
