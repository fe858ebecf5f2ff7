// The basic strip fillers: what they write, where they stop, and which coverage they use.
#include "graphics2d/MMContext2D.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace KAVO::Graphics2D;

constexpr Pixel kGuard = 0xCAFEBABE;
constexpr Pixel kGround = 0xFF102030;

// A context over one row of pixels with a guard pixel on either side.
template <size_t kLength>
struct RowOf : testing::Test {
    std::array<Pixel, kLength + 2> pixels;
    MMContext2D context;

    RowOf()
    {
        pixels.fill(kGround);
        pixels.front() = pixels.back() = kGuard;
        context.spanPixels = pixels.data() + 1;
        context.currentPaint = context.fillPaint;
    }
    void span(Fixed start, Fixed end)
    {
        context.spanStart = start;
        context.spanEnd = end;
    }
    ~RowOf() override
    {
        EXPECT_EQ(pixels.front(), kGuard);
        EXPECT_EQ(pixels.back(), kGuard);
    }
};
using SolidStrip = RowOf<8>;
using SolidBlend = RowOf<256>;

TEST_F(SolidStrip, WritesWholePixelsOfTheSpanOnly)
{
    context.currentPaint.paintColour = 0x12345678;
    for (Fixed end : {0x30000, 0x3FFFF, 0x10000, 0x5FFFF}) {
        const bool empty = end < 0x40000;
        span(0x38000, end);
        context.drawSolidStrip();
        EXPECT_EQ(pixels[1 + 3], empty ? kGround : 0x12345678u);
        context.drawSolidXORStrip();
        EXPECT_EQ(pixels[1 + 4], empty ? kGround : 0u);
        context.drawSolidXORStrip(); // twice restores
        if (!empty) continue;
        context.drawTransStrip();
        context.drawSolidTStrip();
    }
    for (unsigned x = 0; x < 8; ++x)
        EXPECT_EQ(pixels[1 + x], x == 3 || x == 4 ? 0x12345678u : kGround) << x;
}

// Every weight against every pair of a pixel's and a colour's byte, in flat spans, which are
// blended several pixels at a time, and in ramps, which are not.
TEST_F(SolidBlend, MovesEachByteByTheWeight)
{
    for (uint32_t weight = 0; weight < 256; ++weight) {
        for (uint32_t s = 0; s < 64; s += weight % 8 == 0 ? 1 : 9) {
            for (Coverage step : {0, 1}) {
                context.currentPaint.paintColour =
                    s | (s + 64) << 8 | (s + 128) << 16 | (s + 192) << 24;
                for (uint32_t p = 0; p < 256; ++p)
                    pixels[1 + p] = p * 0x01010101u;
                span(0, 256 << 16);
                context.spanCoverage = context.spanCoverageNext = static_cast<Coverage>(weight)
                                                                  << 16;
                context.spanCoverageStep = step;
                context.drawSolidTStrip();
                ASSERT_EQ(context.spanCoverageNext,
                          (static_cast<Coverage>(weight) << 16) + 255 * step);
                for (int p = 0; p < 256; ++p)
                    for (int byte = 0; byte < 4; ++byte) {
                        const int d = static_cast<int>(s) + 64 * byte - p;
                        const int w = static_cast<int>(weight);
                        const int expected = p + ((d * w + (d > 128 ? w : 0)) >> 8);
                        ASSERT_EQ(pixels[1u + static_cast<unsigned>(p)] >> (8 * byte) & 0xFF,
                                  static_cast<unsigned>(expected))
                            << p << " toward " << d + p << " by " << w << ", step " << step;
                    }
            }
        }
    }
}

TEST_F(SolidStrip, CoverageRoundsWrapsAndRampsFromTheSecondPixelOn)
{
    // 254.5 is a weight of 255 and reaches the colour; 0 and, because the weight is one byte, 256
    // change nothing.
    context.currentPaint.paintColour = 0x00FF00FF;
    span(0, 3 << 16);
    context.spanCoverage = 0xFE8000;
    context.spanCoverageNext = 0;
    context.spanCoverageStep = 256 << 16;
    context.drawSolidTStrip();
    EXPECT_EQ(pixels[1], 0x00FF00FFu);
    EXPECT_EQ(pixels[2], kGround);
    EXPECT_EQ(pixels[3], kGround);
    EXPECT_EQ(context.spanCoverageNext, 512 << 16);
}

TEST_F(SolidStrip, TailPixelIsBlendedEvenAfterAnEmptySpan)
{
    context.currentPaint.paintColour = kGround + 0x40;
    span(0x48000, 0x48000);
    context.spanTailCoverage = 128 << 16;
    context.drawSolidTStrip();
    EXPECT_EQ(pixels[5], kGround + 0x20);
    EXPECT_EQ(context.spanTailCoverage, 128 << 16) << "this filler leaves the tail as it is";
}

TEST_F(SolidStrip, PickingHitsAtBothEndsAndOnWholeRowsOnly)
{
    span(0x20000, 0x48000);
    context.spanRow = 3;
    struct {
        Fixed x, y;
        bool hit;
    } cases[] = {
        {0x20000, 0x30000, true},  {0x48000, 0x30000, true},  {0x1FFFF, 0x30000, false},
        {0x48001, 0x30000, false}, {0x30000, 0x38000, false}, {0x30000, 0x20000, false},
    };
    for (const auto& c : cases) {
        context.pickHit = 0;
        context.pickX = c.x;
        context.pickY = c.y;
        context.drawPickingStrip();
        EXPECT_EQ(context.pickHit, c.hit ? 1 : 0) << c.x << "," << c.y;
    }
}

TEST_F(SolidStrip, TransStripWeighsBiasedBytes)
{
    // Weight 255: the pixel drops out and each byte c becomes (c + (c >> 7)) * 255 >> 8.
    context.currentPaint.paintColour = 0xFF804020;
    context.currentPaint.paintOpacity = 255;
    span(0, 1 << 16);
    context.drawTransStrip();
    EXPECT_EQ(pixels[1], 0xFF803F1Fu);
}

} // namespace
