// SPDX-License-Identifier: MIT
// Shapes and strokes beside what they stand for.
#include "tests/svg/Equivalents.h"

namespace {

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

TEST(SvgEquivalents, SingleTransforms)
{
    const std::string box = "<rect x='10' y='10' width='20' height='10' ";
    expectSameElements(
        {{box + "style='translate:5px'/>", "<rect x='15' y='10' width='20' height='10'/>"},
         {box + "style='translate:10% 5px'/>", "<rect x='14' y='15' width='20' height='10'/>"},
         {box + "style='translate:5px 6px 7px'/>", "<rect x='15' y='16' width='20' height='10'/>"},
         {box + "style='rotate:90deg;transform-origin:10px 10px'/>",
          "<rect y='10' width='10' height='20'/>"},
         {box + "style='rotate:z .25turn;transform-origin:10px 10px'/>",
          "<rect y='10' width='10' height='20'/>"},
         {box + "style='rotate:90deg 0 0 1;transform-origin:10px 10px'/>",
          "<rect y='10' width='10' height='20'/>"},
         {box + "style='scale:.5'/>", "<rect x='5' y='5' width='10' height='5'/>"},
         {box + "style='scale:50% 1'/>", "<rect x='5' y='10' width='10' height='10'/>"},
         {box + "style='scale:none;translate:none;rotate:none'/>", box + "/>"},
         // Moved last, turned before, and scaled before that; the transform comes first of all.
         {box + "style='transform:translate(10px);scale:.5;rotate:90deg;translate:30px'/>",
          "<rect x='20' y='10' width='5' height='10'/>"},
         // None of them is an attribute, and a turn needs a unit.
         {box + "rotate='90deg' scale='2' translate='9px'/>", box + "/>"},
         {box + "style='rotate:90'/>", box + "/>"}});
}

TEST(SvgEquivalents, ArcsOfStraightLinesAreMiters)
{
    const std::string corner = "<path d='M4 30L20 10L36 30' fill='none' stroke='red' "
                               "stroke-width='6' stroke-miterlimit='1.2' stroke-linejoin='";
    expectSameElements({{corner + "arcs'/>", corner + "miter-clip'/>"}});
}

TEST(SvgEquivalents, NumbersOfAnySizeKeepTheirValue)
{
    expectSameElements(
        {{"<rect x='2e12' width='9' height='9' transform='translate(-2e12)'/>",
          "<rect width='9' height='9'/>"},
         {"<g transform='scale(1e20)'><circle cx='2e-19' cy='2e-19' r='1e-19'/></g>",
          "<circle cx='20' cy='20' r='10'/>"},
         {"<path d='M-1e20 5H1e20V9H-1e20z'/>", "<rect y='5' width='40' height='4'/>"},
         {"<path d='M-1e300 5H1e300V9H-1e300z'/>", "<rect y='5' width='40' height='4'/>"}});
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

} // namespace
