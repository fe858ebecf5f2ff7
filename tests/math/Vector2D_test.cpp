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
    const MMPoint2D zero = {0, 0};
    EXPECT_EQ(v2dNorm(&zero), 0);

    std::mt19937 random(7);
    for (int i = 0; i < 100000; ++i) {
        const MMPoint2D v = {static_cast<int32_t>(random()) >> random() % 32,
                             static_cast<int32_t>(random()) >> random() % 32};
        const double exact = std::hypot(v.x, v.y);
        const Fixed norm = v2dNorm(&v);
        if (exact < 2147483646.0) {
            ASSERT_NEAR(norm, exact, 3) << v.x << ", " << v.y;
        }
        if (exact > 10000 && exact < whole(16383)) {
            // (0.9443 + 0.4307 t) / sqrt(1 + t^2) at t = 1/16 and at its maximum, t = 0.456; from
            // 4096.0 on, 16 * t wraps and 0.9834 may stand for 0.9443.
            const double ratio = v2dQDNorm(v) / exact;
            ASSERT_GE(ratio, 0.969) << v.x << ", " << v.y;
            ASSERT_LE(ratio, exact < whole(4096) ? 1.0385 : 1.0736) << v.x << ", " << v.y;
        }
    }
    for (Fixed v : {1, 2, 0xFFFF, 0x10000, 0x7FFFFFFF, -0x7FFFFFFF}) {
        const MMPoint2D alongX = {v, 0};
        const MMPoint2D alongY = {0, v};
        EXPECT_NEAR(v2dNorm(&alongX), std::abs(v), 1);
        EXPECT_NEAR(v2dNorm(&alongY), std::abs(v), 1);
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

// The line y = 2 to the right and the line x = 5 downward, both from their first points.
MMIntersect perpendicularLines(MMPoint2D* result)
{
    MMIntersect lines = {};
    lines.point1 = {whole(8), whole(2)};
    lines.dir1 = {kFixedOne, 0};
    lines.length1 = whole(4);
    lines.point2 = {whole(5), whole(-1)};
    lines.dir2 = {0, kFixedOne};
    lines.length2 = whole(6);
    lines.cross = v2dCross(&lines.dir1, &lines.dir2);
    lines.result = result;
    return lines;
}

TEST(Vector2D, InterceptOfPerpendicularLines)
{
    MMPoint2D at = {};
    MMIntersect lines = perpendicularLines(&at);
    EXPECT_EQ(v2dGetIntercept(lines), 1);
    EXPECT_NEAR(at.x, whole(5), 2);
    EXPECT_NEAR(at.y, whole(2), 2);
    EXPECT_NEAR(lines.distance1, whole(3), 2);

    // Out of reach of either line; the point is written all the same.
    lines.length1 = whole(2);
    at = {};
    EXPECT_EQ(v2dGetIntercept(lines), 0);
    EXPECT_NEAR(at.x, whole(5), 2);
    lines = perpendicularLines(&at);
    lines.length2 = whole(2);
    EXPECT_EQ(v2dGetIntercept(lines), 0);
    lines = perpendicularLines(&at);
    lines.point1.x = whole(4); // would have to go forward
    EXPECT_EQ(v2dGetIntercept(lines), 0);
}

TEST(Vector2D, InterceptOfNearlyParallelLinesWritesNothing)
{
    for (Fixed cross : {0, 511, -511}) {
        MMPoint2D at = {1, 2};
        MMIntersect lines = perpendicularLines(&at);
        lines.cross = cross;
        lines.distance1 = 77;
        EXPECT_EQ(v2dGetIntercept(lines), 0) << cross;
        EXPECT_EQ(at, (MMPoint2D{1, 2})) << cross;
        EXPECT_EQ(lines.distance1, 77) << cross;
    }
    for (Fixed cross : {512, -512}) {
        MMPoint2D at = {1, 2};
        MMIntersect lines = perpendicularLines(&at);
        lines.cross = cross;
        v2dGetIntercept(lines);
        EXPECT_NE(at, (MMPoint2D{1, 2})) << cross;
    }
}

TEST(Vector2D, AcceptsEveryOperand)
{
    std::mt19937 random(3);
    const auto any = [&random] {
        return random() % 4 == 0 ? INT32_MIN : static_cast<int32_t>(random()) >> random() % 32;
    };
    for (int i = 0; i < 20000; ++i) {
        MMPoint2D at;
        MMIntersect lines = {{any(), any()}, {any(), any()}, any(), any(), &at,
                             {any(), any()}, {any(), any()}, any(), 0};
        v2dGetIntercept(lines);
        v2dCross(&lines.point1, &lines.dir1);
        v2dDot(&lines.point1, &lines.dir1);
        v2dQDNorm(lines.point2);
        v2dNormalize(lines.dir2);
    }
}

} // namespace
