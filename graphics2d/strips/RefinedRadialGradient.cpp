// SPDX-License-Identifier: MIT
// The radial gradient by the refined rules.
//
// The parameter r is the length of (u, v), the pixel's centre mapped around the gradient's. Along a
// row u and v are linear, so r * r is a parabola that two additions per pixel follow exactly: in
// 64 bits, and modulo 2^64, so that it does not matter where a span begins. r is its root, from a
// table: of every pixel near the centre, of every eighth one farther out, where r itself is all but
// a parabola from one to the next. The colour at r lies between two stops as far as r does.
//
// Columns where u or v alone reaches the last stop are padded with its colour and never squared.
#include "graphics2d/strips/RefinedRadialGradient.h"

#include "graphics2d/strips/GradientTarget.h"
#include "graphics2d/strips/QuickRoot.h"
#include "graphics2d/strips/StopList.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// --- Colours between two stops -------------------------------------------------------------------

// The channels of the pixels whose radius lies within [low, low + length), or of one colour.
class RadialSegment {
public:
    // Between stop i - 1 at low and stop i at high.
    RadialSegment(Pixel from, Pixel to, uint32_t low, uint32_t high) : low_(low)
    {
        for (int k = 0; k < 4; ++k) {
            from_[k] = all8((from >> (8 * k) & 0xFF) << 8);
            to_[k] = all8((to >> (8 * k) & 0xFF) << 8);
        }
        // What lies within the length is scaled alike.
        const uint32_t length = high - low;
        shift_ = __builtin_clz(length);
        const uint32_t scaled = length << shift_ >> 16;
        const uint32_t reciprocal = 0x80000000u / scaled;
        reciprocal_ = all8(reciprocal < 0xFFFF ? reciprocal : 0xFFFF);
    }

    // Writes count colours, and their 8.8 alphas unless there are to be none. Eight radii are read
    // in any case. Not inlined, to have the code once.
    [[gnu::noinline]] void write(const uint32_t* radii, Pixel* colours, uint32_t* alphas,
                                 int32_t count) const
    {
        if constexpr (kLanes == 1) return writeOneByOne(radii, colours, alphas, count);
        if (count < 8) return writeFew(radii, colours, alphas, count);
        for (int32_t next = 0; next < count; next += 8) {
            const int32_t i = next + 8 <= count ? next : count - 8; // the last ones anew
            const U16x8 within = twice(mulHigh(scaled(radii + i), reciprocal_));
            const U16x8 rest = ~within;
            const auto channel = [&](int k) {
                return mulHigh(from_[k], rest) + mulHigh(to_[k], within);
            };
            const U16x8 blue = channel(0) + 128;
            const U16x8 green = channel(1) + 128;
            const U16x8 red = channel(2) + 128;
            const U16x8 low = (blue >> 8) | (green & 0xFF00);
            const U16x8 high = (red >> 8) | 0xFF00;
            store4(colours + i, zipLow(low, high));
            store4(colours + i + 4, zipHigh(low, high));
            if (alphas == nullptr) continue;
            const U16x8 alpha = channel(3);
            store4(alphas + i, zipLow(alpha, U16x8{}));
            store4(alphas + i + 4, zipHigh(alpha, U16x8{}));
        }
    }

private:
    // Without vector registers: a pixel after the other, and no more than count.
    void writeOneByOne(const uint32_t* radii, Pixel* colours, uint32_t* alphas, int32_t count) const
    {
        const uint32_t reciprocal = reciprocal_[0];
        for (int32_t i = 0; i < count; ++i) {
            const uint32_t share = ((radii[i] - low_) << shift_ >> 16) * reciprocal >> 16;
            const uint32_t within = (share << 1 | share >> 14) & 0xFFFF;
            const uint32_t rest = within ^ 0xFFFF;
            const auto channel = [&](int k) {
                return (from_[k][0] * rest >> 16) + (to_[k][0] * within >> 16);
            };
            colours[i] = kOpaque | (channel(2) + 128) >> 8 << 16 | ((channel(1) + 128) & 0xFF00) |
                         (channel(0) + 128) >> 8;
            if (alphas != nullptr) alphas[i] = channel(3);
        }
    }

    void writeFew(const uint32_t* radii, Pixel* colours, uint32_t* alphas, int32_t count) const
    {
        uint32_t words[16];
        write(radii, words, words + 8, 8);
        for (int32_t i = 0; i < count; ++i) {
            colours[i] = words[i];
            if (alphas != nullptr) alphas[i] = words[8 + i];
        }
    }

    // Shares of the length from 15 to 16 bits.
    static U16x8 twice(U16x8 share) { return share << 1 | share >> 14; }

    // The distances of eight radii from low, scaled like the length.
    U16x8 scaled(const uint32_t* radii) const
    {
        return upperHalvesOf((load4(radii) - low_) << shift_, (load4(radii + 4) - low_) << shift_);
    }

    U16x8 from_[4]; // 8.8
    U16x8 to_[4];
    U16x8 reciprocal_; // 2^31 by the scaled length
    uint32_t low_;
    int32_t shift_; // to the left, so that the length's highest bit is bit 31; cut to 16 bits then
};

// --- The row -------------------------------------------------------------------------------------

struct Columns {
    int32_t first;
    int32_t end;
};

// u or v along the row, 16.16.
struct MappedAxis {
    int64_t atZero; // at the centre of column 0
    int64_t step;   // per column

    int64_t at(int32_t column) const { return atZero + step * column; }

    // The part of the columns where the magnitude is below a bound.
    Columns within(int64_t bound, Columns all) const
    {
        const int64_t up = step < 0 ? -step : step;
        const int64_t start = step < 0 ? -atZero : atZero; // of the values mirrored to grow
        if (up == 0) return -bound < start && start < bound ? all : Columns{all.first, all.first};
        // The first columns above -bound and from bound on.
        const int64_t first = floorDivided(-bound - start, up) + 1;
        const int64_t end = -floorDivided(start - bound, up);
        Columns part;
        part.first = static_cast<int32_t>(clampedTo(first, all));
        part.end = static_cast<int32_t>(clampedTo(end, all));
        return part;
    }

private:
    static int64_t floorDivided(int64_t v, int64_t divisor)
    {
        const int64_t quotient = v / divisor;
        return v % divisor < 0 ? quotient - 1 : quotient;
    }
    static int64_t clampedTo(int64_t v, Columns all)
    {
        return v < all.first ? all.first : v < all.end ? v : all.end;
    }
};

// The radii along a row, from a block of columns on. Blocks lie where they lie on the target,
// wherever a span begins.
constexpr int32_t kBlock = 16;

class RadiusFollower {
public:
    RadiusFollower(const MappedAxis& u, const MappedAxis& v, int32_t column)
    {
        const auto uStart = static_cast<uint64_t>(u.at(column));
        const auto vStart = static_cast<uint64_t>(v.at(column));
        const auto uStep = static_cast<uint64_t>(u.step);
        const auto vStep = static_cast<uint64_t>(v.step);
        curve_ = uStep * uStep + vStep * vStep;
        square_ = uStart * uStart + vStart * vStart;
        change_ = 2 * (uStart * uStep + vStart * vStep) + curve_;
        root_ = calledRootOf(square_);
    }

    // Writes the radii of the next block. Thirty pixels from the centre and further out a parabola
    // through the first, the ninth and the next block's first is as good as roots: it lies at most
    // 1/30 of a pixel beside them.
    void next(uint32_t* radii)
    {
        const uint64_t halfChange = kBlock / 2 * (change_ - curve_);
        const uint64_t middle = square_ + halfChange + kBlock * kBlock / 4 * curve_;
        const uint64_t end = square_ + 2 * halfChange + kBlock * kBlock * curve_;
        const uint32_t endRoot = calledRootOf(end);
        const bool isFar = square_ >> kFarShift >= curve_;
        if (isFar && curve_ - kLeastCurve < kGreatestCurve - kLeastCurve)
            interpolate(radii, calledRootOf(middle), endRoot);
        else
            takeRoots(radii);
        square_ = end;
        change_ += 2 * kBlock * curve_;
        root_ = endRoot;
    }

private:
    static constexpr int kFarShift = 11; // 45 pixels from the block's first column
    // Of steps so short that no square in a block with a pixel of the ramp wraps, and so long that
    // their parts do not matter.
    static constexpr uint64_t kGreatestCurve = uint64_t{1} << 52;
    static constexpr uint64_t kLeastCurve = uint64_t{1} << 26;

    // A call, to have the code once.
    [[gnu::noinline]] static uint32_t calledRootOf(uint64_t square) { return rootOf(square); }

    void interpolate(uint32_t* radii, uint32_t middle, uint32_t end) const
    {
        static_assert(kBlock == 16, "the shares of the differences");
        const int64_t first = int64_t{middle} - root_;
        const int64_t bend = int64_t{end} - middle - first;
        const auto changeOfChange = static_cast<uint32_t>((bend + 32) >> 6);
        const auto change = static_cast<uint32_t>((16 * first - 7 * bend + 64) >> 7);
        // Columns differ from the block's first by so many changes and changes of them.
        constexpr PixelVector kPairs = kPlaces * (kPlaces - 1) / 2;
        const PixelVector bends = kPlaces * changeOfChange;
        PixelVector radius = root_ + kPlaces * change + kPairs * changeOfChange;
        PixelVector step = kLanes * (change + bends) + kLanes * (kLanes - 1) / 2 * changeOfChange;
#pragma GCC unroll 4
        for (int32_t i = 0; i < kBlock; i += kLanes) {
            store(radii + i, radius);
            radius += step;
            step += kLanes * kLanes * changeOfChange;
        }
    }

    void takeRoots(uint32_t* radii) const
    {
        uint64_t square = square_;
        uint64_t change = change_;
        for (int32_t i = 0; i < kBlock; ++i) {
            radii[i] = calledRootOf(square);
            square += change;
            change += 2 * curve_;
        }
    }

    uint64_t curve_;  // the change grows by twice this per column
    uint64_t square_; // at the next block's first column
    uint64_t change_; // of the square to the column after it
    uint32_t root_;   // of the square
};

class RowOfCircles {
public:
    RowOfCircles(const MMPaint& paint, int32_t row)
        : stops_(paint), u_(mappedAxis(paint, row, paint.radialXToU, paint.radialYToU)),
          v_(mappedAxis(paint, row, paint.radialXToV, paint.radialYToV))
    {
    }

    // Draws count columns from the first on.
    void draw(RefinedGradientTarget& target, int32_t first, int32_t count) const
    {
        const Columns all = {first, first + count};
        const Fixed last = stops_.lastOffset() > 0 ? stops_.lastOffset() : 0;
        const Columns ramp = v_.within(last, u_.within(last, all));
        if (ramp.first >= ramp.end) return target.pad(stops_.lastColour(), count);
        target.pad(stops_.lastColour(), ramp.first - all.first);
        drawRamp(target, ramp);
        target.pad(stops_.lastColour(), all.end - ramp.end);
    }

private:
    // Each product is halved, so that the sum fits.
    static MappedAxis mappedAxis(const MMPaint& paint, int32_t row, Fixed xStep, Fixed yStep)
    {
        const int64_t dx = int64_t{kFixedHalf} - paint.radialCenterX;
        const int64_t dy = int64_t{kFixedHalf} - paint.radialCenterY;
        const int64_t atRowZero = ((xStep * dx >> 1) + (yStep * dy >> 1)) >> 15;
        return {atRowZero + int64_t{yStep} * row, xStep};
    }

    void drawRamp(RefinedGradientTarget& target, Columns columns) const
    {
        RadiusFollower follower(u_, v_, columns.first & -kBlock);
        int32_t before = columns.first & (kBlock - 1); // columns of the block that are not drawn
        uint32_t radii[kBlock + kPieceLength + kBlock] = {};
        int32_t known = 0; // of the radii
        target.ramp(columns.end - columns.first,
                    [&](Pixel* colours, uint32_t* alphas, int32_t count) {
                        for (; known < before + count; known += kBlock)
                            follower.next(radii + known);
                        writeColours(radii + before, colours, alphas, count);
                        // What is left of the last block begins the next piece.
                        before = (before + count) & (kBlock - 1);
                        std::copy_n(radii + known - kBlock, kBlock, radii);
                        known = before != 0 ? kBlock : 0;
                    });
    }

    // From radii to colours and alphas, in runs within the same segment.
    void writeColours(const uint32_t* radii, Pixel* colours, uint32_t* alphas, int32_t count) const
    {
        for (int32_t i = 0; i < count;) {
            const Bounds bounds = segmentAt(radii[i]);
            const int32_t end = endOfRun(radii, i, count, bounds);
            const RadialSegment segment(stops_.colours[bounds.from], stops_.colours[bounds.to],
                                        bounds.low, bounds.high);
            segment.write(radii + i, colours + i, alphas != nullptr ? alphas + i : nullptr,
                          end - i);
            i = end;
        }
    }

    // The radii from low to high - 1, and the stops whose colours they lie between.
    struct Bounds {
        uint32_t from;
        uint32_t to;
        uint32_t low;
        uint32_t high;
    };

    static constexpr uint32_t kSignBit = 0x80000000u;

    // The first of the radii from the i-th to the last that is not within the bounds.
    static int32_t endOfRun(const uint32_t* radii, int32_t i, int32_t count, const Bounds& bounds)
    {
        const uint32_t length = bounds.high - bounds.low;
        if constexpr (kLanes > 1) {
            // Distances from the lower bound are compared as signed numbers, 2^31 less.
            const uint32_t low = bounds.low ^ kSignBit;
            const auto limit = (I32x4)all4(length ^ kSignBit);
            for (; i + 8 <= count; i += 8) {
                const auto a = (I32x4)(load4(radii + i) - low);
                const auto b = (I32x4)(load4(radii + i + 4) - low);
                if (!isZero(~((limit > a) & (limit > b)))) break;
            }
        }
        while (i < count && radii[i] - bounds.low < length)
            ++i;
        return i;
    }

    // Stops out of order are moved up to their predecessor.
    Bounds segmentAt(uint32_t radius) const
    {
        uint32_t low = 0;
        for (uint32_t i = 0; i < stops_.count; ++i) {
            const uint32_t offset =
                static_cast<uint32_t>(stops_.offsets[i] > 0 ? stops_.offsets[i] : 0);
            const uint32_t high = offset > low ? offset : low;
            if (radius < high) return {i == 0 ? 0 : i - 1, i, low, high};
            low = high;
        }
        return {stops_.count - 1, stops_.count - 1, low, UINT32_MAX};
    }

    StopList stops_;
    MappedAxis u_;
    MappedAxis v_;
};

} // namespace

void drawRefinedRadialGradient(MMContext2D& context, bool translucent)
{
    if (StopList(context.currentPaint).isEmpty()) return;
    RefinedGradientTarget target(context, translucent);
    const RowOfCircles row(context.currentPaint, context.spanRow);
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    row.draw(target, first, count);
    if (target.takeTail()) row.draw(target, first + count, 1);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
