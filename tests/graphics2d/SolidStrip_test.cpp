// The basic strip fillers: what they write, where they stop, and which coverage they use.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/StripDispatch.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace KAVO::Graphics2D;

constexpr Pixel kGuard = 0xCAFEBABE;

// A context over one row of eight pixels with a guard pixel on either side.
struct Row : testing::Test {
    std::array<Pixel, 10> pixels{};
    MMContext2D context;

    Row()
    {
        pixels.fill(0xFF102030);
        pixels.front() = pixels.back() = kGuard;
        context.spanPixels = pixels.data() + 1;
        context.currentPaint = context.fillPaint;
    }
    void span(Fixed start, Fixed end)
    {
        context.spanStart = start;
        context.spanEnd = end;
    }
    ~Row() override
    {
        EXPECT_EQ(pixels.front(), kGuard);
        EXPECT_EQ(pixels.back(), kGuard);
    }
};

TEST_F(Row, SolidFillsWholePixelsOfTheSpanOnly)
{
    context.currentPaint.paintColour = 0x12345678;
    span(0x28000, 0x5FFFF);
    context.drawSolidStrip();
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(pixels[1 + x], x >= 2 && x < 5 ? 0x12345678u : 0xFF102030u) << x;
}

TEST_F(Row, EmptyAndReversedSpansWriteNothing)
{
    for (Fixed end : {0x30000, 0x3FFFF, 0x10000}) {
        span(0x30000, end);
        context.drawSolidStrip();
        context.drawSolidXORStrip();
        context.drawTransStrip();
        context.spanTailCoverage = 0;
        context.drawSolidTStrip();
    }
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(pixels[1 + x], 0xFF102030u);
}

TEST_F(Row, ExclusiveOrTwiceRestores)
{
    context.currentPaint.paintColour = 0x80FF5501;
    span(0, 8 << 16);
    context.drawSolidXORStrip();
    EXPECT_EQ(pixels[1], 0x7FEF7531u);
    context.drawSolidXORStrip();
    EXPECT_EQ(pixels[8], 0xFF102030u);
}

TEST_F(Row, TranslucentWeightsAtTheEndsOfTheScale)
{
    // 255.0 reaches the colour exactly; 0 and, because the weight is one byte, 256.0 change
    // nothing.
    context.currentPaint.paintColour = 0x00FF00FF;
    span(0, 3 << 16);
    context.spanCoverage = 255 << 16;
    context.spanCoverageNext = 0;
    context.spanCoverageStep = 256 << 16;
    context.drawSolidTStrip();
    EXPECT_EQ(pixels[1], 0x00FF00FFu);
    EXPECT_EQ(pixels[2], 0xFF102030u);
    EXPECT_EQ(pixels[3], 0xFF102030u);
    EXPECT_EQ(context.spanCoverageNext, 512 << 16) << "advanced once per pixel from the second on";
}

TEST_F(Row, TailPixelIsBlendedEvenAfterAnEmptySpan)
{
    context.currentPaint.paintColour = 0xFF102030 + 0x40;
    span(0x48000, 0x48000);
    context.spanTailCoverage = 128 << 16;
    context.drawSolidTStrip();
    EXPECT_EQ(pixels[5], 0xFF102030u + 0x20);
    EXPECT_EQ(context.spanTailCoverage, 128 << 16) << "this filler leaves the tail as it is";
}

TEST_F(Row, PickingHitsAtBothEndsAndOnWholeRowsOnly)
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

TEST_F(Row, TransStripWeighsBiasedBytes)
{
    // Weight 255: the pixel drops out and each byte c becomes (c + (c >> 7)) * 255 >> 8.
    context.currentPaint.paintColour = 0xFF804020;
    context.currentPaint.paintOpacity = 255;
    span(0, 1 << 16);
    context.drawTransStrip();
    EXPECT_EQ(pixels[1], 0xFF803F1Fu);
}

TEST_F(Row, OpacityBelow255ChoosesTheTranslucentFiller)
{
    context.currentPaint.paintColour = 0xFFFFFFFF;
    span(0, 1 << 16);
    for (int opacity : {254, 255}) {
        pixels[1] = 0;
        context.currentPaint.paintOpacity = static_cast<uint8_t>(opacity);
        drawSpan(context, chooseSpanFiller(context));
        // (255 * w + w) >> 8 = w
        EXPECT_EQ(pixels[1], opacity == 255 ? 0xFFFFFFFFu : 0xFEFEFEFEu);
    }
}

} // namespace
