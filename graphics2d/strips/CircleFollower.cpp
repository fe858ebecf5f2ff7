// SPDX-License-Identifier: MIT
// Following the distance of a radial gradient along a row.
#include "graphics2d/strips/CircleFollower.h"

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr Fixed kQuarter = 0x4000;

int32_t allOnesIfNegative(int32_t v)
{
    return v >> 31;
}

} // namespace

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

// A usual pixel takes the guessed number of unit steps or one more, and this takes it without a
// jump that depends on which: g steps cost g * (2r + g), or g * (2r - g) while falling. They
// are right when they end with 1 - 2r < error <= 0; the half step is then due while falling
// only. Stops where they are not right. All of count lie on the same side of the vertex and
// have 2 dx + 1 of the same sign, so that the change grows evenly.
template <bool kFalling>
int32_t CircleFollower::advanceByGuess(RadialColour& colour, Fixed low, Fixed high, Channels* out,
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
        if (static_cast<uint32_t>(-rest) >= static_cast<uint32_t>(2 * guessedR - kFixedOne)) break;
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

int32_t CircleFollower::advanceUsual(RadialColour& colour, Fixed low, Fixed high, Channels* out,
                                     int32_t count)
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

} // namespace Graphics2D
} // namespace KAVO
