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

class OpaqueTarget : public OpaqueGradientTarget {
public:
    using OpaqueGradientTarget::OpaqueGradientTarget;

    void rampPixel(const Channels& colour)
    {
        *pixels_++ = opaquePixel(colour.red, colour.green, colour.blue);
    }
    void endRamp() {}
};

class TranslucentTarget : public TranslucentGradientTarget {
public:
    using TranslucentGradientTarget::TranslucentGradientTarget;

    // Unlike the linear ramp, which extrapolates, each pixel has the weight of its own alpha.
    void rampPixel(const Channels& colour)
    {
        piece_.colours[length_] = opaquePixel(colour.red, colour.green, colour.blue);
        alphas_[length_] = colour.alpha;
        if (++length_ == kPieceLength) endRamp();
    }
    void endRamp()
    {
        const Coverage opacity = run_.coverage.current();
        const bool whole = run_.coverage.isFlat() && (opacity & ~0x00FF0000) == 0;
        for (int32_t i = 0; i < length_; ++i) {
            piece_.weights[i] = whole ? wholeWeight(opacity, alphas_[i])
                                      : gradientWeight(run_.coverage.current(), alphas_[i]);
            run_.coverage.advance(1);
        }
        run_.drawPiece(piece_, length_);
        length_ = 0;
    }

private:
    // gradientWeight of an opacity without a fraction: what the alpha has of one is then lost.
    static uint32_t wholeWeight(Coverage opacity, int32_t alpha)
    {
        if (alpha < 0) return gradientWeight(opacity, alpha);
        return raisedByte((fixFloor(opacity) * fixFloor(alpha)) >> 8);
    }

    PaintPiece piece_;
    int32_t alphas_[kPieceLength];
    int32_t length_ = 0;
};

// Follows r along a row, one pixel to the right at a time.
//
// A unit step of r changes r * r by 1 - 2r while falling and by 1 + 2r while rising, a half step by
// 1/4 - r and 1/4 + r.
struct CircleFollower {
    Fixed dx;     // offset from the centre, device pixels
    Fixed vertex; // the dx of the smallest r
    Fixed a;      // r * r = a dx * dx + b dx + what does not change along the row
    Fixed b;
    Fixed r = 0;
    Fixed error = 0;
    Fixed change = 0;             // of r * r over the next pixel
    Fixed direction = -kFixedOne; // one unit step of r
    int32_t risingMask = 0;       // all ones once the ramp is drawn past the vertex
    int32_t guess = 0;            // unit steps that a pixel takes at least, as of late

    struct Move {
        int32_t units; // unit steps
        bool half;     // and a half one
        bool crossed;  // the vertex; the next move needs the colour steps of the other side
    };

    // One pixel, whatever the numbers.
    Move advance()
    {
        error = wrapAdd(error, change);
        moveRight();
        Move move = {};
        move.crossed = dx >= vertex && risingMask == 0;
        if (move.crossed) {
            direction = kFixedOne;
            risingMask = -1;
        }
        move.units = stepOneByOne();
        move.half = halfStep();
        guess = move.units < guess ? move.units : move.units - 1;
        if (guess < 0 || guess > kGreatestGuess) guess = 0;
        return move;
    }

    // The same for the usual pixel, which takes the guessed number of unit steps or one more,
    // without a jump that depends on which: g steps cost g * (2r + g), or g * (2r - g) while
    // falling. They are right when they end with 1 - 2r < error <= 0; the half step is then due
    // while falling only. False, and nothing done, when they are not right, at the vertex, and with
    // numbers so small or large that steps stop early or wrap.
    template <bool kFalling>
    [[gnu::always_inline]] bool advanceByGuess(Move& move)
    {
        if (r < 16 * kFixedOne || r >= 2048 * kFixedOne) return false;
        if (kFalling && wrapAdd(dx, kFixedOne) >= vertex) return false;
        const int32_t due = wrapAdd(error, change);
        if (kFalling ? due > 0 || due < -kGreatestError : due < 0 || due > kGreatestError)
            return false;
        const Fixed steps = guess * kFixedOne;
        Fixed newR = kFalling ? r - steps : r + steps;
        const int32_t cost = guess * (r + newR);
        int32_t rest = kFalling ? due + cost : due - cost;
        const int32_t more =
            -static_cast<int32_t>(kFalling ? rest <= kFixedOne - 2 * newR : rest > 0);
        const int32_t next = kFalling ? 2 * newR - kFixedOne : -2 * newR - kFixedOne;
        rest += more & next;
        newR += more & (kFalling ? -kFixedOne : kFixedOne);
        if (rest > 0 || rest <= kFixedOne - 2 * newR) return false;
        move = {guess - more, false, false};
        if (kFalling) {
            const int32_t half = -static_cast<int32_t>(rest <= kQuarter - newR);
            rest += half & (newR - kQuarter);
            newR -= half & kFixedHalf;
            move.half = half != 0;
        }
        r = newR;
        error = rest;
        moveRight();
        return true;
    }

    // Sets what follows from dx.
    void start() { change = wrapAdd(fixMul(doubled(dx), a), b); }

private:
    static constexpr int32_t kGreatestGuess = 4;
    static constexpr int32_t kGreatestError = 0x50000000; // 4 * (2r + 4) more or less still fits

    static Fixed doubled(Fixed dx) { return wrapAdd(wrapAdd(dx, dx), kFixedOne); }

    // The product with a grows by 2a exactly, but is rounded toward zero: it is formed anew where
    // its sign may change, and next to the end of the range.
    void moveRight()
    {
        const Fixed before = doubled(dx);
        dx = wrapAdd(dx, kFixedOne);
        const Fixed after = doubled(dx);
        change = wrapAdd(change, wrapAdd(a, a));
        if ((before ^ after) < 0 || after < -0x7FFF0000) start();
    }

    bool isFalling() const { return direction < 0; }

    // The mask and the low bit negate r in two's complement.
    Fixed signedBy(Fixed v) const { return wrapAdd(v ^ risingMask, risingMask & 1); }

    int32_t stepOneByOne()
    {
        int32_t units = 0;
        while (wrapAdd(r, direction) > 0) {
            const Fixed twoR = signedBy(wrapAdd(r, r));
            if (error <= 0 && !(isFalling() && wrapSub(kFixedOne, twoR) >= error)) break;
            r = wrapAdd(r, direction);
            error = wrapAdd(error, wrapSub(twoR, kFixedOne));
            ++units;
        }
        return units;
    }

    bool halfStep()
    {
        const Fixed signedR = signedBy(r);
        const bool due = wrapAdd(r, direction) > 0 &&
                         (error > 0 || (isFalling() && wrapSub(kQuarter, signedR) >= error));
        const int32_t mask = -static_cast<int32_t>(due);
        error = wrapAdd(error, mask & wrapSub(signedR, kQuarter));
        r = wrapAdd(r, mask & (direction >> 1));
        return due;
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

    template <class Target>
    void draw(Target& target, int32_t count)
    {
        if (stops_.isEmpty()) return;
        const Fixed first = stops_.firstOffset();
        const Fixed last = stops_.lastOffset();
        while (count > 0) {
            if (at_.r >= last) drawOutside(target, count);
            if (at_.r < first && count > 0) drawInside(target, count);
            while (first <= at_.r && at_.r < last && count > 0) {
                drawSegment(target, count);
                target.endRamp();
            }
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
    template <class Target>
    void pad(Target& target, Pixel colour, int32_t length, int32_t& count)
    {
        target.pad(colour, length);
        at_.dx = wrapAdd(at_.dx, fixFromInt(length));
        count -= length;
    }
    // The same up to and including dx = end.
    template <class Target>
    void padTo(Target& target, Pixel colour, Fixed end, int32_t& count)
    {
        while (count > 0 && at_.dx <= end)
            pad(target, colour, stepsWithin(at_.dx, kFixedOne, INT32_MIN, end, count), count);
        at_.r = exactR();
    }
    // A single pixel where rounding left r on the wrong side.
    template <class Target>
    void padOne(Target& target, Pixel colour, int32_t& count)
    {
        pad(target, colour, 1, count);
        at_.r = exactR();
    }

    template <class Target>
    void drawOutside(Target& target, int32_t& count)
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

    template <class Target>
    void drawInside(Target& target, int32_t& count)
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
        const Fixed divisor = wrapAdd(segment.length, kFixedHalf);
        if (at_.dx < at_.vertex)
            return segment.difference.map(
                [divisor](int32_t change) { return wrapAdd(fixDiv(change, ~divisor), 1); });
        at_.risingMask = -1;
        at_.direction = kFixedOne;
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
        Channels colour = segment.at(at_.r);
        const Channels step = stepPerUnit(segment);
        const Channels halfStep = step.map([](int32_t s) { return s >> 1; });
        CircleFollower at = at_; // in registers
        at.start();
        int32_t left = count;
        const auto draw = [&](CircleFollower::Move& move, auto advanceByGuess) {
            while (low <= at.r && at.r < high && left > 0) {
                target.rampPixel(colour);
                --left;
                if (!advanceByGuess(move)) move = at.advance();
                const int32_t halfMask = -static_cast<int32_t>(move.half);
                colour += Channels::combine(step, halfStep, [&](int32_t whole, int32_t half) {
                    return wrapAdd(wrapMul(whole, move.units), halfMask & half);
                });
                if (move.crossed) return;
            }
        };
        CircleFollower::Move move = {};
        if (at.direction < 0)
            draw(move, [&at](auto& m) { return at.advanceByGuess<true>(m); });
        else
            draw(move, [&at](auto& m) { return at.advanceByGuess<false>(m); });
        at_ = at;
        count = left;
    }

    const StopList stops_;
    const MMPaint& paint_;
    const Fixed dy_;
    CircleFollower at_;
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
