// The walk of a span through the pattern image, shared by the three filters. Internal.
//
// The paint's transform maps a device point to texel coordinates (u, v), and one pixel to the right
// adds the same step to each. Beside the exact coordinate an axis keeps the index of the texel it
// points at, stepped in whole numbers and carries. Its fraction runs in sign and magnitude, so for
// a negative step it is that of the negated coordinate, and the index may lie one off the
// coordinate's whole part: on whole texels when the walk began between two, and between texels when
// it began on a whole one. Filters add tap offsets, computed from the exact coordinate, to the
// index; together they can then leave the image by a texel, which texelAt mends.
#pragma once

#include "graphics2d/StripMachinery.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {

class TexelAxis {
public:
    TexelAxis(Fixed start, Fixed step, int32_t size)
        : position_(start), step_(step), size_(size), index_(fixFloor(start)),
          fraction_(fixFraction(step < 0 ? wrapNeg(start) : start)),
          wholeStep_(applySign(magnitudeOf(step) >> 16, signMaskOf(step))),
          fractionStep_(magnitudeOf(step) & 0xFFFFu)
    {
    }

    Fixed position() const { return position_; }
    Fixed step() const { return step_; }
    int32_t size() const { return size_; }
    int32_t index() const { return index_; }
    int32_t texel() const { return fixFloor(position_); }
    // The same from either form of the fraction: they are each other's complement.
    uint32_t fraction() const { return fixFraction(position_); }

    // At most 65,535 pixels.
    void advance(int32_t pixels)
    {
        const uint32_t sum = fraction_ + fractionStep_ * static_cast<uint32_t>(pixels);
        const int32_t carries = static_cast<int32_t>(sum >> 16);
        position_ = wrapAdd(position_, wrapMul(step_, pixels));
        index_ = wrapAdd(index_, wrapMul(wholeStep_, pixels));
        index_ = step_ < 0 ? wrapSub(index_, carries) : wrapAdd(index_, carries);
        fraction_ = sum & 0xFFFFu;
    }

    // What to add to the position so that its whole part is the index, also for the pixels that
    // follow. False when the position has wrapped since the start.
    bool indexBias(Fixed& bias) const
    {
        const int32_t ahead = wrapSub(index_, texel());
        bias = 0;
        if (step_ >= 0) return ahead == 0;
        const int32_t beganBetweenTexels = wrapSub(fraction_ != 0 ? 1 : 0, ahead);
        bias = beganBetweenTexels == 1 ? -1 : 0xFFFF;
        return beganBetweenTexels == 0 || beganBetweenTexels == 1;
    }

    // How many pixels from here on, up to atMost, have their whole part of the position within
    // [first, size - last), so that a filter that reads that many texels to either side needs no
    // tap offsets. Backward walks keep one texel more of distance.
    int32_t pixelsInside(int32_t first, int32_t last, int32_t atMost) const
    {
        const int32_t reserve = step_ < 0 ? 1 : 0;
        const int32_t end = size_ - last - reserve;
        const Fixed low = (first + reserve) << 16;
        const Fixed high = end >= 0x8000 ? INT32_MAX : fixFromInt(end) - 1;
        if (end <= 0 || position_ < low || position_ > high) return 0;
        return stepsWithin(position_, step_, low, high, atMost);
    }

private:
    Fixed position_;
    Fixed step_;
    int32_t size_; // texels
    int32_t index_;
    uint32_t fraction_; // low 16 bits of |position| as the step's sign has it
    int32_t wholeStep_;
    uint32_t fractionStep_;
};

class PatternWalk {
public:
    // Starts where the device point (x, y) falls.
    PatternWalk(const MMPaint& paint, Fixed x, Fixed y)
        : PatternWalk(paint, mapped(paint.patternTransform, x, y))
    {
    }

    bool isEmpty() const { return pixels_ == nullptr || u.size() == 0 || v.size() == 0; }
    const Pixel* pixels() const { return pixels_; }

    // Rows follow each other without gaps. An index outside the image is brought back by one row
    // up or down, or else to the nearest end.
    Pixel texelAt(int64_t column, int64_t row) const
    {
        const int64_t width = u.size();
        const int64_t end = width * v.size();
        int64_t index = row * width + column;
        if (index < 0) index = index >= -width ? index + width : 0;
        if (index >= end) index = index < end + width ? index - width : end - 1;
        return pixels_[index];
    }

    void advance(int32_t pixels)
    {
        u.advance(pixels);
        v.advance(pixels);
    }

    // Pixels that can be read without tap offsets, see TexelAxis; 0 also when an index is off.
    int32_t pixelsInside(int32_t first, int32_t last, int32_t atMost) const
    {
        const int32_t pixels = u.pixelsInside(first, last, atMost);
        return pixels > 0 ? v.pixelsInside(first, last, pixels) : 0;
    }

    TexelAxis u;
    TexelAxis v;

private:
    static MMPoint2D mapped(const Matrix2D& transform, Fixed x, Fixed y)
    {
        MMPoint2D point = {x, y};
        transform.transform(&point, &point, 1);
        return point;
    }
    PatternWalk(const MMPaint& paint, MMPoint2D start)
        : u(start.x, paint.patternTransform.a, paint.patternImage.width),
          v(start.y, paint.patternTransform.b, paint.patternImage.height),
          pixels_(paint.patternImage.pixels)
    {
    }

    const Pixel* pixels_;
};

// The texel coordinates of pixels inside the image, as the quick loops step them: the biased ones
// have the texels' indices as whole parts, the exact ones the fractions.
struct InsideWalk {
    const Pixel* pixels;
    int32_t width;
    Fixed u;
    Fixed v;
    Fixed uStep;
    Fixed vStep;
    Fixed uBias = 0;
    Fixed vBias = 0;
    bool valid;

    explicit InsideWalk(const PatternWalk& walk)
        : pixels(walk.pixels()), width(walk.u.size()), u(walk.u.position()), v(walk.v.position()),
          uStep(walk.u.step()), vStep(walk.v.step())
    {
        valid = walk.u.indexBias(uBias) && walk.v.indexBias(vBias);
    }
    // Within an image the offset of a texel fits a pointer difference on every host.
    const Pixel* texel() const
    {
        return pixels + static_cast<ptrdiff_t>(fixFloor(wrapAdd(v, vBias))) * width +
               fixFloor(wrapAdd(u, uBias));
    }
    void advance()
    {
        u = wrapAdd(u, uStep);
        v = wrapAdd(v, vStep);
    }
};

// Runs a filter over count pixels: quick runs inside the image, single pixels where tap offsets are
// needed. The filter has
//     kBefore, kAfter                      texels it reads before and after the one it points at
//     writeInside(InsideWalk, i, pixels)   pixels i and on, none of which needs tap offsets
//     writeOne(i)                          pixel i with tap offsets
// and the walk as its member.
template <class Filter>
void walkPattern(Filter& filter, int32_t count)
{
    for (int32_t i = 0; i < count;) {
        const int32_t inside = filter.walk.pixelsInside(Filter::kBefore, Filter::kAfter, count - i);
        const InsideWalk insideWalk(filter.walk);
        if (inside > 0 && insideWalk.valid) {
            filter.writeInside(insideWalk, i, inside);
            filter.walk.advance(inside);
            i += inside;
        } else {
            filter.writeOne(i);
            filter.walk.advance(1);
            ++i;
        }
    }
}

// The weight of a texel by its own alpha, rounded to nearest before it is raised: unlike the
// gradients', which truncate.
inline uint32_t patternWeight(Coverage opacity, uint32_t alpha)
{
    const uint32_t product = (static_cast<uint32_t>(opacity) * alpha) >> 8;
    const uint32_t weight = (product + 0x8000) >> 16;
    return (product >= 0x007F8000u ? weight + 1 : weight) & 0xFFu;
}

// Weights for pixels of one whole opacity, 0 to 255; returns how many it did, a multiple of four.
inline int32_t weighFours(const Pixel* colours, uint32_t* weights, uint32_t opacity, int32_t count)
{
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) {
        // Eight 16-bit products, of which the odd ones are 0. They are the exact weight times 256,
        // and reach 0x7F80 just when the rounded weight reaches 128.
        const U32x4 alpha = load4(colours + i) >> 24;
        const U32x4 weight = ((U32x4)((U16x8)alpha * (U16x8)all4(opacity)) + 0x80) >> 8;
        store4(weights + i, weight + (weight >> 7));
    }
    return i;
}

// Weights from the texels' alpha; moves the coverage on.
inline void weighByAlpha(const Pixel* colours, uint32_t* weights, CoverageSequence& coverage,
                         int32_t count)
{
    const Coverage opacity = coverage.current();
    const bool whole = coverage.isFlat() && (opacity & ~0x00FF0000) == 0;
    int32_t i = 0;
    if (whole) i = weighFours(colours, weights, static_cast<uint32_t>(fixFloor(opacity)), count);
    coverage.advance(i);
    for (; i < count; ++i) {
        weights[i] = patternWeight(coverage.current(), colours[i] >> 24);
        coverage.advance(1);
    }
}

// Blends count pixels that fillPiece(piece, pixels) provides piece by piece.
template <class FillPiece>
void drawInPieces(TranslucentRun& run, int32_t count, FillPiece fillPiece)
{
    PaintPiece piece;
    while (count > 0) {
        const int32_t length = count < kPieceLength ? count : kPieceLength;
        fillPiece(piece, length);
        run.drawPiece(piece.colours, piece.weights, length);
        count -= length;
    }
}

// The translucent filler of a filter whose texels carry their own alpha.
template <class Filter>
void drawByAlpha(MMContext2D& context, Filter& filter)
{
    TranslucentRun run(context);
    const auto fillPiece = [&](PaintPiece& piece, int32_t length) {
        filter.out = piece.colours;
        walkPattern(filter, length);
        weighByAlpha(piece.colours, piece.weights, run.coverage, length);
    };
    drawInPieces(run, spanLength(context), fillPiece);
    if (run.takeTail()) drawInPieces(run, 1, fillPiece);
}

} // namespace Graphics2D
} // namespace KAVO
