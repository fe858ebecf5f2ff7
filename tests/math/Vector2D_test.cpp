#include "math/Vector2D.h"

#include "math/FixedMath.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace {

constexpr Fixed whole(int32_t v)
{
    return v * kFixedOne;
}

TEST(Vector2D, DotAndCross)
{
    const MMPoint2D a = {whole(3), whole(-4)};
    const MMPoint2D b = {0x8000, whole(2)};
    EXPECT_EQ(v2dDot(&a, &b), 0x18000 - whole(8));
    EXPECT_EQ(v2dCross(&a, &b), whole(6) + whole(2));
    EXPECT_EQ(v2dCross(&b, &a), -whole(8));
}

TEST(Vector2D, NormsAreCloseToTheLength)
{
    std::mt19937 random(7);
    const auto any = [&random](int round) {
        // Now and then along an axis, or an end of the range.
        if (round % 16 == 0) return random() % 2 == 0 ? 0 : INT32_MIN;
        return static_cast<int32_t>(random()) >> random() % 32;
    };
    for (int i = 0; i < 100000; ++i) {
        const MMPoint2D v = {any(i), any(i / 2)};
        const double exact = std::hypot(v.x, v.y);
        const Fixed norm = v2dNorm(&v), quick = v2dQDNorm(v);
        if (exact < 2147483646.0) {
            ASSERT_NEAR(norm, exact, 3) << v.x << ", " << v.y;
        }
        if (exact > 10000 && exact < whole(16383)) {
            // (0.9443 + 0.4307 t) / sqrt(1 + t^2) at t = 1/16 and at its maximum, t = 0.456; from
            // 4096.0 on, 16 * t wraps and 0.9834 may stand for 0.9443.
            const double ratio = quick / exact;
            ASSERT_GE(ratio, 0.969) << v.x << ", " << v.y;
            ASSERT_LE(ratio, exact < whole(4096) ? 1.0385 : 1.0736) << v.x << ", " << v.y;
        }
    }
    EXPECT_EQ(v2dQDNorm({whole(1), 0}), 64448);
    // 3 * 64448 + 28224 (with mx = 3, mn = 1) less 3 * 2560
    EXPECT_EQ(v2dQDNorm({whole(-1), whole(3)}), 3 * 64448 + 28224 - 3 * 2560);
}

TEST(Vector2D, NormalizeKeepsTheDirection)
{
    MMPoint2D v = {0, 0};
    v2dNormalize(v);
    EXPECT_EQ(v, (MMPoint2D{0, 0}));
    v = {whole(30), whole(-40)};
    v2dNormalize(v);
    EXPECT_NEAR(v.x, 0.6 * kFixedOne, 1);
    EXPECT_NEAR(v.y, -0.8 * kFixedOne, 1);
}

// The line y = 2 leftward from a first point, and x = 5 downward from (5, -1), meet in (5, 2).
TEST(Vector2D, LinesMeetWithinTheirLengthsUnlessTheyAreNearlyParallel)
{
    const struct {
        Fixed x1, length1, length2, cross;
        int32_t meet;
        bool written;
    } cases[] = {
        {whole(8), whole(4), whole(6), kFixedOne, 1, true},
        {whole(8), whole(2), whole(6), kFixedOne, 0, true}, // too short, both of them
        {whole(8), whole(4), whole(2), kFixedOne, 0, true},
        {whole(4), whole(4), whole(6), kFixedOne, 0, true}, // would have to go forward
        {whole(8), whole(4), whole(6), 511, 0, false},
        {whole(8), whole(4), whole(6), -512, 0, true}, // somewhere
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        MMPoint2D at = {1, 2};
        MMIntersect lines = {{c.x1, whole(2)},      {kFixedOne, 0}, c.length1, c.cross, &at,
                             {whole(5), whole(-1)}, {0, kFixedOne}, c.length2, 77};
        EXPECT_EQ(v2dGetIntercept(lines), c.meet);
        EXPECT_EQ(at != (MMPoint2D{1, 2}), c.written);
        EXPECT_EQ(lines.distance1 != 77, c.written);
        if (c.cross != kFixedOne) continue;
        EXPECT_NEAR(at.x, whole(5), 2);
        EXPECT_NEAR(at.y, whole(2), 2);
        EXPECT_NEAR(lines.distance1, c.x1 - whole(5), 2);
    }
}

} // namespace
