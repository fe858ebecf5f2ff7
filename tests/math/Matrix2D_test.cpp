#include "math/Matrix2D.h"

#include "math/FixedMath.h"

#include <array>

#include <gtest/gtest.h>

// Global, where the comparison macros look for them.
static bool operator==(const Matrix2D& m, const Matrix2D& n)
{
    return m.a == n.a && m.b == n.b && m.c == n.c && m.d == n.d && m.e == n.e && m.f == n.f;
}

static void PrintTo(const Matrix2D& m, std::ostream* out)
{
    *out << m.a << ' ' << m.b << ' ' << m.c << ' ' << m.d << ' ' << m.e << ' ' << m.f;
}

namespace {

constexpr Fixed whole(int32_t v)
{
    return v * kFixedOne;
}

// Moves by (10, 20), then doubles x and halves y: chosen so that every product is exact.
constexpr Matrix2D kScaledMove = {0x20000, 0, 0, 0x8000, whole(20), whole(10)};
constexpr Matrix2D kShear = {kFixedOne, 0x4000, 0x20000, -kFixedOne, whole(1), whole(-3)};
constexpr Matrix2D kSteep = {kFixedOne, whole(2), 0, kFixedOne, whole(3), whole(4)};

using Operation = void (*)(Matrix2D&);

void expectNear(int32_t bound, Matrix2D m, Operation apply, const Matrix2D& expected)
{
    apply(m);
    for (Fixed Matrix2D::*element :
         {&Matrix2D::a, &Matrix2D::b, &Matrix2D::c, &Matrix2D::d, &Matrix2D::e, &Matrix2D::f})
        EXPECT_NEAR(m.*element, expected.*element, bound) << testing::PrintToString(expected);
}

TEST(Matrix2D, OperationsApplyAfterTheMatrix)
{
    const Operation translate = [](Matrix2D& m) { m.translate(whole(5), whole(7)); };
    expectNear(0, kShear, translate, {kFixedOne, 0x4000, 0x20000, -kFixedOne, whole(6), whole(4)});
    const Operation scale = [](Matrix2D& m) { m.scale(0x20000, -kFixedOne); };
    expectNear(0, kShear, scale, {0x20000, -0x4000, 0x40000, kFixedOne, whole(2), whole(3)});

    // From x toward y.
    const Operation turn = [](Matrix2D& m) { m.rotate(kDegrees90); };
    expectNear(700, kScaledMove, turn, {0, 0x20000, -0x8000, 0, whole(-10), whole(20)});
    const Operation turnBack = [](Matrix2D& m) { m.rotate(-kDegrees90); };
    expectNear(700, kScaledMove, turnBack, {0, -0x20000, 0x8000, 0, whole(10), whole(-20)});
    const Operation halfTurn = [](Matrix2D& m) { m.rotateCenter(kDegrees180, whole(1), whole(2)); };
    expectNear(99, kIdentityMatrix, halfTurn, {-kFixedOne, 0, 0, -kFixedOne, whole(2), whole(4)});

    const Operation skewX = [](Matrix2D& m) { m.skewX(whole(45)); };
    expectNear(40, kSteep, skewX, {whole(3), whole(2), whole(1), whole(1), whole(7), whole(4)});
    const Operation skewY = [](Matrix2D& m) { m.skewY(whole(-45)); };
    expectNear(40, kSteep, skewY, {whole(1), whole(1), 0, whole(1), whole(3), whole(1)});

    const Operation normalize = [](Matrix2D& m) { EXPECT_EQ(m.normalize(), 0x1FFFF); };
    expectNear(8, {0x40000, -0x8000, 0, 0x20000, whole(3), 0}, normalize,
               {0x80000, -kFixedOne, 0, 0x40000, whole(6), 0});
    // 2^32 - 1 over the largest number.
    const Operation normalizeNothing = [](Matrix2D& m) { EXPECT_EQ(m.normalize(), 2); };
    expectNear(0, {0, 0, 0, 0, whole(9), 0}, normalizeNothing, {0, 0, 0, 0, 18, 0});
}

TEST(Matrix2D, InvertComesBackWithinAUnitOrSo)
{
    const Operation invert = [](Matrix2D& m) { m.invert(); };
    expectNear(0, kIdentityMatrix, invert, {0xFFFF, 0, 0, 0xFFFF, 0, 0});
    // Determinant -1.5; translation -(e, f) through the inverse.
    expectNear(4, kShear, invert,
               {43691, 10923, 87381, -43691, -43691 + 3 * 87381, -10923 - 3 * 43691});
    // Singular matrices and products beyond 32 bits leave zeros behind, never a trap.
    expectNear(0, {}, invert, {});
    expectNear(0, {kFixedOne, 0x20000, 0x20000, 0x40000, 5, 6}, invert, {});
    // log2 of b and c add up to 40, so a' and d' cannot be formed; a d / b is 0 or 1.
    expectNear(0, {1, 1 << 20, 0x100400, 1, 0, 0}, invert, {0, 0xFFC, 0xFFF, 0, 0, 0});
}

TEST(Matrix2D, EveryArgumentOfAProductMayBeItsTarget)
{
    // a x + c y of the shear applied to each column of the first.
    const Matrix2D expected = {0x20000,          0x8000, kFixedOne, -0x8000, whole(20 + 20 + 1),
                               whole(5 - 10 - 3)};
    Matrix2D m = kScaledMove;
    m *= kShear;
    EXPECT_EQ(m, expected);
    m = kShear;
    m.mul(&kScaledMove, &m);
    EXPECT_EQ(m, expected);
    m = kShear;
    m *= m;
    // 1 + 2/4, 1/4 - 1/4; 2 - 2, 2/4 + 1; 1 - 6 + 1, 1/4 + 3 - 3
    EXPECT_EQ(m, (Matrix2D{0x18000, 0, 0, 0x18000, whole(-4), 0x4000}));
}

TEST(Matrix2D, SkewNear90OverwritesAndGoesOn)
{
    constexpr Fixed kLargest = 0x7FFFFFFF;
    const Degrees near[] = {whole(89), kDegrees90 + 0x8000, whole(91), whole(450)};
    const Degrees far[] = {whole(89) - 1, whole(91) + 1, whole(270)};
    for (Degrees angle : near) {
        const Degrees reduced = angle % kDegrees360;
        const Fixed tangent = fixMulDiv(kLargest, fixSin(reduced), fixCos(reduced));
        Matrix2D x = kIdentityMatrix, y = kIdentityMatrix;
        x.skewX(angle);
        y.skewY(angle);
        EXPECT_TRUE(x.d == kLargest && x.c == wrapAdd(kLargest, tangent)) << angle;
        EXPECT_TRUE(y.a == kLargest && y.b == wrapAdd(kLargest, tangent)) << angle;
    }
    for (Degrees angle : far) {
        Matrix2D m = kIdentityMatrix;
        m.skewX(angle);
        EXPECT_EQ(m.d, kFixedOne) << angle;
    }
}

TEST(Matrix2D, TransformMapsInPlaceToo)
{
    const MMPoint2D expected[] = {{whole(1), whole(-3)},
                                  {whole(1 + 4 + 1), 0x4000 - whole(2 + 3)},
                                  {whole(-4 + 16 + 1), whole(-1 - 8 - 3)}};
    MMPoint2D points[] = {{0, 0}, {whole(1), whole(2)}, {whole(-4), whole(8)}};
    MMPoint2D mapped[3] = {};
    kShear.transform(mapped, points, 3);
    kShear.transform(points, points, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(mapped[i], expected[i]) << i;
        EXPECT_EQ(points[i], expected[i]) << i;
    }
}

TEST(Matrix2D, ComposeChecksItsArguments)
{
    constexpr Matrix2D kSame = kIdentityMatrix;
    const struct {
        uint32_t type;
        uint32_t count;
        std::array<Fixed, 6> values;
        uint32_t result;
        Matrix2D expected; // from the identity
    } cases[] = {
        {Matrix2D::Translate, 1, {5, 9}, 0, {kFixedOne, 0, 0, kFixedOne, 5, 0}},
        {Matrix2D::Translate, 2, {5, 9}, 0, {kFixedOne, 0, 0, kFixedOne, 5, 9}},
        {Matrix2D::Translate, 3, {5, 9, 1}, 8192, kSame},
        {Matrix2D::Scale, 1, {0x20000, 7}, 0, {0x20000, 0, 0, 0x20000, 0, 0}},
        {Matrix2D::Scale, 2, {0x20000, 0x8000}, 0, {0x20000, 0, 0, 0x8000, 0, 0}},
        {Matrix2D::Scale, 2, {0, 1}, 8192, kSame},
        {Matrix2D::Scale, 3, {1, 1, 1}, 8192, kSame},
        {Matrix2D::Rotate, 1, {-kDegrees360}, 0, kSame}, // whole turns change nothing
        {Matrix2D::Rotate, 2, {kDegrees90, 1}, 8192, kSame},
        {Matrix2D::Rotate, 3, {2 * kDegrees360, 1, 1}, 0, kSame},
        {Matrix2D::SkewX, 1, {kDegrees360}, 0, kSame},
        {Matrix2D::SkewY, 1, {-kDegrees360}, 0, kSame},
        {Matrix2D::SkewX, 1, {whole(45)}, 0, {kFixedOne, 0, kFixedOne, kFixedOne, 0, 0}},
        {Matrix2D::SkewY, 1, {whole(45)}, 0, {kFixedOne, kFixedOne, 0, kFixedOne, 0, 0}},
        {Matrix2D::SkewY, 2, {whole(45), 0}, 8192, kSame},
        {Matrix2D::Matrix, 6, {1, 2, 3, 4, 5, 6}, 0, {1, 2, 3, 4, 5, 6}},
        {0xFFFFFFFF, 9, {1}, 0, kSame},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.type << " with " << c.count);
        Matrix2D m = kSame;
        std::array<Fixed, 6> values = c.values;
        const auto type = static_cast<Matrix2D::TransformTypes>(c.type);
        EXPECT_EQ(m.compose(type, values.data(), c.count), c.result);
        EXPECT_EQ(m.compose(type, values.data(), 0), 8192u);
        EXPECT_EQ(m, c.expected);
        // A missing second value is filled in for the caller too.
        if (c.count == 1 && c.type <= Matrix2D::Scale) {
            EXPECT_EQ(values[1], c.type == Matrix2D::Scale ? values[0] : 0);
        }
    }
}

} // namespace
