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
                        {turned + "transform-box:view-box;transform-origin:50% 50%'/>",
                         "<rect x='20' y='10' width='10' height='20'/>"}});
}

TEST(SvgEquivalents, Viewports)
{
    expectSameElements({{"<svg viewBox='0 0 0 9' width='20' height='20'><circle r='9'/></svg>", ""},
                        {"<svg viewBox='0 0 9 -9' width='20' height='20'><circle r='9'/></svg>",
                         "<circle r='9'/>"},
                        {"<svg x='9' y='9' width='-9' height='20'><circle cx='9' r='9'/></svg>",
                         "<svg x='9' y='9' width='40' height='20'><circle cx='9' r='9'/></svg>"}});
}

} // namespace
