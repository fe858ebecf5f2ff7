// SPDX-License-Identifier: MIT
// Following the distance of a radial gradient along a row.
#include "graphics2d/strips/CircleFollower.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

CircleFollower::Move CircleFollower::advanceDistance()
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
    const bool takesHalf = halfStep();
    guess = units < guess ? units : units - 1;
    if (guess < 0 || guess > kGreatestGuess) guess = 0;
    return {units, takesHalf, crossed};
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

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
