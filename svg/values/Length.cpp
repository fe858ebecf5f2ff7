// SPDX-License-Identifier: MIT
#include "svg/values/Length.h"

#include "svg/values/TextScanner.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

// Of a font that says nothing about them, as parts of its size.
constexpr double kCapHeight = 0.7;
constexpr double kLineHeight = 1.2;

double extent(const Viewport& viewport, Axis axis)
{
    return axis == Axis::X   ? viewport.width
           : axis == Axis::Y ? viewport.height
                             : viewport.diagonal();
}

} // namespace

std::optional<double> unitSize(std::string_view unit, const LengthContext& context, Axis axis)
{
    const Viewport& v = context.viewport;
    // 96 user units to the inch; half an em stands for the height of an x and the width of a 0.
    // Text runs along x, and a window has no bars that come and go.
    const struct {
        std::string_view name;
        double size;
    } units[] = {{"", 1},
                 {"px", 1},
                 {"%", extent(v, axis) / 100},
                 {"em", context.fontSize},
                 {"ex", context.fontSize / 2},
                 {"ch", context.fontSize / 2},
                 {"cap", context.fontSize * kCapHeight},
                 {"ic", context.fontSize},
                 {"lh", context.fontSize * kLineHeight},
                 {"rem", v.rootFontSize},
                 {"rlh", v.rootFontSize * kLineHeight},
                 {"pt", 96 / 72.0},
                 {"pc", 16},
                 {"mm", 96 / 25.4},
                 {"cm", 960 / 25.4},
                 {"q", 24 / 25.4},
                 {"in", 96},
                 {"vw", v.windowWidth / 100},
                 {"vh", v.windowHeight / 100},
                 {"vi", v.windowWidth / 100},
                 {"vb", v.windowHeight / 100},
                 {"vmin", std::min(v.windowWidth, v.windowHeight) / 100},
                 {"vmax", std::max(v.windowWidth, v.windowHeight) / 100}};
    for (const auto& known : units) {
        if (equalsIgnoringCase(unit, known.name)) return known.size;
    }
    return std::nullopt;
}

std::optional<double> findLength(std::string_view text, const LengthContext& context, Axis axis)
{
    TextScanner scanner(trimmed(text));
    double value = 0;
    if (!scanner.number(value)) return std::nullopt;
    const std::optional<double> size = unitSize(scanner.rest(), context, axis);
    if (!size) return std::nullopt;
    return value * *size;
}

std::optional<double> findSize(std::string_view text, const LengthContext& context, Axis axis)
{
    const std::optional<double> length = findLength(text, context, axis);
    return length && *length >= 0 ? length : std::nullopt;
}

double parseLength(std::string_view text, const LengthContext& context, Axis axis, double fallback)
{
    return findLength(text, context, axis).value_or(fallback);
}

std::optional<std::vector<double>> parseLengths(std::string_view text, const LengthContext& context,
                                                Axis axis)
{
    std::vector<double> values;
    TextScanner scanner(text);
    scanner.skipSpace();
    while (!scanner.atEnd()) {
        const std::string_view rest = scanner.rest();
        const std::string_view item = rest.substr(0, rest.find_first_of(", \t\r\n\f"));
        const std::optional<double> value = findLength(item, context, axis);
        if (!value) return std::nullopt;
        values.push_back(*value);
        scanner.skip(item.size());
        scanner.skipSeparator();
    }
    return values;
}

} // namespace Svg
} // namespace KAVO
