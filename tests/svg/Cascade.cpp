// SPDX-License-Identifier: MIT
// Which of the things said about a property counts.
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
    const char* const matching[] = {"rect",
                                    "*",
                                    ".a",
                                    ".a.b",
                                    "#x",
                                    "rect#x.b",
                                    "svg rect",
                                    ".outer rect",
                                    "#y > rect",
                                    "g g rect",
                                    "circle + rect",
                                    "circle ~ rect",
                                    "[id]",
                                    "[id=x]",
                                    "rect[class~='b']",
                                    "[data-k^=one]",
                                    "[data-k$='two']",
                                    "[data-k*='e t']",
                                    ":lang(de)",
                                    "svg > g > g > rect",
                                    "path, rect",
                                    "rect:not-known, .a, rect"};
    const char* const others[] = {"circle",
                                  ".c",
                                  "#z",
                                  "svg > rect",
                                  "rect rect",
                                  "path + rect",
                                  "rect:first-child",
                                  "rect:last-child",
                                  "[id=z]",
                                  "[data-k=one]",
                                  "[data-k|=one]",
                                  "rect:hover",
                                  ":lang(en)",
                                  "rect >",
                                  "> rect",
                                  "rect..a",
                                  "rect[id",
                                  ".a,,.b",
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
        {"[id]{fill:#010101}rect{fill:#020202}", "", 0x010101},
        // Comments, media and broken rules.
        {"<![CDATA[/* rect{fill:#010101} */<!-- rect{fill:#020202} -->]]>", "", 0x020202},
        {"@media print{rect{fill:#010101}}@media screen{rect{fill:#020202}}", "", 0x020202},
        {"@charset \"x\";rect{fill:#010101}", "", 0x010101},
        {"rect{fill:#010101;fill}", "", 0x010101},
        {"rect{nonsense;fill:#010101", "", 0x010101},
        // What is wrong leaves what was inherited.
        {"svg{fill:#010101}rect{fill:#02020g}", "", 0x010101},
        {"svg{fill:#010101}", "fill='inherit'", 0x010101},
        {"svg{color:#010101}g{color:#020202}", "fill='currentColor'", 0x020202},
        {"svg{color:#010101;fill:currentColor}g{color:#020202}", "", 0x010101}};
    for (const auto& c : cases)
        EXPECT_EQ(fillOf(c.sheet, c.attributes), c.fill) << c.sheet << ' ' << c.attributes;
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
