// SPDX-License-Identifier: MIT
#include "svg/style/Validity.h"

#include "svg/style/PaintValue.h"
#include "svg/values/Colour.h"
#include "svg/values/Length.h"
#include "svg/values/PathParser.h"
#include "svg/values/TextScanner.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

bool isOneOf(std::string_view value, std::initializer_list<std::string_view> words)
{
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return equalsIgnoringCase(word, value); });
}

bool isColour(std::string_view value)
{
    return findColour(value, 0).has_value();
}

bool isLength(std::string_view value, bool negativeToo)
{
    if (value.find("calc(") != value.npos) return true;
    const Viewport viewport;
    const std::optional<double> length = findLength(value, {viewport}, Axis::X);
    return length && (negativeToo || value.front() != '-');
}

bool isShare(std::string_view value)
{
    TextScanner scanner(value);
    double number = 0;
    if (!scanner.number(number)) return false;
    scanner.character('%');
    return scanner.atEnd();
}

} // namespace

bool isValid(Property property, std::string_view value)
{
    if (value == "inherit" || value == "initial") return true;
    switch (property) {
    case Property::Color:
    case Property::StopColor:
        return isColour(value);
    case Property::Fill:
    case Property::Stroke:
        return findPaint(value, 0).has_value();
    case Property::FillOpacity:
    case Property::Opacity:
    case Property::StopOpacity:
    case Property::StrokeOpacity:
        return isShare(value);
    case Property::FillRule:
    case Property::ClipRule:
        return isOneOf(value, {"nonzero", "evenodd"});
    case Property::D:
        return value == "none" || pathDataIn(value).has_value();
    case Property::StrokeLinecap:
        return isOneOf(value, {"butt", "round", "square"});
    case Property::StrokeLinejoin:
        return isOneOf(value, {"miter", "miter-clip", "arcs", "round", "bevel"});
    case Property::Visibility:
        return isOneOf(value, {"visible", "hidden", "collapse"});
    case Property::TextAnchor:
        return isOneOf(value, {"start", "middle", "end"});
    case Property::Width:
    case Property::Height:
    case Property::Rx:
    case Property::Ry:
        return value == "auto" || isLength(value, false);
    case Property::R:
    case Property::StrokeWidth:
        return isLength(value, false);
    case Property::Cx:
    case Property::Cy:
    case Property::StrokeDashoffset:
    case Property::X:
    case Property::Y:
        return isLength(value, true);
    default:
        return true;
    }
}

std::string_view initialValue(Property property)
{
    static constexpr struct {
        Property property;
        std::string_view value;
    } kInitial[] = {{Property::ClipRule, "nonzero"},     {Property::Color, "black"},
                    {Property::Fill, "black"},           {Property::FillOpacity, "1"},
                    {Property::FillRule, "nonzero"},     {Property::FontSize, "medium"},
                    {Property::FontStyle, "normal"},     {Property::FontWeight, "normal"},
                    {Property::ImageRendering, "auto"},  {Property::LetterSpacing, "normal"},
                    {Property::MarkerEnd, "none"},       {Property::MarkerMid, "none"},
                    {Property::MarkerStart, "none"},     {Property::PaintOrder, "normal"},
                    {Property::ShapeRendering, "auto"},  {Property::Stroke, "none"},
                    {Property::StrokeDasharray, "none"}, {Property::StrokeDashoffset, "0"},
                    {Property::StrokeLinecap, "butt"},   {Property::StrokeLinejoin, "miter"},
                    {Property::StrokeMiterlimit, "4"},   {Property::StrokeOpacity, "1"},
                    {Property::StrokeWidth, "1"},        {Property::TextAnchor, "start"},
                    {Property::Visibility, "visible"},   {Property::WordSpacing, "normal"}};
    for (const auto& initial : kInitial) {
        if (initial.property == property) return initial.value;
    }
    return {};
}

} // namespace Svg
} // namespace KAVO
