// SPDX-License-Identifier: MIT
// The little languages inside SVG attributes.
#include "svg/geometry/ViewBox.h"
#include "svg/values/Colour.h"
#include "svg/values/Length.h"
#include "svg/values/PathParser.h"
#include "svg/values/TransformParser.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace KAVO::Svg;

namespace {

// Writes an outline in a plain notation: absolute, one letter per segment, rounded to hundredths.
std::string described(const Outline& outline)
{
    std::ostringstream text;
    for (const Outline::Segment& segment : outline.segments()) {
        const int count = segment.verb == Outline::Curve   ? 3
                          : segment.verb == Outline::Close ? 0
                                                           : 1;
        text << "MLCZ"[segment.verb];
        for (int i = 0; i < count; ++i) {
            text << (i ? " " : "") << std::round(segment.points[i].x * 100) / 100 + 0.0 << ","
                 << std::round(segment.points[i].y * 100) / 100 + 0.0;
        }
    }
    return text.str();
}

struct PathCase {
    const char* text;
    const char* expected;
    bool wellFormed;
};

TEST(SvgPath, CommandsShorthandsAndErrors)
{
    const PathCase cases[] = {
        {"m1-2l3.5.5", "M1,-2L4.5,-1.5", true},
        {"M0 0 1 0 1 1z", "M0,0L1,0L1,1Z", true},
        {"m5 5 1 0zl2 2", "M5,5L6,5ZM5,5L7,7", true},
        {"M1 1H5V7h-1v-1", "M1,1L5,1L5,7L4,7L4,6", true},
        {"M0 0C0 1 1 2 2 2S4 3 4 4", "M0,0C0,1 1,2 2,2C3,2 4,3 4,4", true},
        {"M0 0s1 1 2 0", "M0,0C0,0 1,1 2,0", true},
        // A quadratic's control point lies two thirds of the way out.
        {"M0 0Q3 3 6 0t6 0", "M0,0C2,2 4,2 6,0C8,-2 10,-2 12,0", true},
        {"M1e1 2E-1L+.5.5", "M10,0.2L0.5,0.5", true},
        // A quarter circle: handles of 4/3 tan(22.5 degrees) times the radius. Compact flags.
        {"M10 0A10 10 0 010 10", "M10,0C10,5.52 5.52,10 0,10", true},
        {"M0 0A0 5 0 1 1 7 7", "M0,0L7,7", true},
        {"M0 0a5 5 0 1 1 0 0", "M0,0", true},
        {"M1e21 0A9 9 20 0 0 1e21 1", "M1e+21,0L1e+21,1", true}, // turned, the chord is lost
        {"", "", true},
        {"M5 5", "M5,5", true},
        {"M5 5m1 1M2 2", "M5,5M6,6M2,2", true},
        {"M5 5z", "M5,5Z", true},
        {"L1 1", "", false},
        {"M0 0L1 1 2", "M0,0L1,1", false},
        {"M0 0L1 1X2 2", "M0,0L1,1", false},
        {"M0 0 1 1,L2 2", "M0,0L1,1", false},
        {"M0 0L1 1 , ", "M0,0L1,1", false},
        {"M0 0 , 1 1 L,2 2", "M0,0L1,1", false},
        {"M0 0Z5 5", "M0,0Z", false},
        {"M0 0L1 1A1 1 0 2 0 5 5", "M0,0L1,1", false},
        {"M0 0Linf nan", "M0,0", false},
    };
    for (const PathCase& c : cases) {
        Outline outline;
        EXPECT_EQ(parsePath(c.text, outline), c.wellFormed) << c.text;
        EXPECT_EQ(described(outline), c.expected) << c.text;
    }
}

TEST(SvgPath, ArcsReachTheirEndOnTheirEllipse)
{
    // All four arcs between two points of the circle of radius 5 around (0, 0) or (6, 0), and radii
    // that are too short and must grow to half the distance.
    for (const char* flags : {"0 0", "0 1", "1 0", "1 1"}) {
        for (const double radius : {5.0, 1.0}) {
            std::ostringstream text;
            text << "M3 -4A" << radius << ' ' << radius << " 0 " << flags << " 3 4";
            Outline outline;
            ASSERT_TRUE(parsePath(text.str(), outline));
            EXPECT_EQ(outline.current().x, 3);
            EXPECT_EQ(outline.current().y, 4);
            const bool large = flags[0] == '1';
            const bool increasing = flags[2] == '1';
            const double centre = radius < 4 ? 3 : large == increasing ? 6 : 0;
            // The outline bulges toward the side that its direction says.
            Box ends;
            for (const Outline::Segment& segment : outline.segments()) {
                const Point p = segment.points[segment.verb == Outline::Curve ? 2 : 0];
                ends.include(p);
                EXPECT_NEAR(std::hypot(p.x - centre, p.y), radius < 4 ? 4 : 5, 1e-6) << text.str();
            }
            if (large || radius < 4) {
                EXPECT_GT(increasing ? ends.right - 3 : 3 - ends.left, 1) << text.str();
            }
        }
    }
}

TEST(SvgColour, EveryNotation)
{
    const uint32_t current = 0x80123456;
    const std::pair<const char*, uint32_t> cases[] = {
        {"#fA0", 0xFFFFAA00},
        {" #102030 ", 0xFF102030},
        {"#f0a8", 0x88FF00AA},
        {"#10203040", 0x40102030},
        {"rgb(1, 2,3)", 0xFF010203},
        {"rgb(300,-5, 7)", 0xFFFF0007},
        {"RGB( 100%, 0% ,50%)", 0xFFFF0080},
        {"rgb(1 2 3)", 0xFF010203},
        {"rgb(1 2 3 / 20%)", 0x33010203},
        {"rgba(1, 2, 3, 0.4)", 0x66010203},
        {"rgb(1.6 2.4 3)", 0xFF020203},
        {"hsl(120, 100%, 25%)", 0xFF008000},  // half as light as pure green
        {"hsl(240deg 100% 50%)", 0xFF0000FF}, // blue
        {"hsla(-60, 100%, 50%, 50%)", 0x80FF00FF},
        {"hsl(0.5turn 0% 20%)", 0xFF333333},
        {"hwb(0 20% 20%)", 0xFFCC3333}, // red from 20 % to 80 %
        {"hwb(90 60% 60%)", 0xFF808080},
        {"rgb(1 2 3", 0xFF010203}, // closed by the end
        {"rgb(none 2 3 / none)", 0x00000203},
        {"hsl(none 0% 20%)", 0xFF333333},
        // Greys: a light of (66/116)^3 is coded as 0.4663, one of 0.5^3 as 0.3886. Red and blue as
        // other spaces have them.
        {"lab(50% 0 0)", 0xFF777777},
        {"lch(50 0 120 / 20%)", 0x33777777},
        {"oklab(0.5 0 0)", 0xFF636363},
        {"oklch(50% 0% none)", 0xFF636363},
        {"lab(54.29% 80.805 69.891)", 0xFFFF0000},
        {"lch(54.29% 106.84 40.858deg)", 0xFFFF0000},
        {"oklab(0.452014 -0.032457 -0.311528)", 0xFF0000FF},
        {"oklch(62.7955% 0.257683 29.2339)", 0xFFFF0000},
        {"color(srgb 1 50% 0 / .2)", 0x33FF8000},
        {"color(srgb-linear 0.125 .125 12.5%)", 0xFF636363},
        {"color(display-p3 1 1 1)", 0xFFFFFFFF},
        {"color(display-p3 .4 .4 .4)", 0xFF666666},
        {"color(display-p3 0 1 0)", 0xFF00FF00}, // greener than that can be shown
        {"RebeccaPurple", 0xFF663399},
        {"transparent", 0},
        {"aliceblue", 0xFFF0F8FF},
        {"YellowGreen", 0xFF9ACD32},
        {"currentColor", current},
        {"#CD853F icc-color(acmecmyk, 0.11, 0.48)", 0xFFCD853F},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(findColour(text, current).value_or(1), expected) << text;
    for (const char* text :
         {"", "none", "#12", "#12345", "#12345g", "rgb(1,2)", "rgb(1 2", "rgb(none,2,3)",
          "rgb(1 2 3 / 4) 5", "lab(1 2)", "color(cmyk 1 2 3)", "color(1 2 3)", "no", "red blue",
          "rgb(1 2, 3)", "rgb(1, 2, 3 / 4)", "rgb(1 2 3 4)", "hsl(1 2)", "rgb(1,2,3,4,5)"})
        EXPECT_FALSE(findColour(text, current)) << text;
}

TEST(SvgTransform, ListsApplyFromRightToLeft)
{
    struct Case {
        const char* text;
        Point image; // of (10, 20)
    };
    const Case cases[] = {
        {"translate(5)", {15, 20}},
        {"scale(2) translate(5,-7)", {30, 26}},
        {"rotate(90)", {-20, 10}},
        {"rotate(-270, 10, 10) , translate(0 0)", {0, 10}},
        {"skewX(45)", {30, 20}},
        {"skewY(45)", {10, 30}},
        {"matrix(1 2 3 4 5 6)", {75, 106}},
        {"scale(0)", {0, 0}},
        {"translate(100000 0) matrix(1000 0 0 1000 0 0)", {110000, 20000}},
        {"scale(1000000) scale(.000001)", {10, 20}},
        {"", {10, 20}},
        {"none", {10, 20}},
        // As style sheets write them; the box is 50 by 30.
        {"translate(10%, 50%)", {15, 35}},
        {"translateX(1in) translateY(2px)", {106, 22}},
        {"rotate(0.25turn)", {-20, 10}},
        {"scaleX(3) scaleY(50%)", {30, 10}},
        {"skew(45deg)", {30, 20}},
        {"Translate3D(5px, 6px, 7px)rotateZ(90deg)", {-15, 16}},
        {"rotate3d(0, 0, -2, 90deg) scale3d(2, 3, 4)", {60, -20}},
        {"translate(5-7)", {15, 13}},
        {"translate(5 7), , scale(2)", {25, 47}},
    };
    const Viewport viewport;
    const LengthContext lengths{viewport};
    const Box box{1, 2, 51, 32};
    for (const Case& c : cases) {
        const std::optional<Affine> transform = parseTransform(c.text, lengths, box);
        ASSERT_TRUE(transform) << c.text;
        const Point p = transform->map({10, 20});
        EXPECT_NEAR(p.x, c.image.x, 1e-6) << c.text;
        EXPECT_NEAR(p.y, c.image.y, 1e-6) << c.text;
    }
    for (const char* text :
         {"scale()", "rotate(1 2)", "turn(5)", "scale(2", "matrix(1 2 3)", "7", "rotate(1cat)",
          "scale(2,,3)", "scale(,2)", "scale(2,)", "translate(1px 2px)", "scale(2), rotate(1deg)",
          "rotate3d(1, 0, 0, 9deg)", "SCALE(2)"})
        EXPECT_FALSE(parseTransform(text, lengths, box)) << text;
}

TEST(SvgLength, Units)
{
    const Viewport viewport{200, 50, 1000, 400, 20};
    const LengthContext context{viewport, 10};
    const std::pair<const char*, double> cases[] = {
        {"12", 12},      {"1in", 96},  {"72pt", 96},    {"25.4mm", 96}, {" 2.54cm", 96},
        {"1pc", 16},     {"3px", 3},   {"1.5em", 15},   {"2ex", 10},    {"50%", 100},
        {"-1e1", -10},   {"x", 7},     {"1e400", 1e30}, {"1e-400", 0},  {"101.6Q", 96},
        {"2ch", 10},     {"3vw", 30},  {"5vh", 20},     {"1vmin", 4},   {"1VMAX", 10},
        {"2rem", 40},    {"2rlh", 48}, {"2lh", 24},     {"2ic", 20},    {"2cap", 14},
        {"3vi", 30},     {"5vb", 20},  {"12abc", 7},    {"1 px", 7},    {"1px2", 7},
        {"calc(1px)", 7}};
    for (const auto& [text, expected] : cases)
        EXPECT_NEAR(parseLength(text, context, Axis::X, 7), expected, 1e-9) << text;
    EXPECT_NEAR(parseLength("50%", context, Axis::Y, 7), 25, 1e-9);
    EXPECT_NEAR(parseLength("10%", context, Axis::Diagonal, 7),
                std::sqrt((200 * 200 + 50 * 50) / 2.0) / 10, 1e-9);
}

TEST(SvgViewBox, FitsByPreserveAspectRatio)
{
    struct Case {
        const char* keyword;
        Point topLeft; // of the view box 0 0 100 50 in a viewport of 200 by 200
        Point scale;
    };
    const Case cases[] = {{"", {0, 50}, {2, 2}},
                          {"xMinYMin", {0, 0}, {2, 2}},
                          {"defer xMaxYMax meet", {0, 100}, {2, 2}},
                          {"xMidYMid slice", {-100, 0}, {4, 4}},
                          {"none", {0, 0}, {2, 4}}};
    for (const Case& c : cases) {
        const Affine fit = fitViewBox(c.keyword, *parseViewBox("0 0,100 50"), 200, 200);
        EXPECT_EQ(fit.e, c.topLeft.x) << c.keyword;
        EXPECT_EQ(fit.f, c.topLeft.y) << c.keyword;
        EXPECT_EQ(fit.a, c.scale.x) << c.keyword;
        EXPECT_EQ(fit.d, c.scale.y) << c.keyword;
    }
}

} // namespace
