// SPDX-License-Identifier: MIT
// What the guide's recipes draw, held to what each of them promises.
#include "guide/Recipes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr Pixel kWhite = 0xFFFFFFFF;

struct Panel {
    std::vector<Pixel> pixels = std::vector<Pixel>(kRecipeWidth * kRecipeHeight, kWhite);
    MMContext2D context;

    Panel() { setTarget(context, pixels.data(), kRecipeWidth, kRecipeHeight); }
    ~Panel() { EXPECT_EQ(context.outOfMemory, 0); }

    Pixel at(int x, int y) const { return pixels[static_cast<size_t>(y * kRecipeWidth + x)]; }
    bool inked(int x, int y) const { return (at(x, y) & 0xFF) < 128; }

    // Columns between which the rows hold dark pixels, or an empty range.
    std::pair<int, int> ink(int top, int bottom) const
    {
        std::pair<int, int> columns = {kRecipeWidth, -1};
        for (int y = top; y < bottom; ++y)
            for (int x = 0; x < kRecipeWidth; ++x)
                if (inked(x, y))
                    columns = {std::min(columns.first, x), std::max(columns.second, x)};
        return columns;
    }
};

// Every channel within so many levels.
void expectNear(Pixel pixel, Pixel expected, int levels)
{
    for (int shift = 0; shift < 24; shift += 8)
        EXPECT_NEAR(pixel >> shift & 255, expected >> shift & 255, levels)
            << std::hex << pixel << " is not " << expected;
}

TEST(Guide, Fill)
{
    Panel panel;
    fillShapes(panel.context);
    EXPECT_EQ(panel.at(60, 25), 0xFF1D4E89);      // a tip
    EXPECT_EQ(panel.at(60, 58), kWhite);          // the empty middle
    expectNear(panel.at(150, 60), 0xFFECC388, 2); // 160 / 255 of the way from white to E09F3E
    EXPECT_EQ(panel.at(190, 110), kWhite);
}

TEST(Guide, Stroke)
{
    Panel panel;
    strokeLines(panel.context);
    const Pixel ink = 0xFF264653;
    EXPECT_EQ(panel.at(40, 40), ink);  // halfway up
    EXPECT_EQ(panel.at(110, 40), ink); // the arc's top
    EXPECT_EQ(panel.at(110, 52), kWhite);
    EXPECT_EQ(panel.at(17, 61), ink); // the round cap
    // The curve sets out along (84, 30): dashes of 12, gaps of 6.
    EXPECT_EQ(panel.at(21, 97), ink);
    EXPECT_EQ(panel.at(30, 100), kWhite);
    EXPECT_EQ(panel.at(38, 102), ink);
}

TEST(Guide, Gradients)
{
    Panel panel;
    paintGradients(panel.context);
    expectNear(panel.at(10, 1), 0xFF1D4E89, 4);
    expectNear(panel.at(10, 84), 0xFFA8D0F0, 4);
    expectNear(panel.at(10, 119), 0xFFFFFFFF, 4);
    for (int y = 2; y < kRecipeHeight; ++y)
        EXPECT_GE(panel.at(10, y) & 255, panel.at(10, y - 1) & 255) << y;
    expectNear(panel.at(140, 50), 0xFFFFF3B0, 8);
    expectNear(panel.at(120, 50), 0xFFE09F3E, 12);
    expectNear(panel.at(101, 50), panel.at(10, 50), 12); // faded
}

// The texel at (x, y) of the image.
Pixel texel(int x, int y)
{
    return (x / 4 + y / 4) % 2 ? 0xFF2A7F78 : 0xFFE09F3E;
}

TEST(Guide, Images)
{
    Panel panel;
    drawImages(panel.context);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            ASSERT_EQ(panel.at(12 + x, 20 + y), texel(x, y)) << x << ' ' << y;
            for (int dy = 0; dy < 4; ++dy)
                for (int dx = 0; dx < 4; ++dx)
                    ASSERT_EQ(panel.at(40 + 4 * x + dx, 20 + 4 * y + dy), texel(x, y))
                        << x << ' ' << y;
        }
    for (int y = 2; y < 16; y += 4)
        for (int x = 2; x < 16; x += 4) { // the middles of the fields, turned
            const double u = 4 * x, v = 4 * y;
            const double column = 140 + u * std::sqrt(0.75) - v / 2;
            const double row = 20 + u / 2 + v * std::sqrt(0.75);
            if (column < 199)
                expectNear(panel.at(static_cast<int>(column), static_cast<int>(row)), texel(x, y),
                           12);
        }
    EXPECT_EQ(panel.at(199, 60), kWhite);
}

TEST(Guide, Text)
{
    Panel panel;
    drawLabels(panel.context);
    const auto centred = panel.ink(12, 36);
    EXPECT_NEAR(centred.first + centred.second, 200, 4);
    EXPECT_GT(centred.second - centred.first, 40); // five letters of 20 pixels
    const auto line = panel.ink(63, 64);
    EXPECT_EQ(line.first, 10);
    const auto more = panel.ink(46, 62);
    EXPECT_NEAR(line.second, more.second, 3);
    EXPECT_GT(panel.ink(80, 116).second, 90); // uphill
}

TEST(Guide, WrappedText)
{
    Panel panel;
    const Fixed end =
        drawParagraph(panel.context, "one two three four five six seven", 20_fx, 10_fx, 70_fx);
    const int lines = (end - 10_fx) / 16_fx;
    EXPECT_GE(lines, 3);
    EXPECT_LE(lines, 5);
    for (int line = 0; line < lines; ++line) {
        const auto ink = panel.ink(10 + 16 * line, 26 + 16 * line);
        EXPECT_NEAR(ink.first, 21, 1) << line;
        EXPECT_LE(ink.second, 90) << line;
    }
    EXPECT_EQ(panel.ink(fixFloor(end) + 4, kRecipeHeight).second, -1);
}

TEST(Guide, HitTesting)
{
    Panel panel;
    MMPathBuilder ring;
    ring.circle(100_fx, 60_fx, 50_fx).circle(100_fx, 60_fx, 25_fx);
    panel.context.fillRule = kFillEvenOdd;
    for (int y = 0; y < kRecipeHeight; y += 3)
        for (int x = 0; x < kRecipeWidth; x += 3) {
            const double r = std::hypot(x + 0.5 - 100, y + 0.5 - 60);
            if (std::fabs(r - 50) < 1 || std::fabs(r - 25) < 1) continue;
            ASSERT_EQ(covers(panel.context, ring, x, y), r > 25 && r < 50) << x << ' ' << y;
        }
    EXPECT_EQ(panel.ink(0, kRecipeHeight).second, -1);
}

TEST(Guide, ScrollingLooksLikeDrawingAnew)
{
    const char* const lines[] = {"one", "two", "three", "four", "five", "six", "seven", "eight"};
    Panel scrolled;
    List list = {lines, 8, 0};
    drawList(scrolled.context, list);
    for (const int rows : {7, 33, -12, 1, -29, 300, -250}) {
        scrollList(scrolled.context, list, rows);
        Panel anew;
        drawList(anew.context, list);
        EXPECT_TRUE(scrolled.pixels == anew.pixels) << rows;
    }
    EXPECT_EQ(scrolled.context.clipTop, 0);
    EXPECT_EQ(scrolled.context.clipBottom, kRecipeHeight);
}

TEST(Guide, TwoThreadsDrawTheSamePicture)
{
    Panel whole, halves;
    fillShapes(whole.context);
    drawInTwoThreads(halves.pixels.data(), kRecipeWidth, kRecipeHeight, fillShapes);
    EXPECT_TRUE(halves.pixels == whole.pixels);
}

TEST(Guide, BandsMakeTheSamePicture)
{
    Panel whole, bands;
    strokeLines(whole.context);
    const auto emit = [](void* user, const Pixel* rows, int32_t first, int32_t count) {
        EXPECT_LE(count, kBandRows);
        std::copy_n(rows, count * kRecipeWidth, static_cast<Pixel*>(user) + first * kRecipeWidth);
    };
    ASSERT_TRUE(drawInBands(kRecipeHeight, strokeLines, emit, bands.pixels.data()));
    EXPECT_TRUE(bands.pixels == whole.pixels);
}

TEST(Guide, Clip)
{
    Panel panel;
    drawClipped(panel.context);
    expectNear(panel.at(60, 11), 0xFF1D4E89, 8); // the top of the disc, where the gradient begins
    EXPECT_EQ(panel.at(12, 12), kWhite);
    EXPECT_GT(panel.ink(0, kRecipeHeight).second, 150); // letters, too
}

TEST(Guide, Layers)
{
    Panel panel;
    drawGroups(panel.context);
    expectNear(panel.at(20, 40), 0xFF8EA6C4, 2);  // half white, half 1D4E89
    expectNear(panel.at(52, 40), 0xFFEFCF9E, 2);  // half E09F3E: nothing of the other disc
    expectNear(panel.at(144, 58), 0xFF000000, 2); // all three inks
    expectNear(panel.at(115, 40), 0xFF00FFFF, 2);
}

TEST(Guide, Sources)
{
    Panel panel;
    paintSources(panel.context);
    expectNear(panel.at(40, 30), 0xFF1D4E89, 6); // the stripes' start, after going back
    expectNear(panel.at(60, 30), 0xFFFFFFFF, 8);
    expectNear(panel.at(140, 22), 0xFF1D4E89, 8); // the ball's light, and its rim
    expectNear(panel.at(165, 48), 0xFFA8D0F0, 1);
    expectNear(panel.at(70, 89), 0xFF1D4E89, 8); // either side of the sweep's ends
    expectNear(panel.at(70, 86), 0xFFFFFFFF, 16);
    for (const int tile : {0, 1, 5}) {
        EXPECT_EQ(panel.at(104 + 8 * tile, 64 + 8 * tile), 0xFFE09F3E);
        EXPECT_EQ(panel.at(106 + 8 * tile, 66 + 8 * tile), 0xFFB23A48);
    }
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    setFontFile(LATIN_FONT);
    return RUN_ALL_TESTS();
}
