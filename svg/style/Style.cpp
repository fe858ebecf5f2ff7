// SPDX-License-Identifier: MIT
#include "svg/style/Style.h"

#include "graphics2d/MMContext2D.h"
#include "svg/style/Validity.h"
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <numeric>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// Sets value to what the keyword stands for, and leaves it for any other text.
template <class T>
struct Keyword {
    std::string_view name;
    T value;
};

template <class T, size_t N>
void setKeyword(T& value, std::string_view text, const Keyword<T> (&keywords)[N])
{
    for (const Keyword<T>& keyword : keywords) {
        if (equalsIgnoringCase(keyword.name, text)) value = keyword.value;
    }
}

// After an error what was inherited stays.
void setPaint(PaintValue& paint, std::string_view text, uint32_t currentColour)
{
    if (text.empty() || text == "inherit") return;
    paint = findPaint(text, currentColour).value_or(paint);
}

void setDashes(Style& style, std::string_view text, const LengthContext& lengths)
{
    if (text.empty() || text == "inherit") return;
    std::vector<double> dashes;
    if (text != "none") {
        std::optional<std::vector<double>> list = parseLengths(text, lengths, Axis::Diagonal);
        const auto isNegative = [](double dash) { return dash < 0; };
        const bool isError =
            !list || text.back() == ',' || std::any_of(list->begin(), list->end(), isNegative);
        if (isError) return;
        dashes = std::move(*list);
    }
    const bool dashed = std::accumulate(dashes.begin(), dashes.end(), 0.0) > 0;
    style.dashes =
        dashed ? std::make_shared<const std::vector<double>>(std::move(dashes)) : nullptr;
}

void setFontWeight(int& weight, std::string_view text)
{
    const int inherited = weight;
    const Keyword<int> keywords[] = {{"normal", 400},
                                     {"bold", 700},
                                     {"bolder", inherited < 400   ? 400
                                                : inherited < 600 ? 700
                                                                  : 900},
                                     {"lighter", inherited < 600   ? 100
                                                 : inherited < 800 ? 400
                                                                   : 700}};
    setKeyword(weight, text, keywords);
    const std::vector<double> numbers = parseNumbers(text);
    if (!numbers.empty()) weight = static_cast<int>(std::clamp(numbers[0], 100.0, 900.0));
}

void setFontSize(double& size, std::string_view text, const Viewport& viewport)
{
    static constexpr Keyword<double> kSizes[] = {{"xx-small", 9}, {"x-small", 10}, {"small", 13},
                                                 {"medium", 16},  {"large", 18},   {"x-large", 24},
                                                 {"xx-large", 32}};
    const double inherited = size;
    setKeyword(size, text, kSizes);
    const Keyword<double> relative[] = {{"larger", inherited * 1.2}, {"smaller", inherited / 1.2}};
    setKeyword(size, text, relative);
    // Percentages are of the inherited size.
    const Viewport parent = viewport.sized(inherited, inherited);
    const double length = parseLength(text, {parent, inherited}, Axis::X, size);
    if (length >= 0) size = length;
}

// A list of kinds of lines, painted as the style is by now, or in a colour of their own. Those of
// elements around stay.
void setDecoration(Style& style, std::string_view text)
{
    Style line = style;
    forWords(text, [&](std::string_view word) {
        if (const auto colour = findColour(word, style.colour)) {
            line.fill = {PaintValue::Colour, *colour, false, false, {}};
            line.stroke = {};
        }
    });
    for (const auto& [kind, target] : {std::pair{"underline", &Style::underline},
                                       {"overline", &Style::overline},
                                       {"line-through", &Style::lineThrough}}) {
        if (text.find(kind) != text.npos) style.*target = std::make_shared<const Style>(line);
    }
}

// A keyword, a length, or a share of the line's height, which is the parent's font size here.
double shiftOfBaseline(std::string_view text, const LengthContext& lengths, double parentSize)
{
    double shift = 0;
    const Keyword<double> keywords[] = {{"super", 0.4 * parentSize}, {"sub", -0.2 * parentSize}};
    setKeyword(shift, text, keywords);
    const Viewport line = lengths.viewport.sized(parentSize, parentSize);
    return parseLength(text, {line, lengths.fontSize}, Axis::Y, shift);
}

// The steps named first come first, the others in their usual order. One that is named twice is an
// error, as is normal beside another.
void setPaintOrder(Style& style, std::string_view text)
{
    static constexpr Keyword<PaintStep> kSteps[] = {
        {"fill", PaintStep::Fill}, {"stroke", PaintStep::Stroke}, {"markers", PaintStep::Markers}};
    if (text.empty() || text == "inherit") return;
    std::vector<PaintStep> order;
    const auto isIn = [&](PaintStep step) {
        return std::find(order.begin(), order.end(), step) != order.end();
    };
    TextScanner scanner(equalsIgnoringCase(text, "normal") ? std::string_view() : text);
    for (scanner.skipSpace(); !scanner.atEnd(); scanner.skipSpace()) {
        const std::string_view word = scanner.word();
        const auto* found = std::find_if(std::begin(kSteps), std::end(kSteps), [&](auto& step) {
            return equalsIgnoringCase(step.name, word);
        });
        if (found == std::end(kSteps) || isIn(found->value)) return;
        order.push_back(found->value);
    }
    for (const auto& step : kSteps) {
        if (!isIn(step.value)) order.push_back(step.value);
    }
    std::copy(order.begin(), order.end(), style.paintOrder);
}

void setMarker(std::string_view& marker, std::string_view text)
{
    std::string_view rest;
    const std::string_view id = referenceIn(text, &rest);
    const bool isReference = !id.empty() && rest.empty();
    if (isReference || text == "none") marker = id;
}

} // namespace

double parseOpacity(std::string_view text, double fallback)
{
    TextScanner scanner(trimmed(text));
    double value = 0;
    if (!scanner.number(value)) return fallback;
    if (scanner.character('%')) value /= 100;
    return scanner.atEnd() ? std::clamp(value, 0.0, 1.0) : fallback;
}

Style Style::child(const Properties& p, const Viewport& viewport) const
{
    static constexpr Keyword<bool> kFillRules[] = {{"nonzero", false}, {"evenodd", true}};
    static constexpr Keyword<bool> kVisibility[] = {
        {"visible", true}, {"hidden", false}, {"collapse", false}};
    static constexpr Keyword<bool> kCrisp[] = {{"auto", false},
                                               {"geometricPrecision", false},
                                               {"crispEdges", true},
                                               {"optimizeSpeed", true}};
    static constexpr Keyword<uint8_t> kJoins[] = {{"miter", kJoinMiter},
                                                  {"miter-clip", kJoinMiter},
                                                  {"arcs", kJoinMiter},
                                                  {"round", kJoinRound},
                                                  {"bevel", kJoinBevel}};
    static constexpr Keyword<bool> kMiterClips[] = {
        {"miter", false}, {"miter-clip", true}, {"arcs", true}, {"round", false}, {"bevel", false}};
    static constexpr Keyword<uint8_t> kCaps[] = {
        {"butt", kCapButt}, {"round", kCapRound}, {"square", kCapSquare}};
    static constexpr Keyword<bool> kSlants[] = {
        {"normal", false}, {"italic", true}, {"oblique", true}};
    static constexpr Keyword<int> kAnchors[] = {{"start", 0}, {"middle", 1}, {"end", 2}};
    static constexpr Keyword<double> kSpacings[] = {{"normal", 0}};
    static constexpr Keyword<bool> kSpaces[] = {
        {"default", false},  {"preserve", true}, {"normal", false},  {"nowrap", false},
        {"pre-line", false}, {"pre", true},      {"pre-wrap", true}, {"break-spaces", true}};
    // As most fonts have them.
    static constexpr Keyword<double> kBaselines[] = {{"auto", 0},
                                                     {"baseline", 0},
                                                     {"alphabetic", 0},
                                                     {"middle", 0.27},
                                                     {"central", 0.3},
                                                     {"mathematical", 0.5},
                                                     {"hanging", 0.73},
                                                     {"text-before-edge", 0.8},
                                                     {"text-top", 0.8},
                                                     {"before-edge", 0.8},
                                                     {"ideographic", -0.25},
                                                     {"text-after-edge", -0.25},
                                                     {"text-bottom", -0.25},
                                                     {"after-edge", -0.25}};
    static constexpr Keyword<ImageFilter> kFilters[] = {{"auto", ImageFilter::Bilinear},
                                                        {"optimizeSpeed", ImageFilter::Nearest},
                                                        {"pixelated", ImageFilter::Nearest},
                                                        {"crisp-edges", ImageFilter::Nearest},
                                                        {"optimizeQuality", ImageFilter::Bilinear},
                                                        {"smooth", ImageFilter::Bilinear},
                                                        {"high-quality", ImageFilter::Bilinear}};

    static constexpr Keyword<bool> kMaskSpaces[] = {
        {"auto", false}, {"linearRGB", true}, {"sRGB", false}};
    static constexpr Keyword<bool> kFilterSpaces[] = {
        {"auto", true}, {"linearRGB", true}, {"sRGB", false}};

    Style s = *this;
    setFontSize(s.fontSize, p[Property::FontSize], viewport);
    const LengthContext lengths = s.lengths(viewport);
    const auto length = [&](Property property, double fallback) {
        return parseLength(p[property], lengths, Axis::Diagonal, fallback);
    };

    s.colour = findColour(p[Property::Color], colour).value_or(colour);
    setPaint(s.fill, p[Property::Fill], s.colour);
    setPaint(s.stroke, p[Property::Stroke], s.colour);
    s.fillOpacity = parseOpacity(p[Property::FillOpacity], fillOpacity);
    s.strokeOpacity = parseOpacity(p[Property::StrokeOpacity], strokeOpacity);
    setKeyword(s.evenOdd, p[Property::FillRule], kFillRules);
    setKeyword(s.clipEvenOdd, p[Property::ClipRule], kFillRules);
    setKeyword(s.visible, p[Property::Visibility], kVisibility);
    setKeyword(s.crisp, p[Property::ShapeRendering], kCrisp);
    setPaintOrder(s, p[Property::PaintOrder]);

    const double width = length(Property::StrokeWidth, strokeWidth);
    if (width >= 0) s.strokeWidth = width;
    TextScanner limit(p[Property::StrokeMiterlimit]);
    double miter = 0;
    if (limit.number(miter) && limit.atEnd() && miter >= 0) s.miterLimit = miter;
    setKeyword(s.join, p[Property::StrokeLinejoin], kJoins);
    const std::string_view joinText = p[Property::StrokeLinejoin];
    if (joinText != "inherit" && isValid(Property::StrokeLinejoin, joinText))
        s.curvesMiters = equalsIgnoringCase(joinText, "arcs");
    setKeyword(s.clipsMiters, p[Property::StrokeLinejoin], kMiterClips);
    setKeyword(s.cap, p[Property::StrokeLinecap], kCaps);
    setDashes(s, p[Property::StrokeDasharray], lengths);
    s.dashOffset = length(Property::StrokeDashoffset, dashOffset);
    setMarker(s.markers[0], p[Property::MarkerStart]);
    setMarker(s.markers[1], p[Property::MarkerMid]);
    setMarker(s.markers[2], p[Property::MarkerEnd]);

    setFontWeight(s.fontWeight, p[Property::FontWeight]);
    setKeyword(s.slanted, p[Property::FontStyle], kSlants);
    setKeyword(s.textAnchor, p[Property::TextAnchor], kAnchors);
    setKeyword(s.letterSpacing, p[Property::LetterSpacing], kSpacings);
    s.letterSpacing = length(Property::LetterSpacing, s.letterSpacing);
    setKeyword(s.wordSpacing, p[Property::WordSpacing], kSpacings);
    s.wordSpacing = length(Property::WordSpacing, s.wordSpacing);
    setKeyword(s.preserveSpace, p[Property::XmlSpace], kSpaces);
    setKeyword(s.preserveSpace, p[Property::WhiteSpace], kSpaces);
    setKeyword(s.dominantBaseline, p[Property::DominantBaseline], kBaselines);
    setDecoration(s, p[Property::TextDecoration]);
    setKeyword(s.imageFilter, p[Property::ImageRendering], kFilters);
    setKeyword(s.linearMasks, p[Property::ColorInterpolation], kMaskSpaces);
    setKeyword(s.linearFilters, p[Property::ColorInterpolationFilters], kFilterSpaces);

    s.baseline = s.dominantBaseline;
    setKeyword(s.baseline, p[Property::AlignmentBaseline], kBaselines);
    s.baselineShift = shiftOfBaseline(p[Property::BaselineShift], lengths, fontSize);

    const Style initial;
    s.ownOpacity =
        p.inherits(Property::Opacity) ? ownOpacity : parseOpacity(p[Property::Opacity], 1);
    s.opacity = opacity * s.ownOpacity;
    s.displayed = p.inherits(Property::Display) ? displayed : p[Property::Display] != "none";
    s.fixedStroke = p[Property::VectorEffect] == "non-scaling-stroke";
    if (!p.inherits(Property::StopColor))
        s.stopColour = findColour(p[Property::StopColor], s.colour).value_or(initial.stopColour);
    if (!p.inherits(Property::StopOpacity))
        s.stopOpacity = parseOpacity(p[Property::StopOpacity], 1);
    if (!p.inherits(Property::FloodColor))
        s.floodColour = findColour(p[Property::FloodColor], s.colour).value_or(initial.floodColour);
    if (!p.inherits(Property::FloodOpacity))
        s.floodOpacity = parseOpacity(p[Property::FloodOpacity], 1);
    if (!p.inherits(Property::LightingColor))
        s.lightingColour =
            findColour(p[Property::LightingColor], s.colour).value_or(initial.lightingColour);
    for (auto [target, property] :
         {std::pair{&s.transform, Property::Transform},
          std::pair{&s.translate, Property::Translate}, std::pair{&s.rotate, Property::Rotate},
          std::pair{&s.scale, Property::Scale}, std::pair{&s.clip, Property::Clip},
          std::pair{&s.transformOrigin, Property::TransformOrigin},
          std::pair{&s.transformBox, Property::TransformBox},
          std::pair{&s.overflow, Property::Overflow}}) {
        if (!p.inherits(property)) *target = p[property];
    }
    // Only elements that open a viewport hide what leaves it when nothing is said.
    if (p.inherits(Property::Overflow) && s.overflow.empty()) s.overflow = "visible";
    return s;
}

} // namespace Svg
} // namespace KAVO
