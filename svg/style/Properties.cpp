// SPDX-License-Identifier: MIT
#include "svg/style/Properties.h"

#include "svg/style/StyleSheet.h"
#include "svg/style/Validity.h"
#include "svg/values/TextScanner.h"
#include "svg/values/TransformParser.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

// [style || variant || weight || stretch] size[/line height] family: what is not named gets its
// initial value. One without a size or a family, as those for parts of windows, is none.
void addFont(std::string_view value, bool important, std::vector<Declaration>& declarations)
{
    constexpr Property kReset[] = {Property::FontStyle, Property::FontVariant, Property::FontWeight,
                                   Property::FontStretch};
    std::vector<Declaration> parts;
    for (const Property property : kReset)
        parts.push_back({property, "normal", important, {}});
    while (!value.empty()) {
        const size_t end = value.find_first_of(" \t\r\n");
        const std::string_view word = value.substr(0, end);
        const std::string lower = lowerCase(word);
        value = end == value.npos ? std::string_view() : trimmed(value.substr(end));
        const bool isNumber = word.find_first_not_of("0123456789.") == word.npos;
        if (lower == "inherit" || lower == "initial" || lower == "unset") {
            for (Declaration& part : parts)
                part.value = word;
            parts.push_back({Property::FontSize, word, important, {}});
            declarations.insert(declarations.end(), parts.begin(), parts.end());
            return;
        }
        if (lower == "italic" || lower == "oblique") {
            parts.push_back({Property::FontStyle, word, important, {}});
        } else if (lower == "bold" || lower == "bolder" || lower == "lighter" || isNumber) {
            parts.push_back({Property::FontWeight, word, important, {}});
        } else if (lower == "small-caps") {
            parts.push_back({Property::FontVariant, word, important, {}});
        } else if (lower.find("condensed") != lower.npos || lower.find("expanded") != lower.npos) {
            parts.push_back({Property::FontStretch, word, important, {}});
        } else if (lower != "normal") {
            if (value.empty()) return;
            const std::string_view size = word.substr(0, word.find('/'));
            parts.push_back({Property::FontSize, size, important, {}});
            parts.push_back({Property::FontFamily, value, important, {}});
            declarations.insert(declarations.end(), parts.begin(), parts.end());
            return;
        }
    }
}

void addShorthand(std::string_view name, std::string_view value, bool important,
                  std::vector<Declaration>& declarations)
{
    if (name == "text-decoration-line") {
        declarations.push_back({Property::TextDecoration, value, important, {}});
        return;
    }
    if (name == "marker") {
        for (const Property p : {Property::MarkerStart, Property::MarkerMid, Property::MarkerEnd})
            declarations.push_back({p, value, important, {}});
        return;
    }
    if (name == "font") addFont(value, important, declarations);
}

// Properties that change a picture in ways that are not known here, as all further ones of fills
// and strokes do.
bool isUndrawn(std::string_view name, std::string_view value)
{
    for (const std::string_view plain :
         {"none", "normal", "auto", "center", "currentColor", "inherit", "solid"}) {
        if (value == plain) return false;
    }
    if (name.substr(0, 7) == "stroke-" || name.substr(0, 5) == "fill-") return true;
    for (const std::string_view undrawn :
         {"animation", "animation-name", "backdrop-filter", "font-size-adjust",
          "glyph-orientation-horizontal", "glyph-orientation-vertical", "inline-size",
          "mask-composite", "mask-image", "mask-mode", "offset-path", "shape-inside",
          "text-decoration-color", "text-decoration-style", "zoom"}) {
        if (name == undrawn) return true;
    }
    return false;
}

// Of characters that would part or end something.
bool hasEscapes(std::string_view text)
{
    return text.find('\\') != text.npos;
}

// The words that many properties know, as they are written elsewhere; other texts as they are.
std::string_view inLowerCase(std::string_view text)
{
    for (const std::string_view word : {"inherit", "initial", "none", "revert", "unset"}) {
        if (equalsIgnoringCase(text, word)) return word;
    }
    return text;
}

// What only style sheets can set. The attribute for path data is written in another way.
bool isNoAttribute(Property property)
{
    return property == Property::D || property == Property::Isolation ||
           property == Property::MixBlendMode || property == Property::Rotate ||
           property == Property::Scale || property == Property::Translate;
}

} // namespace

void parseDeclarations(std::string_view text, std::vector<Declaration>& declarations)
{
    while (!text.empty()) {
        const size_t end = findOutside(text, ';');
        const std::string_view declaration = text.substr(0, end);
        text = end == text.npos ? std::string_view() : text.substr(end + 1);
        const size_t colon = declaration.find(':');
        if (colon == declaration.npos) continue;
        const std::string_view name = trimmed(declaration.substr(0, colon));
        std::string_view value = trimmed(declaration.substr(colon + 1));
        bool important = false;
        if (const size_t mark = value.rfind('!'); mark != value.npos) {
            important = equalsIgnoringCase(trimmed(value.substr(mark + 1)), "important");
            if (!important) continue;
            value = trimmed(value.substr(0, mark));
        }
        if (value.empty()) continue;
        const std::optional<Property> property = findProperty(lowerCase(name));
        if (hasEscapes(name) || (property && hasEscapes(value)))
            declarations.push_back({Property::Count, value, important, "escapes in a declaration"});
        if (property)
            declarations.push_back({*property, value, important, {}});
        else if (name.substr(0, 2) == "--" || isUndrawn(name, value))
            declarations.push_back({Property::Count, value, important, name});
        else
            addShorthand(name, value, important, declarations);
    }
}

Properties::Properties(pugi::xml_node node, const StyleSheet& sheet) : node_(node), sheet_(sheet)
{
    Declarations own;
    Declarations rules;
    parseDeclarations(node.attribute("style").value(), own);
    if (!sheet.empty()) sheet.match(node, rules);
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const std::optional<Property> property = findProperty(attribute.name());
        if (!property && isUndrawn(attribute.name(), trimmed(attribute.value())))
            undrawn_.push_back(attribute.name());
        if (!property || isNoAttribute(*property)) continue;
        if (property == Property::Transform && hasUnits(attribute.value()))
            undrawn_.push_back("malformed transform");
        else
            set({*property, trimmed(attribute.value()), false, {}});
    }
    forAll(rules, own, [&](const Declaration& declaration) {
        if (declaration.property != Property::Count)
            set(declaration);
        else if (declaration.name.substr(0, 2) != "--")
            undrawn_.push_back(declaration.name);
    });
}

template <class Function>
void Properties::forAll(const Declarations& rules, const Declarations& own, Function function)
{
    for (const bool important : {false, true}) {
        for (const Declarations* list : {&rules, &own}) {
            for (const Declaration& declaration : *list) {
                if (declaration.important == important) function(declaration);
            }
        }
    }
}

void Properties::set(const Declaration& declaration)
{
    std::string_view& value = values_[static_cast<size_t>(declaration.property)];
    const std::string_view text = inLowerCase(resolved(declaration.value));
    if (text.find('(') != text.npos) {
        for (const std::string_view function :
             {"calc(", "var(", "min(", "max(", "clamp(", "env(", "attr("}) {
            if (text.find(function) != text.npos) unknownFunction_ = function;
        }
    }
    if (text == "unset" || text == "revert" || text.empty())
        value = {};
    else if (text == "initial")
        value = initialValue(declaration.property);
    else if (value.empty() || isValid(declaration.property, text)) // else that before it stays
        value = text;
}

std::string_view Properties::resolved(std::string_view text) const
{
    for (int i = 0; i < kMostVariables && text.substr(0, 4) == "var("; ++i) {
        const std::string_view inside = text.substr(4);
        const size_t end = findOutside(inside, ')');
        if (end != inside.npos && end + 1 != inside.size()) return text; // more follows
        const size_t comma = findOutside(inside.substr(0, end), ',');
        const std::string_view value =
            variable(node_, sheet_, trimmed(inside.substr(0, std::min(comma, end))));
        const bool hasFallback = value.empty() && comma != inside.npos;
        text = hasFallback ? trimmed(inside.substr(comma + 1, end - comma - 1)) : value;
    }
    return text;
}

std::string_view Properties::variable(pugi::xml_node node, const StyleSheet& sheet,
                                      std::string_view name)
{
    for (; node.type() == pugi::node_element; node = node.parent()) {
        Declarations own;
        Declarations rules;
        parseDeclarations(node.attribute("style").value(), own);
        if (!sheet.empty()) sheet.match(node, rules);
        std::string_view value;
        forAll(rules, own, [&](const Declaration& declaration) {
            if (declaration.name == name) value = declaration.value;
        });
        if (!value.empty()) return value;
    }
    return {};
}

} // namespace Svg
} // namespace KAVO
