// The basic strip fillers: what they write, where they stop, and which coverage they use.
#include "PaintModel.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace KAVO::Graphics2D;

constexpr Pixel kGuard = 0xCAFEBABE;
constexpr Pixel kGround = 0xFF102030;
constexpr int kLength = 256;

// A context over one row of pixels with a guard pixel on either side.
struct SolidStrip : testing::Test {
    std::array<Pixel, kLength + 2> guarded;
    Pixel* const pixels = guarded.data() + 1;
    MMContext2D context;

    SolidStrip()
    {
        guarded.fill(kGround);
        guarded.front() = guarded.back() = kGuard;
        context.spanPixels = pixels;
        context.currentPaint = context.fillPaint;
    }
    void span(Fixed start, Fixed end)
    {
        context.spanStart = start;
        context.spanEnd = end;
    }
    ~SolidStrip() override
    {
        EXPECT_EQ(guarded.front(), kGuard);
        EXPECT_EQ(guarded.back(), kGuard);
    }
};

TEST_F(SolidStrip, WritesWholePixelsOfTheSpanOnly)
{
    context.currentPaint.paintColour = 0x12345678;
    for (Fixed end : {0x30000, 0x3FFFF, 0x10000, 0x5FFFF}) {
        const bool empty = end < 0x40000;
        span(0x38000, end);
        context.drawSolidStrip();
        EXPECT_EQ(pixels[3], empty ? kGround : 0x12345678u);
        context.drawSolidXORStrip();
        EXPECT_EQ(pixels[4], empty ? kGround : 0u);
        context.drawSolidXORStrip(); // twice restores
        if (!empty) continue;
        context.drawTransStrip();
        context.drawSolidTStrip();
    }
    for (int x = 0; x < kLength; ++x)
        EXPECT_EQ(pixels[x], x == 3 || x == 4 ? 0x12345678u : kGround) << x;
}

// Every weight against every pair of a pixel's and a colour's byte, in flat spans, which are
// blended several pixels at a time, and in ramps, which are not.
TEST_F(SolidStrip, MovesEachByteByTheWeight)
{
    for (int weight = 0; weight < 256; ++weight)
        for (Pixel s = 0; s < 64; s += weight % 8 == 0 ? 1 : 9)
            for (Coverage step : {0, 1}) {
                const Pixel colour = s * 0x01010101 + 0xC0804000;
                context.currentPaint.paintColour = colour;
                for (Pixel p = 0; p < kLength; ++p)
                    pixels[p] = p * 0x01010101;
                span(0, kLength << 16);
                context.spanCoverage = context.spanCoverageNext = weight << 16;
                context.spanCoverageStep = step;
                context.drawSolidTStrip();
                ASSERT_EQ(context.spanCoverageNext, (weight << 16) + 255 * step);
                for (Pixel p = 0; p < kLength; ++p)
                    ASSERT_EQ(pixels[p], PaintModel::moved(p * 0x01010101, colour, weight))
                        << p << " toward " << colour << " by " << weight << ", step " << step;
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
    EXPECT_EQ(pixels[0], 0x00FF00FFu);
    EXPECT_EQ(pixels[1], kGround);
    EXPECT_EQ(pixels[2], kGround);
    EXPECT_EQ(context.spanCoverageNext, 512 << 16);
}

TEST_F(SolidStrip, TailPixelIsBlendedEvenAfterAnEmptySpan)
{
    context.currentPaint.paintColour = kGround + 0x40;
    span(0x48000, 0x48000);
    context.spanTailCoverage = 128 << 16;
    context.drawSolidTStrip();
    EXPECT_EQ(pixels[4], kGround + 0x20);
    EXPECT_EQ(context.spanTailCoverage, 128 << 16) << "this filler leaves the tail as it is";
}

TEST_F(SolidStrip, PickingHitsAtBothEndsAndOnWholeRowsOnly)
{
    span(0x20000, 0x48000);
    context.spanRow = 3;
    for (const auto& [x, y, hit] : {std::array{0x20000, 0x30000, 1},
                                    {0x48000, 0x30000, 1},
                                    {0x1FFFF, 0x30000, 0},
                                    {0x48001, 0x30000, 0},
                                    {0x30000, 0x38000, 0},
                                    {0x30000, 0x20000, 0}}) {
        context.pickHit = 0;
        context.pickX = x;
        context.pickY = y;
        context.drawPickingStrip();
        EXPECT_EQ(context.pickHit, hit) << x << "," << y;
    }
}

TEST_F(SolidStrip, TransStripWeighsBiasedBytes)
{
    // Weight 255: the pixel drops out and each byte c becomes (c + (c >> 7)) * 255 >> 8.
    context.currentPaint.paintColour = 0xFF804020;
    context.currentPaint.paintOpacity = 255;
    span(0, 1 << 16);
    context.drawTransStrip();
    EXPECT_EQ(pixels[0], 0xFF803F1Fu);
}

} // namespace
