// SPDX-License-Identifier: MIT
// Values of paints and what they draw beside what they stand for.
#include "tests/svg/Equivalents.h"

namespace {

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

} // namespace
