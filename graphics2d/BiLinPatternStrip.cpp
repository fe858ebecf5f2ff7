// Strip fillers of the image pattern with bilinear sampling.
//
// The sample point is the span's exact left end on the row's top edge, without the half pixel of
// the nearest filter, and a texel's colour lies at its whole coordinates: a 1:1 image is copied.
// Four texels are interpolated first along the row, then across, all channels alike.
#include "graphics2d/PatternSampling.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// The two taps of an axis as offsets from the index; both on the outermost texel beyond the image.
struct LinearTaps {
    int32_t before;
    int32_t after;

    explicit LinearTaps(const TexelAxis& axis)
    {
        const int32_t texel = axis.texel();
        if (texel < 0) {
            before = after = -texel;
        } else if (texel >= axis.size() - 1) {
            before = after = axis.size() - texel - 1;
        } else {
            before = 0;
            after = 1;
        }
    }
};

struct BilinearFilter {
    static constexpr int32_t kBefore = 0;
    static constexpr int32_t kAfter = 1;

    explicit BilinearFilter(const MMContext2D& context)
        : walk(context.currentPaint, context.spanStart, fixFromInt(context.spanRow))
    {
    }

    void writeOne(int32_t i)
    {
        const LinearTaps columns(walk.u);
        const LinearTaps rows(walk.v);
        const uint32_t across = walk.u.fraction() >> 8;
        const int64_t left = int64_t{walk.u.index()} + columns.before;
        const int64_t right = int64_t{walk.u.index()} + columns.after;
        const int64_t upper = int64_t{walk.v.index()} + rows.before;
        const int64_t lower = int64_t{walk.v.index()} + rows.after;
        out[i] =
            blendPixel(blendPixel(walk.texelAt(left, upper), walk.texelAt(right, upper), across),
                       blendPixel(walk.texelAt(left, lower), walk.texelAt(right, lower), across),
                       walk.v.fraction() >> 8);
    }

    // Two pixels at a time, four channels each.
    void writeInside(InsideWalk at, int32_t first, int32_t count)
    {
        Pixel* to = out + first;
        int32_t i = 0;
        for (; i + 2 <= count; i += 2) {
            const U16x8 one = interpolatedRows(at);
            const U32x4 oneDown = all4(weightPair(at.v));
            at.advance();
            const U16x8 two = interpolatedRows(at);
            const U32x4 twoDown = all4(weightPair(at.v));
            at.advance();
            const U16x8 upper = __builtin_shufflevector(one, two, 0, 1, 2, 3, 8, 9, 10, 11);
            const U16x8 lower = __builtin_shufflevector(one, two, 4, 5, 6, 7, 12, 13, 14, 15);
            const U16x8 down = (U16x8)__builtin_shufflevector(oneDown, twoDown, 0, 1, 4, 5);
            const U16x8 result = moveToward(upper, lower, down);
            const U32x4 pixels = narrowHighBytes(result, result);
            std::memcpy(to + i, &pixels, 2 * sizeof(Pixel));
        }
        if (i < count) {
            const Pixel* upper = at.texel();
            const Pixel* lower = upper + at.width;
            const uint32_t across = fixFraction(at.u) >> 8;
            to[i] = blendPixel(blendPixel(upper[0], upper[1], across),
                               blendPixel(lower[0], lower[1], across), fixFraction(at.v) >> 8);
        }
    }

    PatternWalk walk;
    Pixel* out = nullptr;

private:
    // The top eight bits of the fraction, twice: one for each half of a 32-bit lane.
    static uint32_t weightPair(Fixed position)
    {
        return (fixFraction(position) >> 8) * 0x00010001u;
    }

    // The upper row's pixel and the lower row's, in 16-bit lanes.
    static U16x8 interpolatedRows(const InsideWalk& at)
    {
        const Pixel* upper = at.texel();
        // Upper left, upper right, lower left, lower right.
        const U32x4 texels = load2And2(upper, upper + at.width);
        const U32x4 columns = __builtin_shufflevector(texels, texels, 0, 2, 1, 3);
        return moveToward(widenLow(columns), widenHigh(columns), (U16x8)all4(weightPair(at.u))) >>
               8;
    }
};

} // namespace

void MMContext2D::drawBiLinPatternStrip()
{
    BilinearFilter filter(*this);
    if (filter.walk.isEmpty()) return;
    filter.out = spanFirstPixel(*this);
    walkPattern(filter, spanLength(*this));
}

void MMContext2D::drawBiLinPatternTStrip()
{
    BilinearFilter filter(*this);
    if (!filter.walk.isEmpty()) drawByAlpha(*this, filter);
}

} // namespace Graphics2D
} // namespace KAVO
