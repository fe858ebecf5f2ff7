// SPDX-License-Identifier: MIT
// The radial gradient by the refined rules.
//
// The parameter r is the length of (u, v), the pixel's centre mapped around the gradient's. Along a
// row u and v are linear, so r * r is a parabola that two additions per pixel follow exactly: in
// 64 bits, and modulo 2^64, so that it does not matter where a span begins. r is its root, from a
// table, and the colour at r lies between two stops as far as r does.
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
        // The length is scaled to 16 bits with the highest set, and what lies within it alike.
        const uint32_t length = high - low;
        shift_ = 16 - static_cast<int32_t>(__builtin_clz(length));
        const uint32_t scaled = shift_ >= 0 ? length >> shift_ : length << -shift_;
        const uint32_t reciprocal = 0x80000000u / scaled;
        reciprocal_ = all8(reciprocal < 0xFFFF ? reciprocal : 0xFFFF);
    }

    // Writes count colours, and with the last of them up to seven that mean nothing; likewise 8.8
    // alphas unless there are to be none.
    void write(const uint32_t* radii, Pixel* colours, uint32_t* alphas, int32_t count) const
    {
        for (int32_t i = 0; i < count; i += 8) {
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
    // Shares of the length from 15 to 16 bits.
    static U16x8 twice(U16x8 share) { return share << 1 | share >> 14; }

    // The distances of eight radii from low, scaled like the length.
    U16x8 scaled(const uint32_t* radii) const
    {
        const U32x4 first = load4(radii) - low_;
        const U32x4 last = load4(radii + 4) - low_;
        const U16x8 a = (U16x8)(shift_ >= 0 ? first >> shift_ : first << -shift_);
        const U16x8 b = (U16x8)(shift_ >= 0 ? last >> shift_ : last << -shift_);
        return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
    }

    U16x8 from_[4]; // 8.8
    U16x8 to_[4];
    U16x8 reciprocal_; // 2^31 by the scaled length
    uint32_t low_;
    int32_t shift_; // right, or left when it is negative
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
        const auto u = static_cast<uint64_t>(u_.at(columns.first));
        const auto v = static_cast<uint64_t>(v_.at(columns.first));
        const auto uStep = static_cast<uint64_t>(u_.step);
        const auto vStep = static_cast<uint64_t>(v_.step);
        const uint64_t curve = uStep * uStep + vStep * vStep;
        uint64_t square = u * u + v * v;
        uint64_t change = 2 * (u * uStep + v * vStep) + curve;
        target.ramp(columns.end - columns.first,
                    [&](Pixel* colours, uint32_t* alphas, int32_t count) {
                        uint32_t radii[kPieceLength + 8];
                        for (int32_t i = 0; i < count; ++i) {
                            radii[i] = rootOf(square);
                            square += change;
                            change += 2 * curve;
                        }
                        std::fill_n(radii + count, 7, 0u);
                        writeColours(radii, colours, alphas, count);
                    });
    }

    // From radii to colours and alphas, in runs within the same segment.
    void writeColours(const uint32_t* radii, Pixel* colours, uint32_t* alphas, int32_t count) const
    {
        // Runs write up to seven pixels too many, which the next ones put right.
        Pixel runColours[kPieceLength + 8];
        uint32_t runAlphas[kPieceLength + 8];
        for (int32_t i = 0; i < count;) {
            const Bounds bounds = segmentAt(radii[i]);
            int32_t end = i + 1;
            while (end < count && radii[end] - bounds.low < bounds.high - bounds.low)
                ++end;
            const RadialSegment segment(stops_.colours[bounds.from], stops_.colours[bounds.to],
                                        bounds.low, bounds.high);
            segment.write(radii + i, runColours + i, alphas != nullptr ? runAlphas + i : nullptr,
                          end - i);
            i = end;
        }
        const size_t bytes = static_cast<size_t>(count) * sizeof(uint32_t);
        std::memcpy(colours, runColours, bytes);
        if (alphas != nullptr) std::memcpy(alphas, runAlphas, bytes);
    }

    // The radii from low to high - 1, and the stops whose colours they lie between.
    struct Bounds {
        uint32_t from;
        uint32_t to;
        uint32_t low;
        uint32_t high;
    };

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
    drawRefinedSpan<RowOfCircles>(context, translucent);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
