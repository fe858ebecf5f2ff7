// SPDX-License-Identifier: MIT
#include "svg/style/Selector.h"

#include "svg/values/TextScanner.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

pugi::xml_node elementBefore(pugi::xml_node node)
{
    do
        node = node.previous_sibling();
    while (node && node.type() != pugi::node_element);
    return node;
}

// Comments and instructions count for nothing, white space does.
bool isEmpty(pugi::xml_node node)
{
    const auto counts = [](pugi::xml_node n) {
        return n.type() == pugi::node_element || *n.value() != '\0';
    };
    for (const pugi::xml_node child : node.children()) {
        const bool aside = child.type() == pugi::node_comment || child.type() == pugi::node_pi;
        if (!aside && counts(child)) return false;
    }
    return true;
}

bool equals(std::string_view a, std::string_view b, bool ignoringCase)
{
    return ignoringCase ? equalsIgnoringCase(a, b) : a == b;
}

bool hasWord(std::string_view list, std::string_view wanted, bool ignoringCase = false)
{
    bool found = false;
    forWords(list,
             [&](std::string_view word) { found = found || equals(word, wanted, ignoringCase); });
    return found;
}

// A language range covers the language itself and its regions; the nearest xml:lang counts.
bool speaks(pugi::xml_node node, const std::vector<std::string>& ranges)
{
    for (; node; node = node.parent()) {
        pugi::xml_attribute language = node.attribute("xml:lang");
        if (!language) language = node.attribute("lang");
        if (!language) continue;
        const std::string_view value = language.value();
        return std::any_of(ranges.begin(), ranges.end(), [&](std::string_view range) {
            if (range == "*") return !value.empty();
            return equalsIgnoringCase(value.substr(0, range.size()), range) &&
                   (value.size() == range.size() || value[range.size()] == '-');
        });
    }
    return false;
}

} // namespace

bool Selector::Series::holds(uint32_t position) const
{
    const int64_t beyond = int64_t{position} - offset;
    if (step == 0) return beyond == 0;
    return beyond % step == 0 && beyond / step >= 0;
}

std::string Selector::key() const
{
    const Part& last = parts_.back();
    for (const Condition& condition : last.conditions) {
        if (condition.kind == Condition::Id) return "#" + condition.name;
        if (condition.kind == Condition::Class) return "." + condition.name;
    }
    return last.name;
}

bool Selector::holds(const Condition& condition, pugi::xml_node node, const Matching& matching)
{
    switch (condition.kind) {
    case Condition::Id:
        return condition.name == node.attribute("id").value();
    case Condition::Class:
        return hasWord(node.attribute("class").value(), condition.name);
    case Condition::Attribute:
        return holdsAttribute(condition, node);
    case Condition::PseudoClass:
        break;
    }
    return holdsPseudo(condition, node, matching);
}

bool Selector::holdsAttribute(const Condition& condition, pugi::xml_node node)
{
    const pugi::xml_attribute attribute = node.attribute(condition.name.c_str());
    if (!attribute) return false;
    const std::string_view value = attribute.value();
    const std::string_view wanted = condition.value;
    const auto same = [&](std::string_view part) {
        return equals(part, wanted, condition.ignoresCase);
    };
    const size_t size = wanted.size();
    switch (condition.comparison) {
    case 0:
        return true;
    case '=':
        return same(value);
    case '~':
        return hasWord(value, wanted, condition.ignoresCase);
    case '|':
        return same(value.substr(0, size)) && (value.size() == size || value[size] == '-');
    case '^':
        return size > 0 && same(value.substr(0, size));
    case '$':
        return size > 0 && value.size() >= size && same(value.substr(value.size() - size));
    default:
        break;
    }
    for (size_t i = 0; size > 0 && i + size <= value.size(); ++i) {
        if (same(value.substr(i, size))) return true;
    }
    return false;
}

bool Selector::holdsPseudo(const Condition& condition, pugi::xml_node node,
                           const Matching& matching)
{
    const auto place = [&]() -> const SiblingPlace& { return matching.siblings.placeOf(node); };
    const auto anyMatches = [&] {
        return std::any_of(
            condition.arguments.begin(), condition.arguments.end(), [&](const Selector& selector) {
                return selector.matchesFrom(selector.parts_.size() - 1, node, matching);
            });
    };
    switch (condition.pseudo) {
    case Pseudo::Never:
        break;
    case Pseudo::Empty:
        return isEmpty(node);
    case Pseudo::Is:
        return anyMatches();
    case Pseudo::Lang:
        return speaks(node, condition.languages);
    case Pseudo::Link:
        return node.name() == std::string_view("a") &&
               (node.attribute("href") || node.attribute("xlink:href"));
    case Pseudo::Not:
        return !anyMatches();
    case Pseudo::NthChild:
        return condition.series.holds(place().first);
    case Pseudo::NthLastChild:
        return condition.series.holds(place().last);
    case Pseudo::NthLastOfType:
        return condition.series.holds(place().lastOfType);
    case Pseudo::NthOfType:
        return condition.series.holds(place().firstOfType);
    case Pseudo::Only:
        return place().first == 1 && place().last == 1;
    case Pseudo::OnlyOfType:
        return place().firstOfType == 1 && place().lastOfType == 1;
    case Pseudo::Root:
        return node.parent().type() == pugi::node_document;
    }
    return false;
}

bool Selector::matchesPart(const Part& part, pugi::xml_node node, const Matching& matching)
{
    if (!part.name.empty() && part.name != node.name()) return false;
    return std::all_of(
        part.conditions.begin(), part.conditions.end(),
        [&](const Condition& condition) { return holds(condition, node, matching); });
}

bool Selector::matchesFrom(size_t index, pugi::xml_node node, const Matching& matching) const
{
    if (matching.stepsLeft == 0) return false;
    --matching.stepsLeft;
    if (node.type() != pugi::node_element || !matchesPart(parts_[index], node, matching))
        return false;
    if (index == 0) return true;
    const char combinator = parts_[index].combinator;
    const bool once = combinator == '>' || combinator == '+';
    const bool sibling = combinator == '+' || combinator == '~';
    do {
        node = sibling ? elementBefore(node) : node.parent();
        if (node && matchesFrom(index - 1, node, matching)) return true;
    } while (node && !once);
    return false;
}

} // namespace Svg
} // namespace KAVO
