#include "math/FixedMath.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace {

constexpr int32_t kLowest = INT32_MIN; // outside the domain, but harmless

// The ends of the range, the neighbourhood of the powers of two, and what lies between.
class Operands {
public:
    int32_t next()
    {
        const uint32_t choice = random_() % 4;
        const uint32_t power = 1u << random_() % 32;
        if (choice == 0) return static_cast<int32_t>(power + random_() % 3 - 1);
        if (choice == 1) return wrapNeg(static_cast<int32_t>(power + random_() % 3 - 1));
        return static_cast<int32_t>(random_()) >> random_() % 32;
    }
    int32_t nextInDomain()
    {
        const int32_t v = next();
        return v == kLowest ? -0x7FFFFFFF : v;
    }

private:
    std::mt19937 random_{42};
};

constexpr int kRounds = 300000;

uint64_t magnitude64(int32_t v)
{
    return magnitudeOf(v);
}

// The low 32 bits of a magnitude with a sign.
int32_t signedLow(uint64_t magnitude, bool negative)
{
    return static_cast<int32_t>(static_cast<uint32_t>(negative ? 0 - magnitude : magnitude));
}

TEST(FixedMath, MulDropsOnlyTheLowestBitOfTheFirstLowHalf)
{
    EXPECT_EQ(fixMul(0x18000, 0x20000), 0x30000);
    EXPECT_EQ(fixMul(0xFFFF, 0xFFFF), 0xFFFD); // truncation alone would give 0xFFFE
    EXPECT_EQ(fixMul(1, 0xFFFF), 0);
    EXPECT_EQ(fixMul(1, 1), 0);
    EXPECT_EQ(fixMul(kFixedOne, 0x7FFFFFFF), 0x7FFFFFFF);
    EXPECT_EQ(fixMul(0x5556, 3), 1); // 0x10002 / 0x10000
    EXPECT_EQ(fixMul(3, 0x5556), 0); // 2 * 0x5556 has no carry

    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t a = operands.nextInDomain();
        const int32_t b = operands.nextInDomain();
        const uint64_t whole = magnitude64(a) * (magnitude64(b) >> 16);
        const uint64_t fraction = (magnitude64(a) & ~1ull) * (magnitude64(b) & 0xFFFF) >> 16;
        ASSERT_EQ(fixMul(a, b), signedLow(whole + fraction, (a < 0) != (b < 0))) << a << " * " << b;
    }
}

TEST(FixedMath, MulSHRIsExactUpToAShiftOf16)
{
    EXPECT_EQ(fixMulSHR(0xFFFF, 0xFFFF, 0), 0xFFFE);
    EXPECT_EQ(fixMulSHR(-0x30000, 0x20000, 1), -0x30000);
    EXPECT_EQ(fixMulSHR(0x20000, 0x20000, 40), 0);
    EXPECT_EQ(fixMulSHR(0x7FFFFFFF, 0x7FFFFFFF, 40), 0x3F);
    EXPECT_EQ(fixMulSHR(0x7FFFFFFF, 0x7FFFFFFF, 48), 0);
    EXPECT_EQ(fixMulSHR(0x7FFFFFFF, 0x7FFFFFFF, 255), 0);

    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t a = operands.nextInDomain();
        const int32_t b = operands.nextInDomain();
        const uint8_t shift = static_cast<uint8_t>(i % 32);
        const uint64_t exact = magnitude64(a) * magnitude64(b) >> (16 + shift);
        const int32_t result = fixMulSHR(a, b, shift);
        const bool negative = (a < 0) != (b < 0);
        // Beyond 16 a carry out of the low product may be missing.
        const bool matches = result == signedLow(exact, negative) ||
                             (shift > 16 && exact > 0 && result == signedLow(exact - 1, negative));
        ASSERT_TRUE(matches) << a << " * " << b << " >> " << int{shift} << ": " << result;
    }
}

TEST(FixedMath, MulDivRoundsOnTheMagnitude)
{
    EXPECT_EQ(fixMulDiv(3, 5, 1), 16);
    EXPECT_EQ(fixMulDiv(-3, 5, 1), -16);
    EXPECT_EQ(fixMulDiv(0, 0, 1), 1);
    EXPECT_EQ(fixMulDiv(0, -5, 1), -1);
    EXPECT_EQ(fixMulDiv(1, 1, 2), 1);
    EXPECT_EQ(fixMulDiv(1, 1, 3), 1);
    EXPECT_EQ(fixMulDiv(1, 1, 4), 0);
    EXPECT_EQ(fixMulDiv(7, 9, 0), 0);
    EXPECT_EQ(fixMulDiv(kLowest, kLowest, 0), 0);

    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t a = operands.nextInDomain();
        const int32_t b = operands.nextInDomain();
        const int32_t c = operands.nextInDomain();
        if (c == 0) continue;
        const uint64_t product = magnitude64(a) * magnitude64(b);
        const uint64_t divisor = magnitude64(c);
        const uint64_t rounded = product / divisor + (product % divisor >= divisor / 2 ? 1 : 0);
        const bool negative = ((a < 0) != (b < 0)) != (c < 0);
        ASSERT_EQ(fixMulDiv(a, b, c), signedLow(rounded, negative))
            << a << " * " << b << " / " << c;
    }
}

TEST(FixedMath, DivTruncatesTowardZero)
{
    EXPECT_EQ(fixDiv(0x10000, 0x30000), 0x5555);
    EXPECT_EQ(fixDiv(-0x10000, 0x30000), -0x5555);
    EXPECT_EQ(fixDiv(0x10000, 1), 0); // 2^32 wraps
    EXPECT_EQ(fixDiv(5, 0), 0x1FFFF);
    EXPECT_EQ(fixDiv(-5, 0), -0x1FFFF);
    EXPECT_EQ(fixDiv(0, 0), 0x1FFFF);

    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t a = operands.nextInDomain();
        const int32_t b = operands.nextInDomain();
        if (b == 0) continue;
        const uint64_t quotient = (magnitude64(a) << 16) / magnitude64(b);
        ASSERT_EQ(fixDiv(a, b), signedLow(quotient, (a < 0) != (b < 0))) << a << " / " << b;
    }
}

TEST(FixedMath, SqrtHasAnExactIntegerPart)
{
    EXPECT_EQ(fixSqrt(0x10000), 0x10000);
    EXPECT_EQ(fixSqrt(0x40000), 0x20000);
    EXPECT_EQ(fixSqrt(0x20000), 0x16A09);
    EXPECT_EQ(fixSqrt(0), 0x80);

    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t x = operands.next();
        const double exact = std::sqrt(static_cast<double>(static_cast<uint32_t>(x))) * 256;
        const int32_t root = fixSqrt(x);
        ASSERT_EQ(root >> 8, static_cast<int32_t>(exact / 256)) << x;
        // The fraction f may be high by f * f / (2 * integer part), at least in the last unit.
        const double integer = std::floor(exact / 256);
        const double fraction = exact / 256 - integer;
        const double slack = integer < 1 ? 255 : 256 * fraction * fraction / (2 * integer);
        ASSERT_GE(root, exact - 2) << x;
        ASSERT_LE(root, exact + slack + 2) << x;
    }
}

TEST(FixedMath, SineAndCosineFollowTheirChords)
{
    EXPECT_EQ(fixSin(0), 1);
    EXPECT_EQ(fixSin(kDegrees90), 65566);
    EXPECT_EQ(fixCos(0), 65566);
    EXPECT_EQ(fixSin(kDegrees180), 1);
    EXPECT_EQ(fixSin(270 * kFixedOne), -65566);
    EXPECT_EQ(fixSin(kDegrees360), -1);
    EXPECT_EQ(fixSin(30 * kFixedOne), 0x800E);
    EXPECT_EQ(fixCos(60 * kFixedOne), 0x800E);
    EXPECT_EQ(fixCos(kDegrees90), 1);

    // A chord of five degrees sags by 0.000952 sin in its middle; half of that lies on each side.
    const double toRadians = std::acos(-1.0) / 180 / kFixedOne;
    for (Degrees angle = 0; angle <= kDegrees360; angle += 1021) {
        for (int i = 0; i < 2; ++i) {
            const double exact = i == 0 ? std::sin(angle * toRadians) : std::cos(angle * toRadians);
            const Fixed result = i == 0 ? fixSin(angle) : fixCos(angle);
            const double bound = 31.3 * std::fmin(1, std::fabs(exact) + 0.045) + 2;
            ASSERT_NEAR(result, exact * kFixedOne, bound) << (i == 0 ? "sin " : "cos ") << angle;
        }
        ASSERT_NE(fixCos(angle), 0) << angle;
    }
}

TEST(FixedMath, AnglesOutsideACircleAreReduced)
{
    for (int32_t degrees : {-32767, -721, -720, -361, -90, -1, 361, 450, 720, 32767}) {
        const Degrees angle = degrees * kFixedOne + 77;
        const Degrees inside = ((degrees % 360) + 360) % 360 * kFixedOne + 77;
        EXPECT_EQ(fixSin(angle), fixSin(inside)) << degrees;
        EXPECT_EQ(fixCos(angle), fixCos(inside)) << degrees;
    }
    EXPECT_EQ(fixSin(kLowest), fixSin(kLowest % kDegrees360 + kDegrees360));
}

TEST(FixedMath, ATanGivesTheDirection)
{
    EXPECT_EQ(fixATan(0, 0), 0);
    EXPECT_EQ(fixATan(1, 0), 0);
    EXPECT_EQ(fixATan(-1, 0), kDegrees180);
    EXPECT_EQ(fixATan(0, kFixedOne), 0x5A0043);

    const double toDegrees = 180 / std::acos(-1.0);
    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t x = operands.next();
        const int32_t y = operands.next();
        const Degrees angle = fixATan(x, y);
        ASSERT_GE(angle, 0) << x << ", " << y;
        ASSERT_LT(angle, kDegrees360) << x << ", " << y;
        // Short vectors are coarse, and long ones whose turned length exceeds 2^31 wrap.
        const double length = std::hypot(x, y);
        if (length < kFixedOne || length * 1.6468 > 2147483648.0) continue;
        double error = std::atan2(y, x) * toDegrees - angle / 65536.0;
        error -= 360 * std::round(error / 360);
        ASSERT_LT(std::fabs(error), 0.01) << x << ", " << y;
    }
}

TEST(FixedMath, Log2IsTheHighestBit)
{
    EXPECT_EQ(MMLog2(0), 0u);
    for (uint32_t bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(MMLog2(1u << bit), bit);
        EXPECT_EQ(MMLog2((1u << bit) | ((1u << bit) - 1)), bit);
    }
}

// Nothing traps or overflows anywhere, the ends of the range included.
TEST(FixedMath, AcceptsEveryOperand)
{
    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t a = i % 7 == 0 ? kLowest : operands.next();
        const int32_t b = i % 5 == 0 ? kLowest : operands.next();
        const int32_t c = i % 3 == 0 ? kLowest : operands.next();
        fixMul(a, b);
        fixMulSHR(a, b, static_cast<uint8_t>(c));
        fixMulDiv(a, b, c);
        fixDiv(a, b);
        fixSqrt(a);
        fixSin(a);
        fixCos(a);
        fixATan(a, b);
    }
}

} // namespace
