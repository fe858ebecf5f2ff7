// Widths, anchors, placed and turned characters, boxes, wrapped text.
#include "tests/support/FakeLayoutEngine.h"
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

namespace {

// Pixels and their way back to user units, which loses a little: the inverse of 1.0 is 0.99998.
void expectNearly(Fixed value, Fixed expected)
{
    EXPECT_NEAR(value, expected, 64);
}

// The first column that is not the ground, or -1.
int32_t firstColumn(const TextScene& scene)
{
    for (int32_t x = 0; x < scene.context.target.width; ++x)
        for (int32_t y = 0; y < scene.context.target.height; ++y)
            if (scene.at(x, y) != 0xFFFFFFFF) return x;
    return -1;
}

} // namespace

TEST(TextDrawing, measuresWithoutMovingAnything)
{
    TextScene scene(10, 10);
    MMContext2D& context = scene.context;
    context.penX = 3 * kFixedOne;
    context.penY = 77;
    context.accumulateBounds = 1;
    context.boundsMinX = 42;
    Text text(u"ai b"); // 12 + 6 + 12 + 12 pixels
    expectNearly(context.getTextWidth(text.data(), 65535), 42 * kFixedOne);
    expectNearly(context.getTextWidth(text.data(), 2), 18 * kFixedOne);
    EXPECT_EQ(context.getTextWidth(nullptr, 2), 0);
    // Characters without glyphs take no room.
    expectNearly(context.getTextWidth(Text(u"a\xD83D\xDE00\x0001z").data(), 65535), 24 * kFixedOne);
    EXPECT_EQ(context.penX, 3 * kFixedOne);
    EXPECT_EQ(context.penY, 77);
    EXPECT_EQ(context.boundsMinX, 42);
    EXPECT_EQ(context.accumulateBounds, 1);

    Fixed width = 0, height = 0;
    Text blanks(u"  a \n i");
    context.getTextSize(blanks.data(), 65535, width, height);
    expectNearly(width, 30 * kFixedOne);
    EXPECT_EQ(height, 12 * kFixedOne);
}

TEST(TextDrawing, anchorsByTheWidthOfAllLines)
{
    for (uint32_t anchor : {0u, 1u, 2u, 3u}) {
        TextScene scene(80, 20);
        scene.context.textAnchor = anchor;
        Text first(u"ab"), second(u"i"); // 30 pixels
        uint16_t* lines[] = {first.data(), nullptr, second.data()};
        scene.context.drawText(lines, 3, 40 * kFixedOne + kFixedHalf, 15 * kFixedOne);
        const int32_t expected[] = {40, 25, 10, 40};
        EXPECT_EQ(firstColumn(scene), expected[anchor]);
        // Placed characters are not anchored.
        const Fixed places[] = {50 * kFixedOne, 62 * kFixedOne};
        scene.fill(0xFFFFFFFF);
        scene.context.charX = places;
        scene.context.charXCount = 2;
        scene.context.drawText(lines, 1, 0, 15 * kFixedOne);
        EXPECT_EQ(firstColumn(scene), 50);
    }
}

TEST(TextDrawing, placesCharactersByTheirIndexInAllLines)
{
    TextScene scene(100, 60);
    const Fixed xs[] = {5 * kFixedOne, 30 * kFixedOne, 55 * kFixedOne};
    const Fixed ys[] = {15 * kFixedOne, 30 * kFixedOne, 45 * kFixedOne};
    scene.context.charX = xs;
    scene.context.charXCount = 3;
    scene.context.charY = ys;
    scene.context.charYCount = 3;
    Text first(u"a"), second(u"bcd"); // d runs on behind c
    uint16_t* lines[] = {first.data(), second.data()};
    scene.context.drawText(lines, 2, 0, 0);
    for (const auto& block : {std::pair<int32_t, int32_t>{5, 15}, {30, 30}, {55, 45}, {67, 45}}) {
        EXPECT_EQ(scene.at(block.first, block.second - 12), 0xFF000000u);
        EXPECT_EQ(scene.at(block.first + 11, block.second - 1), 0xFF000000u);
        EXPECT_EQ(scene.at(block.first, block.second), 0xFFFFFFFFu);
        EXPECT_EQ(scene.at(block.first + 5, block.second - 13), 0xFFFFFFFFu);
    }
}

TEST(TextDrawing, turnsTheCharactersThatTheListNames)
{
    // A quarter turn sends the advance down the page.
    const Degrees turns[] = {kDegrees90, kDegrees90};
    const struct {
        uint32_t count;
        int32_t x, y; // the pen after three characters of 12 pixels
    } cases[] = {{0, 36, 0}, {1, 0, 36}, {2, 12, 24}};
    for (const auto& c : cases) {
        TextScene scene(10, 10);
        scene.context.charRotate = turns;
        scene.context.charRotateCount = c.count;
        scene.draw(u"aaa", 0, 0);
        EXPECT_NEAR(scene.context.penX, c.x * kFixedOne, 2000) << c.count;
        EXPECT_NEAR(scene.context.penY, c.y * kFixedOne, 2000) << c.count;
    }
}

TEST(TextDrawing, boxesATextWithoutTransform)
{
    TextScene scene(10, 10);
    MMContext2D& context = scene.context;
    context.transform = {0x30000, 0, 0, 0x30000, 0, 0};
    for (uint32_t anchor : {0u, 1u, 2u}) {
        context.textAnchor = anchor;
        MMFixedRegion box = {0, 0, 24 * kFixedOne, 0};
        Text text(u" ji");
        EXPECT_EQ(context.getTextBBox(text.data(), 50 * kFixedOne, 40 * kFixedOne, &box), 0u);
        const int32_t left = 49 - static_cast<int32_t>(anchor) * 12; // j starts left of the pen
        EXPECT_EQ(box.x0, left * kFixedOne);
        EXPECT_EQ(box.x1, (left + 19) * kFixedOne); // 12 to i, which is 6 wide
        EXPECT_EQ(box.y0, 28 * kFixedOne);
        EXPECT_EQ(box.y1, 40 * kFixedOne);
    }
    EXPECT_EQ(context.transform.a, 0x30000);
    EXPECT_EQ(context.accumulateBounds, 0);
    context.getTextBBox(nullptr, 0, 0, nullptr);
}

TEST(TextDrawing, longAndEmptyTexts)
{
    TextScene scene(30, 20);
    scene.context.fontSize = kFixedOne;
    Text longText(std::u16string(100000, u'B'));
    scene.context.drawText(longText.data(), 0, 10 * kFixedOne);
    // 16 bits of the length: 34,464 characters of one pixel, and the pen wraps at 32,768.
    EXPECT_NEAR(scene.context.penX, (34464 - 65536) * kFixedOne, kFixedOne);
    scene.context.drawWrappedText(longText.data(), 0, 0);
    EXPECT_TRUE(scene.guardsIntact());

    TextScene empty(10, 10);
    const std::vector<Pixel> before = empty.picture();
    empty.draw(u"", 3, 4);
    empty.context.drawText(static_cast<uint16_t*>(nullptr), 0, 0);
    empty.context.drawText(static_cast<uint16_t**>(nullptr), 3, 0, 0);
    empty.context.drawWrappedText(nullptr, 0, 0);
    Text none(u"");
    empty.context.drawWrappedText(none.data(), 0, 0);
    EXPECT_EQ(empty.picture(), before);
}

TEST(WrappedText, drawsLineByLineAndLeavesThePenBelow)
{
    TextScene scene(60, 60);
    MMContext2D& context = scene.context;
    context.wrapWidth = 30 * kFixedOne; // two characters
    context.wrapOffsetX = 4 * kFixedOne;
    context.wrapOffsetY = 12 * kFixedOne + kFixedHalf; // away from where rows meet
    context.accumulateBounds = 1;
    Text text(u"aa bb cc");
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_EQ(context.boundsMinX, 4 * kFixedOne);
    EXPECT_EQ(context.boundsMaxX, 28 * kFixedOne);
    EXPECT_EQ(context.boundsMinY, 0);
    EXPECT_EQ(context.boundsMaxY, 36 * kFixedOne);
    EXPECT_EQ(context.penX, 0);
    EXPECT_NEAR(context.penY, 36 * kFixedOne, 100);
    EXPECT_EQ(context.newLineFlag, 0);

    // The underline reaches below the text and leaves its stroke.
    context.textDecoration = 1;
    context.fillPaint.paintColour = 0xFF123456;
    context.penY = 0;
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_EQ(context.strokePaint.paintType, kPaintSolid);
    EXPECT_EQ(context.strokePaint.paintColour, 0xFF123456u);
    EXPECT_EQ(context.strokeHalfWidth, 12 * kFixedOne / 16);
    EXPECT_EQ(context.boundsMinY, 0);
    EXPECT_GT(context.boundsMaxY, 37 * kFixedOne);
    context.lineHeight = 15;
    context.drawWrappedText(text.data(), 0, 0);
    EXPECT_EQ(context.strokeHalfWidth, kFixedHalf); // a 24th of the font size
}

TEST(WrappedText, measuresWithoutTheListsOfCharacters)
{
    TextScene scene(10, 10);
    MMContext2D& context = scene.context;
    const Fixed places[] = {kFixedOne, 2 * kFixedOne};
    context.charX = context.charY = context.charRotate = places;
    context.charXCount = context.charYCount = context.charRotateCount = 2;
    Text text(u"aa bb");
    MMTextLayout* layout = context.createTextLayout(text.data(), 30);
    ASSERT_NE(layout, nullptr);
    ASSERT_EQ(layout->lineCount, 2);
    EXPECT_EQ(layout->lines[1][0], 'b');
    EXPECT_EQ(layout->lines[1][2], 0);
    context.destroyTextLayout(layout);
    EXPECT_EQ(context.charXCount, 2u);
}

TEST(WrappedText, everyFailingLayoutCallIsSurvived)
{
    int32_t n = 0;
    do {
        TextScene scene(40, 40);
        fakeLayoutEngine = {};
        fakeLayoutEngine.failAt = ++n;
        MMTextLayout* layout = scene.context.createTextLayout(Text(u"ab cd").data(), 30);
        EXPECT_EQ(scene.context.scratchStack.usedWords, 0u) << "call " << n;
        scene.context.destroyTextLayout(layout);
        scene.context.destroyLayoutManager();
        EXPECT_EQ(fakeLayoutEngine.objectsAlive, 0) << "call " << n;
    } while (fakeLayoutEngine.failAt == 0); // until no call came to fail
    EXPECT_GT(n, 15);
    fakeLayoutEngine = {};
}
