// SPDX-License-Identifier: MIT
#include "svg/style/Properties.h"

#include "svg/style/StyleSheet.h"
#include "svg/style/Validity.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

namespace {

// What follows the comments that a declaration begins with.
std::string_view withoutComment(std::string_view text)
{
    text = trimmed(text);
    while (text.substr(0, 2) == "/*") {
        const size_t end = text.find("*/", 2);
        text = end == text.npos ? std::string_view() : trimmed(text.substr(end + 2));
    }
    return text;
}

void addShorthand(std::string_view name, std::string_view value, bool important,
                  std::vector<Declaration>& declarations)
{
    if (name == "text-decoration-line") {
        declarations.push_back({Property::TextDecoration, value, important});
        return;
    }
    if (name == "marker") {
        for (const Property p : {Property::MarkerStart, Property::MarkerMid, Property::MarkerEnd})
            declarations.push_back({p, value, important});
        return;
    }
    // font: [style || weight || ...] size[/line height] family
    if (name != "font") return;
    while (!value.empty()) {
        const size_t end = value.find_first_of(" \t\r\n");
        std::string_view word = value.substr(0, end);
        value = end == value.npos ? std::string_view() : trimmed(value.substr(end));
        if (word == "italic" || word == "oblique") {
            declarations.push_back({Property::FontStyle, word, important});
        } else if (word == "bold" || word == "bolder" || word == "lighter" ||
                   (word.size() == 3 && word.substr(1) == "00")) {
            declarations.push_back({Property::FontWeight, word, important});
        } else if (word == "small-caps") {
            declarations.push_back({Property::FontVariant, word, important});
        } else if (word != "normal" && word.find("condensed") == word.npos &&
                   word.find("expanded") == word.npos) {
            declarations.push_back({Property::FontSize, word.substr(0, word.find('/')), important});
            declarations.push_back({Property::FontFamily, value, important});
            return;
        }
    }
}

} // namespace

void parseDeclarations(std::string_view text, std::vector<Declaration>& declarations)
{
    while (!text.empty()) {
        text = withoutComment(text);
        const size_t end = findOutside(text, ";");
        const std::string_view declaration = text.substr(0, end);
        text = end == text.npos ? std::string_view() : text.substr(end + 1);
        const size_t colon = declaration.find(':');
        if (colon == declaration.npos) continue;
        const std::string_view name = trimmed(declaration.substr(0, colon));
        std::string_view value = trimmed(declaration.substr(colon + 1));
        bool important = false;
        if (const size_t mark = value.rfind('!'); mark != value.npos) {
            important = trimmed(value.substr(mark + 1)) == "important";
            if (!important) continue;
            value = trimmed(value.substr(0, mark));
        }
        if (value.empty()) continue;
        if (const std::optional<Property> property = findProperty(lowerCase(name)))
            declarations.push_back({*property, value, important});
        else
            addShorthand(name, value, important, declarations);
    }
}

Properties::Properties(pugi::xml_node node, const StyleSheet& sheet)
{
    std::vector<Declaration> own;
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view name = attribute.name();
        if (name == "style")
            parseDeclarations(attribute.value(), own);
        else if (const std::optional<Property> property = findProperty(name))
            set({*property, trimmed(attribute.value())});
    }
    std::vector<Declaration> rules;
    if (!sheet.empty()) sheet.match(node, rules);
    for (const bool important : {false, true}) {
        for (const std::vector<Declaration>* list : {&rules, &own}) {
            for (const Declaration& declaration : *list) {
                if (declaration.important == important) set(declaration);
            }
        }
    }
}

void Properties::set(const Declaration& declaration)
{
    std::string_view& value = values_[static_cast<size_t>(declaration.property)];
    const std::string_view text = declaration.value;
    needsCalc_ = needsCalc_ || text.find("calc(") != text.npos;
    if (text == "unset" || text == "revert")
        value = {};
    else if (text == "initial")
        value = initialValue(declaration.property);
    else if (value.empty() || isValid(declaration.property, text)) // else that before it stays
        value = text;
}

} // namespace Svg
} // namespace KAVO
