// SPDX-License-Identifier: MIT
// Strip fillers of the linear gradient, and what they do by the classic rules.
//
// The gradient parameter t changes by a constant per pixel, so a span falls into runs: pads of the
// first and last colour outside the stops, and one ramp per segment between two stops. Where a run
// starts, t is divided into the segment once; from there the channels are stepped by addition.
// t is taken at the pixel's left end, without half a pixel.
#include "graphics2d/strips/GradientTarget.h"
#include "graphics2d/strips/RefinedLinearGradient.h"
#include "graphics2d/strips/StopList.h"
#include "graphics2d/strips/StripFillers.h"
#include "math/FixedMath.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

class LinearTarget : public GradientTarget<ClassicBlend> {
public:
    using GradientTarget::GradientTarget;

    void ramp(Channels first, Channels step, int32_t count)
    {
        ColourRamp colours(level(), first, step);
        if (!translucent_) return rampOpaque(colours, count);
        translucentRamp(colours, first, step, count);
    }

private:
    // The weight is extrapolated from the segment's first three pixels rather than computed for
    // each: it is exact where opacity or alpha is constant, and a ramp anyway where both change.
    void translucentRamp(ColourRamp& colours, Channels first, Channels step, int32_t count)
    {
        const Coverage opacity = run_.coverage.next();
        const int32_t alphaStep = static_cast<int32_t>(step[kAlpha]);
        const int32_t firstAlpha = static_cast<int32_t>(first[kAlpha]);
        const int32_t alpha = wrapAdd(firstAlpha, alphaStep);
        int32_t weight = rampWeight(run_.coverage.current(), firstAlpha);
        int32_t nextWeight = rampWeight(opacity, alpha);
        const int32_t weightStep =
            wrapSub(rampWeight(wrapAdd(opacity, run_.coverage.step()), wrapAdd(alpha, alphaStep)),
                    nextWeight);
        run_.coverage.advance(count);
        PaintPiece piece;
        while (count > 0) {
            const int32_t length = count < kPieceLength ? count : kPieceLength;
            colours.write(piece.colours, nullptr, length);
            piece.weights[0] = roundedWeight(weight);
            for (int32_t i = 1; i < length; ++i) {
                piece.weights[i] = roundedWeight(nextWeight);
                nextWeight = wrapAdd(nextWeight, weightStep);
            }
            weight = nextWeight;
            nextWeight = wrapAdd(nextWeight, weightStep);
            run_.drawPiece(piece, length);
            count -= length;
        }
    }

    // 16.16, one higher from 128.0 on so that full opacity reaches 255.
    static int32_t rampWeight(Coverage opacity, int32_t alpha)
    {
        const int32_t product = fixMulSHR(opacity, alpha, 8);
        return product >= 0x00800000 ? wrapAdd(product, kFixedOne) : product;
    }
};

// The walk along the span: where it is in the gradient, and in which segment it was last.
class LinearWalk {
public:
    explicit LinearWalk(const MMContext2D& context)
        : stops_(context.currentPaint), step_(context.currentPaint.gradientStepX)
    {
    }

    // Goes to the first pixel of the current span in a row.
    void start(const MMContext2D& context, int32_t row)
    {
        const MMPaint& paint = context.currentPaint;
        const Fixed dx = wrapSub(fixFromInt(fixFloor(context.spanStart)), paint.gradientOriginX);
        const Fixed dy = wrapSub(fixFromInt(row), paint.gradientOriginY);
        t_ = wrapAdd(fixMul(paint.gradientStepY, dy), fixMul(paint.gradientStepX, dx));
        segment_ = 0;
    }

    // Draws count pixels. The phases repeat because the parameter may run through them in either
    // direction, and may wrap.
    void draw(LinearTarget& target, int32_t count)
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
    void drawSegment(LinearTarget& target, int32_t& count)
    {
        findSegment();
        const Fixed low = stops_.offsets[segment_];
        const Fixed high = stops_.offsets[segment_ + 1];
        enterSegment();
        const Channels first = ramp_.at(t_);
        // t may wrap into the segment again, which then goes on.
        int32_t length = 0;
        while (count > 0 && low < t_ && t_ <= high)
            length += advance(low + 1, high, count);
        target.ramp(first, rampStep_, length);
    }

    // Makes the segment's ramp the current one, unless it is.
    void enterSegment()
    {
        if (rampSegment_ == segment_) return;
        rampSegment_ = segment_;
        ramp_.set(stops_, segment_);
        rampStep_ = ramp_.part(fixDiv(step_, ramp_.length));
    }

    StopList stops_;
    Fixed step_;
    Fixed t_;
    uint32_t segment_;

    // The ramp that was drawn last.
    uint32_t rampSegment_ = UINT32_MAX; // or none
    Segment ramp_;
    Channels rampStep_;
};

void drawLinear(MMContext2D& context, bool translucent, const SpanRows& rows)
{
    LinearTarget target(context, translucent);
    LinearWalk walk(context);
    const int32_t count = spanLength(context);
    walk.start(context, context.spanRow);
    walk.draw(target, count);
    if (target.takeTail()) walk.draw(target, 1);
    for (int32_t i = 1; i < rows.count; ++i) {
        walk.start(context, context.spanRow + i);
        target.goTo(spanFirstPixel(context) + i * rows.pixels);
        walk.draw(target, count);
    }
}

void drawByMode(MMContext2D& context, bool translucent, const SpanRows& rows)
{
    if (context.refined != 0)
        drawRefinedLinearGradient(context, translucent, rows);
    else
        drawLinear(context, translucent, rows);
}

constexpr SpanRows kOneRow = {1, 0};

} // namespace

void drawLinearGradient(MMContext2D& context)
{
    drawByMode(context, false, kOneRow);
}

void drawTranslucentLinearGradient(MMContext2D& context)
{
    drawByMode(context, true, kOneRow);
}

void drawLinearGradientRows(MMContext2D& context, const SpanRows& rows)
{
    drawByMode(context, false, rows);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
