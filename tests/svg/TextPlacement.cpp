// SPDX-License-Identifier: MIT
// Where svg2png puts the characters of text elements, and what they look like.
#include "graphics2d/convenience/MMText.h"
#include "svg/text/Text.h"
#include "tests/svg/Drawing.h"

#include <sstream>

using namespace KAVO::Svg;

namespace {

constexpr int kSide = 80;

// Each character with what is said about its place.
std::string described(const TextContent& content)
{
    std::ostringstream text;
    for (const TextCharacter& character : content.characters) {
        text << static_cast<char>(character.code == '\n' ? '|' : character.code);
        if (character.x) text << " x" << *character.x;
        if (character.y) text << " y" << *character.y;
        if (character.dx) text << " dx" << *character.dx;
        if (character.dy) text << " dy" << *character.dy;
        if (character.rotate) text << " r" << *character.rotate;
        text << ';';
    }
    return text.str();
}

TEST(SvgText, ListsGoOnThroughSpansWhichGoBefore)
{
    const std::pair<const char*, const char*> cases[] = {
        {"<text x='10 20 30' dx='1 2 3 4'>a<tspan x='5' dx='9'>bc</tspan>d</text>",
         "a x10 dx1;b x5 dx9;c x30 dx3;d dx4;"},
        {"<text rotate='10 20'>a<tspan>b</tspan>c<tspan rotate='5'>de</tspan></text>",
         "a r10;b r20;c r20;d r5;e r5;"},
        {"<text x='50%' y='50%' dx='1em' dy='10%'>a</text>", "a x200 y50 dx16 dy10;"},
        {"<text>  a <tspan x='1'> b </tspan> c\n</text>", "a; ;b x1; ;c;"},
        {"<text xml:space='preserve'>a\t <tspan xml:space='default'>  b</tspan></text>",
         "a; ; ;b;"},
        {"<text>a<tspan systemLanguage='xx'>b</tspan><tspan systemLanguage='en'>c</tspan>"
         "<tspan requiredExtensions='http://x'>d</tspan></text>",
         "a;c;"},
        {"<textArea>a <tbreak/> b <tbreak/></textArea>", "a;|;b;|;"}};
    for (const auto& [text, expected] : cases) {
        SvgDocument document({}, {"", false, 0});
        ASSERT_EQ(document.parse("<svg>" + std::string(text) + "</svg>"), "");
        const pugi::xml_node node = document.root().first_child();
        const Viewport viewport{400, 100};
        const Style style = document.styleOf(node, viewport);
        EXPECT_EQ(described(readText(document, node, style, viewport)), expected) << text;
    }
}

TEST(SvgText, FontProperties)
{
    struct Case {
        const char* css;
        double size; // where 20 is inherited
        int weight;  // where 700 is inherited
        bool underline;
    };
    const Case cases[] = {{"font-size: 150%; font-weight: lighter", 30, 400, true},
                          {"font-size: -5px; font-weight: bolder", 20, 900, true},
                          {"font-size: 2em; text-decoration: none", 40, 700, true},
                          {"font: 30px serif", 30, 400, true},
                          {"font: 550 150%/ 2 serif", 30, 550, true},
                          {"font: 30px", 20, 700, true}, // of no family
                          {"font: inherit", 20, 700, true},
                          {"font: initial", 16, 400, true},
                          {"text-decoration: overline underline; font-weight: 300", 20, 300, true}};
    for (const Case& c : cases) {
        pugi::xml_document document;
        pugi::xml_node node = document.append_child("text");
        node.append_attribute("style") = c.css;
        Style parent;
        parent.fontSize = 20;
        parent.fontWeight = 700;
        parent.underline = std::make_shared<const Style>();
        const Style style = parent.child(Properties(node, StyleSheet()), Viewport());
        EXPECT_EQ(style.fontSize, c.size) << c.css;
        EXPECT_EQ(style.fontWeight, c.weight) << c.css;
        EXPECT_EQ(style.underline != nullptr, c.underline) << c.css;
    }
}

// With the text drawn by an installed font.
class SvgTextDrawing : public testing::Test {
protected:
    void SetUp() override
    {
        if (*LATIN_FONT == '\0') GTEST_SKIP() << "no font";
        ASSERT_TRUE(KAVO::Graphics2D::setFontFile(LATIN_FONT));
    }

    Picture drawn(const std::string& elements)
    {
        MMSvgDocument document;
        EXPECT_TRUE(document.loadBytes("<svg width='80' height='80'>" + elements + "</svg>"));
        const Picture picture = ::drawn(document, kSide, kSide);
        const MMFixedRegion& box = document.result().bounds;
        bounds = {box.x0 / 65536.0, box.y0 / 65536.0, box.x1 / 65536.0, box.y1 / 65536.0};
        shortcomings = document.shortcomings();
        return picture;
    }
    Box boundsOf(const std::string& elements)
    {
        drawn(elements);
        return bounds;
    }

    Box bounds;
    std::vector<Shortcoming> shortcomings;
};

TEST_F(SvgTextDrawing, TurnedCharactersStandWhereUprightOnesDo)
{
    const auto text = [](const char* rotate, const char* characters) {
        return "<text x='20' y='30' " + std::string(rotate) + ">" + characters + "</text>";
    };
    for (const char* rotate : {"rotate='90'", "rotate='180'", "rotate='-60 -60'"}) {
        const double upright = boundsOf(text("", "MM")).right - boundsOf(text("", "M")).right;
        const Box one = boundsOf(text(rotate, "M"));
        const Box two = boundsOf(text(rotate, "MM"));
        EXPECT_NEAR(two.right - one.right, upright, 1) << rotate;
        EXPECT_NEAR(two.bottom, one.bottom, 1) << rotate;
        // Under a mirroring transform a turn goes the other way round.
        const Box mirrored =
            boundsOf("<g transform='translate(80) scale(-1 1)'>" + text(rotate, "MM") + "</g>");
        EXPECT_NEAR(mirrored.left, 80 - two.right, 1) << rotate;
        EXPECT_NEAR(mirrored.bottom, two.bottom, 1) << rotate;
    }
}

TEST_F(SvgTextDrawing, LettersStandApartBySpacing)
{
    const auto text = [](const char* spacing) {
        return "<text x='5' y='30'><tspan letter-spacing='" + std::string(spacing) +
               "'>iii</tspan>i</text>";
    };
    const double normal = boundsOf(text("normal")).right;
    EXPECT_NEAR(boundsOf(text("5")).right, normal + 15, 1);
    EXPECT_NEAR(boundsOf(text("-1px")).right, normal - 3, 1);
}

TEST_F(SvgTextDrawing, WordsStandApartAndTextsAreAsLongAsWanted)
{
    const auto text = [](const char* attributes) {
        return "<text x='5' y='30' " + std::string(attributes) + ">i m i</text>";
    };
    const Box plain = boundsOf(text(""));
    EXPECT_NEAR(boundsOf(text("word-spacing='7'")).right, plain.right + 14, 1);
    for (const char* adjust : {"spacing", "spacingAndGlyphs"}) {
        const std::string how = "lengthAdjust='" + std::string(adjust) + "' ";
        const double side = boundsOf(text((how + "textLength='40'").c_str())).right;
        EXPECT_NEAR(side, 45, 2) << adjust; // but for the room beside the last letter
        EXPECT_NEAR(boundsOf(text((how + "textLength='60'").c_str())).right, side + 20, 1.5)
            << adjust;
        const Box back = boundsOf(text((how + "textLength='40' text-anchor='end'").c_str()));
        EXPECT_NEAR(back.right, 5, 2) << adjust;
    }
}

// More pixels than a drawing gets for large letters.
TEST_F(SvgTextDrawing, LettersAreNotStretchedWithoutEnd)
{
    for (const char* length : {"1e5", "1e9"}) {
        drawn("<text y='40' font-size='40' lengthAdjust='spacingAndGlyphs' textLength='" +
              std::string(length) + "'>mmm</text>");
        const bool isLeftOut = !shortcomings.empty() && shortcomings[0].what == "very large text";
        EXPECT_EQ(isLeftOut, length == std::string("1e9")) << length;
    }
}

TEST_F(SvgTextDrawing, BaselinesShift)
{
    // Attributes of a span of 10 px in a text of 20, and how much higher it stands.
    const std::pair<const char*, double> cases[] = {{"baseline-shift='3'", 3},
                                                    {"baseline-shift='-50%'", -10},
                                                    {"baseline-shift='super'", 8},
                                                    {"baseline-shift='sub'", -4},
                                                    {"dominant-baseline='middle'", -2.7},
                                                    {"alignment-baseline='hanging'", -7.3},
                                                    {"dominant-baseline='alphabetic'", 0}};
    const auto bottom = [&](const std::string& attributes, const char* inner) {
        return boundsOf("<text x='5' y='40' font-size='20'><tspan font-size='10' " + attributes +
                        ">" + inner + "</tspan></text>")
            .bottom;
    };
    const double plain = bottom("", "M");
    for (const auto& [attributes, up] : cases) {
        EXPECT_NEAR(bottom(attributes, "M"), plain - up, 1) << attributes;
        EXPECT_TRUE(shortcomings.empty()) << attributes;
    }
    // Shifts add up from span to span, and end with them.
    EXPECT_NEAR(bottom("baseline-shift='3'", "<tspan baseline-shift='4'>M</tspan>"), plain - 7, 1);
    EXPECT_NEAR(bottom("", "<tspan baseline-shift='9'> </tspan>M"), plain, 1);
}

// A gradient over the box of a text, and a clip path in its units: its right half.
TEST_F(SvgTextDrawing, TextsHaveABoundingBox)
{
    const std::string text = "<text x='5' y='40' font-size='20' textLength='60' "
                             "lengthAdjust='spacingAndGlyphs' ";
    const std::string clip = "<clipPath id='c' clipPathUnits='objectBoundingBox'>"
                             "<rect x='.5' width='.5' height='1'/></clipPath>";
    EXPECT_NEAR(boundsOf(text + ">MMMM</text>").left, 5, 3);
    const Picture whole = drawn(text + ">MMMM</text>");
    const Picture half = drawn(clip + text + "clip-path='url(#c)'>MMMM</text>");
    EXPECT_TRUE(shortcomings.empty());
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            if (x < 34) {
                EXPECT_EQ(half.at(x, y), kWhite) << x << ' ' << y;
            } else if (x > 35 && y > 24) {
                EXPECT_EQ(half.at(x, y), whole.at(x, y)) << x << ' ' << y;
            }
        }
    // Text that is used clips, too.
    const Picture letters = drawn("<defs><text id='t' x='5' y='40' font-size='20'>M</text></defs>"
                                  "<clipPath id='u'><use href='#t'/></clipPath>"
                                  "<rect width='80' height='80' clip-path='url(#u)'/>");
    EXPECT_TRUE(letters.pixels == drawn("<text x='5' y='40' font-size='20'>M</text>").pixels);
}

TEST_F(SvgTextDrawing, LinesLieAtTexts)
{
    const auto lines = [&](const char* kinds) {
        const Picture picture = drawn("<text x='5' y='40' font-size='32' text-decoration='" +
                                      std::string(kinds) + "'>\u00a0</text>");
        std::string rows;
        for (int y = 0; y < kSide; ++y)
            if ((picture.at(8, y) & 0xFF) < 128) rows += std::to_string(y) + " ";
        return rows;
    };
    // Two pixels thick; 3.5 below, 28.8 and 9.6 above the baseline.
    EXPECT_EQ(lines("none"), "");
    EXPECT_EQ(lines("underline"), "44 45 ");
    EXPECT_EQ(lines("overline"), "11 12 ");
    EXPECT_EQ(lines("line-through"), "30 31 ");
    EXPECT_EQ(lines("overline line-through underline"), "11 12 30 31 44 45 ");
}

TEST_F(SvgTextDrawing, WhatSpansAskForAndDoNotGetIsNamed)
{
    const std::pair<const char*, const char*> cases[] = {
        {"<tspan writing-mode='tb'>a</tspan>", "writing-mode"},
        {"<tspan><tspan style='text-transform:uppercase'>a</tspan></tspan>", "text-transform"},
        {"<tspan textLength='9'>a</tspan>", "textLength of a span"},
        {"a<animate/>", "<animate> in a text"},
        {"\u05d0", "text from right to left"}};
    for (const auto& [inner, what] : cases) {
        drawn("<text y='20'>" + std::string(inner) + "</text>");
        ASSERT_GE(shortcomings.size(), 1u) << inner;
        EXPECT_EQ(shortcomings.back().what, what) << inner;
    }
}

TEST_F(SvgTextDrawing, SpacesCountWhereRunsBegin)
{
    const auto end = [&](const char* inner) {
        return boundsOf("<text x='5' y='30'>" + std::string(inner) + "</text>").right;
    };
    const double whole = end("i i");
    EXPECT_GT(whole, end("ii") + 3);
    for (const char* inner :
         {"i<tspan> i</tspan>", "i <tspan>i</tspan>", "<tspan letter-spacing='1e-9'>i i</tspan>"})
        EXPECT_NEAR(end(inner), whole, 1) << inner;
}

// On straight paths text stands as it would under a transform that leads there.
TEST_F(SvgTextDrawing, CharactersStandAlongPaths)
{
    const struct {
        const char* onPath; // attributes of the textPath and its content
        const char* plain;  // the same for a text
    } cases[] = {{"path='M10 30H70'>A i", "transform='translate(10 30)'>A i"},
                 {"path='M10 5V75'>MM", "transform='translate(10 5) rotate(90)'>MM"},
                 {"path='M10 30H70' startOffset='20'>i", "x='30' y='30'>i"},
                 {"path='M10 30H70' startOffset='50%'>i", "x='40' y='30'>i"},
                 // 20 long under its own transform, of which it counts 2.
                 {"href='#half' startOffset='1'>i", "x='50' y='30'>i"},
                 {"path='M10 30H70' startOffset='100%' text-anchor='end'>MM",
                  "x='70' y='30' text-anchor='end'>MM"},
                 {"path='M10 30H70'><tspan dx='5' dy='9'>i</tspan>", "x='15' y='39'>i"},
                 {"path='M70 30H10' side='right'>A i", "transform='translate(10 30)'>A i"},
                 {"path='M70 30H10' side='right' startOffset='20'>i", "x='30' y='30'>i"},
                 // Jumps have no length, and what has its middle beyond an end is left out.
                 {"path='M10 30h4M38 30h30' startOffset='4'>i", "x='38' y='30'>i"},
                 {"path='M10 30H70' startOffset='50'>iii", "x='60' y='30'>ii"}};
    const auto text = [](const char* attributes, const char* element) {
        return "<" + std::string(element) + " " + attributes + "</" + element + ">";
    };
    for (const auto& c : cases) {
        const std::string path = "<defs><path id='half' pathLength='2' transform='translate(40) "
                                 "scale(.5)' d='M0 60H40'/></defs>";
        const Box along = boundsOf(path + "<text>" + text(c.onPath, "textPath") + "</text>");
        EXPECT_TRUE(shortcomings.empty()) << c.onPath;
        const Box plain = boundsOf(text(c.plain, "text"));
        for (const auto side : {&Box::left, &Box::top, &Box::right, &Box::bottom})
            EXPECT_NEAR(along.*side, plain.*side, 1) << c.onPath;
    }
    const Box after = boundsOf("<text><textPath path='M10 30H40'>i</textPath>M</text>");
    EXPECT_NEAR(after.right, boundsOf("<text x='40' y='30'>M</text>").right, 1);
    drawn("<text y='20'><textPath href='#none'>a</textPath></text>");
    EXPECT_EQ(shortcomings.size(), 1u);
}

// A line goes on under a span of another colour and size as the text began it.
TEST_F(SvgTextDrawing, LinesLookAsWhereTheyWereAskedFor)
{
    const Picture picture =
        drawn("<text x='5' y='40' font-size='32' fill='red' text-decoration='underline'>"
              "l<tspan fill='blue' font-size='20'>HH</tspan>l</text>");
    int red = 0;
    for (int x = 6; x < 40; ++x) {
        EXPECT_EQ(picture.at(x, 44) >> 16 & 0xFF, 0xFFu) << x; // nothing blue
        red += picture.at(x, 44) == 0xFFFF0000 ? 1 : 0;
    }
    EXPECT_GT(red, 25); // but for where runs meet
}

// A gradient or pattern of one colour looks like that colour.
TEST_F(SvgTextDrawing, EveryPaintReachesAllGlyphsWithItsOpacity)
{
    const auto text = [](const char* paint, double opacity) {
        std::ostringstream elements;
        elements << "<defs><linearGradient id='l'><stop stop-color='#08f'/></linearGradient>"
                    "<radialGradient id='r'><stop stop-color='#08f'/></radialGradient>"
                    "<pattern id='p' width='9' height='9' patternUnits='userSpaceOnUse'>"
                    "<rect width='9' height='9' fill='#08f'/></pattern>"
                    "<linearGradient id='half-l'><stop stop-color='#08f' stop-opacity='.5'/>"
                    "</linearGradient><pattern id='half-p' width='9' height='9' "
                    "patternUnits='userSpaceOnUse'><rect width='9' height='9' fill='#08f' "
                    "fill-opacity='.5'/></pattern></defs>"
                    "<path d='M0 22H80M40 0V80' stroke='red' stroke-width='5'/>"
                    "<text x='20' y='40' rotate='0 40' font-size='24' font-style='italic' "
                    "text-decoration='underline' fill='"
                 << paint << "' fill-opacity='" << opacity << "'>\u00c5ff</text>";
        return elements.str();
    };
    for (const double opacity : {1.0, 0.5, 0.2}) {
        const Picture solid = drawn(text("#08f", opacity));
        EXPECT_EQ(bounds.left, std::floor(bounds.left)); // no shift by half a pixel
        for (const char* paint : {"url(#l)", "url(#r)", "url(#p)"})
            EXPECT_LE(worstDifference(drawn(text(paint, opacity)), solid), 6) << paint << opacity;
        if (opacity > 0.5) continue;
        for (const char* paint : {"url(#half-l)", "url(#half-p)"})
            EXPECT_LE(worstDifference(drawn(text(paint, 2 * opacity)), solid), 6)
                << paint << opacity;
    }
}

TEST_F(SvgTextDrawing, TextAreaShowsWholeLinesAndTranslucentUnderlines)
{
    const Picture picture =
        drawn("<textArea width='80' height='40' font-size='12' "
              "line-increment='16' fill-opacity='.5' "
              "text-decoration='underline'>aa<tbreak/>bb<tbreak/>MM</textArea>");
    uint32_t darkest = 255;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const uint32_t green = picture.at(x, y) >> 8 & 255;
            darkest = std::min(darkest, green);
            EXPECT_TRUE(y < 32 || green == 255) << x << ", " << y;
        }
    EXPECT_NEAR(darkest, 127, 2);
}

TEST_F(SvgTextDrawing, MissingCharactersAreReported)
{
    drawn("<text y='20'>abc</text>");
    EXPECT_EQ(shortcomings.size(), 0u);
    drawn("<text y='20'>ab\ufffe</text>");
    EXPECT_EQ(shortcomings.size(), 1u);
}

} // namespace
