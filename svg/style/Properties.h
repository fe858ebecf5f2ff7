// SPDX-License-Identifier: MIT
// What an element says about its properties: the cascade.
#pragma once

#include "svg/style/Property.h"

#include <array>
#include <pugixml.hpp>
#include <vector>

namespace KAVO {
namespace Svg {

class StyleSheet;

// A property and its value, as written in a style sheet or a style attribute.
struct Declaration {
    Property property;
    std::string_view value; // without white space around it
    bool important = false;
    std::string_view name = {}; // of a property of the author's own, "--name", or of one that is
                                // not drawn; the property is Count then
};

// Appends the declarations between semicolons; shorthands are taken apart. The text has no
// comments.
void parseDeclarations(std::string_view text, std::vector<Declaration>& declarations);

// The element's properties: attributes, then rules of the style sheet by specificity, then the
// style attribute; what is important goes over what is not. The values live as long as the
// document.
class Properties {
public:
    Properties(pugi::xml_node node, const StyleSheet& sheet);

    // The value without white space around it, empty when the property is not set or invalid.
    std::string_view operator[](Property property) const
    {
        return values_[static_cast<size_t>(property)];
    }
    bool inherits(Property property) const { return (*this)[property] == "inherit"; }

    // The function in one of the values that nothing here computes, as calc(); or nothing.
    std::string_view unknownFunction() const { return unknownFunction_; }

    // Properties that are set and mean nothing here, though they would change the picture.
    const std::vector<std::string_view>& undrawn() const { return undrawn_; }

private:
    using Declarations = std::vector<Declaration>;
    static constexpr int kMostVariables = 16; // that lead from one to the next

    // Calls function for all declarations, those that go over others last.
    template <class Function>
    static void forAll(const Declarations& rules, const Declarations& own, Function function);
    // The value of an author's own property that the element or the nearest one around it gives;
    // empty when none does.
    static std::string_view variable(pugi::xml_node node, const StyleSheet& sheet,
                                     std::string_view name);
    void set(const Declaration& declaration);
    // What stands for "var(--name, fallback)" on this element; other texts are left alone.
    std::string_view resolved(std::string_view text) const;

    std::array<std::string_view, kPropertyCount> values_;
    pugi::xml_node node_;
    const StyleSheet& sheet_;
    std::vector<std::string_view> undrawn_;
    std::string_view unknownFunction_;
};

} // namespace Svg
} // namespace KAVO
