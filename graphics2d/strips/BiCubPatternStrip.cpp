// SPDX-License-Identifier: MIT
// Strip fillers of the image pattern with bicubic sampling.
//
// Each pixel is the weighted sum of 4 by 4 texels. The sample point is that of the bilinear filter.
// Left and top of the image its first column and row repeat, but right and bottom of it the last
// but one by the classic rules.
//
// The opaque filler ignores the texels' alpha and writes 255; the translucent one sums it up like a
// colour for the weight, and moves the target's alpha toward 255.
#include "graphics2d/strips/CubicWeights.h"
#include "graphics2d/strips/PatternSampling.h"
#include "graphics2d/strips/StripFillers.h"
#include "math/FixedInline.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

constexpr int32_t kBatch = kWeightBatch;
constexpr int32_t kPrepared = 64; // pixels that columns are prepared for at once

// Premultiplies the channels of two texels in turn.
inline U16x8 premultipliedPairs(U16x8 channels)
{
    constexpr U16x8 kWhole = {0, 0, 0, 0, 0, 0, 255, 255};
    const U16x8 alphas = __builtin_shufflevector(channels, channels, 6, 7, 6, 7, 6, 7, 6, 7);
    return productBy255(channels, alphas | kWhole);
}

// A call, for what few images need, to keep the code for all others short.
[[gnu::noinline]] void premultiplyColumns(Column* columns)
{
    for (int32_t i = 0; i < 4; ++i)
        columns[i] = {premultipliedPairs(columns[i].upper), premultipliedPairs(columns[i].lower)};
}

inline void prepareColumns(const Pixel* texels, int32_t width, bool premultiply, Column* columns)
{
    loadColumns(texels, width, columns);
    if (premultiply) premultiplyColumns(columns);
}

// The texels of an axis that are read instead of the index and its neighbours.
void tapsOf(const TexelAxis& axis, bool isRefined, int64_t (&taps)[4])
{
    if (isRefined) {
        for (int32_t i = 0; i < 4; ++i)
            taps[i] = axis.tap(i - 1);
        return;
    }
    const int64_t position = axis.position();
    const int64_t lastButOne = axis.size() - 2;
    const int64_t texel = axis.texel();
    const int64_t offset = axis.indexOffset();
    for (int32_t i = 0; i < 4; ++i) {
        int64_t tap = texel + i - 1;
        if (position < kFixedOne * (1 - i)) tap = 0;
        if (position > (lastButOne + 3 - i) * kFixedOne) tap = lastButOne;
        taps[i] = tap + offset;
    }
}

bool premultiplies(const PatternWalk& walk)
{
    return walk.alpha == TexelAlpha::kPremultiplied;
}

void gatherColumns(const PatternWalk& walk, Column* columns)
{
    int64_t x[4];
    int64_t y[4];
    tapsOf(walk.u, walk.isRefined, x);
    tapsOf(walk.v, walk.isRefined, y);
    Pixel texels[16];
    for (int32_t i = 0; i < 16; ++i)
        texels[i] = walk.texelAt(x[i & 3], y[i >> 2]);
    prepareColumns(texels, 4, premultiplies(walk), columns);
}

// The fractions of the next eight pixels.
U16x8 fractionsOf(const TexelAxis& axis)
{
    return all8(axis.fraction()) + U16x8{0, 1, 2, 3, 4, 5, 6, 7} * all8(fixFraction(axis.step()));
}

// Of the next eight pixels. Calls, to have their code once.
[[gnu::noinline]] void weighColumns(const TexelAxis& u, PixelWeights& weights)
{
    CubicWeights::alongRow(fractionsOf(u)).byPixel(weights);
}

[[gnu::noinline]] void weighRows(const TexelAxis& v, PixelWeights& weights)
{
    CubicWeights::acrossRows(fractionsOf(v)).byPixel(weights);
}

// nextColumns() gives the four columns of one pixel after the other.
template <class NextColumns>
inline void sumPixels(PatternWalk walk, Pixel* colours, uint32_t* alphas, int32_t count,
                      NextColumns nextColumns)
{
    PixelWeights x;
    PixelWeights y;
    weighRows(walk.v, y);
    for (int32_t i = 0; i < count; i += kBatch) {
        const int32_t length = count - i < kBatch ? count - i : kBatch;
        weighColumns(walk.u, x);
        if (i > 0 && walk.v.step() != 0) weighRows(walk.v, y);
        Channels sums[kBatch] = {};
        for (int32_t k = 0; k < length; ++k)
            sums[k] = weightedSum(nextColumns(), x[k], y[k]);
        packOpaque(sums, colours + i, length);
        if (alphas != nullptr)
            for (int32_t k = 0; k < length; ++k)
                alphas[i + k] = sums[k][kAlpha];
        walk.advance(length);
    }
}

// Texels from four rows, and no more columns than pixels: each is prepared once.
void magnifyRows(PatternWalk walk, Pixel* colours, uint32_t* alphas, int32_t count)
{
    Column columns[kPrepared + 3];
    const bool premultiply = premultiplies(walk);
    while (count > 0) {
        const int32_t length = count < kPrepared ? count : kPrepared;
        const TexelRange range(walk.u, length);
        const Pixel* texels = walk.row(walk.v.indexPosition()) - walk.width() - 1 + range.first;
        for (int32_t i = 0; i < range.count - 1; i += 4)
            prepareColumns(texels + i, walk.width(), premultiply, columns + i);
        const int32_t last = range.count - 1;
        prepareColumns(texels + last, walk.width(), premultiply, columns + last);
        Fixed u = range.start;
        const Fixed uStep = walk.u.step();
        sumPixels(walk, colours, alphas, length, [&] {
            const Column* at = columns + fixFloor(u);
            u = wrapAdd(u, uStep);
            return at;
        });
        walk.advance(length);
        colours += length;
        if (alphas != nullptr) alphas += length;
        count -= length;
    }
}

void sampleBicubic(const PatternWalk& walk, bool inside, Pixel* colours, uint32_t* alphas,
                   int32_t count)
{
    if (inside && walk.v.step() == 0 && magnitudeOf(walk.u.step()) <= kFixedOne && count > kBatch)
        return magnifyRows(walk, colours, alphas, count);
    PatternWalk at = walk;
    const bool premultiply = premultiplies(walk);
    Column columns[4];
    Fixed u = walk.u.indexPosition();
    Fixed v = walk.v.indexPosition();
    sumPixels(walk, colours, alphas, count, [&]() -> const Column* {
        if (inside) {
            prepareColumns(walk.row(v) + fixFloor(u) - walk.width() - 1, walk.width(), premultiply,
                           columns);
            u = wrapAdd(u, walk.u.step());
            v = wrapAdd(v, walk.v.step());
        } else {
            gatherColumns(at, columns);
            at.advance(1);
        }
        return columns;
    });
}

// By the sum of alphas, rounded to nearest before the weight is raised.
void weighBySums(PaintPiece& piece, CoverageSequence& coverage, int32_t count)
{
    int32_t i = 0;
    if (coverage.isFlatAndWhole()) { // the product then fits 32 bits
        const uint32_t opacity = static_cast<uint32_t>(fixFloor(coverage.current()));
        for (; i < count; ++i) {
            const uint32_t weight = (((piece.weights[i] * opacity) >> 8) + 0x8000) >> 16;
            piece.weights[i] = weight + (weight >> 7);
        }
        coverage.advance(count);
    }
    for (; i < count; ++i) {
        const int32_t product =
            fixMulSHRInline(static_cast<Fixed>(piece.weights[i]), coverage.current(), 8);
        const int32_t weight = wrapAdd(product, 0x8000) >> 16;
        piece.weights[i] =
            static_cast<uint32_t>(product >= 0x007F8000 ? weight + 1 : weight) & 0xFFu;
        coverage.advance(1);
    }
}

void sampleRefinedBicubic(const PatternWalk& walk, bool inside, Pixel* colours, uint32_t*,
                          int32_t count)
{
    if (walk.alpha == TexelAlpha::kMadeWhole)
        return sampleBicubic(walk, inside, colours, nullptr, count);
    uint32_t alphas[kPieceLength];
    sampleBicubic(walk, inside, colours, alphas, count);
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t alpha = (alphas[i] + kChannelHalf) >> 16;
        colours[i] = (colours[i] & ~kOpaque) | alpha << 24;
    }
}

constexpr PatternFilter kBicubic = {
    1, 2, 2, sampleBicubic, weighBySums, sampleRefinedBicubic, -kFixedHalf, kAlwaysMixes};

} // namespace

void drawBicubicPattern(MMContext2D& context)
{
    drawPattern(context, kBicubic, false);
}

void drawTranslucentBicubicPattern(MMContext2D& context)
{
    drawPattern(context, kBicubic, true);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
