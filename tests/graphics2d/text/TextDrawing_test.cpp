// SPDX-License-Identifier: MIT
// Widths, anchors, placed and turned characters, boxes, wrapped text. The fake engine's letters are
// blocks of 12 pixels.
#include "platform/LayoutEngine.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/FakeLayoutEngine.h"
#include "tests/support/TextScene.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// Pixels and their way back to user units, which loses a little: the inverse of 1.0 is 0.99998.
constexpr Fixed kLittle = 64;

struct Block {
    int32_t left, baseline, width;
};

// The whole picture: blocks of the letters' height, black on white.
void expectBlocks(const TextScene& scene, const std::vector<Block>& blocks)
{
    Picture expected(scene.size);
    for (const Block& b : blocks)
        for (int32_t y = b.baseline - 12; y < b.baseline; ++y)
            std::fill_n(&expected.pixels[expected.indexOf(b.left, y)], b.width, 0xFF000000);
    for (int32_t i = 0; i < scene.size * scene.size; ++i) {
        const int32_t x = i % scene.size, y = i / scene.size;
        ASSERT_EQ(scene.at(x, y), expected.at(x, y)) << x << ", " << y;
    }
}

} // namespace

TEST(TextDrawing, MeasuresWithoutMovingAnything)
{
    TextScene scene(10);
    MMContext2D& context = scene.context;
    context.penX = 3_fx;
    context.accumulateBounds = 1;
    context.boundsMinX = 42;
    const struct {
        const char16_t* text;
        uint16_t length;
        int32_t width;
    } cases[] = {
        {u"ai b", 65535, 12 + 6 + 12 + 12},
        {u"ai b", 2, 18},
        {u"a\xD83D\xDE00\x0001z", 65535, 24}, // characters without glyphs take no room
    };
    for (const auto& c : cases)
        EXPECT_NEAR(context.getTextWidth(Text(c.text).data(), c.length), fx(c.width), kLittle);
    EXPECT_EQ(context.getTextWidth(nullptr, 2), 0);
    EXPECT_EQ(context.penX, 3_fx);
    EXPECT_EQ(context.boundsMinX, 42);
    EXPECT_EQ(context.accumulateBounds, 1);

    Fixed width = 0, height = 0;
    context.charXCount = context.charYCount = context.charRotateCount = 1;
    context.getTextSize(Text(u"  a \n i").data(), 65535, width, height);
    EXPECT_NEAR(width, fx(12 + 12 + 6), kLittle);
    EXPECT_EQ(height, 12_fx);
    MMFixedRegion box = {};
    context.getTextBBox(Text(u"ab").data(), 0, 0, &box);
    EXPECT_EQ(context.charXCount, 1u);
    EXPECT_EQ(context.charYCount, 1u);
    EXPECT_EQ(context.charRotateCount, 1u);
}

TEST(TextDrawing, AnchorsByTheWidthOfAllLines)
{
    for (const auto& [anchor, left] : {std::pair{0u, 40}, {1u, 25}, {2u, 10}, {3u, 40}}) {
        TextScene scene(80);
        scene.context.textAnchor = anchor;
        Text first(u"ab"), second(u"i");
        uint16_t* lines[] = {first.data(), nullptr, second.data()};
        scene.context.drawText(lines, 3, 40.5_fx, 15.5_fx); // away from where pixels meet
        expectBlocks(scene, {{left, 15, 12 + 12 + 6}});
    }
}

TEST(TextDrawing, PlacesCharactersByTheirIndexInAllLines)
{
    TextScene scene(100);
    const Fixed xs[] = {5_fx, 30_fx, 55_fx};
    const Fixed ys[] = {15_fx, 30_fx, 45_fx};
    scene.context.charX = xs;
    scene.context.charY = ys;
    scene.context.charXCount = scene.context.charYCount = 3;
    scene.context.textAnchor = 2;     // which placed characters ignore
    Text first(u"ab"), second(u"cd"); // d runs on behind c
    uint16_t* lines[] = {first.data(), second.data()};
    scene.context.drawText(lines, 2, 0, 0);
    expectBlocks(scene, {{5, 15, 12}, {30, 30, 12}, {55, 45, 12 + 12}});
}

TEST(TextDrawing, TurnsTheCharactersThatTheListNames)
{
    // A quarter turn sends the advance down the page.
    const Degrees turns[] = {kDegrees90, kDegrees90};
    const struct {
        uint32_t count;
        int32_t x, y; // the pen after three characters
    } cases[] = {{0, 36, 0}, {1, 0, 36}, {2, 12, 24}};
    for (const auto& c : cases) {
        TextScene scene(10);
        scene.context.charRotate = turns;
        scene.context.charRotateCount = c.count;
        scene.draw(u"aaa", 0, 0);
        EXPECT_NEAR(scene.context.penX, fx(c.x), 2000) << c.count;
        EXPECT_NEAR(scene.context.penY, fx(c.y), 2000) << c.count;
    }
}

TEST(TextDrawing, BoxesATextWithoutTransform)
{
    TextScene scene(10);
    MMContext2D& context = scene.context;
    context.transform = {0x30000, 0, 0, 0x30000, 0, 0};
    for (uint32_t anchor : {0u, 1u, 2u}) {
        context.textAnchor = anchor;
        MMFixedRegion box = {0, 0, 24_fx, 0};
        EXPECT_EQ(context.getTextBBox(Text(u" ji").data(), 50_fx, 40_fx, &box), 0u);
        const int32_t left = 49 - static_cast<int32_t>(anchor) * 12; // j starts left of the pen
        EXPECT_EQ(box.x0, fx(left));
        EXPECT_EQ(box.x1, fx(left + 19)); // 12 to i, which is 6 wide
        EXPECT_EQ(box.y0, 28_fx);
        EXPECT_EQ(box.y1, 40_fx);
    }
    // A text that is placed by its lists is not anchored.
    const Fixed xs[] = {50_fx, 70_fx};
    for (bool placed : {true, false}) {
        context.charX = xs;
        context.charXCount = placed ? 2 : 1;
        MMFixedRegion box = {0, 0, 24_fx, 0};
        context.getTextBBox(Text(u"aa").data(), 50_fx, 40_fx, &box);
        EXPECT_EQ(box.x0, placed ? 50_fx : 26_fx);
        EXPECT_EQ(box.x1, placed ? 82_fx : 50_fx);
    }
    EXPECT_EQ(context.transform.a, 0x30000);
    EXPECT_EQ(context.accumulateBounds, 0);
    context.getTextBBox(nullptr, 0, 0, nullptr);
}

TEST(TextDrawing, LongAndEmptyTexts)
{
    TextScene scene(30);
    scene.draw(u"", 3, 4);
    scene.context.drawText(static_cast<uint16_t*>(nullptr), 0, 0);
    scene.context.drawText(static_cast<uint16_t**>(nullptr), 3, 0, 0);
    scene.context.drawWrappedText(nullptr, 0, 0);
    EXPECT_TRUE(scene.blank());

    scene.context.fontSize = kFixedOne;
    scene.context.drawText(Text(std::u16string(100000, u'B')).data(), 0, 10_fx);
    // 16 bits of the length: 34,464 characters of one pixel, and the pen wraps at 32,768.
    EXPECT_NEAR(scene.context.penX, fx(34464 - 65536), kFixedOne);
}

TEST(WrappedText, DrawsLineByLineAndLeavesThePenBelow)
{
    TextScene scene(60);
    MMContext2D& context = scene.context;
    context.wrapWidth = 30_fx; // two characters
    context.wrapOffsetX = 4_fx;
    context.wrapOffsetY = 12.5_fx; // away from where rows meet
    context.accumulateBounds = 1;
    Text text(u"aa bb cc");
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_EQ(context.boundsMinX, 4_fx);
    EXPECT_EQ(context.boundsMaxX, 28_fx);
    EXPECT_EQ(context.boundsMinY, 0);
    EXPECT_EQ(context.boundsMaxY, 36_fx);
    EXPECT_EQ(context.penX, 0);
    EXPECT_NEAR(context.penY, 36_fx, 100);
    EXPECT_EQ(context.newLineFlag, 0);

    // The underline reaches below the text and leaves its stroke.
    context.textDecoration = 1;
    context.fillPaint.paintColour = 0xFF123456;
    context.penY = 0;
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_EQ(context.strokePaint.paintType, kPaintSolid);
    EXPECT_EQ(context.strokePaint.paintColour, 0xFF123456u);
    EXPECT_EQ(context.strokeHalfWidth, 12_fx / 16);
    EXPECT_GT(context.boundsMaxY, 37_fx);
    EXPECT_NE(scene.at(20, 38), TextScene::kBlank);
    // It may be dashed.
    const Fixed dashes[] = {5_fx, 100_fx};
    context.dashArray = dashes;
    context.dashCount = 2;
    context.penY = 0;
    scene.fill(TextScene::kBlank);
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_NE(scene.at(6, 38), TextScene::kBlank);
    EXPECT_EQ(scene.at(20, 38), TextScene::kBlank);
    context.lineHeight = 15;
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_EQ(context.strokeHalfWidth, kFixedHalf); // a 24th of the font size
}

TEST(WrappedText, MeasuresWithoutTheListsOfCharacters)
{
    TextScene scene(10);
    MMContext2D& context = scene.context;
    const Fixed places[] = {-90_fx, -90_fx}; // which would leave characters without width
    context.charX = context.charY = context.charRotate = places;
    context.charXCount = context.charYCount = context.charRotateCount = 2;
    MMTextLayout* layout = context.createTextLayout(Text(u"aa bb").data(), 30);
    ASSERT_NE(layout, nullptr);
    ASSERT_EQ(layout->lineCount, 2);
    EXPECT_EQ(layout->lines[1][0], 'b');
    EXPECT_EQ(layout->lines[1][2], 0);
    context.destroyTextLayout(layout);
    for (uint32_t count : {context.charXCount, context.charYCount, context.charRotateCount})
        EXPECT_EQ(count, 2u);
}

// A line without characters has no dot of a round cap, wherever the pen is; one with a character
// that takes no room has.
TEST(WrappedText, UnderlinesLinesThatHoldACharacter)
{
    for (const char16_t* text : {u"   ", u" \x0001 "}) {
        TextScene scene(40);
        MMContext2D& context = scene.context;
        context.wrapWidth = 30_fx;
        context.textDecoration = 1;
        context.capStyle = kCapRound;
        context.lineHeight = 40_fx; // a pen of 5 pixels
        context.penX = 13.3_fx;
        context.penY = 9.7_fx;
        context.drawWrappedText(Text(text).data(), 0, 0);
        EXPECT_EQ(scene.blank(), text[1] == u' ') << text[1];
        EXPECT_EQ(context.strokeHalfWidth, 40_fx / 16);
        if (scene.blank()) continue;
        // An eighth of the line's height below the baseline.
        EXPECT_NEAR(context.boundsMinY, 9.7_fx + 5_fx - 2.5_fx, 0.05_fx);
        EXPECT_NEAR(context.boundsMaxY, 9.7_fx + 5_fx + 2.5_fx, 0.05_fx);
    }
}

// Memory that runs out is reported, refusals are not. The line buffer is the library's own.
TEST(WrappedText, ReportsMemoryThatRunsOut)
{
    TextScene scene(40);
    MMContext2D& context = scene.context;
    context.getTextWidth(Text(u"abcd").data(), 4); // into the glyph cache
    context.scratchStack.Alloc(1024);              // the next words come from the heap
    const uint32_t used = context.scratchStack.usedWords;
    FailingHeap heap;
    heap.failAt(4 + 1); // after the records of four glyphs
    context.wrapWidth = 60_fx;
    context.drawWrappedText(Text(u"abcd").data(), 0, 0);
    EXPECT_EQ(context.outOfMemory, kScratchExhausted);
    EXPECT_TRUE(scene.blank());
    EXPECT_EQ(context.scratchStack.usedWords, used);
    scene.wordsKept = used;
}

TEST(WrappedText, EveryFailingLayoutCallIsSurvived)
{
    // By number: the control and the objects before the text, the run, the layout.
    constexpr int32_t kLastBeforeRun = 7, kRun = 8, kLayout = 9;
    for (const int32_t refusal : {1, TS_OUT_OF_MEMORY}) {
        int32_t n = 0;
        do {
            SCOPED_TRACE(testing::Message() << "call " << n + 1 << " answers " << refusal);
            TextScene scene(40);
            fakeLayoutEngine = {};
            fakeLayoutEngine.refusal = refusal;
            fakeLayoutEngine.failAt = ++n;
            MMTextLayout* layout = scene.context.createTextLayout(Text(u"ab cd").data(), 30);
            EXPECT_EQ(scene.context.scratchStack.usedWords, 0u);
            if (n <= kLastBeforeRun || n == kLayout) {
                EXPECT_EQ(scene.context.outOfMemory, kScratchExhausted);
            } else if (n == kRun) {
                EXPECT_EQ(scene.context.outOfMemory, refusal == TS_OUT_OF_MEMORY ? 1 : 0);
            }
            scene.context.destroyTextLayout(layout);
            EXPECT_EQ(fakeLayoutEngine.objectsAlive, 0);
        } while (fakeLayoutEngine.failAt == 0); // until no call came to fail
        EXPECT_GT(n, 15);
    }
    fakeLayoutEngine = {};
}
