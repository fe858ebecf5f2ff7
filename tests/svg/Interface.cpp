// SPDX-License-Identifier: MIT
// What a caller of the engine meets: sizes, placements, messages, elements under points.
#include "graphics2d/convenience/MMContextState.h"
#include "tests/svg/Drawing.h"

#include <cmath>

using namespace KAVO::Svg;
using KAVO::Graphics2D::MMContext2D;

namespace {

TEST(SvgInterface, SizesFollowFromWhatIsGiven)
{
    const struct {
        const char* attributes;
        double width;
        double height;
    } cases[] = {{"width='30' height='20'", 30, 20},
                 {"viewBox='0 0 40 10'", 40, 10},
                 {"viewBox='0 0 40 10' width='80'", 80, 20},
                 {"viewBox='0 0 40 10' height='5'", 20, 5},
                 {"viewBox='0 0 40 10' width='100%' height='50%'", 40, 5},
                 {"width='1in' height='72pt'", 96, 96},
                 {"", 300, 150}};
    for (const auto& c : cases) {
        MMSvgDocument document;
        EXPECT_TRUE(document.loadBytes("<svg " + std::string(c.attributes) + "/>"));
        EXPECT_EQ(document.size().width, c.width) << c.attributes;
        EXPECT_EQ(document.size().height, c.height) << c.attributes;
    }
}

TEST(SvgInterface, ProblemsComeBackAsValues)
{
    LoadOptions small;
    small.limits.documentBytes = 60;
    MMSvgDocument limited(small);
    EXPECT_FALSE(limited.loadBytes("<svg>" + std::string(80, ' ') + "</svg>"));
    EXPECT_EQ(limited.problem(), "is too large");
    EXPECT_FALSE(limited.loadBytes("<!DOCTYPE svg [<!ENTITY a \"&a;&a;\">]><svg>&a;</svg>"));

    MMSvgDocument document;
    for (const char* text : {"", "<svg", "<html/>", "<svg width='0'/>", "<a:svg xmlns:a='b'/>"}) {
        EXPECT_FALSE(document.loadBytes(text)) << text;
        EXPECT_FALSE(document.problem().empty()) << text;
        EXPECT_EQ(document.size().width, 0) << text;
    }
    EXPECT_FALSE(document.loadFile("/no/such/file.svg"));

    EXPECT_TRUE(document.loadBytes("<svg width='4' height='4'/>"));
    KAVO::Pixel pixels[16] = {};
    const MMPixmap target = {4, 4, 16, 0, pixels, 0};
    EXPECT_TRUE(document.render(target, {}));
    for (const Placement& place :
         {Placement{0, 0, -1, 4}, Placement{NAN, 0, 4, 4}, Placement{0, 0, INFINITY, 4}})
        EXPECT_FALSE(document.render(target, place));
    EXPECT_FALSE(document.render({4, 4, 8, 0, pixels, 0}, {}));
    EXPECT_FALSE(document.render({4, 4, 16, 0, nullptr, 0}, {}));
}

// Columns and rows that are red.
std::string redPart(const Picture& picture)
{
    int box[4] = {99, 99, -1, -1};
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            if ((picture.at(x, y) & 0xFFFFFF) == 0xFF0000) {
                box[0] = std::min(box[0], x);
                box[1] = std::min(box[1], y);
                box[2] = std::max(box[2], x);
                box[3] = std::max(box[3], y);
            }
    std::string text;
    for (const int side : box)
        text += std::to_string(side) + " ";
    return text;
}

TEST(SvgInterface, DrawingsGoWhereTheyAreTold)
{
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes("<svg width='10' height='5'><rect x='-9' y='-9' width='99' "
                                   "height='99' fill='red'/></svg>"));
    const struct {
        Placement place;
        const char* red;
    } cases[] = {{{2, 3, 10, 5}, "2 3 11 7 "},
                 {{2, 3, 0, 0}, "2 3 11 7 "},
                 {{4, 6, 20, 0}, "4 6 23 15 "},
                 {{4, 6, 0, 10}, "4 6 23 15 "},
                 {{0, 0, 20, 20}, "0 0 19 19 "}}; // what lies around the drawing is drawn, too
    for (const auto& c : cases) {
        Picture picture(24, 24, kWhite);
        document.render({24, 24, 96, 0, picture.pixels.data(), 0}, c.place);
        EXPECT_EQ(redPart(picture), c.red);
    }
    ASSERT_TRUE(document.loadBytes(
        "<svg width='10' height='5'><rect width='10' height='5' fill='red'/></svg>"));
    const std::pair<const char*, const char*> fits[] = {{nullptr, "0 5 19 14 "},
                                                        {"none", "0 0 19 19 "},
                                                        {"xMidYMax meet", "0 10 19 19 "},
                                                        {"xMinYMin slice", "0 0 19 19 "}};
    for (const auto& [ratio, red] : fits) {
        Picture picture(24, 24, kWhite);
        document.render({24, 24, 96, 0, picture.pixels.data(), 0}, {0, 0, 20, 20, ratio});
        EXPECT_EQ(redPart(picture), red) << (ratio ? ratio : "");
    }
}

TEST(SvgInterface, ACallersContextComesBackAsItWas)
{
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes("<svg width='9' height='9'><rect width='9' height='9' "
                                   "fill='red' stroke='blue' stroke-dasharray='100'/></svg>"));
    Picture picture(9, 9, kWhite);
    MMContext2D context;
    setTarget(context, picture.pixels.data(), 9, 9);
    context.clipLeft = 3;
    context.clipRight = 6;
    context.fillPaint.paintColour = 0xFF00FF00;
    context.strokeHalfWidth = 77;
    context.transform.e = 5;
    context.antiAlias = 1;
    context.lineHeight = 33;
    EXPECT_TRUE(document.render(context, {}));
    EXPECT_EQ(redPart(picture), "3 1 5 7 ");
    EXPECT_EQ(context.clipLeft, 3);
    EXPECT_EQ(context.clipRight, 6);
    EXPECT_EQ(context.fillPaint.paintColour, 0xFF00FF00u);
    EXPECT_EQ(context.strokeHalfWidth, 77);
    EXPECT_EQ(context.transform.e, 5);
    EXPECT_EQ(context.lineHeight, 33);
    EXPECT_EQ(context.dashArray, nullptr);
}

// Over nothing a drawing is itself, premultiplied.
TEST(SvgInterface, TranslucentTargetsStayTranslucent)
{
    const Picture picture =
        drawn("<svg width='6' height='2'><rect width='2' height='2' fill='red'/>"
              "<rect x='2' width='2' height='2' fill='red' opacity='.4'/></svg>",
              6, 2, 0);
    EXPECT_EQ(picture.at(0, 0), 0xFFFF0000u);
    EXPECT_NEAR(picture.at(2, 0) >> 24, 102, 1);
    EXPECT_NEAR(picture.at(2, 0) >> 16 & 0xFF, 102, 1);
    EXPECT_EQ(picture.at(2, 0) & 0xFFFF, 0u);
    EXPECT_EQ(picture.at(4, 0), 0u);
}

TEST(SvgInterface, WhatIsNotDrawnIsNamedOnceWithItsPlace)
{
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes(
        "<svg width='9' height='9'>\n<g filter='url(#f)'/>\n\n"
        "<rect width='9' height='9' mask='url(#m)'><animate/></rect><circle mask='url(#m)'/>\n"
        "<foreignObject/><rect width='calc(1px)'/></svg>"));
    drawn(document, 9, 9);
    const std::pair<const char*, uint32_t> expected[] = {{"filter that is not there", 2},
                                                         {"animation", 4},
                                                         {"mask that is not there", 4},
                                                         {"<foreignObject>", 5},
                                                         {"a value that calc() computes", 5}};
    const std::vector<Shortcoming> found = document.shortcomings();
    ASSERT_EQ(found.size(), std::size(expected));
    for (size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].what, expected[i].first);
        EXPECT_EQ(found[i].line, expected[i].second) << found[i].what;
    }
    EXPECT_EQ(found[0].element, "g");
    EXPECT_EQ(found[1].element, "animate");
}

// What would change the picture, and is not known, is never passed over without a word.
TEST(SvgInterface, EveryThingThatIsNotDrawnHasAName)
{
    const std::string rect = "<rect width='9' height='9' ";
    const std::pair<std::string, std::string> cases[] = {
        {rect + "style='rotate:x 45deg'/>", "rotate"},
        {rect + "style='animation: turn 1s'/>", "animation"},
        {"<circle r='9' stroke='red' stroke-linejoin='arcs'/>", "arcs joins"},
        {rect + "stroke-alignment='outer'/>", "stroke-alignment"},
        {rect + "style='stroke-dash-corner:2'/>", "stroke-dash-corner"},
        {"<g style='font:condensed 9px serif'/>", "font-stretch"},
        {"<g font-stretch='expanded'/>", "font-stretch"},
        {"<g style='text-decoration:underline wavy'/>", "text-decoration: wavy"},
        {"<style>g { rect { fill: red } }</style>", "style rules inside rules"},
        {rect + "fill='rgb(var(--r), 0, 0)'/>", "a value that var() computes"},
        {rect + "style='width:min(1px,2px)'/>", "a value that min() computes"},
        {"<linearGradient id='g' color-interpolation='linearRGB'><stop/><stop offset='1'/>"
         "</linearGradient>" +
             rect + "fill='url(#g)'/>",
         "color-interpolation"},
        {rect + "fill='url(a.svg#b)'/>", "paint that is not there"},
        {rect + "fill='color-mix(in srgb, red, blue)'/>", "the colour color-mix()"},
        {rect + "style='stroke:color(rec2020 0 1 0)'/>", "the colour color()"},
        {rect + "vector-effect='non-rotation'/>", "vector-effect: non-rotation"},
        {"<path d='M0 0h9' marker-end='url(a.svg#b)'/>", "marker of another document"},
        {"<line x1='calc(1px)'/>", "a value that calc() computes"},
        {"<linearGradient id='g' x1='calc(1%)'><stop/><stop offset='1'/></linearGradient>" + rect +
             "fill='url(#g)'/>",
         "a value that calc() computes"},
        {"<pattern id='g' width='calc(1%)'><path/></pattern>" + rect + "fill='url(#g)'/>",
         "a value that calc() computes"},
        {"<pattern id='g' width='1' height='1' mask='url(#m)'><path/></pattern>" + rect +
             "fill='url(#g)'/>",
         "mask of a pattern"},
        {rect + "clip-path='shape(from 0 0)'/>", "clipPath of an unknown kind"},
        {rect + "clip-path='url(a.svg#b)'/>", "clipPath of another document"},
        {rect + "style='mask:linear-gradient(red,blue)'/>", "mask of an unknown kind"},
        {"<use href='a.svg#b'/>", "use of what is not there: a.svg#b"},
        {"<path d='M0 0L'/>", "malformed path data"},
        {"<polygon points='0 0 9'/>", "malformed points"},
        {rect + "transform='translate(9px)'/>", "malformed transform"},
        {"<linearGradient id='g' gradientTransform='rotate(9deg)'><stop/></linearGradient>" + rect +
             "fill='url(#g)'/>",
         "malformed transform"},
        {"<pattern id='g' patternTransform='turn(9)'/>" + rect + "fill='url(#g)'/>",
         "malformed transform"},
        {rect + "style='fill:url(#a\\)b)'/>", "escapes in a declaration"},
        {"<style>@supports (fill:red) { g { fill: red } }</style>", "@supports"},
        {"<image href=\"data:,&lt;svg>&lt;image href='a.png'/>&lt;/svg>\"/>",
         "image that cannot be read: a.png in an image"},
        {"<switch><hatch/></switch>", "<hatch>"}};
    for (const auto& [elements, what] : cases) {
        MMSvgDocument document;
        ASSERT_TRUE(document.loadBytes("<svg width='9' height='9'>" + elements + "</svg>"));
        drawn(document, 9, 9);
        EXPECT_TRUE(lacks(document, what)) << elements;
    }
}

TEST(SvgInterface, ElementsUnderPoints)
{
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes(
        "<svg id='all' width='100' height='100'><defs><circle id='disc' r='10'/></defs>"
        "<rect id='card' x='10' y='10' width='50' height='50' fill='gray'/>"
        "<g id='group'><circle cx='60' cy='60' r='20' fill='url(#missing) red'/></g>"
        "<path id='ring' d='M80 20h10' fill='none' stroke='blue' stroke-width='4'/>"
        "<rect id='hidden' width='100' height='100' visibility='hidden'/>"
        "<rect id='nothing' width='100' height='100' fill='none'/>"
        "<use id='used' href='#disc' x='20' y='80' opacity='0.5'/></svg>"));
    const struct {
        double x;
        double y;
        const char* id;
    } cases[] = {{20, 20, "card"},   {10.4, 30, "card"}, {9.6, 30, ""},      {58, 58, "group"},
                 {85, 21.4, "ring"}, {85, 22.6, ""},     {20.5, 80, "disc"}, {95, 95, ""},
                 {-5, 50, ""},       {150, 50, ""}};
    for (const auto& c : cases) {
        EXPECT_EQ(document.elementAt({}, c.x, c.y), c.id) << c.x << ' ' << c.y;
        EXPECT_EQ(document.elementAt({1000, 7, 200, 200}, 1000 + 2 * c.x, 7 + 2 * c.y), c.id);
    }
    EXPECT_EQ(document.elementAt({}, NAN, 5), "");
}

} // namespace
