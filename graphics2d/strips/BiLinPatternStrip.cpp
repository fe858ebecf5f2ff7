// SPDX-License-Identifier: MIT
// Strip fillers of the image pattern with bilinear sampling.
//
// By the classic rules the sample point is the span's exact left end on the row's top edge, without
// the half pixel of the nearest filter, and a texel's colour lies at its whole coordinates: a 1:1
// image is copied. By the refined ones it is the pixel's centre, and the colour lies at the texel's
// centre. Four texels are interpolated first along the rows, then across, all channels alike. The
// weights are the top eight bits of the coordinates' fractions.
#include "graphics2d/strips/MagnifiedRows.h"
#include "graphics2d/strips/PatternSampling.h"
#include "graphics2d/strips/PixelMixing.h"
#include "graphics2d/strips/StripFillers.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

constexpr int32_t kPrepared = 64; // texels that are prepared at once

// What the interpolation along the upper and the lower row starts from: the left texels times 256
// and what a weight of 256 would move them by to the right ones.
struct RowStep {
    U16x8 from;
    U16x8 change;

    U16x8 mixed(U16x8 fraction) const { return (from + change * (fraction >> 8)) >> 8; }
};

// How colours are mixed by the classic rules.
struct ClassicMix {
    using Rule = ClassicBlend; // of each step

    static RowStep between(U16x8 left, U16x8 right)
    {
        return {left << 8, raisedDifference(left, right)};
    }
    template <class Texels>
    static Texels prepared(Texels texels)
    {
        return texels;
    }
    template <class Pixels>
    static Pixels finished(Pixels pixels)
    {
        return pixels;
    }
};

// By the refined ones: rounded to nearest each time.
struct RefinedMix {
    using Rule = RefinedBlend;

    bool premultiplies;
    Pixel alphaBits; // set in all pixels

    explicit RefinedMix(TexelAlpha alpha)
        : premultiplies(alpha == TexelAlpha::kPremultiplied),
          alphaBits(alpha == TexelAlpha::kMadeWhole ? kOpaque : 0)
    {
    }
    static RowStep between(U16x8 left, U16x8 right) { return {left << 8 | 128, right - left}; }
    template <class Texels>
    Texels prepared(Texels texels) const
    {
        return premultiplies ? premultiplied(texels) : texels;
    }
    template <class Pixels>
    Pixels finished(Pixels pixels) const
    {
        return pixels | alphaBits;
    }
};

// The step from the texel at an address to its right-hand neighbour, and from the one below.
template <class Mix>
inline RowStep stepAt(const Mix& mix, const Pixel* upper, int32_t width)
{
    const U32x4 columns = loadColumns(upper, upper + width);
    return Mix::between(mix.prepared(widenLow(columns)), mix.prepared(widenHigh(columns)));
}

// Two pixels between the upper and the lower row; the results are the high bytes.
template <class Mix>
inline U16x8 mixedRows(U16x8 first, U16x8 second, U16x8 weights)
{
    return Mix::Rule::move(lowerHalves(first, second), upperHalves(first, second), weights);
}

// The fractions of two pixels, the first in the lower lanes.
inline U16x8 fractionsOfTwo(const TexelAxis& axis)
{
    const uint32_t step = fixFraction(axis.step()) * 0x00010001u;
    return all8(axis.fraction()) + (U16x8)U32x4{0, 0, step, step};
}

// The weights across of two pixels after the other, stepped.
struct SteppedWeights {
    U16x8 v; // fractions of two pixels
    U16x8 step;

    explicit SteppedWeights(const TexelAxis& axis)
        : v(fractionsOfTwo(axis)), step(all8(fixFraction(axis.step())))
    {
    }
    U16x8 next()
    {
        const U16x8 weights = v >> 8;
        v += 2 * step;
        return weights;
    }
    void goBack(int32_t pixels) { v -= step * static_cast<uint16_t>(pixels); }
};

// Always the same.
struct SameWeights {
    U16x8 weights;

    U16x8 next() const { return weights; }
    void goBack(int32_t) const {}
};

// Interpolates count pixels, four at a time and at least four. texels.next() gives the RowStep of
// one after the other, across.next() the weights of two; goBack(pixels) returns to earlier ones.
template <class Mix, class Texels, class Weights>
inline void mixTexels(const Mix& mix, const TexelAxis& axis, Texels texels, Weights across,
                      Pixel* out, int32_t count)
{
    const U16x8 uStep = all8(fixFraction(axis.step()));
    U16x8 u = all8(axis.fraction());
    while (true) {
        const auto nextRows = [&] {
            const U16x8 rows = texels.next().mixed(u);
            u += uStep;
            return rows;
        };
        const auto nextTwo = [&] {
            const U16x8 first = nextRows();
            return mixedRows<Mix>(first, nextRows(), across.next());
        };
        const U16x8 firstTwo = nextTwo();
        const U16x8 lastTwo = nextTwo();
        store4(out, mix.finished(narrowHighBytes(firstTwo, lastTwo)));
        out += 4;
        count -= 4;
        if (count <= 0) return;
        if (count >= 4) continue;
        // Up to three are left: they are drawn with those before them, once more.
        const int32_t again = 4 - count;
        texels.goBack(again);
        u -= uStep * static_cast<uint16_t>(again);
        across.goBack(again);
        out -= again;
        count = 4;
    }
}

// Anywhere inside the image.
template <class Mix>
struct TexelsInside {
    const Mix& mix;
    const PatternWalk& walk;
    Fixed u;
    Fixed v;

    RowStep next()
    {
        const Pixel* texel = walk.row(v) + fixFloor(u);
        u = wrapAdd(u, walk.u.step());
        v = wrapAdd(v, walk.v.step());
        return stepAt(mix, texel, walk.width());
    }
    void goBack(int32_t pixels)
    {
        u = wrapSub(u, walk.u.step() * pixels);
        v = wrapSub(v, walk.v.step() * pixels);
    }
};

// From two rows that steps were prepared of.
struct PreparedTexels {
    const RowStep* steps;
    uint32_t u; // from the first step on
    uint32_t uStep;

    const RowStep& next()
    {
        const RowStep& step = steps[u >> 16];
        u += uStep;
        return step;
    }
    void goBack(int32_t pixels) { u -= uStep * static_cast<uint32_t>(pixels); }
};

// Texels from two rows, and no more of them than pixels: each is prepared once. At the image's ends
// the outermost ones repeat.
template <class Mix>
void magnifyRow(const Mix& mix, PatternWalk walk, Pixel* out, int32_t count)
{
    RowStep steps[kPrepared];
    const SameWeights across = {all8(walk.v.fraction() >> 8)};
    const int32_t row = fixFloor(walk.v.position());
    const int32_t below = row + 1 < walk.v.size() ? walk.width() : 0;
    while (count > 0) {
        // In pieces that leave no less than four pixels to the last.
        const int32_t length = count <= kPrepared ? count : kPrepared - 4;
        const TexelRange range(walk.u, length);
        const Pixel* upper = walk.row(walk.v.indexPosition()) + range.first;
        const Pixel* lower = upper + below;
        const int32_t last = walk.width() - 1 - range.first;
        U16x8 left = mix.prepared(widenLow(U32x4{upper[0], lower[0], 0, 0}));
        for (int32_t i = 0; i < range.count; ++i) {
            const int32_t next = i < last ? i + 1 : last;
            const U16x8 right = mix.prepared(widenLow(U32x4{upper[next], lower[next], 0, 0}));
            steps[i] = Mix::between(left, right);
            left = right;
        }
        const PreparedTexels texels = {steps, static_cast<uint32_t>(range.start),
                                       static_cast<uint32_t>(walk.u.step())};
        mixTexels(mix, walk.u, texels, across, out, length);
        walk.advance(length);
        out += length;
        count -= length;
    }
}

// The texels around a few pixels: those at the upper left, upper right, lower left and lower right.
using Corners = Pixel[4][kFewPixels];

// As the taps 0 and 1 find them.
[[gnu::noinline, gnu::cold]] void takeFourAnywhere(const PatternWalk& walk, Corners& corners,
                                                   int32_t i)
{
    for (int corner = 0; corner < 4; ++corner)
        corners[corner][i] = walk.texelAt(walk.u.tap(corner % 2), walk.v.tap(corner / 2));
}

// The taps 0 and 1 of an axis's next four pixels. False where an index is not the coordinate's
// texel, or one is far away.
inline bool findTaps(const TexelAxis& axis, U32x4 (&taps)[2])
{
    TexelAxis last = axis;
    last.advance(3);
    if (axis.position() != axis.distance() || last.position() != last.distance()) return false;
    const U32x4 moved = U32x4{0, 1, 2, 3} * static_cast<uint32_t>(axis.step());
    const auto texelsFrom = [=](Fixed position) {
        return (I32x4)(moved + static_cast<uint32_t>(position)) >> 16;
    };
    const I32x4 texels = texelsFrom(axis.position());
    if (axis.indexPosition() != axis.position() &&
        !isZero((U32x4)(texels ^ texelsFrom(axis.indexPosition()))))
        return false;
    const auto inside = [&axis](I32x4 wanted) {
        const I32x4 outermost = I32x4{} + (axis.size() - 1);
        const I32x4 least = wanted & ~(wanted >> 31);
        return (U32x4)(least < outermost ? least : outermost);
    };
    taps[0] = inside(texels);
    taps[1] = inside(texels + 1);
    return true;
}

// Four texels by their indices: 32 bits count all of an image.
[[gnu::noinline]] void takeFour(const Pixel* texels, U32x4 indices, Pixel* out)
{
    for (int i = 0; i < 4; ++i)
        out[i] = texels[indices[i]];
}

// Finds the texels of as many fours of pixels as hold count.
[[gnu::noinline]] void takeTexels(PatternWalk walk, Corners& corners, int32_t count)
{
    const Pixel* const pixels = walk.pixels();
    const auto width = static_cast<uint32_t>(walk.width());
    for (int32_t i = 0; i < count; i += 4) {
        U32x4 columns[2], rows[2];
        if (!findTaps(walk.u, columns) || !findTaps(walk.v, rows)) {
            for (int32_t k = i; k < i + 4; ++k, walk.advance(1))
                takeFourAnywhere(walk, corners, k);
            continue;
        }
        for (int side = 0; side < 2; ++side) {
            const U32x4 row = rows[side] * width;
            takeFour(pixels, row + columns[0], corners[2 * side] + i);
            takeFour(pixels, row + columns[1], corners[2 * side + 1] + i);
        }
        walk.advance(4);
    }
}

// The weights of pixels one after the other.
void findWeights(const TexelAxis& axis, uint32_t (&weights)[kFewPixels])
{
    uint32_t position = axis.fraction();
    for (uint32_t& weight : weights) {
        weight = weightsOf(position);
        position += static_cast<uint32_t>(axis.step());
    }
}

// A few pixels anywhere.
[[gnu::noinline]] void sampleFew(const PatternWalk& walk, Pixel* out, int32_t count)
{
    Corners corners;
    uint32_t along[kFewPixels], across[kFewPixels];
    takeTexels(walk, corners, count);
    if (walk.alpha == TexelAlpha::kPremultiplied)
        for (Pixel(&texels)[kFewPixels] : corners)
            for (int32_t i = 0; i < count; ++i)
                texels[i] = premultiplied(texels[i]);
    findWeights(walk.u, along);
    findWeights(walk.v, across);
    const MixPixels mixPixels = mixerOf(walk.isRefined);
    mixPixels(corners[0], corners[1], along, kLanes, 0, corners[0], count);
    mixPixels(corners[2], corners[3], along, kLanes, 0, corners[2], count);
    const Pixel alphaBits = walk.alpha == TexelAlpha::kMadeWhole ? kOpaque : 0;
    mixPixels(corners[0], corners[2], across, kLanes, alphaBits, out, count);
}

// Without vector registers: two channels in one word, a pixel after the other.
template <class Mix>
void sampleOneByOne(const Mix& mix, const PatternWalk& walk, Pixel* out, int32_t count)
{
    using Rule = typename Mix::Rule;
    const auto mixed = [&mix](const Pixel(&texels)[4], uint32_t u, uint32_t v) {
        const Pixel upperLeft = mix.prepared(texels[0]), upperRight = mix.prepared(texels[1]);
        const Pixel lowerLeft = mix.prepared(texels[2]), lowerRight = mix.prepared(texels[3]);
        const auto pair = [=](int shift) {
            const auto row = [=](Pixel left, Pixel right) {
                return Rule::pair(left >> shift & kEvenChannels, right >> shift & kEvenChannels,
                                  u >> 8 & 0xFF);
            };
            return Rule::pair(row(upperLeft, upperRight), row(lowerLeft, lowerRight),
                              v >> 8 & 0xFF);
        };
        return mix.finished(pair(0) | pair(8) << 8);
    };
    const int32_t width = walk.width();
    const Fixed uStep = walk.u.step(), vStep = walk.v.step();
    Fixed u = walk.u.indexPosition(), v = walk.v.indexPosition();
    uint32_t uFraction = walk.u.fraction(), vFraction = walk.v.fraction();
    for (int32_t i = 0; i < count; ++i) {
        const Pixel* const upper = walk.row(v) + fixFloor(u);
        const Pixel* const lower = upper + width;
        out[i] = mixed({upper[0], upper[1], lower[0], lower[1]}, uFraction, vFraction);
        u = wrapAdd(u, uStep);
        v = wrapAdd(v, vStep);
        uFraction += static_cast<uint32_t>(uStep);
        vFraction += static_cast<uint32_t>(vStep);
    }
}

template <class Mix>
void samplePixels(const Mix& mix, const PatternWalk& walk, bool inside, Pixel* out, int32_t count)
{
    if (!inside) return sampleFew(walk, out, count);
    if constexpr (kLanes == 1) return sampleOneByOne(mix, walk, out, count);
    if (count < 4) return sampleFew(walk, out, count);
    if (walk.v.step() == 0 && magnitudeOf(walk.u.step()) <= kFixedOne)
        return magnifyRow(mix, walk, out, count);
    const TexelsInside<Mix> texels = {mix, walk, walk.u.indexPosition(), walk.v.indexPosition()};
    mixTexels(mix, walk.u, texels, SteppedWeights(walk.v), out, count);
}

void sampleBilinear(const PatternWalk& walk, bool inside, Pixel* out, uint32_t*, int32_t count)
{
    samplePixels(ClassicMix(), walk, inside, out, count);
}

void sampleRefinedBilinear(const PatternWalk& walk, bool inside, Pixel* out, uint32_t*,
                           int32_t count)
{
    samplePixels(RefinedMix(walk.alpha), walk, inside, out, count);
}

// Only whole rows that are prepared repeat the image's last texels by themselves.
constexpr int32_t kAfterMagnified = kLanes == 1 ? 1 : 0;

// Half a texel to the corner, and half a weight so that fractions are rounded rather than cut.
constexpr PatternFilter kBilinear = {
    0,     1, kAfterMagnified, sampleBilinear, nullptr, sampleRefinedBilinear, 0x80 - kFixedHalf,
    0xFF00};

} // namespace

void drawBilinearPattern(MMContext2D& context)
{
    if (!drawMagnifiedRows(context, kBilinear)) drawPattern(context, kBilinear, false);
}

void drawTranslucentBilinearPattern(MMContext2D& context)
{
    drawPattern(context, kBilinear, true);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
