// SPDX-License-Identifier: MIT
// A filter primitive as an element says it.
#pragma once

#include "svg/filters/FilterTarget.h"

#include <string>

namespace KAVO {
namespace Svg {

struct Primitive {
    pugi::xml_node node;
    const Style& style;
    const FilterTarget& target;
    bool inBox;      // lengths are shares of the bounding box
    Box region;      // its subregion, user space
    Box inputRegion; // what the subregions of its inputs span
    std::string problem;

    // How many it takes; -1: as its children say.
    int inputs() const;
    // Where nothing else is said it fills the filter's region, not that of its inputs.
    bool needsRegion() const;

    std::string_view text(const char* attribute) const { return node.attribute(attribute).value(); }
    double number(const char* attribute, double fallback) const;
    // One number for both axes or two, in user units; negative ones count as none.
    Point pair(const char* attribute, double fallback) const;

    EffectPointer blur(double deviation) const;
    EffectPointer offset(double distance) const;
    uint32_t flood() const;

private:
    Point toUserUnits(Point p) const;
};

// Null for what is not drawn.
EffectPointer makeEffect(Primitive& primitive);

} // namespace Svg
} // namespace KAVO
