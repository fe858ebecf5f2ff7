// Strip fillers of the image pattern with bicubic sampling.
//
// Each pixel is the weighted sum of 4 by 4 texels with the weights of the uniform cubic B-spline:
// they are all positive and smooth, so that nothing overshoots, and even texels that pixels hit
// exactly are mixed with their neighbours. The sample point is that of the bilinear filter. Left
// and top of the image its first column and row repeat, but right and bottom of it the last but
// one.
//
// The opaque filler ignores the texels' alpha and writes 255; the translucent one sums it up like a
// colour for the weight, and moves the target's alpha toward 255.
#include "graphics2d/PatternSampling.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kOneSixth = 0x2AAA;
constexpr Fixed kTwoThirds = 0xAAAA;
constexpr Fixed kFourThirds = 0x15555;
constexpr Fixed kTwo = 0x20000;

// fixMul of two numbers that are known not to be negative.
inline Fixed product(Fixed a, Fixed b)
{
    const uint32_t first = static_cast<uint32_t>(a);
    const uint32_t second = static_cast<uint32_t>(b);
    const uint32_t low = second & 0xFFFFu;
    return static_cast<Fixed>((second >> 16) * first + low * (first >> 16) +
                              ((low * ((first & 0xFFFFu) >> 1)) >> 15));
}

// The spline's outer piece, distance 1.0 to 2.0 from the tap, as a polynomial. Factors that would
// be negative are turned around: products round toward zero either way.
inline Fixed outerWeight(Fixed distance)
{
    const Fixed inner = kTwo - product(kFixedOne - product(kOneSixth, distance), distance);
    return kFourThirds - product(inner, distance);
}

// The same as the cube of what is left to the spline's end.
inline Fixed cubeWeight(Fixed rest)
{
    return product(kOneSixth, product(product(rest, rest), rest));
}

// The inner piece, distance up to 1.0 from the tap.
inline Fixed innerWeight(Fixed distance)
{
    return kTwoThirds - product(product(kFixedOne - (distance >> 1), distance), distance);
}

// The weights of the taps -1, 0, 1 and 2 for a fraction of a texel. The axes compute their end
// weights in mirrored ways, which round differently.
struct CubicWeights {
    Fixed tap[4];

    static CubicWeights alongRow(Fixed f)
    {
        const Fixed rest = kFixedOne - f;
        return {{cubeWeight(rest), innerWeight(f), innerWeight(rest), outerWeight(kTwo - f)}};
    }
    static CubicWeights acrossRows(Fixed g)
    {
        const Fixed rest = kFixedOne - g;
        return {{outerWeight(g + kFixedOne), innerWeight(g), innerWeight(rest), cubeWeight(g)}};
    }
};

// Offsets of the four taps of an axis from its index.
struct CubicTaps {
    int32_t tap[4] = {-1, 0, 1, 2};

    explicit CubicTaps(const TexelAxis& axis)
    {
        const int64_t position = axis.position();
        const int32_t toFirst = -axis.texel();
        const int32_t toLastButOne = axis.size() - axis.texel() - 2;
        const int64_t lastButOne = (int64_t{axis.size()} - 2) * kFixedOne;
        for (int32_t i = 0; i < 4; ++i) {
            if (position < kFixedOne * (1 - i)) tap[i] = toFirst;
            if (position > lastButOne + kFixedOne * (3 - i)) tap[i] = toLastButOne;
        }
    }
};

// 8.16 sums of the four channels.
struct CubicSum {
    uint32_t blue = 0;
    uint32_t green = 0;
    uint32_t red = 0;
    uint32_t alpha = 0;

    CubicSum() = default;

    // The sum over 4 by 4 texels, their first at the given address: two rows and four channels at a
    // time. A tap weight is fixMul(x, y), which for these small numbers is the upper half of a
    // product whose first factor has lost its lowest bit.
    CubicSum(const Pixel* texels, int32_t width, const CubicWeights& x, const CubicWeights& y)
    {
        const U16x8 weightsX = (U16x8)(U32x4{inBothHalves(x.tap[0]), inBothHalves(x.tap[1]),
                                             inBothHalves(x.tap[2]), inBothHalves(x.tap[3])} &
                                       0xFFFEFFFEu);
        U32x4 sum = {};
        for (int k = 0; k < 4; k += 2, texels += 2 * width) {
            const U32x4 upper = load4(texels);
            const U32x4 lower = load4(texels + width);
            const U32x4 left = zipLowBytes(upper, lower);
            const U32x4 right = zipHighBytes(upper, lower);
            const U32x4 taps = (U32x4)mulHigh(
                weightsX, (U16x8)all4(static_cast<uint32_t>(y.tap[k] | y.tap[k + 1] << 16)));
            sum += multiplyAddPairs(widenLow(left), (U16x8)all4(taps[0])) +
                   multiplyAddPairs(widenHigh(left), (U16x8)all4(taps[1])) +
                   multiplyAddPairs(widenLow(right), (U16x8)all4(taps[2])) +
                   multiplyAddPairs(widenHigh(right), (U16x8)all4(taps[3]));
        }
        std::memcpy(this, &sum, sizeof sum);
    }

    // A whole channel times a tap weight below 1.0 is exact.
    void add(Pixel texel, uint32_t weight)
    {
        blue += (texel & 0xFF) * weight;
        green += ((texel >> 8) & 0xFF) * weight;
        red += ((texel >> 16) & 0xFF) * weight;
        alpha += (texel >> 24) * weight;
    }
    Pixel opaque() const
    {
        return packOpaque(red + kChannelHalf, green + kChannelHalf, blue + kChannelHalf);
    }

private:
    static uint32_t inBothHalves(Fixed weight)
    {
        return static_cast<uint32_t>(weight) * 0x00010001u;
    }
};

// Out receives each pixel's sum.
template <class Out>
struct BicubicFilter {
    static constexpr int32_t kBefore = 1;
    static constexpr int32_t kAfter = 2;

    explicit BicubicFilter(const MMContext2D& context)
        : walk(context.currentPaint, context.spanStart, fixFromInt(context.spanRow))
    {
    }

    void writeOne(int32_t i)
    {
        const CubicTaps columns(walk.u);
        const CubicTaps rows(walk.v);
        const auto x = CubicWeights::alongRow(static_cast<Fixed>(walk.u.fraction()));
        const auto y = CubicWeights::acrossRows(static_cast<Fixed>(walk.v.fraction()));
        CubicSum sum;
        for (int k = 0; k < 4; ++k)
            for (int j = 0; j < 4; ++j)
                sum.add(walk.texelAt(int64_t{walk.u.index()} + columns.tap[j],
                                     int64_t{walk.v.index()} + rows.tap[k]),
                        static_cast<uint32_t>(fixMulInline(x.tap[j], y.tap[k])));
        out.put(i, sum);
    }

    void writeInside(InsideWalk at, int32_t first, int32_t count)
    {
        auto y = CubicWeights::acrossRows(static_cast<Fixed>(fixFraction(at.v)));
        for (int32_t i = 0; i < count; ++i) {
            if (at.vStep != 0) y = CubicWeights::acrossRows(static_cast<Fixed>(fixFraction(at.v)));
            const auto x = CubicWeights::alongRow(static_cast<Fixed>(fixFraction(at.u)));
            out.put(first + i, CubicSum(at.texel() - at.width - 1, at.width, x, y));
            at.advance();
        }
    }

    PatternWalk walk;
    Out out{};
};

struct OpaquePixels {
    Pixel* pixels;
    void put(int32_t i, const CubicSum& sum) { pixels[i] = sum.opaque(); }
};

struct WeightedPixels {
    PaintPiece* piece;
    CoverageSequence* coverage;

    void put(int32_t i, const CubicSum& sum)
    {
        piece->colours[i] = sum.opaque();
        const int32_t product =
            fixMulSHRInline(static_cast<Fixed>(sum.alpha), coverage->current(), 8);
        const int32_t weight = wrapAdd(product, 0x8000) >> 16;
        piece->weights[i] =
            static_cast<uint32_t>(product >= 0x007F8000 ? weight + 1 : weight) & 0xFFu;
        coverage->advance(1);
    }
};

} // namespace

void MMContext2D::drawBiCubPatternStrip()
{
    BicubicFilter<OpaquePixels> filter(*this);
    if (filter.walk.isEmpty()) return;
    filter.out.pixels = spanFirstPixel(*this);
    walkPattern(filter, spanLength(*this));
}

void MMContext2D::drawBiCubPatternTStrip()
{
    BicubicFilter<WeightedPixels> filter(*this);
    if (filter.walk.isEmpty()) return;
    TranslucentRun run(*this);
    filter.out.coverage = &run.coverage;
    const auto fillPiece = [&](PaintPiece& piece, int32_t length) {
        filter.out.piece = &piece;
        walkPattern(filter, length);
    };
    drawInPieces(run, spanLength(*this), fillPiece);
    if (run.takeTail()) drawInPieces(run, 1, fillPiece);
}

} // namespace Graphics2D
} // namespace KAVO
