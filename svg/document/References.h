// SPDX-License-Identifier: MIT
// References from one element to another.
#pragma once

#include "svg/document/SvgDocument.h"

namespace KAVO {
namespace Svg {

// Value of href or xlink:href, "" when there is none.
const char* hrefOf(pugi::xml_node node);

// A gradient, pattern or filter with those of its kind that it refers to, from which it takes what
// it lacks.
class ReferenceChain {
public:
    ReferenceChain(const SvgDocument& document, pugi::xml_node node);

    const std::vector<pugi::xml_node>& elements() const { return elements_; } // nearest first

    // The nearest value of an attribute, "" when none of them has it.
    const char* operator[](const char* name) const;

    // The nearest valid length of an attribute.
    double length(const char* name, const LengthContext& context, Axis axis, double fallback) const;

private:
    std::vector<pugi::xml_node> elements_;
};

} // namespace Svg
} // namespace KAVO
