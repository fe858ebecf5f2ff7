// SPDX-License-Identifier: MIT
#include "math/Division.h"
#include "math/FixedMath.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

using namespace KAVO;

namespace {

constexpr int kRounds = 300000;

// The ends of the range, the neighbourhood of the powers of two, and what lies between.
class Operands {
public:
    int32_t next()
    {
        const uint32_t nearPower = (1u << random_() % 32) + random_() % 3 - 1;
        const uint32_t choice = random_() % 4;
        if (choice == 0) return static_cast<int32_t>(nearPower);
        if (choice == 1) return static_cast<int32_t>(0 - nearPower);
        return static_cast<int32_t>(random_()) >> random_() % 32;
    }

private:
    std::mt19937 random_{42};
};

uint32_t withoutSign(int32_t v, bool negative)
{
    const uint32_t bits = static_cast<uint32_t>(v);
    return negative ? 0 - bits : bits;
}

TEST(FixedMath, ProductsAndQuotientsFollow64BitArithmetic)
{
    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t a = operands.next(), b = operands.next(), c = operands.next();
        const auto input = [&] { return testing::Message() << a << ", " << b << ", " << c; };
        const uint64_t x = magnitudeOf(a), y = magnitudeOf(b), z = magnitudeOf(c);
        const bool negative = (a < 0) != (b < 0);
        const uint8_t shift = static_cast<uint8_t>(i % 256);
        // These come first to see that nothing traps, whatever the operands.
        const uint32_t product = withoutSign(fixMul(a, b), negative);
        const uint32_t shifted = withoutSign(fixMulSHR(a, b, shift), negative);
        const uint32_t scaled = withoutSign(fixMulDiv(a, b, c), negative != (c < 0));
        const uint32_t quotient = withoutSign(fixDiv(a, b), negative);
        if (a == INT32_MIN || b == INT32_MIN || c == INT32_MIN) continue; // outside the domain

        // Only the product of the low halves loses a bit, the lowest of a's.
        const uint64_t fraction = (x & ~1ull) * (y & 0xFFFF) >> 16;
        ASSERT_EQ(product, static_cast<uint32_t>(x * (y >> 16) + fraction)) << input();
        // Beyond 16 a carry out of the low product may be missing.
        const uint64_t exact = shift < 48 ? x * y >> (16 + shift) : 0;
        ASSERT_LE(static_cast<uint32_t>(exact) - shifted, shift > 16 ? 1u : 0u)
            << input() << " >> " << int{shift};
        const uint64_t rounded = z != 0 ? x * y / z + (x * y % z >= z / 2 ? 1 : 0) : 0;
        ASSERT_EQ(scaled, static_cast<uint32_t>(rounded)) << input();
        const uint64_t divided = y != 0 ? (x << 16) / y : 0x1FFFF;
        ASSERT_EQ(quotient, static_cast<uint32_t>(divided)) << input();
    }
}

// Whatever a processor divides by, also where the domain ends.
TEST(FixedMath, WideDivisionsAreTheLongOnes)
{
    Operands operands;
    for (int i = 0; i < 4 * kRounds; ++i) {
        const int32_t a = operands.next(), b = operands.next();
        const int32_t c = i % 64 == 0 ? INT32_MIN : operands.next();
        const auto input = [&] { return testing::Message() << a << ", " << b << ", " << c; };
        ASSERT_EQ(fixDivWide(a, b), fixDivLong(a, b)) << input();
        ASSERT_EQ(fixDivWide(a, c), fixDivLong(a, c)) << input();
        ASSERT_EQ(fixMulDivWide(a, b, c), fixMulDivLong(a, b, c)) << input();
        ASSERT_EQ(fixMulDivWide(c, b, a), fixMulDivLong(c, b, a)) << input();
    }
}

TEST(FixedMath, SqrtHasAnExactIntegerPart)
{
    EXPECT_EQ(fixSqrt(0), 0x80);
    EXPECT_EQ(fixSqrt(0x20000), 0x16A09);
    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t x = operands.next();
        const double exact = std::sqrt(static_cast<uint32_t>(x) / 65536.0) * kFixedOne;
        const double integer = std::floor(exact / 256);
        const int32_t root = fixSqrt(x);
        ASSERT_EQ(root >> 8, static_cast<int32_t>(integer)) << x;
        // The fraction f may be high by f * f / (2 * integer part), at least in the last unit.
        const double fraction = exact / 256 - integer;
        const double slack = integer < 1 ? 255 : 256 * fraction * fraction / (2 * integer);
        ASSERT_GE(root, exact - 2) << x;
        ASSERT_LE(root, exact + slack + 2) << x;
    }
}

// The eight fraction bits are those of a division of what the integer part leaves by twice the root
// as far as it is known; each is set when its share of the divisor still goes in, also exactly.
TEST(FixedMath, SqrtHasTheFractionOfALongDivision)
{
    int exactLastBits = 0;
    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const uint32_t x =
            i < 70000 ? static_cast<uint32_t>(i) : static_cast<uint32_t>(operands.next());
        const uint32_t whole = static_cast<uint32_t>(std::sqrt(static_cast<double>(x)));
        uint64_t rest = uint64_t{x - whole * whole} << 8;
        uint64_t root = uint64_t{whole} << 8;
        for (int bit = 7; bit >= 0; --bit) {
            const uint64_t share = root >> (7 - bit);
            if (rest < share) continue;
            if (bit == 0 && rest == share) ++exactLastBits;
            rest -= share;
            root |= 1u << bit;
        }
        ASSERT_EQ(static_cast<uint64_t>(fixSqrt(static_cast<Fixed>(x))), root) << x;
    }
    EXPECT_GT(exactLastBits, 100);
}

TEST(FixedMath, SineAndCosineFollowTheirChords)
{
    EXPECT_EQ(fixSin(0), 1);
    EXPECT_EQ(fixSin(kDegrees90), 65566);
    EXPECT_EQ(fixSin(kDegrees360), -1);
    EXPECT_EQ(fixSin(2 * kDegrees360), 1);
    EXPECT_EQ(fixCos(kDegrees90), 1); // never 0

    // A chord of five degrees sags by 0.000952 sin in its middle; half of that lies on each side.
    const auto expectNear = [](Fixed result, double exact, const char* what, Degrees angle) {
        const double bound = 31.3 * std::fmin(1, std::fabs(exact) + 0.045) + 2;
        EXPECT_NEAR(result, exact * kFixedOne, bound) << what << angle;
    };
    // More and more coarsely, over many turns both ways.
    for (int64_t angle = 0; angle <= INT32_MAX && !HasFailure(); angle += 1021 + angle / 8192)
        for (int32_t sign : {1, -1}) {
            const Degrees turned = static_cast<Degrees>(angle) * sign;
            const double radians = turned * std::acos(-1.0) / kDegrees180;
            expectNear(fixSin(turned), std::sin(radians), "sin ", turned);
            expectNear(fixCos(turned), std::cos(radians), "cos ", turned);
            EXPECT_NE(fixCos(turned), 0) << turned;
        }
}

TEST(FixedMath, ATanGivesTheDirection)
{
    EXPECT_EQ(fixATan(0, 0), 0);
    EXPECT_EQ(fixATan(-1, 0), kDegrees180);
    EXPECT_EQ(fixATan(0, kFixedOne), 0x5A0043);

    const double toDegrees = 180 / std::acos(-1.0);
    Operands operands;
    for (int i = 0; i < kRounds; ++i) {
        const int32_t x = operands.next(), y = operands.next();
        const Degrees angle = fixATan(x, y);
        ASSERT_TRUE(angle >= 0 && angle < kDegrees360) << x << ", " << y;
        // Short vectors are coarse, and long ones whose turned length exceeds 2^31 wrap.
        const double length = std::hypot(x, y);
        if (length < kFixedOne || length * 1.6468 > 2147483648.0) continue;
        const double error = std::atan2(y, x) * toDegrees - angle / 65536.0;
        ASSERT_LT(std::fabs(std::remainder(error, 360)), 0.01) << x << ", " << y;
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

} // namespace
