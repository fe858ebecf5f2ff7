// Strip fillers of the radial gradient.
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
#include "graphics2d/GradientStops.h"
#include "math/Vector2D.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kQuarter = 0x4000;

class OpaqueTarget {
public:
    explicit OpaqueTarget(const MMContext2D& context) : pixels_(spanFirstPixel(context)) {}

    void pad(Pixel colour, int32_t count)
    {
        fillPixels(pixels_, count, colour);
        pixels_ += count;
    }
    void rampPixel(const Channels& colour)
    {
        *pixels_++ = opaquePixel(colour.red, colour.green, colour.blue);
    }
    void endRamp() {}

private:
    Pixel* pixels_;
};

class TranslucentTarget {
public:
    explicit TranslucentTarget(MMContext2D& context) : run_(context) {}

    bool takeTail() { return run_.takeTail(); }
    void pad(Pixel colour, int32_t count) { run_.drawColour(colour, count); }

    // Unlike the linear ramp, which extrapolates, each pixel has the weight of its own alpha.
    void rampPixel(const Channels& colour)
    {
        piece_.colours[length_] = opaquePixel(colour.red, colour.green, colour.blue);
        piece_.weights[length_] = gradientWeight(run_.coverage.current(), colour.alpha);
        run_.coverage.advance(1);
        if (++length_ == kPieceLength) endRamp();
    }
    void endRamp()
    {
        run_.drawPiece(piece_.colours, piece_.weights, length_);
        length_ = 0;
    }

private:
    TranslucentRun run_;
    PaintPiece piece_;
    int32_t length_ = 0;
};

// The walk along the span. Everything persists from phase to phase; only r is refreshed where it
// is computed exactly.
class RadialWalk {
public:
    explicit RadialWalk(const MMContext2D& context)
        : stops_(context.currentPaint), paint_(context.currentPaint),
          dx_(wrapSub(fixFromInt(fixFloor(context.spanStart)), paint_.radialCenterX)),
          dy_(wrapSub(fixFromInt(context.spanRow), paint_.radialCenterY)),
          a_(wrapAdd(fixMul(paint_.radialXToU, paint_.radialXToU),
                     fixMul(paint_.radialXToV, paint_.radialXToV))),
          b_(fixMul(wrapAdd(fixMul(paint_.radialXToU, paint_.radialYToU),
                            fixMul(paint_.radialXToV, paint_.radialYToV)),
                    wrapAdd(dy_, dy_))),
          vertex_(fixDiv(wrapNeg(b_), wrapAdd(a_, a_))), r_(exactR()),
          segment_(stops_.count >= 2 ? stops_.count - 2 : 0)
    {
    }

    template <class Target>
    void draw(Target& target, int32_t count)
    {
        if (stops_.isEmpty()) return;
        const Fixed first = stops_.firstOffset();
        const Fixed last = stops_.lastOffset();
        while (count > 0) {
            if (r_ >= last) drawOutside(target, count);
            if (r_ < first && count > 0) drawInside(target, count);
            while (first <= r_ && r_ < last && count > 0) {
                drawSegment(target, count);
                target.endRamp();
            }
        }
    }

private:
    Fixed exactR() const
    {
        const MMPoint2D mapped = {
            wrapAdd(fixMul(dx_, paint_.radialXToU), fixMul(dy_, paint_.radialYToU)),
            wrapAdd(fixMul(dx_, paint_.radialXToV), fixMul(dy_, paint_.radialYToV))};
        return v2dNorm(&mapped);
    }

    // Where the row enters (side -1) or leaves (side +1) the circle r = offset, as a dx rounded up
    // to whole pixels.
    Fixed rootOf(Fixed offset, Fixed discriminant, int32_t side) const
    {
        const Fixed half = fixMul(offset, fixSqrt(discriminant));
        const Fixed root = side < 0 ? wrapSub(vertex_, half) : wrapAdd(vertex_, half);
        return static_cast<Fixed>(static_cast<uint32_t>(wrapAdd(root, 0xFFFF)) & 0xFFFF0000u);
    }
    // Negative when the row misses the circle.
    Fixed discriminantOf(Fixed offset) const
    {
        const Fixed q = wrapAdd(fixMul(paint_.radialYToU, paint_.radialYToU),
                                fixMul(paint_.radialYToV, paint_.radialYToV));
        const Fixed g = fixDiv(dy_, offset);
        const Fixed c = fixDiv(wrapSub(fixMul(fixMul(g, g), q), kFixedOne), a_);
        const Fixed h = fixDiv(vertex_, offset);
        return wrapSub(fixMul(h, h), c);
    }

    // One colour over count pixels; r is not followed.
    template <class Target>
    void pad(Target& target, Pixel colour, int32_t length, int32_t& count)
    {
        target.pad(colour, length);
        dx_ = wrapAdd(dx_, fixFromInt(length));
        count -= length;
    }
    // The same up to and including dx = end.
    template <class Target>
    void padTo(Target& target, Pixel colour, Fixed end, int32_t& count)
    {
        while (count > 0 && dx_ <= end)
            pad(target, colour, stepsWithin(dx_, kFixedOne, INT32_MIN, end, count), count);
        r_ = exactR();
    }
    // A single pixel where rounding left r on the wrong side.
    template <class Target>
    void padOne(Target& target, Pixel colour, int32_t& count)
    {
        pad(target, colour, 1, count);
        r_ = exactR();
    }

    template <class Target>
    void drawOutside(Target& target, int32_t& count)
    {
        const Fixed last = stops_.lastOffset();
        const Pixel colour = stops_.lastColour();
        if (direction_ > 0) { // past the vertex r only grows
            pad(target, colour, count, count);
            return;
        }
        const Fixed discriminant = discriminantOf(last);
        padTo(target, colour, discriminant < 0 ? INT32_MAX : rootOf(last, discriminant, -1), count);
        if (r_ >= last && count > 0) padOne(target, colour, count);
        if (dx_ >= vertex_) direction_ = kFixedOne;
    }

    template <class Target>
    void drawInside(Target& target, int32_t& count)
    {
        const Fixed first = stops_.firstOffset();
        const int32_t before = count;
        padTo(target, stops_.firstColour(), rootOf(first, discriminantOf(first), 1), count);
        if (r_ >= stops_.lastOffset() && count > 0) padOne(target, stops_.lastColour(), count);
        // dx can lie past the rounded exit while r is still inside.
        if (count == before && r_ < first) padOne(target, stops_.firstColour(), count);
        direction_ = kFixedOne;
    }

    // The segment with offset[i] <= r < offset[i + 1], from where the search last ended.
    void findSegment()
    {
        while (segment_ != 0 && stops_.offsets[segment_] >= r_)
            --segment_;
        while (segment_ + 1 < stops_.count && stops_.offsets[segment_ + 1] <= r_)
            ++segment_;
    }

    // Change of the colour per unit that r moves in the current direction. The divisor is the
    // segment's length and a half: the colours then stay within the segment's ends.
    Channels stepPerUnit(const Segment& segment)
    {
        const Fixed divisor = wrapAdd(segment.length, kFixedHalf);
        if (dx_ < vertex_)
            return segment.difference.map(
                [divisor](int32_t change) { return wrapAdd(fixDiv(change, ~divisor), 1); });
        risingMask_ = -1;
        direction_ = kFixedOne;
        return segment.difference.map(
            [divisor](int32_t change) { return fixDiv(change, divisor); });
    }

    // Draws pixels while r stays in its segment, up to the vertex or the end of the span.
    template <class Target>
    void drawSegment(Target& target, int32_t& count)
    {
        findSegment();
        const Segment segment(stops_, segment_);
        const Fixed low = stops_.offsets[segment_];
        const Fixed high = stops_.offsets[segment_ + 1];
        Channels colour = segment.at(r_);
        const Channels step = stepPerUnit(segment);
        const Channels halfStep = step.map([](int32_t s) { return s >> 1; });
        bool crossedVertex = false;
        while (low <= r_ && r_ < high && count > 0 && !crossedVertex) {
            target.rampPixel(colour);
            crossedVertex = advance(colour, step, halfStep);
            --count;
        }
    }

    // Moves one pixel to the right and r after it, the colour with r. True when that crosses the
    // vertex, where the colour steps change sign.
    //
    // A unit step of r changes r * r by 1 - 2r while falling and by 1 + 2r while rising, a half
    // step by 1/4 - r and 1/4 + r. The mask and the low bit negate r in two's complement.
    bool advance(Channels& colour, const Channels& step, const Channels& halfStep)
    {
        error_ = wrapAdd(error_, wrapAdd(fixMul(wrapAdd(wrapAdd(dx_, dx_), kFixedOne), a_), b_));
        dx_ = wrapAdd(dx_, kFixedOne);
        const bool crossed = dx_ >= vertex_ && risingMask_ == 0;
        if (crossed) {
            direction_ = kFixedOne;
            risingMask_ = -1;
        }
        const bool falling = direction_ < 0;
        const int32_t carry = risingMask_ & 1;

        int32_t units = 0;
        while (wrapAdd(r_, direction_) > 0) {
            const int32_t twoR = wrapAdd(risingMask_ ^ wrapAdd(r_, r_), carry);
            if (error_ <= 0 && !(falling && wrapSub(kFixedOne, twoR) >= error_)) break;
            r_ = wrapAdd(r_, direction_);
            error_ = wrapAdd(error_, wrapSub(twoR, kFixedOne));
            ++units;
        }
        if (units != 0) colour += step.map([units](int32_t s) { return wrapMul(s, units); });

        const int32_t signedR = wrapAdd(r_ ^ risingMask_, carry);
        if (wrapAdd(r_, direction_) > 0 &&
            (error_ > 0 || (falling && wrapSub(kQuarter, signedR) >= error_))) {
            error_ = wrapAdd(error_, wrapSub(signedR, kQuarter));
            r_ = wrapAdd(r_, direction_ >> 1);
            colour += halfStep;
        }
        return crossed;
    }

    const StopList stops_;
    const MMPaint& paint_;
    Fixed dx_; // offset from the centre, device pixels
    const Fixed dy_;
    const Fixed a_; // r * r = a dx * dx + b dx + what does not change along the row
    const Fixed b_;
    const Fixed vertex_; // the dx of the smallest r
    Fixed r_;
    Fixed error_ = 0;
    Fixed direction_ = -kFixedOne; // one unit step of r
    int32_t risingMask_ = 0;       // all ones once the ramp is drawn past the vertex
    uint32_t segment_;
};

} // namespace

void MMContext2D::drawRadialGradientStrip()
{
    OpaqueTarget out(*this);
    const int32_t count = spanLength(*this);
    if (count > 0) RadialWalk(*this).draw(out, count);
}

void MMContext2D::drawRadialGradientTStrip()
{
    TranslucentTarget out(*this);
    RadialWalk walk(*this);
    walk.draw(out, spanLength(*this));
    if (out.takeTail()) walk.draw(out, 1);
}

} // namespace Graphics2D
} // namespace KAVO
