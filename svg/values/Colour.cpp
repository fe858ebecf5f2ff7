// SPDX-License-Identifier: MIT
#include "svg/values/Colour.h"

#include "svg/values/ColourSpaces.h"
#include "svg/values/NamedColours.h"
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace KAVO {
namespace Svg {

namespace {

constexpr uint32_t kOpaque = 0xFF000000;

std::optional<uint32_t> hexDigit(char c)
{
    if (c >= '0' && c <= '9') return static_cast<uint32_t>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<uint32_t>(c - 'a' + 10);
    return std::nullopt;
}

std::optional<uint32_t> parseHex(std::string_view digits)
{
    const bool brief = digits.size() == 3 || digits.size() == 4;
    if (!brief && digits.size() != 6 && digits.size() != 8) return std::nullopt;
    uint32_t value = 0;
    for (const char c : digits) {
        const std::optional<uint32_t> digit = hexDigit(c);
        if (!digit) return std::nullopt;
        value = value << 4 | *digit;
        if (brief) value = value << 4 | *digit;
    }
    const bool hasAlpha = digits.size() % 4 == 0;
    return hasAlpha ? value << 24 | value >> 8 : kOpaque | value;
}

// One of up to four numbers in a colour function.
struct Component {
    double value = 0;
    bool percent = false;
};

// The end of a function: its parenthesis, or that of the text.
bool closes(TextScanner& scanner)
{
    scanner.skipSpace();
    return scanner.character(')') || scanner.atEnd();
}

// Between the parentheses: three numbers and perhaps an alpha, separated by commas, or by white
// space with a slash before the alpha, where none stands for 0.
bool parseComponents(TextScanner& scanner, Component (&components)[4], int& count)
{
    bool commas = false;
    bool hasNone = false;
    for (count = 0; count < 4; ++count) {
        if (closes(scanner)) return count == 3;
        if (count == 1) commas = scanner.character(',');
        if (commas && hasNone) return false;
        if (count == 2 && commas && !scanner.character(',')) return false;
        if (count == 3 && !scanner.character(commas ? ',' : '/')) return false;
        scanner.skipSpace();
        Component& component = components[count];
        if (!scanner.number(component.value)) {
            if (scanner.word() != "none") return false;
            hasNone = true;
            continue;
        }
        if (scanner.character('%')) {
            component.percent = true;
            continue;
        }
        const std::string_view unit = scanner.word(); // of a hue
        if (unit == "rad")
            component.value *= 180 / std::acos(-1.0);
        else if (unit == "grad")
            component.value *= 0.9;
        else if (unit == "turn")
            component.value *= 360;
        else if (!unit.empty() && unit != "deg")
            return false;
    }
    return closes(scanner);
}

uint32_t byteOf(double part)
{
    return static_cast<uint32_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
}

uint32_t pack(const Rgb& c)
{
    return byteOf(c[0]) << 16 | byteOf(c[1]) << 8 | byteOf(c[2]);
}

// The channel of a pure hue, 0 to 1: offset 0 for red, 8 for green, 4 for blue.
double hueChannel(double degrees, double offset, double saturation, double lightness)
{
    const double turned = std::fmod(std::fmod(degrees, 360) + 360, 360);
    const double k = std::fmod(offset + turned / 30, 12);
    const double reach = saturation * std::min(lightness, 1 - lightness);
    return lightness - reach * std::max(-1.0, std::min({k - 3, 9 - k, 1.0}));
}

// hsl() or hwb().
Rgb rgbOfHue(bool hwb, double degrees, double firstPercent, double secondPercent)
{
    const double first = std::clamp(firstPercent / 100, 0.0, 1.0);
    const double second = std::clamp(secondPercent / 100, 0.0, 1.0);
    const auto channel = [&](double offset) {
        if (!hwb) return hueChannel(degrees, offset, first, second);
        if (first + second >= 1) return first / (first + second); // white and black alone
        return hueChannel(degrees, offset, 1, 0.5) * (1 - first - second) + first;
    };
    return {channel(0), channel(8), channel(4)};
}

// lab(), lch() and their like, by what a whole of a hundred stands for.
Rgb rgbOfLab(std::string_view name, const Component (&c)[4])
{
    const bool isOk = name.substr(0, 2) == "ok";
    const bool polar = name.substr(name.size() - 2) == "ch";
    const double wholeLightness = isOk ? 1 : 100;
    const double wholeAxis = isOk ? 0.4 : polar ? 150 : 125;
    const auto part = [](const Component& x, double whole) {
        return x.percent ? x.value / 100 * whole : x.value;
    };
    const double lightness = std::clamp(part(c[0], wholeLightness), 0.0, wholeLightness);
    double a = part(c[1], wholeAxis);
    double b = part(c[2], wholeAxis);
    if (polar) {
        const double hue = c[2].value * std::acos(-1.0) / 180;
        b = std::max(0.0, a) * std::sin(hue);
        a = std::max(0.0, a) * std::cos(hue);
    }
    return isOk ? oklabToSrgb(lightness, a, b) : labToSrgb(lightness, a, b);
}

std::optional<uint32_t> parseFunction(std::string_view name, TextScanner& scanner)
{
    std::string_view space; // of color()
    if (name == "color") {
        scanner.skipSpace();
        space = scanner.word();
    }
    Component c[4];
    int count = 0;
    if (!parseComponents(scanner, c, count)) return std::nullopt;
    Rgb rgb{};
    if (name == "rgb" || name == "rgba") {
        const auto part = [](const Component& x) { return x.value / (x.percent ? 100 : 255); };
        rgb = {part(c[0]), part(c[1]), part(c[2])};
    } else if (name == "color") {
        const auto part = [](const Component& x) { return x.value / (x.percent ? 100 : 1); };
        if (!spaceToSrgb(space, {part(c[0]), part(c[1]), part(c[2])}, rgb)) return std::nullopt;
    } else if (name[0] == 'h') {
        rgb = rgbOfHue(name == "hwb", c[0].value, c[1].value, c[2].value);
    } else {
        rgb = rgbOfLab(name, c);
    }
    const double alpha = count < 4 ? 1 : c[3].value / (c[3].percent ? 100 : 1);
    return byteOf(alpha) << 24 | pack(rgb);
}

std::optional<uint32_t> parseOne(TextScanner& scanner, uint32_t current)
{
    if (scanner.character('#')) return parseHex(scanner.word());
    const std::string_view word = scanner.word();
    if (word == "currentcolor") return current;
    if (word == "transparent") return 0;
    for (const std::string_view function :
         {"rgb", "rgba", "hsl", "hsla", "hwb", "lab", "lch", "oklab", "oklch", "color"}) {
        if (word == function && scanner.character('(')) return parseFunction(word, scanner);
    }
    return findNamedColour(word);
}

} // namespace

std::optional<uint32_t> findColour(std::string_view text, uint32_t current, std::string_view* rest)
{
    text = trimmed(text);
    const std::string lower = lowerCase(text);
    TextScanner scanner(lower);
    const std::optional<uint32_t> colour = parseOne(scanner, current);
    if (!colour) return std::nullopt;
    const std::string_view left = text.substr(text.size() - scanner.rest().size());
    if (rest)
        *rest = left;
    else if (!left.empty() && trimmed(left).substr(0, 9) != "icc-color")
        return std::nullopt;
    return colour;
}

uint32_t withOpacity(uint32_t argb, double opacity)
{
    const double alpha = (argb >> 24) * std::clamp(opacity, 0.0, 1.0);
    return (argb & 0xFFFFFF) | static_cast<uint32_t>(std::lround(alpha)) << 24;
}

} // namespace Svg
} // namespace KAVO
