// SPDX-License-Identifier: MIT
// Wide intermediate results, and what a transform stretches.
#include "math/LinearPart.h"
#include "math/Points.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

using namespace KAVO;

namespace {

TEST(WideMath, RootIsTheGreatestWhoseSquareIsNotMore)
{
    std::mt19937_64 random(3);
    for (int i = 0; i < 10000; ++i) {
        const uint64_t v = i == 0 ? UINT64_MAX : i < 100 ? i - 1 : random() >> random() % 64;
        const uint64_t root = integerRoot(v);
        ASSERT_TRUE(root * root <= v && (root == UINT32_MAX || (root + 1) * (root + 1) > v)) << v;
    }
}

TEST(WideMath, PointsBeyondTheRangeStopAtItsEnd)
{
    const Matrix2D m = {0x20000, 0, 0, -0x20000, 0x10000, 5};
    EXPECT_EQ(mappedSaturated(m, {3, 4}), (MMPoint2D{0x10006, -3}));
    EXPECT_EQ(mappedSaturated(m, {INT32_MAX, INT32_MAX}), (MMPoint2D{INT32_MAX, -INT32_MAX}));
}

// A diagonal matrix between two turns: its elements are the stretches.
TEST(WideMath, StretchesAreTheSingularValues)
{
    std::mt19937 random(5);
    const auto part = [&random](double size) { return size * (random() / 4294967296.0); };
    for (int i = 0; i < 10000; ++i) {
        const double x = part(8192), y = part(x) * (i % 2 != 0 ? 1 : -1), p = part(7), q = part(7);
        const double cp = std::cos(p), sp = std::sin(p), cq = std::cos(q), sq = std::sin(q);
        const auto fixed = [](double v) { return static_cast<Fixed>(std::lround(v * 65536)); };
        const Stretch stretch =
            stretchOf({fixed(cp * x * cq - sp * y * sq), fixed(sp * x * cq + cp * y * sq),
                       fixed(-cp * x * sq - sp * y * cq), fixed(-sp * x * sq + cp * y * cq)});
        ASSERT_NEAR(stretch.greatest / 65536.0, x, 1e-4) << x << ' ' << y << ' ' << p << ' ' << q;
        ASSERT_NEAR(stretch.smallest / 65536.0, std::abs(y), 1e-4)
            << x << ' ' << y << ' ' << p << ' ' << q;
    }
}

} // namespace
