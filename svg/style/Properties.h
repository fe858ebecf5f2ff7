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
};

// Appends the declarations between semicolons; shorthands are taken apart.
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

    // The element has a value that is computed by calc(), which nothing here does.
    bool needsCalc() const { return needsCalc_; }

private:
    void set(const Declaration& declaration);

    std::array<std::string_view, kPropertyCount> values_;
    bool needsCalc_ = false;
};

} // namespace Svg
} // namespace KAVO
