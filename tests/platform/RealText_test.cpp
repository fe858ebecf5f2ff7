// SPDX-License-Identifier: MIT
// The real engines: glyphs of installed fonts, and lines of several languages.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/convenience/MMText.h"
#include "platform/freetype/LightHinting.h"
#include "tests/platform/LimitedHeap.h"
#include "tests/support/Picture.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

using Lines = std::vector<std::u16string>;

std::vector<uint16_t> unitsOf(const std::u16string& text)
{
    std::vector<uint16_t> units(text.begin(), text.end());
    units.push_back(0);
    return units;
}

// Names a font before the context that follows is made.
struct NamedFont {
    explicit NamedFont(const char* file) { EXPECT_TRUE(setFontFile(file)); }
};

// A picture on which one font draws.
struct Page : NamedFont, Picture {
    explicit Page(const char* font) : NamedFont(font), Picture(400) {}

    Lines lines(const std::u16string& text, int32_t width)
    {
        MMTextLayout* layout = context.createTextLayout(unitsOf(text).data(), width);
        Lines result;
        for (uint32_t i = 0; layout != nullptr && i < layout->lineCount; ++i) {
            result.emplace_back();
            for (const uint16_t* unit = layout->lines[i]; *unit != 0; ++unit)
                result.back().push_back(static_cast<char16_t>(*unit));
        }
        context.destroyTextLayout(layout);
        return result;
    }

    // The width that holds count characters of a font in which all are equally wide.
    int32_t columns(int32_t count) { return count * width(u"m") / kFixedOne + 1; }

    Fixed width(const std::u16string& text)
    {
        return context.getTextWidth(unitsOf(text).data(), 65535);
    }

    void draw(const std::u16string& text, int32_t x, int32_t y)
    {
        context.drawText(unitsOf(text).data(), x * kFixedOne, y * kFixedOne);
    }

    // The picture of a text on an empty page.
    std::vector<Pixel> picture(const std::u16string& text)
    {
        fill(kBlank);
        draw(text, 10, 60);
        return pixels;
    }
};

int32_t greyPixels(const std::vector<Pixel>& pixels)
{
    return static_cast<int32_t>(std::count_if(pixels.begin(), pixels.end(), [](Pixel pixel) {
        return pixel != 0xFFFFFFFF && pixel != 0xFF000000;
    }));
}

// Of black on white.
int64_t ink(const std::vector<Pixel>& pixels)
{
    int64_t sum = 0;
    for (const Pixel pixel : pixels)
        sum += 255 - static_cast<int32_t>(pixel & 255);
    return sum;
}

} // namespace

TEST(RealGlyphs, AreAsHighAndWideAsTheFontSaysAndTurnWithTheTransform)
{
    Page page(LATIN_FONT);
    MMContext2D& context = page.context;
    context.fontSize = 40 * kFixedOne;
    context.accumulateBounds = 1;
    // 1233 of 2048 units; the inverse of the transform takes 1/65536 off.
    EXPECT_NEAR(page.width(u"m"), 40.0 * 1233 / 2048 * 65536, 30);
    page.draw(u"H", 20, 100); // 1493 units high, and stands on the baseline
    EXPECT_EQ(context.boundsMaxY, 100 * kFixedOne);
    EXPECT_EQ(context.boundsMinY, (100 - 30) * kFixedOne);

    // A quarter turn sends up to the right and right to down.
    const Fixed left = context.boundsMinX, right = context.boundsMaxX;
    context.transform = {0, kFixedOne, -kFixedOne, 0, 120 * kFixedOne, 0};
    page.draw(u"H", 20, 100);
    EXPECT_NEAR(context.boundsMinX, 20 * kFixedOne, kFixedOne);
    EXPECT_NEAR(context.boundsMaxX, 50 * kFixedOne, kFixedOne);
    EXPECT_NEAR(context.boundsMinY, left, kFixedOne);
    EXPECT_NEAR(context.boundsMaxY, right, kFixedOne);
}

TEST(RealGlyphs, BoldOnesAreDarkerAndWider)
{
    Page page(LATIN_FONT);
    page.context.fontSize = 24 * kFixedOne;
    const int64_t upright = ink(page.picture(u"emHo"));
    const Fixed uprightWidth = page.width(u"emHo");
    page.context.fontWeight = 7;
    page.context.updateFont();
    EXPECT_GT(ink(page.picture(u"emHo")), upright * 5 / 4);
    // Three quarters of a tenth of the em for each character.
    EXPECT_NEAR(page.width(u"emHo") - uprightWidth, 4 * 24 * 0.075 * 65536, 3000);
}

TEST(RealGlyphs, LightHintingSharpensHorizontalStrokesOfUprightTextOnly)
{
    std::vector<Pixel> upright[2], turned[2];
    Fixed widths[2];
    for (const int hinted : {0, 1}) {
        FS_set_light_hinting(hinted);
        Page page(LATIN_FONT); // and a cache of its own
        page.context.fontSize = 13 * kFixedOne;
        upright[hinted] = page.picture(u"EEEHHzzTT");
        widths[hinted] = page.width(u"EEEHHzzTT");
        page.context.transform = {60000, 20000, -20000, 60000, 0, 0};
        turned[hinted] = page.picture(u"EzT");
    }
    FS_set_light_hinting(0);
    EXPECT_LT(greyPixels(upright[1]), greyPixels(upright[0]) * 4 / 5);
    EXPECT_EQ(widths[0], widths[1]);
    EXPECT_EQ(turned[0], turned[1]);
}

// Also when a glyph is too large for a bitmap or for the room that its offsets have, and when the
// text is longer than coordinates reach.
TEST(RealGlyphs, WidthsDoNotChangeWithZoom)
{
    Page page(LATIN_FONT);
    for (int32_t scale : {1, 10, 500, 800, 1400, 2000, 2700}) {
        page.context.transform = {scale * kFixedOne, 0, 0, scale * kFixedOne, 0, 0};
        // The inverse of the transform is cut to 16 bits behind the point.
        EXPECT_NEAR(page.width(u"Wi."), 3 * 12.0 * 1233 / 2048 * 65536, 21.7 * (scale + 30))
            << scale;
    }
}

TEST(RealGlyphs, WhatIsMeasuredOrClippedAwayIsNotRendered)
{
    if (!LimitedHeap::kAvailable) GTEST_SKIP();
    Page page(LATIN_FONT);
    const auto greatestRequest = [&](int32_t size, int32_t x) {
        page.context.fontSize = size * kFixedOne;
        const LimitedHeap heap;
        page.draw(u"BBBBB", x, 100);
        page.width(std::u16string(20, u'W'));
        return heap.greatestRequest();
    };
    EXPECT_LT(greatestRequest(8000, 500), 100000u);
    EXPECT_LT(greatestRequest(2000, -30000), 100000u);
    EXPECT_GT(greatestRequest(2000, -500), 1000u * 1000u); // seen
}

TEST(RealGlyphs, AMissingFontDrawsNothing)
{
    Page page("no such file");
    EXPECT_EQ(page.context.fontMetrics[0], 1000);
    EXPECT_EQ(static_cast<int16_t>(page.context.fontMetrics[10]), -200);
    EXPECT_EQ(page.context.fontMetrics[12], 800);
    EXPECT_EQ(page.picture(u"abc"), page.picture(u""));
    EXPECT_EQ(page.lines(u"ab cd", 10), (Lines{u"ab cd"})); // nothing is wide
}

TEST(RealLayout, BreaksEnglishAtWords)
{
    Page page(LATIN_FONT);
    const struct {
        std::u16string text;
        int32_t columns;
        Lines lines;
    } cases[] = {
        {u"", 10, {}},
        {u"one two three", 8, {u"one two", u"three"}},
        {u"one two   three  ", 7, {u"one two", u"three  "}}, // blanks stay but at soft breaks
        {u"well-known fact", 6, {u"well-", u"known", u"fact"}},
        {u"a\nb\r\nc\rd\u2029e", 9, {u"a", u"b", u"c", u"d", u"e"}},
        {u"a\n\n\nb\n", 9, {u"a", u"", u"", u"b"}},
        {u"incomprehensible", 6, {u"incomp", u"rehens", u"ible"}},
        {u"   incomprehensible", 6, {u"incomp", u"rehens", u"ible"}},
        {u"no\u00A0break here", 6, {u"no\u00A0bre", u"ak", u"here"}},
        {u"hyphen\u00ADation", 7, {u"hyphen-", u"ation"}},
        {u"hyphen\u00ADation", 6, {u"hyphe", u"nation"}},              // no room for the hyphen
        {u"re\u00ADin\u00ADstate it", 6, {u"rein-", u"state", u"it"}}, // the later of two
        {u"a\u00ADb", 2, {u"ab"}}, // what fits whole needs no hyphen
        {u"abc", 0, {u"a", u"b", u"c"}},
        {u"e\u0301e\u0301", 1, {u"e\u0301", u"e\u0301"}}, // accents stay with their letters
    };
    for (const auto& c : cases)
        EXPECT_EQ(page.lines(c.text, c.columns == 0 ? 0 : page.columns(c.columns)), c.lines)
            << ::testing::PrintToString(c.text) << " in " << c.columns;
    EXPECT_EQ(page.lines(u"a\xD83D\xDE00z", 0), (Lines{u"a", u"\xD83D\xDE00", u"z"}));
    // A family of four, joined.
    const std::u16string family = u"\xD83D\xDC68\u200D\xD83D\xDC69\u200D\xD83D\xDC67";
    EXPECT_EQ(page.lines(u"m" + family + u"m", 1).size(), 3u);
}

TEST(RealLayout, BreaksOtherLanguagesByTheirRules)
{
    const auto expectLines = [](const char* font, const std::u16string& widest,
                                const Lines& lines) {
        Page page(font);
        std::u16string text;
        for (const std::u16string& line : lines)
            text += line;
        EXPECT_EQ(page.lines(text, page.width(widest) / kFixedOne + 1), lines);
    };
    // Chinese between characters, but not before its punctuation.
    const std::u16string four(4, u'\u4E2D');
    expectLines(CHINESE_FONT, four, {u"\u6211\u4EEC\u5728", u"\u8FD9\u3002\u597D"});
    // Small kana do not begin a line.
    expectLines(CHINESE_FONT, four, {u"\u3042\u3042\u3042", u"\u30AD\u30E3\u3042"});
    // "Thai language", two words of the dictionary without a space.
    const std::u16string language = u"\u0E20\u0E32\u0E29\u0E32";
    expectLines(THAI_FONT, language, {language, u"\u0E44\u0E17\u0E22"});
}

TEST(RealLayout, HundredThousandCharacters)
{
    Page page(LATIN_FONT);
    const std::u16string solid(100000, u'm'), blanks(100000, u' ');
    EXPECT_EQ(page.lines(solid, 0).size(), 65535u); // the most that a layout holds
    EXPECT_EQ(page.lines(solid, page.columns(100)).size(), 1000u);
    EXPECT_EQ(page.lines(blanks, 3).size(), 1u);
}

TEST(RealText, SteadyDrawingMakesNoHeapCallsAndAParagraphAFew)
{
    if (!LimitedHeap::kAvailable) GTEST_SKIP();
    Page page(LATIN_FONT);
    MMContext2D& context = page.context;
    std::u16string words;
    while (words.size() < 5000)
        words += u"a few words ";
    std::vector<uint16_t> longText = unitsOf(words), text = unitsOf(words.substr(0, 200));
    context.wrapWidth = 380 * kFixedOne;
    for (const bool counts : {false, true}) {
        const LimitedHeap drawing;
        context.drawText(text.data(), 10 * kFixedOne, 60 * kFixedOne);
        context.getTextWidth(text.data(), 200);
        const uint32_t drawn = drawing.calls();
        context.drawWrappedText(text.data(), 0, 0);
        const uint32_t paragraph = drawing.calls() - drawn;
        context.drawWrappedText(longText.data(), 0, 0);
        const uint32_t longParagraph = drawing.calls() - drawn - paragraph;
        if (!counts) continue;
        EXPECT_EQ(drawn, 0u);
        EXPECT_LE(paragraph, 7u);
        EXPECT_LE(longParagraph, 10u); // its list of lines grows
    }
}

// ICU's dictionaries never end to start when they run out of memory. They start with the control,
// if there is room for them; later the heap may end anywhere.
TEST(RealLayout, EndsWithoutMemory)
{
    if (!LimitedHeap::kAvailable) GTEST_SKIP();
    const std::vector<uint16_t> text = unitsOf(
        u"\u0E20\u0E32\u0E29\u0E32\u0E44\u0E17\u0E22 \u1000\u1001 \u1780\u1781 \u0E81\u0E82 "
        u"\u1950\u1951 \u1980\u1981 \u1A20\u1A21 \uAA80\uAA81 \xD805\xDF00\xD805\xDF01");
    Page page(THAI_FONT);
    MMContext2D& context = page.context;
    {
        const LimitedHeap heap(64 * 1024);
        EXPECT_EQ(context.createTextLayout(text.data(), 30), nullptr);
        EXPECT_EQ(context.layoutControl, nullptr);
        EXPECT_EQ(context.outOfMemory, kScratchExhausted);
    }
    MMTextLayout* layout = context.createTextLayout(text.data(), 30);
    ASSERT_NE(layout, nullptr);
    context.destroyTextLayout(layout);
    layout = nullptr;
    for (uint32_t calls = 0; layout == nullptr && calls < 1000; ++calls) {
        context.outOfMemory = 0;
        const LimitedHeap heap(SIZE_MAX, calls);
        layout = context.createTextLayout(text.data(), 30);
        EXPECT_EQ(context.outOfMemory != 0, layout == nullptr) << calls;
    }
    EXPECT_NE(layout, nullptr);
    context.destroyTextLayout(layout);
}
