// SPDX-License-Identifier: MIT
// Which of the things said about a property counts.
#include "graphics2d/MMContext2D.h"
#include "svg/document/SvgDocument.h"

#include <gtest/gtest.h>

using namespace KAVO::Svg;

namespace {

// A tree with everything that selectors ask for; what is filled is <rect id='x' class='a b'>.
std::string treeWith(const std::string& sheet, const std::string& attributes)
{
    return "<svg xml:lang='de'><style>" + sheet +
           "</style><g class='outer'><g id='y'><circle/><rect id='x' class='a b' data-k='one "
           "two' " +
           attributes + "/><path/></g></g></svg>";
}

uint32_t fillOf(const std::string& sheet, const std::string& attributes = "")
{
    SvgDocument document({}, {"", false, 1 << 20});
    EXPECT_EQ(document.parse(treeWith(sheet, attributes)), "");
    return document.styleOf(document.find("x"), Viewport()).fill.colour & 0xFFFFFF;
}

TEST(SvgCascade, SelectorsMatchOrDoNot)
{
    const char* const matching[] = {
        "rect", "*", ".a", ".a.b", "#x", "rect#x.b", "svg rect", ".outer rect", "#y > rect",
        "g g rect", "circle + rect", "circle ~ rect", "[id]", "[id=x]", "rect[class~='b']",
        "[data-k^=one]", "[data-k$='two']", "[data-k*='e t']", ":lang(de)", "svg > g > g > rect",
        "path, rect", ":lang(fr, de)", ":lang('DE')", ":lang(*)", "rect:hover, rect",
        "rect::before, rect",
        // The middle one of three children, alone of its kind.
        ":nth-child(2)", ":nth-child(even)", ":nth-child(2n)", ":NTH-CHILD( -N + 2 )",
        ":nth-child(n)", ":nth-child(3n-1)", ":nth-child(+2n + 2)", ":nth-last-child(2)",
        ":nth-of-type(1)", ":nth-of-type(odd)", ":nth-last-of-type(-n+1)", "rect:first-of-type",
        "rect:last-of-type", "rect:only-of-type", "g:only-child rect", "circle:first-child + rect",
        "rect:empty", ":root rect", "svg:root rect", "rect:not(circle)",
        "rect:not(:first-child):not(.c, #z)", ":not(svg > rect)", "[class]:not([class='a'])",
        ":is(circle, rect.b)", ":where(#x)", "[class='A B' i]", "[data-k*='E T' i]", "#\\78",
        "#\\78 .b", ".\\61.b"};
    const char* const others[] = {
        "circle", ".c", "#z", "svg > rect", "rect rect", "path + rect", "rect:first-child",
        "rect:last-child", "[id=z]", "[data-k=one]", "[data-k|=one]", "rect:hover", "rect:lang(en)",
        "rect >", "> rect", "rect..a", "rect:lang(fr, en)", "rect:lang(d)", "rect:nth-child(1)",
        "rect:nth-child(odd)", "rect:nth-child(-2)", "rect:nth-child(0n)", "rect:nth-child(n+3)",
        "rect:nth-child(-n+1)", "rect:nth-last-child(3)", "rect:nth-of-type(2)", "rect:only-child",
        "g:empty rect", "rect:root", "rect:not(rect)", "rect:not(.c, .b)", "rect:not(g > rect)",
        "rect:is(circle, .c)", "[class='A B']", "[class='A B' s]",
        // What nobody knows drops all selectors of its rule.
        "rect:not-known, .a, rect", "rect:nth-child, rect", "rect:nth-child(), rect",
        "rect:nth-child(2 n), rect", "rect:nth-child(n 1), rect", "rect:nth-child(n++1), rect",
        "rect:nth-child(1.0n), rect", "rect:not(), rect", "rect:not(..a), rect",
        "rect:lang(), rect", "rect:has(circle), rect", "rect:not(.c, rect", "rect[id", ".a,,.b",
        "g > g > g > rect"};
    for (const char* selector : matching)
        EXPECT_EQ(fillOf(std::string(selector) + "{fill:#123456}"), 0x123456u) << selector;
    for (const char* selector : others)
        EXPECT_EQ(fillOf(std::string(selector) + "{fill:#123456}"), 0u) << selector;
}

TEST(SvgCascade, TheStrongestDeclarationCounts)
{
    const struct {
        const char* sheet;
        const char* attributes;
        uint32_t fill;
    } cases[] = {
        {"", "fill='#010101'", 0x010101},
        {"rect{fill:#020202}", "fill='#010101'", 0x020202},
        {"rect{fill:#020202}", "style='fill:#030303'", 0x030303},
        {"rect{fill:#020202!important}", "style='fill:#030303'", 0x020202},
        {"rect{fill:#020202!important}", "style='fill:#030303 ! important'", 0x030303},
        // Ids before classes before names, and of equals the last.
        {"#x{fill:#010101}.a{fill:#020202}rect{fill:#030303}", "", 0x010101},
        {".a{fill:#010101}svg g g rect{fill:#020202}", "", 0x010101},
        {".a{fill:#010101}.b{fill:#020202}", "", 0x020202},
        // :not() and :is() count like their strongest argument, :where() not at all.
        {":not(#z){fill:#010101}.a{fill:#020202}", "", 0x010101},
        {":is(rect,.c){fill:#010101}rect{fill:#020202}", "", 0x010101},
        {":where(#x){fill:#010101}rect{fill:#020202}", "", 0x020202},
        {":nth-child(2){fill:#010101}rect{fill:#020202}", "", 0x010101},
        {"[id]{fill:#010101}rect{fill:#020202}", "", 0x010101},
        // Comments, media and broken rules.
        {"<![CDATA[/* rect{fill:#010101} */<!-- rect{fill:#020202} -->]]>", "", 0x020202},
        {"@media print{rect{fill:#010101}}@media screen{rect{fill:#020202}}", "", 0x020202},
        {"@media not print{rect{fill:#010101}}@media print, all{.a{fill:#020202}}", "", 0x020202},
        {"rect{fill:#010101}@media screen and (prefers-color-scheme: dark){rect{fill:#020202}}", "",
         0x010101},
        {"@media only screen and (prefers-color-scheme:light) and (color){rect{fill:#010101}}", "",
         0x010101},
        {"@import 'data:text/css,.a%7Bfill:%23010101%7D';rect{fill:#020202}", "", 0x010101},
        {"@import url(\"data:text/css,.a%7Bfill:%23010101%7D\") print;rect{fill:#020202}", "",
         0x020202},
        {"@charset \"x\";rect{fill:#010101}", "", 0x010101},
        {"rect{fill:#010101;fill}", "", 0x010101},
        {"rect{nonsense;fill:#010101", "", 0x010101},
        // What is wrong leaves what was said before, or else what was inherited.
        {"rect{fill:#010101;fill:#02020g}", "", 0x010101},
        {"rect{fill:#010101}.a{fill:rgb(1)}", "style='fill:url'", 0x010101},
        {"rect{FILL:#010101}", "", 0x010101},
        {"", "style='/* a; */ /**/fill:#010101'", 0x010101},
        {"svg{fill:#010101}rect{fill:#020202}.a{fill:unset}", "", 0x010101},
        {"svg{fill:#010101}rect{fill:#020202}.a{fill:initial}", "", 0x000000},
        {"svg{fill:#010101}rect{fill:#02020g}", "", 0x010101},
        {"svg{fill:#010101}", "fill='inherit'", 0x010101},
        {"svg{color:#010101}g{color:#020202}", "fill='currentColor'", 0x020202},
        {"svg{color:#010101;fill:currentColor}g{color:#020202}", "", 0x010101}};
    for (const auto& c : cases)
        EXPECT_EQ(fillOf(c.sheet, c.attributes), c.fill) << c.sheet << ' ' << c.attributes;
}

TEST(SvgCascade, VariablesStandForValues)
{
    const struct {
        const char* sheet;
        const char* attributes;
        uint32_t fill;
    } cases[] = {{"rect{--c:#010101;fill:var(--c)}", "", 0x010101},
                 {"svg{--c:#010101}rect{fill:var( --c )}", "", 0x010101},
                 {"svg{--c:#010101}g{--c:#020202}", "fill='var(--c)'", 0x020202},
                 {"svg{--c:#010101}", "style='--c:#020202;fill:var(--c)'", 0x020202},
                 {"rect{--c:#010101!important}", "style='--c:#020202;fill:var(--c)'", 0x010101},
                 {"rect{fill:var(--c,#010101)}", "", 0x010101},
                 {"rect{fill:var(--c, var(--d, rgb(1, 1, 1)))}", "", 0x010101},
                 {"svg{--c:var(--d);--d:#010101}rect{fill:var(--c)}", "", 0x010101},
                 {"svg{--C:#010101}rect{fill:var(--c,#020202)}", "", 0x020202},
                 // Without a value the property is unset; circles end.
                 {"svg{fill:#010101}rect{fill:#020202}.a{fill:var(--c)}", "", 0x010101},
                 {"svg{--c:var(--d);--d:var(--c)}rect{fill:var(--c)}", "", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(fillOf(c.sheet, c.attributes), c.fill) << c.sheet << ' ' << c.attributes;
}

// Every value that is wrong comes after one that is right.
TEST(SvgCascade, EscapesStandForCharacters)
{
    for (const char* declaration :
         {"f\\69ll:red", "fill:r\\65 d", "fill:r\\000065d", "f\\ill:red", "FILL:\\72 ed"}) {
        EXPECT_EQ(fillOf("rect{" + std::string(declaration) + "}"), 0xFF0000u) << declaration;
        const std::string own = "style='" + std::string(declaration) + "'";
        EXPECT_EQ(fillOf("", own), 0xFF0000u) << declaration;
    }
    SvgDocument document({}, {"", false, 1 << 20});
    document.parse(treeWith("rect{fill:url(#a\\.b\\3a c)}", ""));
    EXPECT_EQ(document.styleOf(document.find("x"), Viewport()).fill.server, "a.b\\3a c");
}

TEST(SvgCascade, WrongValuesAreDropped)
{
    SvgDocument document({}, {"", false, 1 << 20});
    ASSERT_EQ(
        document.parse("<svg><style>.a{opacity:.25;stroke-width:7;stroke-linecap:round;"
                       "text-anchor:end;visibility:hidden;fill-rule:evenodd;stroke:lime}"
                       ".b{opacity:x;stroke-width:-3;stroke-linecap:oval;text-anchor:left;"
                       "visibility:no;fill-rule:odd;stroke:5}"
                       ".c{opacity:initial;stroke-width:initial;stroke-linecap:initial;"
                       "text-anchor:unset;visibility:initial;fill-rule:initial;stroke:initial}"
                       "</style><g id='b' class='a b'><g id='c' class='c'/></g></svg>"),
        "");
    const Style b = document.styleOf(document.find("b"), Viewport());
    EXPECT_EQ(b.ownOpacity, 0.25);
    EXPECT_EQ(b.strokeWidth, 7);
    EXPECT_EQ(b.cap, KAVO::Graphics2D::kCapRound);
    EXPECT_EQ(b.textAnchor, 2);
    EXPECT_FALSE(b.visible);
    EXPECT_TRUE(b.evenOdd);
    EXPECT_EQ(b.stroke.colour, 0xFF00FF00);
    const Style c = document.styleOf(document.find("c"), Viewport());
    EXPECT_EQ(c.ownOpacity, 1);
    EXPECT_EQ(c.strokeWidth, 1);
    EXPECT_EQ(c.cap, KAVO::Graphics2D::kCapButt);
    EXPECT_EQ(c.textAnchor, 2); // inherited
    EXPECT_TRUE(c.visible);
    EXPECT_FALSE(c.evenOdd);
    EXPECT_EQ(c.stroke.kind, PaintValue::None);
}

TEST(SvgCascade, SheetsComeFromTheProlog)
{
    const std::string sheet = "href='data:text/css,rect%7Bfill:%23010101%7D'";
    const std::pair<std::string, uint32_t> cases[] = {
        {"<?xml-stylesheet type='text/css' " + sheet + "?>", 0x010101},
        {"<?xml-stylesheet " + sheet + " media='screen'?><!-- -->", 0x010101},
        {"<?xml-stylesheet " + sheet + " media='print'?>", 0},
        {"<?xml-stylesheet type='text/xsl' " + sheet + "?>", 0}};
    for (const auto& [prolog, fill] : cases) {
        SvgDocument document({}, {"", false, 1 << 20});
        ASSERT_EQ(document.parse("<?xml version='1.0'?>" + prolog + treeWith("", "")), "");
        EXPECT_EQ(document.styleOf(document.find("x"), Viewport()).fill.colour & 0xFFFFFF, fill)
            << prolog;
        EXPECT_TRUE(document.remarks().empty());
    }
}

TEST(SvgCascade, SheetsThatDoNotCountAreNamed)
{
    SvgDocument document({}, {"", false, 1 << 20});
    ASSERT_EQ(document.parse("<svg>\n<style media='print'>a{}</style>\n<style>@import 'no.css';"
                             "@media (min-width: 9px){rect{fill:red}}</style></svg>"),
              "");
    ASSERT_EQ(document.remarks().size(), 2u);
    EXPECT_EQ(document.remarks()[0].what, "style sheet that cannot be read: no.css");
    EXPECT_EQ(document.remarks()[1].what, "style rules for (min-width: 9px)");
    EXPECT_EQ(document.lineOf(document.remarks()[1].node), 3u);
}

TEST(SvgCascade, ShorthandsAreTakenApart)
{
    SvgDocument document({}, {"", false, 1 << 20});
    ASSERT_EQ(document.parse("<svg><g id='x' style=\"font: italic bold 20px/1.5 'A; B', serif;"
                             "marker: url(#m); paint-order: stroke\"/></svg>"),
              "");
    const Style style = document.styleOf(document.find("x"), Viewport());
    EXPECT_EQ(style.fontSize, 20);
    EXPECT_EQ(style.fontWeight, 700);
    EXPECT_TRUE(style.slanted);
    for (const std::string_view marker : style.markers)
        EXPECT_EQ(marker, "m");
    EXPECT_EQ(style.paintOrder[0], PaintStep::Stroke);
    EXPECT_EQ(style.paintOrder[1], PaintStep::Fill);
}

// Every element asks for its place among all the others.
TEST(SvgCascade, ManySiblingsAreCountedOnce)
{
    constexpr int kCount = 60000;
    std::string text = "<svg><style>rect:nth-last-of-type(2n+1){fill:#010101}</style>";
    for (int i = 1; i <= kCount; ++i)
        text += "<rect/>";
    SvgDocument document({}, {"", false, 1 << 22});
    ASSERT_EQ(document.parse(text + "</svg>"), "");
    int place = kCount;
    for (const pugi::xml_node rect : document.root().children("rect")) {
        const Style style = document.styleOf(rect, Viewport());
        ASSERT_EQ(style.fill.colour & 0xFFFFFF, place % 2 == 1 ? 0x010101u : 0u) << place;
        --place;
    }
    EXPECT_EQ(place, 0);
}

// Ancestors in all combinations would take longer than anyone waits.
TEST(SvgCascade, LongSelectorsInDeepTreesEnd)
{
    std::string text = "<svg><style>";
    for (int i = 0; i < 40; ++i)
        text += "g ";
    text += "b{fill:red}</style>";
    for (int i = 0; i < 150; ++i)
        text += "<g>";
    text += "<b id='x'/>";
    for (int i = 0; i < 150; ++i)
        text += "</g>";
    SvgDocument document({}, {"", false, 1 << 20});
    ASSERT_EQ(document.parse(text + "</svg>"), "");
    document.styleOf(document.find("x"), Viewport());
}

} // namespace
