// SPDX-License-Identifier: MIT
// Selectors of style sheets: element names, classes, ids, attributes, :first-child and its like,
// joined by descendant, child and sibling combinators.
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace KAVO {
namespace Svg {

class Selector {
public:
    // One selector without commas; nothing when it is malformed or asks for what we do not know.
    static std::optional<Selector> parse(std::string_view text);

    bool matches(pugi::xml_node node) const
    {
        uint32_t steps = kMostSteps;
        return matchesFrom(parts_.size() - 1, node, steps);
    }

    // Ids, classes and names that it asks for, a byte each.
    uint32_t specificity() const { return specificity_; }

    // What an element must have for any match: "#id", ".class", a name, or "".
    std::string key() const;

private:
    struct Condition {
        enum Kind { Id, Class, Attribute, Pseudo } kind;
        std::string name;
        char comparison = 0; // of an attribute: 0 is there, '=', '~', '|', '^', '$', '*'
        std::string value;
    };
    // Elements that a combinator joins to the part before: ' ', '>', '+' or '~'.
    struct Part {
        char combinator = ' ';
        std::string name; // empty: any
        std::vector<Condition> conditions;
    };

    // Elements looked at for one match: ancestors in all combinations could take without end.
    static constexpr uint32_t kMostSteps = 5000;

    bool matchesFrom(size_t part, pugi::xml_node node, uint32_t& steps) const;
    static bool matchesPart(const Part& part, pugi::xml_node node);
    static bool holds(const Condition& condition, pugi::xml_node node);
    static bool parsePart(std::string_view& text, Part& part);
    static bool parseAttribute(std::string_view& text, Condition& condition);

    std::vector<Part> parts_;
    uint32_t specificity_ = 0;
};

// Calls function for each word of a list separated by white space.
template <class Function>
void forWords(std::string_view list, Function function)
{
    constexpr std::string_view kSpace = " \t\r\n\f";
    for (size_t i = list.find_first_not_of(kSpace); i != list.npos;) {
        const size_t end = list.find_first_of(kSpace, i);
        function(list.substr(i, end - i));
        i = end == list.npos ? end : list.find_first_not_of(kSpace, end);
    }
}

} // namespace Svg
} // namespace KAVO
