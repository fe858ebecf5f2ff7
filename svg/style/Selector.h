// SPDX-License-Identifier: MIT
// Selectors of style sheets: element names, classes, ids, attributes and pseudo-classes, joined by
// descendant, child and sibling combinators.
#pragma once

#include "svg/style/Siblings.h"
#include "svg/values/TextScanner.h"

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

    // Selectors between commas; nothing when one of them is nothing.
    static std::optional<std::vector<Selector>> parseList(std::string_view text);

    bool matches(pugi::xml_node node, Siblings& siblings) const
    {
        uint32_t steps = kMostSteps;
        return matchesFrom(parts_.size() - 1, node, {siblings, steps});
    }

    // Ids, classes and names that it asks for, a byte each.
    uint32_t specificity() const { return specificity_; }

    // What an element must have for any match: "#id", ".class", a name, or "".
    std::string key() const;

private:
    friend class SelectorParser;

    enum class Pseudo : uint8_t {
        Never, // :hover and its like, which hold for nothing in a still picture
        Empty,
        Is,
        Lang,
        Link,
        Not,
        NthChild,
        NthLastChild,
        NthLastOfType,
        NthOfType,
        Only,
        OnlyOfType,
        Root
    };
    // The positions step * n + offset for n from 0 on.
    struct Series {
        int32_t step = 0;
        int32_t offset = 1;
        bool holds(uint32_t position) const;
    };
    struct Condition {
        enum Kind { Id, Class, Attribute, PseudoClass } kind;
        std::string name;
        char comparison = 0;      // of an attribute: 0 is there, '=', '~', '|', '^', '$', '*'
        bool ignoresCase = false; // of the value
        std::string value;
        Pseudo pseudo = Pseudo::Never;
        Series series;                   // of positions
        std::vector<Selector> arguments; // of Is and Not
        std::vector<std::string> languages;
    };
    // Elements that a combinator joins to the part before: ' ', '>', '+' or '~'.
    struct Part {
        char combinator = ' ';
        std::string name; // empty: any
        std::vector<Condition> conditions;
    };
    // What one match needs beside the selector.
    struct Matching {
        Siblings& siblings;
        uint32_t& stepsLeft;
    };

    // Elements looked at for one match: ancestors in all combinations could take without end.
    static constexpr uint32_t kMostSteps = 5000;

    bool matchesFrom(size_t part, pugi::xml_node node, const Matching& matching) const;
    static bool matchesPart(const Part& part, pugi::xml_node node, const Matching& matching);
    static bool holds(const Condition& condition, pugi::xml_node node, const Matching& matching);
    static bool holdsAttribute(const Condition& condition, pugi::xml_node node);
    static bool holdsPseudo(const Condition& condition, pugi::xml_node node,
                            const Matching& matching);

    std::vector<Part> parts_;
    uint32_t specificity_ = 0;
};

} // namespace Svg
} // namespace KAVO
