// SPDX-License-Identifier: MIT
// Strip fillers of the image pattern with bicubic sampling.
//
// Each pixel is the weighted sum of 4 by 4 texels with the weights of the uniform cubic B-spline:
// they are all positive and smooth, so that nothing overshoots, and even texels that pixels hit
// exactly are mixed with their neighbours. The sample point is that of the bilinear filter. Left
// and top of the image its first column and row repeat, but right and bottom of it the last but
// one by the classic rules.
//
// The opaque filler ignores the texels' alpha and writes 255; the translucent one sums it up like a
// colour for the weight, and moves the target's alpha toward 255.
//
// Weights are 16.16 and computed for eight pixels at a time. None reaches 1.0, so 16 bits hold
// them, and what lies above on the way is added where it is missing.
#include "graphics2d/strips/Channels.h"
#include "graphics2d/strips/PatternSampling.h"
#include "math/FixedInline.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint16_t kOneSixth = 0x2AAA;
constexpr uint16_t kTwoThirds = 0xAAAA;
constexpr uint16_t kFourThirds = 0x5555; // without its 1.0
constexpr int32_t kBatch = kFewPixels;   // pixels whose weights are computed together
constexpr int32_t kPrepared = 64;        // pixels that columns are prepared for at once

// fixMul of numbers below 1.0, the first of which loses its lowest bit.
inline U16x8 product(U16x8 a, U16x8 b)
{
    return mulHigh(a & 0xFFFE, b);
}

// The spline's outer piece, distance 1.0 + e from the tap, as a polynomial. Factors that would be
// negative are turned around: products round toward zero either way.
inline U16x8 outerWeight(U16x8 e)
{
    const U16x8 cubic = -(mulHigh(U16x8{} + kOneSixth, e) + kOneSixth); // 1.0 - ...
    const U16x8 quadratic = -(cubic + product(cubic, e));               // 2.0 - ...
    const U16x8 wholePart = e & (U16x8)((I16x8)quadratic >= 0);         // 1.0 and more
    return kFourThirds - (quadratic + product(quadratic, e) + wholePart);
}

// The same as the cube of what is left to the spline's end.
inline U16x8 cubeWeight(U16x8 rest)
{
    return mulHigh(U16x8{} + kOneSixth, product(product(rest, rest), rest));
}

// The inner piece, distance up to 1.0 from the tap.
inline U16x8 innerWeight(U16x8 distance)
{
    const U16x8 linear = -(distance >> 1); // 1.0 - ..., and 1.0 times a distance of 0 or 1 is 0
    return kTwoThirds - product(product(linear, distance), distance);
}

using PixelWeights = uint64_t[kBatch]; // of four taps, 16 bits each

// The weights of four taps for the fractions of eight pixels.
struct CubicWeights {
    U16x8 tap[4];

    // The axes compute their end weights in mirrored ways, which round differently. Where the
    // fraction is 0, the distance 1.0 to the next tap does not fit: the last terms make up for it.
    static CubicWeights alongRow(U16x8 f)
    {
        const U16x8 rest = -f;
        const U16x8 whole = (U16x8)(f == 0);
        return {{cubeWeight(rest) + (whole & kOneSixth), innerWeight(f),
                 innerWeight(rest) - (whole & 0x8000), outerWeight(rest) - (whole & 0x2AA6)}};
    }
    static CubicWeights acrossRows(U16x8 g)
    {
        const U16x8 rest = -g;
        return {{outerWeight(g), innerWeight(g), innerWeight(rest) - ((U16x8)(g == 0) & 0x8000),
                 cubeWeight(g)}};
    }

    // The four taps of each pixel side by side.
    void byPixel(PixelWeights& weights) const
    {
        const U32x4 low[2] = {zipLow(tap[0], tap[1]), zipLow(tap[2], tap[3])};
        const U32x4 high[2] = {zipHigh(tap[0], tap[1]), zipHigh(tap[2], tap[3])};
        const U32x4 pairs[4] = {__builtin_shufflevector(low[0], low[1], 0, 4, 1, 5),
                                __builtin_shufflevector(low[0], low[1], 2, 6, 3, 7),
                                __builtin_shufflevector(high[0], high[1], 0, 4, 1, 5),
                                __builtin_shufflevector(high[0], high[1], 2, 6, 3, 7)};
        std::memcpy(weights, pairs, sizeof pairs);
    }
};

// Four texels of a column: the channels of the upper two and of the lower two in turn.
struct Column {
    U16x8 upper;
    U16x8 lower;
};

// The columns of 4 by 4 texels, their first at the given address.
inline void loadColumns(const Pixel* texels, int32_t width, Column* columns)
{
    const U32x4 first = load4(texels);
    const U32x4 second = load4(texels + width);
    const U32x4 third = load4(texels + 2 * width);
    const U32x4 fourth = load4(texels + 3 * width);
    const U32x4 upperLeft = zipLowBytes(first, second);
    const U32x4 upperRight = zipHighBytes(first, second);
    const U32x4 lowerLeft = zipLowBytes(third, fourth);
    const U32x4 lowerRight = zipHighBytes(third, fourth);
    columns[0] = {widenLow(upperLeft), widenLow(lowerLeft)};
    columns[1] = {widenHigh(upperLeft), widenHigh(lowerLeft)};
    columns[2] = {widenLow(upperRight), widenLow(lowerRight)};
    columns[3] = {widenHigh(upperRight), widenHigh(lowerRight)};
}

// The 8.16 sums of the channels over four columns.
inline Channels weightedSum(const Column* columns, uint64_t x, uint64_t y)
{
    const U16x8 both = (U16x8)U64x2{x, y};
    const U16x8 xPairs = __builtin_shufflevector(both, both, 0, 0, 1, 1, 2, 2, 3, 3);
    const U16x8 yUpper = __builtin_shufflevector(both, both, 4, 5, 4, 5, 4, 5, 4, 5);
    const U16x8 yLower = __builtin_shufflevector(both, both, 6, 7, 6, 7, 6, 7, 6, 7);
    const U32x4 upper = (U32x4)product(xPairs, yUpper);
    const U32x4 lower = (U32x4)product(xPairs, yLower);
    // One pair of tap weights for all channels of a column.
    const auto column = [&](const Column& texels, U32x4 upperTaps, U32x4 lowerTaps) {
        return multiplyAddPairs(texels.upper, (U16x8)upperTaps) +
               multiplyAddPairs(texels.lower, (U16x8)lowerTaps);
    };
    return column(columns[0], __builtin_shufflevector(upper, upper, 0, 0, 0, 0),
                  __builtin_shufflevector(lower, lower, 0, 0, 0, 0)) +
           column(columns[1], __builtin_shufflevector(upper, upper, 1, 1, 1, 1),
                  __builtin_shufflevector(lower, lower, 1, 1, 1, 1)) +
           column(columns[2], __builtin_shufflevector(upper, upper, 2, 2, 2, 2),
                  __builtin_shufflevector(lower, lower, 2, 2, 2, 2)) +
           column(columns[3], __builtin_shufflevector(upper, upper, 3, 3, 3, 3),
                  __builtin_shufflevector(lower, lower, 3, 3, 3, 3));
}

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
    if (inside && walk.v.step() == 0 && magnitudeOf(walk.u.step()) <= kFixedOne &&
        count > kFewPixels)
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
    1, 2, sampleBicubic, weighBySums, sampleRefinedBicubic, -kFixedHalf, true};

} // namespace

void MMContext2D::drawBiCubPatternStrip()
{
    if (refined != 0) return drawRefinedPattern(*this, kBicubic, false);
    PatternWalk walk = PatternWalk::fromCorner(*this);
    drawPattern(*this, walk, kBicubic);
}

void MMContext2D::drawBiCubPatternTStrip()
{
    if (refined != 0) return drawRefinedPattern(*this, kBicubic, true);
    PatternWalk walk = PatternWalk::fromCorner(*this);
    drawTranslucentPattern(*this, walk, kBicubic);
}

} // namespace Graphics2D
} // namespace KAVO
