// Strip fillers of the image pattern with bilinear sampling.
//
// The sample point is the span's exact left end on the row's top edge, without the half pixel of
// the nearest filter, and a texel's colour lies at its whole coordinates: a 1:1 image is copied.
// Four texels are interpolated first along the rows, then across, all channels alike. The weights
// are the top eight bits of the coordinates' fractions.
#include "graphics2d/PatternSampling.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// What the interpolation along the upper and the lower row starts from: the left texels times 256
// and the differences to the right ones.
struct RowStep {
    U16x8 from;
    U16x8 change;

    static RowStep between(U16x8 left, U16x8 right)
    {
        return {left << 8, raisedDifference(left, right)};
    }
    // The texel at an address and its neighbours to the right, below, and both.
    static RowStep at(const Pixel* upper, int32_t width)
    {
        const U32x4 texels = load2And2(upper, upper + width);
        const U32x4 columns = __builtin_shufflevector(texels, texels, 0, 2, 1, 3);
        return between(widenLow(columns), widenHigh(columns));
    }
    U16x8 mixed(U16x8 fraction) const { return (from + change * (fraction >> 8)) >> 8; }
};

// Interpolates count pixels, two at a time; next() gives the RowStep of one after the other.
template <class Next>
inline void mixPixels(const PatternWalk& walk, Pixel* out, int32_t count, Next next)
{
    const U16x8 uStep = all8(fixFraction(walk.u.step()));
    U16x8 u = all8(walk.u.fraction());
    // The first pixel in the lower lanes, the second in the upper ones.
    const uint32_t step = fixFraction(walk.v.step());
    const U16x8 vStep = all8(2 * step);
    U16x8 v = all8(walk.v.fraction()) + (U16x8)U32x4{0, 0, step * 0x00010001u, step * 0x00010001u};
    while (count > 0) {
        const U16x8 first = next().mixed(u);
        u += uStep;
        const U16x8 second = count > 1 ? next().mixed(u) : first;
        u += uStep;
        const U16x8 upper = __builtin_shufflevector(first, second, 0, 1, 2, 3, 8, 9, 10, 11);
        const U16x8 lower = __builtin_shufflevector(first, second, 4, 5, 6, 7, 12, 13, 14, 15);
        const U16x8 result = moveToward(upper, lower, v >> 8);
        v += vStep;
        const U32x4 pixels = narrowHighBytes(result, result);
        if (count == 1) {
            *out = pixels[0];
            return;
        }
        std::memcpy(out, &pixels, 2 * sizeof(Pixel));
        out += 2;
        count -= 2;
    }
}

// Texels from two rows, and no more of them than pixels: each is prepared once.
void magnifyRows(PatternWalk walk, Pixel* out, int32_t count)
{
    RowStep steps[kPieceLength + 1];
    while (count > 0) {
        const int32_t length = count < kPieceLength ? count : kPieceLength;
        const Fixed uStep = walk.u.step();
        Fixed u = walk.u.indexPosition();
        const int32_t begin = fixFloor(u);
        const int32_t end = fixFloor(u + uStep * (length - 1));
        const int32_t first = begin < end ? begin : end;
        const Pixel* upper = walk.row(walk.v.indexPosition()) + first;
        const Pixel* lower = upper + walk.width();
        U16x8 left = widenLow(U32x4{upper[0], lower[0], 0, 0});
        for (int32_t i = 0, steps_ = begin < end ? end - begin : begin - end; i <= steps_; ++i) {
            const U16x8 right = widenLow(U32x4{upper[i + 1], lower[i + 1], 0, 0});
            steps[i] = RowStep::between(left, right);
            left = right;
        }
        u -= fixFromInt(first);
        mixPixels(walk, out, length, [&]() -> const RowStep& {
            const RowStep& step = steps[fixFloor(u)];
            u += uStep;
            return step;
        });
        walk.advance(length);
        out += length;
        count -= length;
    }
}

// The texels before and after a position, both the outermost one beyond the image.
void tapsOf(const TexelAxis& axis, int64_t (&taps)[2])
{
    const int32_t texel = axis.texel();
    const int32_t last = axis.size() - 1;
    taps[0] = axis.indexOffset() + (texel < 0 ? 0 : texel < last ? texel : last);
    taps[1] = taps[0] + (texel >= 0 && texel < last ? 1 : 0);
}

void sampleBilinear(PatternWalk walk, bool inside, Pixel* out, uint32_t*, int32_t count)
{
    if (!inside) {
        PatternWalk at = walk;
        mixPixels(walk, out, count, [&] {
            int64_t x[2];
            int64_t y[2];
            tapsOf(at.u, x);
            tapsOf(at.v, y);
            const Pixel texels[4] = {at.texelAt(x[0], y[0]), at.texelAt(x[1], y[0]),
                                     at.texelAt(x[0], y[1]), at.texelAt(x[1], y[1])};
            at.advance(1);
            return RowStep::at(texels, 2);
        });
        return;
    }
    const Fixed uStep = walk.u.step();
    const Fixed vStep = walk.v.step();
    if (vStep == 0 && magnitudeOf(uStep) <= kFixedOne && count > kFewPixels)
        return magnifyRows(walk, out, count);
    Fixed u = walk.u.indexPosition();
    Fixed v = walk.v.indexPosition();
    mixPixels(walk, out, count, [&] {
        const RowStep step = RowStep::at(walk.row(v) + fixFloor(u), walk.width());
        u = wrapAdd(u, uStep);
        v = wrapAdd(v, vStep);
        return step;
    });
}

constexpr PatternFilter kBilinear = {0, 1, sampleBilinear, weighByAlpha};

PatternWalk walkOf(const MMContext2D& context)
{
    return PatternWalk(context.currentPaint, context.spanStart, fixFromInt(context.spanRow));
}

} // namespace

void MMContext2D::drawBiLinPatternStrip()
{
    drawPattern(*this, walkOf(*this), kBilinear);
}

void MMContext2D::drawBiLinPatternTStrip()
{
    drawTranslucentPattern(*this, walkOf(*this), kBilinear);
}

} // namespace Graphics2D
} // namespace KAVO
