// SPDX-License-Identifier: MIT
// Files, style sheets, viewports and used elements beside what they stand for.
#include "tests/svg/Equivalents.h"

namespace {

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

TEST(SvgEquivalents, ImagesOverflowTheirBoxes)
{
    // A black pixel with a white one on its right.
    const std::string image = "<image href='data:;base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAABAQAAAADcWU"
                              "InAAAACklEQVR4nGNwAAAAQgBBKTf07wAAAABJRU5ErkJggg==' "
                              "image-rendering='pixelated' height='16' ";
    const std::string sliced = image + "width='8' x='4' preserveAspectRatio='xMinYMin slice' ";
    expectSameElements({{sliced + "/>", "<rect x='4' width='8' height='16'/>"},
                        {sliced + "overflow='visible'/>", "<rect x='4' width='16' height='16'/>"},
                        {image + "width='8' x='-16' preserveAspectRatio='xMinYMin slice' "
                                 "overflow='visible' transform='translate(10)'/>",
                         "<rect width='10' height='16'/>"}});
}

TEST(SvgEquivalents, StyleElementsOfWebPages)
{
    const std::string page = "http://www.w3.org/1999/xhtml";
    expectSameElements(
        {{"<style xmlns='" + page + "'>rect{fill:red}</style><rect width='9' height='9'/>",
          "<rect width='9' height='9' fill='red'/>"},
         {"<h:style xmlns:h='" + page + "'>rect{fill:red}</h:style><rect width='9' height='9'/>",
          "<rect width='9' height='9' fill='red'/>"},
         {"<style xmlns='of:another'>rect{fill:red}</style><rect width='9' height='9'/>",
          "<rect width='9' height='9'/>"}});
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

TEST(SvgEquivalents, RootsGiveTheirFontSize)
{
    for (const char* root : {"font-size='5'", "style='font-size:5px'"})
        expectSame({"<svg width='40' height='40' " + std::string(root) +
                        "><g font-size='7'><rect width='4rem' height='2em'/></g></svg>",
                    "<svg width='40' height='40'><rect width='20' height='14'/></svg>"});
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
         {"<svg width='30' height='30' clip='rect(5,20,10 4)'><circle r='40'/></svg>",
          "<rect x='4' y='5' width='16' height='5'/>"},
         {"<svg x='2' width='30' height='30' style='clip:rect(auto, 20px, auto, auto)'>"
          "<circle r='60'/></svg>",
          "<rect x='2' width='20' height='30'/>"},
         {"<svg width='30' height='30' clip='rect(5 20)'><circle r='60'/></svg>",
          "<rect width='30' height='30'/>"},
         {"<svg width='30' height='30' overflow='visible' clip='rect(5 9 9 5)'><circle "
          "r='60'/></svg>",
          "<circle r='60'/>"},
         {"<symbol id='s' clip='rect(5 20 10 4)'><circle r='60'/></symbol><use href='#s'/>",
          "<rect x='4' y='5' width='16' height='5'/>"},
         {"<pattern id='p' width='8' height='8' patternUnits='userSpaceOnUse' clip='rect(0 4 8 2)'>"
          "<rect width='8' height='8'/></pattern><rect width='16' height='8' fill='url(#p)'/>",
          "<path d='M2 0h2v8h-2zM10 0h2v8h-2z'/>"},
         {"<rect width='9' height='9' clip='rect(1 2 2 1)'/>", "<rect width='9' height='9'/>"},
         {"<svg viewBox='0 0 0 9' width='20' height='20'><circle r='9'/></svg>", ""},
         {"<svg viewBox='0 0 9 -9' width='20' height='20'><circle r='9'/></svg>",
          "<circle r='9'/>"},
         {"<svg x='9' y='9' width='-9' height='20'><circle cx='9' r='9'/></svg>",
          "<svg x='9' y='9' width='40' height='20'><circle cx='9' r='9'/></svg>"}});
}

} // namespace
