// SPDX-License-Identifier: MIT
#include "graphics2d/convenience/MMText.h"

#include "math/FixedLiteral.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

std::u16string unitsOf(MMText& text)
{
    return {text.units(), text.units() + text.length()};
}

std::u16string utf16(const std::string& utf8)
{
    MMText text(utf8.data(), utf8.size());
    EXPECT_EQ(text.units()[text.length()], 0);
    return unitsOf(text);
}

// As the forms of UTF-8 are defined, whatever is to become of the character.
std::string utf8(uint32_t c, uint32_t bytes)
{
    if (bytes == 1) return std::string(1, static_cast<char>(c));
    constexpr uint32_t kLeads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    std::string s(1, static_cast<char>(kLeads[bytes] | c >> 6 * (bytes - 1)));
    for (uint32_t i = bytes - 1; i-- > 0;)
        s += static_cast<char>(0x80 | (c >> 6 * i & 0x3F));
    return s;
}

} // namespace

TEST(TextFromUtf8, EveryCharacterInItsOwnForm)
{
    for (uint32_t c = 0; c <= 0x10FFFF; ++c) {
        const uint32_t bytes = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
        std::u16string expected(1, static_cast<char16_t>(c));
        if (c > 0xFFFF)
            expected = {static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)),
                        static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF))};
        if (c >= 0xD800 && c < 0xE000) expected = u"\uFFFD\uFFFD\uFFFD";
        ASSERT_EQ(utf16(utf8(c, bytes) + "|"), expected + u"|") << c;
        if (c % 64 == 0 && bytes < 4) { // longer than it should be
            ASSERT_EQ(utf16(utf8(c, bytes + 1)), std::u16string(bytes + 1, u'\uFFFD')) << c;
        }
    }
}

TEST(TextFromUtf8, IllFormedBytesAreReplacedOneByOne)
{
    EXPECT_EQ(utf16(""), u"");
    EXPECT_EQ(utf16("a\xE2\x82"), u"a\uFFFD\uFFFD");
    EXPECT_EQ(utf16("\xE2\x82z\xF4\x90\x80\x80"), u"\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(utf16("\xFF\x80\xC3(\xC0\xAF"), u"\uFFFD\uFFFD\uFFFD(\uFFFD\uFFFD");
    MMText whole("zero ends this\0not"), none(nullptr);
    EXPECT_EQ(unitsOf(whole), u"zero ends this");
    EXPECT_EQ(unitsOf(none), u"");
    EXPECT_EQ(failEachAllocation([] {
                  MMText text("abc");
                  EXPECT_EQ(text.units() == nullptr, text.length() == 0);
              }),
              1u);
}

TEST(HasGlyph, AsksTheFontAndLeavesTheContextAlone)
{
    TextScene scene(32);
    scene.context.penX = 5_fx;
    scene.context.boundsMinX = 3;
    for (const uint16_t there : {uint16_t{'a'}, uint16_t{' '}, uint16_t{0x4E00}})
        EXPECT_TRUE(hasGlyph(scene.context, there)) << there;
    for (const uint16_t missing : {uint16_t{9}, uint16_t{0xD800}})
        EXPECT_FALSE(hasGlyph(scene.context, missing)) << missing;
    EXPECT_EQ(scene.context.penX, 5_fx);
    EXPECT_EQ(scene.context.boundsMinX, 3);
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
    scene.context.fontSize = 8_fx;
    scene.draw(u"x", 4, 20); // in its own size
    EXPECT_EQ(scene.at(11, 12), 0xFF000000);
}

TEST(FontFile, IsTheOneThatWasNamedBeforeTheFirstContext)
{
    const FreshEngine engine;
    setenv("YBN_RES_FONT_PATH", "/environment", 1);
    ASSERT_TRUE(setFontFile("/fonts/one.ttf"));
    {
        const MMContext2D context;
        EXPECT_EQ(fakeFontEngine.fontPath, "/fonts/one.ttf");
        EXPECT_FALSE(setFontFile("/fonts/late.ttf")) << "a context lives";
    }
    {
        FailingHeap heap;
        heap.failAt(1);
        EXPECT_FALSE(setFontFile("/fonts/other.ttf")) << "no memory";
    }
    {
        const MMContext2D context;
        EXPECT_EQ(fakeFontEngine.fontPath, "/fonts/one.ttf");
    }
    char path[9];
    EXPECT_EQ(getFontFile(path, sizeof path), 14u);
    EXPECT_STREQ(path, "/fonts/o"); // what fits
    ASSERT_TRUE(setFontFile(nullptr));
    const MMContext2D context;
    EXPECT_EQ(fakeFontEngine.fontPath, "/environment/AMCSL.TTF");
    EXPECT_EQ(getFontFile(nullptr, 0), fakeFontEngine.fontPath.size());
    unsetenv("YBN_RES_FONT_PATH");
}
