// SPDX-License-Identifier: MIT
#include "svg/style/Selector.h"

#include "svg/values/TextScanner.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace KAVO {
namespace Svg {

namespace {

bool isName(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// A backslash takes the next character as it is.
std::string takeName(std::string_view& text)
{
    std::string name;
    while (!text.empty() && (isName(text.front()) || (text.front() == '\\' && text.size() > 1))) {
        if (text.front() == '\\') text.remove_prefix(1);
        name += text.front();
        text.remove_prefix(1);
    }
    return name;
}

pugi::xml_node elementBeside(pugi::xml_node node, bool before)
{
    do
        node = before ? node.previous_sibling() : node.next_sibling();
    while (node && node.type() != pugi::node_element);
    return node;
}

bool hasWord(std::string_view list, std::string_view wanted)
{
    bool found = false;
    forWords(list, [&](std::string_view word) { found = found || word == wanted; });
    return found;
}

// A language range covers the language itself and its regions; the nearest xml:lang counts.
bool speaks(pugi::xml_node node, std::string_view range)
{
    for (; node; node = node.parent()) {
        pugi::xml_attribute language = node.attribute("xml:lang");
        if (!language) language = node.attribute("lang");
        if (!language) continue;
        const std::string_view value = language.value();
        return value.substr(0, range.size()) == range &&
               (value.size() == range.size() || value[range.size()] == '-');
    }
    return false;
}

} // namespace

std::string Selector::key() const
{
    const Part& last = parts_.back();
    for (const Condition& condition : last.conditions) {
        if (condition.kind == Condition::Id) return "#" + condition.name;
        if (condition.kind == Condition::Class) return "." + condition.name;
    }
    return last.name;
}

bool Selector::parseAttribute(std::string_view& text, Condition& condition)
{
    const size_t end = text.find(']');
    if (end == text.npos) return false;
    std::string_view inside = trimmed(text.substr(1, end - 1));
    text.remove_prefix(end + 1);
    condition.kind = Condition::Attribute;
    condition.name = takeName(inside);
    if (!inside.empty() && inside.front() == '|' && inside.substr(0, 2) != "|=") {
        inside.remove_prefix(1); // a namespace
        condition.name += ":" + takeName(inside);
    }
    inside = trimmed(inside);
    if (condition.name.empty()) return false;
    if (inside.empty()) return true;
    const size_t equals = inside.find('=');
    if (equals > 1 || (equals == 1 && !std::strchr("~|^$*", inside[0]))) return false;
    condition.comparison = inside[0];
    inside = trimmed(inside.substr(equals + 1));
    if (inside.size() >= 2 && (inside.front() == '"' || inside.front() == '\'')) {
        if (inside.back() != inside.front()) return false;
        inside = inside.substr(1, inside.size() - 2);
    }
    condition.value = inside;
    return true;
}

bool Selector::parsePart(std::string_view& text, Part& part)
{
    const size_t before = text.size();
    if (text.front() == '*')
        text.remove_prefix(1);
    else
        part.name = takeName(text);
    if (!text.empty() && text.front() == '|') { // a namespace, which elements have lost already
        text.remove_prefix(1);
        part.name.clear();
        if (!text.empty() && text.front() == '*')
            text.remove_prefix(1);
        else
            part.name = takeName(text);
    }
    while (!text.empty() && std::strchr("#.[:", text.front())) {
        Condition condition{Condition::Id, {}, 0, {}};
        const char mark = text.front();
        if (mark == '[') {
            if (!parseAttribute(text, condition)) return false;
        } else {
            text.remove_prefix(1);
            condition.kind = mark == '#'   ? Condition::Id
                             : mark == '.' ? Condition::Class
                                           : Condition::Pseudo;
            condition.name = takeName(text);
            if (condition.name.empty()) return false;
            if (condition.kind == Condition::Pseudo && !text.empty() && text.front() == '(') {
                const size_t end = text.find(')');
                if (end == text.npos) return false;
                condition.value = trimmed(text.substr(1, end - 1));
                text.remove_prefix(end + 1);
            }
        }
        part.conditions.push_back(condition);
    }
    return text.size() != before;
}

std::optional<Selector> Selector::parse(std::string_view text)
{
    Selector selector;
    text = trimmed(text);
    while (!text.empty()) {
        Part part;
        if (!selector.parts_.empty()) {
            text = trimmed(text);
            if (std::strchr(">+~", text.front())) {
                part.combinator = text.front();
                text = trimmed(text.substr(1));
            }
        }
        if (text.empty() || !parsePart(text, part)) return std::nullopt;
        selector.specificity_ += !part.name.empty();
        for (const Condition& condition : part.conditions)
            selector.specificity_ += condition.kind == Condition::Id ? 0x10000u : 0x100u;
        selector.parts_.push_back(std::move(part));
    }
    if (selector.parts_.empty()) return std::nullopt;
    return selector;
}

bool Selector::holds(const Condition& condition, pugi::xml_node node)
{
    const std::string_view wanted = condition.value;
    switch (condition.kind) {
    case Condition::Id:
        return condition.name == node.attribute("id").value();
    case Condition::Class:
        return hasWord(node.attribute("class").value(), condition.name);
    case Condition::Pseudo:
        if (condition.name == "first-child") return !elementBeside(node, true);
        if (condition.name == "last-child") return !elementBeside(node, false);
        if (condition.name == "only-child")
            return !elementBeside(node, true) && !elementBeside(node, false);
        if (condition.name == "root") return node.parent().type() == pugi::node_document;
        if (condition.name == "link") return std::string_view(node.name()) == "a";
        if (condition.name == "lang") return speaks(node, wanted);
        return false; // :hover and its like hold for nothing in a still picture
    case Condition::Attribute:
        break;
    }
    const pugi::xml_attribute attribute = node.attribute(condition.name.c_str());
    if (!attribute) return false;
    const std::string_view value = attribute.value();
    switch (condition.comparison) {
    case 0:
        return true;
    case '=':
        return value == wanted;
    case '~':
        return hasWord(value, wanted);
    case '|':
        return value == wanted ||
               (value.substr(0, wanted.size()) == wanted && value.substr(wanted.size(), 1) == "-");
    case '^':
        return !wanted.empty() && value.substr(0, wanted.size()) == wanted;
    case '$':
        return !wanted.empty() && value.size() >= wanted.size() &&
               value.substr(value.size() - wanted.size()) == wanted;
    default:
        return !wanted.empty() && value.find(wanted) != value.npos;
    }
}

bool Selector::matchesPart(const Part& part, pugi::xml_node node)
{
    if (!part.name.empty() && part.name != node.name()) return false;
    return std::all_of(part.conditions.begin(), part.conditions.end(),
                       [&](const Condition& condition) { return holds(condition, node); });
}

bool Selector::matchesFrom(size_t index, pugi::xml_node node, uint32_t& steps) const
{
    if (steps == 0) return false;
    --steps;
    if (node.type() != pugi::node_element || !matchesPart(parts_[index], node)) return false;
    if (index == 0) return true;
    const char combinator = parts_[index].combinator;
    const bool once = combinator == '>' || combinator == '+';
    const bool sibling = combinator == '+' || combinator == '~';
    do {
        node = sibling ? elementBeside(node, true) : node.parent();
        if (node && matchesFrom(index - 1, node, steps)) return true;
    } while (node && !once);
    return false;
}

} // namespace Svg
} // namespace KAVO
