// Strip fillers of the linear gradient.
//
// The gradient parameter t changes by a constant per pixel, so a span falls into runs: pads of the
// first and last colour outside the stops, and one ramp per segment between two stops. Where a run
// starts, t is divided into the segment once; from there the channels are stepped by addition.
// t is taken at the pixel's left end, without half a pixel.
#include "graphics2d/GradientStops.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// A colour that changes by a constant per pixel, written as opaque pixels whatever its alpha.
class ColourRamp {
public:
    ColourRamp(const Channels& first, const Channels& step) : channels_(first), step_(step) {}

    // Writes the next count pixels.
    void write(Pixel* out, int32_t count)
    {
        int32_t i = 0;
        if (count >= 4) i = writeFours(out, count);
        for (; i < count; ++i) {
            out[i] = opaquePixel(channels_.red, channels_.green, channels_.blue);
            advance(1);
        }
    }

private:
    int32_t writeFours(Pixel* out, int32_t count)
    {
        U32x4 red = ramp4(wrapAdd(channels_.red, kChannelHalf), step_.red);
        U32x4 green = ramp4(wrapAdd(channels_.green, kChannelHalf), step_.green);
        U32x4 blue = ramp4(wrapAdd(channels_.blue, kChannelHalf), step_.blue);
        const U32x4 redStep = all4(static_cast<uint32_t>(step_.red) * 4);
        const U32x4 greenStep = all4(static_cast<uint32_t>(step_.green) * 4);
        const U32x4 blueStep = all4(static_cast<uint32_t>(step_.blue) * 4);
        int32_t i = 0;
        for (; i + 4 <= count; i += 4) {
            store4(out + i, packOpaque(red, green, blue));
            red += redStep;
            green += greenStep;
            blue += blueStep;
        }
        advance(i);
        return i;
    }

    void advance(int32_t count)
    {
        channels_ += step_.map([count](int32_t step) { return wrapMul(step, count); });
    }

    Channels channels_;
    Channels step_;
};

class OpaqueTarget : public OpaqueGradientTarget {
public:
    using OpaqueGradientTarget::OpaqueGradientTarget;

    void ramp(const Channels& first, const Channels& step, int32_t count)
    {
        ColourRamp(first, step).write(pixels_, count);
        pixels_ += count;
    }
};

class TranslucentTarget : public TranslucentGradientTarget {
public:
    using TranslucentGradientTarget::TranslucentGradientTarget;

    // The weight is extrapolated from the segment's first three pixels rather than computed for
    // each: it is exact where opacity or alpha is constant, and a ramp anyway where both change.
    void ramp(const Channels& first, const Channels& step, int32_t count)
    {
        const Coverage opacity = run_.coverage.next();
        const int32_t alpha = wrapAdd(first.alpha, step.alpha);
        int32_t weight = rampWeight(run_.coverage.current(), first.alpha);
        int32_t nextWeight = rampWeight(opacity, alpha);
        const int32_t weightStep =
            wrapSub(rampWeight(wrapAdd(opacity, run_.coverage.step()), wrapAdd(alpha, step.alpha)),
                    nextWeight);
        ColourRamp colours(first, step);
        PaintPiece piece;
        for (int32_t done = 0; done < count;) {
            const int32_t length = count - done < kPieceLength ? count - done : kPieceLength;
            colours.write(piece.colours, length);
            piece.weights[0] = weightByte(weight);
            for (int32_t i = 1; i < length; ++i) {
                piece.weights[i] = weightByte(nextWeight);
                nextWeight = wrapAdd(nextWeight, weightStep);
            }
            weight = nextWeight;
            nextWeight = wrapAdd(nextWeight, weightStep);
            run_.drawPiece(piece, length);
            done += length;
        }
        run_.coverage.advance(count);
    }

private:
    // 16.16, one higher from 128.0 on so that full opacity reaches 255.
    static int32_t rampWeight(Coverage opacity, int32_t alpha)
    {
        const int32_t product = fixMulSHR(opacity, alpha, 8);
        return product >= 0x00800000 ? wrapAdd(product, kFixedOne) : product;
    }
    static uint32_t weightByte(int32_t weight)
    {
        return static_cast<uint32_t>(wrapAdd(weight, 0x8000) >> 16) & 0xFFu;
    }
};

// The walk along the span: where it is in the gradient, and in which segment it was last.
class LinearWalk {
public:
    explicit LinearWalk(const MMContext2D& context)
        : stops_(context.currentPaint), step_(context.currentPaint.gradientStepX)
    {
        const MMPaint& paint = context.currentPaint;
        const Fixed dx = wrapSub(fixFromInt(fixFloor(context.spanStart)), paint.gradientOriginX);
        const Fixed dy = wrapSub(fixFromInt(context.spanRow), paint.gradientOriginY);
        t_ = wrapAdd(fixMul(paint.gradientStepY, dy), fixMul(paint.gradientStepX, dx));
    }

    // Draws count pixels. The phases repeat because the parameter may run through them in either
    // direction, and may wrap.
    template <class Target>
    void draw(Target& target, int32_t count)
    {
        if (stops_.isEmpty()) return;
        const Fixed first = stops_.firstOffset();
        const Fixed last = stops_.lastOffset();
        while (count > 0) {
            while (count > 0 && t_ <= first)
                target.pad(stops_.firstColour(), advance(INT32_MIN, first, count));
            while (count > 0 && t_ >= last)
                target.pad(stops_.lastColour(), advance(last, INT32_MAX, count));
            while (count > 0 && first < t_ && t_ < last)
                drawSegment(target, count);
        }
    }

private:
    // Moves past all pixels up to count that keep t within [low, high]; returns how many.
    int32_t advance(Fixed low, Fixed high, int32_t& count)
    {
        const int32_t steps = stepsWithin(t_, step_, low, high, count);
        t_ = wrapAdd(t_, wrapMul(step_, steps));
        count -= steps;
        return steps;
    }

    // The segment with offset[i] < t <= offset[i + 1], from where the search last ended.
    void findSegment()
    {
        while (segment_ + 1 < stops_.count && stops_.offsets[segment_ + 1] <= t_)
            ++segment_;
        while (segment_ != 0 && stops_.offsets[segment_] >= t_)
            --segment_;
    }

    // A segment keeps its end: a pixel that lands exactly on the next stop is still drawn from it.
    template <class Target>
    void drawSegment(Target& target, int32_t& count)
    {
        findSegment();
        const Fixed low = stops_.offsets[segment_];
        const Fixed high = stops_.offsets[segment_ + 1];
        const Segment segment(stops_, segment_);
        const Channels first = segment.at(t_);
        const Fixed fractionStep = fixDiv(step_, segment.length);
        const Channels step = segment.difference.map(
            [fractionStep](int32_t change) { return fixMul(fractionStep, change); });
        // t may wrap into the segment again, which then goes on.
        int32_t length = 0;
        while (count > 0 && low < t_ && t_ <= high)
            length += advance(low + 1, high, count);
        target.ramp(first, step, length);
    }

    StopList stops_;
    Fixed step_;
    Fixed t_;
    uint32_t segment_ = 0;
};

} // namespace

void MMContext2D::drawLinearGradientStrip()
{
    OpaqueTarget out(*this);
    LinearWalk(*this).draw(out, spanLength(*this));
}

void MMContext2D::drawLinearGradientTStrip()
{
    TranslucentTarget out(*this);
    LinearWalk walk(*this);
    walk.draw(out, spanLength(*this));
    if (out.takeTail()) walk.draw(out, 1);
}

} // namespace Graphics2D
} // namespace KAVO
