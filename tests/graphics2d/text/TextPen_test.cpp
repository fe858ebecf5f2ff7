// SPDX-License-Identifier: MIT
#include "graphics2d/text/TextPen.h"

#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace KAVO;
using namespace KAVO::Graphics2D;

// Both ways against long double, whose 64 bits hold every product here.
TEST(TextPen, MapsToTheNearestPointBothWays)
{
    std::mt19937 random(17);
    const auto number = [&random](uint32_t bits) {
        return static_cast<Fixed>(random()) >> (31 - bits % 31);
    };
    for (int round = 0; round < 20000; ++round) {
        const Matrix2D m = {number(random()), number(random()), number(random()),
                            number(random()), number(random()), number(random())};
        const MMPoint2D p = {number(random()), number(random())};
        SCOPED_TRACE(testing::Message() << m.a << " " << m.b << " " << m.c << " " << m.d << " "
                                        << m.e << " " << m.f << ", point " << p.x << " " << p.y);
        const long double a = m.a, b = m.b, c = m.c, d = m.d;
        const TextPen pen = mappedExactly(m, p);
        ASSERT_NEAR(double(pen.x), double((a * p.x + c * p.y) / 65536 + m.e), 0.51);
        ASSERT_NEAR(double(pen.y), double((b * p.x + d * p.y) / 65536 + m.f), 0.51);

        const long double area = a * d - b * c;
        MMPoint2D back = {1, 2};
        if (!unmappedExactly(m, pen, back)) {
            ASSERT_LT(std::fabs(area), 4.0L);
            continue;
        }
        const long double x = pen.x - m.e, y = pen.y - m.f;
        const long double backX = (d * x - c * y) / area * 65536;
        const long double backY = (a * y - b * x) / area * 65536;
        if (std::fabs(backX) > INT32_MAX || std::fabs(backY) > INT32_MAX) continue;
        // Where 32 bits hold the vector, to the nearest. A longer one loses its low bits, which the
        // inverse magnifies.
        const long double length = std::fmax(std::fabs(x), std::fabs(y)) / 0x7FFFFFFF;
        const long double elements = std::fabs(a) + std::fabs(b) + std::fabs(c) + std::fabs(d);
        const double slack =
            length <= 1 ? 0.51 : double(2 * length * (1 + elements * 65536 / std::fabs(area)));
        ASSERT_NEAR(back.x, double(backX), slack);
        ASSERT_NEAR(back.y, double(backY), slack);
    }
    MMPoint2D half; // goes away from 0
    EXPECT_TRUE(unmappedExactly({2_fx, 0, 0, 2_fx, 0, 0}, {3, -3}, half));
    EXPECT_EQ(half, (MMPoint2D{2, -2}));
    MMPoint2D kept = {3, 4};
    EXPECT_FALSE(unmappedExactly({1_fx, 2_fx, 2_fx, 4_fx, 0, 0}, {1_fx, 1_fx}, kept));
    EXPECT_EQ(kept.x, 3);
}
