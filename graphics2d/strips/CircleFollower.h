// SPDX-License-Identifier: MIT
// The distance of a radial gradient, followed along a row as in incremental circle drawing.
// Internal.
//
// r is the distance of the current pixel and q = a dx * dx + b dx + c its true square, a parabola
// along the row whose c does not change. One pixel to the right changes q by (2 dx + 1) a + b. A
// unit step of r changes r * r by 1 + 2r while rising and by 1 - 2r while falling, a half step by
// 1/4 + r and 1/4 - r.
//
// Invariant: r * r + error - q stays what it was when the following began, but for rounding. Each
// pixel adds its change of q to the error; then r takes unit steps, and at most one half step, each
// of which takes its own change of r * r off the error again, until error <= 0, and while falling
// also error > 1 - 2r. So r keeps up with q to half a unit.
//
// One pixel: at (30, 40) with a = 1 and b = 0 the distance is 50; let the error be 0. The step to
// dx = 31 adds 2 * 30 + 1 = 61 to it. That is above 0, so r rises to 51 for 1 + 2 * 50 = 101, which
// leaves an error of -40: no further step. The true distance is 50.6.
//
// advance() is the plain stepping, one pixel at a time. advanceUsual() is its quick twin for runs
// of pixels that take about the same number of steps; a test holds it to the plain one.
#pragma once

#include "graphics2d/strips/Channels.h"
#include "math/FixedMath.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// The colour along the ramp.
struct RadialColour {
    using Mark = Channels; // what a pixel gets

    Channels value;
    Channels step;     // per unit step of r
    Channels halfStep; // and per half one

    void add(uint32_t units, uint32_t halves)
    {
        value += step * units;
        if (halves != 0) value += halfStep * halves;
    }

    // A copy for loops: pixels that take the guessed number of unit steps, one more where the mask
    // is all ones, and likewise a half one.
    class Steps {
    public:
        Steps(const RadialColour& colour, uint32_t guess)
            : value_(colour.value), step_(colour.step), halfStep_(colour.halfStep),
              guessed_(step_ * guess)
        {
        }
        Mark mark() const { return value_; }
        void advance(uint32_t more) { value_ += guessed_ + (step_ & more); }
        void advanceHalf(uint32_t half) { value_ += halfStep_ & half; }

    private:
        Channels value_;
        Channels step_;
        Channels halfStep_;
        Channels guessed_;
    };
    void set(const Steps& steps) { value = steps.mark(); }
    Mark mark() const { return value; }
};

// Where there are no vector registers, steps are counted, and become colours together: unit steps
// in the lower half of a word, half ones in the upper. r goes one way, so that neither overflows
// within a piece of pixels.
struct CountedSteps {
    using Mark = uint32_t;

    uint32_t counts = 0;

    static uint32_t unitsOf(Mark mark) { return mark & 0xFFFF; }
    static uint32_t halvesOf(Mark mark) { return mark >> 16; }

    void add(uint32_t units, uint32_t halves) { counts += units + (halves << 16); }

    class Steps {
    public:
        Steps(const CountedSteps& colour, uint32_t guess) : counts_(colour.counts), guess_(guess) {}
        Mark mark() const { return counts_; }
        void advance(uint32_t more) { counts_ += guess_ - more; }
        void advanceHalf(uint32_t half) { counts_ += half & 0x10000; }

    private:
        uint32_t counts_;
        uint32_t guess_;
    };
    void set(const Steps& steps) { counts = steps.mark(); }
    Mark mark() const { return counts; }
};

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

    // The plain stepping: one pixel, whatever the numbers. True when it crossed the vertex: the
    // next one needs the colour steps of the other side.
    template <class Colour>
    bool advance(Colour& colour)
    {
        const Move move = advanceDistance();
        colour.add(static_cast<uint32_t>(move.units), move.takesHalf ? 1 : 0);
        return move.crossed;
    }

    // Writes up to count colours as long as r is within [low, high) and the next pixel is a usual
    // one; returns how many. Quick, and the same as that many plain steps.
    template <class Colour>
    int32_t advanceUsual(Colour& colour, Fixed low, Fixed high, typename Colour::Mark* out,
                         int32_t count);

private:
    // Where the processor has but a few, a product costs less than to keep it from pixel to pixel.
    static constexpr bool kHasFewRegisters = sizeof(void*) < sizeof(uint64_t);
    static constexpr int32_t kGreatestGuess = 4;
    static constexpr Fixed kLeastR = 16 * kFixedOne;
    static constexpr Fixed kMostR = 2048 * kFixedOne;
    static constexpr uint32_t kGreatestError = 0x50000000; // 4 * (2r + 4) more or less still fits
    static constexpr Fixed kFarthest = 0x3F000000;

    static constexpr Fixed kQuarter = 0x4000;

    static int32_t allOnesIfNegative(int32_t v) { return v >> 31; }
    static Fixed doubled(Fixed dx) { return wrapAdd(wrapAdd(dx, dx), kFixedOne); }

    // How many pixels of count can be advanced with dx staying below a bound.
    int32_t pixelsBefore(Fixed bound, int32_t count) const
    {
        const int64_t pixels = (int64_t{bound} - dx - 1) >> 16;
        return pixels < 0 ? 0 : pixels < count ? static_cast<int32_t>(pixels) : count;
    }

    template <bool kFalling, class Colour>
    int32_t advanceByGuess(Colour& colour, Fixed low, Fixed high, typename Colour::Mark* out,
                           int32_t count);

    // What a pixel's step does to r: unit steps, a half one, and whether it crossed the vertex.
    struct Move {
        int32_t units;
        bool takesHalf;
        bool crossed;
    };
    Move advanceDistance();

    bool isFalling() const { return direction < 0; }

    // The mask and the low bit negate r in two's complement.
    Fixed signedBy(Fixed v) const { return wrapAdd(v ^ risingMask, risingMask & 1); }

    int32_t stepOneByOne();
    bool halfStep();
};

// In the header, so that each walk has the loops of its own.

// A usual pixel takes the guessed number of unit steps or one more, and this takes it without a
// jump that depends on which: g steps cost g * (2r + g), or g * (2r - g) while falling. They
// are right when they end with 1 - 2r < error <= 0; the half step is then due while falling
// only. Stops where they are not right. All of count lie on the same side of the vertex and
// have 2 dx + 1 of the same sign, so that the change grows evenly.
template <bool kFalling, class Colour>
inline int32_t CircleFollower::advanceByGuess(Colour& colour, Fixed low, Fixed high,
                                              typename Colour::Mark* out, int32_t count)
{
    constexpr Fixed kUnit = kFalling ? -kFixedOne : kFixedOne;
    const Fixed steps = guess * kUnit;
    const Fixed changeStep = wrapAdd(a, a);
    int32_t cost = guess * (r + r + steps); // of the guessed steps
    // Errors up to the greatest to the side where they are expected, and some to the other.
    const uint32_t slack = kFalling ? 0 : static_cast<uint32_t>(2 * kMostR);
    typename Colour::Steps taken(colour, static_cast<uint32_t>(guess)); // a store may alias colour
    Fixed newR = r;
    Fixed newError = error;
    Fixed newChange = change;
    typename Colour::Mark* const begin = out;
    typename Colour::Mark* const end = out + count;
    while (out != end) {
        const int32_t due = wrapAdd(newError, newChange);
        if (kFalling ? newR < low : newR >= high) break; // r goes one way
        const uint32_t size = static_cast<uint32_t>(kFalling ? wrapNeg(due) : due);
        if (size + slack > kGreatestError + slack) break;
        Fixed guessedR = newR + steps;
        const int32_t guessed = kHasFewRegisters ? guess * (newR + guessedR) : cost;
        int32_t rest = kFalling ? due + guessed : due - guessed;
        cost += 2 * guess * steps;
        // One more step when the rest is above 0, or while falling up to 1 - 2r.
        const int32_t more =
            allOnesIfNegative(kFalling ? rest + 2 * guessedR - kFixedOne - 1 : -rest);
        rest += more & (kFalling ? 2 * guessedR - kFixedOne : -2 * guessedR - kFixedOne);
        guessedR += kFalling ? -(more & kFixedOne) : more & kFixedOne;
        cost += more & (2 * guess * kUnit);
        if (static_cast<uint32_t>(-rest) >= static_cast<uint32_t>(2 * guessedR - kFixedOne)) break;
        *out++ = taken.mark();
        taken.advance(static_cast<uint32_t>(more));
        if (kFalling) { // half a step up to 1/4 - r
            const Fixed halfCost = guessedR - kQuarter;
            const int32_t half = ~allOnesIfNegative(-rest - halfCost);
            rest += half & halfCost;
            guessedR -= half & kFixedHalf;
            cost -= half & (guess * kFixedOne);
            taken.advanceHalf(static_cast<uint32_t>(half));
        }
        newR = guessedR;
        newError = rest;
        newChange = wrapAdd(newChange, changeStep);
    }
    colour.set(taken);
    r = newR;
    error = newError;
    change = newChange;
    const auto length = static_cast<int32_t>(out - begin);
    dx += length * kFixedOne;
    return length;
}

template <class Colour>
inline int32_t CircleFollower::advanceUsual(Colour& colour, Fixed low, Fixed high,
                                            typename Colour::Mark* out, int32_t count)
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

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
