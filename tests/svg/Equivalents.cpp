// SPDX-License-Identifier: MIT
// Pairs of drawings that look the same: a feature beside what it stands for.
#include "tests/svg/Drawing.h"

namespace {

struct Pair {
    std::string feature;
    std::string plain;
};

void expectSame(const Pair& pair)
{
    constexpr int kSide = 40;
    const KAVO::Svg::Picture feature = drawn(pair.feature, kSide, kSide);
    const KAVO::Svg::Picture plain = drawn(pair.plain, kSide, kSide);
    EXPECT_TRUE(feature.pixels == plain.pixels) << pair.feature << "\nis not\n" << pair.plain;
}

// Inside a drawing of 40 by 40; an empty one must stay white.
void expectSameElements(std::initializer_list<Pair> pairs)
{
    for (const Pair& pair : pairs)
        expectSame({"<svg width='40' height='40'>" + pair.feature + "</svg>",
                    "<svg width='40' height='40'>" + pair.plain + "</svg>"});
}

TEST(SvgEquivalents, Namespaces)
{
    const std::string plain = "<svg width='40' height='40'><rect width='9' height='9'/></svg>";
    const std::string names = "xmlns:v='http://www.w3.org/2000/svg' "
                              "xmlns:l='http://www.w3.org/1999/xlink' width='40' height='40'";
    for (const std::string& feature :
         {"<v:svg " + names + "><v:rect width='9' height='9'/></v:svg>",
          "<v:svg " + names + "><v:g><v:g/></v:g><v:rect width='9' height='9'/></v:svg>",
          "<v:svg " + names + "><v:defs><v:rect id='r' width='9' height='9'/></v:defs>" +
              "<v:use l:href='#r'/></v:svg>",
          "<v:svg " + names + "><v:rect width='9' height='9'/><rect width='40' height='40'/>" +
              "<rect xmlns='http://elsewhere' width='40' height='40'/></v:svg>",
          "<v:svg " + names + "><rect xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>" +
              "</v:svg>"})
        expectSame({feature, plain});
}

TEST(SvgEquivalents, DocumentTypes)
{
    const std::string plain = "<svg width='40' height='40'><rect width='9' height='8'/></svg>";
    const auto feature = [](const std::string& subset, const std::string& elements) {
        return "<!DOCTYPE svg [" + subset + "]>\n<svg width='40' height='40'>" + elements +
               "</svg>";
    };
    expectSame({feature("<!ATTLIST rect width CDATA \"9\" rx CDATA #IMPLIED\n fill (red|blue) "
                        "'&#98;lack' height NMTOKEN #FIXED '8'><!ATTLIST g x CDATA #REQUIRED>",
                        "<rect/>"),
                plain});
    expectSame(
        {feature("<!ATTLIST rect width CDATA '30' height CDATA '8'>", "<rect width='9'/>"), plain});
    expectSame(
        {feature("<!ENTITY r \"&#60;rect width='9' height='&h;'/&#x3E;\"><!ENTITY h '&#56;'>",
                 "&r;"),
         plain});
}

TEST(SvgEquivalents, StyleSheets)
{
    const std::string rect = "<rect width='9' height='9' fill='red'/>";
    const std::string green = "<rect width='9' height='9' fill='green'/>";
    expectSameElements(
        {{"<rect width='9' height='9' style='/*;*/fill/**/:/*x*/green/*'/>", green},
         {"<style type=' TEXT/CSS; charset=utf-8'>rect{fill:green !IMPORTANT}</style>"
          "<rect width='9' height='9' style='fill:red'/>",
          green},
         {"<style>@MEDIA screen{rect{fill:green}} @import 'data:text/css,rect{fill:blue}';"
          "</style>" +
              rect,
          green},
         {"<style>@charset 'utf-8'; @import 'data:text/css,rect{fill:green}';</style>" + rect,
          green}});
}

TEST(SvgEquivalents, DrawingsAsImages)
{
    const auto image = [](const std::string& attributes, const std::string& drawing,
                          const std::string& scheme = "data:image/svg+xml,") {
        return "<image " + attributes + " href=\"" + scheme + drawing + "\"/>";
    };
    const std::string circle = "&lt;circle r='9'/>";
    // Without a size of its own a drawing takes that of the image; with one it shows no more.
    expectSameElements(
        {{image("width='20' height='30'", "&lt;svg>" + circle + "&lt;/svg>"), "<circle r='9'/>"},
         {image("width='6' height='30'", "&lt;svg>" + circle + "&lt;/svg>"),
          "<svg width='6' height='30'><circle r='9'/></svg>"},
         {image("width='10' height='20'", "&lt;svg width='5' height='5'>" + circle + "&lt;/svg>"),
          "<svg y='5' width='10' height='10'><circle r='18'/></svg>"},
         {image("width='-1' height='10'", "&lt;svg width='20' height='5'>" + circle + "&lt;/svg>"),
          "<svg width='40' height='10'><circle r='18'/></svg>"},
         {image("width='9' height='9'",
                "PHN2ZyB3aWR0aD0nNCcgaGVpZ2h0PSc0Jz48Y2lyY2xlIHI9JzQnLz48L3N2Zz4=",
                "DATA: image/svg+xml ; BASE64 , "),
          "<svg width='9' height='9'><circle r='9'/></svg>"}});
}

TEST(SvgEquivalents, TransformOriginsOfPaints)
{
    const std::string rect = "<rect width='40' height='40' fill='url(#p)'/>";
    const auto gradient = [](const std::string& attributes) {
        return "<linearGradient id='p' gradientUnits='userSpaceOnUse' x2='40' " + attributes +
               "><stop stop-color='red'/><stop offset='1' stop-color='blue'/></linearGradient>";
    };
    const auto pattern = [](const std::string& attributes) {
        return "<pattern id='p' patternUnits='userSpaceOnUse' width='8' height='8' " + attributes +
               "><rect width='4' height='3'/></pattern>";
    };
    expectSameElements(
        {{gradient("gradientTransform='scale(.5)' style='transform-origin:center'") + rect,
          gradient("gradientTransform='translate(10 10) scale(.5)'") + rect},
         {pattern("patternTransform='scale(.5)' transform-origin='10 50%'") + rect,
          pattern("patternTransform='translate(5 10) scale(.5)'") + rect}});
}

TEST(SvgEquivalents, BasicShapes)
{
    // Of a box of 20 by 10 at (10, 12), which with its stroke is one of 24 by 14 at (8, 10).
    const std::pair<const char*, const char*> shapes[] = {
        {"circle(4px at 3px 5px) fill-box", "<circle cx='13' cy='17' r='4'/>"},
        {"content-box CIRCLE()", "<circle cx='20' cy='17' r='5'/>"},
        {"circle(farthest-side at right 5px bottom 10px)", "<circle cx='27' cy='14' r='19'/>"},
        {"circle(9px at top left) view-box", "<circle r='9'/>"},
        {"ellipse(25% 50%)", "<ellipse cx='20' cy='17' rx='6' ry='7'/>"},
        {"ellipse(closest-side 3px at left)", ""},
        {"inset(1px 2px 3px)", "<rect x='10' y='11' width='20' height='10'/>"},
        {"inset(0 round 50%)", "<rect x='8' y='10' width='24' height='14' rx='12' ry='7'/>"},
        {"inset(0 round 24px / 14px)",
         "<rect x='8' y='10' width='24' height='14' rx='12' ry='7'/>"},
        {"inset(60%)", ""},
        {"rect(2px 12px auto 4px)", "<rect x='12' y='12' width='8' height='12'/>"},
        {"xywh(2px 3px 50% 50%)", "<rect x='10' y='13' width='12' height='7'/>"},
        {"polygon(0 0, 100% 0, 50% 100%)", "<path d='M8 10h24l-12 14z'/>"},
        {"polygon(evenodd, 0 0, 24px 0, 24px 14px, 0 14px, 0 0, 4px 4px, 9px 4px, 4px 9px, 4px "
         "4px)",
         "<path d='M8 10h24v14h-24zM12 14h5l-5 5z' clip-rule='evenodd'/>"},
        {"path('M1 2h9v9')", "<path d='M9 12h9v9'/>"},
        {"fill-box", "<rect x='10' y='12' width='20' height='10'/>"}};
    const auto cut = [](const std::string& clip, const std::string& parts) {
        return drawn("<svg width='40' height='40'>" + parts +
                         "<rect x='10' y='12' width='20' height='10' stroke='red' "
                         "stroke-width='4' clip-path=\"" +
                         clip + "\"/></svg>",
                     40, 40);
    };
    // The library has an operation of its own for ellipses.
    for (const auto& [shape, elements] : shapes)
        EXPECT_LE(worstDifference(
                      cut(shape, ""),
                      cut("url(#c)", "<clipPath id='c'>" + std::string(elements) + "</clipPath>")),
                  8)
            << shape;
    for (const char* wrong : {"circle(-1px)", "circle(1px 2px)", "inset()", "polygon(1px)",
                              "path(M0 0h9v9)", "circle() circle()", "view-box fill-box"})
        expectSameElements(
            {{"<rect width='9' height='9' style=\"clip-path:" + std::string(wrong) + "\"/>",
              "<rect width='9' height='9'/>"}});
}

TEST(SvgEquivalents, Visibility)
{
    expectSameElements(
        {{"<marker id='m'><circle r='9'/></marker><path d='M9 9H30' visibility='hidden' "
          "stroke='red' marker-start='url(#m)'/>",
          ""},
         {"<g visibility='hidden'><circle r='9'/><circle r='5' visibility='visible'/></g>",
          "<circle r='5'/>"},
         {"<g display='none'><circle r='9' display='inline'/></g>", ""}});
}

TEST(SvgEquivalents, InvalidValuesLeaveWhatIsInherited)
{
    const std::string line = "<path d='M5 35L20 9L35 35' fill='none' stroke='red' ";
    const auto inGroup = [&](const std::string& around, const std::string& own) {
        return "<g " + around + "><path d='M5 35L20 9L35 35' stroke='red' " + own + "/></g>";
    };
    for (const auto& [around, wrong] :
         {std::pair{"fill='lime'", "fill='url(#x) nothing'"},
          {"fill='lime'", "fill='url(#x) context-fill'"},
          {"stroke-dasharray='9 4'", "stroke-dasharray='5 -2'"},
          {"stroke-dasharray='9 4'", "stroke-dasharray='5, 2,'"},
          {"stroke-dasharray='9 4'", "stroke-dasharray='5 none'"},
          {"stroke-width='8' stroke-miterlimit='9'", "stroke-miterlimit='-1'"},
          {"stroke-width='8' paint-order='stroke'", "paint-order='fill fill'"},
          {"stroke-width='8' paint-order='stroke'", "paint-order='normal markers'"}})
        expectSameElements({{inGroup(around, wrong), inGroup(around, "")}});
    expectSameElements(
        {{line + "stroke-dasharray='5' pathLength='50px'/>", line + "stroke-dasharray='5'/>"},
         {"<marker id='m'><circle r='9'/></marker>" + line + "marker-mid='url(#m) none'/>",
          line + "/>"},
         {line + "mix-blend-mode='difference'/>", line + "/>"}});
}

TEST(SvgEquivalents, MiterLimitsBelowOneCutAllCorners)
{
    const std::string line =
        "<path d='M5 35L20 9L35 35' fill='none' stroke='red' stroke-width='8' ";
    expectSameElements({{line + "stroke-miterlimit='0'/>", line + "stroke-linejoin='bevel'/>"},
                        {line + "stroke-miterlimit='0.9'/>", line + "stroke-linejoin='bevel'/>"}});
}

TEST(SvgEquivalents, MitersEndAtTheirLimit)
{
    const std::string clipped = "stroke='red' fill='none' stroke-linejoin='miter-clip' ";
    const auto bent = [](const std::string& more) {
        return "<path d='M10 34L20 24L30 34' stroke-width='8' fill='none' stroke='red' " + more +
               "/>";
    };
    // A corner of a right angle: its miter is 1.41 widths long, its bevel 0.71.
    const std::string box = "<clipPath id='c'><rect y='19' width='40' height='40'/></clipPath>";
    expectSameElements(
        {// There and back: the miter has no end of its own.
         {"<path d='M5 20H25H10' stroke-width='10' stroke-miterlimit='2' " + clipped + "/>",
          "<rect x='5' y='15' width='30' height='10' fill='red'/>"},
         {"<path d='M5 20H25H10' stroke-width='10' stroke-miterlimit='2' stroke-opacity='.5' " +
              clipped + "/>",
          "<g opacity='.5'><rect x='5' y='15' width='30' height='10' fill='red'/>"
          "<rect x='9' y='16' width='3' height='3' fill='red'/></g>"},
         {"<path d='M10 20H50H20' stroke-width='10' vector-effect='non-scaling-stroke' "
          "transform='scale(.5 1)' stroke-miterlimit='2' " +
              clipped + "/>",
          "<rect x='5' y='15' width='30' height='10' fill='red'/>"},
         {bent("stroke-linejoin='miter-clip' stroke-miterlimit='1.42'"), bent("")},
         {bent("stroke-linejoin='miter-clip' stroke-miterlimit='.7'"),
          bent("stroke-linejoin='bevel'")}});
    // Where the edge of the stroke goes over into that of its corner they share a pixel.
    const auto picture = [](const std::string& elements) {
        return drawn("<svg width='40' height='40'>" + elements + "</svg>", 40, 40);
    };
    EXPECT_LE(
        worstDifference(picture(bent("stroke-linejoin='miter-clip' stroke-miterlimit='1.25'")),
                        picture(box + "<g clip-path='url(#c)'>" + bent("") + "</g>")),
        16);
}

TEST(SvgEquivalents, KeywordsAndFunctionsInAnyCase)
{
    const std::string server = "<linearGradient id='s'><stop stop-color='red'/></linearGradient>";
    const std::string bold = "<path d='M9 30V9H30' stroke='red' stroke-width='8' ";
    expectSameElements(
        {{"<rect width='9' height='9' display='NONE'/>", ""},
         {"<circle r='9' visibility='Hidden'/>", ""},
         {"<circle r='9' fill='None'/>", ""},
         {"<g fill='red'><circle r='9' fill='INHERIT'/></g>", "<circle r='9' fill='red'/>"},
         {bold + "stroke-linejoin='ROUND' paint-order='STROKE'/>",
          bold + "stroke-linejoin='round' paint-order='stroke'/>"},
         {server + "<circle r='9' fill='URL(#s)'/>", "<circle r='9' fill='red'/>"},
         {server + "<circle r='9' fill='url( \"#s\" '/>", "<circle r='9' fill='red'/>"}});
}

TEST(SvgEquivalents, GradientsInError)
{
    const auto painted = [](const std::string& gradient, const std::string& paint) {
        return "<linearGradient id='s' " + gradient +
               "><stop offset=' .5 ' stop-color='red'/>"
               "<stop offset='.5' stop-color='lime'/></linearGradient><radialGradient id='r' "
               "r='-1'>"
               "<stop stop-color='red'/><stop offset='1' stop-color='lime'/></radialGradient>"
               "<rect width='40' height='40' " +
               paint +
               "/><path d='M0 20H40' fill='none' "
               "stroke-width='9' stroke='" +
               (paint.empty() ? "none" : "url(#s) blue") + "'/>";
    };
    const std::string square = "<rect width='40' height='40' fill='";
    const std::string line = "<path d='M0 20H40' fill='none' stroke='blue' stroke-width='9'/>";
    expectSameElements(
        {// Boxes without height.
         {painted("", "fill='lime'"), square + "lime'/>" + line},
         // No way back from a transform.
         {painted("gradientTransform='scale(0 1)'", "fill='url(#s)'"), line},
         {painted("gradientTransform='scale(0 1)'", "fill='url(#s) red'"),
          square + "red'/>" + line},
         // A radius below nothing is none: the last colour is everywhere.
         {painted("", "fill='url(#r)'"), square + "lime'/>" + line},
         // Spaces around offsets.
         {painted("", "fill='url(#s)'"),
          "<rect width='20' height='40' fill='red'/><rect x='20' width='20' height='40' "
          "fill='lime'/>" +
              line},
         // Only patterns give what a pattern lacks.
         {"<linearGradient id='s'><stop/></linearGradient><pattern id='p' href='#s' width='1' "
          "height='1'/>" +
              square + "url(#p) red'/>",
          square + "red'/>"}});
}

TEST(SvgEquivalents, MarkersAreClippedAndFadedAsOne)
{
    const std::string path = "<path d='M20 20H30' marker-start='url(#m)'/>";
    expectSameElements(
        {{"<clipPath id='c'><rect width='4' height='9'/></clipPath><marker id='m' "
          "clip-path='url(#c)' markerWidth='9' markerHeight='9'><rect width='9' "
          "height='9'/></marker>" +
              path,
          "<rect x='20' y='20' width='4' height='9'/>"},
         {"<marker id='m' opacity='.5' markerWidth='9' markerHeight='9'><rect "
          "width='9' height='9'/>"
          "<rect width='9' height='5'/></marker>" +
              path,
          "<g opacity='.5'><rect x='20' y='20' width='9' height='9'/><path d='M20 20h9v9'/></g>"}});
}

TEST(SvgEquivalents, LinesFromFarAwayKeepTheirPlace)
{
    const auto picture = [](const std::string& path) {
        return drawn("<svg width='40' height='40'><path stroke='red' stroke-width='3' d='" + path +
                         "'/></svg>",
                     40, 40);
    };
    // Each beside one of nearer points on the same lines.
    for (const auto& [far, near] : {std::pair{"M-50000 8L50000 28", "M-500 17.9L500 18.1"},
                                    {"M9 9L1000009 500009V9", "M9 9L1009 509V9"},
                                    {"M9 9L4e8 8e8H0V30", "M9 9L509 1009H0V30"},
                                    {"M1000009 -999991L9 9V3e5", "M1009 -991L9 9V3000"}})
        EXPECT_LE(worstDifference(picture(far), picture(near)), 4) << far;
    expectSameElements({{"<svg width='9' height='9' overflow='inherit'><circle r='20'/></svg>",
                         "<circle r='20'/>"}});
}

TEST(SvgEquivalents, StyleSheetsSetPathData)
{
    const std::string plain = "<path d='M9 9H30V30z'/>";
    expectSameElements(
        {{"<path style='d: path(\"M9 9H30V30z\")'/>", plain},
         {"<style>path { d: PATH('M9 9H30V30z') }</style><path d='M0 0h5v5'/>", plain},
         {"<path d='M0 0h5v5' style='d: none'/>", ""},
         {"<path style='d: path(\"M9 9H30V30z\"); d: path(M0 0h5v5)'/>", plain},
         {"<path d='M9 9H30V30z' style='d: M0 0h5v5'/>", plain}});
}

TEST(SvgEquivalents, RootsGiveTheirFontSize)
{
    for (const char* root : {"font-size='5'", "style='font-size:5px'"})
        expectSame({"<svg width='40' height='40' " + std::string(root) +
                        "><g font-size='7'><rect width='4rem' height='2em'/></g></svg>",
                    "<svg width='40' height='40'><rect width='20' height='14'/></svg>"});
}

TEST(SvgEquivalents, ContextPaintsExtendOverWhatIsUsed)
{
    const std::string paint = "<linearGradient id='s'><stop stop-color='red'/><stop offset='.5' "
                              "stop-color='red'/><stop offset='.5' stop-color='blue'/>"
                              "</linearGradient>";
    const std::string parts = "<rect width='4' height='4' fill='context-fill'/>"
                              "<rect x='4' y='4' width='4' height='4' fill='context-fill'/>";
    const std::string plain = "<rect x='8' y='8' width='16' height='16' fill='red'/>"
                              "<rect x='24' y='24' width='16' height='16' fill='blue'/>";
    expectSameElements({{paint + "<defs><g id='u' transform='scale(4)'>" + parts +
                             "</g></defs><use href='#u' x='8' y='8' fill='url(#s)'/>",
                         plain},
                        {paint + "<symbol id='u' viewBox='0 0 8 8'>" + parts +
                             "</symbol><use href='#u' x='8' y='8' width='32' height='32' "
                             "fill='url(#s)'/>",
                         plain}});
}

TEST(SvgEquivalents, PathLengthsMeasureDashes)
{
    const std::string dashed = "<path fill='none' stroke='red' stroke-width='4' d='M0 20H40' ";
    const std::string plain = dashed + "stroke-dasharray='8 4' stroke-dashoffset='6'/>";
    expectSameElements(
        {{dashed + "pathLength='20' stroke-dasharray='4 2' stroke-dashoffset='3'/>", plain},
         {dashed + "pathLength='80' stroke-dasharray='16 8' stroke-dashoffset='12'/>", plain},
         {dashed + "pathLength='-1' stroke-dasharray='8 4' stroke-dashoffset='6'/>", plain},
         {dashed + "pathLength='20' transform='scale(.5)' vector-effect='non-scaling-stroke' "
                   "stroke-dasharray='4 2'/>",
          "<path fill='none' stroke='red' stroke-width='4' d='M0 10H20' stroke-dasharray='4 2'/>"},
         {"<rect width='30' height='20' stroke='red' pathLength='10' stroke-dasharray='1'/>",
          "<rect width='30' height='20' stroke='red' stroke-dasharray='10'/>"}});
}

TEST(SvgEquivalents, OtherDocuments)
{
    const std::string other = "data:image/svg+xml,%3Csvg xmlns=%22http://www.w3.org/2000/svg%22 "
                              "width=%2220%22 height=%2210%22%3E%3Cstyle%3Ecircle{stroke:blue}"
                              "%3C/style%3E%3Ccircle id=%22c%22 r=%229%22/%3E%3C/svg%3E";
    expectSameElements(
        {{"<style>circle{stroke:red}</style><use href='" + other + "#c' x='9' fill='lime'/>",
          "<circle cx='9' r='9' fill='lime' stroke='blue'/>"},
         {"<use href='" + other + "' y='9'/>",
          "<svg y='9' width='20' height='10'><circle r='9' stroke='blue'/></svg>"},
         {"<clipPath id='p'><use href='" + other +
              "#c'/></clipPath><rect width='40' height='40' "
              "clip-path='url(#p)'/>",
          "<clipPath id='p'><circle r='9'/></clipPath><rect width='40' height='40' "
          "clip-path='url(#p)'/>"}});
    KAVO::Svg::MMSvgDocument document;
    ASSERT_TRUE(
        document.loadBytes("<svg width='9' height='9'><use href='" + other + "#d'/></svg>"));
    drawn(document, 9, 9);
    EXPECT_EQ(document.shortcomings().size(), 1u);
}

// The root and the targets of uses are groups like others.
TEST(SvgEquivalents, ViewportsHaveLayers)
{
    const std::string two = "<rect x='5' y='5' width='20' height='20' fill='red'/>"
                            "<rect x='15' y='15' width='20' height='20'/>";
    const std::string parts =
        "<defs><clipPath id='c'><rect width='20' height='20'/></clipPath>"
        "<mask id='m'><rect width='20' height='20' fill='white'/></mask></defs>";
    for (const std::string layer : {"opacity='.5'", "clip-path='url(#c)'", "mask='url(#m)'",
                                    "opacity='.5' clip-path='url(#c)'"}) {
        const std::string plain = "<g " + layer + ">" + two + "</g>";
        expectSame({"<svg width='40' height='40' " + layer + ">" + parts + two + "</svg>",
                    "<svg width='40' height='40'>" + parts + plain + "</svg>"});
        expectSameElements(
            {{parts + "<defs><svg id='s' width='40' height='40' " + layer + ">" + two +
                  "</svg></defs><use href='#s'/>",
              parts + plain},
             {parts + "<symbol id='s'>" + two + "</symbol><use href='#s' " + layer + "/>",
              parts + plain},
             {parts + "<svg width='40' height='40' " + layer + ">" + two + "</svg>",
              parts + plain}});
    }
}

TEST(SvgEquivalents, TransformBoxes)
{
    const std::string turned = "<rect x='10' y='10' width='20' height='10' style='transform:"
                               "rotate(90deg);";
    const std::string aroundCorner = "<rect y='10' width='10' height='20'/>";
    expectSameElements({{turned + "transform-box:fill-box'/>", aroundCorner},
                        {turned + "transform-box:fill-box;transform-origin:0 0'/>", aroundCorner},
                        {turned + "transform-origin:10px 10px'/>", aroundCorner},
                        {turned + "transform-box:fill-box;transform-origin:right bottom'/>",
                         "<rect x='30' width='10' height='20'/>"},
                        {turned + "stroke:red;stroke-width:4;transform-box:stroke-box'/>",
                         "<rect x='-4' y='10' width='10' height='20' stroke='red' "
                         "stroke-width='4'/>"},
                        {turned + "transform-box:view-box;transform-origin:50% 50%'/>",
                         "<rect x='20' y='10' width='10' height='20'/>"}});
}

TEST(SvgEquivalents, UsedElements)
{
    const std::string parts =
        "<defs><rect id='r' width='10' height='10'/><svg id='v' x='4' "
        "width='20' height='20' viewBox='0 0 10 10'><rect width='5' "
        "height='5'/></svg></defs><symbol id='s' display='none' x='3' y='2'>"
        "<rect width='5' height='5'/></symbol><clipPath id='c'><circle r='9'/>"
        "</clipPath><clipPath id='b' clipPathUnits='objectBoundingBox'>"
        "<rect width='.5' height='.5'/></clipPath>";
    // What use elements move takes along clip paths, and boxes know of viewports.
    expectSameElements(
        {{parts + "<use href='#r' x='5' y='6' clip-path='url(#c)'/>",
          parts + "<g transform='translate(5 6)' clip-path='url(#c)'><use href='#r'/></g>"},
         {parts + "<use href='#s' x='4'/>", "<rect x='7' y='2' width='5' height='5'/>"},
         {parts + "<use href='#v' x='4' clip-path='url(#b)'/>",
          "<rect x='8' width='5' height='5'/>"},
         {parts + "<svg x='9' y='9' viewBox='0 0 20 20' clip-path='url(#b)'><rect width='9' "
                  "height='7'/></svg>",
          "<rect x='9' y='9' width='9' height='7'/>"},
         {"<switch><unknown/><rect width='9' height='9'/><circle r='20'/></switch>",
          "<rect width='9' height='9'/>"}});
}

TEST(SvgEquivalents, Viewports)
{
    expectSameElements(
        {{"<g><svg width='9' height='9' overflow='inherit'><circle r='20'/></svg></g>",
          "<circle r='20'/>"},
         {"<svg refX='9' width='9' height='9'><circle r='20'/></svg>",
          "<svg width='9' height='9'><circle r='20'/></svg>"},
         {"<svg viewBox='0 0 0 9' width='20' height='20'><circle r='9'/></svg>", ""},
         {"<svg viewBox='0 0 9 -9' width='20' height='20'><circle r='9'/></svg>",
          "<circle r='9'/>"},
         {"<svg x='9' y='9' width='-9' height='20'><circle cx='9' r='9'/></svg>",
          "<svg x='9' y='9' width='40' height='20'><circle cx='9' r='9'/></svg>"}});
}

} // namespace
