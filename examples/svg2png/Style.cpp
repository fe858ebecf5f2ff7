// SPDX-License-Identifier: MIT
#include "svg2png/Style.h"

#include "graphics2d/MMContext2D.h"
#include "svg2png/Colour.h"

#include <algorithm>

using namespace KAVO::Graphics2D;

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
        if (keyword.name == text) value = keyword.value;
    }
}

bool isCurrentColour(std::string_view text)
{
    constexpr uint32_t kMark = 0x12345678; // no colour is this transparent
    return parseColour(text, kMark) == kMark;
}

void setPaint(PaintValue& paint, std::string_view text, uint32_t currentColour)
{
    if (text.empty()) return;
    PaintValue result;
    if (text.substr(0, 4) == "url(") {
        const size_t end = text.find(')');
        std::string_view name = trimmed(text.substr(4, end == text.npos ? end : end - 4));
        while (!name.empty() &&
               (name.front() == '#' || name.front() == '"' || name.front() == '\''))
            name.remove_prefix(1);
        while (!name.empty() && (name.back() == '"' || name.back() == '\''))
            name.remove_suffix(1);
        result.kind = PaintValue::Server;
        result.server = name;
        text = end == text.npos ? std::string_view() : trimmed(text.substr(end + 1));
    }
    const bool none = text.empty() || text == "none";
    if (!none) {
        const std::optional<uint32_t> colour = parseColour(text, currentColour);
        if (!colour && result.kind == PaintValue::None)
            return; // an error: what was inherited stays
        result.colour = colour.value_or(result.colour);
        result.hasFallback = colour.has_value();
        result.isCurrentColour = colour && isCurrentColour(text);
        if (result.kind == PaintValue::None) result.kind = PaintValue::Colour;
    }
    paint = result;
}

void setDashes(std::vector<double>& dashes, std::string_view text, const LengthContext& lengths)
{
    if (text.empty()) return;
    dashes.clear();
    if (text == "none") return;
    double sum = 0;
    while (!text.empty()) {
        const size_t end = text.find_first_of(", \t\r\n");
        const std::string_view item = text.substr(0, end);
        if (!item.empty()) {
            const double length = parseLength(item, lengths, -1);
            if (length < 0) {
                dashes.clear();
                return;
            }
            dashes.push_back(length);
            sum += length;
        }
        text = end == text.npos ? std::string_view() : text.substr(end + 1);
    }
    if (sum <= 0) dashes.clear();
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

void setFontSize(double& size, std::string_view text)
{
    static constexpr Keyword<double> kSizes[] = {{"xx-small", 9}, {"x-small", 10}, {"small", 13},
                                                 {"medium", 16},  {"large", 18},   {"x-large", 24},
                                                 {"xx-large", 32}};
    const double inherited = size;
    setKeyword(size, text, kSizes);
    const Keyword<double> relative[] = {{"larger", inherited * 1.2}, {"smaller", inherited / 1.2}};
    setKeyword(size, text, relative);
    const double length = parseLength(text, {inherited, inherited}, size);
    if (length >= 0) size = length;
}

// A list of kinds of lines; the underline is the one that is drawn.
void setDecoration(bool& underline, std::string_view text)
{
    if (text == "none") underline = false;
    if (text.find("underline") != text.npos) underline = true;
}

} // namespace

std::string_view localName(const char* name)
{
    std::string_view text(name);
    if (text.substr(0, 4) == "svg:") text.remove_prefix(4);
    return text;
}

Properties::Properties(pugi::xml_node node) : node_(node)
{
    std::string_view style = node.attribute("style").value();
    while (!style.empty()) {
        const size_t end = style.find(';');
        const std::string_view declaration = style.substr(0, end);
        const size_t colon = declaration.find(':');
        if (colon != declaration.npos) {
            std::string_view value = declaration.substr(colon + 1);
            value = trimmed(value.substr(0, value.find('!')));
            declarations_.emplace_back(trimmed(declaration.substr(0, colon)), value);
        }
        style = end == style.npos ? std::string_view() : style.substr(end + 1);
    }
}

std::string_view Properties::operator[](std::string_view name) const
{
    std::string_view value = trimmed(node_.attribute(std::string(name).c_str()).value());
    for (const auto& [declared, text] : declarations_) {
        if (declared == name) value = text;
    }
    return value == "inherit" ? std::string_view() : value;
}

double parseOpacity(std::string_view text, double fallback)
{
    TextScanner scanner(text);
    double value = 0;
    if (!scanner.number(value)) return fallback;
    if (scanner.character('%')) value /= 100;
    return std::clamp(value, 0.0, 1.0);
}

void Style::apply(const Properties& properties, double percentBase)
{
    static constexpr Keyword<bool> kFillRules[] = {{"nonzero", false}, {"evenodd", true}};
    static constexpr Keyword<bool> kVisibility[] = {
        {"visible", true}, {"hidden", false}, {"collapse", false}};
    static constexpr Keyword<uint8_t> kJoins[] = {
        {"miter", kJoinMiter}, {"round", kJoinRound}, {"bevel", kJoinBevel}};
    static constexpr Keyword<uint8_t> kCaps[] = {
        {"butt", kCapButt}, {"round", kCapRound}, {"square", kCapSquare}};
    static constexpr Keyword<bool> kSlants[] = {
        {"normal", false}, {"italic", true}, {"oblique", true}};
    static constexpr Keyword<int> kAnchors[] = {{"start", 0}, {"middle", 1}, {"end", 2}};
    static constexpr Keyword<double> kSpacings[] = {{"normal", 0}};
    static constexpr Keyword<bool> kSpaces[] = {{"default", false}, {"preserve", true}};
    static constexpr Keyword<ImageFilter> kFilters[] = {
        {"auto", ImageFilter::Bilinear},           {"optimizeSpeed", ImageFilter::Nearest},
        {"pixelated", ImageFilter::Nearest},       {"crisp-edges", ImageFilter::Nearest},
        {"optimizeQuality", ImageFilter::Bicubic}, {"smooth", ImageFilter::Bicubic}};

    setFontSize(fontSize, properties["font-size"]);
    const LengthContext lengths{percentBase, fontSize};

    colour = parseColour(properties["color"], colour).value_or(colour);
    for (PaintValue* paint : {&fill, &stroke}) {
        if (paint->isCurrentColour) paint->colour = colour;
    }
    setPaint(fill, properties["fill"], colour);
    setPaint(stroke, properties["stroke"], colour);
    fillOpacity = parseOpacity(properties["fill-opacity"], fillOpacity);
    strokeOpacity = parseOpacity(properties["stroke-opacity"], strokeOpacity);
    opacity *= parseOpacity(properties["opacity"], 1);
    setKeyword(evenOdd, properties["fill-rule"], kFillRules);
    setKeyword(visible, properties["visibility"], kVisibility);

    strokeWidth = std::max(0.0, parseLength(properties["stroke-width"], lengths, strokeWidth));
    miterLimit = std::max(1.0, parseLength(properties["stroke-miterlimit"], lengths, miterLimit));
    setKeyword(join, properties["stroke-linejoin"], kJoins);
    setKeyword(cap, properties["stroke-linecap"], kCaps);
    setDashes(dashes, properties["stroke-dasharray"], lengths);
    dashOffset = parseLength(properties["stroke-dashoffset"], lengths, dashOffset);

    setFontWeight(fontWeight, properties["font-weight"]);
    setKeyword(slanted, properties["font-style"], kSlants);
    setKeyword(textAnchor, properties["text-anchor"], kAnchors);
    setKeyword(letterSpacing, properties["letter-spacing"], kSpacings);
    letterSpacing = parseLength(properties["letter-spacing"], lengths, letterSpacing);
    setKeyword(preserveSpace, properties["xml:space"], kSpaces);
    setDecoration(underline, properties["text-decoration"]);
    setKeyword(imageFilter, properties["image-rendering"], kFilters);
}
