// SPDX-License-Identifier: MIT
#include "math/Vector2D.h"

#include "math/FixedMath.h"
#include "tests/support/UserUnits.h"

#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

using namespace KAVO;

namespace {

TEST(Vector2D, DotAndCross)
{
    const MMPoint2D a = at(3, -4), b = at(0.5, 2);
    EXPECT_EQ(v2dDot(&a, &b), fx(1.5 - 8));
    EXPECT_EQ(v2dCross(&a, &b), fx(6 + 2));
}

// The larger coordinate times the root of 1 + t * t, which is found bit by bit: 32 bits, rounded
// down to one more than counts.
Fixed modelNorm(const MMPoint2D& v)
{
    const uint32_t x = magnitudeOf(v.x), y = magnitudeOf(v.y);
    const int32_t larger = static_cast<int32_t>(std::max(x, y));
    const int32_t t = fixMulDiv(1 << 30, static_cast<int32_t>(std::min(x, y)), larger);
    const uint64_t square = (uint64_t(fixMulSHR(t, t, 14)) + (1u << 30)) << 32;
    uint64_t root = 0;
    for (uint64_t bit = uint64_t{1} << 31; bit != 0; bit >>= 1)
        if ((root + bit) * (root + bit) <= square) root += bit;
    return fixMulSHR(larger, static_cast<int32_t>((root >> 1) + (root & 1)), 14);
}

TEST(Vector2D, NormsAreCloseToTheLength)
{
    std::mt19937 random(7);
    const auto any = [&random](int round) {
        // Now and then along an axis, or an end of the range.
        if (round % 16 == 0) return random() % 2 == 0 ? 0 : INT32_MIN;
        const int32_t v = static_cast<int32_t>(random());
        return v >> random() % 32;
    };
    for (int i = 0; i < 100000; ++i) {
        const MMPoint2D v = {any(i), any(i / 2)};
        const double exact = std::hypot(v.x, v.y);
        const Fixed norm = v2dNorm(&v), quick = v2dQDNorm(v);
        if (exact > 0) {
            ASSERT_EQ(norm, modelNorm(v)) << v.x << ", " << v.y;
        }
        MMPoint2D unit = v;
        v2dNormalize(unit);
        if (exact < 2147483646.0) {
            ASSERT_NEAR(norm, exact, 3) << v.x << ", " << v.y;
        }
        if (exact > 100000 && exact < 2147483646.0) {
            ASSERT_NEAR(unit.x, v.x / exact * kFixedOne, 3) << v.x << ", " << v.y;
            ASSERT_NEAR(unit.y, v.y / exact * kFixedOne, 3) << v.x << ", " << v.y;
        }
        if (exact > 10000 && exact < 16383_fx) {
            // (0.9443 + 0.4307 t) / sqrt(1 + t^2) at t = 1/16 and at its maximum, t = 0.456; from
            // 4096.0 on, 16 * t wraps and 0.9834 may stand for 0.9443.
            const double ratio = quick / exact;
            ASSERT_GE(ratio, 0.969) << v.x << ", " << v.y;
            ASSERT_LE(ratio, exact < 4096_fx ? 1.0385 : 1.0736) << v.x << ", " << v.y;
        }
    }
    // 3 * 64448 + 28224 (with mx = 3, mn = 1) less 3 * 2560
    EXPECT_EQ(v2dQDNorm(at(-1, 3)), 3 * 64448 + 28224 - 3 * 2560);
    MMPoint2D zero = {0, 0};
    v2dNormalize(zero);
    EXPECT_EQ(zero, at(0, 0));
}

// The line y = 2 leftward from a first point, and x = 5 downward from (5, -1), meet in (5, 2).
TEST(Vector2D, LinesMeetWithinTheirLengthsUnlessTheyAreNearlyParallel)
{
    const struct {
        double x1, length1, length2;
        Fixed cross;
        bool meet, written;
    } cases[] = {
        {8, 4, 6, kFixedOne, true, true},
        {8, 2, 6, kFixedOne, false, true}, // too short, both of them
        {8, 4, 2, kFixedOne, false, true},
        {4, 4, 6, kFixedOne, false, true}, // would have to go forward
        {8, 4, 6, 511, false, false},
        {8, 4, 6, -511, false, false},
        {8, 4, 6, 512, false, true}, // somewhere
        {8, 4, 6, -512, false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const MMPoint2D untouched = {1, 2};
        MMPoint2D meeting = untouched;
        MMIntersect lines = {at(c.x1, 2), at(1, 0), fx(c.length1), c.cross, &meeting,
                             at(5, -1),   at(0, 1), fx(c.length2), 77};
        EXPECT_EQ(v2dGetIntercept(lines), c.meet ? 1 : 0);
        EXPECT_EQ(meeting != untouched, c.written);
        EXPECT_EQ(lines.distance1 != 77, c.written);
        if (c.cross != kFixedOne) continue;
        EXPECT_NEAR(meeting.x, 5_fx, 2);
        EXPECT_NEAR(meeting.y, 2_fx, 2);
        EXPECT_NEAR(lines.distance1, fx(c.x1 - 5), 2);
    }
}

} // namespace
