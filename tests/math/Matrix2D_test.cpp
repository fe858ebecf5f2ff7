// SPDX-License-Identifier: MIT
#include "math/Matrix2D.h"

#include "math/FixedMath.h"
#include "tests/support/UserUnits.h"

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include <gtest/gtest.h>

using namespace KAVO;

namespace {

using Elements = std::array<Fixed, 6>;

constexpr Matrix2D kShear = {1_fx, 0.25_fx, 2_fx, -1_fx, 1_fx, -3_fx};

Elements elementsOf(const Matrix2D& m)
{
    return {m.a, m.b, m.c, m.d, m.e, m.f};
}

void expectNear(const Matrix2D& m, const Elements& expected, int32_t bound)
{
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(elementsOf(m)[i], expected[i], bound) << testing::PrintToString(expected);
}

MMPoint2D mapped(const Matrix2D& m, int64_t x, int64_t y, MMPoint2D origin)
{
    return {origin.x + static_cast<Fixed>((m.a * x + m.c * y) >> 16),
            origin.y + static_cast<Fixed>((m.b * x + m.d * y) >> 16)};
}

Elements product(const Matrix2D& p, const Matrix2D& q)
{
    const MMPoint2D x = mapped(q, p.a, p.b, {}), y = mapped(q, p.c, p.d, {});
    const MMPoint2D origin = mapped(q, p.e, p.f, {q.e, q.f});
    return {x.x, x.y, y.x, y.y, origin.x, origin.y};
}

TEST(Matrix2D, ProductsAndPointsAreExactAndMayReplaceTheirArguments)
{
    std::mt19937 random(4);
    for (int round = 0; round < 1000; ++round) {
        // Multiples of 1/256, whose products fit into 16 fraction bits.
        Matrix2D p, q;
        for (Fixed* element :
             {&p.a, &p.b, &p.c, &p.d, &p.e, &p.f, &q.a, &q.b, &q.c, &q.d, &q.e, &q.f})
            *element = (static_cast<int32_t>(random() % 8192) - 4096) * 256;
        Matrix2D first = p, second = q, square = p;
        first.mul(&first, &q);
        second.mul(&p, &second);
        square *= square;
        ASSERT_EQ(elementsOf(first), product(p, q));
        ASSERT_EQ(elementsOf(second), product(p, q));
        ASSERT_EQ(elementsOf(square), product(p, p));

        MMPoint2D points[] = {{p.a, p.b}, {p.c, p.d}};
        q.transform(points, points, 2);
        ASSERT_EQ(points[0], mapped(q, p.a, p.b, {q.e, q.f}));
        ASSERT_EQ(points[1], mapped(q, p.c, p.d, {q.e, q.f}));
    }
}

TEST(Matrix2D, ComposeAppliesItsItemAfterTheMatrix)
{
    using M = Matrix2D;
    constexpr int32_t kTurned = 150; // what the sine of 90 degrees is off, for elements up to 4
    const struct {
        M::TransformTypes type;
        uint32_t count;
        Elements values;
        Matrix2D item;
        int32_t bound;
    } items[] = {
        {M::Translate, 1, {5_fx, 9}, {1_fx, 0, 0, 1_fx, 5_fx, 0}, 0},
        {M::Translate, 2, {5_fx, 7_fx}, {1_fx, 0, 0, 1_fx, 5_fx, 7_fx}, 0},
        {M::Scale, 1, {2_fx, 9}, {2_fx, 0, 0, 2_fx, 0, 0}, 0},
        {M::Scale, 2, {2_fx, -0.5_fx}, {2_fx, 0, 0, -0.5_fx, 0, 0}, 0},
        {M::Rotate, 1, {90_fx}, {0, 1_fx, -1_fx, 0, 0, 0}, kTurned}, // from x toward y
        {M::Rotate, 1, {-90_fx}, {0, -1_fx, 1_fx, 0, 0, 0}, kTurned},
        {M::Rotate, 1, {-360_fx}, kIdentityMatrix, 0},
        {M::Rotate, 3, {90_fx, 1_fx, 2_fx}, {0, 1_fx, -1_fx, 0, 3_fx, 1_fx}, kTurned},
        {M::Rotate, 3, {720_fx, 1_fx, 2_fx}, kIdentityMatrix, 0},
        {M::SkewX, 1, {45_fx}, {1_fx, 0, 1_fx, 1_fx, 0, 0}, 0},
        {M::SkewX, 1, {360_fx}, kIdentityMatrix, 0},
        {M::SkewY, 1, {-45_fx}, {1_fx, -1_fx, 0, 1_fx, 0, 0}, 0},
        {M::SkewY, 1, {32400_fx}, kIdentityMatrix, 0},
        {M::Matrix, 6, {1_fx, 2_fx, 0, 4_fx, 5, 6}, {1_fx, 2_fx, 0, 4_fx, 5, 6}, 0},
        {M::TransformTypes(6), 1, {7_fx}, kIdentityMatrix, 0},
    };
    for (const auto& c : items) {
        SCOPED_TRACE(testing::Message() << c.type << " with " << c.count);
        Matrix2D m = kShear;
        Elements values = c.values;
        EXPECT_EQ(m.compose(c.type, values.data(), c.count), 0u);
        expectNear(m, product(kShear, c.item), c.bound);
        if (c.type <= M::Scale) { // a missing second value is filled in for the caller too
            EXPECT_EQ(values[1], c.type == M::Scale ? c.item.d : c.item.f);
        }
    }

    Matrix2D m = kShear;
    Fixed values[] = {1, 2, 3, 4, 5, 6, 7, 0, 8};
    const std::vector<uint32_t> accepted[] = {{1, 2}, {1, 2}, {1, 3}, {1}, {1}, {6}};
    for (uint32_t type = M::Translate; type <= M::Matrix; ++type)
        for (uint32_t count = 0; count < 8; ++count) {
            if (std::count(accepted[type].begin(), accepted[type].end(), count) != 0) continue;
            EXPECT_EQ(m.compose(M::TransformTypes(type), values, count), M::kBadTransform);
        }
    EXPECT_EQ(m.compose(M::Scale, values + 6, 2), M::kBadTransform); // 7 and 0
    EXPECT_EQ(m.compose(M::Scale, values + 7, 2), M::kBadTransform); // 0 and 8
    EXPECT_EQ(elementsOf(m), elementsOf(kShear));
}

TEST(Matrix2D, SkewNear90OverwritesAndGoesOn)
{
    const std::pair<Degrees, bool> angles[] = {
        {89_fx - 1, false}, {89_fx, true},   {90.5_fx, true}, {91_fx, true},
        {91_fx + 1, false}, {270_fx, false}, {450_fx, true}};
    for (const auto& [angle, isNear] : angles) {
        const Fixed diagonal = isNear ? INT32_MAX : kFixedOne;
        const Degrees reduced = angle % kDegrees360;
        const Fixed skew =
            wrapAdd(isNear ? INT32_MAX : 0, fixMulDiv(diagonal, fixSin(reduced), fixCos(reduced)));
        Matrix2D x = kIdentityMatrix, y = kIdentityMatrix;
        x.skewX(angle);
        y.skewY(angle);
        EXPECT_TRUE(x.c == skew && x.d == diagonal) << angle;
        EXPECT_TRUE(y.b == skew && y.a == diagonal) << angle;
    }
}

TEST(Matrix2D, InvertComesBackWithinAUnitOrSo)
{
    const struct {
        Matrix2D matrix;
        Elements inverse;
        int32_t bound;
    } cases[] = {
        {kIdentityMatrix, {0xFFFF, 0, 0, 0xFFFF, 0, 0}, 0},
        // Determinant -1.5; translation -(e, f) through the inverse.
        {kShear, {43691, 10923, 87381, -43691, -43691 + 3 * 87381, -10923 - 3 * 43691}, 4},
        // Singular matrices and products beyond 32 bits leave zeros behind, never a trap.
        {{}, {}, 0},
        {{kFixedOne, 0x20000, 0x20000, 0x40000, 5, 6}, {}, 0},
        // log2 of b and c add up to 40, so a' and d' cannot be formed; a d / b is 0 or 1.
        {{1, 1 << 20, 0x100400, 1, 0, 0}, {0, 0xFFC, 0xFFF, 0, 0, 0}, 0},
        // b c / d is 2^32, one bit too many for a'; d' is the reciprocal of 1 - 2^32 / 1000.
        {{1000, 1 << 16, 1 << 16, 1, 0, 0}, {0, 0xFFFF, 0xFFFF, -1000, 0, 0}, 0},
        // The same for the other three.
        {{1 << 16, 1, 1000, 1 << 16, 0, 0}, {0xFFFF, 0, -1000, 0xFFFF, 0, 0}, 0},
        {{1 << 16, 1000, 1, 1 << 16, 0, 0}, {0xFFFF, -1000, 0, 0xFFFF, 0, 0}, 0},
        {{1, 1 << 16, 1 << 16, 1000, 0, 0}, {-1000, 0xFFFF, 0xFFFF, 0, 0, 0}, 0},
    };
    for (auto c : cases) {
        c.matrix.invert();
        expectNear(c.matrix, c.inverse, c.bound);
    }
}

// Word for word, whatever short cuts the transform takes.
TEST(Matrix2D, TransformIsMadeOfProducts)
{
    std::mt19937 random(8);
    const auto word = [&] { return static_cast<Fixed>(random()); };
    for (int i = 0; i < 3000; ++i) {
        Matrix2D m = {word(), word(), word(), word(), word(), word()};
        if (i % 2 == 0) m.b = m.c = 0;
        if (i % 3 == 0) m.a = kFixedOne;
        if (i % 4 == 0) m.d = kFixedOne;
        MMPoint2D p[2] = {{word(), word()}, {INT32_MIN, i % 5 == 0 ? INT32_MIN : 1}};
        MMPoint2D q[2];
        m.transform(q, p, 2);
        for (int k = 0; k < 2; ++k) {
            EXPECT_EQ(q[k].x, wrapAdd(wrapAdd(fixMul(m.a, p[k].x), fixMul(m.c, p[k].y)), m.e));
            EXPECT_EQ(q[k].y, wrapAdd(wrapAdd(fixMul(m.b, p[k].x), fixMul(m.d, p[k].y)), m.f))
                << m.a << ' ' << m.b << ' ' << m.c << ' ' << m.d << " at " << p[k].x << ' '
                << p[k].y;
        }
    }
}

TEST(Matrix2D, NormalizeMakesTheSmallestLinearElementOne)
{
    Matrix2D m = {0x40000, -0x8000, 0, 0x20000, 3_fx, 0};
    EXPECT_EQ(m.normalize(), 0x1FFFF);
    expectNear(m, {0x80000, -kFixedOne, 0, 0x40000, 6_fx, 0}, 8);
    m = {0, 0, 0, 0, 9_fx, 0};
    EXPECT_EQ(m.normalize(), 2); // 2^32 - 1 over the largest number
    EXPECT_EQ(elementsOf(m), (Elements{0, 0, 0, 0, 18, 0}));
}

} // namespace
