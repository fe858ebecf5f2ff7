// SPDX-License-Identifier: MIT
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
#include "graphics2d/strips/GradientStops.h"
#include "math/Vector2D.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kQuarter = 0x4000;

class RadialTarget : public GradientTarget {
public:
    using GradientTarget::GradientTarget;

    // Draws count colours, with room up to the next multiple of four.
    void ramp(const Channels* colours, int32_t count)
    {
        if (translucent_) return translucentRamp(colours, count);
        packOpaque(colours, pixels_, count);
        pixels_ += count;
    }

private:
    // Unlike the linear ramp, which extrapolates, each pixel has the weight of its own alpha.
    void translucentRamp(const Channels* colours, int32_t count)
    {
        PaintPiece piece;
        packOpaque(colours, piece.colours, count);
        const Coverage opacity = run_.coverage.current();
        if (run_.coverage.isFlatAndWhole()) {
            for (int32_t i = 0; i < count; ++i)
                piece.weights[i] = wholeWeight(opacity, static_cast<int32_t>(colours[i][kAlpha]));
            run_.coverage.advance(count);
        } else {
            for (int32_t i = 0; i < count; ++i) {
                piece.weights[i] = gradientWeight(run_.coverage.current(),
                                                  static_cast<int32_t>(colours[i][kAlpha]));
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

// The colour along the ramp.
struct RadialColour {
    Channels value;
    Channels step;     // per unit step of r
    Channels halfStep; // and per half one
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

    // Sets what follows from dx.
    void start() { change = wrapAdd(fixMul(doubled(dx), a), b); }

    // One pixel, whatever the numbers. True when it crossed the vertex: the next one needs the
    // colour steps of the other side.
    bool advance(RadialColour& colour);

    // Writes up to count colours as long as r is within [low, high) and the next pixel is a usual
    // one; returns how many.
    int32_t advanceUsual(RadialColour& colour, Fixed low, Fixed high, Channels* out, int32_t count)
    {
        // Where the numbers are so small or large that steps stop early or wrap, nothing is usual.
        if (dx < -kFarthest || dx > kFarthest) return 0;
        low = low > kLeastR ? low : kLeastR;
        high = high < kMostR ? high : kMostR;
        if (r < low || r >= high) return 0;
        if (dx < -kFixedHalf) count = pixelsBefore(-kFixedHalf, count);
        if (risingMask != 0) return advanceByGuess<false>(colour, low, high, out, count);
        if (direction > 0) return 0;
        return advanceByGuess<true>(colour, low, high, out, pixelsBefore(vertex, count));
    }

private:
    static constexpr int32_t kGreatestGuess = 4;
    static constexpr Fixed kLeastR = 16 * kFixedOne;
    static constexpr Fixed kMostR = 2048 * kFixedOne;
    static constexpr uint32_t kGreatestError = 0x50000000; // 4 * (2r + 4) more or less still fits
    static constexpr Fixed kFarthest = 0x3F000000;

    static int32_t allOnesIfNegative(int32_t v) { return v >> 31; }
    static Fixed doubled(Fixed dx) { return wrapAdd(wrapAdd(dx, dx), kFixedOne); }

    // How many pixels of count can be advanced with dx staying below a bound.
    int32_t pixelsBefore(Fixed bound, int32_t count) const
    {
        const int64_t pixels = (int64_t{bound} - dx - 1) >> 16;
        return pixels < 0 ? 0 : pixels < count ? static_cast<int32_t>(pixels) : count;
    }

    // A usual pixel takes the guessed number of unit steps or one more, and this takes it without a
    // jump that depends on which: g steps cost g * (2r + g), or g * (2r - g) while falling. They
    // are right when they end with 1 - 2r < error <= 0; the half step is then due while falling
    // only. Stops where they are not right. All of count lie on the same side of the vertex and
    // have 2 dx + 1 of the same sign, so that the change grows evenly.
    template <bool kFalling>
    int32_t advanceByGuess(RadialColour& colour, Fixed low, Fixed high, Channels* out,
                           int32_t count)
    {
        constexpr Fixed kUnit = kFalling ? -kFixedOne : kFixedOne;
        const Fixed steps = guess * kUnit;
        const Channels guessedStep = colour.step * static_cast<uint32_t>(guess);
        const Fixed changeStep = wrapAdd(a, a);
        int32_t cost = guess * (r + r + steps); // of the guessed steps
        // Errors up to the greatest to the side where they are expected, and some to the other.
        const uint32_t slack = kFalling ? 0 : static_cast<uint32_t>(2 * kMostR);
        Channels value = colour.value;
        Fixed newR = r;
        Fixed newError = error;
        Fixed newChange = change;
        int32_t i = 0;
        while (i < count && static_cast<uint32_t>(newR - low) < static_cast<uint32_t>(high - low)) {
            const int32_t due = wrapAdd(newError, newChange);
            const uint32_t size = static_cast<uint32_t>(kFalling ? wrapNeg(due) : due);
            if (size + slack > kGreatestError + slack) break;
            Fixed guessedR = newR + steps;
            int32_t rest = kFalling ? due + cost : due - cost;
            cost += 2 * guess * steps;
            // One more step when the rest is above 0, or while falling up to 1 - 2r.
            const int32_t more =
                allOnesIfNegative(kFalling ? rest + 2 * guessedR - kFixedOne - 1 : -rest);
            rest += more & (kFalling ? 2 * guessedR - kFixedOne : -2 * guessedR - kFixedOne);
            guessedR += more & kUnit;
            cost += more & (2 * guess * kUnit);
            if (static_cast<uint32_t>(-rest) >= static_cast<uint32_t>(2 * guessedR - kFixedOne))
                break;
            out[i++] = value;
            value += guessedStep + (colour.step & static_cast<uint32_t>(more));
            if (kFalling) { // half a step up to 1/4 - r
                const int32_t half = allOnesIfNegative(rest + guessedR - kQuarter - 1);
                rest += half & (guessedR - kQuarter);
                guessedR -= half & kFixedHalf;
                cost -= half & (guess * kFixedOne);
                value += colour.halfStep & static_cast<uint32_t>(half);
            }
            newR = guessedR;
            newError = rest;
            newChange = wrapAdd(newChange, changeStep);
        }
        colour.value = value;
        r = newR;
        error = newError;
        change = newChange;
        dx += i * kFixedOne;
        return i;
    }

    bool isFalling() const { return direction < 0; }

    // The mask and the low bit negate r in two's complement.
    Fixed signedBy(Fixed v) const { return wrapAdd(v ^ risingMask, risingMask & 1); }

    int32_t stepOneByOne();
    bool halfStep();
};

bool CircleFollower::advance(RadialColour& colour)
{
    error = wrapAdd(error, change);
    // The product with a grows by 2a exactly, but is rounded toward zero: it is formed anew.
    dx = wrapAdd(dx, kFixedOne);
    start();
    const bool crossed = dx >= vertex && risingMask == 0;
    if (crossed) {
        direction = kFixedOne;
        risingMask = -1;
    }
    const int32_t units = stepOneByOne();
    colour.value += colour.step * static_cast<uint32_t>(units);
    if (halfStep()) colour.value += colour.halfStep;
    guess = units < guess ? units : units - 1;
    if (guess < 0 || guess > kGreatestGuess) guess = 0;
    return crossed;
}

int32_t CircleFollower::stepOneByOne()
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

bool CircleFollower::halfStep()
{
    const Fixed signedR = signedBy(r);
    if (wrapAdd(r, direction) <= 0) return false;
    if (error <= 0 && !(isFalling() && wrapSub(kQuarter, signedR) >= error)) return false;
    error = wrapAdd(error, wrapSub(signedR, kQuarter));
    r = wrapAdd(r, direction >> 1);
    return true;
}

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
            return wrapAdd(fixDiv(change, divisor), falling ? 1 : 0);
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
        while (count > 0 && goesOn()) {
            Channels colours[kPieceLength];
            const int32_t room = count < kPieceLength ? count : kPieceLength;
            int32_t length = 0;
            while (length < room && goesOn()) {
                const int32_t usual =
                    at_.advanceUsual(colour, low, high, colours + length, room - length);
                length += usual;
                if (usual > 0) continue;
                colours[length++] = colour.value;
                crossed = at_.advance(colour);
            }
            target.ramp(colours, length);
            count -= length;
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

void MMContext2D::drawRadialGradientStrip()
{
    drawRadial(*this, false);
}

void MMContext2D::drawRadialGradientTStrip()
{
    drawRadial(*this, true);
}

} // namespace Graphics2D
} // namespace KAVO
