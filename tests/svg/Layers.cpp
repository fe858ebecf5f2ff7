// SPDX-License-Identifier: MIT
// Groups with an opacity, clip paths and masks.
#include "tests/svg/Drawing.h"

#include <cmath>

using namespace KAVO::Svg;

namespace {

constexpr int kSide = 20;

// How much of the red in a picture of red over white each pixel has, 0 to 255.
int redness(const Picture& picture, int x, int y)
{
    return 255 - static_cast<int>(picture.at(x, y) & 0xFF);
}

Picture drawnElements(const std::string& elements)
{
    return drawn("<svg width='20' height='20' fill='red'>" + elements + "</svg>", kSide, kSide);
}

TEST(SvgLayers, AnOpacityIsTakenByTheWhole)
{
    for (const char* elements :
         {"<g opacity='.4'><rect width='20' height='20'/><rect width='20' height='20'/></g>",
          "<rect width='20' height='20' stroke='red' stroke-width='30' opacity='.4'/>",
          "<g opacity='.8'><g opacity='.5'><path d='M0 0h20v20H0'/><circle r='30'/></g></g>",
          "<g opacity='.4'><g><path d='M0 0h20v20H0'/><circle r='30' opacity='0'/></g></g>"}) {
        const Picture picture = drawnElements(elements);
        for (const int at : {0, 9, 19})
            EXPECT_NEAR(redness(picture, at, at), 102, 3) << elements;
    }
}

// Expects full red in the columns and rows from first to last, and white elsewhere.
void expectSquare(const std::string& elements, int first, int last)
{
    const Picture picture = drawnElements(elements);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const bool inside = x >= first && x <= last && y >= first && y <= last;
            ASSERT_NEAR(redness(picture, x, y), inside ? 255 : 0, 2)
                << x << ' ' << y << ' ' << elements;
        }
}

TEST(SvgLayers, ClipPathsCut)
{
    const std::string whole = "<rect width='20' height='20' clip-path='url(#c)'/>";
    const std::pair<const char*, const char*> clips[] = {
        {"", "<rect x='5' y='5' width='10' height='10'/>"},
        {"", "<path d='M5 5h10v10h-10z' fill='none' opacity='.1' stroke='red' stroke-width='4'/>"},
        {"clipPathUnits='objectBoundingBox'", "<rect x='.25' y='.25' width='.5' height='.5'/>"},
        {"transform='translate(5 5)'", "<rect width='10' height='10'/>"},
        {"", "<use href='#r' x='5' y='5'/>"},
        {"", "<rect id='r2' x='5' y='5' width='10' height='10'/><rect width='99' height='99' "
             "visibility='hidden'/>"},
        {"clip-path='url(#i)'", "<rect width='15' height='15'/>"},
        {"", "<rect width='15' height='15' clip-path='url(#i)'/>"},
        {"", "<path d='M5 5h10v10h-10zM-9 -9h40v40h-40zM-9 -9h40v40h-40z' clip-rule='evenodd'/>"}};
    for (const auto& [attributes, shapes] : clips)
        expectSquare(
            "<defs><rect id='r' width='10' height='10'/></defs><clipPath id='i'><rect x='5' "
            "y='5' width='30' height='30'/></clipPath><clipPath id='c' " +
                std::string(attributes) + ">" + shapes + "</clipPath>" + whole,
            5, 14);
    expectSquare("<clipPath id='c'/>" + whole, 1, 0);
    expectSquare(whole, 0, 19); // a clip path that is not there cuts nothing
    // Uses name shapes themselves, masks count for nothing, and a reference in a circle for none.
    const std::string parts = "<mask id='m'/><defs><g id='g'><rect width='99' height='99'/></g>"
                              "<use id='u' href='#g'/></defs><symbol id='s'><rect width='99' "
                              "height='99'/></symbol>";
    for (const char* clip : {"<clipPath id='c' clip-path='url(#c)'><rect width='9' height='9'/>",
                             "<clipPath id='c'><rect width='9' height='9' clip-path='url(#c)'/>",
                             "<clipPath id='c'><rect width='9' height='9' mask='url(#m)'/>",
                             "<clipPath id='c'><rect width='9' height='9'/><use href='#g'/>"
                             "<use href='#s'/><use href='#u'/>"})
        expectSquare(parts + clip + "</clipPath>" + whole, 0, 8);
}

TEST(SvgLayers, MasksWeighByLightOrAlpha)
{
    const struct {
        const char* mask;
        const char* content;
        double share; // of red in the middle
    } cases[] = {
        {"", "<path d='M0 0h20v20H0' fill='white'/>", 1},
        {"", "<path d='M0 0h20v20H0' fill='white' opacity='.5'/>", 0.5},
        {"", "<path d='M0 0h20v20H0' fill='lime'/>", 0.7154},
        {"", "<path d='M0 0h20v20H0' fill='black'/>", 0},
        {"", "", 0},
        // The light of #808080 is 0.2159 of white.
        {"color-interpolation='linearRGB'", "<path d='M0 0h20v20H0' fill='#808080'/>", 0.2159},
        {"mask-type='alpha'", "<path d='M0 0h20v20H0' fill='black' opacity='.4'/>", 0.4},
        {"maskContentUnits='objectBoundingBox'", "<path d='M0 0h1v1h-1z' fill='white'/>", 1},
        {"x='0' y='0' width='.2' height='1'", "<path d='M0 0h20v20H0' fill='white'/>", 0},
        {"maskUnits='userSpaceOnUse' x='5' y='5' width='10' height='10'",
         "<path d='M0 0h20v20H0' fill='white'/>", 1},
        {"mask='url(#n)'", "<path d='M0 0h20v20H0' fill='white'/>", 0.2},
        {"mask='url(#m)'", "<path d='M0 0h20v20H0' fill='white' mask='url(#m)'/>", 1},
        {"clip-path='url(#l)'", "<path d='M0 0h20v20H0' fill='white'/>", 0},
        {"clip-path='url(#r)'", "<path d='M0 0h20v20H0' fill='white'/>", 1}};
    for (const auto& c : cases) {
        const Picture picture =
            drawnElements("<clipPath id='l'><path d='M0 0h9v20H0'/></clipPath><clipPath id='r'>"
                          "<path d='M9 0h9v20H9'/></clipPath>"
                          "<mask id='n'><path d='M0 0h20v20H0' fill='#333'/></mask><mask id='m' " +
                          std::string(c.mask) + ">" + c.content +
                          "</mask><rect width='20' height='20' mask='url(#m)'/>");
        EXPECT_NEAR(redness(picture, 10, 10), 255 * c.share, 3) << c.mask << c.content;
    }
}

TEST(SvgLayers, WhatRefersToItselfIsNamed)
{
    for (const char* name : {"clipPath", "mask"}) {
        const std::string reference =
            std::string(name == std::string("mask") ? "mask" : "clip-path") + "='url(#c)'";
        KAVO::Svg::MMSvgDocument document;
        ASSERT_TRUE(document.loadBytes("<svg><" + std::string(name) + " id='c' " + reference +
                                       "><rect width='9' height='9'/></" + name +
                                       "><rect width='20' height='20' " + reference + "/></svg>"));
        drawn(document, kSide, kSide);
        EXPECT_TRUE(lacks(document, std::string(name) + " inside itself"));
    }
}

TEST(SvgLayers, PointsThatAreCutAwayAreNotFound)
{
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes(
        "<svg width='20' height='20'><clipPath id='c'><circle cx='10' cy='10' r='5'/></clipPath>"
        "<rect id='r' width='20' height='20' clip-path='url(#c)'/></svg>"));
    EXPECT_EQ(document.elementAt({}, 10, 10), "r");
    EXPECT_EQ(document.elementAt({}, 2, 2), "");
}

// A turned viewport cuts along its edges, not along its bounding box.
TEST(SvgLayers, TurnedViewportsCut)
{
    const Picture picture =
        drawnElements("<g transform='translate(10 0) rotate(45)'><svg width='14.142' "
                      "height='14.142'><rect x='-50' y='-50' width='100' height='100'/></svg></g>");
    EXPECT_NEAR(redness(picture, 10, 10), 255, 2);
    for (const int corner : {1, 18})
        EXPECT_NEAR(redness(picture, corner, corner), 0, 2);
}

// Nothing is drawn where it stands, but it may be referred to.
TEST(SvgLayers, WhatIsReferredToNeedsNoDisplay)
{
    expectSquare("<g display='none'><clipPath id='c' display='none'><rect x='5' y='5' width='10' "
                 "height='10'/></clipPath></g><rect width='20' height='20' clip-path='url(#c)'/>",
                 5, 14);
    expectSquare("<g display='none'><marker id='m' display='none' markerUnits='userSpaceOnUse' "
                 "markerWidth='10' markerHeight='10'><rect width='10' height='10'/></marker></g>"
                 "<path d='M5 5h9' fill='none' marker-start='url(#m)'/>",
                 5, 14);
}

// The content of a pattern starts at the corner of each tile.
TEST(SvgLayers, PatternsBeginAtTheirTiles)
{
    expectSquare("<pattern id='p' patternUnits='userSpaceOnUse' x='5' y='5' width='40' "
                 "height='40'><rect width='10' height='10'/></pattern><rect width='20' "
                 "height='20' fill='url(#p)'/>",
                 5, 14);
}

// Each level draws what is inside it twice.
TEST(SvgLayers, DeepNestingEnds)
{
    std::string text = "<svg width='9' height='9'>";
    for (int i = 0; i < 60; ++i)
        text += "<g opacity='.9'><path/>";
    text += "<rect width='9' height='9'/>";
    for (int i = 0; i < 60; ++i)
        text += "</g>";
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes(text + "</svg>"));
    drawn(document, 9, 9);
    EXPECT_EQ(document.shortcomings().size(), 1u);
}

// Of the whole of a group, with what lies below it, or below it in the nearest group that is apart.
TEST(SvgLayers, BlendModesMixWithWhatLiesBelow)
{
    const std::string below = "<rect width='20' height='20' fill='#80c040'/>";
    const auto blended = [](const std::string& style) {
        return "<rect width='20' height='20' fill='#4080ff' style='" + style + "'/>";
    };
    const std::pair<std::string, uint32_t> cases[] = {
        {below + blended("mix-blend-mode:multiply"), 0xFF206040}, // 80 * 40 / ff and so on
        {below + blended("mix-blend-mode:screen"), 0xFFA0E0FF},   // the sum less that
        {below + blended("mix-blend-mode:difference"), 0xFF4040BF},
        {below + blended("mix-blend-mode:multiply;opacity:.5"), 0xFF509040},
        {below + "<g style='isolation:isolate'>" + blended("mix-blend-mode:multiply") + "</g>",
         0xFF4080FF},
        {below + "<g opacity='.5'>" + blended("mix-blend-mode:multiply") + "</g>", 0xFF60A0A0},
        {below + "<g>" + blended("mix-blend-mode:multiply") + "</g>", 0xFF206040},
        {below + blended("mix-blend-mode:nonsense"), 0xFF4080FF}};
    for (const auto& [elements, expected] : cases) {
        const uint32_t pixel = drawnElements(elements).at(9, 9);
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(pixel >> shift & 255, expected >> shift & 255, 1)
                << std::hex << pixel << ' ' << elements;
    }
}

} // namespace
