// SPDX-License-Identifier: MIT
// Text that is stroked, against shapes and against the bitmaps of its glyphs.
#include "graphics2d/convenience/MMText.h"
#include "tests/svg/Drawing.h"

#include <cmath>
#include <sstream>

using namespace KAVO::Svg;

namespace {

constexpr int kSide = 100;

class SvgTextOutlines : public testing::Test {
protected:
    void SetUp() override
    {
        if (*LATIN_FONT == '\0') GTEST_SKIP() << "no font";
#ifndef MM2D_WITH_FREETYPE
        GTEST_SKIP() << "no FreeType";
#endif
        ASSERT_TRUE(KAVO::Graphics2D::setFontFile(LATIN_FONT));
    }
    void TearDown() override
    {
        KAVO::Graphics2D::setFontFile(nullptr);
    }
};

std::string svg(const std::string& elements)
{
    return "<svg width='100' height='100'>" + elements + "</svg>";
}

// The letter I of the font at 51.2 pixels an em, 40 of its units a pixel, with its corner at the
// baseline so far from the left, leaning by so much for a unit upwards.
struct Stem {
    double left;
    double right;
    double height;
    double lean;
    double shift; // pixels

    std::string path() const
    {
        std::ostringstream data;
        const double upper = height * lean;
        const auto point = [&](char verb, double x, double y) {
            data << verb << 20 + shift + x / 40 << ' ' << 60 - y / 40;
        };
        point('M', left + upper, height);
        point('L', right + upper, height);
        point('L', right, 0);
        point('L', left, 0);
        data << 'Z';
        return data.str();
    }
};

TEST_F(SvgTextOutlines, AreShapes)
{
    // The letter is 201 to 403 units wide, 1493 high, and 604 to the next one. Bold adds a tenth of
    // 2048 units, three quarters of that to the width and to the advance, the rest to the height.
    const Stem plain{201, 403, 1493, 0, 0};
    const Stem second{201, 403, 1493, 0, 15.1};
    const Stem spaced{201, 403, 1493, 0, 19.1};
    const Stem bold{201, 557, 1543, 0, 0};
    const Stem secondBold{201, 557, 1543, 0, 18.95};
    const Stem slanted{201, 403, 1493, 0.36397, 0};
    const struct {
        const char* font;
        const char* text;
        std::string path;
    } letters[] = {{"", "I", plain.path()},
                   {"", "II", plain.path() + second.path()},
                   {"letter-spacing='4'", "II", plain.path() + spaced.path()},
                   {"font-weight='bold'", "II", bold.path() + secondBold.path()},
                   {"font-style='italic'", "I", slanted.path()}};
    const char* const paints[] = {"fill='none' stroke='#00f'",
                                  "fill='red' stroke='#00f' stroke-width='3'",
                                  "fill='red' stroke='#00f' stroke-width='5' paint-order='stroke'",
                                  "fill='red' fill-opacity='.5' stroke='#000' stroke-opacity='.4' "
                                  "stroke-width='4' stroke-linejoin='round'",
                                  "fill='red' stroke='#000' stroke-width='4' opacity='.5'",
                                  "stroke='lime' stroke-width='2' stroke-dasharray='5 3' "
                                  "stroke-linecap='square'",
                                  "fill='none' stroke='url(#g)' stroke-width='4'",
                                  "fill='url(#g)' stroke='url(#p)' stroke-width='4'"};
    const std::string servers =
        "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='20' x2='50'>"
        "<stop stop-color='red'/><stop offset='1' stop-color='blue'/></linearGradient>"
        "<pattern id='p' width='4' height='4' patternUnits='userSpaceOnUse'>"
        "<rect width='4' height='2' fill='green'/></pattern>";
    for (const char* transform : {"scale(1)", "translate(20) scale(1.2 .8)", "rotate(-10)"})
        for (const auto& letter : letters)
            for (const char* paint : paints) {
                const std::string where = std::string("transform='") + transform + "' ";
                SCOPED_TRACE(where + letter.font + letter.text + paint);
                MMSvgDocument document;
                ASSERT_TRUE(document.loadBytes(svg(servers + "<text x='20' y='60' " +
                                                   "font-size='51.2' " + where + letter.font + " " +
                                                   paint + ">" + letter.text + "</text>")));
                const Picture text = drawn(document, kSide, kSide);
                EXPECT_TRUE(document.shortcomings().empty());
                const Picture shape =
                    drawn(svg(servers + "<path " + where + paint + " d='" + letter.path + "'/>"),
                          kSide, kSide);
                EXPECT_LE(worstDifference(text, shape), 3);
            }
}

struct Ink {
    double amount = 0; // black pixels
    double x = 0;      // its centre
    double y = 0;
};

Ink inkOf(const Picture& picture)
{
    Ink ink;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const double dark = (255 - (picture.at(x, y) & 255)) / 255.0;
            ink.amount += dark;
            ink.x += dark * x;
            ink.y += dark * y;
        }
    ink.x /= ink.amount;
    ink.y /= ink.amount;
    return ink;
}

// A stroke that is too faint for the pixels has the fill drawn by outlines.
TEST_F(SvgTextOutlines, CoverWhatBitmapsDo)
{
    const char* const kinds[] = {"",
                                 "font-weight='bold'",
                                 "font-style='italic'",
                                 "font-weight='800' font-style='oblique' letter-spacing='1'",
                                 "textLength='60' lengthAdjust='spacingAndGlyphs'",
                                 "rotate='10 -20'"};
    for (const char* transform :
         {"translate(0)", "rotate(30 50 50)", "translate(100) scale(-1 1)",
          "translate(20) skewX(-20)", "translate(5 -100) scale(1 3)", "rotate(90 50 50)"})
        for (const int size : {9, 14, 31})
            for (const char* kind : kinds) {
                std::ostringstream text;
                text << "<text x='20' y='50' font-size='" << size << "' transform='" << transform
                     << "' " << kind;
                const Ink bitmaps =
                    inkOf(drawn(svg(text.str() + ">Sag \u00ADm&amp;</text>"), kSide, kSide));
                const Ink outlines =
                    inkOf(drawn(svg(text.str() + " stroke='#000' stroke-opacity='.001'>"
                                                 "Sag \u00ADm&amp;</text>"),
                                kSide, kSide));
                EXPECT_GT(bitmaps.amount, 40) << text.str();
                EXPECT_NEAR(outlines.amount / bitmaps.amount, 1, 0.03) << text.str();
                EXPECT_NEAR(outlines.x, bitmaps.x, 0.5) << text.str(); // whole pixels for each
                EXPECT_NEAR(outlines.y, bitmaps.y, 0.5) << text.str();
            }
}

TEST_F(SvgTextOutlines, FollowPathsAndLinesAtTexts)
{
    // The same letters on a straight path, and a line that is stroked like them.
    const std::string paint = "font-size='20' fill='#fc0' stroke='#000' "
                              "stroke-width='2' text-decoration='underline'";
    const Picture along = drawn(svg("<text " + paint +
                                    "><textPath path='M10 50H90'>HI</textPath>"
                                    "</text>"),
                                kSide, kSide);
    const Picture plain = drawn(svg("<text x='10' y='50' " + paint + ">HI</text>"), kSide, kSide);
    // But for the edges between the pieces of the line.
    EXPECT_NEAR(inkOf(along).amount, inkOf(plain).amount, 12);
    EXPECT_EQ(plain.at(20, 52) & 0xFFFFFF, 0u) << "the line's upper edge";
}

TEST_F(SvgTextOutlines, ArePicked)
{
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes(svg("<text id='t' x='40' y='60' font-size='30' fill='none' "
                                       "stroke='#000' stroke-width='20'>I</text>")));
    const Placement place{0, 0, kSide, kSide};
    EXPECT_EQ(document.elementAt(place, 36, 45), "t") << "on the stroke, left of the cell";
    EXPECT_EQ(document.elementAt(place, 30, 45), "");
    EXPECT_EQ(document.elementAt(place, 44, 45), "t");
    drawn(document, kSide, kSide);
    EXPECT_NEAR(document.result().bounds.x0 / 65536.0, 40 + 30 * 201 / 2048.0 - 10, 1);
}

// A clip path takes the letters without their stroke.
TEST_F(SvgTextOutlines, ClipWithoutStrokes)
{
    const auto clipped = [](const char* stroke) {
        return drawn(svg("<clipPath id='c'><text x='10' y='60' font-size='40' " +
                         std::string(stroke) + ">Clip</text></clipPath>" +
                         "<rect width='100' height='100' clip-path='url(#c)'/>"),
                     kSide, kSide);
    };
    EXPECT_TRUE(clipped("").pixels == clipped("stroke='red' stroke-width='9'").pixels);
}

TEST_F(SvgTextOutlines, AreNamedWithoutAFont)
{
    KAVO::Graphics2D::setFontFile(DRAWINGS_FOLDER "/text.svg"); // no font
    MMSvgDocument document;
    ASSERT_TRUE(document.loadBytes(svg("\n<text y='50' stroke='red'>a</text>"
                                       "\n<text y='50' stroke='red'>a</text>")));
    drawn(document, kSide, kSide);
    int times = 0;
    for (const Shortcoming& s : document.shortcomings()) {
        if (s.what != "outline of text") continue;
        ++times;
        EXPECT_EQ(s.line, 2u);
        EXPECT_EQ(s.element, "text");
    }
    EXPECT_EQ(times, 1);
}

TEST_F(SvgTextOutlines, SurviveAnyNumbers)
{
    const std::string many(30000, 'g');
    const std::pair<const char*, std::string> cases[] = {
        {"font-size='1e30'", "a"},
        {"font-size='-3'", "a"},
        {"font-size='0'", "a"},
        {"font-size='1e-30'", "a"},
        {"stroke-width='1e300'", "a"},
        {"stroke-dasharray='1e-9'", "abc"},
        {"transform='scale(1 0)' font-style='italic'", "a"},
        {"transform='matrix(1e-200 0 0 1e-200 0 0)' font-style='italic'", "a"},
        {"transform='scale(1e9)' vector-effect='non-scaling-stroke'", "a"},
        {"x='1e300' dx='-1e300'", "a"},
        {"textLength='1e30' lengthAdjust='spacingAndGlyphs'", "aaa"},
        {"y='20' font-size='2'", many},
        {"y='20' letter-spacing='-.1'", many}};
    for (const auto& [attributes, letters] : cases) {
        MMSvgDocument document;
        ASSERT_TRUE(document.loadBytes(
            svg("<text stroke='red' " + std::string(attributes) + ">" + letters + "</text>")));
        drawn(document, kSide, kSide);
        document.elementAt({0, 0, kSide, kSide}, 50, 50);
        EXPECT_FALSE(lacks(document, "outline of text")) << attributes;
    }
}

} // namespace
