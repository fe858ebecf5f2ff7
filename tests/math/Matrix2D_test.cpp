#include "math/Matrix2D.h"

#include "math/FixedMath.h"

#include <array>
#include <random>

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

constexpr Degrees degrees(int32_t v)
{
    return v * kFixedOne;
}

void expectNear(const Matrix2D& m, const Matrix2D& expected, int32_t bound)
{
    for (Fixed Matrix2D::*element :
         {&Matrix2D::a, &Matrix2D::b, &Matrix2D::c, &Matrix2D::d, &Matrix2D::e, &Matrix2D::f})
        EXPECT_NEAR(m.*element, expected.*element, bound);
}

// Moves by (10, 20), then doubles x and halves y: chosen so that every product is exact.
constexpr Matrix2D kScaledMove = {0x20000, 0, 0, 0x8000, degrees(20), degrees(10)};
constexpr Matrix2D kShear = {kFixedOne, 0x4000, 0x20000, -kFixedOne, degrees(1), degrees(-3)};

TEST(Matrix2D, ProductAppliesTheSecondAfterTheFirst)
{
    Matrix2D m = kScaledMove;
    m *= kShear;
    // a x + c y of the shear applied to each column of the first.
    const Matrix2D expected = {
        0x20000, 0x8000, kFixedOne, -0x8000, degrees(20 + 20 + 1), degrees(5 - 10 - 3)};
    EXPECT_EQ(m, expected);

    // Every argument may be the target.
    Matrix2D product;
    product.mul(&kScaledMove, &kShear);
    EXPECT_EQ(product, expected);
    product = kScaledMove;
    product.mul(&product, &kShear);
    EXPECT_EQ(product, expected);
    product = kShear;
    product.mul(&kScaledMove, &product);
    EXPECT_EQ(product, expected);
    product = kShear;
    product *= product;
    // 1 + 2/4, 1/4 - 1/4; 2 - 2, 2/4 + 1; 1 - 6 + 1, 1/4 + 3 - 3
    EXPECT_EQ(product, (Matrix2D{0x18000, 0, 0, 0x18000, degrees(-4), 0x4000}));
}

TEST(Matrix2D, TranslateAndScaleComeAfter)
{
    Matrix2D m = kShear;
    m.translate(degrees(5), degrees(7));
    m.scale(0x20000, -kFixedOne);
    EXPECT_EQ(m, (Matrix2D{0x20000, -0x4000, 0x40000, kFixedOne, degrees(12), degrees(-4)}));
}

TEST(Matrix2D, RotateTurnsFromXTowardY)
{
    Matrix2D m = kIdentityMatrix;
    m.rotate(degrees(90));
    expectNear(m, {0, kFixedOne, -kFixedOne, 0, 0, 0}, 40);
    EXPECT_EQ(m.a, 1); // the cosine is never 0

    Matrix2D back = kIdentityMatrix;
    back.rotate(degrees(-90));
    Matrix2D around = kIdentityMatrix;
    around.rotate(degrees(270));
    EXPECT_EQ(back, around);

    m = kIdentityMatrix;
    m.rotateCenter(degrees(180), degrees(10), degrees(20));
    expectNear(m, {-kFixedOne, 0, 0, -kFixedOne, degrees(20), degrees(40)}, 1000);
}

TEST(Matrix2D, WholeTurnsChangeNothing)
{
    for (int32_t turn : {0, 360, -360, 720, -720, 32400}) {
        Matrix2D m = kShear;
        m.rotate(degrees(turn));
        m.rotateCenter(degrees(turn), 5, 9);
        m.skewX(degrees(turn));
        m.skewY(degrees(turn));
        EXPECT_EQ(m, kShear) << turn;
    }
}

TEST(Matrix2D, SkewAddsTheTangent)
{
    Matrix2D m = {kFixedOne, degrees(2), 0, kFixedOne, degrees(3), degrees(4)};
    m.skewX(degrees(45));
    expectNear(m, {degrees(3), degrees(2), kFixedOne, kFixedOne, degrees(7), degrees(4)}, 40);
    m = {kFixedOne, degrees(2), 0, kFixedOne, degrees(3), degrees(4)};
    m.skewY(degrees(-45));
    expectNear(m, {kFixedOne, degrees(1), 0, kFixedOne, degrees(3), degrees(1)}, 40);
}

TEST(Matrix2D, SkewNear90OverwritesAndGoesOn)
{
    constexpr Fixed kLargest = 0x7FFFFFFF;
    for (Degrees angle : {degrees(89), degrees(90) + 0x8000, degrees(91), degrees(450)}) {
        const Degrees reduced = angle % kDegrees360;
        const Fixed added = fixMulDiv(kLargest, fixSin(reduced), fixCos(reduced));
        Matrix2D m = {kFixedOne, 0, 0, kFixedOne, 0, 0};
        m.skewX(angle);
        EXPECT_EQ(m.d, kLargest) << angle;
        EXPECT_EQ(m.c, wrapAdd(kLargest, added)) << angle;
        m = {kFixedOne, 0, 0, kFixedOne, 0, 0};
        m.skewY(angle);
        EXPECT_EQ(m.a, kLargest) << angle;
        EXPECT_EQ(m.b, wrapAdd(kLargest, added)) << angle;
    }
    for (Degrees angle : {degrees(89) - 1, degrees(91) + 1, degrees(270)}) {
        Matrix2D m = kIdentityMatrix;
        m.skewX(angle);
        EXPECT_EQ(m.d, kFixedOne) << angle;
    }
}

TEST(Matrix2D, TransformMapsInPlaceToo)
{
    MMPoint2D points[] = {{0, 0}, {degrees(1), degrees(2)}, {degrees(-4), degrees(8)}};
    MMPoint2D mapped[3] = {};
    kShear.transform(mapped, points, 3);
    EXPECT_EQ(mapped[0], (MMPoint2D{degrees(1), degrees(-3)}));
    EXPECT_EQ(mapped[1], (MMPoint2D{degrees(1 + 4 + 1), 0x4000 - degrees(2 + 3)}));
    EXPECT_EQ(mapped[2], (MMPoint2D{degrees(-4 + 16 + 1), degrees(-1 - 8 - 3)}));
    kShear.transform(points, points, 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(points[i], mapped[i]) << i;
    kShear.transform(points, mapped, 0);
    EXPECT_EQ(points[0], mapped[0]);
}

TEST(Matrix2D, InvertComesBackWithinAUnitOrSo)
{
    Matrix2D m = kIdentityMatrix;
    m.invert();
    EXPECT_EQ(m, (Matrix2D{0xFFFF, 0, 0, 0xFFFF, 0, 0}));
    m = {0x20000, 0, 0, 0x20000, 0, 0};
    m.invert();
    EXPECT_EQ(m, (Matrix2D{0x7FFF, 0, 0, 0x7FFF, 0, 0}));

    // Determinant -1.5; translation -(e, f) through the inverse.
    m = {kFixedOne, 0x4000, 0x20000, -kFixedOne, degrees(1), degrees(-3)};
    m.invert();
    expectNear(m, {43691, 10923, 87381, -43691, -43691 + 3 * 87381, -10923 - 3 * 43691}, 4);
}

// Singular matrices and products beyond 32 bits leave zeros behind, never a trap.
TEST(Matrix2D, InvertOfASingularMatrixIsHarmless)
{
    Matrix2D m = {};
    m.invert();
    EXPECT_EQ(m, Matrix2D{});
    m = {kFixedOne, 0x20000, 0x20000, 0x40000, 5, 6};
    m.invert();
    EXPECT_EQ(m, Matrix2D{});
    // log2 of b and c add up to 40, so a' and d' cannot be formed; a d / b is 0 or 1.
    m = {1, 1 << 20, 1 << 20, 1, 0, 0};
    m.invert();
    EXPECT_EQ(m.a, 0);
    EXPECT_EQ(m.d, 0);
    EXPECT_EQ(m.b, 0xFFF);
    EXPECT_EQ(m.c, 0xFFF);
}

TEST(Matrix2D, NormalizeBringsTheSmallestElementToOne)
{
    Matrix2D m = {0x40000, -0x8000, 0, 0x20000, degrees(3), 0};
    EXPECT_EQ(m.normalize(), 0x1FFFF);
    expectNear(m, {0x80000, -kFixedOne, 0, 0x40000, degrees(6), 0}, 8);
    m = {0, 0, 0, 0, degrees(9), 0};
    EXPECT_EQ(m.normalize(), 2); // 2^32 - 1 over the largest number
}

TEST(Matrix2D, ComposeChecksItsArguments)
{
    struct Case {
        uint32_t type;
        uint32_t count;
        std::array<Fixed, 6> values;
        uint32_t result;
        Matrix2D expected; // from the identity
    };
    const Matrix2D same = kIdentityMatrix;
    const Case cases[] = {
        {Matrix2D::Translate, 1, {5, 9}, 0, {kFixedOne, 0, 0, kFixedOne, 5, 0}},
        {Matrix2D::Translate, 2, {5, 9}, 0, {kFixedOne, 0, 0, kFixedOne, 5, 9}},
        {Matrix2D::Translate, 3, {5, 9, 1}, 8192, same},
        {Matrix2D::Scale, 1, {0x20000, 7}, 0, {0x20000, 0, 0, 0x20000, 0, 0}},
        {Matrix2D::Scale, 2, {0x20000, 0x8000}, 0, {0x20000, 0, 0, 0x8000, 0, 0}},
        {Matrix2D::Scale, 2, {0, 1}, 8192, same},
        {Matrix2D::Scale, 3, {1, 1, 1}, 8192, same},
        {Matrix2D::Rotate, 1, {0}, 0, same},
        {Matrix2D::Rotate, 2, {degrees(90), 1}, 8192, same},
        {Matrix2D::Rotate, 3, {kDegrees360, 1, 1}, 0, same},
        {Matrix2D::Rotate, 4, {degrees(90), 1, 1, 1}, 8192, same},
        {Matrix2D::SkewX, 1, {degrees(45)}, 0, {kFixedOne, 0, kFixedOne, kFixedOne, 0, 0}},
        {Matrix2D::SkewY, 1, {degrees(45)}, 0, {kFixedOne, kFixedOne, 0, kFixedOne, 0, 0}},
        {Matrix2D::SkewX, 2, {degrees(45), 0}, 8192, same},
        {Matrix2D::SkewY, 2, {degrees(45), 0}, 8192, same},
        {Matrix2D::Matrix, 5, {1, 2, 3, 4, 5, 6}, 8192, same},
        {6, 1, {1}, 0, same},
        {0xFFFFFFFF, 9, {1}, 0, same},
    };
    for (const Case& c : cases) {
        Matrix2D m = same;
        std::array<Fixed, 6> values = c.values;
        const auto type = static_cast<Matrix2D::TransformTypes>(c.type);
        EXPECT_EQ(m.compose(type, values.data(), c.count), c.result) << c.type << ", " << c.count;
        EXPECT_EQ(m, c.expected) << c.type << ", " << c.count;
        EXPECT_EQ(m.compose(type, values.data(), 0), 8192u) << c.type;
        EXPECT_EQ(m, c.expected) << c.type;
        // A missing second value is filled in for the caller too.
        if (c.count == 1 && c.type <= Matrix2D::Scale) {
            EXPECT_EQ(values[1], c.type == Matrix2D::Scale ? values[0] : 0);
        }
    }
    Fixed values[6] = {kShear.a, kShear.b, kShear.c, kShear.d, kShear.e, kShear.f};
    Matrix2D m = kScaledMove;
    Matrix2D expected;
    expected.mul(&kScaledMove, &kShear);
    EXPECT_EQ(m.compose(Matrix2D::Matrix, values, 6), 0u);
    EXPECT_EQ(m, expected);
}

TEST(Matrix2D, AcceptsEveryOperand)
{
    std::mt19937 random(11);
    const auto any = [&random] {
        return random() % 4 == 0 ? INT32_MIN : static_cast<int32_t>(random()) >> random() % 32;
    };
    for (int i = 0; i < 20000; ++i) {
        Matrix2D m = {any(), any(), any(), any(), any(), any()};
        Matrix2D other = {any(), any(), any(), any(), any(), any()};
        m *= other;
        m.translate(any(), any());
        m.scale(any(), any());
        m.rotate(any());
        m.rotateCenter(any(), any(), any());
        m.skewX(any());
        m.skewY(any());
        MMPoint2D p = {any(), any()};
        m.transform(&p, &p, 1);
        m.invert();
        other.normalize();
        other.invert();
    }
}

} // namespace
