// SPDX-License-Identifier: MIT
// Strip fillers of the radial gradient, and what they do by the classic rules.
//
// The gradient parameter r is the length of the pixel's offset from the centre, mapped through a
// 2 by 2 matrix, so its circles may be ellipses on the target. Along a row r * r is a parabola in
// the offset dx: r falls up to the vertex and rises after it. A span is drawn in three phases that
// repeat as needed: outside the last circle and inside the first one, whose ends on the row are
// computed by roots, and the ramp between them. In the ramp r is followed as in incremental circle
// drawing: the error term collects the change of r * r along the row less that of the steps of r,
// and r takes whole unit steps, and at most one half unit per pixel, to bring it back. So r is
// resolved to half a unit, and the scale of the matrix decides how fine that is.
//
// dx and dy are taken at the pixel's top left corner, without half a pixel.
#include "graphics2d/strips/Channels.h"
#include "graphics2d/strips/CircleFollower.h"
#include "graphics2d/strips/GradientTarget.h"
#include "graphics2d/strips/RefinedRadialGradient.h"
#include "graphics2d/strips/StopList.h"
#include "graphics2d/strips/StripFillers.h"
#include "math/FixedMath.h"
#include "math/Vector2D.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

class RadialTarget : public GradientTarget<ClassicBlend> {
public:
    using GradientTarget::GradientTarget;

    // Draws count colours, with room up to the next multiple of four.
    void ramp(const Channels* colours, int32_t count)
    {
        if (translucent_) return translucentRamp(colours, count);
        packOpaque(colours, pixels_, count);
        pixels_ += count;
    }

    // The same by the steps from a colour on.
    void ramp(const RadialColour& from, const uint32_t* steps, int32_t count)
    {
        PaintPiece piece;
        Pixel* const pixels = translucent_ ? piece.colours : pixels_;
        const RadialColour first = from; // a copy: a store of pixels may alias it
        for (int32_t i = 0; i < count; ++i) {
            const auto channel = [&](int k) {
                return channelAfter(first, steps[i], k) + kChannelHalf;
            };
            pixels[i] = opaquePixels(channel(kRed), channel(kGreen), channel(kBlue));
        }
        if (!translucent_)
            pixels_ += count;
        else
            blend(
                piece, [&](int32_t i) { return channelAfter(first, steps[i], kAlpha); }, count);
    }

private:
    static uint32_t channelAfter(const RadialColour& colour, uint32_t steps, int k)
    {
        return colour.value[k] + colour.step[k] * CountedSteps::unitsOf(steps) +
               colour.halfStep[k] * CountedSteps::halvesOf(steps);
    }

    // Unlike the linear ramp, which extrapolates, each pixel has the weight of its own alpha.
    void translucentRamp(const Channels* colours, int32_t count)
    {
        PaintPiece piece;
        packOpaque(colours, piece.colours, count);
        blend(
            piece, [=](int32_t i) { return colours[i][kAlpha]; }, count);
    }

    template <class AlphaAt>
    void blend(PaintPiece& piece, AlphaAt alphaAt, int32_t count)
    {
        const Coverage opacity = run_.coverage.current();
        if (run_.coverage.isFlatAndWhole()) {
            for (int32_t i = 0; i < count; ++i)
                piece.weights[i] = wholeWeight(opacity, static_cast<int32_t>(alphaAt(i)));
            run_.coverage.advance(count);
        } else {
            for (int32_t i = 0; i < count; ++i) {
                piece.weights[i] =
                    gradientWeight(run_.coverage.current(), static_cast<int32_t>(alphaAt(i)));
                run_.coverage.advance(1);
            }
        }
        run_.drawPiece(piece, count);
    }

    // gradientWeight of an opacity without a fraction: what the alpha has of one is then lost.
    static uint32_t wholeWeight(Coverage opacity, int32_t alpha)
    {
        if (alpha < 0) return gradientWeight(opacity, alpha);
        return raisedByte((fixFloor(opacity) * fixFloor(alpha)) >> 8);
    }
};

// The walk along the span. Everything persists from phase to phase; only r is refreshed where it
// is computed exactly.
class RadialWalk {
public:
    explicit RadialWalk(const MMContext2D& context)
        : stops_(context.currentPaint), paint_(context.currentPaint),
          dy_(wrapSub(fixFromInt(context.spanRow), paint_.radialCenterY)),
          segment_(stops_.count >= 2 ? stops_.count - 2 : 0)
    {
        at_.dx = wrapSub(fixFromInt(fixFloor(context.spanStart)), paint_.radialCenterX);
        at_.a = wrapAdd(fixMul(paint_.radialXToU, paint_.radialXToU),
                        fixMul(paint_.radialXToV, paint_.radialXToV));
        at_.b = fixMul(wrapAdd(fixMul(paint_.radialXToU, paint_.radialYToU),
                               fixMul(paint_.radialXToV, paint_.radialYToV)),
                       wrapAdd(dy_, dy_));
        at_.vertex = fixDiv(wrapNeg(at_.b), wrapAdd(at_.a, at_.a));
        at_.r = exactR();
    }

    void draw(RadialTarget& target, int32_t count)
    {
        if (stops_.isEmpty()) return;
        const Fixed first = stops_.firstOffset();
        const Fixed last = stops_.lastOffset();
        while (count > 0) {
            if (at_.r >= last) drawOutside(target, count);
            if (at_.r < first && count > 0) drawInside(target, count);
            while (first <= at_.r && at_.r < last && count > 0)
                drawSegment(target, count);
        }
    }

private:
    Fixed exactR() const
    {
        const MMPoint2D mapped = {
            wrapAdd(fixMul(at_.dx, paint_.radialXToU), fixMul(dy_, paint_.radialYToU)),
            wrapAdd(fixMul(at_.dx, paint_.radialXToV), fixMul(dy_, paint_.radialYToV))};
        return v2dNorm(&mapped);
    }

    // Where the row enters (side -1) or leaves (side +1) the circle r = offset, as a dx rounded up
    // to whole pixels.
    Fixed rootOf(Fixed offset, Fixed discriminant, int32_t side) const
    {
        const Fixed half = fixMul(offset, fixSqrt(discriminant));
        const Fixed root = side < 0 ? wrapSub(at_.vertex, half) : wrapAdd(at_.vertex, half);
        return static_cast<Fixed>(static_cast<uint32_t>(wrapAdd(root, 0xFFFF)) & 0xFFFF0000u);
    }
    // Negative when the row misses the circle.
    Fixed discriminantOf(Fixed offset) const
    {
        const Fixed q = wrapAdd(fixMul(paint_.radialYToU, paint_.radialYToU),
                                fixMul(paint_.radialYToV, paint_.radialYToV));
        const Fixed g = fixDiv(dy_, offset);
        const Fixed c = fixDiv(wrapSub(fixMul(fixMul(g, g), q), kFixedOne), at_.a);
        const Fixed h = fixDiv(at_.vertex, offset);
        return wrapSub(fixMul(h, h), c);
    }

    // One colour over count pixels; r is not followed.
    void pad(RadialTarget& target, Pixel colour, int32_t length, int32_t& count)
    {
        target.pad(colour, length);
        at_.dx = wrapAdd(at_.dx, fixFromInt(length));
        count -= length;
    }
    // The same up to and including dx = end.
    void padTo(RadialTarget& target, Pixel colour, Fixed end, int32_t& count)
    {
        while (count > 0 && at_.dx <= end)
            pad(target, colour, stepsWithin(at_.dx, kFixedOne, INT32_MIN, end, count), count);
        at_.r = exactR();
    }
    // A single pixel where rounding left r on the wrong side.
    void padOne(RadialTarget& target, Pixel colour, int32_t& count)
    {
        pad(target, colour, 1, count);
        at_.r = exactR();
    }

    void drawOutside(RadialTarget& target, int32_t& count)
    {
        const Fixed last = stops_.lastOffset();
        const Pixel colour = stops_.lastColour();
        if (at_.direction > 0) { // past the vertex r only grows
            pad(target, colour, count, count);
            return;
        }
        const Fixed discriminant = discriminantOf(last);
        padTo(target, colour, discriminant < 0 ? INT32_MAX : rootOf(last, discriminant, -1), count);
        if (at_.r >= last && count > 0) padOne(target, colour, count);
        if (at_.dx >= at_.vertex) at_.direction = kFixedOne;
    }

    void drawInside(RadialTarget& target, int32_t& count)
    {
        const Fixed first = stops_.firstOffset();
        const int32_t before = count;
        padTo(target, stops_.firstColour(), rootOf(first, discriminantOf(first), 1), count);
        if (at_.r >= stops_.lastOffset() && count > 0) padOne(target, stops_.lastColour(), count);
        // dx can lie past the rounded exit while r is still inside.
        if (count == before && at_.r < first) padOne(target, stops_.firstColour(), count);
        at_.direction = kFixedOne;
    }

    // The segment with offset[i] <= r < offset[i + 1], from where the search last ended.
    void findSegment()
    {
        while (segment_ != 0 && stops_.offsets[segment_] >= at_.r)
            --segment_;
        while (segment_ + 1 < stops_.count && stops_.offsets[segment_ + 1] <= at_.r)
            ++segment_;
    }

    // Change of the colour per unit that r moves in the current direction. The divisor is the
    // segment's length and a half: the colours then stay within the segment's ends.
    Channels stepPerUnit(const Segment& segment)
    {
        Fixed divisor = wrapAdd(segment.length, kFixedHalf);
        const bool falling = at_.dx < at_.vertex;
        if (falling) {
            divisor = ~divisor;
        } else {
            at_.risingMask = -1;
            at_.direction = kFixedOne;
        }
        return mapChannels(segment.difference, [&](int32_t change) {
            const bool isZero = change == 0 && divisor != 0;
            return wrapAdd(isZero ? 0 : fixDiv(change, divisor), falling ? 1 : 0);
        });
    }

    // Draws pixels while r stays in its segment, up to the vertex or the end of the span.
    void drawSegment(RadialTarget& target, int32_t& count)
    {
        findSegment();
        const Segment segment(stops_, segment_);
        const Fixed low = stops_.offsets[segment_];
        const Fixed high = stops_.offsets[segment_ + 1];
        RadialColour colour;
        colour.value = segment.at(at_.r);
        colour.step = stepPerUnit(segment);
        colour.halfStep = (Channels)((I32x4)colour.step >> 1);
        at_.start();
        bool crossed = false;
        const auto goesOn = [&] { return low <= at_.r && at_.r < high && !crossed; };
        // Follows r for up to so many pixels; returns how many.
        const auto follow = [&](auto& walked, auto* marks, int32_t room) {
            int32_t length = 0;
            while (length < room && goesOn()) {
                const int32_t usual =
                    at_.advanceUsual(walked, low, high, marks + length, room - length);
                length += usual;
                if (usual > 0) continue;
                marks[length++] = walked.mark();
                crossed = at_.advance(walked);
            }
            return length;
        };
        while (count > 0 && goesOn()) {
            const int32_t room = count < kPieceLength ? count : kPieceLength;
            count -= drawPiece(target, colour, follow, room);
        }
    }

    template <class Follow>
    static int32_t drawPiece(RadialTarget& target, RadialColour& colour, Follow follow,
                             int32_t room)
    {
        if constexpr (kLanes == 1) {
            CountedSteps counted;
            uint32_t steps[kPieceLength];
            const int32_t length = follow(counted, steps, room);
            target.ramp(colour, steps, length);
            colour.add(CountedSteps::unitsOf(counted.counts),
                       CountedSteps::halvesOf(counted.counts));
            return length;
        } else {
            Channels colours[kPieceLength];
            const int32_t length = follow(colour, colours, room);
            target.ramp(colours, length);
            return length;
        }
    }

    const StopList stops_;
    const MMPaint& paint_;
    const Fixed dy_;
    CircleFollower at_;
    uint32_t segment_;
};

void drawRadial(MMContext2D& context, bool translucent)
{
    RadialTarget target(context, translucent);
    const int32_t count = spanLength(context);
    if (count <= 0 && !translucent) return;
    RadialWalk walk(context);
    walk.draw(target, count);
    if (target.takeTail()) walk.draw(target, 1);
}

} // namespace

void drawRadialGradient(MMContext2D& context)
{
    if (context.refined != 0)
        drawRefinedRadialGradient(context, false);
    else
        drawRadial(context, false);
}

void drawTranslucentRadialGradient(MMContext2D& context)
{
    if (context.refined != 0)
        drawRefinedRadialGradient(context, true);
    else
        drawRadial(context, true);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
