// SPDX-License-Identifier: MIT
// What filters are applied to, what they start from, and what of them is not drawn.
#include "tests/svg/FilterScene.h"

using namespace KAVO::Svg;

namespace {

// --- Inputs, regions and units -------------------------------------------------------------------

// Full red in the columns and rows from first to last, and nothing elsewhere.
void expectSquare(const std::string& content, int first, int last)
{
    const Picture picture = drawn(document(content), kFilterSide, kFilterSide, 0);
    for (int y = 0; y < kFilterSide; ++y)
        for (int x = 0; x < kFilterSide; ++x) {
            const bool inside = x >= first && x <= last && y >= first && y <= last;
            ASSERT_EQ(picture.at(x, y), inside ? 0xFFFF0000 : 0)
                << "pixel " << x << ' ' << y << " of " << content;
        }
}

TEST(SvgFilters, RegionsAndSubregions)
{
    const std::string flood = "<feFlood flood-color='red'";
    const auto user = [](const std::string& primitives) {
        return "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>" +
               primitives +
               "</filter><rect x='10' y='10' width='10' height='10' fill='red' "
               "filter='url(#f)'/>";
    };
    const auto box = [](const std::string& attributes, const std::string& primitives) {
        return "<filter id='f' " + attributes + ">" + primitives +
               "</filter><rect x='10' y='10' width='10' height='10' filter='url(#f)'/>";
    };
    // A tenth of the bounding box on each side when nothing is said.
    expectSquare(box("", flood + "/>"), 9, 20);
    expectSquare(box("x='-.5' y='-.5' width='2' height='2'", flood + "/>"), 5, 24);
    expectSquare(box("x='0%' y='0%' width='100%' height='100%'", flood + "/>"), 10, 19);
    expectSquare(
        box("primitiveUnits='objectBoundingBox'", flood + " x='0' y='0' width='.5' height='50%'/>"),
        10, 14);
    expectSquare(box("", flood + " x='12' y='12' width='50' height='50'/>"), 12, 20);
    expectSquare(user(flood + " x='25%' y='25%' width='25%' height='25%'/>"), 10, 19);
    // A blur of nothing but its subregion; the tile fills the region; the merge spans its inputs.
    expectSquare(user("<feOffset dx='5' dy='5' x='12' y='12' width='20' height='20'/>"), 15, 24);
    expectSquare(user("<feOffset dx='-5' dy='-5' x='12' y='12' width='20' height='20'/>"), 12, 14);
    expectSquare(user(flood + " x='3' y='3' width='4' height='4'/><feTile/>"), 0, 39);
    expectSquare(user(flood + " x='4' y='4' width='6' height='6' result='a'/>" + flood +
                      " x='8' y='8' width='7' height='7'/><feMerge x='4' y='4' width='4' "
                      "height='4'><feMergeNode/><feMergeNode in='a'/></feMerge>"),
                 4, 7);
    // What a filter lacks it takes from the one that it refers to.
    expectSquare("<filter id='g' x='0' y='0' width='1' height='1'>" + flood + "/></filter>" +
                     box("href='#g' x='.5' y='.5' width='.5' height='.5'", ""),
                 15, 19);
    // Without primitives, and without a region: nothing.
    expectSquare(user(""), 1, 0);
    expectSquare(box("width='0'", flood + "/>"), 1, 0);
    expectSquare(box("height='-1'", flood + "/>"), 1, 0);
}

TEST(SvgFilters, InputsAreNamed)
{
    const auto user = [](const std::string& primitives) {
        return "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>" +
               primitives +
               "</filter><rect x='10' y='10' width='10' height='10' fill='red' "
               "filter='url(#f)'/>";
    };
    const std::string away = "<feOffset dx='90' result='away'/>";
    expectSquare(user(away + "<feOffset in='SourceGraphic'/>"), 10, 19);
    expectSquare(user("<feOffset dx='3' dy='3' result='a'/>" + away + "<feOffset in='a'/>"), 13,
                 22);
    expectSquare(user("<feOffset dx='3' dy='3'/><feOffset in='none of them'/>"), 13, 22);
    // Alpha alone is black: what is left of it is cut out of red.
    expectSquare(user("<feFlood flood-color='red'/><feComposite operator='in' "
                      "in2='SourceAlpha'/>"),
                 10, 19);
    // Twice the same name: the later one.
    expectSquare(user("<feOffset dx='2' dy='2' result='a'/><feOffset in='SourceGraphic' dx='4' "
                      "dy='4' result='a'/><feMerge><feMergeNode in='a'/></feMerge>"),
                 14, 23);
}

TEST(SvgFilters, ImagesOfElements)
{
    expectSquare("<defs><rect id='r' x='5' y='5' width='9' height='9' fill='red'/></defs><filter "
                 "id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'><feImage "
                 "href='#r'/></filter><circle r='1' filter='url(#f)'/>",
                 5, 13);
}

// Over all of the region, as the element would be painted.
TEST(SvgFilters, PaintsOfTheElement)
{
    for (const char* input : {"FillPaint", "StrokePaint"})
        expectSquare("<filter id='f' filterUnits='userSpaceOnUse' x='5' y='5' width='20' "
                     "height='20'><feMerge><feMergeNode in='" +
                         std::string(input) +
                         "'/></feMerge></filter><path d='M9 9h5v5' filter='url(#f)' fill='red' "
                         "stroke='red'/>",
                     5, 24);
}

TEST(SvgFilters, FunctionsFollowOneAnother)
{
    const auto red = [](const std::string& filter) {
        return "<rect x='10' y='10' width='10' height='10' fill='red' filter='" + filter + "'/>";
    };
    expectSquare(red("none"), 10, 19);
    expectSquare(red("blur(0)"), 10, 19);
    expectSquare(red("invert() invert(100%)"), 10, 19);
    expectSquare(red("brightness(100%) contrast(1) saturate(1) sepia(0) opacity(2) "
                     "hue-rotate(1turn) grayscale(0)"),
                 10, 19);
    expectSquare("<filter id='f' x='0' y='0' width='2' height='2'><feOffset dx='3' "
                 "dy='3'/></filter>" +
                     red("url(#f) url(\"#f\")"),
                 16, 25);
    // Hand-worked: 0xff * 0.5; 0xff - 0x40; 0x80 * 1.5 - 0.25 of the whole, and so on.
    const struct {
        const char* fill;
        const char* filter;
        uint32_t expected;
    } cases[] = {
        {"#ff8040", "brightness(50%)", 0xFF804020},     {"#ff8040", "invert(1)", 0xFF007FBF},
        {"#ff8040", "contrast(1.5)", 0xFFFF8020},       {"#ff8040", "opacity(.4)", 0x66663319},
        {"#ff8040", "grayscale()", 0xFF969696},         {"#ffffff", "sepia()", 0xFFFFFFEF},
        {"#0000ff", "drop-shadow(0 0 red)", 0xFF0000FF}};
    for (const auto& c : cases) {
        const Picture picture =
            drawn(document("<rect width='40' height='40' fill='" + std::string(c.fill) +
                           "' style='filter:" + c.filter + "'/>"),
                  kFilterSide, kFilterSide, 0);
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(picture.at(20, 20) >> shift & 255, c.expected >> shift & 255, 1)
                << std::hex << picture.at(20, 20) << ' ' << c.filter;
    }
    for (const char* shadow :
         {"drop-shadow(20px 0 lime)", "drop-shadow(lime 20px 0 0)", "drop-shadow(20 0)"})
        EXPECT_EQ(
            drawn(document("<g color='lime'>" + red(shadow) + "</g>"), kFilterSide, kFilterSide)
                .at(35, 15),
            0xFF00FF00)
            << shadow;
}

// --- What a filter is part of --------------------------------------------------------------------

TEST(SvgFilters, ClipsAndMasksAndOpacitiesComeAfter)
{
    const std::string flood = "<filter id='f' x='-1' y='-1' width='3' height='3'><feFlood "
                              "flood-color='red'/></filter>";
    const std::string rect = "<rect x='10' y='10' width='10' height='10' filter='url(#f)' ";
    expectSquare(flood + "<clipPath id='c'><rect x='5' y='5' width='20' height='20'/></clipPath>" +
                     rect + "clip-path='url(#c)'/>",
                 5, 24);
    expectSquare(flood +
                     "<mask id='m' maskUnits='userSpaceOnUse' width='40' height='40'><rect "
                     "x='3' y='3' width='9' height='9' fill='white'/></mask>" +
                     rect + "mask='url(#m)'/>",
                 3, 11);
    const Picture faint =
        drawn(document(flood + rect + "opacity='.4'/>"), kFilterSide, kFilterSide, 0);
    EXPECT_NEAR(faint.at(2, 2) >> 24, 102, 1);
    EXPECT_NEAR(faint.at(15, 15) >> 24, 102, 1);
    const Picture hidden =
        drawn(document(flood + "<g opacity='.5'><g opacity='.5'>" + rect + "/></g></g>"),
              kFilterSide, kFilterSide, 0);
    EXPECT_NEAR(hidden.at(15, 15) >> 24, 64, 1);
}

TEST(SvgFilters, ScaleAndTurnWithTheElement)
{
    const auto blur = [](const std::string& transform, const std::string& deviation) {
        return document("<filter id='f' filterUnits='userSpaceOnUse' x='-99' y='-99' width='300' "
                        "height='300'><feGaussianBlur stdDeviation='" +
                        deviation + "'/></filter><g transform='" + transform +
                        "'><g filter='url(#f)'>" + kScene + "</g></g>");
    };
    const auto expectLike = [](const std::string& svg, const std::string& plain,
                               const Model& model) {
        expectNear(svg, FilterModel::converted(
                            model(FilterModel::converted(
                                Image(drawn(plain, kFilterSide, kFilterSide, 0)), true)),
                            false));
    };
    const auto plain = [](const std::string& transform) {
        return document("<g transform='" + transform + "'>" + kScene + "</g>");
    };
    const auto by = [](double x, double y) -> Model {
        return [=](const Image& image) { return FilterModel::blurred(image, x, y); };
    };
    // What lies inside stays away from the edges, so that nothing outside the picture is missed.
    expectLike(blur("translate(10 10) scale(.5)", "3"), plain("translate(10 10) scale(.5)"),
               by(1.5, 1.5));
    expectLike(blur("translate(10 0) scale(.5 1)", "2 3"), plain("translate(10 0) scale(.5 1)"),
               by(1, 3));
    expectLike(blur("translate(40 0) rotate(90)", "1 2.5"), plain("translate(40 0) rotate(90)"),
               by(2.5, 1));
    expectLike(blur("rotate(30 20 20)", "2"), plain("rotate(30 20 20)"), by(2, 2));
    // An offset turns, too.
    expectSquare("<filter id='f' x='-2' y='-2' width='5' height='5'><feOffset dx='4' "
                 "dy='-6'/></filter><rect x='10' y='10' width='10' height='10' fill='red' "
                 "transform='rotate(90 15 15) translate(0 2)' filter='url(#f)'/>",
                 14, 23);
}

// What lies outside of the picture reaches into it, whatever part of the drawing is asked for.
TEST(SvgFilters, APartIsThatPartOfTheWhole)
{
    const std::string svg =
        filtered("<feGaussianBlur stdDeviation='3'/><feOffset dx='7' dy='-4'/><feMorphology "
                 "radius='1'/><feMerge><feMergeNode/><feMergeNode in='SourceGraphic'/></feMerge>");
    MMSvgDocument whole;
    ASSERT_TRUE(whole.loadBytes(svg));
    const Picture expected = drawn(whole, kFilterSide, kFilterSide, 0);
    constexpr int kPart = 9;
    for (const int left : {0, 11, 25})
        for (const int top : {3, 16, 31}) {
            Picture part(kPart, kPart, 0);
            ASSERT_TRUE(whole.render({kPart, kPart, kPart * 4, 0, part.pixels.data(), 0},
                                     {double(-left), double(-top), kFilterSide, kFilterSide}));
            for (int y = 0; y < kPart; ++y)
                for (int x = 0; x < kPart; ++x)
                    ASSERT_EQ(part.at(x, y), expected.at(left + x, top + y))
                        << x << ' ' << y << " of the part at " << left << ' ' << top;
        }
}

TEST(SvgFilters, GroupsMayHoldFiltersOfTheirOwn)
{
    expectSquare("<filter id='f' x='-2' y='-2' width='9' height='9'><feOffset dx='3' "
                 "dy='3'/></filter><g filter='url(#f)'><g filter='url(#f)'><rect x='5' y='5' "
                 "width='10' height='10' fill='red' filter='url(#f)'/></g></g>",
                 14, 23);
}

// --- What is not drawn ---------------------------------------------------------------------------

TEST(SvgFilters, WhatIsNotDrawnIsNamed)
{
    const std::pair<std::string, std::string> cases[] = {
        {"<feNothing/>", "<feNothing>"},
        {"<feOffset in='BackgroundAlpha'/>", "filter input BackgroundAlpha"},
        {"<feDisplacementMap scale='1e6'/>",
         "<feDisplacementMap> of a larger scale than the limit"},
        {"<feMerge><feMergeNode in='BackgroundImage'/></feMerge>", "filter input BackgroundImage"},
        {"<feGaussianBlur stdDeviation='2' edgeMode='wrap'/>",
         "<feGaussianBlur> with an edgeMode"}};
    for (const auto& [primitive, what] : cases) {
        MMSvgDocument svg;
        ASSERT_TRUE(svg.loadBytes(filtered("<feFlood/>" + primitive)));
        const Picture picture = drawn(svg, kFilterSide, kFilterSide, 0);
        EXPECT_TRUE(lacks(svg, what)) << what;
        EXPECT_EQ(svg.shortcomings().size(), 1u) << what;
        EXPECT_EQ(picture.at(8, 8), 0xFFC84010) << what; // drawn without the filter
    }
    for (const auto& [primitive, what] :
         {std::pair{"<feOffset><set attributeName='dx' to='9'/></feOffset>", "animation"},
          {"<feGaussianBlur stdDeviation='501' result='b'/><feOffset in='SourceGraphic'/><feMerge>"
           "<feMergeNode in='b'/><feMergeNode in='SourceGraphic'/></feMerge>",
           "<feGaussianBlur> of a larger radius than the limit"},
          {"<feConvolveMatrix order='1' kernelMatrix='1' kernelUnitLength='2'/>",
           "<feConvolveMatrix> with a kernelUnitLength"}}) {
        MMSvgDocument svg;
        ASSERT_TRUE(svg.loadBytes(filtered(primitive)));
        EXPECT_EQ(drawn(svg, kFilterSide, kFilterSide, 0).at(8, 8), 0xFFC84010)
            << what; // all the same
        EXPECT_TRUE(lacks(svg, what)) << what;
    }
    MMSvgDocument image;
    ASSERT_TRUE(image.loadBytes(filtered("<feImage href='#none'/>")));
    EXPECT_EQ(drawn(image, kFilterSide, kFilterSide, 0).at(8, 8), 0u);
    EXPECT_TRUE(lacks(image, "filter image of nothing that is there"));
    for (const char* value :
         {"url(#none)", "url(other.svg#f)", "blur(", "blur(-1)", "glow(3)", "blur(1) 7"}) {
        MMSvgDocument svg;
        ASSERT_TRUE(svg.loadBytes(document("<rect width='40' height='40' fill='red' filter='" +
                                           std::string(value) + "'/>")));
        EXPECT_EQ(drawn(svg, kFilterSide, kFilterSide, 0).at(9, 9), 0xFFFF0000) << value;
        EXPECT_EQ(svg.shortcomings().size(), 1u) << value;
    }
}

// Each ends at once, with a message where something is left out.
TEST(SvgFilters, HostileValues)
{
    const auto draws = [](const std::string& svg) {
        MMSvgDocument drawing;
        EXPECT_TRUE(drawing.loadBytes(svg)) << svg.substr(0, 200);
        drawn(drawing, kFilterSide, kFilterSide, 0);
        drawing.elementAt({0, 0, kFilterSide, kFilterSide}, 9, 9);
        return drawing.shortcomings().size();
    };
    for (const char* number : {"NaN", "inf", "-1", "1e9", "-1e9", "1e400", "1e-300", "", "%"}) {
        const std::string n = number;
        for (const std::string& primitive :
             {"<feGaussianBlur stdDeviation='" + n + "'/>", "<feOffset dx='" + n + "' dy='3'/>",
              "<feMorphology operator='dilate' radius='" + n + "'/>",
              "<feFlood x='" + n + "' width='" + n + "'/><feTile/>",
              "<feColorMatrix type='saturate' values='" + n + "'/>",
              "<feColorMatrix type='hueRotate' values='" + n + "'/>",
              "<feComposite operator='arithmetic' in2='SourceAlpha' k1='" + n + "' k4='" + n +
                  "'/>",
              "<feComponentTransfer><feFuncR type='gamma' exponent='" + n +
                  "'/><feFuncG "
                  "type='table' tableValues='" +
                  n + " 1'/></feComponentTransfer>",
              "<feConvolveMatrix order='" + n + "' kernelMatrix='" + n + "'/>",
              "<feConvolveMatrix kernelMatrix='1 1 1 1 1 1 1 1 " + n + "' divisor='" + n +
                  "' bias='" + n + "' targetX='" + n + "'/>",
              "<feDisplacementMap scale='" + n + "'/>",
              "<feTurbulence baseFrequency='" + n + "' numOctaves='" + n + "' seed='" + n +
                  "' stitchTiles='stitch'/>",
              "<feDiffuseLighting surfaceScale='" + n + "' diffuseConstant='" + n +
                  "'><feSpotLight x='" + n + "' z='" + n + "' specularExponent='" + n +
                  "' limitingConeAngle='" + n + "'/></feDiffuseLighting>",
              "<feSpecularLighting specularExponent='" + n + "'><feDistantLight azimuth='" + n +
                  "' elevation='" + n + "'/></feSpecularLighting>",
              "<feDropShadow dx='" + n + "' stdDeviation='1 " + n + "'/>"}) {
            draws(filtered(primitive));
            draws(document("<filter id='f' x='" + n + "' y='" + n + "' width='" + n +
                           "' height='9'>" + primitive + "</filter><g filter='url(#f)'>" + kScene +
                           "</g>"));
            draws(document("<filter id='f'>" + primitive + "</filter><g transform='scale(1e6 " + n +
                           ")'><rect width='1' height='1' filter='url(#f)'/></g>"));
        }
        draws(document("<rect width='9' height='9' filter='blur(" + n + ") drop-shadow(" + n +
                       " 1 " + n + ")'/>"));
    }

    std::string many;
    for (int i = 0; i < 5000; ++i)
        many += "<feGaussianBlur stdDeviation='9'/>";
    EXPECT_EQ(draws(filtered(many)), 1u);

    std::string nested = "<filter id='f'><feGaussianBlur stdDeviation='30'/></filter>";
    for (int i = 0; i < 120; ++i)
        nested += "<g filter='url(#f)'>";
    nested += kScene;
    for (int i = 0; i < 120; ++i)
        nested += "</g>";
    EXPECT_EQ(draws(document(nested)), 1u);

    // An image of the element itself, and two of each other.
    EXPECT_EQ(draws(document("<filter id='f'><feImage href='#r'/></filter><rect id='r' width='9' "
                             "height='9' filter='url(#f)'/>")),
              1u);
    EXPECT_EQ(draws(document("<filter id='f'><feImage href='#s'/></filter><filter id='g'><feImage "
                             "href='#r'/></filter><rect id='r' width='9' height='9' "
                             "filter='url(#f)'/><rect id='s' width='9' height='9' "
                             "filter='url(#g)'/>")),
              1u);
}

} // namespace
